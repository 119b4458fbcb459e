// ClockedOutput: a silent output, which takes sound at the rate of the system's steady clock. It is
// used on a system without an output device, so that machines keep their speed there: a driver that
// sleeps whole milliseconds between two pulls is off by percents.
//
// Units: frames are stereo pairs. A pull is due when the frames pulled before it have been played.
// After a late pull the next one waits at least half a pull's time, so that the pump can run in
// between. If a pull is late by more than its own length, the whole computer was suspended, machines
// included, and the missed time is skipped.
// Threads: the owner calls Start and Stop; pulls come on the output's own thread, which has ended when
// Stop returns.
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

    // Neither number is 0. Stops a running output first.
    void Start(uint32_t rate, uint32_t framesPerPull, Pull pull);
    void Stop();

private:
    struct Private;
    std::unique_ptr<Private> p;
};

// The frame position of a pull that comes `now` nanoseconds after the start, with `pulled` frames done:
// `pulled`, or more if the pull is late by over `longest` frames. Used by the thread and its test.
[[nodiscard]] uint64_t FramesAfterStandstill(uint64_t pulled, int64_t now, uint32_t rate,
                                             uint32_t longest);
