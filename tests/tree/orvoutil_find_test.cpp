#include "tree/orvoutil_find.h"

#include <gtest/gtest.h>

#include <string>

#include "support/nodes.h"
#include "support/store.h"

namespace orvo {
namespace {

using Find = StoreTest;

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

} // namespace
} // namespace orvo
