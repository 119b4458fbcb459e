// The pages of windows: titles, panels, floating menus and messages.
#include "front/tools/gallery_pages.h"
#include "front/tools/gallery_parts.h"
#include "gui/list.h"
#include "gui/message_box.h"
#include "gui/popup.h"
#include "gui/window.h"
#include "gui/window_ex.h"

using Window = CGhostWindowEx;

namespace {

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
    GalleryLabel(root, L"TOOLTIP", 902, 56);
    GHOSTMANAGER_WINDOW* const tip =
        GalleryWindow(root, L"TOOLTIP", L"", Window::kFrame, {890, 72, 200, 62});
    GalleryText(tip, L"TOOLTIP_TEXT", L"Start the game", {0, 0, 144, 18});
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
}

namespace {

// Takes the message box, which is nobody's child, away with the page.
class MessageGuard : public GalleryCanvas {
public:
    MessageGuard(GHOSTMANAGER_WINDOW* parent, CGhostMessageBox* message)
        : GalleryCanvas(parent, {0, 0, 0, 0}, [](CGhostSurface&) {})
        , box(message) {
        box->OnClosed.connect([this](CGhostMessageBox*) { box = nullptr; });
    }
    void Destroy() override {
        if (box != nullptr) {
            box->OnClosed.disconnect_all_slots();
            box->Dismiss();
        }
        GalleryCanvas::Destroy();
    }

private:
    ~MessageGuard() override = default;
    CGhostMessageBox* box;
};

} // namespace

void BuildMessagePage(GHOSTMANAGER_WINDOW* root) {
    BuildBrowserPage(root);
    CGhostMessageBox* const box = CGhostMessageBox::Show(
        L"Error loading game", L"The file holds no game of a machine that is known here. "
                               L"What \"ombrelune info\" says about it may help.");
    if (box != nullptr) {
        new MessageGuard(root, box);
    }
}
