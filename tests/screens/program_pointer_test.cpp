#include "screens/program_pointer.h"

#include <gtest/gtest.h>

namespace {

struct ROW {
    ProgramMode mode;
    bool behind;
    bool resting;
    bool padInHand;
    bool lightGun;
    Pointer pointer;
};

// clang-format off
constexpr ROW kRows[] = {
    // mode                    behind resting pad    gun    pointer
    {ProgramMode::kMenu,       false, false,  false, false, Pointer::kSeen},
    {ProgramMode::kMenu,       false, true,   false, false, Pointer::kSeen},
    {ProgramMode::kMenu,       false, true,   true,  false, Pointer::kHidden},
    {ProgramMode::kPanel,      false, true,   false, false, Pointer::kSeen},
    {ProgramMode::kPanel,      false, false,  true,  false, Pointer::kHidden},
    {ProgramMode::kBrowser,    false, true,   false, false, Pointer::kSeen},
    {ProgramMode::kBrowser,    false, true,   true,  false, Pointer::kHidden},
    {ProgramMode::kWalking,    false, false,  false, false, Pointer::kCaptured},
    {ProgramMode::kWalking,    false, true,   true,  false, Pointer::kCaptured},
    {ProgramMode::kWalking,    true,  true,   false, false, Pointer::kSeen},
    {ProgramMode::kWalking,    true,  true,   true,  false, Pointer::kHidden},
    {ProgramMode::kStanding,   false, false,  false, false, Pointer::kSeen},
    {ProgramMode::kStanding,   false, true,   false, false, Pointer::kHidden},
    {ProgramMode::kStanding,   false, false,  true,  false, Pointer::kHidden},
    {ProgramMode::kStanding,   true,  true,   false, false, Pointer::kSeen},
    {ProgramMode::kFullScreen, false, false,  false, false, Pointer::kSeen},
    {ProgramMode::kFullScreen, false, true,   false, false, Pointer::kHidden},
    {ProgramMode::kFullScreen, false, false,  true,  false, Pointer::kHidden},
    {ProgramMode::kFullScreen, true,  true,   false, false, Pointer::kSeen},
    // A friend's controller does not hide the pointer that aims.
    {ProgramMode::kFullScreen, false, false,  true,  true,  Pointer::kSeen},
    {ProgramMode::kFullScreen, false, true,   false, true,  Pointer::kHidden},
    // In the room no gun is aimed.
    {ProgramMode::kStanding,   false, false,  true,  true,  Pointer::kHidden},
};
// clang-format on

TEST(ProgramPointer, IsAsTheModeNeedsIt) {
    for (const ROW& row : kRows) {
        EXPECT_EQ(PointerFor({row.mode, row.behind, row.resting, row.padInHand, row.lightGun}),
                  row.pointer)
            << "mode " << static_cast<int>(row.mode) << ", row " << &row - kRows;
    }
}

TEST(ProgramPointer, IsCapturedOnlyByWhoWalksWithNothingOverTheRoom) {
    for (int mode = 0; mode <= static_cast<int>(ProgramMode::kFullScreen); ++mode) {
        for (int bits = 0; bits < 16; ++bits) {
            const POINTER_FACTS facts{static_cast<ProgramMode>(mode), (bits & 1) != 0,
                                      (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0};
            EXPECT_EQ(PointerFor(facts) == Pointer::kCaptured,
                      facts.mode == ProgramMode::kWalking && !facts.behind)
                << mode << " " << bits;
        }
    }
}

} // namespace
