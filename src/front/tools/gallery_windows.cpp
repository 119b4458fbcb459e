// The pages of windows: titles, panels, floating menus and messages.
#include "front/tools/gallery_pages.h"
#include "front/tools/gallery_parts.h"
#include "gui/list.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "gui/popup.h"
#include "gui/tool_tip_window.h"
#include "gui/window.h"
#include "gui/window_ex.h"

using Window = CGhostWindowEx;

namespace {

// The program's own, which the manager shows and hides; here it has a place, and ends with the page.
void BuildToolTip(GHOSTMANAGER_WINDOW* root, const std::wstring& text, int32_t x, int32_t y) {
    auto* const tip = new CGhostToolTipWindow();
    CGhostManager::Get().SetOwner(tip->window, root);
    tip->ShowToolTip(text);
    const GUI_RECT screen = GalleryScreenRect(root);
    tip->SetPos(screen.x + x, screen.y + y, kKeepValue, kKeepValue);
}

void BuildFloating(GHOSTMANAGER_WINDOW* root) {
    GalleryLabel(root, L"MESSAGEBOX, as a message has it", 36, 56);
    GHOSTMANAGER_WINDOW* const box =
        GalleryWindow(root, L"MESSAGEBOX", L"Error loading game",
                      Window::kFrame | Window::kTitle | Window::kNoButtons, {24, 72, 450, 170});
    GalleryText(box, L"MESSAGEBOX_TEXT", L"The file holds no game of a machine that is known.",
                {0, 0, 394, 60});
    GalleryButton(box, L"MESSAGEBOX_BUTTON", L"Ok", GalleryState::kFocused, {147, 71, 100, 25});
    GalleryLabel(root, L"with the buttons of a title", 494, 56);
    GHOSTMANAGER_WINDOW* const titled =
        GalleryWindow(root, L"MESSAGEBOX", L"A window with a title",
                      Window::kFrame | Window::kTitle, {482, 72, 400, 170});
    GalleryText(titled, L"TEXT", L"What it holds begins here.", {0, 12, 300, 25});
    GalleryLabel(root, L"TOOLTIP, as it comes up", 902, 56);
    BuildToolTip(root, L"Saves the game as it is now", 890, 72);
}

void BuildPanels(GHOSTMANAGER_WINDOW* root) {
    GalleryLabel(root, L"OPTIONWINDOW", 24, 262);
    GHOSTMANAGER_WINDOW* const panel =
        GalleryWindow(root, L"OPTIONWINDOW", L"", Window::kFrame, {24, 284, 400, 150});
    GalleryText(panel, L"TEXT_RIGHT", L"Sample Rate:", {8, 12, 140, 25});
    GalleryDropList(panel, L"48000", {160, 12, 200, 25});
    GalleryText(panel, L"TEXT_CENTER", L"A note in small letters", {8, 90, 368, 20});
    GalleryLabel(root, L"WINDOWOVERLAY", 448, 262);
    GalleryText(root, L"WINDOWOVERLAY", L"Connecting to server to collect news...",
                {448, 284, 400, 150});
    GalleryLabel(root, L"MESSAGEBOXBG, over what is behind a message", 872, 262);
    GHOSTMANAGER_WINDOW* const behind =
        GalleryWindow(root, L"GAMEOPTIONS", L"", Window::kFrame, {872, 284, 384, 150});
    GalleryText(behind, L"LARGEHEADERTEXT", L"Bells under the Harbour", {8, 8, 352, 25});
    GalleryText(behind, L"TEXT", L"Still to be made out, and no more.", {8, 100, 352, 25});
    GalleryWindow(behind, L"MESSAGEBOXBG", L"", Window::kNoSignals, {176, 0, 192, 134});
    GalleryLabel(root, L"GAMELISTOPTIONS, scrolled", 24, 454);
    GHOSTMANAGER_WINDOW* const scrolled =
        GalleryWindow(root, L"GAMELISTOPTIONS", L"", Window::kFrame, {24, 476, 400, 210});
    for (int32_t row = 0; row < 6; ++row) {
        GalleryText(scrolled, L"TEXT", L"A row of a panel that scrolls",
                    {8, 8 + row * 28, 300, 25});
    }
    if (auto* const window = dynamic_cast<Window*>(scrolled->handler); window != nullptr) {
        window->ShowScrollbar(true);
    }
}

void BuildMenu(GHOSTMANAGER_WINDOW* root) {
    GalleryLabel(root, L"POPUPMENU", 448, 454);
    auto* const menu = new CGhostPopup(root, 0);
    menu->AddItem(L"Play", 2);
    menu->AddItem(L"What is known of it", 3);
    menu->AddItem(L"Not while it runs", -1, GHOSTLIST_ITEM::kDisabled);
    menu->AddItem(L"Delete", 4);
    const GUI_RECT screen = GalleryScreenRect(root);
    menu->ShowAt(screen.x + 448, screen.y + 476);
    menu->List()->SetHot(1);
}

} // namespace

void BuildWindowsPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Windows");
    BuildFloating(root);
    BuildPanels(root);
    BuildMenu(root);
    GalleryLabel(root, L"TOOLTIP, wrapped", 684, 454);
    BuildToolTip(root,
                 L"Games are looked for in this folder and in those below it, also in archives. "
                 L"What is found is kept, so that the next search is quick.",
                 672, 468);
}

// The message floats for the page and ends with it.
void BuildMessagePage(GHOSTMANAGER_WINDOW* root) {
    BuildBrowserPage(root);
    CGhostMessageBox* const box = CGhostMessageBox::Show(
        L"Error loading game", L"The file holds no game of a machine that is known here. "
                               L"What \"ombrelune info\" says about it may help.");
    if (box != nullptr) {
        CGhostManager::Get().SetOwner(box->window, root);
    }
}
