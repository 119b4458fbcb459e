// Several threads read zips at once, and the zip library asks for the local time. The C library guards its
// time zone with a lock that the thread sanitizer does not see.

#ifdef __SANITIZE_THREAD__
extern "C" const char* __tsan_default_suppressions();  // NOLINT: the sanitizer's name
extern "C" const char* __tsan_default_suppressions() { // NOLINT: the sanitizer's name
    return "race:tzset_internal\n";
}
#endif
