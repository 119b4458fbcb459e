// SoundOutput: opens the program's sound device and its pump, and tries again every two seconds while
// there is none.
//
// A driver may be missing at the start, a device busy for a moment, and one that is open may go. Each
// attempt looks for the driver anew. The player reads one line when sound goes and one when it is back.
//
// Threads: the main thread calls. All opening and closing is done by one thread of the output's own, since
// a sound server may let a client wait for seconds; the device's and the pump's threads come from it, so
// they inherit nothing of what the main thread's binding becomes later.
// Order: Start, Watch once a round, Stop.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

struct PUMP_EVENTS;

// What is opened; tests bring their own.
struct SOUND_OUTPUT_CALLS {
    std::function<bool(std::string& error)> open; // device and pump
    std::function<void()> close;                  // both, also when nothing is open
    std::function<uint32_t()> number;             // of the open device, as events name it
    uint32_t startPatience = 3000;                // milliseconds that Start waits at most
};

class SoundOutput {
public:
    SoundOutput(); // the program's device
    explicit SoundOutput(SOUND_OUTPUT_CALLS wanted);
    ~SoundOutput();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    // Opens the device. One that does not answer in time is left to Watch. `now` in microseconds.
    void Start(int64_t now);

    // Learns what became of an attempt, whether the device has gone, and orders the next attempt when it
    // is due. Never waits.
    void Watch(const PUMP_EVENTS& events, int64_t now);

    // Closes the device. Waits for an attempt that is under way.
    void Stop();

    // Whether an attempt is under way; once it is over, the next Watch learns its result.
    [[nodiscard]] bool Trying();

private:
    enum class State { kStopped, kTrying, kOpen, kSilent };
    enum class Task { kNone, kOpen, kReopen, kEnd };

    void Order(Task wanted);
    void Learn(int64_t now);
    void Lose();
    void Work();

    SOUND_OUTPUT_CALLS calls;

    // The main thread's.
    State state = State::kStopped;
    int64_t lastTry = 0;      // microseconds, when the end of the last attempt was learned
    bool silenceSaid = false; // the player has read that there is no sound
    uint32_t gone = 0;        // number of a device that went during the attempt

    std::thread worker;
    std::mutex lock; // of what follows; nothing else is taken under it
    std::condition_variable changed;
    Task task = Task::kNone; // kNone: done
    bool opened = false;     // by the last attempt
    std::string reason;      // why not
};
