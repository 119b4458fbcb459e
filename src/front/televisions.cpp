#include "front/televisions.h"

#include "base/bytes.h"
#include "front/notices.h"
#include "host/host_data.h"
#include "host/picture.h"
#include "host/session.h"

#include <algorithm>
#include <mutex>

// While the frame mutex is held the session leaves the picture alone.
void Televisions::TakePictures() {
    running.clear();
    speeds.clear();
    EmuForEachSession([&](EMU_THREAD& session) {
        running.push_back(session.key);
        speeds[session.key] = session.showStatic != 0 ? 1 : session.speed.load();
        const std::scoped_lock hold(EmuFrameMutex());
        const EMU_VIDEO_FRAME* const frame = HostTakeFrame(*session.hostData);
        if (frame == nullptr || frame->pixels == nullptr) {
            return;
        }
        TELEVISION& set = sets[session.key];
        set.largestPixels = EmuPicturePixels(session);
        const size_t pixels =
            std::min(size_t{frame->width} * frame->height, set.largestPixels); // never more
        set.taken = *frame;
        set.pixels.assign(frame->pixels, frame->pixels + pixels);
        set.taken.pixels = set.pixels.data();
        set.takenSerial = session.serial;
        set.system = session.system;
        set.isNew = true;
    });
}

// A picture that stands still gets what the player has just chosen as well.
bool Televisions::NeedsUpload(const TELEVISION& set, PictureScaler scaler, bool glows) {
    const bool stands = set.picture.texture.glTexture != 0 && set.serial == set.takenSerial;
    return set.isNew || (stands && (set.scaler != scaler || set.picture.glows != glows));
}

bool Televisions::UploadTaken(uint32_t activeKey, PictureScaler scaler, bool glows) {
    bool news = GiveUpAllBut(running);
    for (auto& [key, set] : sets) {
        if (!NeedsUpload(set, scaler, glows)) {
            continue;
        }
        const bool isNew = set.isNew;
        set.isNew = false;
        if (set.serial != set.takenSerial) {
            // Another game on the same television, perhaps of a machine with larger pictures.
            EndSessionPicture(set.picture);
            StartSessionPicture(set.picture, set.largestPixels);
            set.serial = set.takenSerial;
        }
        set.picture.inRoom = inRoom;
        set.picture.glows = glows;
        set.scaler = scaler;
        if (!UploadPicture(set.taken, set.picture, scaler)) {
            continue;
        }
        news = news || inRoom || key == activeKey;
        if (key == activeKey && isNew) {
            NoteActivePicture(set.taken);
        }
    }
    return news;
}

void Televisions::NoteActivePicture(const EMU_VIDEO_FRAME& frame) {
    ++picturesShown;
    frameShown = LoadLittleEndian<uint32_t>(frame.reserved);
    if (keepPicture) {
        kept.frame = frame;
        kept.pixels.assign(frame.pixels, frame.pixels + size_t{frame.width} * frame.height);
        kept.frame.pixels = kept.pixels.data();
    }
}

bool Televisions::GiveUpAllBut(const std::vector<uint32_t>& keys) {
    bool gone = false;
    for (auto set = sets.begin(); set != sets.end();) {
        if (std::find(keys.begin(), keys.end(), set->first) != keys.end()) {
            ++set;
            continue;
        }
        EndSessionPicture(set->second.picture);
        set = sets.erase(set);
        gone = true;
    }
    return gone;
}

void Televisions::StartGraphics(const GL_FUNCTIONS& gl) {
    std::string error;
    if (!painter.Start(gl, error) && !error.empty()) {
        PostReport(error);
    }
}

void Televisions::LoseGraphics() {
    painter.Release();
    for (auto& [key, set] : sets) {
        EndSessionPicture(set.picture); // its light shines on
        set.isNew = true;
    }
}

void Televisions::End() {
    static_cast<void>(GiveUpAllBut({}));
    painter.Release();
}

uint32_t Televisions::SystemOf(uint32_t key) const {
    const auto found = sets.find(key);
    return found != sets.end() ? found->second.system : 0;
}

int32_t Televisions::SpeedOf(uint32_t key) const {
    const auto found = speeds.find(key);
    return found != speeds.end() ? found->second : 1;
}

const SESSION_PICTURE& Televisions::Picture(uint32_t key) const {
    static const SESSION_PICTURE kNone{};
    const auto found = sets.find(key);
    return found != sets.end() ? found->second.picture : kNone;
}
