#include "tree/orvoutil_find.h"

#include <gtest/gtest.h>

#include <string>

#include "support/nodes.h"
#include "support/store.h"

namespace orvo {
namespace {

class Find : public StoreTest {
  protected:
    TNodeNr comp(std::string_view name, uint8_t code = TYP_NULL) {
        return newType(code, [&] { tNode.name = nameOf(name); });
    }
    /// A COMPONENTS OF entry for a type.
    TNodeNr compOf(TNodeNr type, int32_t refMod = REF_OWN) {
        return newType(TYP_SYNONYM, [&] {
            tNode.compStatus = TCS_COMPOF;
            tNode.refMod = refMod;
            tNode.ref = type.nr;
        });
    }
    TNodeNr seq(TNodeNr first) {
        return newType(TYP_SEQ, [&] { tNode.ref = first.nr; });
    }
    /// Place of a component in a flattened list, and the record found.
    uint32_t place(TNodeNr first, std::string_view name) {
        uint32_t position = 99;
        const bool found = findTypeCompById(&a, first, name, &position);
        EXPECT_EQ(found, position != 0);
        return position;
    }
    std::string_view atPlace(TNodeNr first, uint32_t position) {
        if (!findTypeCompByInd(&a, first, position)) return "-";
        return tNode.name == 0 ? "" : getStri(recState.currTPtr[KIND_TNODE], tNode.name);
    }
};

TEST_F(Find, IncludedComponentsCountWhereTheirEntryStands) {
    const TNodeNr inner =
        seq(chain({comp("b"), comp("c"), comp("", TYP_EXTENSION_MARKER), comp("x")}));
    const TNodeNr list =
        chain({comp("a"), compOf(newTypeRef(newTypeRef(inner))), comp("d"), comp("b")});
    constexpr struct {
        const char* name;
        uint32_t place;
    } cases[] = {{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}, {"x", 0}, {"e", 0}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(place(list, row.name), row.place);
        if (row.place == 0) continue;
        EXPECT_EQ(getStri(&a, tNode.name), row.name);
        EXPECT_EQ(atPlace(list, row.place), row.name);
    }
    EXPECT_EQ(atPlace(list, 0), "-");
    uint32_t left = 7;
    EXPECT_FALSE(findByInd(&a, list, left));
    EXPECT_EQ(left, 2U);
}

TEST_F(Find, ListsOfAnotherModuleAreSearchedByTheirOwnNames) {
    addModRef(a, b);
    TNodeNr inner;
    {
        const CurrentModule other(&b);
        putStri(&b, "other"); // numbers of the two modules differ
        inner = seq(chain({comp("c")}));
    }
    const TNodeNr list = chain({comp("a"), compOf(inner, 2)});
    EXPECT_EQ(place(list, "c"), 2U);
    EXPECT_EQ(recState.currTPtr[KIND_TNODE], &b);
}

TEST_F(Find, ComponentsOfExtensionAdditionGroupsAreComponents) {
    const TNodeNr group = newType(TYP_EXTADDGRP, [&] {
        tNode.compStatus = TCS_EXTADDGRP;
        tNode.ref = 1000;
    });
    const TNodeNr inGroup = chain({comp("e"), comp("f")});
    readRec(&a, group);
    tNode.ref = inGroup.nr;
    writeCurrent<KIND_TNODE>();
    const TNodeNr list = chain({comp("a"), comp("", TYP_EXTENSION_MARKER), group, comp("g")});
    EXPECT_EQ(place(list, "f"), 4U);
    EXPECT_EQ(place(list, "g"), 5U);
    EXPECT_EQ(atPlace(list, 2), "");
}

TEST_F(Find, ListsThatIncludeOthersTwiceCostOneWalkPerList) {
    TNodeNr type = seq(chain({comp("z")}));
    TNodeNr list;
    for (int level = 0; level < 60; ++level) {
        list = chain({compOf(type), compOf(type), comp("l" + std::to_string(level))});
        type = seq(list);
    }
    EXPECT_EQ(place(list, "z"), 1U);
    EXPECT_EQ(place(list, "l0"), 3U);
    EXPECT_EQ(place(list, "l1"), 7U);
    EXPECT_EQ(atPlace(list, 4), "z");
    EXPECT_EQ(place(list, "none"), 0U);
}

TEST_F(Find, AListThatIncludesItselfEnds) {
    const TNodeNr type = seq({});
    const TNodeNr list = chain({comp("a"), compOf(type), comp("b")});
    readRec(&a, type);
    tNode.ref = list.nr;
    writeCurrent<KIND_TNODE>();
    EXPECT_EQ(place(list, "b"), 2U);
    EXPECT_EQ(place(list, "c"), 0U);
}

TEST_F(Find, LongListsFindTheFirstOfANameAndGrow) {
    VNodeNr first, last;
    const auto append = [&](std::string_view name) {
        const VNodeNr nr = component(newNumber(1), name, {});
        if (last) {
            readRec(&a, last);
            vNode.next = nr.nr;
            writeCurrent<KIND_VNODE>();
        } else {
            first = nr;
        }
        last = nr;
        return nr;
    };
    for (int i = 0; i < 100; ++i) append("v" + std::to_string(i));
    const VNodeNr twin = append("twin");
    EXPECT_FALSE(findValueCompById(&a, first, "late"));
    append("twin");
    const VNodeNr late = append("late");
    ASSERT_TRUE(findValueCompById(&a, first, "twin"));
    EXPECT_EQ(currentRec<KIND_VNODE>().nr, twin);
    ASSERT_TRUE(findValueCompById(&a, first, "late"));
    EXPECT_EQ(currentRec<KIND_VNODE>().nr, late);
    a.nextRecNr[KIND_VNODE] = late.nr;
    readRec(&a, VNodeNr{late.nr - 1});
    vNode.next = 0;
    writeCurrent<KIND_VNODE>();
    forgetTakenBack(&a);
    EXPECT_FALSE(findValueCompById(&a, first, "late"));
}

TEST_F(Find, ChainsOfReferencesAreWalkedToTheirEnd) {
    const TNodeNr end = newType(TYP_INTEGER);
    TNodeNr type = end;
    for (int i = 0; i < 100000; ++i) {
        type = newTypeRef(type);
        if (i == 50) readRec(&a, type);
        if (i == 50) tNode.syntax = 1, writeCurrent<KIND_TNODE>(); // instantiates
        if (i % 999 != 0) continue;
        NodeContext instance;
        skipTypesCatchInst(false, &instance);
        ASSERT_EQ(currentRec<KIND_TNODE>().nr, end) << i;
        ASSERT_EQ(instance.nr != 0, i >= 50);
    }
    readRec(&a, type);
    skipTypes(true);
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, end);
}

TEST_F(Find, WalksEndAtUnresolvedReferencesAndInCycles) {
    const TNodeNr unresolved = newTypeRef({}, REF_UNRESOLVED);
    readRec(&a, newTypeRef(unresolved));
    skipTypes(true);
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, unresolved);
    const VNodeNr loop = newValueRef({1});
    readRec(&a, loop);
    vNode.ref = newValueRef(loop).nr;
    writeRec(&a, loop);
    skipValues(true);
    EXPECT_EQ(vNode.valCode, TYP_SYNONYM);
}

/// A field name chain whose only entry is solved: a type, or minus a value.
int32_t solvedChain(int32_t designated) {
    const SNodeNr entry = addSyntaxArc(1);
    sNode.module = REF_OWN;
    sNode.value = designated;
    writeCurrent<KIND_SNODE>();
    return static_cast<int32_t>(entry.nr);
}

TEST_F(Find, ClassFieldTypesAreWalkedOnlyWhenAskedFor) {
    const TNodeNr field = newType(TYP_INTEGER, [&] { tNode.name = nameOf("id"); });
    const TNodeNr theClass = newType(TYP_CLASS, [&] { tNode.ref = field.nr; });
    const TNodeNr fieldType = newType(TYP_FIELDLIST, [&] {
        tNode.name = nameOf("component");
        tNode.ref = theClass.nr;
        tNode.syntax = solvedChain(static_cast<int32_t>(field.nr));
    });
    readRec(&a, fieldType);
    skipTypes(false);
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, fieldType);
    EXPECT_TRUE(isObjClassFieldTypeTNode());
    EXPECT_TRUE(isTypeTNode());
    EXPECT_FALSE(isOpenObjClassFieldTypeTNode());
    skipTypes(true);
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, field);
    readRec(&a, fieldType);
    getClassOfObjClassFieldTypeTNode();
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, theClass);
    EXPECT_TRUE(isClassTNode());
}

TEST_F(Find, InformationFromAnObjectLeadsToTheTypeOfItsSetting) {
    const TNodeNr type = newType(TYP_BOOLEAN);
    const VNodeNr setting = newValue(TYP_OPEN, [&] {
        vNode.refMod = REF_FORMAL;
        vNode.ref = type.nr;
    });
    readRec(&a, newType(TYP_FIELDLIST, [&] {
        tNode.refMod = REF_OBJECT;
        tNode.syntax = solvedChain(minus(setting.nr));
    }));
    skipTypes(false);
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, type);
    const VNodeNr number = newNumber(5);
    readRec(&a, newValue(TYP_FIELDLIST, [&] { vNode.deferred = solvedChain(minus(number.nr)); }));
    skipValues(false);
    EXPECT_EQ(vNode.valCode, TYP_FIELDLIST);
    skipValues(true);
    EXPECT_EQ(currentRec<KIND_VNODE>().nr, number);
}

TEST_F(Find, ObjectClassFieldTypesStandOnlyWhereTypesCan) {
    constexpr struct {
        const char* what;
        int32_t compStatus;
        bool nameNegative;
        uint32_t flags;
        bool yes;
    } cases[] = {{"component", TCS_MANDATORY, true, 0, true},
                 {"optional component", -TCS_OPTIONAL, true, 0, true},
                 {"variable-type field", TCS_MANDATORY, true, NF_VARIABLE, false},
                 {"value set field", TCS_OPTIONAL, false, NF_SET, true},
                 {"type field", TCS_MANDATORY, false, 0, false},
                 {"alternative", TCS_CHOICE, false, 0, true},
                 {"element", TCS_MULTIPLE, false, 0, true},
                 {"type assignment", TCS_HEADER, false, 0, true},
                 {"value's type", TCS_HEADER, true, 0, false},
                 {"formal parameter", TCS_FORMAL, true, 0, false}};
    const TNodeNr theClass = newType(TYP_CLASS);
    const int32_t name = static_cast<int32_t>(putStri(&a, "n").nr);
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        readRec(&a, newType(TYP_FIELDLIST, [&] {
            tNode.name = row.nameNegative ? -name : name;
            tNode.compStatus = row.compStatus;
            tNode.nodeFlags = row.flags;
            tNode.ref = theClass.nr;
        }));
        EXPECT_EQ(isObjClassFieldTypeTNode(), row.yes);
    }
}

TEST_F(Find, SetsAreClassifiedByWhatTheyHold) {
    const TNodeNr theClass = newType(TYP_CLASS);
    const auto asSet = [] { tNode.nodeFlags |= NF_SET; };
    const TNodeNr objects = newTypeRef(theClass), values = newTypeRef(newType(TYP_INTEGER));
    readRec(&a, objects);
    asSet();
    EXPECT_TRUE(isObjSetTNode());
    readRec(&a, values);
    asSet();
    EXPECT_TRUE(isValueSetTNode());
    EXPECT_FALSE(isObjSetTNode());
    readRec(&a, theClass);
    EXPECT_TRUE(isClassTNode());
    EXPECT_FALSE(isTypeTNode());
    readRec(&a, newValueRef(newStru(TYP_CLASS, {})));
    EXPECT_TRUE(isObjVNode());
    EXPECT_FALSE(isValueVNode());
}

TEST_F(Find, AVariableTypeFieldIsGovernedByTheSettingOfItsTypeField) {
    const TNodeNr defaultType = newType(TYP_NULL), givenType = newType(TYP_BOOLEAN);
    const VNodeNr typeDefault = newValue(TYP_OPEN, [&] {
        vNode.refMod = REF_FORMAL;
        vNode.ref = defaultType.nr;
    });
    const TNodeNr typeField = newType(TYP_OPEN, [&] {
        tNode.name = static_cast<int32_t>(putStri(&a, "Type").nr);
        tNode.defaultVal = typeDefault.nr;
    });
    const TNodeNr valueField = newType(TYP_FIELDLIST, [&] {
        tNode.nodeFlags = NF_VARIABLE;
        tNode.syntax = solvedChain(static_cast<int32_t>(typeField.nr));
    });
    const auto setting = [&] { return component(newNumber(1), "val", valueField); };
    const VNodeNr alone = setting();
    readRec(&a, alone);
    ASSERT_TRUE(readGovTNodeForFieldVNode(&a, alone));
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, defaultType);
    EXPECT_EQ(currentRec<KIND_VNODE>().nr, alone);
    const VNodeNr typeSetting = newValue(TYP_OPEN, [&] {
        vNode.name = static_cast<int32_t>(putStri(&a, "Type").nr);
        vNode.refMod = REF_FORMAL;
        vNode.ref = givenType.nr;
    });
    const VNodeNr value = setting();
    const VNodeNr settings = chain({typeSetting, value});
    readRec(&a, value);
    ASSERT_TRUE(readGovTNodeForFieldVNode(&a, settings));
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, givenType);
}

} // namespace
} // namespace orvo
