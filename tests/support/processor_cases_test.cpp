// Where the processors' published cases are searched.
#include "support/processor_cases.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>

TEST(ProcessorCases, ComeFromTheFirstFolderThatHasThem) {
    const TemporaryFolder beside;
    const TemporaryFolder own;
    const std::vector<std::filesystem::path> folders{beside.Path(), own.Path()};
    EXPECT_EQ(FindCaseFile("z80", nullptr, folders), own.Path() / "z80") << "named where none is";
    own.Write("z80", "sample");
    EXPECT_EQ(FindCaseFile("z80", nullptr, folders), own.Path() / "z80");
    beside.Write("z80", "all");
    EXPECT_EQ(FindCaseFile("z80", nullptr, folders), beside.Path() / "z80");
}

TEST(ProcessorCases, ComeFromTheNamedFolderAlone) {
    const TemporaryFolder named;
    const TemporaryFolder own;
    own.Write("z80", "sample");
    const std::string path = named.Path().string();
    EXPECT_EQ(FindCaseFile("z80", path.c_str(), {own.Path()}), named.Path() / "z80");
}
