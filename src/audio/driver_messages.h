// The sound drivers' own messages.
//
// ALSA's library writes some eight lines to standard error whenever a device cannot be opened, and the
// program tries again every two seconds. The reason is said once, by whoever opens the device.
#pragma once

// Between the start of SDL's audio and the opening of a device. Any thread.
void SilenceDriverMessages();
