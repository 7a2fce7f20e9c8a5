// What trial parses take back.

#include "solve/solve_cur.h"

#include "support/store.h"
#include "symtab/orvosym_imp.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

class SnapShots : public StoreTest {
  protected:
    void newValues(ModuleRec* module, int count) {
        const CurrentModule inModule(module);
        for (; count != 0; --count) addValArc(nullptr, 1);
    }
    static uint32_t values(const ModuleRec& module) { return module.nextRecNr[KIND_VNODE]; }
};

TEST_F(SnapShots, TakeBackEveryModuleThatWasTouched) {
    newValues(&a, 2);
    newValues(&b, 3);
    putStri(&a, "kept");
    {
        SnapShot trial(VNodeRef{&a, VNodeNr{1}});
        newValues(&a, 1);
        newValues(&b, 1);
        putStri(&a, "gone");
        putStri16(&b, u"gone");
        EXPECT_EQ(handleImplImports(&b, &a), 1U);
        addTypeArc(nullptr, 1);
    }
    EXPECT_EQ(values(a), 3U);
    EXPECT_EQ(values(b), 4U);
    EXPECT_EQ(nextRec<KIND_TNODE>(&a).nr, 1U);
    EXPECT_EQ(nextRec<KIND_MNODE>(&b).nr, 1U);
    EXPECT_EQ(b.modRefs.modRefFirst, nullptr);
    EXPECT_EQ(findStri(&a, "gone").nr, 0U);
    EXPECT_EQ(putStri(&a, "other").nr, 2U);
    EXPECT_EQ(nextRec<KIND_STRI16>(&b).nr, 1U);
}

// A record that was there before the failing trial must not refer to numbers that are free again.
TEST_F(SnapShots, WhatWasMadeForAnOlderRecordStays) {
    const VNodeRef older{&b, VNodeNr{1}};
    newValues(&b, 1);
    newValues(&a, 1);
    {
        SnapShot outer(VNodeRef{&a, VNodeNr{1}});
        newValues(&a, 1);
        {
            SnapShot middle(VNodeRef{&a, VNodeNr{2}});
            SnapShot inner(older);
            newValues(&b, 2);
            inner.keep();
            newValues(&b, 10);
        }
        EXPECT_EQ(values(b), 4U);
        newValues(&b, 10);
    }
    EXPECT_EQ(values(a), 2U);
    EXPECT_EQ(values(b), 4U);
    SnapShot next(VNodeRef{&a, VNodeNr{1}}); // and nothing of it binds later trials
    newValues(&b, 3);
    next.restore();
    EXPECT_EQ(values(b), 4U);
}

} // namespace
} // namespace orvo
