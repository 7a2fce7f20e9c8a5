#include "parser/parser_oid.h"

#include "support/pass1.h"

namespace orvo {
namespace {

class ObjectIds : public Pass1Test {
  protected:
    /// Components of the value of an object identifier: `name(` of a name-and-number form, then a
    /// number (with ":" and the class of a well-known name) or a reference.
    std::string components(VNodeNr value) {
        std::string text;
        for (VNodeNr nr{valueAt(value).ref}; nr;) {
            const VNode node = valueAt(nr);
            text += text.empty() ? "" : " ";
            if (node.name != 0) text += std::string(getStri(module, node.name)) + "(";
            text += describe(nr);
            if (node.valStatus != VST_PLAIN) text += ":" + std::to_string(node.valStatus);
            nr = VNodeNr{node.next};
        }
        return text;
    }
    std::string moduleId(const std::string& id) {
        parseSource("M " + id + " DEFINITIONS ::= BEGIN END");
        return module->errors.empty() ? components(module->objIdValueNr) : errors();
    }
};

TEST_F(ObjectIds, ComponentsAreNumbersNamesAndReferences) {
    constexpr struct {
        const char* id;
        const char* components;
    } cases[] = {{"{ iso member-body(2) 752 }", "1:5 member_body(2 752"},
                 {"{ itu-t recommendation x 680 }", "0:5 0:6 24:8 680"},
                 {"{ joint-iso-itu-t registration-authority }", "2:5 1:7"},
                 {"{ p 5 }", "p 5"},
                 {"{ iso x y z }", "1:5 x 25:8 z"},
                 {"{ a(v) b(N.w) N.q }", "a(v b(M2.w M2.q"},
                 {"{ iso(1) 9223372036854775806 }", "iso(1 9223372036854775806"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.id);
        EXPECT_EQ(moduleId(row.id), row.components);
    }
}

TEST_F(ObjectIds, ModuleIdentifierIsAValueOfTypeObjectIdentifier) {
    moduleId("{ iso 5 }");
    const VNode value = valueAt(module->objIdValueNr);
    EXPECT_EQ(value.valCode, TYP_OBJID);
    EXPECT_EQ(value.govTypeMod, 1U);
    EXPECT_EQ(typeAt(TNodeNr{value.govType}).typeCode, TYP_OBJID);
}

TEST_F(ObjectIds, MistakesAreReportedAndEnd) {
    constexpr struct {
        const char* id;
        const char* errors;
    } cases[] = {{"{ }", "1: } is not allowed after:\n"},
                 {"{ iso T }", "1: valueid is expected after:\n"},
                 {"{ iso(1 }", "1: ) is expected after:\n"},
                 {"{ iso, 5 }", "1: } is expected after:\n"},
                 {"{ iso(-1) }", "1: - is not allowed after:\n"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.id);
        EXPECT_EQ(moduleId(row.id), row.errors);
    }
}

TEST_F(ObjectIds, ConversionLeavesOtherTokensAlone) {
    Token token;
    token.code = TOK_VALUEID;
    token.setStri(minus(putStri(module, "iso").nr));
    Token same = token;
    convertObjIdComp(module, same, TOK_LPAREN, 1);
    EXPECT_EQ(same.code, TOK_COMPONENTID);
    EXPECT_EQ(same.stri(), token.stri());
    token.code = TOK_TYPEID;
    convertObjIdComp(module, token, TOK_LPAREN, 1);
    EXPECT_EQ(token.code, TOK_TYPEID);
    EXPECT_FALSE(namedObjIdArc("A", 3));
    EXPECT_FALSE(namedObjIdArc("", 3));
    EXPECT_FALSE(namedObjIdArc("iso_", 1));
}

} // namespace
} // namespace orvo
