// Sounds for the Mega Drive's DAC.

#include "demo_tables/samples.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::HasSubstr;

// A WAV file of 8 bits, made by hand.
std::string Wav(const std::string& samples, char channels = 1, char bits = 8) {
    // 8900 Hz is 0x22C4.
    std::string file("RIFF\0\0\0\0WAVEfmt \x10\0\0\0\1\0", 22);
    file += {channels, 0, '\xC4', '\x22', 0, 0, '\xC4', '\x22', 0, 0, 1, 0, bits, 0};
    file += std::string("LIST\3\0\0\0abc\0", 12); // another chunk, of an odd size
    file += "data";
    file += {static_cast<char>(samples.size()), 0, 0, 0};
    return file + samples;
}

class Samples : public ::testing::Test {
protected:
    std::string Convert(const std::string& file) {
        std::string text;
        error.clear();
        return ConvertSamples(folder.Write("boom.wav", file), text, error) ? text : "";
    }

    TemporaryFolder folder;
    std::string error;
};

TEST_F(Samples, AreATableThatEndsWithAZero) {
    EXPECT_EQ(Convert(Wav("\x80\xFF\x01")), "boom:\n    .byte 128, 255, 1, 0\n");
}

TEST_F(Samples, AreRefusedWhereTheyWouldEndTheTable) {
    EXPECT_EQ(Convert(Wav(std::string("\x80\xFF\0\x01", 4))), "");
    EXPECT_THAT(error, HasSubstr("boom.wav: sample 2 is 0"));
}

TEST_F(Samples, OfAnotherKindAreRefused) {
    for (const std::string& file : {Wav("\x80", 2), Wav("\x80", 1, 16)}) {
        EXPECT_EQ(Convert(file), "");
        EXPECT_THAT(error, HasSubstr("boom.wav: must be PCM of 8 bits, one channel, 8900 Hz"));
    }
    const std::string whole = Wav("\x80\x80\x80");
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(Convert(whole.substr(0, size)), "") << size;
        EXPECT_THAT(error, HasSubstr("boom.wav")) << size;
    }
}

} // namespace
