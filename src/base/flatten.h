// OMBRELUNE_FLATTEN: inlines everything that a function calls into it. For a machine's hot loops. Off
// in sanitizer builds, where such a function takes minutes to compile.
#pragma once

#ifdef OMBRELUNE_SANITIZED
#define OMBRELUNE_FLATTEN
#else
#define OMBRELUNE_FLATTEN [[gnu::flatten]]
#endif
