// CGUICredits: the libraries, fonts and tools that the program stands on, with their licences.
#pragma once

#include "screens/screen_panel.h"

#include <span>

class CGhostListView;
class CGhostTextBox;

struct CREDIT {
    const wchar_t* name;
    const wchar_t* what;
};
[[nodiscard]] std::span<const CREDIT> Credits();

class CGUICredits final : public CGUIPanel {
public:
    explicit CGUICredits(GHOSTMANAGER_WINDOW* parentWindow);

    void Layout(int32_t width, int32_t height) override;
    void TakeFocus() override;

    [[nodiscard]] CGhostListView* List() const { return list; }

private:
    CGhostTextBox* title;
    CGhostListView* list;
};
