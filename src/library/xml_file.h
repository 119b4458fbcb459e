// An XML file in memory, whose faults are told by their line.
#pragma once

#include <pugixml.hpp>

#include <string>
#include <string_view>

class XmlFile {
public:
    // `text` must outlive the object. False for text that is not UTF-8, is malformed or has another root than `root`,
    // which only names the element; `fault` is one line.
    [[nodiscard]] bool Load(std::string_view text, std::string_view root, std::string& fault);

    [[nodiscard]] pugi::xml_node Root() const { return document.document_element(); }

    // "line 12: reason", for an element.
    [[nodiscard]] std::string Fault(pugi::xml_node node, const std::string& reason) const;

private:
    [[nodiscard]] std::string FaultAt(size_t offset, const std::string& reason) const;

    std::string_view source;
    pugi::xml_document document;
};
