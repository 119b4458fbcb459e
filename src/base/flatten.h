// OMBRELUNE_FLATTEN: everything that a function calls is inlined into it, for the loops that the speed of
// a machine hangs on. Not in sanitizer builds: instrumented, such a function takes minutes to compile.
#pragma once

#ifdef OMBRELUNE_SANITIZED
#define OMBRELUNE_FLATTEN
#else
#define OMBRELUNE_FLATTEN [[gnu::flatten]]
#endif
