#include "base/helper_thread.h"

#include <gtest/gtest.h>

namespace {

int gBegun = 0;

TEST(HelperThread, BeginsAsTheProgramSays) {
    HelperBegins(); // nobody has said anything
    EXPECT_EQ(gBegun, 0);
    SetHelperBegins([] { ++gBegun; });
    HelperBegins();
    HelperBegins();
    EXPECT_EQ(gBegun, 2);
    SetHelperBegins(nullptr);
    HelperBegins();
    EXPECT_EQ(gBegun, 2);
}

} // namespace
