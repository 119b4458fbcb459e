// The settings of a game's picture, and the options of `play` that set them for one run.
#include "facts/machine_facts.h"
#include "front/picture_view.h"
#include "front/run_settings.h"
#include "front/tools/picture_options.h"
#include "settings/settings.h"

namespace {

class PictureView : public testing::Test {
protected:
    void SetUp() override { RegisterDefaultSettings(Settings()); }
    void TearDown() override {
        RestoreRunSettings();
        RegisterDefaultSettings(Settings());
    }

    static FULL_SCREEN_VIEW ViewOf(const char* machine) {
        return FullScreenViewOf({}, FindMachineFacts(std::string_view(machine))->system);
    }
};

TEST_F(PictureView, WholeMultiplesAreForWindowsUnlessChosen) {
    Settings().SetBool(L"app_fullscreen", false);
    EXPECT_TRUE(ViewOf("nes").wholeMultiples);
    Settings().SetBool(L"app_fullscreen", true);
    EXPECT_FALSE(ViewOf("nes").wholeMultiples);
    Settings().SetBool(L"video_integer_full", true);
    EXPECT_TRUE(ViewOf("nes").wholeMultiples);
}

TEST_F(PictureView, EachMachineHasItsOwnOverscan) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        EXPECT_EQ(ViewOf(machine.shortName).cut, PICTURE_CUT()) << machine.name;
    }
    int32_t dots = 1;
    for (const wchar_t* const machine : {L"sms", L"gamegear", L"nes", L"megadrive", L"arcade"}) {
        for (const wchar_t* const edge :
             {L"_overscan_left", L"_overscan_top", L"_overscan_right", L"_overscan_bottom"}) {
            Settings().SetInt(std::wstring(machine) + edge, dots++);
        }
    }
    EXPECT_EQ(ViewOf("sms").cut, (PICTURE_CUT{1, 2, 3, 4}));
    EXPECT_EQ(ViewOf("gg").cut, (PICTURE_CUT{5, 6, 7, 8}));
    EXPECT_EQ(ViewOf("nes").cut, (PICTURE_CUT{9, 10, 11, 12}));
    EXPECT_EQ(ViewOf("md").cut, (PICTURE_CUT{13, 14, 15, 16}));
    EXPECT_EQ(ViewOf("arcade").cut, (PICTURE_CUT{17, 18, 19, 20}));
    EXPECT_EQ(FullScreenViewOf({}, 0).cut, PICTURE_CUT()) << "no machine yet";
}

TEST_F(PictureView, SettingsOutOfRangeAreBroughtIntoIt) {
    Settings().SetInt(L"video_aspect", 7);
    Settings().SetInt(L"nes_overscan_top", -8);
    Settings().SetFloat(L"video_crt", 3.0f);
    EXPECT_EQ(ViewOf("nes").aspect, PictureAspect::kMachine);
    EXPECT_EQ(ViewOf("nes").cut.top, 0U);
    EXPECT_EQ(CrtStrength(), 1.0f);
    Settings().SetFloat(L"video_crt", -1.0f);
    EXPECT_EQ(CrtStrength(), 0.0f);
}

TEST_F(PictureView, OptionsOfPlayHoldForTheRun) {
    PICTURE_OPTIONS options;
    options.scale = "whole";
    options.aspect = "4:3";
    options.overscan = {8, 16, 0, 4};
    options.crt = 5;
    ApplyPictureOptions(options, FindMachineFacts(std::string_view("md"))->system);
    const FULL_SCREEN_VIEW view = ViewOf("md");
    EXPECT_TRUE(view.wholeMultiples);
    EXPECT_EQ(view.aspect, PictureAspect::kFourByThree);
    EXPECT_EQ(view.cut, (PICTURE_CUT{8, 16, 0, 4}));
    EXPECT_FLOAT_EQ(view.crtStrength, 0.05f);
    EXPECT_EQ(ViewOf("nes").cut, PICTURE_CUT()) << "another machine's is its own";
    RestoreRunSettings();
    EXPECT_EQ(ViewOf("md").cut, PICTURE_CUT());
    EXPECT_EQ(CrtStrength(), 0.0f);
}

TEST_F(PictureView, OptionsThatAreNotGivenChangeNothing) {
    Settings().SetInt(L"video_aspect", 2);
    Settings().SetFloat(L"video_crt", 0.5f);
    ApplyPictureOptions({}, FindMachineFacts(std::string_view("nes"))->system);
    EXPECT_EQ(ViewOf("nes").aspect, PictureAspect::kSquareDots);
    EXPECT_EQ(CrtStrength(), 0.5f);
}

} // namespace
