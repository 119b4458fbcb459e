#include "front/video_capture.h"

#include "base/helper_thread.h"

#include "video/video_rate.h"
#include <SDL.h>

#include <chrono>
#include <filesystem>
#include <utility>

namespace {

constexpr size_t kMostWaiting = 60; // about a second, 17 MB of a Mega Drive's pictures
constexpr std::chrono::milliseconds kMoment{10};

} // namespace

VideoCapture::VideoCapture(CAPTURE_SETTINGS what, std::function<void(const CAPTURE_RESULT&)> told,
                           FileMaker makeFile)
    : settings(std::move(what))
    , ended(std::move(told))
    , maker(makeFile)
    , thread([this] { Run(); }) {}

VideoCapture::~VideoCapture() {
    Finish();
}

bool VideoCapture::WaitForRoom(std::unique_lock<std::mutex>& hold) {
    const auto room = [this] { return waiting.size() < kMostWaiting || failed; };
    if (settings.wait == CaptureWait::kAlways) {
        changed.wait(hold, room);
        return true;
    }
    return changed.wait_for(hold, kMoment, room);
}

void VideoCapture::Add(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio) {
    std::unique_lock hold(lock);
    if (over || failed) {
        return;
    }
    const bool shown = video.hold == 0 && video.visibleWidth != 0 && video.visibleHeight != 0;
    if (!shown && frames == 0) {
        return; // a video begins with a picture
    }
    ++frames;
    const bool room = !shown || WaitForRoom(hold);
    if (!shown || !room) {
        // The piece before may have been written already.
        if (waiting.empty()) {
            waiting.emplace_back();
        } else {
            ++waiting.back().repeats;
        }
        missing += room ? 0 : 1;
    } else {
        PIECE& piece = waiting.emplace_back();
        if (!spare.empty()) {
            piece.pixels = std::move(spare.back());
            spare.pop_back();
        }
        piece.pixels.clear();
        piece.width = video.visibleWidth;
        piece.height = video.visibleHeight;
        piece.aspect = video.visibleAspect;
        for (uint32_t y = 0; y < piece.height; ++y) {
            const uint32_t* const row =
                video.pixels + size_t{video.visibleY + y} * video.width + video.visibleX;
            piece.pixels.insert(piece.pixels.end(), row, row + piece.width);
        }
    }
    framePairs = frames <= 2 ? audio.sampleCount : framePairs;
    PIECE& last = waiting.back();
    last.sampleRate = audio.sampleRate;
    last.samples.insert(last.samples.end(), audio.samples,
                        audio.samples + size_t{audio.sampleCount} * 2);
    changed.notify_all();
}

void VideoCapture::End() {
    const std::scoped_lock hold(lock);
    over = true;
    changed.notify_all();
}

const CAPTURE_RESULT& VideoCapture::Finish() {
    End();
    if (thread.joinable()) {
        thread.join();
    }
    return result;
}

bool VideoCapture::TakePiece(PIECE& piece) {
    std::unique_lock hold(lock);
    if (!piece.pixels.empty()) {
        spare.push_back(std::move(piece.pixels));
    }
    // The second frame tells how long one is.
    changed.wait(hold, [this] { return (frames >= 2 && !waiting.empty()) || over; });
    if (waiting.empty()) {
        return false;
    }
    piece = std::move(waiting.front());
    waiting.pop_front();
    changed.notify_all();
    return true;
}

// A console that is switched on in the midst of a picture has less sound in its first frame; silence makes it whole.
bool VideoCapture::Begin(CVideoFile& file, PIECE& first, std::string& error) {
    uint32_t pairs = 0;
    {
        const std::scoped_lock hold(lock);
        pairs = framePairs;
    }
    const VIDEO_RATE rate = VideoRate(settings.system, pairs, first.sampleRate);
    VIDEO_FORMAT format;
    format.form = settings.lossless ? VideoForm::kLossless : VideoForm::kEverywhere;
    format.width = first.width;
    format.height = first.height;
    format.dotPixels = settings.dotPixels;
    format.aspect = first.aspect;
    format.rateNumber = rate.number;
    format.rateDivisor = rate.divisor;
    format.sampleRate = first.sampleRate;
    const size_t whole = size_t{pairs} * 2 * (first.repeats + 1);
    if (first.samples.size() + pairs < whole) {
        first.samples.insert(first.samples.begin(), whole - first.samples.size(), 0);
    }
    return file.Open(settings.path, format, error);
}

bool VideoCapture::Write(std::string& error) {
    const std::unique_ptr<CVideoFile> file = maker(error);
    PIECE piece;
    bool good = file != nullptr;
    bool begun = false;
    while (good && TakePiece(piece)) {
        if (!begun) {
            good = Begin(*file, piece, error);
            begun = true;
        }
        good = good && (piece.pixels.empty() ? file->RepeatPicture(error)
                                             : file->AddPicture(piece.pixels.data(), piece.width,
                                                                piece.height, error));
        for (; good && piece.repeats > 0; --piece.repeats) {
            good = file->RepeatPicture(error);
        }
        good = good && file->AddSound(piece.samples.data(),
                                      static_cast<uint32_t>(piece.samples.size() / 2), error);
    }
    return good && file->Close(error);
}

void VideoCapture::Run() {
    HelperBegins();
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_LOW); // the game comes first
    std::string error;
    const bool written = Write(error);
    {
        const std::scoped_lock hold(lock);
        failed = !written;
        changed.notify_all();
    }
    result = Result(written, error);
    if (ended) {
        ended(result);
    }
}

CAPTURE_RESULT VideoCapture::Result(bool written, const std::string& error) {
    const std::scoped_lock hold(lock);
    const std::string name = std::filesystem::path(settings.path).filename().string();
    if (!written) {
        return {false, error};
    }
    if (missing != 0) {
        return {true, "Video: " + name + "; " + std::to_string(missing) + " of " +
                          std::to_string(frames) +
                          " pictures are missing, as the computer was too slow"};
    }
    return {true, "Video: " + name};
}
