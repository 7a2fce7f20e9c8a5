#include "support/pass1.h"
#include "symtab/orvosym.h"

namespace orvo {
namespace {

class NamedValues : public Pass1Test {};

struct NamedCase {
    const char* type;
    const char* shape;
};

TEST_F(NamedValues, NumbersBitsAndItemsAreKept) {
    constexpr NamedCase cases[] = {
        {"INTEGER { one(1), minus(-1), v(v), w(N.w) }", "INTEGER{one=1, minus=-1, v=v, w=M2.w}"},
        {"INTEGER { big(9223372036854775806), small(-9223372036854775806) } (one)",
         "INTEGER{big=9223372036854775806, small=-9223372036854775806} :: ( one )"},
        {"BIT STRING { a(0), b(5) }", "BITSTR{a=0, b=5}"},
        {"ENUMERATED { a, b(3), c(-2), ..., d(v) }", "ENUM{a, b=3, c=-2, ..., d=v}"},
        {"ENUMERATED { a, ... }", "ENUM{a, ...}"}};
    for (const NamedCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type), row.shape);
    }
}

TEST_F(NamedValues, NodesFollowOneAnotherAndBelongToTheType) {
    parseBody("T ::= ENUMERATED { a(v), ..., b }\nU ::= BIT STRING { c(0) }");
    const TNodeNr type = head("T");
    const VNodeNr first{typeAt(type).namedVals};
    for (uint32_t place = 0; place < 3; ++place) {
        const VNode item = valueAt(VNodeNr{first.nr + place});
        EXPECT_EQ(item.govType, type.nr);
        EXPECT_EQ(item.govTypeMod, 1U);
        EXPECT_EQ(item.valStatus, VST_NAMED_NUMBER);
        EXPECT_EQ(item.next, place < 2 ? first.nr + place + 1 : 0);
    }
    EXPECT_EQ(valueAt(VNodeNr{typeAt(head("U")).namedVals}).valStatus, VST_NAMED_BIT);
}

TEST_F(NamedValues, NamesCanBeLookedUpThroughTheAnonymousSymbol) {
    parseBody("T ::= INTEGER { a(1), b(2) }");
    const VNodeNr first{typeAt(head("T")).namedVals};
    const STabNr names = findSymbTabRecByNr(module, REF_OWN, minus(first.nr));
    EXPECT_EQ(symAt(names).name, 0);
    const STabRec& second = symAt(STabNr{symAt(STabNr{symAt(names).formals}).next});
    EXPECT_EQ(getStri(module, second.name), "b");
    EXPECT_EQ(second.node, minus(first.nr + 1));
}

TEST_F(NamedValues, BraceOfAValueIsNoList) {
    constexpr NamedCase cases[] = {
        {"INTEGER { 5 }", "2: END is expected after:\n"},
        {"INTEGER { a(1), }", "2: valueid is expected after:\n"},
        {"INTEGER { a, b }", "2: ( is expected after:\n2: ( is expected after:\n"},
        {"BIT STRING { a(0), b() }", "2: ) is not allowed after:\n"},
        {"ENUMERATED { }", "2: valueid is expected after:\n"},
        {"ENUMERATED { ..., a }", "2: valueid is expected after:\n"},
        {"ENUMERATED { a , b ( }", "2: } is not allowed after:\n"},
        {"ENUMERATED { a(- ) }", "2: number is expected after:\n"}};
    for (const NamedCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type), row.shape);
    }
}

TEST_F(NamedValues, NameUsedTwiceIsReported) {
    parseBody("T ::= ENUMERATED { a, b,\na }");
    EXPECT_EQ(errors(), "3: Symbol twice in symbol list: a\n");
}

} // namespace
} // namespace orvo
