// `config.xml` on the disk: what a start reads from it and what a save writes.
#include "settings/settings.h"
#include "settings/store/settings_private.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<uint8_t> Defaults() {
    SettingsStore store;
    RegisterDefaultSettings(store);
    return store.Save();
}

std::string Text(const std::vector<uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

TEST(SettingsFile, WhatIsSavedIsThereAtTheNextStart) {
    const TemporaryHome home;
    SettingsStore store;
    RegisterDefaultSettings(store);
    store.SetInt(L"audio_app_samplerate", 48000);
    store.SetString(L"login_username", L"Zoë");
    std::string error = "from before";
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    EXPECT_EQ(error, "");
    SettingsStore next;
    RegisterDefaultSettings(next);
    EXPECT_TRUE(LoadSettingsFile(next, error)) << error;
    EXPECT_EQ(next.GetInt(L"audio_app_samplerate"), 48000);
    EXPECT_EQ(next.GetString(L"login_username"), L"Zoë");
    EXPECT_FALSE(fs::exists(home.Path() / "config.xml.damaged"));
}

TEST(SettingsFile, AMissingFileLeavesTheDefaultsWithoutAWord) {
    const TemporaryHome home;
    SettingsStore store;
    RegisterDefaultSettings(store);
    std::string error = "from before";
    EXPECT_FALSE(LoadSettingsFile(store, error));
    EXPECT_EQ(error, "");
    EXPECT_EQ(store.Save(), Defaults());
}

TEST(SettingsFile, ABrokenFileLeavesTheDefaultsAndTheErrorNamesIt) {
    const std::string defaults = Text(Defaults());
    const std::string texts[] = {"", "no XML at all", defaults.substr(0, 40),
                                 std::string(kSettingsDocumentLimit + 1, ' ')};
    for (const std::string& text : texts) {
        const TemporaryHome home;
        home.Write("config.xml", text);
        SettingsStore store;
        RegisterDefaultSettings(store);
        std::string error;
        EXPECT_FALSE(LoadSettingsFile(store, error));
        EXPECT_EQ(Text(store.Save()), defaults);
        EXPECT_TRUE(error.starts_with((home.Path() / "config.xml").string() + ": ")) << error;
    }
}

TEST(SettingsFile, ADamagedFileIsKeptBesideTheFirstSave) {
    const TemporaryHome home;
    const std::string damaged = "<Settings><int name=\"app_window_width\" value=800/>";
    home.Write("config.xml", damaged);
    SettingsStore store;
    RegisterDefaultSettings(store);
    std::string error;
    EXPECT_FALSE(LoadSettingsFile(store, error));
    EXPECT_FALSE(fs::exists(home.Path() / "config.xml.damaged")) << "loading moves nothing";
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    EXPECT_EQ(Text(home.Read("config.xml.damaged")), damaged);
    EXPECT_EQ(home.Read("config.xml"), Defaults());
    store.SetInt(L"app_window_width", 640);
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    EXPECT_EQ(Text(home.Read("config.xml.damaged")), damaged) << "only the damaged file is kept";
    EXPECT_EQ(home.Read("config.xml"), store.Save());
}

TEST(SettingsFile, AFileThatIsReadInPartIsUsedAndTheErrorSaysWhere) {
    const TemporaryHome home;
    const std::string cut = "<Settings>\n<int name=\"app_window_width\" value=\"800\"/>\n<int";
    home.Write("config.xml", cut);
    SettingsStore store;
    RegisterDefaultSettings(store);
    std::string error;
    EXPECT_TRUE(LoadSettingsFile(store, error));
    EXPECT_EQ(store.GetInt(L"app_window_width"), 800);
    EXPECT_TRUE(error.starts_with((home.Path() / "config.xml").string() +
                                  ": is read only in part: line 3: "))
        << error;
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    EXPECT_EQ(error, "");
    EXPECT_EQ(home.Read("config.xml"), store.Save());
    EXPECT_EQ(Text(home.Read("config.xml.damaged")), cut) << "what was not read is not lost";
}

TEST(SettingsFile, AFileThatIsTooLongIsKeptToo) {
    const TemporaryHome home;
    home.Write("config.xml", std::string(kSettingsDocumentLimit + 1, ' '));
    SettingsStore store;
    RegisterDefaultSettings(store);
    std::string error;
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    EXPECT_EQ(fs::file_size(home.Path() / "config.xml.damaged"), kSettingsDocumentLimit + 1);
    EXPECT_EQ(home.Read("config.xml"), Defaults());
}

TEST(SettingsFile, AFolderOrPipeOfThatNameIsReportedAndNeverRead) {
    const TemporaryHome home;
    SettingsStore store;
    RegisterDefaultSettings(store);
    const fs::path path = home.Path() / "config.xml";
    fs::create_directory(path);
    std::string error;
    EXPECT_FALSE(LoadSettingsFile(store, error));
    EXPECT_EQ(error, path.string() + ": is not a regular file");
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(LoadSettingsFile(store, error));
    EXPECT_EQ(error, path.string() + ": is not a regular file");
    EXPECT_EQ(store.Save(), Defaults());
}

TEST(SettingsFile, ASecondDamagedFileDoesNotReplaceTheFirst) {
    const TemporaryHome home;
    SettingsStore store;
    RegisterDefaultSettings(store);
    std::string error;
    home.Write("config.xml", "damaged once");
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    home.Write("config.xml", "damaged twice");
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    EXPECT_EQ(Text(home.Read("config.xml.damaged")), "damaged once");
    EXPECT_EQ(Text(home.Read("config.xml.damaged-2")), "damaged twice");
    EXPECT_EQ(home.Read("config.xml"), Defaults());
}

// A child that hangs is killed by its own alarm, so that no wait is endless.
constexpr unsigned kLongestChild = 120; // seconds

// Saves in a child that may write no file of more than 500 bytes, as on a disk that fills up in the
// middle of the file. True when the save failed and its error names the settings file.
bool SaveFailsOnAFullDisk(SettingsStore& store) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(kLongestChild);
        std::string error;
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{500, 500};
        store.SetInt(L"app_window_width", 1);
        const bool limited = setrlimit(RLIMIT_FSIZE, &limit) == 0;
        const bool saved = SaveSettingsFile(store, error);
        _exit(limited && !saved && error.find("config.xml: ") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(SettingsFile, ADamagedFileThatCannotBeKeptIsNotReplaced) {
    const TemporaryHome home;
    const std::string damaged(2000, 'x');
    home.Write("config.xml", damaged);
    SettingsStore store;
    RegisterDefaultSettings(store);
    EXPECT_TRUE(SaveFailsOnAFullDisk(store));
    EXPECT_EQ(Text(home.Read("config.xml")), damaged);
}

TEST(SettingsFile, AFailedSaveLeavesTheOldFile) {
    const TemporaryHome home;
    SettingsStore store;
    RegisterDefaultSettings(store);
    std::string error;
    ASSERT_TRUE(SaveSettingsFile(store, error)) << error;
    EXPECT_TRUE(SaveFailsOnAFullDisk(store));
    EXPECT_EQ(home.Read("config.xml"), Defaults());
}

// Saves two contents in turn until it is killed; reports the first save.
[[noreturn]] void SaveForEver(const SettingsStore& one, const SettingsStore& other, int pipe) {
    std::string error;
    for (bool first = true;; first = false) {
        const bool saved = SaveSettingsFile(one, error) && SaveSettingsFile(other, error);
        if (!saved || (first && write(pipe, "x", 1) != 1)) {
            _exit(1);
        }
    }
}

TEST(SettingsFile, ASaveThatIsKilledLeavesAWholeFile) {
    const TemporaryHome home;
    SettingsStore one;
    SettingsStore other;
    RegisterDefaultSettings(one);
    RegisterDefaultSettings(other);
    other.SetString(L"login_username", std::wstring(300'000, L'x')); // long to write
    const std::vector<uint8_t> contents[] = {one.Save(), other.Save()};
    std::string error;
    ASSERT_TRUE(SaveSettingsFile(one, error)) << error;
    std::mt19937 random(20);
    std::uniform_int_distribution<useconds_t> moment(0, 8'000);
    for (int round = 0; round < 48; ++round) {
        int ends[2] = {};
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            alarm(kLongestChild);
            SaveForEver(one, other, ends[1]);
        }
        close(ends[1]);
        char started = 0;
        EXPECT_EQ(read(ends[0], &started, 1), 1) << "the child could not save";
        close(ends[0]);
        usleep(moment(random));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status)) << "the child ended by itself";
        const std::vector<uint8_t> found = home.Read("config.xml");
        EXPECT_TRUE(found == contents[0] || found == contents[1]) << found.size();
        SettingsStore next;
        RegisterDefaultSettings(next);
        EXPECT_TRUE(LoadSettingsFile(next, error)) << error;
    }
    EXPECT_FALSE(fs::exists(home.Path() / "config.xml.damaged"));
}

} // namespace
