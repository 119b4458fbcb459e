// Settings documents. No bytes break anything; a refused document changes nothing; the settings of an
// accepted one survive saving and loading.
#include "settings/settings.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// A few of the program's settings, two of most types; the whole table would only be slower.
void RegisterSome(SettingsStore& store) {
    store.RegisterBool(L"app_vsync", true);
    store.RegisterBool(L"app_lighting", true);
    store.RegisterInt(L"app_window_width", 1280);
    store.RegisterInt(L"app_window_height", 720);
    store.RegisterFloat(L"audio_volume", 1.0f);
    store.RegisterFloat(L"audio_boost_low", 1.25f);
    store.RegisterString(L"login_username", L"");
    store.RegisterString(L"login_userpass", L"");
    store.RegisterInt2(L"input rewind", 196651, 0);
    store.SetWordReader(L"input rewind", [](std::string_view text) -> std::optional<int32_t> {
        return text == "Tab" ? std::optional(43) : std::nullopt;
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    SettingsStore store;
    RegisterSome(store);
    const std::vector<uint8_t> before = store.Save();
    std::string reason;
    const bool loaded = store.Load(bytes, size, reason);
    const std::vector<uint8_t> after = store.Save();
    Require(loaded || (after == before && !reason.empty()));
    SettingsStore next;
    RegisterSome(next);
    Require(next.Load(after.data(), after.size(), reason) && reason.empty());
    Require(next.Save() == after);
    return 0;
}
