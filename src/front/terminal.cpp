#include "front/terminal.h"

#include "base/text.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

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

bool ErrorIsTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    const char* const kind = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe): nothing sets it
    return isatty(fileno(stderr)) != 0 && kind != nullptr && std::string_view(kind) != "dumb";
#endif
}
