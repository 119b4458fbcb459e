// ClockedOutput: an output that nobody hears, which takes sound at the rate of the system's steady
// clock. It stands in where the system has no loudspeaker, so that machines keep their pace there: a
// driver that only sleeps a whole number of milliseconds between two pulls runs percents away from it.
//
// Units: frames are stereo pairs. A pull is due when as many seconds have gone as the frames pulled
// before it last; one that comes late is followed by the others at once, but not by more than a tenth
// of a second of them: what is older is skipped.
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

// The frames of which the next pull is due `now` nanoseconds after the start, with `pulled` frames done:
// `pulled` itself, or a later number after a standstill. For the thread above, and for its test.
[[nodiscard]] uint64_t FramesAfterStandstill(uint64_t pulled, int64_t now, uint32_t rate);
