#include "formats/checksums.h"
#include "formats/hand_made.h"
#include "formats/soft_patch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using testing::HasSubstr;

namespace {

constexpr uint64_t kLimit = 1 << 16;

void Append(Bytes& to, const Bytes& bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

void Append32(Bytes& to, uint32_t value) {
    to.resize(to.size() + 4);
    PutInteger(to, to.size() - 4, 4, value);
}

// A number as UPS and BPS write it.
Bytes Number(uint64_t value) {
    Bytes bytes;
    for (;;) {
        const auto low = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
        if (value == 0) {
            bytes.push_back(low | 0x80);
            return bytes;
        }
        bytes.push_back(low);
        --value;
    }
}

// The three checksums after a patch.
Bytes Ended(Bytes patch, const Bytes& image, const Bytes& result) {
    Append32(patch, Crc32(image));
    Append32(patch, Crc32(result));
    Append32(patch, Crc32(patch));
    return patch;
}

Bytes Ups(const Bytes& image, const Bytes& result, const Bytes& hunks) {
    Bytes patch = Text("UPS1");
    Append(patch, Number(image.size()));
    Append(patch, Number(result.size()));
    Append(patch, hunks);
    return Ended(patch, image, result);
}

Bytes Bps(const Bytes& image, const Bytes& result, const Bytes& actions, const Bytes& notes = {}) {
    Bytes patch = Text("BPS1");
    Append(patch, Number(image.size()));
    Append(patch, Number(result.size()));
    Append(patch, Number(notes.size()));
    Append(patch, notes);
    Append(patch, actions);
    return Ended(patch, image, result);
}

enum Action : uint64_t { kImageHere, kNewBytes, kImageCopy, kResultCopy };

Bytes Act(Action action, uint64_t length, const Bytes& rest = {}) {
    Bytes bytes = Number((length - 1) << 2 | action);
    Append(bytes, rest);
    return bytes;
}

Bytes Forward(uint64_t distance) {
    return Number(distance << 1);
}

Bytes Back(uint64_t distance) {
    return Number(distance << 1 | 1);
}

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) {
        Append(all, part);
    }
    return all;
}

Bytes Applied(const Bytes& patch, const Bytes& image, std::string& error, uint64_t limit = kLimit) {
    Bytes result{1}; // must be replaced
    if (!ApplySoftPatch(patch, image, limit, result, error)) {
        EXPECT_TRUE(result.empty());
        EXPECT_FALSE(error.empty());
    }
    return result;
}

// What a patch makes that must apply.
Bytes Made(const Bytes& patch, const Bytes& image) {
    std::string error;
    Bytes result = Applied(patch, image, error);
    EXPECT_EQ(error, "");
    return result;
}

std::string Fault(const Bytes& patch, const Bytes& image, uint64_t limit = kLimit) {
    std::string error;
    EXPECT_EQ(Applied(patch, image, error, limit), Bytes{});
    return error;
}

} // namespace

TEST(IpsPatch, ReplacesRunsAndGrowsTheImageWithZeros) {
    const Bytes patch = Joined({
        Text("PATCH"), {0, 0, 1, 0, 2,  'x', 'y'},
         {0, 0,  8,  0, 1, 'z'  },
         Text("EOF")
    });
    EXPECT_EQ(Made(patch, Text("abcd")), Joined({
                                             Text("axyd"), {0, 0, 0, 0, 'z'}
    }));
}

TEST(IpsPatch, RepeatsAByteWhereTheSizeIsZero) {
    const Bytes patch = Joined({
        Text("PATCH"), {0, 0, 2, 0, 0, 0, 3, 'r'},
         Text("EOF")
    });
    EXPECT_EQ(Made(patch, Text("abcdef")), Text("abrrrf"));
}

TEST(IpsPatch, CutsTheImageToTheSizeAfterTheEnd) {
    const Bytes patch = Joined({
        Text("PATCHEOF"), {0, 0, 3}
    });
    EXPECT_EQ(Made(patch, Text("abcdef")), Text("abc"));
    EXPECT_EQ(Made(patch, Text("ab")), Text("ab"));
}

TEST(IpsPatch, TakesTheLettersOfTheEndAsAnOffsetIfARecordFollows) {
    const Bytes patch = Joined({
        Text("PATCH"), {'E', 'O', 'F', 0, 2, 'x', 'y'},
         Text("EOF")
    });
    std::string error;
    Bytes result;
    ASSERT_TRUE(ApplySoftPatch(patch, Text("a"), uint64_t{8} << 20, result, error)) << error;
    ASSERT_EQ(result.size(), 0x454F46u + 2);
    EXPECT_EQ(result[0x454F46], 'x');
    EXPECT_EQ(result[0x454F47], 'y');
}

TEST(IpsPatch, RefusesEveryPatchThatIsCutOff) {
    const Bytes whole = Joined({
        Text("PATCH"), {0,  0, 1, 0, 2, 'x', 'y'},
         { 0, 0, 2, 0, 0, 0,   3, 'r'},
         Text("EOF")
    });
    for (size_t size = 5; size < whole.size(); ++size) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(Fault(part, Text("abcd")), "is cut off") << size;
    }
}

TEST(IpsPatch, RefusesAnImageOverTheLimit) {
    const Bytes patch = Joined({
        Text("PATCH"), {1, 0, 0, 0, 1, 'x'},
         Text("EOF")
    });
    EXPECT_EQ(Fault(patch, Text("abcd"), 0x10000), "makes too large an image");
    std::string error;
    EXPECT_EQ(Applied(patch, Text("abcd"), error, 0x10001).size(), 0x10001u);
}

// Three bytes differ by 'b' ^ 'x' at 1, 'd' ^ 'y' and 'e' ^ 'z' at 3 and 4.
TEST(UpsPatch, ChangesRunsByExclusiveOr) {
    const Bytes image = Text("abcdef");
    const Bytes result = Text("axcyzf");
    const Bytes hunks = Joined({
        Number(1), {'b' ^ 'x',  0},
         Number(0), { 'd' ^ 'y', 'e' ^ 'z', 0}
    });
    EXPECT_EQ(Made(Ups(image, result, hunks), image), result);
}

TEST(UpsPatch, GrowsAndShrinksTheImage) {
    const Bytes small = Text("ab");
    const Bytes large = Text("abXY");
    const Bytes hunks = Joined({
        Number(2), {'X', 'Y', 0}
    });
    EXPECT_EQ(Made(Ups(small, large, hunks), small), large);
    EXPECT_EQ(Made(Ups(large, small, hunks), large), small);
}

// 300 bytes before the change: the distance takes two bytes, 0x2C and (300 >> 7) - 1 | 0x80.
TEST(UpsPatch, ReadsNumbersOfSeveralBytes) {
    Bytes image(400, 'a');
    Bytes result = image;
    result[300] = 'b';
    EXPECT_EQ(Number(300), (Bytes{0x2C, 0x81}));
    EXPECT_EQ(Made(Ups(image, result, {0x2C, 0x81, 'a' ^ 'b', 0}), image), result);
}

TEST(UpsPatch, IsForOneImage) {
    const Bytes image = Text("abcdef");
    const Bytes result = Text("axcdef");
    const Bytes patch = Ups(image, result,
                            Joined({
                                Number(1), {'b' ^ 'x', 0}
    }));
    EXPECT_EQ(Fault(patch, Text("abcdeg")), "is for another game, or for another version of it");
    EXPECT_EQ(Fault(patch, Text("abcdefg")), "is for another game, or for another version of it");
    EXPECT_EQ(Fault(patch, result), "has been applied to this game already");
}

TEST(UpsPatch, NoticesWhenAnyByteOfItIsDamaged) {
    const Bytes image = Text("abcdef");
    const Bytes patch = Ups(image, Text("axcdef"),
                            Joined({
                                Number(1), {'b' ^ 'x', 0}
    }));
    for (size_t at = 4; at < patch.size(); ++at) {
        Bytes damaged = patch;
        damaged[at] ^= 0x10;
        EXPECT_EQ(Fault(damaged, image), "is damaged: its own checksum is wrong") << at;
    }
}

TEST(UpsPatch, RefusesWhatItsChecksumsContradict) {
    const Bytes image = Text("abcdef");
    const Bytes hunks = Joined({
        Number(1), {'b' ^ 'y', 0}
    });
    EXPECT_EQ(Fault(Ups(image, Text("axcdef"), hunks), image),
              "does not make the image that it names");
}

TEST(BpsPatch, CopiesFromBothImagesAndAddsNewBytes) {
    const Bytes image = Text("abcdefgh");
    // "ab" where it is; "NEW"; "fg", five bytes on in the image; "cd", back from 7 to 2; "bN" out of the result.
    const Bytes result = Text("abNEWfgcdbN");
    const Bytes actions = Joined({
        Act(kImageHere, 2),
        Act(kNewBytes, 3, Text("NEW")),
        Act(kImageCopy, 2, Forward(5)),
        Act(kImageCopy, 2, Back(5)),
        Act(kResultCopy, 2, Forward(1)),
    });
    EXPECT_EQ(Made(Bps(image, result, actions), image), result);
    EXPECT_EQ(Made(Bps(image, result, actions, Text("<notes/>")), image), result);
}

TEST(BpsPatch, ACopyThatOverlapsItsResultRepeats) {
    const Bytes image = Text("a");
    const Bytes result = Text("xyxyxyx");
    const Bytes actions = Joined({
        Act(kNewBytes, 2, Text("xy")),
        Act(kResultCopy, 5, Forward(0)),
    });
    EXPECT_EQ(Made(Bps(image, result, actions), image), result);
}

TEST(BpsPatch, TheImageHereIsThatAtThePlaceInTheResult) {
    const Bytes image = Text("abcdef");
    const Bytes result = Text("XYcd");
    const Bytes actions = Joined({Act(kNewBytes, 2, Text("XY")), Act(kImageHere, 2)});
    EXPECT_EQ(Made(Bps(image, result, actions), image), result);
}

TEST(BpsPatch, RefusesCopiesOfWhatIsNotThere) {
    const Bytes image = Text("abcd");
    const Bytes result = Text("efghij");
    const auto fault = [&](const Bytes& actions) {
        return Fault(Bps(image, result, actions), image);
    };
    const std::string why = "copies what is not there";
    EXPECT_EQ(fault(Act(kImageHere, 5)), why);
    EXPECT_EQ(fault(Act(kImageCopy, 2, Forward(3))), why);
    EXPECT_EQ(fault(Act(kImageCopy, 1, Forward(uint64_t{1} << 40))), why);
    EXPECT_EQ(fault(Act(kImageCopy, 1, Back(1))), why);
    EXPECT_EQ(fault(Act(kResultCopy, 1, Forward(0))), why);
    EXPECT_EQ(fault(Act(kNewBytes, 7, Text("efghijk"))), why);
    EXPECT_EQ(fault(Act(kNewBytes, 6, Text("efg"))), why);
    EXPECT_EQ(fault(Joined({Act(kImageHere, 3), {0x00}})), why);
}

TEST(BpsPatch, RefusesSizesAndChecksumsThatAreNotTheImages) {
    const Bytes image = Text("abcd");
    const Bytes result = Text("abcdXY");
    const Bytes patch =
        Bps(image, result, Joined({Act(kImageHere, 4), Act(kNewBytes, 2, Text("XY"))}));
    EXPECT_EQ(Made(patch, image), result);
    EXPECT_THAT(Fault(patch, Text("abce")), HasSubstr("another version"));
    EXPECT_EQ(Fault(patch, result), "has been applied to this game already");
    EXPECT_EQ(Fault(patch, image, 5), "makes too large an image");
    EXPECT_EQ(Fault(Bps(image, result, Act(kImageHere, 4)), image),
              "does not make the image that it names");
}

TEST(BpsPatch, RefusesNotesThatRunPastItsEnd) {
    Bytes patch = Text("BPS1");
    Append(patch, Number(1));
    Append(patch, Number(1));
    Append(patch, Number(uint64_t{1} << 34));
    EXPECT_EQ(Fault(Ended(patch, Text("a"), Text("b")), Text("a")), "is cut off");
}

TEST(SoftPatch, IsToldByItsFirstBytes) {
    EXPECT_TRUE(IsSoftPatch(Text("PATCH")));
    EXPECT_TRUE(IsSoftPatch(Text("UPS1")));
    EXPECT_TRUE(IsSoftPatch(Text("BPS1x")));
    EXPECT_FALSE(IsSoftPatch(Text("PATC")));
    EXPECT_FALSE(IsSoftPatch({}));
    EXPECT_THAT(Fault(Text("PK"), Text("a")), HasSubstr("is not a patch"));
    EXPECT_EQ(Fault(Text("UPS1abc"), Text("a")), "is cut off");
}

TEST(SoftPatch, AnyBytesEndInAResultWithinTheLimit) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        Bytes patch = Text(std::array{"PATCH", "UPS1", "BPS1"}[random() % 3]);
        const size_t size = random() % 60;
        for (size_t i = 0; i < size; ++i) {
            patch.push_back(static_cast<uint8_t>(random() % 4 == 0 ? random() : random() % 5));
        }
        const Bytes image = Text("abcdef");
        // The sizes and the image's checksum are right, so that the actions are reached.
        if (patch[0] != 'P') {
            const Bytes sizes = Joined({Number(image.size()), Number(random() % 30)});
            patch.insert(patch.begin() + 4, sizes.begin(), sizes.end());
            patch = Ended(patch, image, Text("?"));
        }
        std::string error;
        Bytes result;
        const bool done = ApplySoftPatch(patch, image, 4096, result, error);
        ASSERT_LE(result.size(), 4096u);
        ASSERT_EQ(done, error.empty());
    }
}
