#include "display/display_fixture.h"
#include "display/screen_reader.h"

namespace {

using ScreenReader = DisplayTest;

void PaintPixel(int x, int yFromBottom, float red, float green, float blue) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, yFromBottom, 1, 1);
    glClearColor(red, green, blue, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
}

TEST_F(ScreenReader, TopRowComesFirstAndEveryPixelIsOpaque) {
    ClearScreen(0x123456);
    PaintPixel(0, 2, 1, 0, 0); // top left of three rows
    PaintPixel(3, 2, 0, 1, 0); // top right of four columns
    PaintPixel(0, 0, 0, 0, 1); // bottom left
    const uint32_t plain = 0xFF123456;
    const std::vector<uint32_t> expected = {
        kRed,  plain, plain, kGreen, //
        plain, plain, plain, plain,  //
        kBlue, plain, plain, plain,
    };
    EXPECT_EQ(ReadScreen(4, 3), expected);
}

TEST_F(ScreenReader, OddWidthsAndOnePixelAreReadWhole) {
    ClearScreen(0xFF0000);
    EXPECT_EQ(ReadScreen(1, 1), std::vector<uint32_t>{kRed});
    EXPECT_EQ(ReadScreen(7, 5), std::vector<uint32_t>(35, kRed));
}

TEST_F(ScreenReader, NothingIsReadForASizeOfNothing) {
    EXPECT_TRUE(ReadScreen(0, 5).empty());
    EXPECT_TRUE(ReadScreen(5, 0).empty());
}

} // namespace
