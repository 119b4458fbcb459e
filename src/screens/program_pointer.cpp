#include "screens/program_pointer.h"

Pointer PointerFor(const POINTER_FACTS& facts) {
    const bool covered = facts.mode <= ProgramMode::kBrowser;
    if (facts.behind || covered) {
        return facts.padInHand ? Pointer::kHidden : Pointer::kSeen;
    }
    if (facts.mode == ProgramMode::kWalking) {
        return Pointer::kCaptured;
    }
    const bool aims = facts.mode == ProgramMode::kFullScreen && facts.lightGun;
    return facts.resting || (facts.padInHand && !aims) ? Pointer::kHidden : Pointer::kSeen;
}
