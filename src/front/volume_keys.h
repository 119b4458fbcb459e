// VolumeKeys: the keys that make everything louder, softer or silent, in every game and while the player walks.
//
// The volume is the setting `audio_volume`, which is kept. Silence is for this run only; a change of the volume ends
// it.
// Thread: main.
#pragma once

#include "settings/input_frame.h"

class VolumeKeys {
public:
    // Once a round. `act`: the keys are the program's now, and not text for a field.
    void Update(bool act);

    // The setting may have been changed elsewhere, as in the options.
    void Apply();

    [[nodiscard]] bool Muted() const { return muted; }

private:
    void Change(int steps);
    void ToggleMute();

    InputLooker looker;
    bool muteHeld = false;
    bool downHeld = false;
    bool upHeld = false;
    bool muted = false;
    float mutedAt = 0.0f; // the setting when silence began
};
