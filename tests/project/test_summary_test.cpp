// The last lines of ./test: what tools/test-summary says of ctest's results.
#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <string>

namespace {

PROGRAM_RESULT Summary(const std::string& results) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("results.xml", results).string();
    return RunProgram(OMBRELUNE_SOURCE_FOLDER "/tools/test-summary", {"tests", file});
}

std::string Entry(const std::string& name, const std::string& status, const std::string& output) {
    return "\t<testcase name=\"" + name + "\" classname=\"" + name + "\" time=\"1\" status=\"" +
           status + "\">\n\t\t<failure message=\"\"/>\n\t\t<system-out>" + output +
           "</system-out>\n\t</testcase>\n";
}

} // namespace

TEST(TestSummary, CountsEntriesOfOneTestAndOfMany) {
    const PROGRAM_RESULT result =
        Summary(Entry("Fuzz.one", "run", "Done\n") +
                Entry("Suite", "run",
                      "[ RUN      ] Suite.One\n[       OK ] Suite.One (1 ms)\n"
                      "[ RUN      ] Suite.Two\n[       OK ] Suite.Two (1 ms)\n"));
    EXPECT_EQ(result.output, "tests: 3 passed, 0 failed, 0 skipped\n");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(TestSummary, SaysWhyATestWasSkipped) {
    const PROGRAM_RESULT result =
        Summary(Entry("Suite", "run",
                      "[ RUN      ] Suite.One\none.cpp:12: Skipped\na &lt;file&gt; is missing\n\n"
                      "[  SKIPPED ] Suite.One (0 ms)\n"
                      "[  SKIPPED ] 1 test, listed below:\n[  SKIPPED ] Suite.One\n"));
    EXPECT_EQ(result.output, "tests: skipped Suite.One: a <file> is missing\n"
                             "tests: 0 passed, 0 failed, 1 skipped\n");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(TestSummary, NamesWhatFailedWhateverTheWay) {
    const PROGRAM_RESULT result = Summary(
        Entry("Wrong", "fail",
              "[ RUN      ] Wrong.One\n[  FAILED  ] Wrong.One, where GetParam() = 1 (0 ms)\n"
              "[  FAILED  ] 1 test, listed below:\n[  FAILED  ] Wrong.One\n") +
        Entry("Crash", "fail",
              "[ RUN      ] Crash.One\n[       OK ] Crash.One (0 ms)\n[ RUN      ] Crash.Two\n") +
        Entry("AtTheEnd", "fail", "[ RUN      ] AtTheEnd.One\n[       OK ] AtTheEnd.One (0 ms)\n") +
        Entry("NotBuilt", "notrun", ""));
    EXPECT_EQ(result.output, "tests: FAILED Wrong.One\n"
                             "tests: FAILED Crash.Two: crashed or reached its time limit\n"
                             "tests: FAILED AtTheEnd\n"
                             "tests: FAILED NotBuilt: did not run ()\n"
                             "tests: 2 passed, 4 failed, 0 skipped\n");
    EXPECT_EQ(result.exitCode, 1);
}

TEST(TestSummary, WithoutResultsIsAFailure) {
    EXPECT_EQ(Summary("").exitCode, 1);
    EXPECT_EQ(Summary("").output, "tests: no results, as its tests did not run\n");
}
