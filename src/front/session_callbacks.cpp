#include "front/session_callbacks.h"

#include "audio/sound.h"
#include "base/bytes.h"
#include "front/light_gun.h"
#include "front/processor_binder.h"
#include "front/window_video.h"
#include "host/host_data.h"
#include "host/session.h"
#include "settings/bindings.h"

#include <SDL.h>

#include <atomic>

namespace {

std::atomic<uint32_t> gFramesPresented{0};
thread_local bool gFrameIsMachines = false; // of the session thread: not television static

void OpenSession(EMU_THREAD* session) {
    HostOpen(session);
    CreateSoundChannel(*session);
}

void CloseSession(EMU_THREAD* session) {
    WindowVideoSessionEnds(*session);
    DestroySoundChannel(*session);
    HostClose(session);
}

EMU_INPUT_STATE* SessionInput(EMU_THREAD* session) {
    EMU_INPUT_STATE* const input = HostGetInput(session);
    if (input != nullptr && session->key == InputActiveKey()) {
        LightGun::HandPointers(*input);
    }
    return input;
}

void SubmitSound(EMU_THREAD* session, EMU_AUDIO_FRAME* audio) {
    WindowVideoSound(*audio);
    HostSubmitAudio(session, audio);
}

EMU_VIDEO_FRAME* SessionPicture(EMU_THREAD* session) {
    gFrameIsMachines = session->showStatic == 0;
    return HostGetVideoFrame(session);
}

// The picture carries its frame number, so that the display side knows which one it shows.
void PresentFrame(EMU_THREAD* session, uint32_t microseconds) {
    EMU_HOST_DATA* const data = session->hostData;
    if (gFrameIsMachines && data != nullptr) {
        WindowVideoFrame(*session, data->frames[data->writeIndex]);
    }
    if (gFrameIsMachines) {
        const uint32_t number = ++gFramesPresented;
        if (data != nullptr) {
            StoreLittleEndian(data->frames[data->writeIndex].reserved, number);
        }
    }
    HostPresent(session, microseconds);
}

// A machine has priority over the main thread, which only draws it: a late frame is late sound. The
// system may refuse.
int StartSessionThread(int argument) {
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_HIGH);
    return BindProcessor(argument);
}

const EMU_HOST_CALLBACKS kCallbacks = {OpenSession,        CloseSession,    SessionPicture,
                                       PresentFrame,       SubmitSound,     SessionInput,
                                       StartSessionThread, ReleaseProcessor};

} // namespace

void InstallSessionCallbacks() {
    EmuSetHost(kCallbacks);
}

uint32_t FramesPresented() {
    return gFramesPresented;
}
