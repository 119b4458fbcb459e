#include "base/helper_thread.h"

#include <atomic>

namespace {

std::atomic<void (*)()> gBegins{nullptr};

} // namespace

void SetHelperBegins(void (*begins)()) {
    gBegins = begins;
}

void HelperBegins() {
    if (void (*const begins)() = gBegins; begins != nullptr) {
        begins();
    }
}
