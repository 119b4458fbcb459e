#include "demo_tables/table_text.h"

#include <cstddef>

namespace {

constexpr size_t kBytesALine = 16;

void AppendBytes(std::string& text, const std::vector<uint8_t>& bytes, std::string_view begin,
                 std::string_view end) {
    for (size_t i = 0; i < bytes.size(); ++i) {
        text += i % kBytesALine == 0 ? begin : ", ";
        text += std::to_string(bytes[i]);
        if (i % kBytesALine == kBytesALine - 1 || i + 1 == bytes.size()) {
            text += end;
        }
    }
}

} // namespace

std::string TextOf(const std::vector<TABLE>& tables, LANGUAGE language) {
    std::string text;
    for (const TABLE& table : tables) {
        if (language == LANGUAGE::kC) {
            text += "const char " + table.name + "[] = {\n";
            AppendBytes(text, table.bytes, "    ", ",\n");
            text += "};\n";
            continue;
        }
        if (!table.name.empty()) {
            text += table.name + ":\n";
        }
        AppendBytes(text, table.bytes, "    .byte ", "\n");
    }
    return text;
}
