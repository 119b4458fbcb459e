// The sound drivers' own messages.
//
// ALSA's library writes some eight lines to standard error whenever a device cannot be opened, and the
// program tries again every two seconds. The code that opens the device reports the reason once.
#pragma once

// Call between the start of SDL's audio and the opening of a device. Any thread.
void SilenceDriverMessages();
