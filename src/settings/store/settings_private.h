// The document side of the settings store, for its sources and tests.
//
// The XML library reads elements by recursion and forgives much: text that is cut off, values without
// quotes, multi-byte characters that run past the end. So a strict reader of our own goes first, and
// the library sees only documents that it and any other XML reader understand alike.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

inline constexpr size_t kSettingsDocumentLimit = size_t{4} << 20; // bytes
inline constexpr size_t kXmlDepthLimit = 32;                      // elements within each other
inline constexpr size_t kXmlAttributeLimit = 64;                  // of one element
inline constexpr size_t kXmlMarkupLimit = 200'000;                // tags, comments and the like

// Whether the text is one well-formed XML document within the limits above: UTF-8, quoted values, tags
// that match, one root. A document type, a processing instruction that the library would misread, NUL
// and other control characters are refused. `reason` says the line and what is wrong there.
[[nodiscard]] bool CheckXml(std::string_view text, std::string& reason);

// What one child element of the root says.
struct SETTING_ENTRY {
    std::string type; // the element's name
    std::string name;
    std::string value;
    std::optional<std::string> value2;
};

// Reads a whole document with root `Settings` into the entries of its children in their order, leaving
// out those without `name` or `value`. False with the reason for anything else.
[[nodiscard]] bool ReadSettingsDocument(std::string_view text, std::vector<SETTING_ENTRY>& entries,
                                        std::string& reason);
