#include "front/processor_binder.h"

#include "host/host_data.h"
#include "settings/settings.h"

#include <SDL.h>

#ifdef __linux__
#include <pthread.h>
#include <sched.h>
#endif

#include <algorithm>
#include <array>
#include <mutex>

namespace {

constexpr uint32_t kMostProcessors = 32;
constexpr uint32_t kFull = 1000; // the most threads on one processor
constexpr int kNotBound = -1;
constexpr uint32_t kTokenLimit = 33;

uint32_t gCpuCount = 1;
std::array<uint32_t, kTokenLimit> gCoreUse{}; // threads bound to each; under the frame mutex

#ifdef __linux__

cpu_set_t gAllowed; // of the process when the binder started

// Once a process, before anything is bound. Returns the number of processors.
uint32_t ReadAllowed() {
    static const bool kRead = sched_getaffinity(0, sizeof gAllowed, &gAllowed) == 0;
    return kRead ? static_cast<uint32_t>(CPU_COUNT(&gAllowed)) : 1;
}

void AllowAll() {
    pthread_setaffinity_np(pthread_self(), sizeof gAllowed, &gAllowed);
}

// Binds the thread to the n-th processor that the process may use.
bool SetThreadProcessor(uint32_t number) {
    for (size_t bit = 0; bit < CPU_SETSIZE; ++bit) {
        if (!CPU_ISSET(bit, &gAllowed) || number-- != 0) {
            continue;
        }
        cpu_set_t only;
        CPU_ZERO(&only);
        CPU_SET(bit, &only);
        return pthread_setaffinity_np(pthread_self(), sizeof only, &only) == 0;
    }
    return false;
}

#else

uint32_t ReadAllowed() {
    return static_cast<uint32_t>(SDL_GetCPUCount());
}

void AllowAll() {}

bool SetThreadProcessor(uint32_t) {
    return false;
}

#endif

} // namespace

void ProcessorBinderStart() {
    const std::scoped_lock hold(EmuFrameMutex());
    gCpuCount = std::clamp(ReadAllowed(), 1u, kMostProcessors);
    gCoreUse.fill(0);
}

uint32_t ProcessorCount() {
    return gCpuCount;
}

int BindProcessor(int always) {
    if ((!Settings().GetBool(L"app_managecpucores") && always == 0) || gCpuCount < 2) {
        return kNotBound;
    }
    const std::scoped_lock hold(EmuFrameMutex());
    const auto end = gCoreUse.begin() + gCpuCount;
    const auto least = std::min_element(gCoreUse.begin(), end);
    if (*least >= kFull) {
        return kNotBound;
    }
    const auto number = static_cast<uint32_t>(least - gCoreUse.begin());
    if (!SetThreadProcessor(number)) {
        return kNotBound;
    }
    ++*least;
    return static_cast<int>(number);
}

void ReleaseProcessor(int token) {
    const std::scoped_lock hold(EmuFrameMutex());
    if (token >= 0 && static_cast<uint32_t>(token) < kTokenLimit &&
        gCoreUse[static_cast<size_t>(token)] > 0) {
        --gCoreUse[static_cast<size_t>(token)];
    }
}

void ReleaseThisThread(int token) {
    if (token >= 0) {
        AllowAll();
        ReleaseProcessor(token);
    }
}

void BecomeHelper() {
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_NORMAL);
    AllowAll();
}

uint32_t BoundThreads(uint32_t processor) {
    const std::scoped_lock hold(EmuFrameMutex());
    return processor < kTokenLimit ? gCoreUse[processor] : 0;
}
