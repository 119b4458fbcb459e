// Televisions: the newest picture of every session, as a texture, by session key.
//
// Sessions and the sound pump wait only while a picture is copied, not while it is scaled and uploaded.
//
// Thread: main, with the OpenGL context current.
// Order: Upload once a round; End before the context goes.
#pragma once

#include "display/picture_painter.h"
#include "display/picture_scaler.h"
#include "display/session_picture.h"

#include <cstdint>
#include <map>
#include <vector>

class Televisions {
public:
    struct TELEVISION {
        SESSION_PICTURE picture; // without a texture before the first one
        uint32_t serial = 0;     // of the session that it shows

        // The newest picture as the machine has made it.
        EMU_VIDEO_FRAME taken{};                     // its pixels are those below
        std::vector<uint32_t> pixels;                // packed rows
        size_t largestPixels = 0;                    // of a picture of that session
        uint32_t takenSerial = 0;                    // of the session that made it
        uint32_t system = 0;                         // its machine's number
        bool isNew = false;                          // not uploaded yet
        PictureScaler scaler = PictureScaler::kNone; // of the upload
    };

    // Compiles what draws a picture alone. With each context, before it is drawn.
    void StartGraphics(const GL_FUNCTIONS& gl);

    // Uploads the pictures that sessions have published since the last call, and those that need another scaler or
    // their glow; drops those of ended sessions. True if the active session's picture is new or a television went dark.
    [[nodiscard]] bool Upload(uint32_t activeKey, PictureScaler scaler, bool glows = false) {
        TakePictures();
        return UploadTaken(activeKey, scaler, glows);
    }
    // Its two halves: copies under the list lock and the frame mutex, and all else under no lock.
    void TakePictures();
    [[nodiscard]] bool UploadTaken(uint32_t activeKey, PictureScaler scaler, bool glows = false);
    void End();
    // The context goes, with every texture; the next Upload makes them again from the pictures taken last.
    void LoseGraphics();

    // Whether the pictures are seen on television sets, all at once and from a distance. Upload then tells of a
    // new picture of any session.
    void ShowInRoom(bool show) { inRoom = show; }

    // The picture of a session; without a texture before the first one.
    [[nodiscard]] const SESSION_PICTURE& Picture(uint32_t key) const;

    // Its machine's number; 0 before the first picture.
    [[nodiscard]] uint32_t SystemOf(uint32_t key) const;
    // How fast its session runs: times the ordinary speed; -1 backwards; 1 without a session.
    [[nodiscard]] int32_t SpeedOf(uint32_t key) const;
    [[nodiscard]] const PicturePainter& Painter() const { return painter; }

    // By session key. Those of ended sessions are gone after the next Upload.
    [[nodiscard]] const std::map<uint32_t, TELEVISION>& All() const { return sets; }

    // Number of uploads of the active session's picture; 0 before the first.
    [[nodiscard]] uint64_t PicturesShown() const { return picturesShown; }
    // The machine's frame number of the newest of them; 0 for television static.
    [[nodiscard]] uint32_t FrameShown() const { return frameShown; }

    // A copy of the active session's picture before scaling, for tests and measurements. Empty unless
    // kept.
    struct KEPT_PICTURE {
        EMU_VIDEO_FRAME frame{};
        std::vector<uint32_t> pixels;
    };
    void KeepPicture(bool keep) { keepPicture = keep; }
    [[nodiscard]] const KEPT_PICTURE& Kept() const { return kept; }

private:
    [[nodiscard]] static bool NeedsUpload(const TELEVISION& set, PictureScaler scaler, bool glows);
    [[nodiscard]] bool GiveUpAllBut(const std::vector<uint32_t>& keys);
    void NoteActivePicture(const EMU_VIDEO_FRAME& frame);

    std::map<uint32_t, TELEVISION> sets; // by session key
    std::map<uint32_t, int32_t> speeds;  // by session key, at the last TakePictures
    std::vector<uint32_t> running;       // keys of the sessions at the last TakePictures
    PicturePainter painter;
    KEPT_PICTURE kept;
    uint64_t picturesShown = 0;
    uint32_t frameShown = 0;
    bool keepPicture = false;
    bool inRoom = false;
};
