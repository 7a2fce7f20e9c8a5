// Objects, sets of objects and instances where today's notation says more than that of 1994: each
// legal module beside the nearest one that is not.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(NotationObjects, ReadsWhatSetsAndInstancesMean) {
    expectRows(
        R"(
v T ::= { e 2 } T ::= SEQUENCE { e ERR.&code ({Ops.&Errors}) } -- X.681 15.6: the sets of all objects
v T ::= { e 3 } T ::= SEQUENCE { e ERR.&code ({Ops.&Errors}) } --! Value out of table constraint(s) ; Invalid SEQUENCE value
v T ::= { e 2 } T ::= SEQUENCE { e ERR.&code ({op3.&Linked.&Errors}) } -- through a set
v T ::= { e 7 } T ::= SEQUENCE { e ERR.&code ({op3.&Linked.&Errors}) } --! Value out of table constraint(s) ; Invalid SEQUENCE value
v T {op3} ::= { e 1 } T {OP : op} ::= SEQUENCE { e ERR.&code ({op.&Linked.&Errors | op.&err}) } -- from a parameter
)",
        {.options = edition,
         .head = "OP ::= CLASS { &code INTEGER UNIQUE, &Errors ERR OPTIONAL, &Linked OP OPTIONAL, "
                 "&err ERR OPTIONAL } ERR ::= CLASS { &code INTEGER UNIQUE } "
                 "e1 ERR ::= { &code 1 } e2 ERR ::= { &code 2 } op1 OP ::= { &code 1, &Errors { "
                 "e1 } } op2 OP ::= { &code 2, &Errors { e2 } } Ops OP ::= { op1 | op2 } "
                 "op3 OP ::= { &code 3, &Linked { op1 | op2 }, &err e2 }"});
    expectRows(R"(
T ::= SEQUENCE { a K.&id ({{ &id 1 } | { &id 1 }}) } --! Non-distinct UNIQUE: field 'id': 1
L {K : S} ::= SEQUENCE {\n a K.&id ({S | { &id 1 }}) }\nT ::= L {{{ &id 1 }}} --! 4: Non-distinct UNIQUE: field 'id': 1
v P {INTEGER} ::= w w Q {A} ::= {5} -- X.680 annex F: instances made apart
v P {INTEGER} ::= w w P {BOOLEAN} ::= {TRUE} --! Invalid SEQUENCE OF value
v R {1} ::= w w R {6} ::= {1, 2} --! Value out of range constraint(s) ; Value out of size constraint(s)
B ::= SEQUENCE { a INTEGER, b C OPTIONAL } C ::= CHOICE { x B, y NULL } D ::= SEQUENCE { a [5] INTEGER (1..7), b E OPTIONAL } E ::= CHOICE { x D, y [7] NULL } v B ::= { a 5, b x : { a 6 } } w D ::= v
B ::= SEQUENCE { a INTEGER } D ::= SEQUENCE { b INTEGER } v B ::= { a 5 } w D ::= v --! Invalid SEQUENCE value
B ::= SET { a NULL OPTIONAL } D ::= SET { a NULL } v B ::= {} w D ::= v --! Invalid SET value
B ::= SET { a ENUMERATED { i } } D ::= SET { a ENUMERATED { j } } v B ::= { a i } w D ::= v --! Invalid SET value
)",
               {.options = edition,
                .head = "P {X} ::= SEQUENCE OF X Q {X} ::= P {X} A ::= INTEGER (1..5) "
                        "R {INTEGER : x} ::= SEQUENCE (SIZE (1..x)) OF INTEGER "
                        "K ::= CLASS { &id INTEGER UNIQUE }"});
}

} // namespace
} // namespace orvo::test
