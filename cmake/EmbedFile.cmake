# Writes the file IMAGE as a C++ array named gDemo_IDENTIFIER to SOURCE.
file(READ ${IMAGE} bytes HEX)
string(LENGTH "${bytes}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE ${SOURCE} "extern const unsigned char gDemo_${IDENTIFIER}[];
extern const unsigned long gDemo_${IDENTIFIER}_size;
const unsigned char gDemo_${IDENTIFIER}[] = {${bytes}};
const unsigned long gDemo_${IDENTIFIER}_size = ${size};
")
