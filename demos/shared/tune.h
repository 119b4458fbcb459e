// Music for one SN76489 at port 0x7F, from strings.
//
// A melodic voice is two characters a step: the letter of the note (a small letter is the sharp: 'c' is
// C sharp, 'a' is A sharp) and its octave from 2 (from A2 on) to 6; ".." is silence and "--" lets the
// note ring on. Drums are one character a step: 'k' low, 's' snare, 'h' hat, '.' nothing. Each voice
// begins again at its own end.
#pragma once

#include "types.h"

typedef struct {
    const char* voices[3]; // lead, bass, third; null leaves the channel to others
    const char* drums;     // null leaves the noise channel to others
    u8 attenuation[3];     // of a note as it begins, 0 loudest
    u8 decay[3];           // frames for one step of attenuation more
    u8 stepFrames;         // frames a step lasts
} TUNE;

// Null falls silent.
void TuneStart(const TUNE* tune);
// Once a frame.
void TuneStep(void);
