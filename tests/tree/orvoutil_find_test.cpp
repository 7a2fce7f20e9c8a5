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

} // namespace
} // namespace orvo
