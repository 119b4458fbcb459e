// Lists and tables.
#include "gui/control_rig.h"

namespace {

class ListTest : public ControlTest {
protected:
    CGhostList* Make(uint32_t flags, int rows, GUI_PLACE place = {false, 100, 100, 200, 202}) {
        auto* const list = new CGhostList(nullptr, 0, L"LIST", flags, place);
        for (int i = 0; i < rows; ++i) {
            list->AddItem(std::wstring(1, static_cast<wchar_t>(L'a' + i % 26)) + L"-row");
        }
        list->OnSelect.connect([this](CGhostList*, int index, GHOSTLIST_ITEM* item) {
            EXPECT_EQ(item == nullptr, index < 0);
            selections.push_back(index);
        });
        manager.Tick(0);
        return list;
    }
    std::vector<int> Selections() { return std::exchange(selections, {}); }
    std::vector<int> selections;

    CGhostListView* MakeView(int rows, uint32_t flags = 0) {
        auto* const view =
            new CGhostListView(nullptr, 0, L"VIEW", flags, {false, 100, 100, 300, 224});
        view->AddColumn(L"Name", 100);
        view->AddColumn(L"Size", 60);
        for (int i = 0; i < rows; ++i) {
            view->AddRow();
            view->SetCell(i, 0, L"row " + std::to_wstring(rows - i));
            view->SetCell(i, 1, std::to_wstring(i));
        }
        view->OnSelect.connect(
            [this](CGhostListView*, int row, GHOSTLISTVIEW_ITEM*) { selections.push_back(row); });
        manager.Tick(0);
        return view;
    }
};

using List = ListTest;
using ListView = ListTest;
using Ints = std::vector<int>;

} // namespace

TEST_F(List, GrowsFrom128To256AndKeepsTheSelectedRow) {
    CGhostList* const list = Make(0, 128);
    EXPECT_EQ(list->Capacity(), 128u);
    list->SetSelected(77);
    list->AddItem(L"one more");
    EXPECT_EQ(list->Capacity(), 256u);
    EXPECT_EQ(list->Selected(), 77);
    EXPECT_EQ(list->Item(77)->text, L"z-row");
}

TEST_F(List, APressSelectsTheRowAndPastTheLastNone) {
    CGhostList* const list = Make(0, 3);
    const int row = list->RowHeight();
    ClickAt(110, 101 + row + 1); // within a frame of 1
    EXPECT_EQ(Selections(), (Ints{1}));
    ClickAt(110, 101 + row + 1);
    EXPECT_EQ(Selections(), Ints{}) << "it is selected";
    ClickAt(110, 101 + 3 * row);
    EXPECT_EQ(Selections(), (Ints{-1}));
    ClickAt(110, 101 + 3 * row - 1);
    EXPECT_EQ(Selections(), (Ints{2}));
}

TEST_F(List, FlagsSayWhatIsSelectedAndReported) {
    Make(CGhostList::kNoSelection, 3);
    ClickAt(110, 105);
    EXPECT_EQ(Selections(), Ints{});
    manager.Reset();
    Make(CGhostList::kReportsAgain, 3);
    ClickAt(110, 105);
    ClickAt(110, 105);
    EXPECT_EQ(Selections(), (Ints{0, 0}));
    manager.Reset();
    Make(CGhostList::kOnRelease, 3);
    MoveTo(110, 105);
    Press();
    EXPECT_EQ(Selections(), Ints{});
    Release();
    EXPECT_EQ(Selections(), (Ints{0}));
}

TEST_F(List, ADisabledRowIsNoRow) {
    CGhostList* const list = Make(0, 4);
    list->Item(1)->flags = GHOSTLIST_ITEM::kDisabled;
    list->SetSelected(2);
    list->SetSelected(1);
    EXPECT_EQ(list->Selected(), -1);
    EXPECT_EQ(Selections(), (Ints{2, -1}));
    list->SetSelected(0, false);
    EXPECT_EQ(Selections(), Ints{}) << "not to be reported";
    Focus(list->window);
    Key(kDown);
    EXPECT_EQ(list->Selected(), 2) << "passed over";
    Key(kUp);
    EXPECT_EQ(list->Selected(), 0);
}

TEST_F(List, KeysMoveAndShowTheSelection) {
    CGhostList* const list = Make(0, 100);
    Focus(list->window);
    Key(kEnd);
    EXPECT_EQ(list->Selected(), 99);
    EXPECT_EQ(list->ScrollPixels(), list->ContentHeight() - 200) << "no further than the end";
    const int page = 200 / list->RowHeight();
    Key(kPageUp);
    EXPECT_EQ(list->Selected(), 99 - page);
    Key(kHome);
    EXPECT_EQ(list->Selected(), 0);
    EXPECT_EQ(list->ScrollPixels(), 0);
    Key(kUp);
    EXPECT_EQ(list->Selected(), 0);
    Key(kPageDown);
    EXPECT_EQ(list->Selected(), page);
}

TEST_F(List, LettersLookForARow) {
    CGhostList* const list = Make(0, 30);
    Focus(list->window);
    Type("c");
    EXPECT_EQ(list->Selected(), 2);
    Type("c");
    EXPECT_EQ(list->Selected(), 28) << "the next one with it";
    Type("c");
    EXPECT_EQ(list->Selected(), 2) << "round";
    manager.Tick(1000000);
    list->AddItem(L"Delta");
    Type("de");
    EXPECT_EQ(list->Selected(), 30) << "capitals or not";
}

TEST_F(List, TheWheelScrollsToTheEndsAndNoFurther) {
    CGhostList* const list = Make(0, 100);
    MoveTo(110, 150);
    Wheel(true);
    EXPECT_EQ(list->ScrollPixels(), 0);
    Wheel(false);
    EXPECT_EQ(list->ScrollPixels(), 3 * list->RowHeight());
    for (int i = 0; i < 60; ++i) {
        Wheel(false);
    }
    EXPECT_EQ(list->ScrollPixels(), list->ContentHeight() - 200);
    EXPECT_EQ(list->window->clientRect.width, 200 - 2 - 14) << "the bar's width is taken off";
}

TEST_F(List, AControllerLeavesItAtTheEnds) {
    CGhostList* const list = Make(0, 3);
    auto* const below = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 100, 400, 80, 30});
    int chosen = -1;
    list->OnChoose.connect([&](CGhostList*, int index, GHOSTLIST_ITEM*) { chosen = index; });
    Focus(list->window);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(manager.Navigate(GUI_DIRECTION::kDown));
    }
    EXPECT_EQ(list->Selected(), 2);
    manager.ActivateFocus();
    EXPECT_EQ(chosen, 2);
    EXPECT_TRUE(manager.Navigate(GUI_DIRECTION::kDown));
    EXPECT_EQ(manager.FocusWindow(), below->window);
}

TEST_F(List, RemovingARowKeepsTheSelectionOnItsRow) {
    CGhostList* const list = Make(0, 5);
    list->SetSelected(3);
    list->RemoveItem(1);
    EXPECT_EQ(list->Selected(), 2);
    EXPECT_EQ(list->Item(2)->text, L"d-row");
    list->RemoveItem(2);
    EXPECT_EQ(list->Selected(), -1);
    list->RemoveItem(17);
    list->Clear();
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(ListView, AClickReportsButtonRowAndColumn) {
    CGhostListView* const view = MakeView(5);
    std::vector<Ints> clicks;
    view->OnClick.connect(
        [&](CGhostListView*, unsigned button, int row, int column, GHOSTLISTVIEW_ITEM* cell) {
            clicks.push_back({static_cast<int>(button), row, column, cell != nullptr ? 1 : 0});
        });
    ClickAt(110, 124);         // the first row begins under the heading of 24
    ClickAt(210, 124 + 45, 2); // rows of 20
    ClickAt(290, 124 + 99);    // beside the columns
    ClickAt(110, 124 + 100);   // below the rows
    EXPECT_EQ(clicks, (std::vector<Ints>{
                          {1, 0,  0,  1},
                          {2, 2,  1,  1},
                          {1, 4,  -1, 0},
                          {1, -1, -1, 0}
    }));
    EXPECT_EQ(Selections(), (Ints{0, 4, -1}));
}

TEST_F(ListView, TheSelectionIsAFlagOfTheRowsCells) {
    CGhostListView* const view = MakeView(5);
    view->SetSelected(1);
    EXPECT_EQ(view->Cell(1, 1)->flags, GHOSTLISTVIEW_ITEM::kSelected);
    view->SetSelected(3);
    EXPECT_EQ(view->Cell(1, 1)->flags, 0u);
    EXPECT_EQ(view->Cell(3, 0)->flags, GHOSTLISTVIEW_ITEM::kSelected);
    EXPECT_EQ(view->Cell(5, 0), nullptr);
    EXPECT_EQ(view->Cell(0, 2), nullptr);
}

TEST_F(ListView, AHeadingSortsIfTheOwnerSaysSo) {
    CGhostListView* const view = MakeView(9); // "row 9" to "row 1"
    int heading = -1;
    view->OnHeader.connect([&](CGhostListView*, int column) { heading = column; });
    view->SetSelected(0);
    ClickAt(150, 110);
    EXPECT_EQ(heading, 0);
    EXPECT_EQ(view->Cell(0, 0)->text, L"row 9") << "not sortable yet";
    view->SetSortable(0);
    ClickAt(150, 110);
    EXPECT_EQ(view->Cell(0, 0)->text, L"row 1");
    EXPECT_EQ(view->Cell(0, 1)->text, L"8") << "the whole row goes along";
    EXPECT_EQ(view->Selected(), 8) << "the selection stays on its row";
    ClickAt(150, 110);
    EXPECT_EQ(view->Cell(0, 0)->text, L"row 9");
    EXPECT_EQ(view->Selected(), 0);
    view->SetSortable(1, [](const GHOSTLISTVIEW_ITEM& a, const GHOSTLISTVIEW_ITEM& b) {
        return std::stoi(a.text) % 3 < std::stoi(b.text) % 3;
    });
    view->SortBy(1, false);
    EXPECT_EQ(view->Cell(0, 1)->text, L"0");
    EXPECT_EQ(view->Cell(1, 1)->text, L"3") << "equal rows keep their order";
}

TEST_F(ListView, DraggingAnEdgeOfAHeadingChangesTheWidthAndDoesNotSort) {
    CGhostListView* const view = MakeView(3);
    bool sorted = false;
    view->OnHeader.connect([&](CGhostListView*, int) { sorted = true; });
    MoveTo(100 + 97, 110); // within 6 of the right edge
    Press();
    MoveTo(100 + 137, 110);
    EXPECT_EQ(view->ColumnWidth(0), 140);
    Release();
    EXPECT_EQ(view->CellPlace(0, 1), (GUI_RECT{140, 24, 60, 20}));
    MoveTo(100 + 143, 110); // the left edge of the second column is the right one of the first
    Press();
    MoveTo(100 + 103, 110);
    Release();
    EXPECT_EQ(view->ColumnWidth(0), 100);
    EXPECT_EQ(view->ColumnWidth(1), 60);
    EXPECT_FALSE(sorted);
}

TEST_F(ListView, CellsAreCutToWhatIsSeen) {
    CGhostListView* const view = MakeView(100);
    view->ScrollTo(10);
    EXPECT_EQ(view->CellPlace(0, 0), (GUI_RECT{0, 24, 100, 10}));
    EXPECT_EQ(view->CellPlace(10, 0), (GUI_RECT{0, 214, 100, 10}));
    EXPECT_TRUE(view->CellPlace(11, 0).Empty());
    Focus(view->window);
    Key(kEnd);
    EXPECT_EQ(view->Selected(), 99);
    EXPECT_EQ(view->ScrollPixels(), 100 * 20 - 200);
    Key(kPageUp);
    EXPECT_EQ(view->Selected(), 89);
    Type("row 50");
    EXPECT_EQ(view->Selected(), 50);
}

TEST_F(ListView, AnEditedCellIsReportedAndEscapeKeepsIt) {
    CGhostListView* const view = MakeView(5);
    std::wstring told;
    view->OnEdited.connect([&](CGhostListView*, int row, int column, const std::wstring& text) {
        told = std::to_wstring(row) + L" " + std::to_wstring(column) + L" " + text;
    });
    Focus(view->window);
    view->BeginEdit(2, 1);
    manager.Tick(0);
    Type("new");
    Key(kReturn);
    EXPECT_EQ(told, L"2 1 new");
    EXPECT_EQ(view->Cell(2, 1)->text, L"new");
    EXPECT_EQ(manager.FocusWindow(), view->window);
    view->BeginEdit(2, 1);
    manager.Tick(0);
    Type("x");
    Key(kEscape);
    EXPECT_EQ(view->Cell(2, 1)->text, L"new");
    EXPECT_EQ(view->Editor(), nullptr);
}

TEST_F(List, LettersPassOverDisabledRows) {
    CGhostList* const list = Make(0, 3);
    list->AddItem(L"c-again");
    list->Item(2)->flags = GHOSTLIST_ITEM::kDisabled;
    Focus(list->window);
    Type("c");
    EXPECT_EQ(list->Selected(), 3);
}

TEST_F(List, ADoubleClickChoosesAndWithOnReleaseOnlySelects) {
    CGhostList* const list = Make(0, 3);
    int chosen = -1;
    list->OnChoose.connect([&](CGhostList*, int row, GHOSTLIST_ITEM*) { chosen = row; });
    DoubleClickAt(110, 101 + list->RowHeight() + 1);
    EXPECT_EQ(chosen, 1);
    manager.Reset();
    Make(CGhostList::kOnRelease | CGhostList::kReportsAgain, 3);
    selections.clear();
    DoubleClickAt(110, 105);
    EXPECT_EQ(selections, (Ints{0, 0})) << "once for each press";
}

TEST_F(ListView, AnEditThatChangesNothingIsNotReported) {
    CGhostListView* const view = MakeView(3);
    view->SetCell(0, 0, L"two\nlines");
    bool told = false;
    view->OnEdited.connect([&](auto&&...) { told = true; });
    view->BeginEdit(0, 0);
    manager.Tick(0);
    Key(kReturn);
    EXPECT_FALSE(told);
    EXPECT_EQ(view->Cell(0, 0)->text, L"two\nlines");
}

// A selection that the program made is no choice of the user's.
TEST_F(ListView, ADoubleClickWithoutSelectionChoosesNothing) {
    CGhostListView* const view = MakeView(3, CGhostListView::kNoSelection);
    view->SetSelected(2);
    int chosen = 0;
    view->OnChoose.connect([&](auto&&...) { ++chosen; });
    DoubleClickAt(110, 130);
    EXPECT_EQ(chosen, 0);
    manager.Reset();
    CGhostListView* const other = MakeView(3);
    other->OnChoose.connect([&](auto&&...) { ++chosen; });
    DoubleClickAt(110, 130);
    EXPECT_EQ(chosen, 1);
}

// Return then is for the row, not for the heading.
TEST_F(ListView, KeysThatMoveTheSelectionLeaveTheHeadings) {
    CGhostListView* const view = MakeView(30);
    view->SetSortable(0);
    int heads = 0;
    int chosen = -1;
    view->OnHeader.connect([&](CGhostListView*, int) { ++heads; });
    view->OnChoose.connect([&](CGhostListView*, int row, GHOSTLISTVIEW_ITEM*) { chosen = row; });
    Focus(view->window);
    const auto toHeadings = [&] {
        view->SetSelected(0);
        manager.Navigate(GUI_DIRECTION::kUp);
        heads = 0;
        Key(kReturn);
        EXPECT_EQ(heads, 1) << "a heading is aimed at";
        heads = 0;
        chosen = -1;
    };
    for (const uint32_t key : {kPageDown, kPageUp, kEnd, kHome}) {
        toHeadings();
        Key(key);
        Key(kReturn);
        EXPECT_EQ(heads, 0) << key;
        EXPECT_EQ(chosen, view->Selected()) << key;
    }
    toHeadings();
    Type("row 2");
    Key(kReturn);
    EXPECT_EQ(heads, 0);
    EXPECT_EQ(chosen, view->Selected());
    toHeadings();
    Type("z");
    Key(kReturn);
    EXPECT_EQ(heads, 1) << "no row begins with it";
}

// A theme's file may give rows any height.
TEST_F(ListView, RowsOfAnAbsurdHeightAreCountedWithoutOverflow) {
    CGhostTheme::Get().ParseTheme("<?xml version='1.0'?><theme><listview name='HIGH'>"
                                  "<number name='itemheight' val='1048576'/>"
                                  "</listview></theme>");
    auto* const view = new CGhostListView(nullptr, 0, L"HIGH", 0, {false, 0, 0, 200, 100});
    view->AddColumn(L"Name", 80);
    constexpr int32_t kRowCount = 20000;
    view->Reserve(kRowCount);
    for (int32_t i = 0; i < kRowCount; ++i) {
        view->AddRow();
    }
    EXPECT_GT(view->ContentHeight(), 0);
    EXPECT_EQ(view->ContentHeight() / view->RowHeight(), kRowCount);
    view->SetSelected(kRowCount - 1);
    manager.Tick(0);
    EXPECT_FALSE(view->CellPlace(kRowCount - 1, 0).Empty());
    EXPECT_TRUE(view->CellPlace(0, 0).Empty());
}

namespace {

// 20,000 rows that nobody has written down, and which of them were asked for.
struct NUMBERED_ROWS {
    std::vector<int32_t> asked;
    std::vector<std::pair<int32_t, bool>> sorted;
    std::wstring text;

    GHOSTLISTVIEW_SOURCE Source() {
        GHOSTLISTVIEW_SOURCE source;
        source.fill = [this](int32_t row, std::span<GHOSTLISTVIEW_ITEM> cells) {
            asked.push_back(row);
            cells[0].text = L"row " + std::to_wstring(row);
            cells[1].text = std::to_wstring(asked.size());
        };
        source.text = [this](int32_t row) {
            text = L"row " + std::to_wstring(row);
            return std::wstring_view(text);
        };
        source.sort = [this](int32_t column, bool descending) {
            sorted.emplace_back(column, descending);
        };
        return source;
    }
};

} // namespace

TEST_F(ListView, ASourceIsAskedForTheRowsThatAreSeenAndNoOthers) {
    CGhostListView* const view = MakeView(3);
    NUMBERED_ROWS rows;
    view->SetRows(20000, rows.Source());
    EXPECT_EQ(view->RowCount(), 20000);
    EXPECT_TRUE(rows.asked.empty());
    manager.Tick(0);
    const int32_t page = (224 - 2 - view->HeaderHeight()) / view->RowHeight() + 1;
    EXPECT_LE(rows.asked.size(), static_cast<size_t>(page + 1));
    EXPECT_EQ(rows.asked.front(), 0);
    rows.asked.clear();
    view->SetSelected(12345);
    manager.Tick(0);
    EXPECT_NE(std::find(rows.asked.begin(), rows.asked.end(), 12345), rows.asked.end());
    EXPECT_EQ(view->Cell(12345, 0)->text, L"row 12345");
    EXPECT_EQ(view->Cell(12345, 1)->flags, GHOSTLISTVIEW_ITEM::kSelected);
    EXPECT_EQ(view->Cell(12344, 1)->flags, 0u);
    EXPECT_EQ(view->Cell(20000, 0), nullptr);
    view->Clear();
    EXPECT_EQ(view->RowCount(), 0);
    EXPECT_EQ(view->AddRow(), 0) << "without the source rows are the owner's again";
}

TEST_F(ListView, RefreshAsksTheSourceAgain) {
    CGhostListView* const view = MakeView(0);
    NUMBERED_ROWS rows;
    view->SetRows(5, rows.Source());
    const std::wstring before = view->Cell(2, 1)->text;
    EXPECT_EQ(view->Cell(2, 1)->text, before) << "kept until then";
    view->Refresh();
    EXPECT_NE(view->Cell(2, 1)->text, before);
}

TEST_F(ListView, HeadingsAndLettersWorkWithASource) {
    CGhostListView* const view = MakeView(0);
    view->SetSortable(0);
    NUMBERED_ROWS rows;
    view->SetRows(300, rows.Source());
    manager.Tick(0);
    ClickAt(150, 110);
    ClickAt(150, 110);
    EXPECT_EQ(rows.sorted, (std::vector<std::pair<int32_t, bool>>{
                               {0, false},
                               {0, true }
    }));
    view->ForgetOrder();
    EXPECT_EQ(view->SortColumn(), -1);
    for (const wchar_t letter : std::wstring_view(L"row 27")) {
        view->OnChar(static_cast<unsigned>(letter));
    }
    EXPECT_EQ(view->Selected(), 27);
    EXPECT_EQ(view->AddRow(), -1) << "the rows are the source's";
}
