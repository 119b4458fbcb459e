#include "room/room_modes.h"

void RoomModes::Enter() {
    roomVisible = true;
    walking = true;
}

void RoomModes::LeaveForFullScreen() {
    roomVisible = false;
    walking = false;
}

ROOM_ORDER RoomModes::Use() {
    if (!roomVisible || !walking || selected.id == 0) {
        return {};
    }
    walking = false;
    return {RoomOrder::kChooseGame, selected.id};
}

void RoomModes::ToggleWalking() {
    roomVisible = true;
    walking = !walking;
}

void RoomModes::ToggleWalkingAtScreen() {
    if (selected.on) {
        ToggleWalking();
    }
}

ROOM_ORDER RoomModes::TurnOff(bool startFullScreen) {
    if (selected.id == 0) {
        return {};
    }
    const uint32_t id = selected.id;
    selected.on = false;
    if (startFullScreen) {
        walking = false;
        return {RoomOrder::kStopAndChooseGame, id};
    }
    Enter();
    return {RoomOrder::kStopGame, id};
}
