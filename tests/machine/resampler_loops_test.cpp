// The wide loops of the resampler against the plain ones: every bit of every sample is the same.
#include "machine/resampler_private.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <vector>

namespace {

constexpr size_t kBeyond = 4; // values past an output that must stay as they are

std::vector<float> Noise(std::mt19937& random, size_t count) {
    std::uniform_real_distribution<float> level(-32768.0F, 32767.0F);
    std::vector<float> values(count);
    for (float& value : values) {
        value = level(random);
    }
    return values;
}

std::vector<uint32_t> BitsOf(const std::vector<float>& values) {
    std::vector<uint32_t> bits;
    for (const float value : values) {
        bits.push_back(std::bit_cast<uint32_t>(value));
    }
    return bits;
}

class ResamplerLoopsTest : public testing::Test {
protected:
    void SetUp() override {
        if (&ResamplerLoops() == &kResamplerLoopsPlain) {
            GTEST_SKIP() << "this processor has the plain loops only";
        }
        ASSERT_EQ(&ResamplerLoops(), kResamplerLoopsWide);
    }

    const RESAMPLER_LOOPS& plain = kResamplerLoopsPlain;
    const RESAMPLER_LOOPS& wide = ResamplerLoops();
    std::mt19937 random{1};
};

} // namespace

TEST_F(ResamplerLoopsTest, SplitTheSame) {
    for (size_t pairs = 0; pairs < 40; ++pairs) {
        std::vector<int16_t> samples(pairs * 2);
        for (int16_t& sample : samples) {
            sample = static_cast<int16_t>(random());
        }
        std::vector<float> sides[4];
        for (std::vector<float>& side : sides) {
            side.assign(pairs + kBeyond, 7.0F);
        }
        plain.split(samples.data(), pairs, sides[0].data(), sides[1].data());
        wide.split(samples.data(), pairs, sides[2].data(), sides[3].data());
        EXPECT_EQ(sides[0], sides[2]) << pairs;
        EXPECT_EQ(sides[1], sides[3]) << pairs;
    }
}

TEST_F(ResamplerLoopsTest, DecimateTheSame) {
    for (const size_t width : {8U, 16U, 72U}) {
        for (size_t stride = 2; stride < 7; ++stride) {
            for (size_t count = 0; count < 35; ++count) {
                // The rows of the filters are aligned; the source begins anywhere.
                const std::vector<float> taps = Noise(random, width);
                const std::vector<float> source = Noise(random, count * stride + width + 1);
                std::vector<float> expected(count + kBeyond, 7.0F);
                std::vector<float> actual = expected;
                plain.decimate(taps.data(), width, stride, source.data() + 1, count,
                               expected.data());
                wide.decimate(taps.data(), width, stride, source.data() + 1, count, actual.data());
                ASSERT_EQ(BitsOf(actual), BitsOf(expected))
                    << width << ' ' << stride << ' ' << count;
            }
        }
    }
}

TEST_F(ResamplerLoopsTest, InterpolateTheSame) {
    for (const size_t width : {8U, 16U, 80U, 88U}) {
        for (int trial = 0; trial < 100; ++trial) {
            const std::vector<float> rows = Noise(random, 2 * width);
            const std::vector<float> left = Noise(random, width + 1);
            const std::vector<float> right = Noise(random, width + 1);
            const float share = static_cast<float>(random() % 1000) / 1000.0F;
            const RESAMPLER_PAIR expected =
                plain.interpolate(rows.data(), width, share, left.data() + 1, right.data() + 1);
            const RESAMPLER_PAIR actual =
                wide.interpolate(rows.data(), width, share, left.data() + 1, right.data() + 1);
            ASSERT_EQ(BitsOf({actual.left, actual.right}), BitsOf({expected.left, expected.right}));
            const float one = wide.interpolateOne(rows.data(), width, share, left.data() + 1);
            ASSERT_EQ(BitsOf({one}),
                      BitsOf({plain.interpolateOne(rows.data(), width, share, left.data() + 1)}));
            ASSERT_EQ(BitsOf({one}), BitsOf({expected.left}));
        }
    }
}
