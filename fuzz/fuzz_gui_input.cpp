// A tree of controls that the bytes build, then input and changes of the tree from the bytes.
#include "gui/random_tree.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CGhostManager& manager = CGhostManager::Get();
    CGhostTheme::Get().ParseTheme(kRandomTheme);
    manager.Reset();
    size_t at = 0;
    const auto next = [&]() -> uint32_t { return at < size ? data[at++] : 0; };
    RandomTree tree(next);
    constexpr int kMostSteps = 2000;
    for (int step = 0; step < kMostSteps && at < size; ++step) {
        tree.Step(next);
        if (!BrokenInvariant().empty()) {
            std::abort();
        }
    }
    manager.Tick(16667);
    manager.Reset();
    return 0;
}
