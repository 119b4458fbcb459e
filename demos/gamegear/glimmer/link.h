// Two consoles on the link cable, each sending its pad once a frame over the serial line. Both run the
// same game from the same beginning, so the pads are all they need to know of each other.
#pragma once

#include "types.h"

// What LinkMeet answers.
#define LINK_WAITING 0
#define LINK_HOST    1 // this console has the left keeper
#define LINK_GUEST   2

void LinkOpen(void);
void LinkClose(void);
// Once a frame until it returns something else than LINK_WAITING: looks for the other console. The one
// that asks first is the host.
u8 LinkMeet(void);
// Sends this console's pad for a frame and waits for the other's. Returns 0 when the line is lost.
u8 LinkExchange(u8 pad, u8* other);
