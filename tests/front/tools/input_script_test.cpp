#include "front/tools/input_script.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace {

constexpr uint32_t kKey = 1;

class Script : public testing::Test {
protected:
    Script() {
        RegisterDefaultSettings(Settings());
        InputScript::BindActions(Settings());
        InputClearAll();
        InputSetActiveKey(kKey);
    }
    ~Script() override {
        InputClearAll();
        InputSetActiveKey(0);
        RegisterDefaultSettings(Settings());
    }

    InputScript script;
    std::string error;
};

} // namespace

TEST_F(Script, PressesAndReleasesAtItsFrames) {
    ASSERT_TRUE(
        script.Parse("# a comment\n\n3 SMS P1 BUTTON1 down\n5 SMS P1 BUTTON1 up # end\n", error))
        << error;
    for (uint32_t frame = 1; frame <= 6; ++frame) {
        script.Feed(frame);
        EXPECT_EQ(InputIsDown(kKey, L"SMS P1 BUTTON1"), frame == 3 || frame == 4) << frame;
    }
}

TEST_F(Script, LinesMayBeInAnyOrderAndCase) {
    ASSERT_TRUE(script.Parse("9 gg p1 start up\r\n2\tGG P1 START\tdown\r\n", error)) << error;
    script.Feed(2);
    EXPECT_TRUE(InputIsDown(kKey, L"GG P1 START"));
    script.Feed(9);
    EXPECT_FALSE(InputIsDown(kKey, L"GG P1 START"));
}

TEST_F(Script, ActionsThatShareAKeyStayApart) {
    ASSERT_TRUE(script.Parse("1 SMS P1 UP down", error)) << error;
    script.Feed(1);
    EXPECT_TRUE(InputIsDown(kKey, L"SMS P1 UP"));
    EXPECT_FALSE(InputIsDown(kKey, L"GG P1 UP"));
    EXPECT_FALSE(InputIsDown(kKey, L"SMS P2 UP"));
}

TEST_F(Script, EveryActionCanBePressedAlone) {
    for (const INPUT_ACTION& pressed : InputActions()) {
        InputClearAll();
        std::string name;
        for (const wchar_t* c = pressed.name; *c != L'\0'; ++c) {
            name += static_cast<char>(*c);
        }
        ASSERT_TRUE(script.Parse("1 " + name + " down", error)) << error;
        script.Feed(1);
        for (const INPUT_ACTION& asked : InputActions()) {
            EXPECT_EQ(InputIsDown(kKey, asked.name), &asked == &pressed) << name;
        }
    }
}

TEST_F(Script, WrongLinesAreNamed) {
    EXPECT_FALSE(script.Parse("1 SMS P1 UP down\nSMS P1 UP down", error));
    EXPECT_THAT(error, HasSubstr("line 2: does not begin with a frame number"));
    EXPECT_FALSE(script.Parse("1 SMS P1 UP sideways", error));
    EXPECT_THAT(error, HasSubstr("line 1: does not end"));
    EXPECT_FALSE(script.Parse("1 SMS P9 UP down", error));
    EXPECT_THAT(error, HasSubstr("SMS P9 UP"));
    EXPECT_FALSE(script.Parse("99999999999 SMS P1 UP down", error));
    EXPECT_FALSE(script.Parse("1", error));
    EXPECT_FALSE(script.Parse("1 down", error));
}
