#include "formats/hand_made.h"
#include "formats/packing.h"
#include "formats/sha256.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

// Property byte (pb * 5 + lp) * 9 + lc, then the dictionary size of 4 MiB.
const Bytes kProperties = {(2 * 5 + 0) * 9 + 3, 0x00, 0x00, 0x40, 0x00};

constexpr std::string_view kVerse =
    "By the light of the moon, by the light of the moon, by the light of the moon.";
// The verse as liblzma packs it with the same properties: an independent encoder.
const Bytes kPackedVerse = {0x00, 0x21, 0x1E, 0x40, 0x07, 0x43, 0x7C, 0xF3, 0xFE, 0x77,
                            0xF7, 0xD4, 0x2B, 0x0F, 0xC3, 0x07, 0x35, 0xBA, 0x68, 0x94,
                            0x99, 0x68, 0xA0, 0x00, 0x01, 0x8F, 0x50, 0x34, 0x94, 0x93,
                            0x29, 0x65, 0xFF, 0xFF, 0xFD, 0x0D, 0x60, 0x00};

void ExpectRoundTrip(const Bytes& image) {
    const Bytes packed = PackImage(image);
    ASSERT_GE(packed.size(), kLzmaPropertyBytes) << image.size() << " bytes";
    Bytes unpacked(image.size(), 0xEE);
    EXPECT_TRUE(UnpackImage(packed, unpacked)) << image.size() << " bytes";
    EXPECT_TRUE(unpacked == image) << image.size() << " bytes";
}

} // namespace

TEST(Packing, BeginsWithTheFivePropertyBytes) {
    const Bytes packed = PackImage(Bytes(1000, 7));
    ASSERT_GT(packed.size(), kLzmaPropertyBytes);
    EXPECT_EQ(Slice(packed, 0, 5), kProperties);
}

// The hash is that of what the LZMA SDK 9.22 makes of this image at its level 2: files are the same
// whichever of the two has packed them.
TEST(Packing, MakesTheBytesOfTheLzmaSdk) {
    Bytes image(200000);
    for (uint32_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>((i * i >> 9) ^ (i >> 4));
    }
    EXPECT_EQ(HexText(Sha256(PackImage(image))),
              "d9ca4533e5a7024205c1553e3a266fda40f531baacb615f701fc4aaae6217867");
}

TEST(Packing, UnpacksTheStreamOfAnotherEncoder) {
    Bytes image(kVerse.size());
    EXPECT_TRUE(UnpackImage(kProperties + kPackedVerse, image));
    EXPECT_EQ(image, Text(kVerse));
}

TEST(Packing, PatternsBecomeSmaller) {
    const Bytes image(1 << 20, 0xFF);
    EXPECT_LT(PackImage(image).size(), image.size() / 100);
    ExpectRoundTrip(image);
}

TEST(Packing, ImagesWithoutAnyPatternSurviveAlthoughTheyGrow) {
    CRandom random(1);
    for (const size_t size : {1u, 2u, 3u, 5u, 16u, 100u, 255u, 1000u, 4096u, 32768u, 100001u}) {
        const Bytes image = random.Fill(size);
        EXPECT_GT(PackImage(image).size(), image.size()) << size;
        ExpectRoundTrip(image);
    }
}

TEST(Packing, EmptyImageSurvives) {
    ExpectRoundTrip({});
}

TEST(Packing, ImageLargerThanTheDictionarySurvives) {
    CRandom random(2);
    const Bytes noise = random.Fill(100000);
    // The second span repeats the first from farther back than the dictionary reaches.
    const Bytes image = noise + Bytes(size_t{1} << 22, 0) + noise;
    EXPECT_GT(PackImage(image).size(), 2 * noise.size());
    ExpectRoundTrip(image);
}

TEST(Packing, DensestStreamStaysBelowTheBound) {
    const Bytes image(size_t{1} << 24, 0);
    const Bytes packed = PackImage(image);
    EXPECT_LE(image.size(), LargestUnpackedSize(packed.size()));
    ExpectRoundTrip(image);
}

TEST(Packing, BoundEndsAtTheImageLimit) {
    EXPECT_EQ(LargestUnpackedSize(0), 0u);
    EXPECT_EQ(LargestUnpackedSize(10), 81920u);
    EXPECT_EQ(LargestUnpackedSize(kImageLimit / 8192), kImageLimit);
    EXPECT_EQ(LargestUnpackedSize(UINT64_MAX), kImageLimit);
}

TEST(Packing, StreamThatEndsEarlyUnpacksToItsBeginningAndThenZero) {
    CRandom random(3);
    const Bytes image = random.Fill(4000);
    const Bytes packed = PackImage(image);
    Bytes unpacked(image.size(), 0xEE);
    EXPECT_FALSE(UnpackImage(Slice(packed, 0, packed.size() / 2), unpacked));
    EXPECT_EQ(Slice(unpacked, 0, 1000), Slice(image, 0, 1000));
    EXPECT_EQ(Slice(unpacked, 3000, 1000), Bytes(1000, 0));
}

TEST(Packing, MoreBytesThanTheStreamHoldsAreZero) {
    const Bytes image = Text(kVerse);
    Bytes unpacked(image.size() + 50, 0xEE);
    EXPECT_FALSE(UnpackImage(kProperties + kPackedVerse, unpacked));
    EXPECT_EQ(Slice(unpacked, 0, image.size()), image);
    EXPECT_EQ(Slice(unpacked, image.size() + 40, 10), Bytes(10, 0));
}

TEST(Packing, InvalidPropertiesAreRefused) {
    Bytes unpacked(10, 0xEE);
    EXPECT_FALSE(UnpackImage(Bytes{225, 0, 0, 0x40, 0} + kPackedVerse, unpacked));
    EXPECT_EQ(unpacked, Bytes(10, 0));
    for (size_t length = 0; length < 5; ++length) {
        EXPECT_FALSE(UnpackImage(Slice(kProperties, 0, length), unpacked)) << length;
    }
}

TEST(Packing, DictionarySizeOfTheStreamAllocatesNothing) {
    Bytes image(kVerse.size());
    const Bytes properties = {0x5D, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_TRUE(UnpackImage(properties + kPackedVerse, image));
    EXPECT_EQ(image, Text(kVerse));
}

TEST(Packing, DamagedStreamsOnlyGiveOtherBytes) {
    CRandom random(4);
    Bytes image = random.Fill(300);
    image = image + image + Bytes(500, 9);
    const Bytes packed = PackImage(image);
    size_t different = 0;
    for (int round = 0; round < 5000; ++round) {
        Bytes damaged = packed;
        damaged[random.Below(damaged.size())] ^= static_cast<uint8_t>(1u << random.Below(8));
        Bytes unpacked(image.size());
        UnpackImage(damaged, unpacked);
        different += unpacked != image ? 1u : 0u;
    }
    EXPECT_GT(different, 4000u);
}
