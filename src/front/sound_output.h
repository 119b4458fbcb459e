// SoundOutput: opens the program's sound device and its pump, and tries again every two seconds while
// there is none.
//
// A driver may be missing at the start, a device may be busy for a moment, and an open one may vanish.
// Each attempt looks for the driver again. The player reads one line when sound is lost and one when it
// is back.
//
// Threads: the main thread calls. One thread of the output's own does all opening and closing, since a
// sound server may block a client for seconds. The device's and the pump's threads start from it, so
// they do not inherit the main thread's later processor binding.
// Order: Start, Watch once a round, Stop.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

struct PUMP_EVENTS;

// What is opened; tests pass their own.
struct SOUND_OUTPUT_CALLS {
    std::function<bool(std::string& error)> open; // device and pump
    std::function<void()> close;                  // both; also called when nothing is open
    std::function<uint32_t()> number;             // of the open device, as in SDL's events
};

class SoundOutput {
public:
    SoundOutput(); // the program's device
    explicit SoundOutput(SOUND_OUTPUT_CALLS wanted);
    ~SoundOutput();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    // Begins to open the device; Watch gets the result. The first picture does not wait for a sound server, and games
    // that run by then are heard from there on. `now` in microseconds.
    void Start(int64_t now);

    // Gets the result of an attempt, notices a lost device, and starts the next attempt when it is due.
    // Never waits.
    void Watch(const PUMP_EVENTS& events, int64_t now);

    // Closes the device. Waits for a running attempt.
    void Stop();

    // Whether an attempt is running; after it ends, the next Watch gets its result.
    [[nodiscard]] bool Trying();

private:
    enum class State { kStopped, kTrying, kOpen, kSilent };
    enum class Task { kNone, kOpen, kReopen, kEnd };

    void Order(Task wanted);
    void SayThatItDoesNotAnswer(int64_t now);
    void Learn(int64_t now);
    void Lose();
    void Work();

    SOUND_OUTPUT_CALLS calls;

    // Used by the main thread only.
    State state = State::kStopped;
    int64_t started = 0;      // microseconds
    int64_t lastTry = 0;      // microseconds, when the last attempt's end was noticed
    bool silenceSaid = false; // the player has been told that there is no sound
    uint32_t gone = 0;        // number of a device that was lost during the attempt

    std::thread worker;
    std::mutex lock; // guards what follows; no other lock is taken under it
    std::condition_variable changed;
    Task task = Task::kNone; // kNone: done
    bool opened = false;     // result of the last attempt
    std::string reason;      // why the last attempt failed
};
