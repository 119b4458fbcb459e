#include "base/instruction_counter.h"

#include <gtest/gtest.h>

namespace {

// At least an instruction for each pass, as the variable must be written every time.
uint32_t Work(uint32_t passes) {
    volatile uint32_t written = 0;
    for (uint32_t pass = 0; pass < passes; ++pass) {
        written = pass;
    }
    return written;
}

} // namespace

TEST(InstructionCounter, CountsOrSaysWhyNot) {
    const InstructionCounter counter;
    const uint64_t before = counter.Count();
    EXPECT_EQ(Work(1000000), 999999u);
    const uint64_t counted = counter.Count() - before;
    if (counter.Works()) {
        EXPECT_GE(counted, 1000000u);
        EXPECT_LE(counted, 100000000u);
    } else {
        EXPECT_EQ(counted, 0u);
        EXPECT_FALSE(counter.WhyNot().empty());
        EXPECT_EQ(counter.WhyNot().find('\n'), std::string::npos);
    }
}
