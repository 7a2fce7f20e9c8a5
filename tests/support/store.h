#pragma once

#include <gtest/gtest.h>

#include "tree/orvorec.h"

namespace orvo {

/// Two empty modules, the first of them current.
class StoreTest : public testing::Test {
  protected:
    StoreTest() {
        resetStore();
        changeCMP(&a);
    }
    ~StoreTest() override { resetStore(); }

    ModuleRec a, b;
};

} // namespace orvo
