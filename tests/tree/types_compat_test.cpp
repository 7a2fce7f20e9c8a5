#include "tree/types_compat.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "support/store.h"
#include "tree/types.h"
#include "tree/values.h"

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
    /// A reference of module a to a type of module b.
    TNodeNr referenceToB(TNodeNr target) {
        if (a.modRefs.refs.empty()) {
            ModRef& ref = *a.modRefs.refs.emplace_back(std::make_unique<ModRef>());
            ref.number = 2;
            ref.module = &b;
            a.modRefs.modRefFirst = a.modRefs.modRefLast = &ref;
            a.modRefs.byNumber[2] = a.modRefs.byModule[&b] = &ref;
        }
        const TNodeNr nr = type(TYP_SYNONYM);
        tNode.refMod = 2;
        tNode.ref = target.nr;
        return nr;
    }
    TNodeNr inB(uint8_t code, std::string_view name = {}) {
        const CurrentModule other(&b);
        return type(code, name);
    }
};

TEST_F(Compatibility, EqualCodesOfUnstructuredTypesAreCompatible) {
    for (const uint8_t code :
         {TYP_BOOLEAN, TYP_INTEGER, TYP_REAL, TYP_BITSTR, TYP_OCTSTR, TYP_NULL, TYP_ANY,
          TYP_EMB_PDV, TYP_OBJID, TYP_NUMSTR, TYP_CHASTR, TYP_GENTIME, TYP_UTCTIME,
          TYP_EXTERNAL_1990, TYP_OBJDESCR, TYP_OPEN, TYP_TYPE_ID}) {
        SCOPED_TRACE(typeArr[code].name);
        EXPECT_TRUE(compatible(code, code));
    }
    for (const uint8_t code : {TYP_ENUM, TYP_SEQ, TYP_SEQOF, TYP_SET, TYP_SETOF, TYP_CHOICE,
                               TYP_CLASS, TYP_INSTANCE_OF, TYP_SYNONYM, TYP_FIELDLIST, TYP_NONE}) {
        SCOPED_TRACE(typeArr[code].name);
        EXPECT_FALSE(compatible(code, code));
    }
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

TEST_F(Compatibility, AStructureIsCompatibleWithItselfThroughReferences) {
    const TNodeNr seq = inB(TYP_SEQ), twin = inB(TYP_SEQ);
    const TNodeNr one = referenceToB(seq), two = referenceToB(seq), other = referenceToB(twin);
    const TNodeNr current = type(TYP_NULL);
    EXPECT_TRUE(typeCompatible(&a, one, &a, two));
    EXPECT_TRUE(typeCompatible(&b, seq, &a, one));
    EXPECT_FALSE(typeCompatible(&a, one, &a, other));
    EXPECT_FALSE(typeCompatible(&a, one, &a, TNodeNr{}));
    EXPECT_EQ(currentRec<KIND_TNODE>(), (TNodeRef{&a, current}));
}

TEST_F(Compatibility, InstancesAreCompatibleWhenTheirClassIsTheSame) {
    const TNodeNr cls = inB(TYP_CLASS);
    const auto instanceOf = [&](int32_t refMod, uint32_t ref) {
        const TNodeNr nr = type(TYP_INSTANCE_OF);
        tNode.refMod = refMod;
        tNode.ref = ref;
        return nr;
    };
    referenceToB(cls);
    const TNodeNr one = instanceOf(2, cls.nr), two = instanceOf(2, cls.nr);
    const TNodeNr own = instanceOf(1, cls.nr), none = instanceOf(2, 0);
    EXPECT_TRUE(typeCompatible(&a, one, &a, two));
    EXPECT_FALSE(typeCompatible(&a, one, &a, own));
    EXPECT_FALSE(typeCompatible(&a, none, &a, none));
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

// ---- what a constraint applies to ---------------------------------------------------------------

class Constrained : public Compatibility {
  protected:
    /// A list of components; the last argument's chain ends it.
    TNodeNr list(std::initializer_list<std::pair<uint8_t, int32_t>> entries) {
        TNodeNr first;
        uint32_t left = static_cast<uint32_t>(entries.size());
        for (const auto& [code, status] : entries) {
            const TNodeNr nr = type(code);
            tNode.compStatus = status;
            tNode.next = --left != 0 ? nr.nr + 1 : 0;
            if (!first) first = nr;
        }
        return first;
    }
    void constrain(uint32_t typeMod, uint32_t nr) { addSubArc(typeMod, TNodeNr{nr}, 1); }
    /// Place of the constrained component; minus the length of the list on a miss.
    int place(TNodeNr first) {
        uint32_t count = 0;
        const bool found = findTypeCompByConstr(&a, first, &count);
        if (found) {
            EXPECT_EQ(currentRec<KIND_TNODE>().nr.nr, subRec.typeNr);
        }
        return found ? static_cast<int>(count) : -static_cast<int>(count);
    }
};

TEST_F(Constrained, ComponentsCountWithWhatComponentsOfBringsIn) {
    constexpr int32_t plain = TCS_MANDATORY;
    const TNodeNr inner = [&] {
        const CurrentModule other(&b);
        return list({{TYP_NULL, plain},
                     {TYP_REAL, plain},
                     {TYP_EXTENSION_MARKER, plain},
                     {TYP_NULL, plain}});
    }();
    const TNodeNr seq = inB(TYP_SEQ);
    makePending(&b, seq);
    tNode.ref = inner.nr;
    writeCurrent<KIND_TNODE>();
    const TNodeNr first = list({{TYP_NULL, plain}, {TYP_SYNONYM, TCS_COMPOF}, {TYP_REAL, plain}});
    referenceToB(seq); // makes reference 2
    makePending(&a, TNodeNr{first.nr + 1});
    tNode.refMod = 2;
    tNode.ref = seq.nr;
    const TNodeNr current = type(TYP_NULL);

    constrain(1, first.nr);
    EXPECT_EQ(place(first), 1);
    constrain(2, inner.nr + 1);
    EXPECT_EQ(place(first), 3);
    constrain(1, first.nr + 2);
    EXPECT_EQ(place(first), 4);
    readRec(&a, current);
    constrain(1, inner.nr + 100); // a component of no list
    EXPECT_EQ(place(first), -4);
    constrain(2, inner.nr + 3); // behind the extension marker
    EXPECT_EQ(place(first), -4);
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, current);
    uint32_t count = 10;
    constrain(1, first.nr);
    EXPECT_TRUE(findTypeCompByConstr(&a, first, &count));
    EXPECT_EQ(count, 11U);
    EXPECT_TRUE(findTypeCompByConstr(&a, first, nullptr));
}

TEST_F(Constrained, ValuesAreFoundByTheirGoverningType) {
    const TNodeNr types = list({{TYP_NULL, 0}, {TYP_REAL, 0}, {TYP_NULL, 0}});
    VNodeNr first;
    for (uint32_t i = 0; i < 100; ++i) { // long enough to be indexed
        const VNodeNr nr = addValArc(nullptr, 1);
        vNode.govTypeMod = REF_OWN;
        vNode.govType = types.nr + (i == 98 ? 1U : 0U);
        vNode.next = i < 99 ? nr.nr + 1 : 0;
        if (!first) first = nr;
    }
    constrain(1, types.nr + 1);
    EXPECT_TRUE(findValueCompByConstr(&a, first));
    EXPECT_EQ(currentRec<KIND_VNODE>().nr.nr, first.nr + 98);
    constrain(1, types.nr);
    EXPECT_TRUE(findValueCompByConstr(&a, first));
    EXPECT_EQ(currentRec<KIND_VNODE>().nr, first);
    constrain(1, types.nr + 2);
    EXPECT_FALSE(findValueCompByConstr(&a, first));
    EXPECT_EQ(currentRec<KIND_VNODE>().nr, first);
    constrain(7, types.nr); // of a module that does not exist
    EXPECT_FALSE(findValueCompByConstr(&a, first));
}

} // namespace
} // namespace orvo
