// A tree of every kind of control that bytes build, and bytes that then use it: for the random test and
// the fuzzer. The manager is the process's own.
#pragma once

#include "gui/button.h"
#include "gui/check_box.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/keyboard.h"
#include "gui/list.h"
#include "gui/list_view.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "gui/multi_text.h"
#include "gui/popup.h"
#include "gui/scrollbar.h"
#include "gui/slider.h"
#include "gui/text_box.h"
#include "gui/theme.h"
#include "gui/tool_tip_window.h"
#include "gui/window_ex.h"

#include <cstdint>
#include <string>
#include <vector>

inline constexpr const char* kRandomTheme = R"(<?xml version="1.0"?><theme>
<border name="B" type="rounded_colorinset"><rect left="2" top="2" right="2" bottom="3"/>
 <texture name="left" type="color"><color name="bg" val="FF335577"/></texture></border>
<textbox name="T"><texture type="color"><color name="bg" val="FF112233"/></texture>
 <color name="text" val="FFFFFFFF"/><rect left="3" right="3"/><font align="left"/></textbox>
<textbox name="W_BACKGROUND" use="T"><border type="color"><rect left="1" top="1" right="1" bottom="1"/>
 <texture type="color"><color name="bg" val="FFAA2266"/></texture></border></textbox>
<textbox name="W_TITLE" use="T"/><textbox name="MESSAGEBOXBG_BACKGROUND"><texture type="color">
 <color name="bg" val="80000000"/></texture></textbox>
<textbox name="MESSAGEBOX_BACKGROUND" use="W_BACKGROUND"/><textbox name="MESSAGEBOX_TEXT" use="T"/>
<textbox name="TOOLTIP_BACKGROUND" use="W_BACKGROUND"/><textbox name="TOOLTIP_TEXT" use="T"/>
<textbox name="FOCUS"><color name="text" val="FFFFB347"/></textbox>
<button name="BUTTON"><textbox name="normal"><texture type="color"><color name="bg" val="FF1B2142"/>
 </texture><color name="text" val="FFFFFFFF"/></textbox><textbox name="hot"><texture type="color_ver">
 <color name="bg" val="FF2A3266"/><color name="bg2" val="FF000000"/></texture></textbox>
 <textbox name="pressed"><texture type="color"><color name="bg" val="FFC97B1E"/></texture></textbox>
 </button><button name="MESSAGEBOX_BUTTON" use="BUTTON"/>
<edit name="EDIT"><textbox name="normal"><texture type="color"><color name="bg" val="FF1B2142"/></texture>
 <color name="text" val="FFFFFFFF"/><rect left="4" right="4"/></textbox><textbox name="hot">
 <border type="color"><rect left="2" top="2" right="2" bottom="2"/></border></textbox></edit>
<list name="LIST"><textbox name="bg"><texture type="color"><color name="bg" val="FF12162E"/></texture>
 <border type="color"><rect left="1" top="1" right="1" bottom="1"/></border></textbox>
 <textbox name="item_normal"><color name="text" val="FFFFFFFF"/><font align="left"/></textbox>
 <textbox name="item_hot"><texture type="color"><color name="bg" val="FF2A3266"/></texture></textbox>
 <textbox name="item_selected"><texture type="color"><color name="bg" val="FFFFB347"/></texture></textbox>
 </list><list name="POPUPMENU" use="LIST"/>
<listview name="VIEW"><number name="headerheight" val="24"/><number name="itemheight" val="20"/>
 <textbox name="item_normal"><color name="text" val="FFFFFFFF"/></textbox>
 <textbox name="item_selected"><texture type="color"><color name="bg" val="FFFFB347"/></texture></textbox>
 <button><textbox name="normal"><texture type="color"><color name="bg" val="FF43327A"/></texture></textbox>
 </button><edit><textbox name="normal"><texture type="color"><color name="bg" val="FFF3EAD3"/></texture>
 </textbox></edit></listview>
<scrollbar name="WINDOW_SCROLLBAR"><number name="ver_width" val="14"/>
 <number name="ver_arrowbuttonheight" val="14"/><number name="ver_thumbminheight" val="20"/>
 <textbox name="bg"><texture type="color"><color name="bg" val="FF0B0E1F"/></texture></textbox>
 <button name="ver_mid"><textbox name="normal"><texture type="color"><color name="bg" val="FFB9BCD6"/>
 </texture></textbox></button></scrollbar>
<droplist name="DROP"><textbox name="bg" use="T"><texture type="color"><color name="bg" val="FF1B2142"/>
 </texture></textbox><button><textbox name="normal"><texture type="color">
 <color name="bg" val="FF4FC3C7"/></texture></textbox></button></droplist></theme>)";

class RandomTree {
public:
    // `next` returns the next byte of the input.
    template <typename Next>
    explicit RandomTree(Next& next) {
        new CGhostToolTipWindow();
        for (int i = 0; i < 3; ++i) {
            Grow(next);
        }
    }

    // One thing that happens: input, a change of the tree, or a tick.
    template <typename Next>
    void Step(Next& next) {
        CGhostManager& manager = CGhostManager::Get();
        switch (next() % 16) {
        case 0: Grow(next); break;
        case 1:
            if (GHOSTMANAGER_WINDOW* const window = Some(next)) {
                manager.DestroyWindow(window);
            }
            break;
        case 2: manager.ShowWindow(Some(next), next() % 3 != 0); break;
        case 3: {
            const auto x = static_cast<int>(next() * 5);
            const auto y = static_cast<int>(next() * 3);
            const auto width = static_cast<int>(next() * 3);
            const auto height = static_cast<int>(next() * 2);
            manager.SetWindowPos(Some(next), x - 50, y - 50, width, height);
            break;
        }
        case 4: manager.SetZOrder(Some(next), -1); break;
        case 5: manager.SetFocus(Some(next)); break;
        case 6: manager.Navigate(static_cast<GUI_DIRECTION>(next() % 4)); break;
        case 7: manager.ActivateFocus(); break;
        case 8: manager.CancelFocus(); break;
        case 9: manager.SetWindowToolTip(Some(next), std::wstring(next() % 8, L't')); break;
        case 10: manager.Tick(next() * 20000u); break;
        default: Input(next); break;
        }
    }

private:
    template <typename Next>
    GHOSTMANAGER_WINDOW* Some(Next& next) {
        std::vector<GHOSTMANAGER_WINDOW*> all;
        CGhostManager::Get().ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
            all.push_back(const_cast<GHOSTMANAGER_WINDOW*>(&window));
        });
        return all.empty() ? nullptr : all[next() % all.size()];
    }

    template <typename Next>
    void Input(Next& next) {
        CGhostManager& manager = CGhostManager::Get();
        GUI_INPUT_RECORD record;
        const uint32_t kind = next();
        record.moved = (kind & 1) != 0;
        record.dx = static_cast<int>(next()) * 10 - manager.CursorX();
        record.dy = static_cast<int>(next()) * 6 - manager.CursorY();
        record.button = static_cast<int>(next() % 3) + 1;
        switch (kind >> 1 & 7) {
        case 0: record.buttonDown = true; break;
        case 1: record.buttonUp = true; break;
        case 2:
            record.wheel = true;
            record.button = static_cast<int>(next() % 2);
            break;
        case 3:
            record.keyDown = true;
            record.key = static_cast<int>(next());
            break;
        case 4:
            record.keyUp = true;
            record.key = static_cast<int>(next());
            break;
        case 5: record.character = static_cast<int>(next() + 1); break;
        default: break;
        }
        now += next();
        manager.PostInput(record, now);
    }

    // What a signal of a control does, in its midst: often nothing, sometimes the worst.
    void Disturb() {
        CGhostManager& manager = CGhostManager::Get();
        switch (++signals % 11) {
        case 3: manager.DestroyWindow(manager.FocusWindow()); break;
        case 5: manager.DestroyWindow(manager.HoverWindow()); break;
        case 7: manager.ShowWindow(manager.FocusWindow(), false); break;
        case 9: CGhostMessageBox::Show(L"Title", L"Some words to read."); break;
        default: break;
        }
    }

    template <typename Next>
    void Grow(Next& next) {
        size_t count = 0;
        CGhostManager::Get().ForEachWindow([&](const GHOSTMANAGER_WINDOW&) { ++count; });
        if (count > 120) {
            return;
        }
        GHOSTMANAGER_WINDOW* const parent = next() % 3 == 0 ? nullptr : Some(next);
        const auto x = static_cast<int>(next() * 4);
        const auto y = static_cast<int>(next() * 2);
        const GUI_PLACE place{next() % 8 == 0, x, y, static_cast<int>(next()) * 2 + 20,
                              static_cast<int>(next()) + 20};
        switch (next() % 12) {
        case 0:
        case 1: new CGhostWindowEx(parent, 0, L"W", L"title", next(), place); break;
        case 2: {
            auto* const made = new CGhostButton(parent, 0, L"BUTTON", L"ok", next() % 8, place);
            made->OnClick.connect([this](auto&&...) { Disturb(); });
            made->OnState.connect([this](auto&&...) { Disturb(); });
            break;
        }
        case 3: {
            auto* const made = new CGhostCheckBox(parent, 0, L"BUTTON", L"check", 0, place);
            made->OnChange.connect([this](auto&&...) { Disturb(); });
            break;
        }
        case 4: {
            auto* const made = new CGhostEdit(parent, 0, L"EDIT", L"some text", next() % 4, place);
            made->OnChange.connect([this](auto&&...) { Disturb(); });
            made->OnSubmit.connect([this](auto&&...) { Disturb(); });
            break;
        }
        case 5: {
            auto* const made = new CGhostSlider(parent, 0, L"T", 0, 10, place);
            made->OnChange.connect([this](auto&&...) { Disturb(); });
            break;
        }
        case 6: {
            auto* const made = new CGhostList(parent, 0, L"LIST", next() % 32, place);
            Fill(next,
                 [&](const std::wstring& text, uint32_t flags) { made->AddItem(text, -1, flags); });
            made->OnSelect.connect([this](auto&&...) { Disturb(); });
            made->OnChoose.connect([this](auto&&...) { Disturb(); });
            made->OnFocusChange.connect([this](auto&&...) { Disturb(); });
            break;
        }
        case 7: MakeView(next, parent, place); break;
        case 8: {
            auto* const made = new CGhostDropList(parent, 0, L"DROP", L"choose", 100, place);
            Fill(next,
                 [&](const std::wstring& text, uint32_t flags) { made->AddItem(text, -1, flags); });
            made->OnSelect.connect([this](auto&&...) { Disturb(); });
            break;
        }
        case 9: new CGhostMultiText(parent, 0, L"T", std::wstring(next(), L'w'), place); break;
        case 10: {
            auto* const made = new CGhostPopup(parent, 0);
            Fill(next,
                 [&](const std::wstring& text, uint32_t flags) { made->AddItem(text, -1, flags); });
            made->OnSelect.connect([this](auto&&...) { Disturb(); });
            made->Show();
            break;
        }
        default: new CGhostTextBox(parent, 0, L"T", L"label", place); break;
        }
    }

    template <typename Next>
    void MakeView(Next& next, GHOSTMANAGER_WINDOW* parent, const GUI_PLACE& place) {
        auto* const made = new CGhostListView(parent, 0, L"VIEW", next() % 16, place);
        made->AddColumn(L"Name", 80);
        made->AddColumn(L"Size", 40);
        made->SetSortable(0);
        Fill(next, [&](const std::wstring& text, uint32_t) {
            const int row = made->AddRow();
            made->SetCell(row, 0, text);
            made->SetCell(row, 1, L"12");
        });
        made->OnSelect.connect([this](auto&&...) { Disturb(); });
        made->OnClick.connect([this](auto&&...) { Disturb(); });
        made->OnChoose.connect([made](auto&&...) { made->BeginEdit(made->Selected(), 0); });
        made->OnHeader.connect([this](auto&&...) { Disturb(); });
        made->OnEdited.connect([this](auto&&...) { Disturb(); });
    }

    template <typename Next, typename Add>
    static void Fill(Next& next, Add add) {
        const uint32_t count = next() % 40;
        for (uint32_t i = 0; i < count; ++i) {
            add(std::wstring(1, static_cast<wchar_t>(L'a' + i % 26)) + L" row",
                i % 7 == 6 ? GHOSTLIST_ITEM::kDisabled : 0);
        }
    }

    uint64_t now = 1000000; // milliseconds
    uint32_t signals = 0;
};

// What must hold at any time between two calls. Empty when it does, or what does not.
inline std::string BrokenInvariant() {
    CGhostManager& manager = CGhostManager::Get();
    std::vector<const GHOSTMANAGER_WINDOW*> all;
    manager.ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) { all.push_back(&window); });
    const auto wrong = [&](const GHOSTMANAGER_WINDOW* window, bool visible) {
        bool known = window == nullptr;
        for (const GHOSTMANAGER_WINDOW* at : all) {
            known = known || at == window;
        }
        return !known || (visible && window != nullptr && !manager.IsWindowVisible(window));
    };
    if (wrong(manager.HoverWindow(), true)) {
        return "the hover window";
    }
    if (wrong(manager.FocusWindow(), true)) {
        return "the focus window";
    }
    if (wrong(manager.CaptureWindow(), true)) {
        return "the capture window";
    }
    if (wrong(manager.ModalWindow(), false)) {
        return "the modal window";
    }
    if (wrong(manager.ActiveTopWindow(), false)) {
        return "the active top window";
    }
    return {};
}
