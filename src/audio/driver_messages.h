// The sound drivers' own messages.
//
// ALSA's library writes some lines to standard error when its configuration is damaged, which SDL finds at the start of
// its audio, and some eight whenever a device cannot be opened, which the program tries again every two seconds. The
// code that opens the device reports the reason once.
#pragma once

// Call before the start of SDL's audio. Any thread.
void SilenceDriverMessages();
