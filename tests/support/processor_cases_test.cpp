// Where the processors' published cases are read from.
#include "support/processor_cases.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>

namespace {

const std::filesystem::path kConfigured(OMBRELUNE_VECTORS_FOLDER);

} // namespace

TEST(ProcessorCases, ComeFromTheConfiguredFolder) {
    EXPECT_EQ(CaseFile("z80", nullptr), kConfigured / "z80");
    EXPECT_EQ(CaseFile("z80", ""), kConfigured / "z80");
}

// Also for a file that only the configured folder has.
TEST(ProcessorCases, ComeFromTheNamedFolderAlone) {
    const TemporaryFolder named;
    const std::string path = named.Path().string();
    EXPECT_EQ(CaseFile("z80.txt.gz", path.c_str()), named.Path() / "z80.txt.gz");
}

TEST(ProcessorCases, AreThereForEveryProcessor) {
    for (const char* file : {"z80.txt.gz", "m6502.txt.gz", "m68000.txt.gz"}) {
        EXPECT_TRUE(std::filesystem::exists(CaseFile(file, nullptr))) << file;
    }
}
