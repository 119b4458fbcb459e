#include "display/session_picture.h"

#include "display/gl.h"
#include "display/picture_glow.h"
#include "settings/settings.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <numeric>

namespace {

constexpr size_t kLargestEnlargement = 16; // four times in each direction
constexpr uint32_t kSampleStep = 4;        // pixels from one sample of the colour to the next
constexpr float kFaintLight = 0.05f;       // a black picture still lights the room a little
constexpr float kHistoryWeight = 0.2f;     // 1 / kColourHistory
constexpr GLint kAllLevels = 1000;

bool FitsTexture(const EMU_VIDEO_FRAME& picture, uint32_t factor) {
    const uint32_t largest = Gl().largestTexture / factor;
    return picture.width <= largest && picture.height <= largest;
}

// Smaller levels are used only if the picture is seen from a distance. Otherwise the texture is limited
// to one level, as it would be incomplete and show nothing.
void ChooseMipmaps(const SESSION_PICTURE& session) {
    const bool on = session.inRoom && session.texture.mipmapped != 0 &&
                    Settings().GetBool(L"emu_gameroomfilter");
    glBindTexture(GL_TEXTURE_2D, session.texture.glTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, on ? GL_TRUE : GL_FALSE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, on ? kAllLevels : 0);
}

// The pixels to upload: the picture's own, or the scratch buffer with the enlarged ones.
const uint32_t* Enlarge(const EMU_VIDEO_FRAME& picture, SESSION_PICTURE& session,
                        PictureScaler scaler) {
    if (ScalerFactor(scaler) == 1) {
        return picture.pixels;
    }
    if (session.scratch.empty()) {
        session.scratch.resize(session.largestPixels * kLargestEnlargement);
    }
    ScalePicture(scaler, picture.pixels, picture.width, picture.height, session.scratch.data());
    return session.scratch.data();
}

// Makes the texture for pictures of this size; one of another size is recreated.
bool MakeTexture(TEXTURE_RECORD& texture, uint32_t width, uint32_t height, bool mipmapped) {
    if (texture.width != width || texture.height != height || texture.glTexture == 0) {
        texture.width = width;
        texture.height = height;
        texture.needsRecreate = 1;
    }
    return texture.needsRecreate == 0 || CreateTexture(texture, mipmapped);
}

void UploadGlow(const EMU_VIDEO_FRAME& picture, SESSION_PICTURE& session) {
    if (!session.glows) {
        DestroyTexture(session.glow);
        return;
    }
    const PICTURE_GLOW glow = GlowOfPicture(picture.pixels, picture.width, picture.height);
    if (MakeTexture(session.glow, glow.width, glow.height, false)) {
        static_cast<void>(
            UploadTexture(session.glow, glow.cells.data(), glow.width, glow.height, glow.width));
    }
}

EMU_VIDEO_FRAME Enlarged(EMU_VIDEO_FRAME picture, uint32_t factor) {
    picture.pixels = nullptr; // the host's, which the session frees
    picture.width *= factor;
    picture.height *= factor;
    picture.visibleX *= factor;
    picture.visibleY *= factor;
    picture.visibleWidth *= factor;
    picture.visibleHeight *= factor;
    return picture;
}

} // namespace

void AddToColourHistory(COLOUR_HISTORY& history, const uint32_t* pixels, uint32_t width,
                        uint32_t height) {
    uint64_t sums[3]{};
    uint64_t count = 0;
    for (uint32_t y = 0; y < height; y += kSampleStep) {
        const uint32_t* row = pixels + size_t{y} * width;
        for (uint32_t x = 0; x < width; x += kSampleStep) {
            sums[0] += (row[x] >> 16) & 0xFF;
            sums[1] += (row[x] >> 8) & 0xFF;
            sums[2] += row[x] & 0xFF;
            ++count;
        }
    }
    if (count == 0) {
        return;
    }
    for (size_t channel = 0; channel < history.means.size(); ++channel) {
        auto& means = history.means[channel];
        const double mean = static_cast<double>(sums[channel]) / static_cast<double>(count);
        means[history.next] = static_cast<float>(mean / 255.0);
        const float sum = std::accumulate(means.begin(), means.end(), 0.0f);
        history.light[channel] = sum * kHistoryWeight + kFaintLight;
    }
    history.next = (history.next + 1) % kColourHistory;
}

void StartSessionPicture(SESSION_PICTURE& session, size_t largestPixels) {
    EndSessionPicture(session);
    session = {};
    session.largestPixels = largestPixels;
}

void EndSessionPicture(SESSION_PICTURE& session) {
    DestroyTexture(session.texture);
    DestroyTexture(session.glow);
    session.scratch = {};
    session.picture = {};
}

bool UploadPicture(const EMU_VIDEO_FRAME& picture, SESSION_PICTURE& session, PictureScaler scaler) {
    const uint64_t pixels = uint64_t{picture.width} * picture.height;
    if (picture.pixels == nullptr || pixels == 0 || pixels > session.largestPixels) {
        return false;
    }
    const bool fits = FitsTexture(picture, ScalerFactor(scaler));
    const PictureScaler used = fits ? scaler : PictureScaler::kNone;
    const uint32_t factor = ScalerFactor(used);
    const uint32_t width = picture.width * factor;
    const uint32_t height = picture.height * factor;
    if (!FitsTexture(picture, factor)) {
        return false;
    }
    const uint32_t* source = Enlarge(picture, session, used);
    if (!MakeTexture(session.texture, width, height, true)) {
        session.picture = {};
        return false;
    }
    ChooseMipmaps(session);
    if (!UploadTexture(session.texture, source, width, height, width)) {
        return false;
    }
    UploadGlow(picture, session);
    session.factor = factor;
    session.picture = Enlarged(picture, factor);
    AddToColourHistory(session.colours, picture.pixels, picture.width, picture.height);
    return true;
}
