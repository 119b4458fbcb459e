#include "front/saved_states.h"

#include "base/text.h"
#include "front/event_pump.h"
#include "front/notices.h"
#include "front/screen.h"
#include "gui/message_box.h"
#include "host/session_list.h"
#include "settings/bindings.h"
#include "settings/input_frame.h"

#include <ctime>
#include <utility>

namespace {

constexpr uint32_t kEscape = 41; // scancode

} // namespace

SavedStates::SavedStates()
    : panel({[this](SlotAct act, uint32_t slot) { Order(act, slot); }, [] {}}) {}

void SavedStates::Open(SAVED_STATES_GAME played) {
    if (IsShown() || played.serial == 0) {
        return;
    }
    game = std::move(played);
    if (!paused.Hold(game.key)) {
        return;
    }
    if (worker == nullptr) {
        worker = std::make_unique<SlotWorker>();
    }
    panel.Open(WideFromUtf8(game.title));
}

void SavedStates::Order(SlotAct act, uint32_t slot) {
    SLOT_ORDER order;
    order.act = act;
    order.key = game.key;
    order.serial = game.serial;
    order.slot = slot;
    order.stamp.now = std::time(nullptr);
    order.stamp.secondsPlayed = game.secondsPlayed ? game.secondsPlayed() : 0;
    worker->Order(order);
}

bool SavedStates::Update(const SCREEN_INPUT& input) {
    bool down = false;
    {
        const InputFrame frame(looker, kApplicationKey);
        down = InputIsDown(kApplicationKey, L"Saved States");
    }
    const bool pressed = !std::exchange(held, down) && down;
    const bool wasShown = IsShown();
    TakeAnswers();
    ReadKeys(input, pressed);
    panel.Update();
    if (!IsShown()) {
        paused.LetGo();
    }
    paused.Update(input.now);
    return pressed && !wasShown;
}

void SavedStates::ReadKeys(const SCREEN_INPUT& input, bool toggled) {
    const PAD_PRESSES presses = pad.Update(IsShown(), input.now);
    if (!IsShown() || CGhostMessageBox::Count() != 0) {
        return;
    }
    bool close = toggled || presses.back || presses.guide;
    for (const GUI_INPUT& event : input.events.gui) {
        close = close || (event.kind == GuiInputKind::kKeyDown && event.key == kEscape);
    }
    const SessionPin session = PinSession(game.key);
    if (close || !session || session->serial != game.serial) {
        Close();
    }
}

void SavedStates::TakeAnswers() {
    while (worker != nullptr) {
        const std::optional<SLOT_ANSWER> answer = worker->TakeAnswer();
        if (!answer) {
            return;
        }
        const bool isShown = IsShown() && answer->order.serial == game.serial;
        if (isShown) {
            panel.Take(*answer);
        }
        // What the panel does not show, as it is of another game, or shows no more.
        if (!answer->text.empty() && !(isShown && IsShown())) {
            if (answer->done) {
                PostNotice(answer->text +
                           (answer->undoable ? ". Undo Load in Saved States takes it back" : ""));
            } else {
                PostReport(answer->text);
            }
        }
    }
}
