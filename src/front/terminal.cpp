#include "front/terminal.h"

#include "base/text.h"

#include <cstdio>

void Complain(const std::string& message) {
    std::fprintf(stderr, "ombrelune: %s\n", Printable(message).c_str());
}

std::string Printable(std::string_view text) {
    std::wstring wide = WideFromUtf8(text);
    for (wchar_t& c : wide) {
        const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
        c = control ? L'?' : c;
    }
    return Utf8FromWide(wide);
}
