#include "library/folder_list.h"

#include "base/text.h"
#include "library/convert.h"
#include "library/folder_lock.h"

#include <algorithm>
#include <utility>

namespace fs = std::filesystem;

namespace {

// Unlike path::extension, that of a name which is nothing but an extension.
std::string LowerExtension(const fs::path& name) {
    const std::string text = name.filename().string();
    const size_t dot = text.rfind('.');
    return dot == std::string::npos ? std::string()
                                    : LowerAscii(std::string_view(text).substr(dot));
}

size_t DigitsAtEnd(std::string_view text) {
    const size_t last = text.find_last_not_of("0123456789");
    return text.size() - (last == std::string_view::npos ? 0 : last + 1);
}

} // namespace

FolderFile KindOfFile(uint16_t system, const fs::path& name) {
    if (LowerExtension(name) == ".game") {
        return FolderFile::kGame;
    }
    return IsZipName(name) || ValidExtension(system, name.string()) ? FolderFile::kSource
                                                                    : FolderFile::kOther;
}

bool IsZipName(const fs::path& name) {
    return LowerExtension(name) == ".zip";
}

std::string StemOfName(const fs::path& name) {
    std::string text = name.filename().string();
    text.resize(std::min(text.size(), text.rfind('.')));
    return text;
}

bool IsTemporaryName(std::string_view name) {
    constexpr std::string_view kMark = ".tmp";
    for (int number = 0; number < 2; ++number) {
        const size_t digits = DigitsAtEnd(name);
        name.remove_suffix(digits);
        if (digits == 0 || !name.ends_with('-')) {
            return false;
        }
        name.remove_suffix(1);
    }
    return name.ends_with(kMark);
}

bool ListFolder(const fs::path& folder, std::vector<fs::path>& names, std::string& error) {
    names.clear();
    std::error_code code;
    fs::directory_iterator entry(folder, code);
    for (const fs::directory_iterator end; !code && entry != end; entry.increment(code)) {
        fs::path name = entry->path().filename();
        std::error_code ignored;
        if (name != kFolderLockName && !IsTemporaryName(name.string()) &&
            !entry->is_directory(ignored)) {
            names.push_back(std::move(name));
        }
    }
    if (code) {
        error = folder.string() + ": cannot be read: " + code.message();
    }
    // As a file manager shows them; names that differ in case alone by their bytes.
    std::vector<std::pair<std::string, fs::path>> keyed;
    keyed.reserve(names.size());
    for (fs::path& name : names) {
        std::string key = LowerAscii(std::string_view(name.native()));
        keyed.emplace_back(std::move(key), std::move(name));
    }
    std::sort(keyed.begin(), keyed.end());
    std::transform(keyed.begin(), keyed.end(), names.begin(),
                   [](auto& pair) { return std::move(pair.second); });
    return !code;
}
