// A video in the making: takes a machine's pictures and sound, and writes them on a thread of its own.
//
// What waits to be written is bounded. A full queue makes a run without a window wait; a game does so for a moment only,
// and then the picture is left out: the one before stays on the screen for its time, sound goes on, and the number of
// pictures left out is told at the end.
//
// Threads: Add on one thread at a time; the others any. Failure: told at the end.
#pragma once

#include "front/video_module.h"
#include "machine/emu_system.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

enum class CaptureWait : uint8_t { kMoment, kAlways };

struct CAPTURE_SETTINGS {
    std::string path; // .mkv or .mp4
    bool lossless = false;
    uint32_t system = 0;
    CaptureWait wait = CaptureWait::kAlways;
    uint32_t dotPixels = 4; // as VIDEO_FORMAT has it
};

// How it ended: a line for the player.
struct CAPTURE_RESULT {
    bool whole = false; // no failure, though pictures may be missing
    std::string line;
};

class VideoCapture {
public:
    using FileMaker = std::unique_ptr<CVideoFile> (*)(std::string& error);

    // `ended` is called once, on the capture's own thread; null: nobody wants to know.
    explicit VideoCapture(CAPTURE_SETTINGS settings,
                          std::function<void(const CAPTURE_RESULT&)> ended = {},
                          FileMaker makeFile = NewVideoFile);
    ~VideoCapture(); // ends it, and waits

    // A frame of the machine: the visible window of its picture, unless it is held, and its sound.
    void Add(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio);

    // No frame comes after this. Returns at once.
    void End();
    // Ends it, waits until the file is whole, and says how it ended.
    const CAPTURE_RESULT& Finish();

private:
    // A picture with the sound of its frame and of those that follow without one of their own.
    struct PIECE {
        std::vector<uint32_t> pixels; // empty: that of the piece before
        uint32_t width = 0;
        uint32_t height = 0;
        float aspect = 0.0f;
        uint32_t repeats = 0; // frames that show it once more
        std::vector<int16_t> samples;
        uint32_t sampleRate = 0;
    };

    [[nodiscard]] bool WaitForRoom(std::unique_lock<std::mutex>& hold);
    void Run();
    [[nodiscard]] bool TakePiece(PIECE& piece);
    [[nodiscard]] bool Begin(CVideoFile& file, PIECE& first, std::string& error);
    [[nodiscard]] bool Write(std::string& error);
    [[nodiscard]] CAPTURE_RESULT Result(bool written, const std::string& error);

    const CAPTURE_SETTINGS settings;
    const std::function<void(const CAPTURE_RESULT&)> ended;
    const FileMaker maker;
    CAPTURE_RESULT result; // after the thread has ended
    std::mutex lock;
    std::condition_variable changed;
    std::deque<PIECE> waiting;                // under `lock`, as is all up to `missing`
    std::vector<std::vector<uint32_t>> spare; // pixels to be used again
    bool over = false;                        // no more comes
    bool failed = false;                      // nothing more is taken
    uint64_t frames = 0;
    uint32_t framePairs = 0; // of sound of the second frame, or of a first one alone
    uint64_t missing = 0;
    std::thread thread; // last, as it uses the others
};
