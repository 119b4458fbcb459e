#include "front/tools/media_files.h"

#include "base/bytes.h"
#include "formats/png_picture.h"

#include <algorithm>
#include <string_view>

namespace {

void PutTag(uint8_t* at, std::string_view tag) {
    std::copy(tag.begin(), tag.end(), at);
}

} // namespace

std::vector<uint8_t> PngOfFrame(const EMU_VIDEO_FRAME& frame) {
    if (frame.pixels == nullptr || frame.visibleWidth == 0 || frame.visibleHeight == 0) {
        return {};
    }
    PNG_PICTURE picture{frame.visibleWidth, frame.visibleHeight, {}};
    picture.pixels.reserve(size_t{frame.visibleWidth} * frame.visibleHeight);
    for (uint32_t y = 0; y < frame.visibleHeight; ++y) {
        const uint32_t* row =
            frame.pixels + size_t{frame.visibleY + y} * frame.width + frame.visibleX;
        picture.pixels.insert(picture.pixels.end(), row, row + frame.visibleWidth);
    }
    return EncodePng(picture);
}

std::vector<uint8_t> WavOfSamples(std::span<const int16_t> samples, uint32_t rate) {
    constexpr uint32_t kHeader = 44;
    constexpr uint16_t kChannels = 2;
    constexpr uint16_t kBytesAFrame = 4;
    const auto dataBytes = static_cast<uint32_t>(samples.size() * sizeof(int16_t));
    std::vector<uint8_t> file(size_t{kHeader} + dataBytes);
    uint8_t* header = file.data();
    PutTag(header, "RIFF");
    StoreLittleEndian<uint32_t>(header + 4, kHeader - 8 + dataBytes);
    PutTag(header + 8, "WAVEfmt ");
    StoreLittleEndian<uint32_t>(header + 16, 16); // bytes of the format
    StoreLittleEndian<uint16_t>(header + 20, 1);  // PCM
    StoreLittleEndian<uint16_t>(header + 22, kChannels);
    StoreLittleEndian<uint32_t>(header + 24, rate);
    StoreLittleEndian<uint32_t>(header + 28, rate * kBytesAFrame);
    StoreLittleEndian<uint16_t>(header + 32, kBytesAFrame);
    StoreLittleEndian<uint16_t>(header + 34, 16); // bits
    PutTag(header + 36, "data");
    StoreLittleEndian<uint32_t>(header + 40, dataBytes);
    for (size_t i = 0; i < samples.size(); ++i) {
        StoreLittleEndian<uint16_t>(header + kHeader + 2 * i, static_cast<uint16_t>(samples[i]));
    }
    return file;
}
