#include "parser/iso8824.h"

#include "driver/orvofil.h"
#include "support/pass1.h"
#include "symtab/orvosym.h"

namespace orvo {
namespace {

class BuiltInModule : public Pass1Test {
  protected:
    BuiltInModule() {
        parseISO8824();
        flushRecs(-1);
    }
    [[nodiscard]] std::string nameAt(uint32_t nr) const {
        return std::string(getStri(module, typeAt(TNodeNr{nr}).name));
    }
};

TEST_F(BuiltInModule, CompilesWithoutAWord) {
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(module->parseState, PARSE_OK);
    EXPECT_EQ(module->moduleName, "ISO8824");
    EXPECT_EQ(module->tagDefault, 2);
    EXPECT_EQ(iso8824State.iso8824Module.find('\n'), std::string::npos);
}

TEST_F(BuiltInModule, NodesOfTheKindsAreSynonymsOfHiddenDefinitions) {
    constexpr struct {
        uint32_t kind;
        const char* name;
        const char* hidden;
        const char* definition;
    } kinds[] = {
        {TYP_EMB_PDV, "EMBEDDED PDV", "__EMBEDDED_PDV", "[U11/i] SEQ{identification"},
        {TYP_NUMSTR, "NumericString", "__NumericString", "[U18/i] SYNONYM(PrintableString) :: ( F"},
        {TYP_PRISTR, "PrintableString", "__PrintableString", "[U19/i] UNISTR :: ( FROM ( \"A\" | "},
        {TYP_VISSTR, "VisibleString", "__VisibleString", "[U26/i] UNISTR"},
        {TYP_GENTIME, "GeneralizedTime", "__GeneralizedTime", "[U24/i] SYNONYM(VisibleString)"},
        {TYP_EXTERNAL_1990, "EXTERNAL", "__EXTERNAL_1990", "[U8/i] SEQ{direct_reference? OBJID"},
        {TYP_EXTERNAL_1994, "EXTERNAL", "__EXTERNAL_1994", "[U8/i] SEQ{identification"},
        {TYP_INSTANCE_OF, "InstanceOfType", "__InstanceOfType", "[U8/i] SEQ{type_id FIELDLIST"},
        {TYP_TYPE_ID, "TYPE_IDENTIFIER", "__TYPE_IDENTIFIER", "CLASS{id OBJID, Type OPEN}"},
        {TYP_ABSTR_STX, "ABSTRACT_SYNTAX", "__ABSTRACT_SYNTAX", "CLASS{id OBJID, Type OPEN, prop"}};
    for (const auto& row : kinds) {
        SCOPED_TRACE(row.hidden);
        const TNode node = typeAt(TNodeNr{row.kind});
        EXPECT_EQ(nameAt(row.kind), row.name);
        EXPECT_EQ(node.typeCode, TYP_SYNONYM);
        EXPECT_EQ(node.refMod, REF_OWN);
        const STabNr symbol = findSymbol(module->symTab, signedWord(node.ref));
        ASSERT_TRUE(symbol);
        EXPECT_EQ(getStri(module, symAt(symbol).name), row.hidden);
        const TNodeNr definition{static_cast<uint32_t>(symAt(symbol).node)};
        EXPECT_EQ(definition, head(row.hidden));
        EXPECT_EQ(describe(definition).substr(0, std::string_view(row.definition).size()),
                  row.definition);
    }
}

TEST_F(BuiltInModule, ChainBeginsWithTheKindsInAscendingOrder) {
    constexpr uint32_t kinds[] = {13, 15, 16, 17, 18, 19, 20, 21, 22, 23,
                                  25, 26, 27, 28, 29, 30, 31, 38, 39};
    TNodeNr nr = module->firstTypeHead;
    for (const uint32_t kind : kinds) {
        EXPECT_EQ(nr.nr, kind);
        nr = TNodeNr{typeAt(nr).next};
    }
    EXPECT_EQ(nr.nr, 42U);
    EXPECT_EQ(nameAt(42), "__ObjectDescriptor");
    EXPECT_EQ(typeAt(TNodeNr{TYP_INTEGER}).typeCode, TYP_NONE);
}

TEST_F(BuiltInModule, NamesOfTheTextLeadToTheDefinitionsToo) {
    const auto stri = static_cast<int32_t>(findStri(module, "VisibleString").nr);
    const STabNr symbol = findSymbol(module->symTab, stri);
    EXPECT_EQ(symAt(symbol).node, static_cast<int32_t>(head("__VisibleString").nr));
}

} // namespace
} // namespace orvo
