// The program that the build runs.

#include "support/run_program.h"
#include "support/temporary_folder.h"
#include "tools/demo_tables/hand_made_png.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

std::string TextOf(const TemporaryFolder& folder, const char* name) {
    const auto bytes = folder.Read(name);
    return {bytes.begin(), bytes.end()};
}

TEST(DemoTables, WritesTheTablesAndWhatTheyWereReadFrom) {
    const TemporaryFolder folder;
    const auto picture = folder.Write(
        "a b.png", HandMadePng({"1000000000000000", "0000000000000000", "0000000000000000",
                                "0000000000000000", "0000000000000000", "0000000000000000",
                                "0000000000000000", "0000000000000000"}));
    const auto sheet = folder.Write("s.sheet", "picture p.png\nformat bits\ndrawing - 0 0 2 1\n");
    std::filesystem::copy_file(picture, folder.Path() / "p.png");
    const std::string output = (folder.Path() / "s.inc").string();
    EXPECT_EQ(RunProgram(DEMO_TABLES, {sheet.string(), output}).exitCode, 0);
    EXPECT_EQ(TextOf(folder, "s.inc"),
              "    .byte 128, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n");
    EXPECT_EQ(TextOf(folder, "s.inc.d"),
              output + ": " + sheet.string() + " " + (folder.Path() / "p.png").string() + "\n");

    const std::string plane = (folder.Path() / "a.inc").string();
    EXPECT_EQ(RunProgram(DEMO_TABLES, {picture.string(), plane}).exitCode, 0);
    EXPECT_EQ(TextOf(folder, "a_count.inc"), "a bCells = 1\n");
    EXPECT_THAT(TextOf(folder, "a.inc.d"), EndsWith("/a\\ b.png\n"));
}

TEST(DemoTables, SaysWhatIsWrongAndWritesNothing) {
    const TemporaryFolder folder;
    const auto score = folder.Write("s.score", "player nes\ntrack a\n  Q-4:1\n");
    const std::string output = (folder.Path() / "s.inc").string();
    const PROGRAM_RESULT result = RunProgram(DEMO_TABLES, {score.string(), output});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("s.score:3: 'Q-4:1' is no note"));
    EXPECT_FALSE(std::filesystem::exists(output));

    EXPECT_EQ(RunProgram(DEMO_TABLES, {"x.gif", output}).exitCode, 1);
    EXPECT_EQ(RunProgram(DEMO_TABLES, {}).exitCode, 2);
}

} // namespace
