#include "front/window_video.h"

#include "base/ranked_mutex.h"
#include "front/notices.h"
#include "front/video_capture.h"
#include "host/dated_file.h"
#include "host/session.h"
#include "settings/bindings.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace {

struct WINDOW_VIDEO {
    std::unique_ptr<VideoCapture> capture; // null: none is made
    uint32_t key = 0;                      // of its session
    std::vector<std::unique_ptr<VideoCapture>> ending;
    std::string wanted; // a file that the next frame begins
    bool wantedLossless = false;
    bool keyWasDown = false;
    bool failed = false; // a video could not be written
};

RankedMutex<LockRank::kLeaf>& Lock() {
    static auto* lock = new RankedMutex<LockRank::kLeaf>;
    return *lock;
}

// Under Lock.
WINDOW_VIDEO& State() {
    static auto* state = new WINDOW_VIDEO;
    return *state;
}

thread_local EMU_AUDIO_FRAME tSound{}; // of the frame that is presented next

void Tell(const CAPTURE_RESULT& result) {
    if (result.whole) {
        PostNotice(result.line);
    } else {
        PostReport(result.line);
    }
}

// Under Lock, as the next.
void Begin(WINDOW_VIDEO& state, uint32_t key, CAPTURE_SETTINGS settings) {
    settings.wait = CaptureWait::kMoment;
    settings.dotPixels = 2; // a quarter of the encoder's work
    state.capture = std::make_unique<VideoCapture>(std::move(settings), Tell);
    state.key = key;
}

void End(WINDOW_VIDEO& state) {
    state.capture->End();
    state.ending.push_back(std::move(state.capture));
}

// True if something began or ended, of which `line` tells.
bool FollowKey(WINDOW_VIDEO& state, const EMU_THREAD& session, std::string& line) {
    const bool down = InputIsDown(session.key, L"Record Video");
    const bool pressed = down && !state.keyWasDown;
    state.keyWasDown = down;
    if (!pressed) {
        return false;
    }
    if (state.capture != nullptr) {
        End(state);
        line = "The video is being finished";
        return true;
    }
    const std::filesystem::path path = DatedFile(".\\videos\\", session.gameName, ".mkv");
    std::error_code ignored; // the file tells
    std::filesystem::create_directories(path.parent_path(), ignored);
    Begin(state, session.key, {path.string(), false, session.system});
    line = "A video is recorded; the same key ends it";
    return true;
}

} // namespace

void WindowVideoWanted(const std::string& path, bool lossless) {
    const std::scoped_lock hold(Lock());
    State().wanted = path;
    State().wantedLossless = lossless;
}

void WindowVideoSound(const EMU_AUDIO_FRAME& audio) {
    tSound = audio;
}

void WindowVideoFrame(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video) {
    const EMU_AUDIO_FRAME sound = std::exchange(tSound, {});
    VideoCapture* capture = nullptr;
    std::string line;
    bool told = false;
    {
        const std::scoped_lock hold(Lock());
        WINDOW_VIDEO& state = State();
        if (session.key == InputActiveKey()) {
            if (!state.wanted.empty() && state.capture == nullptr) {
                Begin(state, session.key,
                      {std::exchange(state.wanted, {}), state.wantedLossless, session.system});
            }
            told = FollowKey(state, session, line);
        }
        if (state.capture != nullptr && state.key == session.key) {
            capture = state.capture.get();
        }
    }
    if (told) {
        PostNotice(line);
    }
    // Only this session's thread, or the one that ends the session after it, ends its video.
    if (capture != nullptr) {
        capture->Add(video, sound);
    }
}

void WindowVideoSessionEnds(const EMU_THREAD& session) {
    const std::scoped_lock hold(Lock());
    if (State().capture != nullptr && State().key == session.key) {
        End(State());
    }
}

bool WindowVideoFinish() {
    std::vector<std::unique_ptr<VideoCapture>> ending;
    {
        const std::scoped_lock hold(Lock());
        if (State().capture != nullptr) {
            End(State());
        }
        ending = std::exchange(State().ending, {});
    }
    bool failed = false;
    for (const auto& capture : ending) {
        failed = !capture->Finish().whole || failed;
    }
    const std::scoped_lock hold(Lock());
    State().failed = State().failed || failed;
    return !State().failed;
}
