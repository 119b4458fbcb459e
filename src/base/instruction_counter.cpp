#include "base/instruction_counter.h"

#ifdef __linux__

#include <linux/perf_event.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

// The C library has no function for it.
int OpenCounter() {
    perf_event_attr wanted{};
    wanted.size = sizeof wanted;
    wanted.type = PERF_TYPE_HARDWARE;
    wanted.config = PERF_COUNT_HW_INSTRUCTIONS;
    wanted.exclude_kernel = 1;
    wanted.exclude_hv = 1;
    constexpr int kThisThread = 0;
    constexpr int kAnyProcessor = -1;
    constexpr int kNoGroup = -1;
    return static_cast<int>(syscall(SYS_perf_event_open, &wanted, kThisThread, kAnyProcessor,
                                    kNoGroup, PERF_FLAG_FD_CLOEXEC));
}

std::string Reason(int error) {
    switch (error) {
    case EACCES:
    case EPERM: return "the system does not allow it";
    case ENOENT:
    case ENODEV:
    case EOPNOTSUPP: return "this processor has no counter for them";
    default: return std::strerror(error);
    }
}

} // namespace

InstructionCounter::InstructionCounter()
    : file(OpenCounter()) {
    if (file < 0) {
        whyNot = Reason(errno);
    }
}

InstructionCounter::~InstructionCounter() {
    if (file >= 0) {
        close(file);
    }
}

uint64_t InstructionCounter::Count() const {
    uint64_t count = 0;
    return file >= 0 && read(file, &count, sizeof count) == sizeof count ? count : 0;
}

#else

InstructionCounter::InstructionCounter()
    : whyNot("not on this system") {}

InstructionCounter::~InstructionCounter() = default;

uint64_t InstructionCounter::Count() const {
    return 0;
}

#endif
