// ClockedOutput: an output that nobody hears, which takes sound at the rate of the system's steady
// clock. It stands in where the system has no loudspeaker, so that machines keep their pace there: a
// driver that only sleeps a whole number of milliseconds between two pulls runs percents away from it.
//
// Units: frames are stereo pairs. A pull is due when as many seconds have gone as the frames pulled before
// it last. Behind one that came late the next one waits for half a pull's time at least, so that who fills
// in between finds time for it. Late by more than a pull the whole computer has stood still, the machines
// too, and what was missed is skipped.
// Threads: the owner calls Start and Stop; pulls come on a thread of the output's own, which has ended
// when Stop returns.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

class ClockedOutput {
public:
    using Pull = std::function<void(int16_t* out, uint32_t frames)>;

    ClockedOutput();
    ~ClockedOutput();
    ClockedOutput(const ClockedOutput&) = delete;
    ClockedOutput& operator=(const ClockedOutput&) = delete;

    // Neither number is 0. One that runs is stopped first.
    void Start(uint32_t rate, uint32_t framesPerPull, Pull pull);
    void Stop();

private:
    struct Private;
    std::unique_ptr<Private> p;
};

// The place of a pull that comes `now` nanoseconds after the start, with `pulled` frames done: that number, or
// a later one when the pull is late by more than `longest` frames. For the thread above, and for its test.
[[nodiscard]] uint64_t FramesAfterStandstill(uint64_t pulled, int64_t now, uint32_t rate,
                                             uint32_t longest);
