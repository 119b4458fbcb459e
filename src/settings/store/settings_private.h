// The document side of the settings store, for its sources and tests.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

inline constexpr size_t kSettingsDocumentLimit = size_t{4} << 20; // bytes

// What one child element of the root says.
struct SETTING_ENTRY {
    std::string type; // the element's name
    std::string name;
    std::string value;
    std::optional<std::string> value2;
    size_t line = 0; // of the document, from 1
};

// Reads a document into the entries of its root's children in their order, leaving out those without
// `name` or `value`. The root may have any name. An error in the XML ends the reading; the entries
// before it are kept, and `reason` says where and what it was. False, with the reason, for a text
// without any entry: one that is too long, has no element or has an error before its first entry.
[[nodiscard]] bool ReadSettingsDocument(std::string_view text, std::vector<SETTING_ENTRY>& entries,
                                        std::string& reason);
