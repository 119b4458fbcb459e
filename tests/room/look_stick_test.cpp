#include "room/look_stick.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(LookStick, RestsInItsDeadZone) {
    EXPECT_EQ(WithoutDeadZone({0.1F, -0.14F}).x, 0.0F);
    EXPECT_EQ(LookRate({0.0F, 0.18F}).y, 0.0F);
}

TEST(LookStick, ReachesItsFullRatesAtTheEnd) {
    EXPECT_NEAR(LookRate({1.0F, 0.0F}).x, 180.0F, 0.01F);
    EXPECT_NEAR(LookRate({0.0F, -1.0F}).y, -120.0F, 0.01F);
    EXPECT_NEAR(WithoutDeadZone({1.0F, 1.0F}).x, std::sqrt(0.5F), 0.0001F)
        << "corners lie outside the circle";
}

// Halfway between rim and end, (1 + 0.18) / 2, the square makes a quarter.
TEST(LookStick, HasASquareCurve) {
    EXPECT_NEAR(WithoutDeadZone({0.59F, 0.0F}).x, 0.5F, 0.0001F);
    EXPECT_NEAR(LookRate({0.59F, 0.0F}).x, 45.0F, 0.01F);
    EXPECT_NEAR(LookRate({-0.59F, 0.0F}).x, -45.0F, 0.01F);
}

TEST(LookStick, IgnoresWhatIsNoNumber) {
    EXPECT_EQ(LookRate({std::numeric_limits<float>::quiet_NaN(), 1.0F}).x, 0.0F);
}

} // namespace
