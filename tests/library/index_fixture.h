// A home folder with games, scanned as the program does it.
#pragma once

#include "library/library_index.h"
#include "library/made_games.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;
using std::chrono::hours;

inline constexpr const char* kDatabase = "library-cache.db";

inline std::string TitleOf(const CGameFile& game) {
    NAME_VIEW name;
    return game.GetName(0, name) ? name.title : "";
}

class Library : public testing::Test { // NOLINT(readability-identifier-naming): a test's name
protected:
    // A game of an hour ago, unless a test says otherwise.
    fs::path Put(const std::string& name, std::string_view title, uint32_t names = 1,
                 hours age = hours(1)) {
        const fs::path path = home.Write("sms/" + name, MadeGame(title, names));
        SetAge(path, age);
        return path;
    }
    // Puts other bytes into a file without changing its length or its time.
    static void ReplaceUnseen(const fs::path& path, const std::vector<uint8_t>& bytes) {
        const auto time = fs::last_write_time(path);
        ASSERT_EQ(fs::file_size(path), bytes.size());
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        fs::last_write_time(path, time);
    }
    // One scan by a program of its own: the title of every `.game`, empty for one that is refused.
    std::map<std::string, std::string> Scan(uint64_t* filesRead = nullptr) {
        LibraryIndex index;
        std::string error;
        EXPECT_TRUE(index.Open(Database(), error)) << error;
        return ScanWith(index, filesRead);
    }
    std::map<std::string, std::string> ScanWith(LibraryIndex& index,
                                                uint64_t* filesRead = nullptr) {
        std::map<std::string, std::string> titles;
        const uint64_t before = index.FilesRead();
        index.LoadFolder(Games());
        for (const auto& entry : fs::directory_iterator(Games())) {
            CGameFile game;
            const bool loaded = index.LoadGame(entry.path(), game);
            titles[entry.path().filename().string()] = loaded ? TitleOf(game) : "";
        }
        if (filesRead != nullptr) {
            *filesRead = index.FilesRead() - before;
        }
        index.Commit();
        return titles;
    }
    uint64_t FilesReadByAScan() {
        uint64_t filesRead = 0;
        (void)Scan(&filesRead);
        return filesRead;
    }
    // Rows in the database; -1 if there is no table.
    int64_t Rows() {
        SqliteDatabase database;
        EXPECT_TRUE(database.Open(Database()));
        SqliteStatement count(database, "SELECT count(*) FROM files");
        return count.NextRow() ? count.Integer(0) : -1;
    }
    [[nodiscard]] fs::path Database() const { return home.Path() / kDatabase; }
    [[nodiscard]] fs::path Games() const { return home.Path() / "sms"; }

    TemporaryFolder home;
};
