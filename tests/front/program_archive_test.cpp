// A zip of several games that no database knows becomes one game of the library, and the player chooses which to play.
#include "formats/zip.h"
#include "front/opened_game.h"
#include "front/program_rig.h"
#include "front/resume_texts.h"
#include "gui/list.h"
#include "gui/list_view.h"
#include "screens/entry_box.h"
#include "screens/scan_window.h"

#include <gmock/gmock.h>

namespace {

class ProgramArchive : public ProgramTest {
protected:
    void WriteZip(const std::vector<std::string>& names) {
        ZipWriter writer;
        std::string error;
        ASSERT_TRUE(writer.Add("read.txt", std::vector<uint8_t>(100, 'n'), error));
        for (const std::string& name : names) {
            std::vector<uint8_t> image = LatchingRom();
            image.insert(image.end(), name.begin(), name.end()); // each is a game of its own
            ASSERT_TRUE(writer.Add(name, image, error));
        }
        folder.Write("sms/box.zip", writer.Finish(error));
    }

    // Chooses the game in the browser and presses Return.
    static testing::AssertionResult StartTheBox(Application& application, ProgramScreen& program) {
        if (const testing::AssertionResult opened = OpenBrowser(application, program); !opened) {
            return opened;
        }
        CGUIRomBrowser& browser = *program.Menu().Browser();
        if (!RunUntil(application, [&] { return browser.Scan().Finish()->IsVisible(); }) ||
            !Press(application, SDL_SCANCODE_ESCAPE)) { // what the scan has told
            return testing::AssertionFailure() << "the scan does not end";
        }
        for (int32_t row = 0; row < browser.List()->RowCount(); ++row) {
            if (browser.List()->Cell(row, 0)->text == L"box") {
                browser.List()->SetSelected(row);
                browser.List()->SetFocus();
                return Press(application, SDL_SCANCODE_RETURN);
            }
        }
        return testing::AssertionFailure() << "the zip is no game";
    }
};

} // namespace

TEST_F(ProgramArchive, PlayerChoosesWhichGameIsPlayed) {
    ASSERT_NO_FATAL_FAILURE(WriteZip({"One.sms", "a/Two.sms", "Three.sms"}));
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(StartTheBox(application, *program));
    EntryBox* const box = EntryBox::Open();
    ASSERT_NE(box, nullptr);
    ASSERT_EQ(box->List()->Count(), 3) << "without the text";
    EXPECT_EQ(box->List()->Item(1)->text, L"a/Two.sms");
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser) << "nothing starts before";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_DOWN));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    EXPECT_EQ(EntryBox::Open(), nullptr);
    const uint32_t key = program->Room().Selected().id;
    ASSERT_NE(key, 0u);
    ASSERT_TRUE(RunUntilOn(application, program->Room(), key));
    EXPECT_EQ(program->Room().Games().TitleOn(key), "Two");
}

TEST_F(ProgramArchive, EscapePlaysNone) {
    ASSERT_NO_FATAL_FAILURE(WriteZip({"One.sms", "Two.sms"}));
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(StartTheBox(application, *program));
    ASSERT_NE(EntryBox::Open(), nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(EntryBox::Open(), nullptr);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser);
}

TEST_F(ProgramArchive, OnlyGameIsPlayedAtOnce) {
    ASSERT_NO_FATAL_FAILURE(WriteZip({"One.sms"}));
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(StartTheBox(application, *program));
    EXPECT_EQ(EntryBox::Open(), nullptr);
    const uint32_t key = program->Room().Selected().id;
    ASSERT_NE(key, 0u);
    ASSERT_TRUE(RunUntilOn(application, program->Room(), key));
    EXPECT_EQ(program->Room().Games().TitleOn(key), "One");
}

// As the file of a game that was on when the program ended is read.
TEST_F(ProgramArchive, GameThatGoesOnIsTheOneThatWasChosen) {
    ASSERT_NO_FATAL_FAILURE(WriteZip({"One.sms", "a/Two.sms"}));
    OPENING opening;
    opening.entry = "a/Two.sms";
    OPENED_GAME opened;
    std::string error;
    const std::string zip = (folder.Path() / "sms" / "box.zip").string();
    ASSERT_TRUE(OpenForPlaying(zip, opening, opened, error)) << error;
    STATE_SNAPSHOT label;
    label.texts = ResumeTexts(1, opened);
    OPENED_GAME again;
    ASSERT_TRUE(OpenResumed(label, again, error)) << error;
    EXPECT_EQ(again.title, "Two");
    EXPECT_EQ(again.entry, "a/Two.sms");
    EXPECT_EQ(GameIdentityText(again.game), GameIdentityText(opened.game));
}
