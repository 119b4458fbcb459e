// Soft patches as a user gives them: beside the game, or on the command line.

#include "formats/hand_made.h"
#include "front/tools/run_ombrelune.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace {

class PatchCommand : public testing::Test {
protected:
    PatchCommand() {
        Bytes image(0x8000);
        image[0] = 0x18; // a jump to itself
        image[1] = 0xFE;
        image[0x100] = 0xAA;
        home.Write("Game.sms", image);
    }
    // The byte at 0x100 of the program: 0xAA without a patch.
    PROGRAM_RESULT Peek(std::vector<std::string> more = {}) const {
        std::vector<std::string> arguments = {"play",   "--headless", "--frames",      "1",
                                              "--peek", "0x100",      Path("Game.sms")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Ombrelune(arguments, home);
    }
    [[nodiscard]] std::string Path(const std::string& name) const {
        return (home.Path() / name).string();
    }
    static Bytes Patch(uint8_t value) {
        return Text("PATCH") + Bytes{0, 1, 0, 0, 1, value} + Text("EOF");
    }

    TemporaryFolder home;
};

} // namespace

TEST_F(PatchCommand, APatchBesideTheGameIsPutIntoIt) {
    EXPECT_EQ(Peek().output, "aa\n");
    home.Write("Game.ips", Patch(0xBB));
    const PROGRAM_RESULT patched = Peek();
    EXPECT_EQ(patched.output, "bb\n");
    EXPECT_THAT(patched.error, HasSubstr("Game.ips: this patch has been put into the game"));
    const PROGRAM_RESULT plain = Peek({"--no-patch"});
    EXPECT_EQ(plain.output, "aa\n");
    EXPECT_EQ(plain.error, "");
}

TEST_F(PatchCommand, TheGamesFileStaysAsItIs) {
    home.Write("Game.ips", Patch(0xBB));
    const std::vector<uint8_t> before = home.Read("Game.sms");
    EXPECT_EQ(Peek().output, "bb\n");
    EXPECT_EQ(home.Read("Game.sms"), before);
}

TEST_F(PatchCommand, AGivenPatchIsPutInInsteadOfTheOneBeside) {
    home.Write("Game.ips", Patch(0xBB));
    home.Write("other.ips", Patch(0xCC));
    EXPECT_EQ(Peek({"--patch", Path("other.ips")}).output, "cc\n");
}

TEST_F(PatchCommand, AGivenPatchThatDoesNotFitEndsTheRunAndOneBesideDoesNot) {
    home.Write("Game.ups", std::string_view("UPS1"));
    const PROGRAM_RESULT beside = Peek();
    EXPECT_EQ(beside.exitCode, 0);
    EXPECT_EQ(beside.output, "aa\n");
    EXPECT_THAT(beside.error, HasSubstr("Game.ups: is cut off; the game is played without it"));
    const PROGRAM_RESULT given = Peek({"--patch", Path("Game.ups")});
    EXPECT_EQ(given.exitCode, 1);
    EXPECT_EQ(given.error, "ombrelune: " + Path("Game.ups") + ": is cut off\n");
    EXPECT_EQ(Peek({"--patch", Path("missing.ips")}).exitCode, 1);
    EXPECT_EQ(Peek({"--patch", Path("x.ips"), "--no-patch"}).exitCode, 2);
}
