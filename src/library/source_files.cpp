#include "library/source_files.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/zip.h"
#include "library/folder_list.h"
#include "library/game_source.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

constexpr size_t kArchivesKept = 2;

// A relative link is one step deeper than before.
void MoveLink(const fs::path& link, const fs::path& target, std::error_code& code) {
    const fs::path leadsTo = fs::read_symlink(link, code);
    if (!code) {
        fs::create_symlink(leadsTo.is_absolute() ? leadsTo : fs::path("..") / leadsTo, target,
                           code);
    }
}

// Gives the file a second name. Never replaces a file.
void AddName(const fs::path& path, const fs::path& target, std::error_code& code) {
    if (fs::is_symlink(path, code)) {
        MoveLink(path, target, code);
        return;
    }
    fs::create_hard_link(path, target, code);
    if (!code || code == std::errc::file_exists) {
        return;
    }
    // Another file system, or one without links.
    fs::copy_file(path, target, code);
    if (code && code != std::errc::file_exists) {
        std::error_code ignored;
        fs::remove(target, ignored);
    }
}

} // namespace

bool StampOf(const fs::path& path, FILE_STAMP& stamp, std::string& error) {
    std::error_code code;
    stamp.size = fs::file_size(path, code);
    if (!code) {
        stamp.time = fs::last_write_time(path, code);
    }
    if (code) {
        error = path.string() + ": cannot be read: " + code.message();
    }
    return !code;
}

bool ReadSource(const fs::path& path, std::vector<uint8_t>& bytes, FILE_STAMP& stamp,
                std::string& error) {
    std::error_code code;
    const fs::file_status status = fs::status(path, code);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        error = path.string() + ": is not a file";
        return false;
    }
    return StampOf(path, stamp, error) &&
           ReadFile(path, bytes, error, IsZipName(path) ? kLargestZip : kLargestImage);
}

ZipMembers::Bytes ZipMembers::Archive(const fs::path& path) {
    {
        const std::scoped_lock guard(lock);
        const auto found =
            std::ranges::find_if(kept, [&](const KEPT& archive) { return archive.path == path; });
        if (found != kept.end()) {
            std::rotate(found, found + 1, kept.end());
            return kept.back().bytes;
        }
    }
    auto bytes = std::make_shared<std::vector<uint8_t>>();
    FILE_STAMP stamp;
    std::string ignored;
    if (!ReadSource(path, *bytes, stamp, ignored)) {
        return nullptr;
    }
    const std::scoped_lock guard(lock);
    if (kept.size() == kArchivesKept) {
        kept.erase(kept.begin());
    }
    kept.push_back({path, bytes});
    return bytes;
}

bool ZipMembers::Read(const fs::path& path, std::wstring_view member, std::vector<uint8_t>& bytes) {
    const Bytes archive = Archive(path);
    ZipReader reader;
    std::string ignored;
    if (!archive || !reader.Open(*archive, ignored)) {
        return false;
    }
    const std::wstring wanted = LowerAscii(member);
    ZIP_ENTRY entry;
    for (uint32_t index = 0; index < reader.EntryCount(); ++index) {
        if (reader.Entry(index, entry) && LowerAscii(std::wstring_view(entry.name)) == wanted) {
            return reader.Unpack(index, bytes, ignored, kLargestImage);
        }
    }
    return false;
}

bool DeleteSource(const fs::path& path, std::string& error) {
    std::error_code code;
    fs::remove(path, code);
    std::error_code ignored;
    if (code && !fs::is_symlink(path, ignored)) {
        // Some systems do not delete what is read-only.
        fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, ignored);
        fs::remove(path, code);
    }
    if (code) {
        error = path.string() + ": cannot be deleted: " + code.message();
    }
    return !code;
}

bool KeepSource(const fs::path& path, std::string& error) {
    const fs::path folder = path.parent_path() / kSourcesFolder;
    std::error_code code;
    fs::create_directory(folder, code);
    if (code) {
        error = path.string() + ": cannot be moved to " + folder.string() + ": " + code.message();
        return false;
    }
    const std::string name = path.filename().string();
    const std::string stem = StemOfName(path);
    fs::path target = folder / name;
    AddName(path, target, code);
    for (int number = 2; code == std::errc::file_exists; ++number) {
        std::error_code ignored;
        if (fs::equivalent(path, target, ignored)) {
            code.clear(); // an earlier move was cut off between the two steps
            break;
        }
        target = folder / (stem + " (" + std::to_string(number) + ")" + name.substr(stem.size()));
        AddName(path, target, code);
    }
    if (code) {
        error = path.string() + ": cannot be moved to " + folder.string() + ": " + code.message();
        return false;
    }
    FlushFolder(folder);
    FlushFolder(path.parent_path());
    return DeleteSource(path, error);
}
