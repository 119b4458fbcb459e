// What the thread sanitizer does not see: the zip library asks for the local time, whose zone the C library guards
// with a lock of its own, and the sound library, which is not built with the sanitizer, synchronises its threads
// itself. Races with both ends in our code are still reported.

#ifdef __SANITIZE_THREAD__
extern "C" const char* __tsan_default_suppressions();  // NOLINT: the sanitizer's name
extern "C" const char* __tsan_default_suppressions() { // NOLINT: the sanitizer's name
    return "race:tzset_internal\nrace:libopenal.so\n";
}
#endif
