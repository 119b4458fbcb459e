#include "library/xml_file.h"

#include "base/text.h"

#include <algorithm>

std::string XmlFile::FaultAt(size_t offset, const std::string& reason) const {
    const auto end = source.begin() + static_cast<std::ptrdiff_t>(std::min(offset, source.size()));
    return "line " + std::to_string(std::count(source.begin(), end, '\n') + 1) + ": " + reason;
}

std::string XmlFile::Fault(pugi::xml_node node, const std::string& reason) const {
    // No place is known of an element that was not read from the text.
    return FaultAt(static_cast<size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0)), reason);
}

bool XmlFile::Load(std::string_view text, std::string_view root, std::string& fault) {
    source = text;
    document.reset();
    if (const size_t invalid = FindInvalidUtf8(text); invalid < text.size()) {
        fault = FaultAt(invalid, "is not UTF-8 text");
        return false;
    }
    // The parser would take it for the end.
    if (const size_t zero = text.find('\0'); zero != std::string_view::npos) {
        fault = FaultAt(zero, "a zero byte is within the text");
        return false;
    }
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) {
        std::string reason = result.description();
        if (!reason.empty()) {
            reason[0] = LowerAscii(reason[0]);
        }
        fault = FaultAt(static_cast<size_t>(std::max<std::ptrdiff_t>(result.offset, 0)), reason);
        return false;
    }
    bool first = true;
    for (const pugi::xml_node node : document.children()) {
        if (node.type() != pugi::node_element) {
            continue;
        }
        if (!first || node.name() != root) {
            fault = Fault(node, "the root element is <" + std::string(node.name()) +
                                    ">, not one <" + std::string(root) + ">");
            return false;
        }
        first = false;
    }
    return true;
}
