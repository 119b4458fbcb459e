// CGUIPanel: one of the main menu's panels, such as the options or the credits. It has its windows below the
// menu's main window, and lays them out by numbers whenever that changes its size.
//
// Lifetime: its owner deletes a panel, and that destroys its windows. Signals of its controls must be connected
//   through `Watch`: the windows live on until the toolkit's tick ends, and must not call a panel that is gone.
// Units: those of the virtual screen, within the main window's client area.
// Thread: main.
#pragma once

#include "gui/control.h"
#include "gui/geometry.h"

#include <boost/signals2/connection.hpp>

#include <utility>
#include <vector>

// Connections that end with their owner.
class ScreenSignals {
public:
    template <typename Signal, typename Slot>
    void Watch(Signal& signal, Slot&& slot) {
        connections.emplace_back(signal.connect(std::forward<Slot>(slot)));
    }

private:
    std::vector<boost::signals2::scoped_connection> connections;
};

class CGUIPanel {
public:
    explicit CGUIPanel(GHOSTMANAGER_WINDOW* parentWindow)
        : parent(parentWindow) {}
    virtual ~CGUIPanel(); // destroys its windows
    CGUIPanel(const CGUIPanel&) = delete;
    CGUIPanel& operator=(const CGUIPanel&) = delete;

    // Places the controls; `width` and `height` of the main window's client area.
    virtual void Layout(int32_t width, int32_t height) = 0;

    // Once a round, before the toolkit's tick.
    virtual void Update() {}

    // Closes what is open in the panel, if anything is: the first thing that going back does.
    [[nodiscard]] virtual bool TakeBack() { return false; }

    // Puts the focus on the control that the player most probably wants.
    virtual void TakeFocus() = 0;

protected:
    // A control that is directly in the main window. It ends with the panel.
    template <typename Control>
    Control* Own(Control* control) {
        windows.push_back(control->window);
        return control;
    }

    GHOSTMANAGER_WINDOW* const parent;
    ScreenSignals signals;

private:
    std::vector<GHOSTMANAGER_WINDOW*> windows;
};
