#include "machine/emu_system.h"

#include "base/ranked_mutex.h"

#include <mutex>
#include <utility>

namespace {

struct LAST_ERROR {
    RankedMutex<LockRank::kLeaf> lock;
    std::string text;
};

// Never destroyed: a session thread may still set the error while the process ends.
LAST_ERROR& LastError() {
    static auto* error = new LAST_ERROR;
    return *error;
}

} // namespace

StateBlob CEmuSystem::SaveState(uint32_t& size) {
    size = StateSize();
    if (size == 0) {
        return nullptr;
    }
    auto blob = std::make_unique_for_overwrite<uint8_t[]>(size);
    WriteState(blob.get());
    return blob;
}

void EmuSetLastError(std::string text) {
    LAST_ERROR& error = LastError();
    const std::scoped_lock hold(error.lock);
    error.text = std::move(text);
}

std::string EmuLastError() {
    LAST_ERROR& error = LastError();
    const std::scoped_lock hold(error.lock);
    return error.text;
}
