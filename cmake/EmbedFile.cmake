# Writes the file IMAGE as a C++ array named SYMBOL to SOURCE, and its length as SYMBOL_size.
file(READ ${IMAGE} bytes HEX)
string(LENGTH "${bytes}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE ${SOURCE} "extern const unsigned char ${SYMBOL}[];
extern const unsigned long ${SYMBOL}_size;
const unsigned char ${SYMBOL}[] = {${bytes}};
const unsigned long ${SYMBOL}_size = ${size};
")
