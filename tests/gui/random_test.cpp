// Random input on random trees of controls: nothing stale is left anywhere, and what is drawn part by
// part is what is drawn whole.
#include "gui/control_rig.h"

#include <iterator>
#include <random>

using GuiRandom = ControlTest;

namespace {

struct SCREEN {
    SCREEN(int pixelWidth, int pixelHeight)
        : width(pixelWidth)
        , height(pixelHeight)
        , pixels(static_cast<size_t>(width) * static_cast<size_t>(height)) {}
    int width;
    int height;
    std::vector<uint32_t> pixels;
};

// Densities 1, 1.0667, 1.5 and 2.
constexpr int kScreens[][2] = {
    {1280, 720 },
    {1366, 768 },
    {1920, 1080},
    {2560, 1440}
};

void DrawWhole(CGhostManager& manager, SCREEN& screen) {
    manager.SetCompositeBuffer(screen.pixels.data(), screen.width, screen.height,
                               screen.width); // all of it is dirty
    manager.CompositeAll();
}

} // namespace

TEST_F(GuiRandom, HoverFocusAndCaptureAreAlwaysLivingVisibleWindows) {
    for (const auto& size : kScreens) {
        for (uint32_t seed = 1; seed <= 10; ++seed) {
            std::mt19937 random(seed);
            const auto next = [&]() -> uint32_t { return random() & 0xFF; };
            manager.SetScreen(size[0], size[1]);
            manager.Reset();
            RandomTree tree(next);
            for (int step = 0; step < 1000; ++step) {
                tree.Step(next);
                ASSERT_EQ(BrokenInvariant(), "") << size[0] << " seed " << seed << " step " << step;
            }
        }
    }
}

// The display changes as well, in the midst of it all.
TEST_F(GuiRandom, AnotherDensityInTheMidstBreaksNothing) {
    for (uint32_t seed = 201; seed <= 204; ++seed) {
        std::mt19937 random(seed);
        const auto next = [&]() -> uint32_t { return random() & 0xFF; };
        manager.Reset();
        RandomTree tree(next);
        for (int step = 0; step < 600; ++step) {
            if (next() % 32 == 0) {
                const auto& size = kScreens[next() % std::size(kScreens)];
                manager.SetScreen(size[0], size[1]);
            }
            tree.Step(next);
            ASSERT_EQ(BrokenInvariant(), "") << "seed " << seed << " step " << step;
        }
    }
}

TEST_F(GuiRandom, WhatIsDrawnByPartsIsWhatIsDrawnWhole) {
    for (const auto& size : kScreens) {
        manager.SetScreen(size[0], size[1]);
        SCREEN parts(size[0], size[1]);
        SCREEN whole(size[0], size[1]);
        for (uint32_t seed = 101; seed <= 104; ++seed) {
            std::mt19937 random(seed);
            const auto next = [&]() -> uint32_t { return random() & 0xFF; };
            manager.Reset();
            RandomTree tree(next);
            manager.Tick(0);
            DrawWhole(manager, parts);
            for (int step = 0; step < 60; ++step) {
                for (int i = 0; i < 3; ++i) {
                    tree.Step(next);
                }
                manager.Tick(16667);
                manager.CompositeAll(); // into `parts`, what is dirty
                DrawWhole(manager, whole);
                ASSERT_TRUE(parts.pixels == whole.pixels)
                    << size[0] << " seed " << seed << " step " << step;
                DrawWhole(manager, parts);
            }
        }
    }
    manager.SetCompositeBuffer(nullptr, 0, 0, 0);
}
