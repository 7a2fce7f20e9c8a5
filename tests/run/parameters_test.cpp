// Parameterized definitions: instances of types, values and sets, what they are made of, and whom
// their errors are charged to.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(Parameters, ActualListsAgreeWithTheFormalOnes) {
    expectRows(R"(
A ::= P{5, NULL}
A ::= P{v, SEQUENCE OF NULL}
Z ::= NULL A ::= P{M.v, SET OF M.Z} B ::= T{T{M.A}}
A ::= P{5} --! Invalid actual parameter list
A ::= P{5, } --! Invalid actual parameter list
A ::= P{5 NULL} --! Invalid actual parameter list
A ::= P{, NULL} --! Invalid actual parameter list
A ::= P{NULL, 5} --! Invalid actual parameter list
A ::= P{5, 5} --! Invalid actual parameter list
A ::= P{5, v} --! Invalid actual parameter list
A ::= P{v, NULL, 7} --! '}' expected: Missing end of actual parameter list ; Invalid actual parameter list
A ::= T{NULL NULL} --! '}' expected: Missing end of actual parameter list ; Invalid actual parameter list
A ::= T{NULL,} --! '}' expected: Missing end of actual parameter list ; Invalid actual parameter list
A ::= P{-, NULL} --! 'number' expected ; Invalid actual parameter list
A ::= S{{1 | 2}}
A ::= S{{S{{1 | v}}}}
A ::= S{5} --! '{' expected ; Invalid actual parameter list
A ::= S{v} --! '{' expected ; Invalid actual parameter list
A ::= S{INTEGER} --! '{' expected ; Invalid actual parameter list
A ::= T{SEQUENCE OF T{5}} --! Invalid actual parameter list
A ::= T{T{5}} --! Invalid actual parameter list
A ::= T{P{5}} --! Invalid actual parameter list
A ::= P{TRUE, NULL} --! INTEGER value syntax
A ::= S{{TRUE}} --! INTEGER value syntax
A ::= S{{1, 2}} --! '...' expected: In sets a comma is allowed only before an extension marker ; Element set spec is invalid
A ::= T --! Braces expected: T
A ::= T{T} --! Braces expected: T
A ::= NULL B ::= A{5} --! Braces not allowed: A
)",
               {.defaults = "AUTOMATIC TAGS ",
                .head = "T{X} ::= SEQUENCE { a X } P{INTEGER : n, X} ::= SEQUENCE { a INTEGER "
                        "(0..n), b X } S{INTEGER : Set} ::= INTEGER (Set) v INTEGER ::= 3"});
}

TEST(Parameters, AnInstanceDoesNotContainItself) {
    expectRows(R"(
R{X} ::= SEQUENCE { a X, b R{X} OPTIONAL } A ::= R{NULL} --! Invalid recursion in definition of type
R{X} ::= SEQUENCE { a Q{X} }\nQ{X} ::= SEQUENCE { b R{X} OPTIONAL }\nA ::= R{NULL}\nB ::= Q{NULL} --! 4: Invalid recursion in definition of type ; 5: Invalid recursion in definition of type
r{INTEGER : n} INTEGER ::= r{n} a INTEGER ::= r{3} --! Invalid recursion in definition of value
R{X} ::= SEQUENCE { a X } A ::= R{R{R{NULL}}}
R{X} ::= SEQUENCE { a X OPTIONAL } A ::= R{A}
R{X} ::= X A ::= R{SEQUENCE { a A OPTIONAL }}
R{X} ::= SEQUENCE { a A OPTIONAL, x X } A ::= R{NULL}
r{INTEGER : n} INTEGER ::= n a INTEGER ::= r{r{3}}
R{X} ::= X\nA ::=\nR{A} --! 3: Invalid recursion in definition of type ; 3: Invalid recursion in definition of type ; 4: Invalid recursion in definition of type
N{INTEGER : n} ::= INTEGER (0..n) c N{c} ::= c --! Invalid recursion in definition of value: c
)",
               automatic);
}

/// "P0{X} ::= SEQUENCE { a P1{X} }" and so on, then an instance of the first.
std::string nestedInstances(int count) {
    std::string body;
    for (int i = 1; i < count; ++i)
        body +=
            "P" + std::to_string(i) + "{X} ::= SEQUENCE { a P" + std::to_string(i + 1) + "{X} }\n";
    return body + "P" + std::to_string(count) + "{X} ::= SEQUENCE { x X }\nA ::= P1{NULL}";
}

TEST(Parameters, InstancesNestToALimit) {
    EXPECT_EQ(diagnosticsOf(nestedInstances(200)), "");
    const RunResult run = compile({moduleM(nestedInstances(201))});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("Too many instances of parameterized definitions.\n"), run.err.npos);
    // References that are no part of each other nest as they like.
    std::string chain = "P{X} ::= SEQUENCE { x X OPTIONAL }\n";
    for (int i = 0; i < 3000; ++i)
        chain += "T" + std::to_string(i) + " ::= P{T" + std::to_string(i + 1) + "}\n";
    EXPECT_EQ(diagnosticsOf(chain + "T3000 ::= NULL"), "");
}

TEST(Parameters, AreUsedInTheInstance) {
    expectRows(R"(
P{X, Y} ::= SEQUENCE { a X } A ::= P{NULL, BOOLEAN} --! Unused actual parameters: (2) Y
P{INTEGER : n, Y, INTEGER : S, X} ::= NULL A ::= P{5, NULL, {1}, NULL} --! Unused actual parameters: (2) Y ; Unused actual parameters: (4) X ; Unused actual parameters: (1) n ; Unused actual parameters: (3) S
p{INTEGER : n, INTEGER : m} INTEGER ::= m a INTEGER ::= p{1, 2} --! Unused actual parameters: (1) n
P{X} ::= SEQUENCE { a Q{X} } Q{Y} ::= NULL A ::= P{NULL} --! Unused actual parameters: (1) Y ; Unused actual parameters: (1) X
P{X} ::= SEQUENCE OF CHOICE { a SET OF X } A ::= P{NULL}
P{X} ::= SEQUENCE { a NULL, ..., [[ b X OPTIONAL ]] } A ::= P{NULL}
P{X} ::= SEQUENCE { a a < X } A ::= P{CHOICE { a NULL }}
P{X} ::= SEQUENCE { COMPONENTS OF X } A ::= P{SEQUENCE { a NULL }}
P{INTEGER : n} ::= [n] NULL A ::= P{5}
P{INTEGER : n} ::= INTEGER { a(n) } A ::= P{5}
P{INTEGER : n} ::= SEQUENCE { a INTEGER DEFAULT n } A ::= P{5}
P{INTEGER : n} ::= INTEGER (1 | 2..5 | ((n | 3) EXCEPT 3)) A ::= P{5}
P{INTEGER : n} ::= OCTET STRING (SIZE (0..n)) A ::= P{5}
P{IA5String : s} ::= IA5String (FROM (s)) A ::= P{"ab"}
P{INTEGER : n} ::= SEQUENCE (WITH COMPONENT (n)) OF INTEGER A ::= P{5}
P{INTEGER : n} ::= S (WITH COMPONENTS { a (n) }) S ::= SEQUENCE { a INTEGER } A ::= P{5}
P{INTEGER : S} ::= INTEGER (0 | S) A ::= P{{1}}
P{INTEGER : S} ::= SEQUENCE { a Q{{S | 3}} } Q{INTEGER : S2} ::= INTEGER (S2) A ::= P{{1}}
P{X} ::= OCTET STRING (CONSTRAINED BY {X}) A ::= P{NULL}
P{OP : Set} ::= OP.&id ({Set}) A ::= P{{o}}
P{OP : op} ::= OP.&id ({op.&Set}) A ::= P{o}
P{OP : op} ::= INTEGER (op.&id) A ::= P{o}
P{OP : op} ::= op.&Arg q OP ::= { &id 5, &Arg NULL } A ::= P{q}
P{CL} ::= CL.&id A ::= P{OP}
p{INTEGER : n} INTEGER (0..n) ::= 3 a INTEGER ::= p{5}
p{X} OP ::= { &id 3, &Arg X } A ::= SEQUENCE { a OP.&id ({S}) } S OP ::= { p{NULL} }
)",
               {.defaults = "AUTOMATIC TAGS ",
                .head = "OP ::= CLASS { &id INTEGER, &Arg OPTIONAL, &Set OP OPTIONAL } "
                        "o OP ::= { &id 1, &Set { o } }"});
}

// ---- what an instance is made of ----------------------------------------------------------------

TEST(Parameters, EachReferenceHasACopyOfItsOwn) {
    const TreeFacts tree(expectMarked(R"(
P{INTEGER : n, X, INTEGER : S} ::= SEQUENCE { a INTEGER (0..n) DEFAULT n, b X OPTIONAL, c INTEGER (S),
  d ENUMERATED { e(0), f(n) } DEFAULT f, ..., [[ g SET OF X ]] }
A ::= P{5, NULL, {1..4}}
B ::= P{6, BOOLEAN, {2 | 9}}
)",
                                      automatic),
                         "m");
    EXPECT_EQ(tree.types(), "P A B");
    expectFacts(tree, R"(
kind A: P {5, NULL, {1..4}} ; bounds A.a: 0..5 ; actualKind A.b: NULL ; bounds A.c: 1..4 ; actualKind A.g.*: NULL
kind B: P {6, BOOLEAN, {2 | 9}} ; bounds B.a: 0..6 ; actualKind B.b: BOOLEAN ; bounds B.c: 2..9 ; actualKind B.g.*: BOOLEAN
components A: a b c d ... [[ g ]] ; presence A.a: DEFAULT n ; named A.d: e(0) f(n) ; presence A.d: DEFAULT f
components B: a b c d ... [[ g ]] ; presence B.a: DEFAULT n ; named B.d: e(0) f(n) ; presence B.d: DEFAULT f
)");
    // Records of an instance have its number, and the line of the reference.
    expectFacts(
        "A: 0 4 ; A.a: 1 4 ; A.g: 1 4 ; A.g.*: 1 4 ; B: 0 5 ; B.a: 2 5 ; B.g: 2 5 ; B.g.*: 2 5",
        [&](const std::string& path) {
            const stx::TNode node = tree.node(path);
            return std::to_string(node.actParRec) + " " + std::to_string(node.line);
        });
    EXPECT_NE(tree.type("A.a").nr, tree.type("B.a").nr);
}

TEST(Parameters, ActualParametersAreRecordsInARow) {
    const TreeFacts tree(expectMarked("P{INTEGER : n, X, INTEGER : S} ::= SEQUENCE {\n"
                                      "  a INTEGER (S) DEFAULT n, b X }\nA ::= P{5, NULL, {5}}"),
                         "m");
    const auto first = static_cast<uint32_t>(tree.node("A").syntax);
    const auto at = [&](uint32_t nr) { return tree.tree().vNode(first + nr); };
    const char* const names[] = {"n", "X", "S"};
    for (uint32_t nr = 0; nr < 3; ++nr) {
        EXPECT_EQ(at(nr).next, nr < 2 ? first + nr + 1 : 0U);
        EXPECT_EQ(tree.tree().text(at(nr).name), names[nr]);
        EXPECT_EQ(at(nr).name < 0, nr == 0); // as names of values are
        EXPECT_EQ(at(nr).valStatus, 4);
        EXPECT_EQ(at(nr).line, 4U);
        EXPECT_EQ(at(nr).vflags & 2, nr == 2 ? 2 : 0);
    }
    EXPECT_EQ(at(0).number, 5);
    EXPECT_EQ(at(1).refMod, -1);
    EXPECT_EQ(tree.tree().tNode(at(1).ref).typeCode, stx::TYP_NULL);
    const stx::TNode set = tree.tree().tNode(at(2).ref);
    EXPECT_EQ(set.nodeFlags & 8U, 8U);
    EXPECT_GT(set.constraint, 0);
    EXPECT_EQ(set.ref, at(2).govType); // the copy of the governor
}

TEST(Parameters, InstancesOfValuesHaveTheirOwnGovernor) {
    const TreeFacts tree(
        compile({moduleM("L ::= SEQUENCE OF INTEGER p{INTEGER : n} L ::= { n, 1, n }\n"
                         "r{X, X : x} X ::= x\n"
                         "I{INTEGER : m} ::= INTEGER (0..m) s{INTEGER : n} I{n} ::= 4\n"
                         "a L ::= p{8} b L ::= p{9}\n"
                         "c INTEGER ::= r{INTEGER, 5} d BOOLEAN ::= r{BOOLEAN, FALSE}\n"
                         "e INTEGER ::= s{9} f INTEGER ::= s{7}")}),
        "m");
    const auto governor = [&](const char* name) {
        const stx::VNode instance = tree.tree().vNode(tree.value(name).node().ref);
        return stx::TypeRef{&tree.tree(), instance.govType};
    };
    EXPECT_NE(tree.value("a").node().ref, tree.value("b").node().ref);
    // Copied where it depends on the parameters only.
    EXPECT_EQ(governor("a").nr, governor("b").nr);
    std::string error;
    const auto governing = [&](const char* name) {
        return skipTypes(tree.trees(), governor(name), true, error);
    };
    EXPECT_EQ(governing("c").node().typeCode, stx::TYP_INTEGER);
    EXPECT_EQ(governing("d").node().typeCode, stx::TYP_BOOLEAN);
    EXPECT_NE(governing("e").nr, governing("f").nr);
}

// ---- across modules -----------------------------------------------------------------------------

const SourceFile moduleN = {"n.asn", "N DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                                     "IMPORTS Q{} FROM N2;\n"
                                     "P{X, INTEGER : n, INTEGER : S} ::= SEQUENCE {\n"
                                     "  a X OPTIONAL,\n"
                                     "  b Q{SEQUENCE OF X, n, {S | 99}} }\n"
                                     "k INTEGER ::= 1\n"
                                     "END\n"};
SourceFile moduleN2(const std::string& component) {
    return {"n2.asn", "N2 DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                      "Q{Y, INTEGER : k, INTEGER : S} ::= SEQUENCE {\n"
                      "  a Y,\n  b INTEGER (0..k),\n  c INTEGER (S)" +
                          component +
                          " }\nU{Z, INTEGER : m} ::= SEQUENCE OF Z u{Z} INTEGER ::= 1\nEND\n"};
}

TEST(Parameters, InstancesLieWhereTheirDefinitionDoes) {
    const RunResult run =
        compile({moduleM("IMPORTS P{}, k FROM N;\nA ::= P{INTEGER (0..k), 5, {1 | 2}}"), moduleN,
                 moduleN2("")});
    const TreeFacts tree(run, "m");
    expectFacts(tree, R"(
kind A: N.P {INTEGER, 5, {1 | 2}} ; kind A.b: N2.Q {SEQUENCE OF, M.n, {N.S | 99}}
actualKind A.b.a.*: INTEGER ; bounds A.b.b: 0..5 ; bounds A.b.c: 1..99
)");
    EXPECT_EQ(tree.type("A.a").tree->moduleName(), "N");
    EXPECT_EQ(tree.type("A.b.b").tree->moduleName(), "N2");
    EXPECT_EQ(tree.node("A.b.b").line, 3U);
    EXPECT_EQ(tree.tree().count(stx::TNODE), 3U); // A, the type and the set given to P
}

constexpr struct {
    const char* component; // of Q
    const char* messages;  // at the reference
} instanceErrors[] = {
    {",\n d INTEGER (SIZE (5))",
     "Size constraint not allowed\n  ** ERROR on line   6 : Invalid constraint"},
    {",\n d BOOLEAN (k)", "Invalid BOOLEAN value"},
    {",\n d BOOLEAN DEFAULT 7", "BOOLEAN value syntax"},
    {",\n d U{Y}", "Invalid actual parameter list"},
    {",\n d U{Y, k}", "Unused actual parameters: (2) m"},
    {",\n d Q{Y, k, {S}}", "Invalid recursion in definition of type"},
    {",\n d x < Y", "Invalid selection type: x"},
    {",\n COMPONENTS OF Y", "Invalid type in COMPONENTS OF"},
    {",\n d INTEGER (u)", "Braces expected: u"},
};

TEST(Parameters, ErrorsInInstancesAreChargedToTheOutermostReference) {
    const SourceFile m = moduleM("IMPORTS P{} FROM N;\n\n\n\nA ::= P{NULL, 5, {\n1}}");
    for (const auto& row : instanceErrors) {
        SCOPED_TRACE(row.component);
        const SourceFile n2 = moduleN2(row.component);
        const RunResult run = compile({m, moduleN, n2});
        const std::string found = run.diagnostics("m");
        EXPECT_TRUE(found.starts_with(std::string("  ** ERROR on line   6 : ") + row.messages))
            << found;
        EXPECT_EQ(run.diagnostics("n") + run.diagnostics("n2"), "");
    }
}

} // namespace
} // namespace orvo::test
