// What controls paint: each style of a record has a colour of its own, so that a pixel says which was taken.
#include "gui/bitmap.h"
#include "gui/control_rig.h"
#include "gui/surface.h"

namespace {

constexpr const char* kColours = R"(<?xml version="1.0"?><theme>
<textbox name="BAR"><texture type="color"><color name="bg" val="FF000020"/></texture>
 <texture name="bg2" type="color"><color name="bg" val="FF000040"/></texture></textbox>
<listview name="HEADS"><number name="headerheight" val="24"/><number name="itemheight" val="20"/>
 <button><textbox name="normal"><color name="text" val="FFFFFFFF"/></textbox></button></listview>
<textbox name="A"><texture type="color"><color name="bg" val="FF00000A"/></texture></textbox>
<textbox name="B"><texture type="color"><color name="bg" val="FF00000B"/></texture>
 <border type="color"><rect left="3" top="3" right="3" bottom="3"/></border></textbox>
<textbox name="PANEL_BACKGROUND" use="A"/>
<scrollbar name="S1"><number name="ver_arrowbuttonheight" val="10"/>
 <textbox name="bg" use="A"/></scrollbar>
<scrollbar name="S2"><number name="ver_arrowbuttonheight" val="20"/>
 <number name="ver_thumbminheight" val="10"/><textbox name="bg" use="B"/></scrollbar>
</theme>)";

constexpr uint32_t kColourA = 0xFF00000A;
constexpr uint32_t kColourB = 0xFF00000B;

GhostTextStyle Filled(uint32_t argb) {
    GhostTextStyle style;
    style.bg.colour1 = argb;
    style.textColour = 0xFFFFFFFF;
    style.align = kAlignLeft;
    return style;
}

// Each of another colour: 1 normal, 2 hot, 3 selected; odd rows 4 more.
GhostListStyle ColouredList() {
    GhostListStyle style;
    style.itemNormal = Filled(0xFF010000);
    style.itemHot = Filled(0xFF020000);
    style.itemSelected = Filled(0xFF030000);
    style.item2Normal = Filled(0xFF050000);
    style.item2Hot = Filled(0xFF060000);
    style.item2Selected = Filled(0xFF070000);
    return style;
}

class LookTest : public ControlTest {
protected:
    void SetUp() override {
        ControlTest::SetUp();
        CGhostTheme::Get().ParseTheme(kColours);
    }

    // Of the window's own picture.
    static uint32_t At(const GHOSTMANAGER_WINDOW* window, int x, int y) {
        CGhostSurface& surface = *window->surface;
        return surface.Pixels()[static_cast<ptrdiff_t>(y) * surface.Stride() + x];
    }
    // The leftmost column from `from` on with a pixel of that colour; -1: none.
    static int FirstColumn(const GHOSTMANAGER_WINDOW* window, int from, int top, int bottom,
                           bool (*wanted)(uint32_t)) {
        for (int x = from; x < window->surface->PixelWidth(); ++x) {
            for (int y = top; y < bottom; ++y) {
                if (wanted(At(window, x, y))) {
                    return x;
                }
            }
        }
        return -1;
    }
    static bool IsText(uint32_t argb) { return (argb & 0xFF) > 0x60; }
};

using Look = LookTest;

} // namespace

TEST_F(Look, AListTakesTheStyleOfTheRowsStateAndParity) {
    auto* const list = new CGhostList(nullptr, 0, L"", 0, {false, 100, 100, 200, 200});
    list->SetStyle(ColouredList());
    for (int i = 0; i < 6; ++i) {
        list->AddItem(L"");
    }
    const int high = list->RowHeight();
    const auto row = [&](int index) { return At(list->window, 150, index * high + high / 2); };
    manager.Tick(0);
    EXPECT_EQ(row(0), 0xFF010000u);
    EXPECT_EQ(row(1), 0xFF050000u);
    MoveTo(150, 100 + 2 * high + 2);
    EXPECT_EQ(row(2), 0xFF020000u);
    MoveTo(150, 100 + 3 * high + 2);
    EXPECT_EQ(row(3), 0xFF060000u);
    EXPECT_EQ(row(2), 0xFF010000u);
    list->SetSelected(3);
    manager.Tick(0);
    EXPECT_EQ(row(3), 0xFF070000u) << "selected before hot";
    list->SetSelected(4);
    manager.Tick(0);
    EXPECT_EQ(row(4), 0xFF030000u);
    list->Item(4)->flags = GHOSTLIST_ITEM::kDisabled;
    list->dirty = true;
    manager.Tick(0);
    EXPECT_EQ(row(4), 0xFF010000u) << "a disabled row is neither";
}

// Four images of 16, each of one colour.
TEST_F(Look, TextsOfAListWithAnImageBeginAtOnePlace) {
    GUI_BITMAP strip;
    strip.width = strip.pixelWidth = 64;
    strip.height = strip.pixelHeight = 16;
    strip.density = 1.0;
    for (int i = 0; i < 64 * 16; ++i) {
        strip.pixels.push_back(0xFF000010u + static_cast<uint32_t>(i % 64 / 16));
    }
    GhostListStyle style = ColouredList();
    style.imageList.type = GhostFill::kBitmap;
    style.imageList.bitmap = &strip;
    auto* const list = new CGhostList(nullptr, 0, L"", 0, {false, 100, 100, 200, 200});
    list->SetStyle(style);
    list->AddItem(L"H");
    manager.Tick(0);
    const int high = list->RowHeight();
    EXPECT_GE(high, 16 + 2);
    const auto textOf = [&](int row) {
        return FirstColumn(list->window, 0, row * high, (row + 1) * high, IsText);
    };
    EXPECT_LT(textOf(0), 10) << "no row has an image";
    list->AddItem(L"H", 2);
    manager.Tick(0);
    // Over an opaque ground a channel is blended to one step below itself.
    EXPECT_EQ(At(list->window, 8, high + high / 2), 0xFF000011u);
    EXPECT_GE(textOf(1), 16);
    EXPECT_EQ(textOf(0), textOf(1));
    manager.Reset(); // the style refers to the strip
}

// A bar of 100 units at a half: the handle is around 50, and clear of the upper edge.
TEST_F(Look, ASliderUnderTheMouseHasAHandleAtItsValue) {
    auto* const slider = new CGhostSlider(nullptr, 0, L"", 0, 0, {false, 100, 100, 100, 25});
    CGhostTheme::Get().ParseTheme(
        "<?xml version='1.0'?><theme><textbox name='BAR'><texture type='color'>"
        "<color name='bg' val='FF000020'/></texture>"
        "<color name='text' val='FFFFFFFF'/></textbox></theme>");
    slider->SetStyle(L"BAR");
    slider->SetValue(0.5f);
    const auto widthOfHandle = [&] {
        int wide = 0;
        for (int x = 40; x < 60; ++x) { // above the number
            wide += IsText(At(slider->window, x, 5)) ? 1 : 0;
        }
        return wide;
    };
    manager.Tick(0);
    EXPECT_EQ(widthOfHandle(), 0);
    MoveTo(120, 112);
    const int hot = widthOfHandle();
    EXPECT_GT(hot, 0);
    MoveTo(150, 112);
    Press();
    const int held = widthOfHandle();
    EXPECT_GT(held, hot);
    Release();
    EXPECT_EQ(widthOfHandle(), hot);
    MoveTo(10, 10);
    EXPECT_EQ(widthOfHandle(), 0);
    slider->SetReadOnly(true);
    MoveTo(150, 112);
    EXPECT_EQ(widthOfHandle(), 0) << "it cannot be dragged";
    EXPECT_EQ(manager.CursorIndex(), 0u);
}

// The arrow covers the right end of the face, and the ring goes on over it.
TEST_F(Look, TheRingOfADropListGoesAroundItsArrowToo) {
    auto* const drop = new CGhostDropList(nullptr, 0, L"", L"", 100, {false, 100, 100, 150, 25});
    const CGhostTheme::RING_COLOURS ring = CGhostTheme::Get().FocusRing();
    const GHOSTMANAGER_WINDOW* const arrow = drop->Arrow()->window;
    manager.Tick(0);
    EXPECT_NE(At(arrow, 24, 12), ring.line);
    Focus(drop->window);
    EXPECT_EQ(At(drop->window, 0, 12), ring.line);
    EXPECT_EQ(At(arrow, 24, 12), ring.line) << "its right side";
    EXPECT_EQ(At(arrow, 12, 0), ring.line) << "its upper side";
    EXPECT_NE(At(arrow, 0, 12), ring.line) << "not between face and arrow";
    drop->SetEnabled(false);
    manager.Tick(0);
    EXPECT_NE(At(arrow, 24, 12), ring.line);
}

// Style A is a fill, style B another with a frame of 3.
TEST_F(Look, AWindowAndADropListTakeAnotherStyle) {
    CGhostTheme::Get().ParseTheme(std::string(kColours).insert(
        std::string(kColours).rfind("</theme>"),
        "<textbox name='A_BACKGROUND' use='A'/><textbox name='B_BACKGROUND' use='B'/>"
        "<textbox name='B_TITLE' use='A'/><scrollbar name='B_SCROLLBAR' use='S2'>"
        "<number name='ver_width' val='9'/></scrollbar>"
        "<droplist name='DROPA'><textbox name='bg' use='A'/></droplist>"
        "<droplist name='DROPB'><textbox name='bg' use='B'/><button><textbox name='normal' "
        "use='A'/>"
        "</button></droplist>"));
    auto* const made =
        new CGhostWindowEx(nullptr, 0, L"A", L"", CGhostWindowEx::kFrame | CGhostWindowEx::kTitle,
                           {false, 100, 100, 200, 100});
    made->ShowScrollbar(true);
    manager.Tick(0);
    EXPECT_EQ(made->window->clientRect, (GUI_RECT{0, 20, 200, 80}));
    EXPECT_EQ(At(made->window, 100, 60), kColourA);
    made->SetStyle(L"B");
    manager.Tick(0);
    EXPECT_EQ(made->window->clientRect, (GUI_RECT{3, 23, 185, 74}))
        << "the frame, the title bar and the bar's own width";
    EXPECT_EQ(At(made->window, 100, 60), kColourB);
    made->SetStyle(L"A");
    manager.Tick(0);
    EXPECT_EQ(made->window->clientRect, (GUI_RECT{0, 20, 200, 80})) << "the default bar again";

    auto* const drop =
        new CGhostDropList(nullptr, 0, L"DROPA", L"", 100, {false, 400, 100, 150, 25});
    manager.Tick(0);
    EXPECT_EQ(At(drop->window, 60, 12), kColourA);
    drop->SetStyle(L"DROPB");
    manager.Tick(0);
    EXPECT_EQ(At(drop->window, 60, 12), kColourB);
    EXPECT_EQ(At(drop->Arrow()->window, 5, 5), kColourA);
    EXPECT_EQ(drop->window->clientRect, (GUI_RECT{3, 3, 144, 19}));
}

TEST_F(Look, TheBarOfHeadingsGoesOnBesideTheLastColumn) {
    CGhostTheme::Get().ParseTheme(
        "<?xml version='1.0'?><theme><textbox name='A'><texture type='color'>"
        "<color name='bg' val='FF00000A'/></texture></textbox>"
        "<listview name='HEADS'><number name='headerheight' val='24'/>"
        "<number name='itemheight' val='20'/><button><textbox name='normal' use='A'/></button>"
        "</listview></theme>");
    auto* const view = new CGhostListView(nullptr, 0, L"HEADS", 0, {false, 100, 100, 400, 224});
    view->AddColumn(L"", 100);
    manager.Tick(0);
    EXPECT_EQ(At(view->window, 100, 0), kColourA);
    EXPECT_EQ(At(view->window, 399, 23), kColourA);
    EXPECT_EQ(At(view->window, 399, 24) >> 24, 0u) << "the rows are below";
}

// A round frame has nothing of the fill outside; a square one keeps it.
TEST_F(Look, AButtonWithARoundFrameHasRoundCorners) {
    GhostButtonStyle style;
    style.states[0].bg.colour1 = kColourA;
    style.states[0].border.thickness = {1, 1, 1, 1};
    style.states[0].border.type = GhostFrame::kRoundedColour;
    style.states[0].border.left.colour1 = kColourB;
    auto* const button = new CGhostButton(nullptr, 0, L"none", L"", 0, {false, 100, 100, 60, 30});
    button->SetStyle(style);
    for (const int density : {1, 2}) {
        manager.SetScreen(1280 * density, 720 * density);
        manager.Tick(0);
        const int right = 60 * density - 1;
        const int bottom = 30 * density - 1;
        for (const auto& [x, y] : {std::pair(0, 0), std::pair(right, 0), std::pair(0, bottom),
                                   std::pair(right, bottom)}) {
            EXPECT_EQ(At(button->window, x, y) >> 24, 0u) << density << ": " << x << ", " << y;
        }
        EXPECT_EQ(At(button->window, 30 * density, 15 * density), kColourA) << density;
        EXPECT_EQ(At(button->window, 30 * density, 0) >> 24, 0xFFu) << density;
    }
    manager.SetScreen(1280, 720);
    style.states[0].border.type = GhostFrame::kColour;
    button->SetStyle(style);
    manager.Tick(0);
    EXPECT_EQ(At(button->window, 0, 0) >> 24, 0xFFu);
}

// Over the thumb lies a fill of the state's own, within its margins.
TEST_F(Look, APartOfAScrollbarHasASecondFillWithinItsMargins) {
    GhostScrollbarStyle style;
    style.verArrowButtonHeight = 10;
    style.verMid.states[0].bg.colour1 = kColourA;
    style.verMid.states[1] = style.verMid.states[0];
    style.verMid.states[1].bg2.colour1 = 0xFFFFFFFF;
    style.verMid.states[1].textRect = {4, 2, 4, 2};
    auto* const bar = new CGhostScrollbar(nullptr, 0, L"", {false, 100, 100, 16, 120});
    bar->SetStyle(style);
    bar->SetRange(200, 100, 0, true); // the thumb is half of 100
    manager.Tick(0);
    EXPECT_EQ(At(bar->window, 8, 30), kColourA);
    MoveTo(108, 130);
    const auto lighter = [&](int x, int y) { return At(bar->window, x, y) != kColourA; };
    EXPECT_TRUE(lighter(8, 30));
    EXPECT_TRUE(lighter(4, 12) && lighter(11, 57));
    EXPECT_FALSE(lighter(3, 30) || lighter(12, 30) || lighter(8, 11) || lighter(8, 58));
}

TEST_F(Look, AHeadingLiesAtTheSideOfItsColumn) {
    auto* const view = new CGhostListView(nullptr, 0, L"HEADS", 0, {false, 100, 100, 400, 224});
    view->AddColumn(L"left", 200, kAlignLeft);
    view->AddColumn(L"right", 200, kAlignRight);
    manager.Tick(0);
    const auto extent = [](const GHOSTMANAGER_WINDOW* heading) { // of what differs from the fill
        const uint32_t fill = At(heading, 100, 1);
        int first = -1;
        int last = -1;
        for (int x = 0; x < heading->width; ++x) {
            for (int y = 0; y < heading->height; ++y) {
                if (At(heading, x, y) != fill) {
                    first = first < 0 ? x : first;
                    last = x;
                }
            }
        }
        return std::pair(first, last);
    };
    const GHOSTMANAGER_WINDOW* left = nullptr;
    const GHOSTMANAGER_WINDOW* right = nullptr;
    for (auto* child = view->window->firstChild; child != nullptr; child = child->nextSibling) {
        if (dynamic_cast<CGhostButton*>(child->handler) != nullptr) {
            (left == nullptr ? left : right) = child;
        }
    }
    ASSERT_NE(right, nullptr);
    EXPECT_LT(extent(left).second, 100);
    EXPECT_GE(extent(left).first, 0);
    EXPECT_GT(extent(right).first, 100);
}

TEST_F(Look, ASliderIsFilledAsFarAsItsValueUnderItsNumber) {
    auto* const slider = new CGhostSlider(nullptr, 0, L"BAR", 0, 10, {false, 100, 100, 200, 20});
    slider->SetValue(0.25f);
    manager.Tick(0);
    constexpr uint32_t kFilled = 0xFF00003F; // one step below itself over an opaque ground
    EXPECT_EQ(At(slider->window, 0, 1), kFilled);
    EXPECT_EQ(At(slider->window, 49, 1), kFilled);
    EXPECT_EQ(At(slider->window, 50, 1), 0xFF000020u);
    EXPECT_EQ(At(slider->window, 199, 1), 0xFF000020u);
}

TEST_F(Look, SetStyleReadsTheRecordAnew) {
    auto* const slider = new CGhostSlider(nullptr, 0, L"A", 0, 10, {false, 0, 0, 100, 20});
    auto* const text = new CGhostMultiText(nullptr, 0, L"A", L"", {false, 0, 50, 100, 40});
    auto* const bar = new CGhostScrollbar(nullptr, 0, L"S1", {false, 0, 100, 14, 100});
    bar->SetRange(200, 100, 0, true);
    manager.Tick(0);
    EXPECT_EQ(At(slider->window, 50, 10), kColourA);
    EXPECT_EQ(At(text->window, 50, 20), kColourA);
    EXPECT_EQ(At(bar->window, 7, 50), kColourA);
    slider->SetStyle(L"B");
    text->SetStyle(L"B");
    bar->SetStyle(L"S2");
    manager.Tick(0);
    EXPECT_EQ(At(slider->window, 50, 10), kColourB);
    EXPECT_EQ(At(text->window, 50, 20), kColourB);
    EXPECT_EQ(text->window->clientRect, (GUI_RECT{3, 3, 94, 34})) << "its border is the frame";
    EXPECT_EQ(At(bar->window, 7, 50), kColourB);
    bar->SetRange(-1, -1, 0, false);
    ClickAt(7, 100 + 15); // within the higher arrow button, which does nothing at the start
    EXPECT_EQ(bar->Pos(), 0);
    ClickAt(7, 100 + 85);
    EXPECT_EQ(bar->Pos(), 20) << "one step of the lower arrow button";
    slider->SetStyle(L"NONE OF THAT NAME");
    manager.Tick(0);
    EXPECT_NE(At(slider->window, 50, 1), kColourB) << "a zeroed record";
}

TEST_F(Look, AWindowWithoutPaintLeavesItsSurfaceClearAndAPanelTellsNothing) {
    const auto make = [](uint32_t flags, int x) {
        return new CGhostWindowEx(nullptr, 0, L"PANEL", L"", flags, {false, x, 0, 50, 50});
    };
    CGhostWindowEx* const painted = make(0, 0);
    CGhostWindowEx* const clear = make(CGhostWindowEx::kNoPaint, 100);
    CGhostWindowEx* const silent = make(CGhostWindowEx::kNoSignals, 200);
    int told[3] = {};
    int index = 0;
    for (CGhostWindowEx* const window : {painted, clear, silent}) {
        int& count = told[index++];
        window->OnMoved.connect([&count](auto&&...) { ++count; });
        window->OnDown.connect([&count](auto&&...) { ++count; });
        window->OnUp.connect([&count](auto&&...) { ++count; });
        window->OnDoubleClick.connect([&count](auto&&...) { ++count; });
        window->OnWheel.connect([&count](auto&&...) { ++count; });
        window->OnResized.connect([&count](auto&&...) { ++count; });
    }
    for (const int x : {10, 110, 210}) {
        DoubleClickAt(x, 10); // one move, press, release and double click
        Release();
        Wheel(true);
    }
    for (CGhostWindowEx* const window : {painted, clear, silent}) {
        window->SetPos(kKeepValue, kKeepValue, 60, 60);
    }
    manager.Tick(0);
    EXPECT_GE(told[0], 6) << "each of the six";
    EXPECT_EQ(told[1], told[0]);
    EXPECT_EQ(told[2], 0);
    EXPECT_EQ(At(painted->window, 20, 20), kColourA);
    EXPECT_EQ(At(clear->window, 20, 20), 0u);
    EXPECT_EQ(At(silent->window, 20, 20), kColourA);
}

TEST_F(Look, ATextBoxReportsMovePressReleaseAndWheel) {
    auto* const box = new CGhostTextBox(nullptr, 0, L"A", L"text", {false, 100, 100, 80, 40});
    std::vector<std::string> told;
    const auto place = [](int x, int y) { return std::to_string(x) + " " + std::to_string(y); };
    box->OnMouseMoved.connect([&](CGhostTextBox*, int x, int y, bool pressed, bool released) {
        told.push_back("move " + place(x, y) + (pressed || released ? " held" : ""));
    });
    box->OnDown.connect([&](CGhostTextBox*, int x, int y, unsigned button) {
        told.push_back("down " + place(x, y) + " " + std::to_string(button));
    });
    box->OnUp.connect([&](CGhostTextBox*, int x, int y, unsigned button) {
        told.push_back("up " + place(x, y) + " " + std::to_string(button));
    });
    box->OnWheel.connect([&](CGhostTextBox*, int x, int y, bool up) {
        told.push_back("wheel " + place(x, y) + (up ? " up" : " down"));
    });
    MoveTo(105, 107);
    Press(2);
    MoveTo(300, 300);
    Release(2);
    MoveTo(106, 108);
    Wheel(true);
    Wheel(false);
    EXPECT_EQ(told,
              (std::vector<std::string>{"move 5 7", "down 5 7 2", "move 200 200", "up 200 200 2",
                                        "move 6 8", "wheel 6 8 up", "wheel 6 8 down"}));
}
