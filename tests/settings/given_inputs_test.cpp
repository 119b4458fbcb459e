#include "settings/given_inputs.h"

#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t kSession = 5;
constexpr std::wstring_view kNames[] = {L"NES P1 UP", L"NES P1 DOWN", L"NES P1 LEFT"};

class GivenInputsTest : public testing::Test {
protected:
    GivenInputsTest() {
        RegisterDefaultSettings(Settings());
        InputClearAll();
        InputSetActiveKey(kSession);
        InputSetWalkingRoom(false);
    }
    ~GivenInputsTest() override { InputClearAll(); }

    static bool Down(std::wstring_view name, uint32_t session = kSession) {
        return InputIsDown(session, name);
    }
};

} // namespace

TEST_F(GivenInputsTest, AnswerForTheirSessionInAnyOrderInsteadOfTheKeys) {
    InputKeyChanged(81, true); // Down
    const GivenInputs given(kSession, kNames, 0b101);
    EXPECT_TRUE(Down(L"NES P1 LEFT"));
    EXPECT_TRUE(Down(L"NES P1 UP"));
    EXPECT_TRUE(Down(L"NES P1 UP"));
    EXPECT_FALSE(Down(L"NES P1 DOWN"));
    EXPECT_FALSE(Down(L"NES P1 START"));
    EXPECT_TRUE(Down(L"NES P1 LEFT"));
}

TEST_F(GivenInputsTest, AnswerAlsoWhileTheSessionGetsNoKeys) {
    InputSetWalkingRoom(true);
    const GivenInputs given(kSession, kNames, 0b001);
    EXPECT_TRUE(Down(L"NES P1 UP"));
    InputSetWalkingRoom(false);
    InputSetActiveKey(kSession + 1);
    EXPECT_TRUE(Down(L"NES P1 UP"));
}

TEST_F(GivenInputsTest, LeaveOtherSessionsAndTheProgramToTheKeys) {
    InputKeyChanged(82, true); // Up
    const GivenInputs given(kSession + 1, kNames, 0);
    EXPECT_TRUE(Down(L"NES P1 UP"));
    EXPECT_FALSE(Down(L"NES P1 UP", kSession + 1));
    EXPECT_TRUE(Down(L"NES P1 UP", kApplicationKey));
}

TEST_F(GivenInputsTest, TheInnermostAnswersUntilItsEnd) {
    const GivenInputs outer(kSession, kNames, 0b001);
    {
        const GivenInputs inner(kSession, kNames, 0b010);
        EXPECT_FALSE(Down(L"NES P1 UP"));
        EXPECT_TRUE(Down(L"NES P1 DOWN"));
    }
    EXPECT_TRUE(Down(L"NES P1 UP"));
    EXPECT_FALSE(Down(L"NES P1 DOWN"));
}
