#include "base/processor_time.h"

#include <ctime>

int64_t ThreadProcessorTime() {
#ifdef CLOCK_THREAD_CPUTIME_ID
    timespec time{};
    if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) == 0) {
        return int64_t{time.tv_sec} * 1000000 + time.tv_nsec / 1000;
    }
#endif
    return 0;
}
