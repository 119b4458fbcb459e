// theme.xml: what is read, what is inherited, what is left zero.
#include "gui/theme.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class ThemeTest : public testing::Test {
protected:
    void Parse(const std::string& records) {
        theme.ParseTheme("<?xml version=\"1.0\"?><theme>" + records + "</theme>");
    }
    GhostTextStyle Text(const wchar_t* name) {
        GhostTextStyle style;
        EXPECT_TRUE(theme.GetStyle(name, style));
        return style;
    }
    CGhostTheme theme;
};

using Theme = ThemeTest;

const std::string kRed = R"(<texture type="color"><color name="bg" val="FFFF0000"/></texture>)";

} // namespace

TEST_F(Theme, UseCopiesAnEarlierRecordAndChildrenOverwrite) {
    Parse("<textbox name='A'>" + kRed +
          "<color name='text' val='11223344'/></textbox>"
          "<textbox name='B' use='A'><color name='text' val='FFFFFFFF'/></textbox>");
    EXPECT_EQ(Text(L"B").bg.colour1, 0xFFFF0000);
    EXPECT_EQ(Text(L"B").textColour, 0xFFFFFFFF);
    EXPECT_EQ(Text(L"A").textColour, 0x11223344u);
}

TEST_F(Theme, UseOfALaterRecordOrAnotherKindReadsZerosAndKeepsItsOwnChildren) {
    Parse("<textbox name='A' use='LATER'><color name='text' val='FF'/></textbox>"
          "<textbox name='LATER'>" +
          kRed +
          "</textbox>"
          "<button name='BUTTON'><textbox name='normal'>" +
          kRed +
          "</textbox></button>"
          "<textbox name='B' use='BUTTON'><color name='text' val='FE'/></textbox>"
          "<textbox name='SELF' use='SELF'><color name='text' val='FD'/></textbox>");
    EXPECT_EQ(Text(L"A").bg.colour1, 0u);
    EXPECT_EQ(Text(L"A").textColour, 0xFFu);
    EXPECT_EQ(Text(L"B").bg.colour1, 0u);
    EXPECT_EQ(Text(L"B").textColour, 0xFEu);
    EXPECT_EQ(Text(L"SELF").textColour, 0xFDu);
}

TEST_F(Theme, RecordsWithinRecordsBeginAsCopiesToo) {
    Parse("<textbox name='RED'>" + kRed +
          "<color name='text' val='1'/></textbox>"
          "<border name='LINE' type='color'><rect left='3'/></border>"
          "<button name='B'><textbox name='hot' use='RED'><color name='text' val='2'/></textbox>"
          "</button>"
          "<edit name='E'><textbox name='normal' use='RED'/></edit>"
          "<textbox name='T'><border use='LINE'><rect top='4'/></border></textbox>"
          "<list name='L'><textbox name='item_hot' use='RED'/></list>"
          "<listview name='V'><button use='B'/><edit use='E'/>"
          "<textbox name='bg' use='RED'/></listview>"
          "<scrollbar name='S'><button name='ver_mid' use='B'/><textbox name='bg' use='RED'/>"
          "</scrollbar>"
          "<droplist name='D'><textbox name='bg' use='RED'/><button use='B'/></droplist>");
    constexpr uint32_t kRedColour = 0xFFFF0000;
    GhostButtonStyle button;
    theme.GetStyle(L"B", button);
    EXPECT_EQ(button.states[1].bg.colour1, kRedColour);
    EXPECT_EQ(button.states[1].textColour, 2u);
    EXPECT_EQ(button.states[0].textColour, 0u);
    EXPECT_EQ(Text(L"T").border.type, GhostFrame::kColour);
    EXPECT_EQ(Text(L"T").border.thickness, (GUI_EDGES{0, 4, 0, 0}));
    GhostListStyle list;
    theme.GetStyle(L"L", list);
    EXPECT_EQ(list.itemHot.bg.colour1, kRedColour);
    GhostListViewStyle view;
    theme.GetStyle(L"V", view);
    EXPECT_EQ(view.header.states[1].textColour, 2u);
    EXPECT_EQ(view.edit.states[0].bg.colour1, kRedColour);
    EXPECT_EQ(view.list.bg.textColour, 1u);
    GhostScrollbarStyle bar;
    theme.GetStyle(L"S", bar);
    EXPECT_EQ(bar.verMid.states[1].textColour, 2u);
    EXPECT_EQ(bar.bg.textColour, 1u);
    GhostDropListStyle drop;
    theme.GetStyle(L"D", drop);
    EXPECT_EQ(drop.bg.bg.colour1, kRedColour);
    EXPECT_EQ(drop.button.states[1].bg.colour1, kRedColour);
}

TEST_F(Theme, UseWithinARecordOfWhatIsNotThereClearsWhatWasInherited) {
    Parse("<button name='A'><textbox name='hot'>" + kRed +
          "</textbox></button>"
          "<button name='B' use='A'><textbox name='hot' use='NOWHERE'>"
          "<color name='text' val='9'/></textbox></button>"
          "<button name='C' use='A'><textbox name='hot' use='A'/></button>");
    for (const wchar_t* const name : {L"B", L"C"}) {
        GhostButtonStyle button;
        ASSERT_TRUE(theme.GetStyle(name, button));
        EXPECT_EQ(button.states[1].bg.colour1, 0u);
    }
}

TEST_F(Theme, TheFirstRecordOfANameDecidesWhateverItsKind) {
    Parse("<textbox name='A'>" + kRed + "</textbox><textbox name='A'/><button name='A'/>");
    EXPECT_EQ(Text(L"A").bg.colour1, 0xFFFF0000);
    GhostButtonStyle button;
    button.states[0].textColour = 7;
    EXPECT_FALSE(theme.GetStyle(L"A", button));
    EXPECT_EQ(button.states[0].textColour, 0u) << "cleared all the same";
    GhostTextStyle text;
    EXPECT_FALSE(theme.GetStyle(L"a", text)) << "capitals count";
}

TEST_F(Theme, ColoursAreHexadecimalWithOrWithoutAPrefix) {
    Parse("<textbox name='A'><color name='text' val='FF00FF00'/></textbox>"
          "<textbox name='B'><color name='text' val='0xFF00FF00'/></textbox>");
    EXPECT_EQ(Text(L"A").textColour, 0xFF00FF00);
    EXPECT_EQ(Text(L"B").textColour, 0xFF00FF00);
}

TEST_F(Theme, RectsAreZeroedFirstAndTheWordsWin) {
    Parse("<textbox name='A'><rect x1='1' y1='2' x2='3' y2='4'/></textbox>"
          "<textbox name='B' use='A'><rect left='9' x1='5'/></textbox>");
    EXPECT_EQ(Text(L"A").textRect, (GUI_EDGES{1, 2, 3, 4}));
    EXPECT_EQ(Text(L"B").textRect, (GUI_EDGES{9, 0, 0, 0}));
}

TEST_F(Theme, AFillThatNeedsABitmapItHasNotPaintsNothing) {
    Parse("<textbox name='A'><texture type='bitmap_stretch'><file "
          "name='BUTTON00'/></texture></textbox>"
          "<textbox name='B'><texture type='bitmap'><file name='#NOWHERE'/></texture></textbox>"
          "<textbox name='C'>" +
          kRed + "<texture type='unheard of'/></textbox>");
    EXPECT_EQ(Text(L"A").bg.type, GhostFill::kNone);
    EXPECT_EQ(Text(L"B").bg.type, GhostFill::kNone);
    EXPECT_EQ(Text(L"C").bg.type, GhostFill::kColour) << "as inherited";
}

TEST_F(Theme, ABorderWithoutATypeIsNotRead) {
    Parse("<border name='A'><rect left='5'/></border>"
          "<border name='B' type='color'><rect left='5'/></border>"
          "<border name='C' use='B'><rect top='6'/></border>");
    GhostBorderStyle border;
    theme.GetStyle(L"A", border);
    EXPECT_EQ(border.thickness, GUI_EDGES{});
    theme.GetStyle(L"B", border);
    EXPECT_EQ(border.thickness, (GUI_EDGES{5, 0, 0, 0}));
    theme.GetStyle(L"C", border);
    EXPECT_EQ(border.thickness, (GUI_EDGES{0, 6, 0, 0}));
    EXPECT_EQ(border.type, GhostFrame::kColour);
}

TEST_F(Theme, ABorderOfAnUnknownTypeIsRead) {
    Parse("<border name='A' type='dotted'><rect left='5'/></border>");
    GhostBorderStyle border;
    theme.GetStyle(L"A", border);
    EXPECT_EQ(border.thickness, (GUI_EDGES{5, 0, 0, 0}));
    EXPECT_EQ(border.type, GhostFrame::kNone);
}

TEST_F(Theme, FontsAlignByWordsFoundAnywhere) {
    Parse("<textbox name='A'><font align='left top' xoffset='-3' yoffset='4'/></textbox>"
          "<textbox name='B' use='A'><font/></textbox>");
    EXPECT_EQ(Text(L"A").align, kAlignLeft | kAlignTop);
    EXPECT_EQ(Text(L"A").xOffset, -3);
    EXPECT_EQ(Text(L"A").yOffset, 4);
    EXPECT_EQ(Text(L"B").align, 0u) << "absent is 0";
    EXPECT_EQ(Text(L"B").xOffset, -3) << "not mentioned, so as inherited";
    EXPECT_EQ(Text(L"B").yOffset, 4);
}

TEST_F(Theme, StatesOfOtherNamesHaveTheirPlaces) {
    Parse("<button name='A'><textbox name='other'><color name='text' val='5'/></textbox></button>"
          "<edit name='E'><textbox name='hot'><color name='text' val='1'/></textbox>"
          "<textbox name='what'><color name='text' val='2'/></textbox></edit>");
    GhostButtonStyle button;
    theme.GetStyle(L"A", button);
    EXPECT_EQ(button.states[4].textColour, 5u);
    GhostEditStyle edit;
    theme.GetStyle(L"E", edit);
    EXPECT_EQ(edit.states[1].textColour, 2u) << "over the state named last";
}

TEST_F(Theme, AScrollbarGoesByNamesAlone) {
    Parse("<scrollbar name='S'><anything name='bg'><color name='text' val='7'/></anything>"
          "<what name='ver_width' val='14'/></scrollbar>");
    GhostScrollbarStyle bar;
    theme.GetStyle(L"S", bar);
    EXPECT_EQ(bar.bg.textColour, 7u);
    EXPECT_EQ(bar.verWidth, 14);
}

TEST_F(Theme, WithoutADeclarationNothingIsRead) {
    theme.ParseTheme("<theme><textbox name='A'/></theme>");
    EXPECT_TRUE(theme.Names().empty());
    theme.ParseTheme("");
    EXPECT_TRUE(theme.Names().empty());
    Parse("<textbox name='A'/><textbox/><nothing name='B'/>");
    EXPECT_EQ(theme.Names().size(), 1u);
    theme.ParseTheme("<?xml version='1.0'?>");
    EXPECT_TRUE(theme.Names().empty()) << "the store is dropped first";
}

TEST_F(Theme, ACommentMayFollowTheDeclarationButNotPrecedeIt) {
    theme.ParseTheme("<?xml version='1.0'?><!-- mine --><theme><textbox name='A'/></theme>");
    EXPECT_EQ(theme.Names().size(), 1u);
    theme.ParseTheme("<!-- mine --><?xml version='1.0'?><theme><textbox name='A'/></theme>");
    EXPECT_TRUE(theme.Names().empty());
}

TEST_F(Theme, RecordsBeyondTheMostAreNotRead) {
    std::string text = "<?xml version='1.0'?><theme>";
    for (int i = 0; i < 6000; ++i) {
        text += "<border name='B" + std::to_string(i) + "'/>";
    }
    theme.ParseTheme(text + "</theme>");
    EXPECT_EQ(theme.Names().size(), 5000u);
    EXPECT_EQ(theme.Names().back().name, L"B4999");
}

TEST_F(Theme, TheFocusRingIsThatOfTheStyleOrOneThatCanBeSeen) {
    const CGhostTheme::RING_COLOURS without = theme.FocusRing();
    Parse(R"(<textbox name="FOCUS"><color name="text" val="FF112233"/>
        <color name="textoutline" val="FF445566"/></textbox>)");
    EXPECT_EQ(theme.FocusRing().line, 0xFF112233);
    EXPECT_EQ(theme.FocusRing().outline, 0xFF445566);
    for (const char* const forgotten :
         {"", R"(<textbox name="FOCUS"><color name="text" val="00112233"/></textbox>)",
          R"(<border name="FOCUS"/>)"}) {
        Parse(forgotten);
        EXPECT_EQ(theme.FocusRing().line, without.line) << forgotten;
        EXPECT_EQ(theme.FocusRing().line >> 24, 0xFFu) << forgotten;
    }
}
