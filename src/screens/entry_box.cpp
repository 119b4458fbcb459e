#include "screens/entry_box.h"

#include "gui/button.h"
#include "gui/list.h"
#include "gui/manager.h"
#include "gui/window_ex.h"

#include <algorithm>
#include <initializer_list>

namespace {

EntryBox* gOpen = nullptr; // of the toolkit's one manager

constexpr int32_t kWidth = 520;
constexpr int32_t kMostListHeight = 340;
constexpr int32_t kLeastListHeight = 100;
constexpr int32_t kMargin = 10;
constexpr int32_t kButtonWide = 120;
constexpr int32_t kButtonHigh = 28;

// Escape, and a controller's second button, wherever the focus is.
class Canceller : public CGhostGUIHandler {
public:
    explicit Canceller(EntryBox* owner)
        : box(owner) {}
    void Destroy() override { delete this; }
    void OnKeyDown(GHOSTGUIKey key) override {
        if (key == GHOSTGUIKey::kEscape) {
            box->Choose(-1);
        }
    }
    bool OnCancelKey() override {
        box->Choose(-1);
        return true;
    }

private:
    EntryBox* box;
};

} // namespace

EntryBox* EntryBox::Show(const std::vector<std::wstring>& entries) {
    if (gOpen == nullptr) {
        gOpen = new EntryBox(entries);
    }
    return gOpen;
}

EntryBox* EntryBox::Open() {
    return gOpen;
}

EntryBox::EntryBox(const std::vector<std::wstring>& entries)
    : DimmedBox(L"Which game of the archive?") {
    GHOSTMANAGER_WINDOW* const within = Box()->window;
    list = new CGhostList(within, 0, L"LIST", 0, {});
    play = new CGhostButton(within, 0, L"BUTTON", L"Play", 0, {});
    cancel = new CGhostButton(within, 0, L"BUTTON", L"Cancel", 0, {});
    for (const std::wstring& entry : entries) {
        list->AddItem(entry);
    }
    list->OnChoose.connect([this](CGhostList*, int row, GHOSTLIST_ITEM*) { Choose(row); });
    list->OnCancel.connect([this](CGhostList*) { Choose(-1); });
    play->OnClick.connect([this](CGhostButton*, int, int, unsigned) { Choose(list->Selected()); });
    cancel->OnClick.connect([this](CGhostButton*, int, int, unsigned) { Choose(-1); });
    for (CGhostGUIHandler* last :
         std::initializer_list<CGhostGUIHandler*>{play, cancel, Box(), this}) {
        while (last->next != nullptr) {
            last = last->next;
        }
        last->next = new Canceller(this);
    }
    Place();
    TakeInput();
    list->SetSelected(0, false);
    list->SetFocus();
}

EntryBox::~EntryBox() {
    gOpen = nullptr;
}

void EntryBox::Choose(int row) {
    chosen = row;
    closed = true;
}

void EntryBox::Place() {
    const GUI_RECT& all = Screen();
    const int32_t around = FrameHigh() + 3 * kMargin + kButtonHigh;
    const int32_t rows = list->Count() * list->RowHeight() + list->FrameHeight();
    const int32_t room = std::max(std::min(kMostListHeight, all.height - around), kLeastListHeight);
    PlaceBox(std::min(kWidth, all.width), std::clamp(rows, kLeastListHeight, room) + around);
    const GUI_RECT client = Client();
    const int32_t buttonTop = client.height - kMargin - kButtonHigh;
    list->SetPos(kMargin, kMargin, client.width - 2 * kMargin, buttonTop - 2 * kMargin);
    play->SetPos(client.width / 2 - kMargin / 2 - kButtonWide, buttonTop, kButtonWide, kButtonHigh);
    cancel->SetPos(client.width / 2 + kMargin / 2, buttonTop, kButtonWide, kButtonHigh);
}

void EntryBox::OnTick(unsigned microseconds) {
    if (closed) {
        OnChosen(chosen);
        Close();
        return;
    }
    DimmedBox::OnTick(microseconds);
}
