// The letters, eight to a band, '#' is ink. Each cell is eight by eight dots.
#include "font_text.h"

#include "letters.inc"
