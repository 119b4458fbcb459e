// Short names of the processor's own sizes.
#pragma once

typedef unsigned char u8;
typedef signed char s8;
typedef unsigned int u16;
typedef int s16;
