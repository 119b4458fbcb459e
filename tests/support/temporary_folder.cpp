#include "support/temporary_folder.h"

#include "base/files.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    static std::atomic<unsigned> serial{0};
    std::random_device random;
    path = fs::temp_directory_path() / ("ombrelune-test-" + std::to_string(random()) + "-" +
                                        std::to_string(serial.fetch_add(1)));
    fs::create_directories(path);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    for (fs::recursive_directory_iterator entry(path, ignored), end; entry != end;
         entry.increment(ignored)) {
        fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
    fs::remove_all(path, ignored);
}

fs::path TemporaryFolder::Write(std::string_view name, std::span<const uint8_t> bytes) const {
    fs::path target = path / name;
    fs::create_directories(target.parent_path());
    std::ofstream file(target, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + target.string());
    }
    return target;
}

fs::path TemporaryFolder::Write(std::string_view name, std::string_view text) const {
    return Write(name, std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

std::vector<uint8_t> TemporaryFolder::Read(std::string_view name) const {
    std::ifstream file(path / name, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + (path / name).string());
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TemporaryHome::TemporaryHome()
    : before(HomeFolder()) {
    SetHomeFolder(Path());
}

TemporaryHome::~TemporaryHome() {
    SetHomeFolder(before);
}
