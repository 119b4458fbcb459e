#include "font_text.h"

u8 FontIndex(char character) {
    if (character >= '0' && character <= '9')
        return (u8)(character - '0');
    if (character >= 'A' && character <= 'Z')
        return (u8)(character - 'A' + 10);
    switch (character) {
    case '.': return 36;
    case '-': return 37;
    case '!': return 38;
    case ':': return 39;
    default: return FONT_GLYPHS;
    }
}
