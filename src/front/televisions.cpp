#include "front/televisions.h"

#include "base/bytes.h"
#include "host/host_data.h"
#include "host/picture.h"
#include "host/session.h"

#include <algorithm>
#include <mutex>

// While the frame mutex is held the session leaves the picture alone.
bool Televisions::Upload(uint32_t activeKey, PictureScaler scaler) {
    bool news = false;
    std::vector<uint32_t> running;
    EmuForEachSession([&](EMU_THREAD& session) {
        running.push_back(session.key);
        const std::scoped_lock hold(EmuFrameMutex());
        const EMU_VIDEO_FRAME* const frame = HostTakeFrame(*session.hostData);
        if (frame == nullptr) {
            return;
        }
        TELEVISION& set = sets[session.key];
        if (set.serial != session.serial) {
            // Another game on the same television, perhaps of a machine with larger pictures.
            EndSessionPicture(set.picture);
            StartSessionPicture(set.picture, EmuPicturePixels(session));
            set.serial = session.serial;
        }
        set.picture.inRoom = inRoom;
        if (!UploadPicture(*frame, set.picture, scaler)) {
            return;
        }
        news = news || inRoom;
        if (session.key == activeKey) {
            NoteActivePicture(*frame);
            news = true;
        }
    });
    return GiveUpAllBut(running) || news;
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

bool Televisions::GiveUpAllBut(const std::vector<uint32_t>& running) {
    bool gone = false;
    for (auto set = sets.begin(); set != sets.end();) {
        if (std::find(running.begin(), running.end(), set->first) != running.end()) {
            ++set;
            continue;
        }
        EndSessionPicture(set->second.picture);
        set = sets.erase(set);
        gone = true;
    }
    return gone;
}

void Televisions::End() {
    static_cast<void>(GiveUpAllBut({}));
}

const SESSION_PICTURE& Televisions::Picture(uint32_t key) const {
    static const SESSION_PICTURE kNone{};
    const auto found = sets.find(key);
    return found != sets.end() ? found->second.picture : kNone;
}
