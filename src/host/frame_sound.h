// What becomes of a frame's sound when a game does not simply run on: reversed, stretched for slow motion, or faded
// where sound ends and begins again.
//
// Units: a pair is a left and a right sample; a fade lasts 5 ms.
// Thread: the session's.
#pragma once

#include "host/aligned_block.h"
#include "machine/emu_system.h"

#include <array>
#include <cstdint>

// The sound of the current frame: the record that a machine fills and its samples, at the program's
// rate when it was constructed.
struct SOUND_FRAME {
    SOUND_FRAME();
    AlignedBlock<int16_t> samples;
    EMU_AUDIO_FRAME frame{};
};

using SoundPair = std::array<int16_t, 2>;

// The last pair of the frame; `before` if it has none.
[[nodiscard]] SoundPair EmuLastPair(const EMU_AUDIO_FRAME& audio, SoundPair before);

// Reverses the sound of n pairs: pair i gets, in both channels, the left sample of pair n - 1 - i.
void EmuReverseSound(EMU_AUDIO_FRAME& audio);

// Fills `out` with the piece `part` of a frame that lasts `parts` times as long, as a tape that runs slower. Each
// piece is as long as the frame, so slow motion is paced as ever. `before` is the pair before the frame, from which
// the line to its first pair begins.
void EmuStretchSound(const EMU_AUDIO_FRAME& audio, uint32_t part, uint32_t parts, SoundPair before,
                     EMU_AUDIO_FRAME& out);

// A short end of the sound after the pair `last`, and a beginning from silence: a jump would be heard as a click.
void EmuFadeOut(SoundPair last, EMU_AUDIO_FRAME& out);
void EmuFadeIn(EMU_AUDIO_FRAME& audio);
