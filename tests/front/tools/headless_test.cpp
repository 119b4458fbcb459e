// `ombrelune play --headless` as a user runs it, on our own games.

#include "megadrive/md_rig.h"

#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <sstream>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

// The games that the program's own help lists.
std::vector<std::string> DemoNames() {
    const PROGRAM_RESULT help = RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune", {"play", "--help"});
    std::vector<std::string> names;
    std::istringstream text(help.output);
    for (std::string word; text >> word;) {
        if (word.starts_with("demo:") && word != "demo:NAME") {
            names.push_back(word);
        }
    }
    return names;
}

class Headless : public testing::Test {
protected:
    PROGRAM_RESULT Play(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(),
                         {"--home", folder.Path().string(), "play", "--headless"});
        return RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune", arguments);
    }
    [[nodiscard]] std::string Path(const std::string& name) const {
        return (folder.Path() / name).string();
    }
    [[nodiscard]] std::vector<std::string> Lines(const std::string& name) const {
        const auto bytes = folder.Read(name);
        std::istringstream text(std::string(bytes.begin(), bytes.end()));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    // A line of hashes without the frame's number.
    static std::string WithoutNumber(const std::string& line) {
        return line.substr(line.find(' '));
    }
    // The picture hash of a line of hashes.
    static std::string Picture(const std::string& line) {
        std::istringstream words(line);
        std::string number;
        std::string width;
        std::string height;
        std::string picture;
        words >> number >> width >> height >> picture;
        return picture;
    }

    TemporaryFolder folder;
    const std::vector<std::string> demos = DemoNames();
};

} // namespace

TEST_F(Headless, ThereIsAGameForEachMachineThatIsBuiltIn) {
    for (const char* prefix : {"demo:sms-", "demo:gg-", "demo:md-", "demo:nes-", "demo:arcade-"}) {
        EXPECT_TRUE(std::any_of(demos.begin(), demos.end(), [prefix](const std::string& name) {
            return name.starts_with(prefix);
        })) << prefix;
    }
}

TEST_F(Headless, TheSameCommandTwiceWritesTheSameBytes) {
    for (const std::string& demo : demos) {
        for (const char* run : {"a", "b"}) {
            const std::string prefix = run;
            const PROGRAM_RESULT result =
                Play({demo, "--frames", "120", "--frame-hashes", Path(prefix + ".txt"), "--wav",
                      Path(prefix + ".wav"), "--screenshot", "last=" + Path(prefix + ".png"),
                      "--save-state", Path(prefix + ".state")});
            ASSERT_EQ(result.exitCode, 0) << demo << ": " << result.error;
        }
        EXPECT_EQ(Lines("a.txt").size(), 120u);
        for (const char* kind : {".txt", ".wav", ".png", ".state"}) {
            EXPECT_EQ(folder.Read(std::string("a") + kind), folder.Read(std::string("b") + kind))
                << demo << kind;
        }
    }
}

TEST_F(Headless, EveryDemoMovesAndSounds) {
    for (const std::string& demo : demos) {
        ASSERT_EQ(
            Play({demo, "--frames", "400", "--frame-hashes", Path("h.txt"), "--wav", Path("s.wav")})
                .exitCode,
            0)
            << demo;
        const auto lines = Lines("h.txt");
        std::set<std::string> pictures;
        for (const std::string& line : lines) {
            pictures.insert(Picture(line));
        }
        // The NES test card shows still pages and turns them now and then.
        EXPECT_GT(pictures.size(), demo.ends_with("-testcard") ? 1u : 10u)
            << demo << " stands still";
        if (demo.ends_with("-torture") || demo.ends_with("-testcard")) {
            continue; // a test card for the eye
        }
        const auto wav = folder.Read("s.wav");
        EXPECT_TRUE(std::any_of(wav.begin() + 44, wav.end(), [](uint8_t b) { return b != 0; }))
            << demo << " is silent";
    }
}

TEST_F(Headless, AStateTakenAndLoadedRunsToTheSamePicturesAndSound) {
    for (const std::string& demo : demos) {
        const std::string& game = demo;
        ASSERT_EQ(Play({game, "--frames", "90", "--save-state", Path("s")}).exitCode, 0);
        ASSERT_EQ(Play({game, "--frames", "150", "--frame-hashes", Path("whole")}).exitCode, 0);
        ASSERT_EQ(Play({game, "--frames", "60", "--load-state", Path("s"), "--frame-hashes",
                        Path("loaded")})
                      .exitCode,
                  0);
        const auto whole = Lines("whole");
        const auto loaded = Lines("loaded");
        ASSERT_EQ(whole.size(), 150u);
        ASSERT_EQ(loaded.size(), 60u);
        for (size_t i = 0; i < loaded.size(); ++i) {
            ASSERT_EQ(WithoutNumber(loaded[i]), WithoutNumber(whole[90 + i]))
                << demo << " frame " << i;
        }
    }
}

TEST_F(Headless, WrongOptionsAreToldApart) {
    const std::string game = demos.front();
    EXPECT_EQ(Play({"demo:none"}).exitCode, 1);
    EXPECT_EQ(Play({game, "--screenshot", "x.png"}).exitCode, 2);
    EXPECT_EQ(Play({game, "--frames", "5", "--screenshot", "9=x.png"}).exitCode, 2);
    EXPECT_EQ(Play({game, "--set", "nonsense=1"}).exitCode, 2);
    EXPECT_EQ(Play({game, "--set", "console=toaster"}).exitCode, 2);
    EXPECT_EQ(Play({game, "--frames", "1", "--peek", "zz"}).exitCode, 2);
    EXPECT_EQ(Play({game, "--frames", "1", "--input", Path("missing")}).exitCode, 1);
    EXPECT_EQ(Play({game, "--frames", "1", "--load-state", Path("missing")}).exitCode, 1);
    folder.Write("bad-state", std::string_view("no state"));
    const PROGRAM_RESULT bad = Play({game, "--frames", "1", "--load-state", Path("bad-state")});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_THAT(bad.error, HasSubstr("bad-state: is not a state of this machine"));
}

TEST_F(Headless, MegaDriveFilesArePlayedOrSaidToBeWrong) {
    MdProgram loops;
    loops.Stop();
    // The last byte of an unused vector; with the bytes out of order it belongs to the start vector.
    loops.PutLong(12, kMdOther + 1);
    const std::vector<uint8_t>& plain = loops.Image();
    // The same program in the 16 KiB blocks of a copier: first the odd bytes, then the even ones.
    constexpr size_t kBlock = 16384;
    std::vector<uint8_t> interleaved(plain.size());
    for (size_t i = 0; i < plain.size(); ++i) {
        const size_t half = i % 2 == 0 ? kBlock / 2 : 0;
        interleaved[i / kBlock * kBlock + half + i % kBlock / 2] = plain[i];
    }
    std::vector<uint8_t> dump(512, 0);
    dump.insert(dump.end(), interleaved.begin(), interleaved.end());
    // Vectors and header alone. The shortest image: a loop in the last vector.
    std::vector<uint8_t> shortest(plain.begin(), plain.begin() + 512);
    shortest[6] = 0x00;
    shortest[7] = 0xFC;
    shortest[0xFC] = 0x60;
    shortest[0xFD] = 0xFE;
    std::vector<uint8_t> oddSize = shortest;
    oddSize.push_back(0);
    MdProgram wrong;
    wrong.Words({0x4EF9}).Long(0x000301); // jmp to an odd address
    std::vector<uint8_t> nameless = wrong.Image();
    std::fill_n(nameless.begin() + 0x100, 4, uint8_t{' '});
    std::vector<uint8_t> indented = wrong.Image();
    std::copy_n(" SEGA", 5, indented.begin() + 0x100);

    const std::string noHeader = "; the image has no Mega Drive header\n";
    const std::string gone = "address error at 0x000301, program counter 0x000301\n";
    const std::string bare = ": is only a copier's header, without a Mega Drive image\n";
    const struct {
        const char* name;
        std::vector<uint8_t> bytes;
        int exitCode;
        std::string words; // that the line ends with
    } rows[] = {
        {"bytes-511.md", std::vector<uint8_t>(511, 0),            1,                          "less than 512 bytes\n"},
        {"shortest.md",              shortest,                          0,                  ""                 },
        {"odd-size.md",              oddSize,                          0,                   "" },
        {"dump.md",              dump,                              0,                          ""                    },
        {"no-header.md",              interleaved,                         1,              noHeader},
        {"zeros-512.md",              std::vector<uint8_t>(512,                         0), 1,       bare},
        {"zeros-1023.md",          std::vector<uint8_t>(1023,                                  0),                                 1,                   bare},
        {"wrong.md",             wrong.Image(),                                 1,              gone            },
        {"nameless.md",             nameless, 1, noHeader  },
        {"indented.md",             indented,                             1,                                          gone                                                     },
    };
    for (const auto& row : rows) {
        folder.Write(row.name, row.bytes);
        const PROGRAM_RESULT result = Play({Path(row.name), "--frames", "2"});
        EXPECT_EQ(result.exitCode, row.exitCode) << row.name << ": " << result.error;
        if (row.exitCode == 0) {
            EXPECT_EQ(result.error, "") << row.name;
        } else {
            EXPECT_THAT(result.error, AllOf(StartsWith("ombrelune: " + Path(row.name) + ": "),
                                            EndsWith(row.words)));
        }
    }
}

TEST_F(Headless, PeekAndDumpShowTheMachine) {
    const std::string game = demos.front();
    const PROGRAM_RESULT result = Play({game, "--frames", "30", "--peek", "0x0000:2", "--peek",
                                        "0xC000", "--dump", "ram=" + Path("ram")});
    ASSERT_EQ(result.exitCode, 0) << result.error;
    // Two bytes in a line, one in the next.
    EXPECT_EQ(result.output.size(), std::string("f3 31\n00\n").size());
    const auto ram = folder.Read("ram");
    EXPECT_EQ(ram.size(), 8192u);
    char first[4];
    std::snprintf(first, sizeof first, "%02x\n", ram[0]);
    EXPECT_EQ(result.output.substr(6), first);
}
