// Settings documents. Whatever the bytes, nothing breaks; a refused document changes nothing; what an
// accepted one leaves behind survives being saved and loaded.
#include "settings/settings.h"
#include "settings/store/settings_private.h"
#include <tinyxml.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

size_t Depth(const TiXmlNode& node) {
    size_t deepest = 0;
    for (const TiXmlNode* child = node.FirstChild(); child != nullptr;
         child = child->NextSibling()) {
        deepest = std::max(deepest, Depth(*child));
    }
    return deepest + (node.ToElement() != nullptr ? 1 : 0);
}

// A few of the program's settings, two of most types: the whole table would only be slower.
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
}

// The library must read every document that passes the check, and find it no deeper.
void CheckAgainstLibrary(std::string_view text) {
    std::string reason;
    if (!CheckXml(text, reason)) {
        Require(!reason.empty());
        return;
    }
    TiXmlDocument document;
    document.Parse(std::string(text).c_str(), nullptr, TIXML_ENCODING_UTF8);
    Require(!document.Error());
    Require(document.RootElement() != nullptr);
    Require(document.RootElement()->NextSiblingElement() == nullptr);
    Require(Depth(document) <= kXmlDepthLimit);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    CheckAgainstLibrary({reinterpret_cast<const char*>(bytes), size});
    SettingsStore store;
    RegisterSome(store);
    const std::vector<uint8_t> before = store.Save();
    const bool loaded = store.Load(bytes, size);
    const std::vector<uint8_t> after = store.Save();
    Require(loaded || after == before);
    SettingsStore next;
    RegisterSome(next);
    Require(next.Load(after.data(), after.size()));
    Require(next.Save() == after);
    return 0;
}
