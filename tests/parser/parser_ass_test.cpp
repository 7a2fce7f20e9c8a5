#include "parser/parser_ass.h"

#include "support/pass1.h"
#include "symtab/orvosym.h"

namespace orvo {
namespace {

class Assignments : public Pass1Test {
  protected:
    STabNr symbolOf(std::string_view name, bool value = false) {
        const auto stri = static_cast<int32_t>(findStri(module, name).nr);
        return findSymbol(module->symTab, value ? -stri : stri);
    }
    /// The formal parameters of a symbol, each with its flags, governor and "*" for a set.
    std::string formals(STabNr symbol) {
        std::string text;
        for (STabNr nr{symAt(symbol).formals}; nr; nr = STabNr{symAt(nr).next}) {
            const STabRec formal = symAt(nr);
            const TNode node = typeAt(TNodeNr{static_cast<uint32_t>(formal.node)});
            EXPECT_EQ(node.compStatus, TCS_FORMAL);
            text += (text.empty() ? "" : ", ") + std::string(getStri(module, formal.name)) +
                    ((node.nodeFlags & NF_SET) != 0 ? "*/" : "/") + std::to_string(formal.flags) +
                    " " + describe(TNodeNr{static_cast<uint32_t>(formal.node)});
        }
        return text;
    }
};

TEST_F(Assignments, HeadsAreChainedAndKnownToTheirSymbols) {
    parseBody("A ::= NULL v A ::= NULL\nB A ::= { NULL } C ::= CLASS { &id INTEGER }");
    EXPECT_EQ(errors(), "");
    const TNode first = typeAt(module->firstTypeHead);
    EXPECT_EQ(first.compStatus, TCS_HEADER);
    EXPECT_EQ(TNodeNr{first.next}, head("B"));
    EXPECT_EQ(typeAt(head("B")).line, 3U);
    EXPECT_EQ(module->lastTypeHead, head("C"));
    EXPECT_EQ(symAt(symbolOf("C")).node, static_cast<int32_t>(head("C").nr));
    EXPECT_EQ(symAt(symbolOf("v", true)).node, minus(valueHead("v").nr));
}

TEST_F(Assignments, ValueIsKeptAsTextUnderItsType) {
    parseBody("v CHOICE { a INTEGER } ::= a : -5\nw SEQUENCE OF BOOLEAN ::= {TRUE, NULL : NULL}");
    EXPECT_EQ(errors(), "");
    const VNode value = valueAt(valueHead("v"));
    EXPECT_EQ(value.valStatus, VST_HEADER);
    EXPECT_EQ(value.refMod, REF_DEFERRED);
    EXPECT_EQ(describe(TNodeNr{value.govType}), "CHOICE{a INTEGER}");
    EXPECT_EQ(describe(valueHead("v")), "a : - 5");
    EXPECT_EQ(describe(valueHead("w")), "{ TRUE , #(NULL) : NULL }");
}

TEST_F(Assignments, SetIsKeptAsTheConstraintOfItsHead) {
    parseBody("S OTHER ::= { a | {&id 5}, ... }");
    EXPECT_EQ(describe(head("S")), "SYNONYM(OTHER) :: { a | { &id 5 } , ... }");
    EXPECT_EQ(typeAt(head("S")).nodeFlags, NF_SET);
}

TEST_F(Assignments, FormalParametersFollowTheHead) {
    parseBody("T {X, INTEGER : n, CL : Set, x < Ch : y} ::= SEQUENCE { a X }");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(formals(symbolOf("T")), "X/112 OPEN, n/16 INTEGER, Set*/16 SYNONYM(CL), "
                                      "y/16 SELECTION(x < SYNONYM(Ch))");
    EXPECT_EQ(symAt(symbolOf("T")).flags, SYM_PARAMETERIZED);
    EXPECT_EQ(typeAt(head("T")).formals, head("T").nr + 1);
    EXPECT_EQ(describe(head("T")), "SEQ{a SYNONYM(#1)}");
}

TEST_F(Assignments, DummyReferencesAreFoundInBodyAndHeader) {
    parseBody("T {X, X : v, INTEGER (0..v) : w} ::= SET OF [v] N.X\n"
              "U {X} ::= CHOICE { a X.&id, b Other {X}, c INTEGER { d(e) }, f X {5} }\n"
              "s {X, X : y} X ::= y\n"
              "R {CL, INTEGER : z} CL ::= { r | s }\n"
              "e {INTEGER : f} INTEGER (0..f) ::= f");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(formals(symbolOf("T")), "X/112 OPEN, v/80 SYNONYM(#1), w/16 INTEGER :: ( 0 .. v )");
    EXPECT_EQ(describe(head("T")), "SETOF([C@#2/e] SYNONYM(M2.X))");
    EXPECT_EQ(describe(head("U")), "CHOICE{a FIELDLIST(SYNONYM(#1).&id), b SYNONYM(Other<{ X }>), "
                                   "c INTEGER{d=e}, f SYNONYM(X<{ 5 }>)}");
    EXPECT_EQ(describe(TNodeNr{valueAt(valueHead("s")).govType}), "SYNONYM(#1)");
    EXPECT_EQ(describe(head("R")), "SYNONYM(#1) :: { r | s }");
}

TEST_F(Assignments, TextsOfHeaderAndBodyCarryTheFormalParameters) {
    parseBody("T {INTEGER : n, OCTET STRING (SIZE (n)) : o} ::= OCTET STRING (SIZE (n))\n"
              "v {INTEGER : n} INTEGER (0..n) ::= n\nS {INTEGER : n} B {n} ::= {n}\n"
              "U ::= INTEGER (0..1)");
    const auto formalsOf = [this](int32_t word) {
        readRec(module, deferredText(word));
        return dNode.formals;
    };
    const uint32_t ofT = symAt(symbolOf("T")).formals, ofS = symAt(symbolOf("S")).formals;
    EXPECT_NE(ofT, 0U);
    EXPECT_EQ(formalsOf(typeAt(head("T")).constraint), ofT);
    EXPECT_EQ(formalsOf(typeAt(TNodeNr{head("T").nr + 2}).constraint), ofT);
    EXPECT_EQ(formalsOf(typeAt(head("S")).constraint), ofS);
    EXPECT_EQ(formalsOf(typeAt(head("S")).syntax), ofS);
    const VNode value = valueAt(valueHead("v"));
    EXPECT_EQ(formalsOf(signedWord(value.ref)), symAt(symbolOf("v", true)).formals);
    EXPECT_EQ(formalsOf(typeAt(TNodeNr{value.govType}).constraint),
              symAt(symbolOf("v", true)).formals);
    EXPECT_EQ(formalsOf(typeAt(head("U")).constraint), 0U);
}

TEST_F(Assignments, MistakesAreReportedWhereTheyStand) {
    constexpr struct {
        const char* body;
        const char* errors;
    } cases[] = {{"A = NULL", "2: Lexical error before: NULL\n3: ::= is expected after:\n"},
                 {"v ::= 5", "2: ::= is not allowed after:\n"},
                 {"v INTEGER 5", "2: number is not allowed after:\n"},
                 {"A ::= 5", "2: number is not allowed after:\n"},
                 {"A B ::= c", "2: { is expected after:\n3: END is not allowed after:\n"},
                 {"A {} ::= NULL", "2: } is not allowed after:\n"},
                 {"A {x} ::= NULL", "2: Defined type syntax\n2: : is expected after:\n"},
                 {"A {NULL} ::= NULL", "2: : is expected after:\n"},
                 {"A {X ::= NULL", "2: : is expected after:\n"},
                 {"A | ::= NULL", "2: | is not allowed after:\n"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.body);
        parseBody(row.body);
        EXPECT_EQ(errors(), row.errors);
    }
}

} // namespace
} // namespace orvo
