#include "base/text.h"

#include "settings/store/settings_private.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool IsNamePart(char c) {
    return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

// The characters that XML allows to stand for themselves.
bool IsXmlText(std::string_view text) {
    const bool bare = std::ranges::all_of(text, [](char c) {
        return static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\r' || c == '\n';
    });
    return bare && text.find("\xEF\xBF\xBE") == text.npos && text.find("\xEF\xBF\xBF") == text.npos;
}

// A walk over the document that keeps the names of the open elements and nothing else.
class CXmlCheck {
public:
    explicit CXmlCheck(std::string_view document)
        : text(document) {}

    bool Check(std::string& reason) {
        if (Document()) {
            return true;
        }
        const auto line =
            std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n') + 1;
        reason = "line " + std::to_string(line) + ": " + problem;
        return false;
    }

private:
    bool Fail(const char* what) {
        problem = what;
        return false;
    }

    [[nodiscard]] bool AtEnd() const { return at >= text.size(); }
    [[nodiscard]] bool See(std::string_view token) const {
        return text.substr(at).starts_with(token);
    }
    [[nodiscard]] char Peek() const { return AtEnd() ? '\0' : text[at]; }

    bool Take(std::string_view token) {
        const bool seen = See(token);
        at += seen ? token.size() : 0;
        return seen;
    }

    void SkipSpace() {
        while (!AtEnd() && IsSpace(text[at])) {
            ++at;
        }
    }

    bool Document() {
        if (Utf8FromWide(WideFromUtf8(text)) != text) {
            return Fail("the text is not UTF-8");
        }
        if (!IsXmlText(text)) {
            return Fail("a character that XML does not allow");
        }
        Take(kByteOrderMark);
        if (See("<?xml") && !Declaration()) {
            return false;
        }
        while (true) {
            if (open.empty()) {
                SkipSpace();
            }
            if (AtEnd()) {
                break;
            }
            if (Peek() == '<' ? !Markup() : !Text()) {
                return false;
            }
        }
        if (!open.empty()) {
            return Fail("the document ends inside an element");
        }
        return rootSeen || Fail("there is no element");
    }

    bool Text() {
        if (open.empty()) {
            return Fail("text outside of the root element");
        }
        const size_t end = std::min(text.find('<', at), text.size());
        return References(end);
    }

    bool Markup() {
        if (++markup > kXmlMarkupLimit) {
            return Fail("too many elements");
        }
        if (Take("<!--")) {
            return Comment();
        }
        if (Take("<![CDATA[")) {
            return CharacterData();
        }
        if (See("<!")) {
            return Fail("a document type is not allowed");
        }
        if (Take("<?")) {
            return Instruction();
        }
        return Take("</") ? EndTag() : StartTag();
    }

    bool Comment() {
        const size_t end = text.find("--", at);
        if (end == text.npos || !text.substr(end).starts_with("-->")) {
            return Fail("a comment that does not end");
        }
        at = end + 3;
        return true;
    }

    bool CharacterData() {
        const size_t end = text.find("]]>", at);
        if (open.empty() || end == text.npos) {
            return Fail("character data that does not end or has no element around it");
        }
        at = end + 3;
        return true;
    }

    // The library ends an instruction at its first '>' and takes every target that begins "xml" for the
    // declaration, so neither may occur.
    bool Instruction() {
        const size_t begin = at;
        std::string_view target;
        if (!Name(target)) {
            return Fail("a processing instruction without a name");
        }
        if (LowerAscii(target.substr(0, 3)) == "xml") {
            return Fail("a declaration is allowed at the beginning alone");
        }
        const size_t end = text.find("?>", begin);
        if (end == text.npos || text.substr(begin, end - begin).find_first_of("<>") != text.npos) {
            return Fail("a processing instruction that does not end");
        }
        at = end + 2;
        return true;
    }

    bool Declaration() {
        at += 5;
        if (!Attributes()) {
            return false;
        }
        for (const std::string_view name : attributes) {
            if (name != "version" && name != "encoding" && name != "standalone") {
                return Fail("the declaration holds something unknown");
            }
        }
        return Take("?>") || Fail("the declaration does not end");
    }

    bool StartTag() {
        ++at;
        std::string_view name;
        if (!Name(name)) {
            return Fail("'<' without the name of an element");
        }
        if (open.empty() && rootSeen) {
            return Fail("a second root element");
        }
        if (open.size() >= kXmlDepthLimit) {
            return Fail("elements are nested too deeply");
        }
        rootSeen = true;
        if (!Attributes()) {
            return false;
        }
        if (Take("/>")) {
            return true;
        }
        open.push_back(name);
        return Take(">") || Fail("a tag that does not end");
    }

    bool EndTag() {
        std::string_view name;
        if (!Name(name) || open.empty() || open.back() != name) {
            return Fail("an end tag that closes nothing");
        }
        open.pop_back();
        SkipSpace();
        return Take(">") || Fail("an end tag that does not end");
    }

    bool Name(std::string_view& name) {
        const size_t begin = at;
        if (!IsNameStart(Peek())) {
            return false;
        }
        while (!AtEnd() && IsNamePart(text[at])) {
            ++at;
        }
        name = text.substr(begin, at - begin);
        // Inside a document this mark is an invisible space, which the library skips.
        return name.find(kByteOrderMark) == name.npos;
    }

    bool Attributes() {
        attributes.clear();
        while (true) {
            const size_t before = at;
            SkipSpace();
            if (AtEnd() || Peek() == '>' || Peek() == '/' || Peek() == '?') {
                return true; // The caller knows which end it wants.
            }
            if (at == before) {
                return Fail("a space is missing before an attribute");
            }
            if (!Attribute()) {
                return false;
            }
        }
    }

    bool Attribute() {
        std::string_view name;
        if (!Name(name)) {
            return Fail("an attribute without a name");
        }
        if (std::ranges::find(attributes, name) != attributes.end()) {
            return Fail("an attribute is there twice");
        }
        if (attributes.size() >= kXmlAttributeLimit) {
            return Fail("too many attributes");
        }
        attributes.push_back(name);
        SkipSpace();
        if (!Take("=")) {
            return Fail("an attribute without a value");
        }
        SkipSpace();
        const char quote = Peek();
        if (quote != '"' && quote != '\'') {
            return Fail("a value without quotes");
        }
        ++at;
        const size_t end = text.find(quote, at);
        if (end == text.npos || text.substr(at, end - at).find('<') != text.npos) {
            return Fail("a value whose quotes do not end");
        }
        if (!References(end)) {
            return false;
        }
        at = end + 1;
        return true;
    }

    // Goes on to `end` and checks every '&' on the way.
    bool References(size_t end) {
        while (true) {
            const size_t found = text.substr(at, end - at).find('&');
            if (found == text.npos) {
                at = end;
                return true;
            }
            at += found;
            const std::string_view rest = text.substr(at, end - at);
            const size_t length = std::min(rest.find(';'), rest.size());
            if (length == rest.size() || !IsReference(rest.substr(1, length - 1))) {
                return Fail("'&' that begins no known character");
            }
            at += length + 1;
        }
    }

    // The text between '&' and ';'.
    static bool IsReference(std::string_view name) {
        if (!name.starts_with('#')) {
            return name == "amp" || name == "lt" || name == "gt" || name == "quot" ||
                   name == "apos";
        }
        const bool hexadecimal = name.starts_with("#x");
        name.remove_prefix(hexadecimal ? 2 : 1);
        uint32_t point = 0;
        const char* const end = name.data() + name.size();
        const auto [stop, code] = std::from_chars(name.data(), end, point, hexadecimal ? 16 : 10);
        const bool number = code == std::errc() && stop == end && name.size() <= 8;
        const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
        return number && point != 0 && point <= 0x10FFFF && !surrogate;
    }

    std::string_view text;
    size_t at = 0;     // byte of `text` that is read next
    size_t markup = 0; // how many were seen
    bool rootSeen = false;
    const char* problem = "";
    std::vector<std::string_view> open;       // elements around the place, the root first
    std::vector<std::string_view> attributes; // names of the tag being read
};

} // namespace

bool CheckXml(std::string_view text, std::string& reason) {
    return CXmlCheck(text).Check(reason);
}
