// The mouse as a light gun, from a place in the window to what a program reads on each machine.
#include "front/window_rig.h"
#include "host/session.h"
#include "machine/inspection.h"

#include <algorithm>
#include <mutex>
#include <ostream>
#include <utility>

namespace {

// What a program reads when the gun sees light: the latched V and H counters.
struct LIGHT {
    int line;
    int half; // of a dot's number in the line

    bool operator==(const LIGHT&) const = default;
};

std::ostream& operator<<(std::ostream& out, const LIGHT& light) {
    return out << "line " << light.line << ", H " << light.half;
}

struct CONSOLE_ROW {
    const char* name;
    bool pal;
    bool tallPictures; // of 224 lines
};

constexpr CONSOLE_ROW kConsoles[] = {
    {"sms1-pal",  true,  false},
    {"sms2-pal",  true,  true },
    {"sms1-ntsc", false, false},
    {"sms2-ntsc", false, true },
    {"japanese",  false, false},
    {"mark3",     false, false},
};

constexpr int kLineNoted = 0xC100;
constexpr int kHalfNoted = 0xC101;
constexpr int kTimesNoted = 0xC102;
constexpr int kAbove = 4;     // lines above its aim from which the gun sees light
constexpr int kFirstDot = 11; // of a line's pixels

// Waits for the light once a frame and records where it was seen. With `narrow` the left column is
// blanked.
std::vector<uint8_t> LightMeter(bool tall, bool narrow) {
    Program program;
    program.Bytes({0xF3, 0xED, 0x56, 0x31, 0xF0, 0xDF}); // di; im 1; ld sp,0xDFF0
    program.VdpRegister(0xBF, 0, 0x04 | (tall ? 0x02 : 0) | (narrow ? 0x20 : 0));
    program.VdpRegister(0xBF, 1, tall ? 0x90 : 0x80);
    const int loop = program.Here();
    program.Bytes({0xDB, 0x7E, 0xFE, 0xF8, 0x20, 0xFA}); // until line 0xF8, which has no picture
    program.Bytes({0xDB, 0xDD, 0xCB, 0x77, 0x20, 0xFA}); // until TH of port A falls
    program.In(0x7E, kLineNoted).In(0x7F, kHalfNoted);
    program.Bytes({0x21, kTimesNoted & 0xFF, kTimesNoted >> 8, 0x34}); // one more
    program.Bytes({0xC3, loop & 0xFF, loop >> 8});
    return program.Image();
}

int Peek(int address) {
    uint8_t value = 0;
    EmuForEachSession([&](EMU_THREAD& session) {
        const std::scoped_lock hold(session.lock);
        const auto* const inside = dynamic_cast<CInspection*>(session.machine.get());
        ASSERT_NE(inside, nullptr);
        EXPECT_TRUE(inside->Peek(static_cast<uint32_t>(address), value));
    });
    return value;
}

// The visible part of the picture, and its proportions: 288 or 352 to its number of lines.
struct SHOWN {
    int left; // pixels of the whole picture
    int top;
    int width;
    int height;
    double aspect;
};

SHOWN Shown(const CONSOLE_ROW& console, bool tall, bool narrow, bool crop) {
    const int lines = tall ? 224 : 192;
    const int border = console.pal ? (240 - lines) / 2 : tall ? 0 : 16;
    const double wide = console.pal ? 352 : 288;
    if (crop) {
        const int left = narrow ? 8 : 0;
        return {left, border, 256 - left, lines, wide / lines};
    }
    const int height = lines + 2 * border;
    return {0, 0, 256, height, wide / height};
}

struct PLACE {
    int32_t x;
    int32_t y;
};

// The first place in a window of 640 by 480 that shows a pixel of the whole picture. The picture fills
// the window's width or height, truncated to whole screen pixels, and is centred.
PLACE PlaceOf(const SHOWN& shown, int column, int row) {
    const int width = std::min(640, static_cast<int>(480 * shown.aspect));
    const int height = std::min(480, static_cast<int>(640 / shown.aspect));
    const auto first = [](int pixel, int screen, int pixels) {
        return (pixel * screen + pixels - 1) / pixels;
    };
    return {(640 - width) / 2 + first(column - shown.left, width, shown.width),
            (480 - height) / 2 + first(row - shown.top, height, shown.height)};
}

class LightGunTest : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        Settings().SetInt(L"emu_autosaves", 0);
    }

    void PlayMeter(Application& application, const CONSOLE_ROW& console, bool tall, bool narrow) {
        folder.Write("meter.sms", LightMeter(tall, narrow));
        ASSERT_NO_FATAL_FAILURE(PlayGame(application, (folder.Path() / "meter.sms").string(),
                                         {"port1=phaser", std::string("console=") + console.name}));
        ASSERT_TRUE(RunUntil(application, SkipStatic));
    }

    // False while the session is not open yet.
    static bool SkipStatic() {
        bool open = false;
        EmuForEachSession([&](EMU_THREAD& session) {
            session.showStatic = 0;
            open = true;
        });
        return open;
    }

    // Points at a pixel of the active picture and returns the counters that the program records there.
    static LIGHT See(Application& application, const SHOWN& shown, int border, int column,
                     int line) {
        const PLACE place = PlaceOf(shown, column, line + border);
        PointAt(place.x, place.y, true);
        EXPECT_TRUE(application.Round());
        const int before = Peek(kTimesNoted);
        // The current frame may have begun before the mouse moved.
        const bool seen = RunUntil(
            application, [&] { return static_cast<uint8_t>(Peek(kTimesNoted) - before) >= 2; });
        return seen ? LIGHT{Peek(kLineNoted), Peek(kHalfNoted)} : LIGHT{-1, -1};
    }
};

} // namespace

// The mouse is over a pixel; the light comes four lines above it, at its dot.
TEST_F(LightGunTest, AProgramSeesTheLightWhereTheMouseIs) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    for (const CONSOLE_ROW& console : kConsoles) {
        for (const int kind : {0, 1, 2, 3}) {
            const bool tall = (kind & 1) != 0;
            const bool narrow = (kind & 2) != 0;
            if (tall && !console.tallPictures) {
                continue;
            }
            PlayMeter(application, console, tall, narrow);
            const int lines = tall ? 224 : 192;
            const int border = console.pal ? (240 - lines) / 2 : tall ? 0 : 16;
            ASSERT_TRUE(RunFrames(application, 3)); // its picture is on the screen
            for (const bool crop : {true, false}) {
                application.SetView({PictureScaler::kNone, false, crop, false});
                const SHOWN shown = Shown(console, tall, narrow, crop);
                for (const auto& [column, line] : {
                         std::pair{20,  10        },
                         std::pair{190, lines - 10}
                }) {
                    EXPECT_EQ(See(application, shown, border, column, line),
                              (LIGHT{line - kAbove, (column + kFirstDot) / 2}))
                        << console.name << (tall ? " tall" : "") << (narrow ? " narrow" : "")
                        << (crop ? " cropped" : " whole") << " at " << column << ", " << line;
                }
            }
        }
    }
}
