// Information objects in the syntax of their class and in default syntax, the checks of WITH
// SYNTAX, and object sets behind constraints.

#include <gtest/gtest.h>

#include "support/cases.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

/// "7 Literal expected; 9 Object syntax": those texts on lines 7 and 9.
std::string errorLines(std::string_view texts) {
    std::string lines;
    while (!texts.empty()) {
        const std::string_view text = texts.substr(0, texts.find("; "));
        const size_t space = text.find(' ');
        lines += "  ** ERROR on line " + std::string(3 - space, ' ') +
                 std::string(text.substr(0, space)) + " : " + std::string(text.substr(space + 1)) +
                 '\n';
        texts.remove_prefix(std::min(texts.size(), text.size() + 2));
    }
    return lines;
}

// ---- objects ------------------------------------------------------------------------------------

const std::string classes =
    "AL ::= CLASS { &id INTEGER, &alias INTEGER OPTIONAL } WITH SYNTAX { &id [ALIAS &alias] }\n"
    "ALL-SORTS ::= CLASS { &Type, &Set INTEGER, &val INTEGER, &var &Type OPTIONAL,"
    " &Vars &Type OPTIONAL, &obj PL OPTIONAL, &Objs PL OPTIONAL } WITH SYNTAX { TYPE &Type ,"
    " VALUES &Set OF &val [[VAR &var] [VARS &Vars]] [OBJ &obj] [OBJS &Objs] }\n"
    "PL ::= CLASS { &n INTEGER OPTIONAL, &T OPTIONAL, &Set INTEGER OPTIONAL, &v &T OPTIONAL,"
    " &Vs &T OPTIONAL }\n"
    "NESTED ::= CLASS { &a INTEGER OPTIONAL, &b INTEGER OPTIONAL, &c INTEGER OPTIONAL }"
    " WITH SYNTAX { [A &a [B &b]] [C &c] }\n"
    "x INTEGER ::= 3 pl PL ::= { }\n";

constexpr struct {
    const char* object; // on line 7, behind "o "
    const char* error;  // "Object syntax" follows; behind a "*": all errors
} objectCases[] = {
    {"AL ::= { 5 ALIAS 6 }", ""},
    {"AL ::= { 5 }", ""},
    {"AL ::= { x ALIAS M.x }", ""},
    {"AL ::= 5", "'{' expected"},
    {"AL ::= { }", "'valueid' expected: id"},
    {"AL ::= { ALIAS 6 }", "'valueid' expected: id"},
    {"AL ::= { INTEGER }", "*7 Object syntax"}, // may begin the value of an open type
    {"AL ::= { 5 alias 6 }", "'}' expected"},
    {"AL ::= { 5 ALIAS }", "'valueid' expected: alias"},
    {"AL ::= { 5 ALIAS 6 7 }", "'}' expected"},
    {"AL ::= { &id 5 }", "'valueid' expected: id"},
    {"AL ::= { TRUE }", "*7 INTEGER value syntax"},
    {"NESTED ::= { }", ""},
    {"NESTED ::= { A 1 B 2 C 3 }", ""},
    {"NESTED ::= { B 2 }", "'}' expected"},
    {"NESTED ::= { C 3 A 1 }", "'}' expected"},
    {"NESTED ::= { A B 2 }", "'valueid' expected: a"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {1 | 2} OF 5 }", ""},
    {"ALL-SORTS ::= { TYPE NULL, VALUES {1..9} OF 5 VAR NULL VARS {NULL} OBJ pl OBJS {pl, ...} }",
     ""},
    {"ALL-SORTS ::= { TYPE SET OF AL.&id, VALUES {1} OF x OBJ { &n 5 } OBJS {{&n 4} | pl} }", ""},
    {"ALL-SORTS ::= { TYPE BOOLEAN, VALUES {1} OF 5 VARS {TRUE} }",
     "'}' expected"}, // no group without its first element
    {"ALL-SORTS ::= { TYP INTEGER, VALUES {1} OF 5 }", "Literal expected: TYPE"},
    {"ALL-SORTS ::= { TYPE 5, VALUES {1} OF 5 }", "'typeid' expected: Type"},
    {"ALL-SORTS ::= { TYPE INTEGER VALUES {1} OF 5 }", "',' expected"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES 1 OF 5 }", "'{' expected: Set"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {1} 5 }", "'OF' expected"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF Foo }", "'valueid' expected: val"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 VAR 6 VARS 5 }", "'{' expected: Vars"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 OBJ { &m 5 } }", "Field name expected: m"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {TRUE} OF 5 }", "*7 INTEGER value syntax"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 VAR TRUE }", "*7 INTEGER value syntax"},
    {"ALL-SORTS ::= { TYPE INTEGER, VALUES {1} OF 5 VAR 6 VARS {TRUE} }",
     "*7 INTEGER value syntax"},
    {"PL ::= { }", ""},
    {"PL ::= { &Vs {5 | 6}, &v 7, &Set {1}, &T INTEGER, &n x }", ""},
    {"PL ::= { &T NULL, &v NULL }", ""},
    {"PL ::= { 5 }", "Field name expected: number"},
    {"PL ::= { n 5 }", "Field name expected: n"},
    {"PL ::= { &m 5 }", "Field name expected: m"},
    {"PL ::= { &N INTEGER }", "Field name expected: N"},
    {"PL ::= { &n 5 &T NULL }", "'}' expected"},
    {"PL ::= { &n 5, }", "Field name expected: }"},
    {"PL ::= { &n }", "*7 Object syntax"},
    {"PL ::= { &n -x }", "'number' expected"},
    {"PL ::= { &Set 5 }", "'{' expected"},
    {"PL ::= { &T INTEGER, &Vs 5 }", "'{' expected"},
    {"PL ::= { &v 5 }", "*7 Invalid information from object: T; 7 Invalid governing type/class"},
    // What is wrong with a setting stands at its field name, in defined syntax at its text.
    {"PL ::= {\n&n\nTRUE, &T INTEGER }", "*8 INTEGER value syntax"},
    {"PL ::= {\n&T INTEGER (0..9), &v\n\n55 }",
     "*7 Invalid object; 8 Value out of range constraint(s)"},
    {"PL ::= {\n&v\n5 }", "*8 Invalid information from object: T; 8 Invalid governing type/class"},
    {"PL ::= {\n&Vs\n{5} }", "*8 Invalid information from object: T;"
                             " 9 Invalid governing type/class; 9 Element set spec is invalid"},
    {"AL ::= {\n5\nALIAS\nTRUE }", "*10 INTEGER value syntax"},
    {"TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED BY { 1 2 } }", ""},
    {"TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED { 1 2 } }",
     "*7 'BY' expected; 7 TYPE-IDENTIFIER object syntax"},
};

TEST(Objects, FollowTheSyntaxOfTheirClass) {
    for (const auto& row : objectCases) {
        SCOPED_TRACE(row.object);
        std::string errors = row.error;
        if (errors.starts_with('*'))
            errors.erase(0, 1);
        else if (!errors.empty())
            errors = "7 " + errors + "; 7 Object syntax";
        EXPECT_EQ(diagnosticsOf(classes + "o " + row.object), errorLines(errors));
    }
}

TEST(Objects, KeepTheirSettingsInTheOrderOfTheText) {
    const TreeFacts tree(
        compile({moduleM(classes +
                         "p PL ::= { &v TRUE, &n 5, &T BOOLEAN }\n"
                         "o ALL-SORTS ::= { TYPE BOOLEAN, VALUES {1..9} OF x VAR TRUE VARS {TRUE}"
                         " OBJ p OBJS {p, ..., {&n 6}} }")}),
        "m");
    EXPECT_EQ(tree.valueText("pl"), "{}");
    const stx::Tree& records = tree.tree();
    std::vector<stx::VNode> settings;
    for (uint32_t nr = tree.value("o").node().ref; nr != 0; nr = settings.back().next)
        settings.push_back(records.vNode(nr));
    constexpr struct {
        const char* name;
        uint8_t kind, vflags;
    } expected[] = {{"Type", stx::TYP_OPEN, 0},   {"Set", stx::TYP_OPEN, 2},
                    {"val", stx::TYP_SYNONYM, 0}, {"var", stx::TYP_SYNONYM, 16},
                    {"Vars", stx::TYP_OPEN, 18},  {"obj", stx::TYP_SYNONYM, 0},
                    {"Objs", stx::TYP_OPEN, 2}};
    ASSERT_EQ(settings.size(), std::size(expected));
    for (size_t i = 0; i < settings.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(records.text(settings[i].name), expected[i].name);
        EXPECT_EQ(settings[i].valCode, expected[i].kind);
        EXPECT_EQ(settings[i].vflags, expected[i].vflags);
    }
    // The type of `var` is the field &Type of this very object.
    const stx::TNode governor = records.tNode(settings[3].govType);
    EXPECT_EQ(governor.typeCode, stx::TYP_FIELDLIST);
    EXPECT_EQ(governor.refMod, -2);
    EXPECT_EQ(governor.ref, tree.value("o").nr);
    const stx::VNode variable = records.vNode(settings[3].ref);
    EXPECT_EQ(variable.valCode, stx::TYP_BOOLEAN);
    EXPECT_TRUE(variable.boole);
    // A set is the constraint of a reference to its governor.
    const stx::TNode set = records.tNode(settings[1].ref);
    EXPECT_EQ(set.ref, tree.type("ALL_SORTS.Set").nr);
    EXPECT_EQ(set.nodeFlags & 8U, 8U);
    EXPECT_EQ(
        stx::constraintText(tree.trees(), records, stx::constraintOf(records, settings[1].ref)),
        "(1..9)");
}

// ---- WITH SYNTAX --------------------------------------------------------------------------------

constexpr struct {
    const char* fields;
    const char* syntax; // "C ::= CLASS { fields } WITH SYNTAX {" is line 2, this line 3 and on
    const char* errors;
} syntaxCases[] = {
    {"&a NULL", "&a", ""},
    {"&a NULL", "WORD , BY &a", ""},
    {"&a NULL", "&a\n&b [&C]", "4 Unknown field id: b; 4 Unknown field id: C"},
    {"&a NULL", "&A", "3 Unknown field id: A"},
    {"&a NULL", "&a BIT\nTRUE PLUS-INFINITY",
     "3 Invalid literal: BIT; 4 Invalid literal: TRUE; 4 Invalid literal: PLUS_INFINITY"},
    {"&a NULL", "&a OCTET STRING DEFINED OPTIONAL", ""},
    {"&a NULL", "&a Alias\nX-y A1-B2",
     "3 Lower case letters not allowed: lias; 4 Lower case letters not allowed: y"},
    // Fields named twice end the checks.
    {"&a NULL, &b NULL", "[X &a] [X &b]\n&a", "4 Duplicate field setting"},
    {"&a NULL, &b NULL", "&a [X\n[Y &a]]", "4 Duplicate field setting"},
    // Groups without content.
    {"&a NULL", "&a [A\nB]", "3 Primitive field name or optional group expected"},
    {"&a NULL", "[A [B &a]]", ""},
    {"&a NULL", "&a [A [B]\n[C]]",
     "3 Primitive field name or optional group expected; "
     "4 Primitive field name or optional group expected"},
    // A group that begins with a field, behind one that begins with a literal.
    {"&a NULL, &b NULL, &c NULL", "[A &a]\n[&b]", "4 Literal expected"},
    {"&a NULL, &b NULL, &c NULL", "[A &a]\n[&b]\n[B &c]", "4 Literal expected"},
    {"&a NULL, &b NULL, &C NULL", "[A &a]\n[&b]\n[&C]", "4 Literal expected; 5 Literal expected"},
    {"&a NULL, &b NULL", "[&b] [A &a]", ""},
    {"&a NULL, &b NULL", "[A &a] &b", ""},
    {"&a NULL, &b NULL", "[A &a] X [&b]", ""},
    // LL(1): literals.
    {"&a NULL, &b NULL", "[A &a] [B &b]", ""},
    {"&a NULL, &b NULL", "[A &a]\n[A &b]", "4 User defined syntax is not LL(1): A"},
    {"&a NULL, &b NULL", "[A &a]\nA &b", "4 User defined syntax is not LL(1): A"},
    {"&a NULL, &b NULL", "[A &a] &b A", ""},
    {"&a NULL, &b NULL", "[, &a]\n[BY &b]\n,", "5 User defined syntax is not LL(1)"},
    {"&a NULL, &b NULL, &c NULL", "[A &a] [B &b]\n[B &c]\nA",
     "4 User defined syntax is not LL(1): B; 5 User defined syntax is not LL(1): A"},
    // A group can begin with whatever the run of groups at its beginning can.
    {"&a NULL, &b NULL, &c NULL", "[[A &a] [B &b]]\n[B &c]",
     "4 User defined syntax is not LL(1): B"},
    {"&a NULL, &b NULL, &c NULL", "[[A &a] B &b]\n[B &c]", "4 User defined syntax is not LL(1): B"},
    {"&a NULL, &b NULL, &c NULL", "[C &c [A &a] B]\n[B &b]", ""},
    {"&a NULL, &b NULL, &c NULL", "C &c [X [A &a]\n[A &b]]",
     "4 User defined syntax is not LL(1): A"},
    // LL(1): fields.
    {"&a NULL, &b NULL", "[&a]\n&b", "4 User defined syntax is not LL(1): b"},
    {"&a NULL, &B", "[&a] &B", ""},
    {"&A, &B", "[&A]\n[&B]", "4 User defined syntax is not LL(1): B"},
    {"&A NULL, &B NULL", "[&A]\n[&B]", "4 User defined syntax is not LL(1): B"},
    {"&A NULL, &B", "[&A] [&B]", ""}, // a set and a type
    {"&A NULL, &b SEQUENCE { a NULL }", "[&A]\n[&b]", "4 User defined syntax is not LL(1): b"},
    {"&A NULL, &b T", "[&A]\n[&b]", "4 User defined syntax is not LL(1): b"}, // T ::= OCTET STRING
    {"&A NULL, &b IA5String", "[&b] [&A]", "3 User defined syntax is not LL(1): A"},
    {"&A NULL, &b OBJECT IDENTIFIER", "[&b] [&A]", "3 User defined syntax is not LL(1): A"},
    {"&A, &b SEQUENCE { a NULL }", "[&A] [&b]", ""},
};

TEST(WithSyntax, IsChecked) {
    for (const auto& row : syntaxCases) {
        SCOPED_TRACE(std::string(row.fields) + " / " + row.syntax);
        EXPECT_EQ(diagnosticsOf(std::string("C ::= CLASS { ") + row.fields + " } WITH SYNTAX {\n" +
                                row.syntax + " }\nT ::= OCTET STRING"),
                  errorLines(row.errors));
    }
}

TEST(WithSyntax, MayBeLong) {
    std::string fields, groups, settings;
    for (int i = 0; i < 4000; ++i) {
        const std::string n = std::to_string(i);
        fields += (i == 0 ? "&a" : ",\n&a") + n + " INTEGER OPTIONAL";
        groups += "[W" + n + " &a" + n + "]\n";
        settings += "W" + n + " " + n + "\n";
    }
    const RunResult run = compile({moduleM("C ::= CLASS {" + fields + "} WITH SYNTAX {" + groups +
                                           "}\no C ::= {" + settings + "}")});
    EXPECT_EQ(run.diagnostics("m"), "");
    EXPECT_EQ(run.status, 0);
}

// ---- styles of use ------------------------------------------------------------------------------

#define OUT_OF_TABLE(line) line " Value out of table constraint(s); " line " Invalid SEQUENCE value"
#define OUT_OF_RELATION(line)                                                                      \
    line " Value out of component relation constraint(s); " line " Invalid SEQUENCE value"

const std::string remoteOperations =
    "OPERATION ::= CLASS { &ArgumentType OPTIONAL, &ResultType OPTIONAL, &Errors ERROR OPTIONAL,"
    " &operationCode INTEGER UNIQUE } WITH SYNTAX { [ARGUMENT &ArgumentType] [RESULT &ResultType]"
    " [ERRORS &Errors] CODE &operationCode }\n"
    "ERROR ::= CLASS { &Param OPTIONAL, &code INTEGER UNIQUE }"
    " WITH SYNTAX { [PARAMETER &Param] CODE &code }\n"
    "busy ERROR ::= { CODE 1 } gone ERROR ::= { PARAMETER BOOLEAN CODE 2 }\n"
    "read OPERATION ::= { ARGUMENT INTEGER RESULT IA5String ERRORS { busy | gone } CODE 10 }\n"
    "stop OPERATION ::= { ARGUMENT BOOLEAN ERRORS { read.&Errors, ... } CODE 11 }\n"
    "All OPERATION ::= { read | stop, ... }\n"
    "Invoke{OPERATION : Ops} ::= SEQUENCE { code OPERATION.&operationCode ({Ops}),"
    " argument OPERATION.&ArgumentType ({Ops}{@code}) OPTIONAL }\n"
    "Fail ::= SEQUENCE { code ERROR.&code ({stop.&Errors}),"
    " parameter ERROR.&Param ({stop.&Errors}{@.code}) OPTIONAL }\n"
    "A ::= Invoke{{All}}\n"; // line 10

const std::string directory =
    "ATTRIBUTE ::= CLASS { &Type, &equality RULE OPTIONAL, &single BOOLEAN DEFAULT FALSE,"
    " &id OBJECT IDENTIFIER UNIQUE } WITH SYNTAX { WITH SYNTAX &Type [EQUALITY MATCHING RULE"
    " &equality] [SINGLE VALUE &single] ID &id }\n"
    "RULE ::= CLASS { &Assertion, &id OBJECT IDENTIFIER UNIQUE }"
    " WITH SYNTAX { SYNTAX &Assertion ID &id }\n"
    "ds OBJECT IDENTIFIER ::= { joint-iso-ccitt 5 }\n"
    "same RULE ::= { SYNTAX name.&Type ID { ds 13 1 } }\n"
    "name ATTRIBUTE ::= { WITH SYNTAX PrintableString EQUALITY MATCHING RULE same ID { ds 4 41 } "
    "}\n"
    "age ATTRIBUTE ::= { WITH SYNTAX INTEGER (0..150) SINGLE VALUE TRUE ID { ds 4 42 } }\n"
    "Known ATTRIBUTE ::= { name | age, ... }\n"
    "Attribute{ATTRIBUTE : Set} ::= SEQUENCE { type ATTRIBUTE.&id ({Set}),"
    " values SET OF ATTRIBUTE.&Type ({Set}{@type}) }\n"
    "A ::= Attribute{{Known}}\n"; // line 10

const std::string container =
    "PROTOCOL-IES ::= CLASS { &id INTEGER (0..65535) UNIQUE, &Value, &presence Presence }"
    " WITH SYNTAX { ID &id TYPE &Value PRESENCE &presence }\n"
    "Presence ::= ENUMERATED { optional, mandatory } max INTEGER ::= 9 cause INTEGER ::= 2\n"
    "Container{PROTOCOL-IES : Set} ::= SEQUENCE SIZE (0..max) OF Field{{Set}}\n"
    "Field{PROTOCOL-IES : Set} ::= SEQUENCE { id PROTOCOL-IES.&id ({Set}),"
    " value PROTOCOL-IES.&Value ({Set}{@id}) }\n"
    "Cause ::= ENUMERATED { radio, ... }\n"
    "IEs PROTOCOL-IES ::= { { ID cause TYPE Cause PRESENCE mandatory } |\n"
    " { ID 3 TYPE Sub PRESENCE optional }, ... } Sub ::= Container{{Inner}}\n"
    "Inner PROTOCOL-IES ::= { { ID 7 TYPE NULL PRESENCE optional }, ... }\n"
    "A ::= Container{{IEs}}\n"; // line 10

const struct {
    const std::string& definitions;
    const char* value; // on line 11
    const char* errors;
} styleCases[] = {
    {remoteOperations, "v A ::= { code 10, argument INTEGER : 5 }", ""},
    {remoteOperations, "v A ::= { code 11 }", ""},
    {remoteOperations, "v A ::= { code 12 }", OUT_OF_TABLE("11")},
    {remoteOperations, "v A ::= { code 10, argument BOOLEAN : TRUE }", OUT_OF_RELATION("11")},
    {remoteOperations, "v Fail ::= { code 1 }", ""},
    {remoteOperations, "v Fail ::= { code 2, parameter BOOLEAN : TRUE }", ""},
    {remoteOperations, "v Fail ::= { code 10 }", OUT_OF_TABLE("11")},
    {remoteOperations, "v Fail ::= { code 1, parameter BOOLEAN : TRUE }", OUT_OF_RELATION("11")},
    {directory, "v A ::= { type { ds 4 42 }, values { INTEGER : 5 } }", ""},
    {directory, "v A ::= { type { ds 4 43 }, values { } }", OUT_OF_TABLE("11")},
    {directory, "v name.&Type ::= \"me\" w same.&Assertion ::= \"me\" x BOOLEAN ::= name.&single",
     ""},
    {directory, "v name.&Type ::= 5", "11 PrintableString value syntax"},
    {container, "v A ::= { { id cause, value Cause : radio } }", ""},
    {container, "v A ::= { { id 2, value Cause : radio }, { id 3, value Sub : { } } }", ""},
    {container, "v A ::= { { id 7, value NULL : NULL } }",
     "11 Value out of table constraint(s); " OUT_OF_TABLE("11") "; 11 Invalid SEQUENCE OF value"},
    {container, "v A ::= { { id 3, value Cause : radio } }",
     OUT_OF_RELATION("11") "; 11 Invalid SEQUENCE OF value"},
};

TEST(ObjectSets, RestrictTheFieldsOfTheirClass) {
    for (const auto& row : styleCases) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(diagnosticsOf(row.definitions + row.value), errorLines(row.errors));
    }
}

// A set that an object of another module gives is recorded at the setting that names it.
TEST(ObjectSets, AreTakenFromObjectsOfOtherModules) {
    const SourceFile n = {"n.asn", "N DEFINITIONS ::= BEGIN\n"
                                   "C ::= CLASS { &id INTEGER UNIQUE }\n"
                                   "D ::= CLASS { &Set C, &More C OPTIONAL }\n"
                                   "d D ::= { &Set { {&id 1} | {&id 2} } }\n"
                                   "P{D : p} ::= SEQUENCE { a C.&id ({p.&Set}) }\n"
                                   "END\n"};
    const std::string body =
        "IMPORTS C, D, d, P{} FROM N;\nS C ::= { d.&Set | d.&More | {&id 3} }\n"
        "T ::= SEQUENCE { a C.&id ({S}) }\nU ::= P{d}\n";
    const RunResult good = compile({moduleM(body + "t T ::= { a 2 } u U ::= { a 1 }"), n});
    const TreeFacts tree(good, "m");
    const stx::Tree& records = tree.tree();
    const stx::SubRec operand =
        records.subRec(records.subRec(stx::constraintOf(records, tree.type("S").nr)).left);
    const stx::VNode setting = records.vNode(operand.left);
    EXPECT_EQ(setting.valCode, stx::TYP_OPEN);
    EXPECT_EQ(records.text(records.mNode(static_cast<uint32_t>(setting.refMod)).modName), "N");
    EXPECT_EQ(compile({moduleM(body + "t T ::= { a 4 }\nu U ::= { a 3 }"), n}).diagnostics("m"),
              errorLines(OUT_OF_TABLE("6") "; " OUT_OF_TABLE("7")));
}

} // namespace
} // namespace orvo::test
