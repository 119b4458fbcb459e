// The sound library is not built with the thread sanitizer, which therefore does not see how the
// library's event thread is synchronised with the calls that feed it. Races with both ends in our code
// are still reported.

#ifdef __SANITIZE_THREAD__
extern "C" const char* __tsan_default_suppressions();  // NOLINT: the sanitizer's name
extern "C" const char* __tsan_default_suppressions() { // NOLINT: the sanitizer's name
    return "race:libopenal.so\n";
}
#endif
