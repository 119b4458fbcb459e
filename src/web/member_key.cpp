#include "web/member_key.h"

#include "base/files.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace {

constexpr uint64_t kLargestFile = 8192; // bytes

// Takes the line "NAME value" off the front; false if the next line is another one.
bool TakeLine(std::string_view& text, std::string_view name, std::string& value) {
    const size_t end = text.find('\n');
    if (end == std::string_view::npos || !text.starts_with(name) || text.size() <= name.size() ||
        text[name.size()] != ' ') {
        return false;
    }
    value = text.substr(name.size() + 1, end - name.size() - 1);
    text.remove_prefix(end + 1);
    return true;
}

bool TakeKey(std::string_view& text, std::string_view name, ScramKey& key) {
    std::string value;
    if (!TakeLine(text, name, value)) {
        return false;
    }
    const auto bytes = Base64Bytes(value);
    if (!bytes || bytes->size() != key.size()) {
        return false;
    }
    std::copy(bytes->begin(), bytes->end(), key.begin());
    return true;
}

} // namespace

bool ReadMemberKey(const std::filesystem::path& path, MEMBER_KEY& key) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadFile(path, bytes, error, kLargestFile)) {
        return false;
    }
    const std::string whole(bytes.begin(), bytes.end());
    std::string_view text = whole;
    MEMBER_KEY found;
    std::string salt;
    std::string iterations;
    if (!TakeLine(text, "service", found.service) || !TakeLine(text, "name", found.name) ||
        !TakeLine(text, "salt", salt) || !TakeLine(text, "iterations", iterations) ||
        !TakeKey(text, "client", found.keys.client) ||
        !TakeKey(text, "server", found.keys.server)) {
        return false;
    }
    const auto saltBytes = Base64Bytes(salt);
    const char* const end = iterations.data() + iterations.size();
    const auto read = std::from_chars(iterations.data(), end, found.iterations);
    if (!saltBytes || read.ec != std::errc() || read.ptr != end) {
        return false;
    }
    found.salt = *saltBytes;
    key = found;
    return true;
}

bool WriteMemberKey(const std::filesystem::path& path, const MEMBER_KEY& key, std::string& error) {
    const std::string text =
        "service " + key.service + "\nname " + key.name + "\nsalt " + Base64Text(key.salt) +
        "\niterations " + std::to_string(key.iterations) + "\nclient " +
        Base64Text(key.keys.client) + "\nserver " + Base64Text(key.keys.server) + "\n";
    const std::vector<uint8_t> bytes(text.begin(), text.end());
    return WriteFile(path, bytes, error, WriteMode::kPrivate);
}
