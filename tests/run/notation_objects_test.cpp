// Objects, sets of objects and instances where today's notation says more than that of 1994: each
// legal module beside the nearest one that is not.

#include <algorithm>

#include <gtest/gtest.h>

#include "support/cases.h"
#include "support/run.h"

namespace orvo::test {
namespace {

const std::string operations =
    "OP ::= CLASS { &code INTEGER UNIQUE, &Errors ERR OPTIONAL, &Linked OP OPTIONAL, &err ERR "
    "OPTIONAL } ERR ::= CLASS { &code INTEGER UNIQUE }\n"
    "e1 ERR ::= { &code 1 } e2 ERR ::= { &code 2 } op1 OP ::= { &code 1, &Errors { e1 } }\n"
    "op2 OP ::= { &code 2, &Errors { e2 } } Ops OP ::= { op1 | op2 }\n"
    "op3 OP ::= { &code 3, &Linked { op1 | op2 }, &err e2 }\n";
const std::string instances = "P {X} ::= SEQUENCE OF X Q {X} ::= P {X} A ::= INTEGER (1..5)\n"
                              "R {INTEGER : x} ::= SEQUENCE (SIZE (1..x)) OF INTEGER\n";
TEST(NotationObjects, ReadsWhatSetsAndInstancesMean) {
    const struct {
        const char* clause;
        std::string body;
        std::vector<std::string> findings; // on the last line
    } rows[] = {
        {"X.681 15.6: the sets of all objects",
         operations + "v T ::= { e 2 } T ::= SEQUENCE { e ERR.&code ({Ops.&Errors}) }",
         {}},
        {"none of them",
         operations + "v T ::= { e 3 } T ::= SEQUENCE { e ERR.&code ({Ops.&Errors}) }",
         {"Value out of table constraint(s)", "Invalid SEQUENCE value"}},
        {"through a set",
         operations + "v T ::= { e 2 } T ::= SEQUENCE { e ERR.&code ({op3.&Linked.&Errors}) }",
         {}},
        {"none of them",
         operations + "v T ::= { e 7 } T ::= SEQUENCE { e ERR.&code ({op3.&Linked.&Errors}) }",
         {"Value out of table constraint(s)", "Invalid SEQUENCE value"}},
        {"from a parameter",
         operations + "v T {op3} ::= { e 1 } T {OP : op} ::= SEQUENCE { e ERR.&code "
                      "({op.&Linked.&Errors | op.&err}) }",
         {}},
        {"X.681 9.20: in the set of a table",
         "K ::= CLASS { &id INTEGER UNIQUE }\nT ::= SEQUENCE { a K.&id ({{ &id 1 } | { &id 1 }}) }",
         {"Non-distinct UNIQUE: field 'id': 1"}},
        {"that a parameter completes: who makes the instance",
         "P {K : S} ::= SEQUENCE { a K.&id ({S | { &id 1 }}) }\n"
         "K ::= CLASS { &id INTEGER UNIQUE } T ::= P {{{ &id 1 }}}",
         {"Non-distinct UNIQUE: field 'id': 1"}},
        {"X.680 annex F: instances made apart",
         instances + "v P {INTEGER} ::= w w Q {A} ::= {5}",
         {}},
        {"other elements",
         instances + "v P {INTEGER} ::= w w P {BOOLEAN} ::= {TRUE}",
         {"Invalid SEQUENCE OF value"}},
        {"what the actual parameters constrain is checked",
         instances + "v R {1} ::= w w R {6} ::= {1, 2}",
         {"Value out of range constraint(s)", "Value out of size constraint(s)"}},
        {"structures that lead back, tags and constraints aside",
         "B ::= SEQUENCE { a INTEGER, b C OPTIONAL } C ::= CHOICE { x B, y NULL }\n"
         "D ::= SEQUENCE { a [5] INTEGER (1..7), b E OPTIONAL } E ::= CHOICE { x D, y [7] NULL }\n"
         "v B ::= { a 5, b x : { a 6 } } w D ::= v",
         {}},
        {"another identifier",
         "B ::= SEQUENCE { a INTEGER } D ::= SEQUENCE { b INTEGER } v B ::= { a 5 } w D ::= v",
         {"Invalid SEQUENCE value"}},
        {"optional",
         "B ::= SET { a NULL OPTIONAL } D ::= SET { a NULL } v B ::= {} w D ::= v",
         {"Invalid SET value"}},
        {"items",
         "B ::= SET { a ENUMERATED { i } } D ::= SET { a ENUMERATED { j } }\nv B ::= { a i } w D "
         "::= v",
         {"Invalid SET value"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.clause);
        const auto line = 2 + std::ranges::count(row.body, '\n');
        std::vector<Finding> findings;
        for (const std::string& text : row.findings)
            findings.push_back({static_cast<int>(line), text});
        EXPECT_EQ(compileBody(row.body, {"-STANDARD-VERSION=2021"}).diagnostics("m"),
                  listed(findings));
    }
}

} // namespace
} // namespace orvo::test
