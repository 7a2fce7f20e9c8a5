#include "tree/types_compat.h"

#include <gtest/gtest.h>

#include <string>

#include "support/store.h"
#include "tree/types.h"

namespace orvo {
namespace {

/// A type of a code in the current module; references and components are filled in by the test.
TNodeNr type(uint8_t code, std::string_view name = {}) {
    const TNodeNr nr = addTypeArc(nullptr, 1);
    setTypeNode(code);
    tNode.ref = 0;
    if (!name.empty()) tNode.name = static_cast<int32_t>(putStri(cMP, name).nr);
    return nr;
}

class Compatibility : public StoreTest {
  protected:
    bool compatible(uint8_t codeA, uint8_t codeB) {
        return typeCompatible(&a, type(codeA), &a, type(codeB));
    }
    TNodeNr inB(uint8_t code, std::string_view name = {}) {
        const CurrentModule other(&b);
        return type(code, name);
    }
};

TEST_F(Compatibility, EqualCodesOfUnstructuredTypesAreCompatible) {
    for (const uint8_t code : {TYP_BOOLEAN, TYP_BITSTR, TYP_ANY, TYP_OBJID, TYP_NUMSTR, TYP_UTCTIME,
                               TYP_EXTERNAL_1990, TYP_OPEN, TYP_TYPE_ID})
        EXPECT_TRUE(compatible(code, code)) << typeArr[code].name;
    for (const uint8_t code : {TYP_ENUM, TYP_SEQ, TYP_SETOF, TYP_CHOICE, TYP_CLASS, TYP_NONE})
        EXPECT_FALSE(compatible(code, code)) << typeArr[code].name;
}

TEST_F(Compatibility, CodesThatDifferAreMostlyNot) {
    constexpr struct {
        uint8_t codeA, codeB;
        bool compatible;
    } cases[] = {{TYP_ENUM, TYP_INTEGER, true},    {TYP_INTEGER, TYP_ENUM, false},
                 {TYP_IA5STR, TYP_UTCTIME, true},  {TYP_GENTIME, TYP_VISSTR, true},
                 {TYP_OBJDESCR, TYP_GRASTR, true}, {TYP_OCTSTR, TYP_IA5STR, false},
                 {TYP_EMB_PDV, TYP_SEQ, false},    {TYP_EXTERNAL_1990, TYP_EXTERNAL_1994, false},
                 {TYP_TYPE_ID, TYP_CLASS, false},  {TYP_OPEN, TYP_INTEGER, false}};
    for (const auto& row : cases) {
        SCOPED_TRACE(std::string(typeArr[row.codeA].name) + " " + typeArr[row.codeB].name);
        EXPECT_EQ(compatible(row.codeA, row.codeB), row.compatible);
    }
}

TEST_F(Compatibility, BuiltinTypesAreCompatibleWithTheirDefinition) {
    constexpr struct {
        uint8_t code, partner;
        const char* definition;
        bool compatible;
    } cases[] = {{TYP_EMB_PDV, TYP_SEQ, "__EMBEDDED_PDV", true},
                 {TYP_EMB_PDV, TYP_SEQ, "__CHARACTER_STRING", false},
                 {TYP_EMB_PDV, TYP_SET, "__EMBEDDED_PDV", false},
                 {TYP_CHASTR, TYP_SEQ, "__CHARACTER_STRING", true},
                 {TYP_EXTERNAL_1990, TYP_SEQ, "__EXTERNAL_1990", true},
                 {TYP_EXTERNAL_1990, TYP_SEQ, "__EXTERNAL_1994", false},
                 {TYP_EXTERNAL_1994, TYP_SEQ, "__EXTERNAL_1994", true},
                 {TYP_TYPE_ID, TYP_CLASS, "__TYPE_IDENTIFIER", true},
                 {TYP_TYPE_ID, TYP_CLASS, "__ABSTRACT_SYNTAX", false},
                 {TYP_ABSTR_STX, TYP_CLASS, "__TYPE_IDENTIFIER", true},
                 {TYP_ABSTR_STX, TYP_CLASS, "__ABSTRACT_SYNTAX", true}};
    for (const auto& row : cases) {
        SCOPED_TRACE(std::string(typeArr[row.code].name) + " " + row.definition);
        const TNodeNr builtin = type(row.code), definition = inB(row.partner, row.definition);
        run.iso8824MP = &b;
        EXPECT_EQ(typeCompatible(&a, builtin, &b, definition), row.compatible);
        EXPECT_EQ(typeCompatible(&b, definition, &a, builtin), row.compatible);
        run.iso8824MP = &a; // a type of the same name in another module is not it
        EXPECT_FALSE(typeCompatible(&a, builtin, &b, definition));
    }
}

} // namespace
} // namespace orvo
