// EntryBox: which of the games in an archive is to be played. A list in the middle of the dimmed screen; return, a double
// click or `Play` takes the row, escape or `Cancel` none.
//
// Thread: main.
#pragma once

#include "gui/dimmed_box.h"

#include <string>
#include <vector>

class CGhostButton;
class CGhostList;

class EntryBox : public DimmedBox {
public:
    // `entries` as the player reads them; at least one.
    static EntryBox* Show(const std::vector<std::wstring>& entries);
    // The one that is open, or null.
    [[nodiscard]] static EntryBox* Open();

    [[nodiscard]] CGhostList* List() const { return list; }
    [[nodiscard]] CGhostButton* PlayButton() const { return play; }
    [[nodiscard]] CGhostButton* CancelButton() const { return cancel; }

    void Choose(int row); // -1: none. The box goes with the next tick

    // Once, as the box goes; not if the program ends before that.
    GuiSignal<void(int row)> OnChosen;

    void OnTick(unsigned microseconds) override;

protected:
    ~EntryBox() override;

private:
    explicit EntryBox(const std::vector<std::wstring>& entries);
    void Place() override;

    CGhostList* list;
    CGhostButton* play;
    CGhostButton* cancel;
    bool closed = false;
    int chosen = -1;
};
