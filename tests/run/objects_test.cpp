// Information objects in the syntax of their class and in default syntax, the checks of WITH
// SYNTAX, and object sets behind constraints.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

// ---- objects ------------------------------------------------------------------------------------

const std::string classes =
    "AL ::= CLASS { &id INTEGER, &alias INTEGER OPTIONAL } WITH SYNTAX { &id [ALIAS &alias] } "
    "ALL-SORTS ::= CLASS { &Type, &Set INTEGER, &val INTEGER, &var &Type OPTIONAL, "
    "&Vars &Type OPTIONAL, &obj PL OPTIONAL, &Objs PL OPTIONAL } WITH SYNTAX { TYPE &Type , "
    "VALUES &Set OF &val [[VAR &var] [VARS &Vars]] [OBJ &obj] [OBJS &Objs] } "
    "PL ::= CLASS { &n INTEGER OPTIONAL, &T OPTIONAL, &Set INTEGER OPTIONAL, &v &T OPTIONAL, "
    "&Vs &T OPTIONAL } NESTED ::= CLASS { &a INTEGER OPTIONAL, &b INTEGER OPTIONAL, "
    "&c INTEGER OPTIONAL } WITH SYNTAX { [A &a [B &b]] [C &c] } x INTEGER ::= 3 pl PL ::= { }";

// What is wrong with a setting stands at its field name, in defined syntax at its text.
TEST(Objects, FollowTheSyntaxOfTheirClass) {
    expectRows(R"(
AL ::= { 5 ALIAS 6 }
AL ::= { 5 }
AL ::= { x ALIAS M.x }
AL ::= 5 --! '{' expected ; Object syntax
AL ::= { } --! 'valueid' expected: id ; Object syntax
AL ::= { ALIAS 6 } --! 'valueid' expected: id ; Object syntax
AL ::= { INTEGER } --! Object syntax
AL ::= { 5 alias 6 } --! '}' expected ; Object syntax
AL ::= { 5 ALIAS } --! 'valueid' expected: alias ; Object syntax
AL ::= { 5 ALIAS 6 7 } --! '}' expected ; Object syntax
AL ::= { &id 5 } --! 'valueid' expected: id ; Object syntax
AL ::= { TRUE } --! INTEGER value syntax
NESTED ::= { }
NESTED ::= { A 1 B 2 C 3 }
NESTED ::= { B 2 } --! '}' expected ; Object syntax
NESTED ::= { C 3 A 1 } --! '}' expected ; Object syntax
NESTED ::= { A B 2 } --! 'valueid' expected: a ; Object syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {1 | 2} OF 5 }
ALL-SORTS ::= { TYPE NULL, VALUES {1..9} OF 5 VAR NULL VARS {NULL} OBJ pl OBJS {pl, ...} }
ALL-SORTS ::= { TYPE SET OF AL.&id, VALUES {1} OF x OBJ { &n 5 } OBJS {{&n 4} | pl} }
ALL-SORTS ::= { TYPE BOOLEAN, VALUES {1} OF 5 VARS {TRUE} } -- no group without its first element --! '}' expected ; Object syntax
ALL-SORTS ::= { TYP INTEGER, VALUES {1} OF 5 } --! Literal expected: TYPE ; Object syntax
ALL-SORTS ::= { TYPE 5, VALUES {1} OF 5 } --! 'typeid' expected: Type ; Object syntax
ALL-SORTS ::= { TYPE INTEGER VALUES {1} OF 5 } --! ',' expected ; Object syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES 1 OF 5 } --! '{' expected: Set ; Object syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {1} 5 } --! 'OF' expected ; Object syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF Foo } --! 'valueid' expected: val ; Object syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 VAR 6 VARS 5 } --! '{' expected: Vars ; Object syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 OBJ { &m 5 } } --! Field name expected: m ; Object syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {TRUE} OF 5 } --! INTEGER value syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 VAR TRUE } --! INTEGER value syntax
ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 VAR 6 VARS {TRUE} } --! INTEGER value syntax
PL ::= { }
PL ::= { &Vs {5 | 6}, &v 7, &Set {1}, &T INTEGER, &n x }
PL ::= { &T NULL, &v NULL }
PL ::= { 5 } --! Field name expected: number ; Object syntax
PL ::= { n 5 } --! Field name expected: n ; Object syntax
PL ::= { &m 5 } --! Field name expected: m ; Object syntax
PL ::= { &N INTEGER } --! Field name expected: N ; Object syntax
PL ::= { &n 5 &T NULL } --! '}' expected ; Object syntax
PL ::= { &n 5, } --! Field name expected: } ; Object syntax
PL ::= { &n } --! Object syntax
PL ::= { &n -x } --! 'number' expected ; Object syntax
PL ::= { &Set 5 } --! '{' expected ; Object syntax
PL ::= { &T INTEGER, &Vs 5 } --! '{' expected ; Object syntax
PL ::= { &v 5 } --! Invalid information from object: T ; Invalid governing type/class
PL ::= {\n&n\nTRUE, &T INTEGER } --! 3: INTEGER value syntax
PL ::= {\n&T INTEGER (0..9), &v\n\n55 } --! Invalid object ; 3: Value out of range constraint(s)
PL ::= {\n&v\n5 } --! 3: Invalid information from object: T ; 3: Invalid governing type/class
PL ::= {\n&Vs\n{5} } --! 3: Invalid information from object: T ; 4: Invalid governing type/class ; 4: Element set spec is invalid
AL ::= {\n5\nALIAS\nTRUE } --! 5: INTEGER value syntax
TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED BY { 1 2 } }
TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED { 1 2 } } --! 'BY' expected ; TYPE-IDENTIFIER object syntax
)",
               {.defaults = "AUTOMATIC TAGS ", .head = classes, .before = "o "});
}

TEST(Objects, KeepTheirSettingsInTheOrderOfTheText) {
    const TreeFacts tree(expectMarked(R"(
p PL ::= { &v TRUE, &n 5, &T BOOLEAN }
o ALL-SORTS ::= { TYPE BOOLEAN, VALUES {1..9} OF x VAR TRUE VARS {TRUE} OBJ p OBJS {p, ..., {&n 6}} }
)",
                                      {.defaults = "AUTOMATIC TAGS ", .head = classes}),
                         "m");
    expectFacts(tree, "valueText pl: {}");
    const stx::Tree& records = tree.tree();
    std::vector<stx::VNode> settings;
    std::string names;
    for (uint32_t nr = tree.value("o").node().ref; nr != 0; nr = settings.back().next) {
        settings.push_back(records.vNode(nr));
        const stx::VNode& setting = settings.back();
        names += std::string(records.text(setting.name)) +
                 (setting.valCode == stx::TYP_OPEN ? " type " : " value ") +
                 std::to_string(setting.vflags) + "; ";
    }
    EXPECT_EQ(names, "Type type 0; Set type 2; val value 0; var value 16; Vars type 18; obj value "
                     "0; Objs type 2; ");
    // The type of `var` is the field &Type of this very object.
    const stx::TNode governor = records.tNode(settings[3].govType);
    EXPECT_EQ(governor.typeCode, stx::TYP_FIELDLIST);
    EXPECT_EQ(governor.refMod, -2);
    EXPECT_EQ(governor.ref, tree.value("o").nr);
    EXPECT_TRUE(records.vNode(settings[3].ref).boole);
    // A set is the constraint of a reference to its governor.
    const stx::TNode set = records.tNode(settings[1].ref);
    EXPECT_EQ(set.ref, tree.type("ALL_SORTS.Set").nr);
    EXPECT_EQ(set.nodeFlags & 8U, 8U);
    EXPECT_EQ(
        stx::constraintText(tree.trees(), records, stx::constraintOf(records, settings[1].ref)),
        "(1..9)");
}

// ---- WITH SYNTAX --------------------------------------------------------------------------------

TEST(WithSyntax, IsChecked) {
    expectRows(
        R"(
&a NULL } WITH SYNTAX {\n&a }
&a NULL } WITH SYNTAX {\nWORD , BY &a }
&a NULL } WITH SYNTAX {\n&a\n&b [&C] } --! 4: Unknown field id: b ; 4: Unknown field id: C
&a NULL } WITH SYNTAX {\n&A } --! 3: Unknown field id: A
&a NULL } WITH SYNTAX {\n&a BIT\nTRUE PLUS-INFINITY } --! 3: Invalid literal: BIT ; 4: Invalid literal: TRUE ; 4: Invalid literal: PLUS_INFINITY
&a NULL } WITH SYNTAX {\n&a OCTET STRING DEFINED OPTIONAL }
&a NULL } WITH SYNTAX {\n&a Alias\nX-y A1-B2 } --! 3: Lower case letters not allowed: lias ; 4: Lower case letters not allowed: y
&a NULL, &b NULL } WITH SYNTAX {\n[X &a] [X &b]\n&a } --! 4: Duplicate field setting
&a NULL, &b NULL } WITH SYNTAX {\n&a [X\n[Y &a]] } --! 4: Duplicate field setting
&a NULL } WITH SYNTAX {\n&a [A\nB] } --! 3: Primitive field name or optional group expected
&a NULL } WITH SYNTAX {\n[A [B &a]] }
&a NULL } WITH SYNTAX {\n&a [A [B]\n[C]] } --! 3: Primitive field name or optional group expected ; 4: Primitive field name or optional group expected
&a NULL, &b NULL, &c NULL } WITH SYNTAX {\n[A &a]\n[&b] } --! 4: Literal expected
&a NULL, &b NULL, &c NULL } WITH SYNTAX {\n[A &a]\n[&b]\n[B &c] } --! 4: Literal expected
&a NULL, &b NULL, &C NULL } WITH SYNTAX {\n[A &a]\n[&b]\n[&C] } --! 4: Literal expected ; 5: Literal expected
&a NULL, &b NULL } WITH SYNTAX {\n[&b] [A &a] }
&a NULL, &b NULL } WITH SYNTAX {\n[A &a] &b }
&a NULL, &b NULL } WITH SYNTAX {\n[A &a] X [&b] }
&a NULL, &b NULL } WITH SYNTAX {\n[A &a] [B &b] }
&a NULL, &b NULL } WITH SYNTAX {\n[A &a]\n[A &b] } --! 4: User defined syntax is not LL(1): A
&a NULL, &b NULL } WITH SYNTAX {\n[A &a]\nA &b } --! 4: User defined syntax is not LL(1): A
&a NULL, &b NULL } WITH SYNTAX {\n[A &a] &b A }
&a NULL, &b NULL } WITH SYNTAX {\n[, &a]\n[BY &b]\n, } --! 5: User defined syntax is not LL(1)
&a NULL, &b NULL, &c NULL } WITH SYNTAX {\n[A &a] [B &b]\n[B &c]\nA } --! 4: User defined syntax is not LL(1): B ; 5: User defined syntax is not LL(1): A
&a NULL, &b NULL, &c NULL } WITH SYNTAX {\n[[A &a] [B &b]]\n[B &c] } --! 4: User defined syntax is not LL(1): B
&a NULL, &b NULL, &c NULL } WITH SYNTAX {\n[[A &a] B &b]\n[B &c] } --! 4: User defined syntax is not LL(1): B
&a NULL, &b NULL, &c NULL } WITH SYNTAX {\n[C &c [A &a] B]\n[B &b] }
&a NULL, &b NULL, &c NULL } WITH SYNTAX {\nC &c [X [A &a]\n[A &b]] } --! 4: User defined syntax is not LL(1): A
&a NULL, &b NULL } WITH SYNTAX {\n[&a]\n&b } --! 4: User defined syntax is not LL(1): b
&a NULL, &B } WITH SYNTAX {\n[&a] &B }
&A, &B } WITH SYNTAX {\n[&A]\n[&B] } --! 4: User defined syntax is not LL(1): B
&A NULL, &B NULL } WITH SYNTAX {\n[&A]\n[&B] } --! 4: User defined syntax is not LL(1): B
&A NULL, &B } WITH SYNTAX {\n[&A] [&B] }
&A NULL, &b SEQUENCE { a NULL } } WITH SYNTAX {\n[&A]\n[&b] } --! 4: User defined syntax is not LL(1): b
&A NULL, &b T } WITH SYNTAX {\n[&A]\n[&b] } --! 4: User defined syntax is not LL(1): b
&A NULL, &b IA5String } WITH SYNTAX {\n[&b] [&A] } --! 3: User defined syntax is not LL(1): A
&A NULL, &b OBJECT IDENTIFIER } WITH SYNTAX {\n[&b] [&A] } --! 3: User defined syntax is not LL(1): A
&A, &b SEQUENCE { a NULL } } WITH SYNTAX {\n[&A] [&b] }
)",
        {.defaults = "AUTOMATIC TAGS ", .head = "T ::= OCTET STRING", .before = "C ::= CLASS { "});
}

TEST(WithSyntax, MayBeLong) {
    std::string fields = "&a0 NULL OPTIONAL", groups, settings;
    for (int i = 1; i < 4000; ++i) {
        fields += numbered(", &a# INTEGER OPTIONAL", i);
        groups += numbered("[W# &a#]\n", i);
        settings += numbered("W# #\n", i);
    }
    expectMarked("C ::= CLASS {" + fields + "} WITH SYNTAX {" + groups + "}\no C ::= {" + settings +
                 "}");
}

// ---- styles of use ------------------------------------------------------------------------------

const char* const remoteOperations =
    "OPERATION ::= CLASS { &ArgumentType OPTIONAL, &ResultType OPTIONAL, &Errors ERROR OPTIONAL,"
    " &operationCode INTEGER UNIQUE } WITH SYNTAX { [ARGUMENT &ArgumentType] [RESULT &ResultType]"
    " [ERRORS &Errors] CODE &operationCode }"
    " ERROR ::= CLASS { &Param OPTIONAL, &code INTEGER UNIQUE }"
    " WITH SYNTAX { [PARAMETER &Param] CODE &code }"
    " busy ERROR ::= { CODE 1 } gone ERROR ::= { PARAMETER BOOLEAN CODE 2 }"
    " read OPERATION ::= { ARGUMENT INTEGER RESULT IA5String ERRORS { busy | gone } CODE 10 }"
    " stop OPERATION ::= { ARGUMENT BOOLEAN ERRORS { read.&Errors, ... } CODE 11 }"
    " All OPERATION ::= { read | stop, ... }"
    " Invoke{OPERATION : Ops} ::= SEQUENCE { code OPERATION.&operationCode ({Ops}),"
    " argument OPERATION.&ArgumentType ({Ops}{@code}) OPTIONAL }"
    " Fail ::= SEQUENCE { code ERROR.&code ({stop.&Errors}),"
    " parameter ERROR.&Param ({stop.&Errors}{@.code}) OPTIONAL }"
    " A ::= Invoke{{All}}";

const char* const directory =
    "ATTRIBUTE ::= CLASS { &Type, &equality RULE OPTIONAL, &single BOOLEAN DEFAULT FALSE,"
    " &id OBJECT IDENTIFIER UNIQUE } WITH SYNTAX { WITH SYNTAX &Type [EQUALITY MATCHING RULE"
    " &equality] [SINGLE VALUE &single] ID &id }"
    " RULE ::= CLASS { &Assertion, &id OBJECT IDENTIFIER UNIQUE }"
    " WITH SYNTAX { SYNTAX &Assertion ID &id }"
    " ds OBJECT IDENTIFIER ::= { joint-iso-ccitt 5 }"
    " same RULE ::= { SYNTAX name.&Type ID { ds 13 1 } }"
    " name ATTRIBUTE ::= { WITH SYNTAX PrintableString EQUALITY MATCHING RULE same ID { ds 4 41 } "
    " }"
    " age ATTRIBUTE ::= { WITH SYNTAX INTEGER (0..150) SINGLE VALUE TRUE ID { ds 4 42 } }"
    " Known ATTRIBUTE ::= { name | age, ... }"
    " Attribute{ATTRIBUTE : Set} ::= SEQUENCE { type ATTRIBUTE.&id ({Set}),"
    " values SET OF ATTRIBUTE.&Type ({Set}{@type}) }"
    " A ::= Attribute{{Known}}";

const char* const container =
    "PROTOCOL-IES ::= CLASS { &id INTEGER (0..65535) UNIQUE, &Value, &presence Presence }"
    " WITH SYNTAX { ID &id TYPE &Value PRESENCE &presence }"
    " Presence ::= ENUMERATED { optional, mandatory } max INTEGER ::= 9 cause INTEGER ::= 2"
    " Container{PROTOCOL-IES : Set} ::= SEQUENCE SIZE (0..max) OF Field{{Set}}"
    " Field{PROTOCOL-IES : Set} ::= SEQUENCE { id PROTOCOL-IES.&id ({Set}),"
    " value PROTOCOL-IES.&Value ({Set}{@id}) }"
    " Cause ::= ENUMERATED { radio, ... }"
    " IEs PROTOCOL-IES ::= { { ID cause TYPE Cause PRESENCE mandatory } |"
    " { ID 3 TYPE Sub PRESENCE optional }, ... } Sub ::= Container{{Inner}}"
    " Inner PROTOCOL-IES ::= { { ID 7 TYPE NULL PRESENCE optional }, ... }"
    " A ::= Container{{IEs}}";

TEST(ObjectSets, RestrictTheFieldsOfTheirClass) {
    expectRows(R"(
v A ::= { code 10, argument INTEGER : 5 } w A ::= { code 11 }
v A ::= { code 12 } --! Value out of table constraint(s) ; Invalid SEQUENCE value
v A ::= { code 10, argument BOOLEAN : TRUE } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
v Fail ::= { code 1 } w Fail ::= { code 2, parameter BOOLEAN : TRUE }
v Fail ::= { code 10 } --! Value out of table constraint(s) ; Invalid SEQUENCE value
v Fail ::= { code 1, parameter BOOLEAN : TRUE } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
)",
               {.defaults = "AUTOMATIC TAGS ", .head = remoteOperations});
    expectRows(R"(
v A ::= { type { ds 4 42 }, values { INTEGER : 5 } }
v A ::= { type { ds 4 43 }, values { } } --! Value out of table constraint(s) ; Invalid SEQUENCE value
v name.&Type ::= "me" w same.&Assertion ::= "me" x BOOLEAN ::= name.&single
v name.&Type ::= 5 --! PrintableString value syntax
)",
               {.defaults = "AUTOMATIC TAGS ", .head = directory});
    expectRows(R"(
v A ::= { { id cause, value Cause : radio } } w A ::= { { id 2, value Cause : radio }, { id 3, value Sub : { } } }
v A ::= { { id 7, value NULL : NULL } } --! Value out of table constraint(s) ; Value out of table constraint(s) ; Invalid SEQUENCE value ; Invalid SEQUENCE OF value
v A ::= { { id 3, value Cause : radio } } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value ; Invalid SEQUENCE OF value
)",
               {.defaults = "AUTOMATIC TAGS ", .head = container});
}

// A set that an object of another module gives is recorded at the setting that names it.
TEST(ObjectSets, AreTakenFromObjectsOfOtherModules) {
    const Frame frame = {
        .defaults = "AUTOMATIC TAGS ",
        .others = {{"n.asn", "N DEFINITIONS ::= BEGIN "
                             "C ::= CLASS { &id INTEGER UNIQUE } "
                             "D ::= CLASS { &Set C, &More C OPTIONAL } "
                             "d D ::= { &Set { {&id 1} | {&id 2} } } "
                             "P{D : p} ::= SEQUENCE { a C.&id ({p.&Set}) } END\n"}}};
    const std::string body = "IMPORTS C, D, d, P{} FROM N; S C ::= { d.&Set | d.&More | {&id 3} }\n"
                             "T ::= SEQUENCE { a C.&id ({S}) } U ::= P{d}\n";
    const TreeFacts tree(expectMarked(body + "t T ::= { a 2 } u U ::= { a 1 }", frame), "m");
    const stx::Tree& records = tree.tree();
    const stx::SubRec operand =
        records.subRec(records.subRec(stx::constraintOf(records, tree.type("S").nr)).left);
    const stx::VNode setting = records.vNode(operand.left);
    EXPECT_EQ(setting.valCode, stx::TYP_OPEN);
    EXPECT_EQ(records.text(records.mNode(static_cast<uint32_t>(setting.refMod)).modName), "N");
    for (const char* wrong : {"t T ::= { a 4 }", "u U ::= { a 3 }"})
        expectMarked(
            body + wrong + " --! Value out of table constraint(s) ; Invalid SEQUENCE value", frame);
}

} // namespace
} // namespace orvo::test
