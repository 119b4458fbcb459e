// Mutexes with a rank, which fixes the order in which locks nest.
//
// A thread may take a mutex only if its rank is above that of every one it holds; a recursive mutex
// may be taken again by its owner. Builds with OMBRELUNE_CHECK_LOCK_RANKS (all presets but release)
// end the program with a message when the order is broken; other builds compile to the bare mutex.
#pragma once

#include <mutex>

// The order in which locks nest, outermost first.
enum class LockRank : int {
    kGuiApi = 1,       // the toolkit's round; recursive
    kGuiTree = 2,      // the tree of windows; recursive
    kGuiQueue = 3,     // calls that wait for the toolkit's tick; recursive
    kSessionKey = 5,   // starting and stopping sessions on one key
    kSessionList = 10, // the list of sessions; recursive
    kSession = 20,     // one session's machine
    kFrame = 30,       // picture exchange between sessions and display
    kSound = 40,       // sound exchange between sessions and pump
    kDevice = 50,      // the sound device's list of playing rings
    kRing = 60,        // one ring of the sound device
    kArchive = 70,     // reading and replacing one archive of saved states
    kDatabase = 80,    // one database of the library
    kLeaf = 90,        // small values; no lock is taken under these
};

// Called by RankedMutex in checking builds only.
void LockRankPush(LockRank rank, const void* mutex, bool recursive);
void LockRankPop(const void* mutex);

template <typename Mutex, LockRank Rank, bool Recursive>
class RankedMutexOf {
public:
    void lock() { // NOLINT(readability-identifier-naming): the standard's name for lockable types
#ifdef OMBRELUNE_CHECK_LOCK_RANKS
        LockRankPush(Rank, this, Recursive);
#endif
        mutex.lock();
    }

    void unlock() { // NOLINT(readability-identifier-naming)
        mutex.unlock();
#ifdef OMBRELUNE_CHECK_LOCK_RANKS
        LockRankPop(this);
#endif
    }

private:
    Mutex mutex;
};

template <LockRank Rank>
using RankedMutex = RankedMutexOf<std::mutex, Rank, false>;

template <LockRank Rank>
using RankedRecursiveMutex = RankedMutexOf<std::recursive_mutex, Rank, true>;
