// Random input on random trees of controls: nothing stale is left anywhere, and what is drawn part by
// part is what is drawn whole.
#include "gui/control_rig.h"

#include <random>

using GuiRandom = ControlTest;

namespace {

constexpr int kWide = 1280;
constexpr int kHigh = 720;

struct SCREEN {
    std::vector<uint32_t> pixels = std::vector<uint32_t>(static_cast<size_t>(kWide) * kHigh);
};

void DrawWhole(CGhostManager& manager, SCREEN& screen) {
    manager.SetCompositeBuffer(screen.pixels.data(), kWide, kHigh, kWide); // all of it is dirty
    manager.CompositeAll();
}

} // namespace

TEST_F(GuiRandom, HoverFocusAndCaptureAreAlwaysLivingVisibleWindows) {
    for (uint32_t seed = 1; seed <= 30; ++seed) {
        std::mt19937 random(seed);
        const auto next = [&]() -> uint32_t { return random() & 0xFF; };
        manager.Reset();
        RandomTree tree(next);
        for (int step = 0; step < 1000; ++step) {
            tree.Step(next);
            ASSERT_EQ(BrokenInvariant(), "") << "seed " << seed << " step " << step;
        }
    }
}

TEST_F(GuiRandom, WhatIsDrawnByPartsIsWhatIsDrawnWhole) {
    for (uint32_t seed = 101; seed <= 104; ++seed) {
        std::mt19937 random(seed);
        const auto next = [&]() -> uint32_t { return random() & 0xFF; };
        manager.Reset();
        RandomTree tree(next);
        SCREEN parts;
        SCREEN whole;
        manager.Tick(0);
        DrawWhole(manager, parts);
        for (int step = 0; step < 60; ++step) {
            for (int i = 0; i < 3; ++i) {
                tree.Step(next);
            }
            manager.Tick(16667);
            manager.CompositeAll(); // into `parts`, what is dirty
            DrawWhole(manager, whole);
            ASSERT_TRUE(parts.pixels == whole.pixels) << "seed " << seed << " step " << step;
            DrawWhole(manager, parts);
        }
    }
    manager.SetCompositeBuffer(nullptr, 0, 0, 0);
}
