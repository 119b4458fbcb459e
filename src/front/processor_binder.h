// Binds session threads to processors of their own, if the user wants it.
//
// A binding is a token: the processor's number, or -1 for a thread that was left alone.
// Threads: any. Order: ProcessorBinderStart once before the rest.
#pragma once

#include <cstdint>

// Counts the processors that this process may use, at most 32.
void ProcessorBinderStart();
[[nodiscard]] uint32_t ProcessorCount();

// Binds the calling thread to the processor with the fewest bound threads. Does nothing and returns -1
// unless `app_managecpucores` is set or `always` is not 0, with fewer than two processors, or if the
// system refuses.
[[nodiscard]] int BindProcessor(int always);

// Releases the processor of the token.
void ReleaseProcessor(int token);

// The same for the calling thread, which may then run on every processor again.
void ReleaseThisThread(int token);

// For a thread that the main one has started: it inherits that one's processor and priority, and lets go of both.
void BecomeHelper();

// Threads bound to each processor so far; for tests.
[[nodiscard]] uint32_t BoundThreads(uint32_t processor);
