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
                              "R {INTEGER : x} ::= SEQUENCE (SIZE (1..x)) OF INTEGER\n"
                              "K ::= CLASS { &id INTEGER } S1 K ::= {{ &id 1 }} S2 K ::= {{ &id 1 "
                              "}} S {K : Set} ::= SEQUENCE { a K.&id ({Set}) }\n";

const std::string identified =
    "K ::= CLASS { &id INTEGER UNIQUE OPTIONAL, &other INTEGER UNIQUE OPTIONAL }\n"
    "o1 K ::= { &id 1, &other 2 } o2 K ::= { &id 2, &other 1 }\n";

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
        {"X.681 9.20, 12.9: equal in one field",
         identified + "o3 K ::= { &id 1 } S K ::= { o1 | o3 }",
         {"Non-distinct UNIQUE: &id = 1"}},
        {"the same object, and the same value in another field",
         identified + "S K ::= { o1 | o2, ..., o4 | o1 } o4 K ::= o1",
         {}},
        {"written alike, as an addition",
         identified + "S K ::= { o1 | o2, ..., { &id 2 } }",
         {"Non-distinct UNIQUE: &id = 2"}},
        {"nothing there", identified + "S K ::= {{} | {}}", {}},
        {"in nested sets",
         identified + "A K ::= { o1 } B K ::= {{ &other 2 }} S K ::= { A | B }",
         {"Non-distinct UNIQUE: &other = 2"}},
        {"one object in both", identified + "A K ::= { o1 } S K ::= { A | o1 | A }", {}},
        {"in a table",
         identified + "T ::= SEQUENCE { a K.&id ({o1 | { &id 1 }}) }",
         {"Non-distinct UNIQUE: &id = 1",
          "Invalid table constraint(s): The ObjectSet in the table constraint is invalid."}},
        {"object identifiers",
         "a OBJECT IDENTIFIER ::= { 1 2 }\n"
         "S TYPE-IDENTIFIER ::= {{ NULL IDENTIFIED BY { a 3 } } | { NULL IDENTIFIED BY { 1 2 3 } "
         "}}",
         {"Non-distinct UNIQUE: &id = {1 2 3}"}},
        {"X.683: equal actual parameters",
         instances + "v P {INTEGER} ::= w w P {INTEGER} ::= {5}",
         {}},
        {"others",
         instances + "v P {INTEGER} ::= w w P {BOOLEAN} ::= {TRUE}",
         {"Invalid SEQUENCE OF value"}},
        {"by name", instances + "v P {A} ::= w w P {A} ::= {5}", {}},
        {"a subtype is another type",
         instances + "v P {INTEGER} ::= w w P {A} ::= {5}",
         {"Invalid SEQUENCE OF value"}},
        {"in another instance", instances + "v Q {A} ::= w w P {A} ::= {5}", {}},
        {"values", instances + "v R {5} ::= w w R {y} ::= {1} y INTEGER ::= 5", {}},
        {"others", instances + "v R {5} ::= w w R {6} ::= {1}", {"Invalid SEQUENCE OF value"}},
        {"sets", instances + "v S {{S1}} ::= w w S {{S1}} ::= { a 1 }", {}},
        {"others",
         instances + "v S {{S1}} ::= w w S {{S2}} ::= { a 1 }",
         {"Invalid SEQUENCE value"}},
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
