#include "front/tools/interruption.h"

#include <csignal>

namespace {

std::atomic<bool> gRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes it");

constexpr int kSignals[] = {SIGINT, SIGTERM};

extern "C" void NoteSignal(int /*number*/) {
    gRequested = true;
}

#ifdef _WIN32
using Action = void (*)(int);

Action Catch(int number) {
    return std::signal(number, NoteSignal);
}

bool IsIgnored(const Action& action) {
    return action == SIG_IGN;
}

void Restore(int number, const Action& action) {
    std::signal(number, action);
}
#else
using Action = struct sigaction;

// Without SA_RESTART, so that a call that waits for a file returns.
Action Catch(int number) {
    Action old{};
    Action action{};
    action.sa_handler = NoteSignal;
    sigaction(number, &action, &old);
    return old;
}

bool IsIgnored(const Action& action) {
    return action.sa_handler == SIG_IGN;
}

void Restore(int number, const Action& action) {
    sigaction(number, &action, nullptr);
}
#endif

Action gBefore[std::size(kSignals)];

} // namespace

Interruption::Interruption() {
    gRequested = false;
    for (size_t i = 0; i < std::size(kSignals); ++i) {
        gBefore[i] = Catch(kSignals[i]);
        if (IsIgnored(gBefore[i])) {
            Restore(kSignals[i], gBefore[i]);
        }
    }
}

Interruption::~Interruption() {
    for (size_t i = 0; i < std::size(kSignals); ++i) {
        Restore(kSignals[i], gBefore[i]);
    }
}

bool Interruption::Requested() const {
    return gRequested;
}

const std::atomic<bool>& Interruption::Flag() const {
    return gRequested;
}
