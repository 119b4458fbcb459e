#include "room/texture_cache.h"

#include "display/gl.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <algorithm>
#include <bit>

namespace {

constexpr std::string_view kFolder = ".\\objects\\";

std::string LowerCase(std::string_view path) {
    std::string folded(path);
    std::transform(folded.begin(), folded.end(), folded.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return folded;
}

// The side that the driver can repeat, nearest to the image's from above.
uint32_t TextureSide(uint32_t side) {
    const uint32_t wanted = Gl().anyTextureSize ? side : std::bit_ceil(side);
    const uint32_t largest =
        Gl().anyTextureSize ? Gl().largestTexture : std::bit_floor(Gl().largestTexture);
    return std::min(wanted, largest);
}

// The image in the size that its texture has.
ROOM_IMAGE Fitted(const ROOM_IMAGE& image) {
    ROOM_IMAGE fitted{TextureSide(image.width), TextureSide(image.height), {}};
    if (fitted.width == image.width && fitted.height == image.height) {
        fitted.pixels = image.pixels;
        return fitted;
    }
    fitted.pixels.resize(size_t{fitted.width} * fitted.height);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    const GLint failure = gluScaleImage(
        GL_BGRA, static_cast<GLsizei>(image.width), static_cast<GLsizei>(image.height),
        GL_UNSIGNED_BYTE, image.pixels.data(), static_cast<GLsizei>(fitted.width),
        static_cast<GLsizei>(fitted.height), GL_UNSIGNED_BYTE, fitted.pixels.data());
    return failure == 0 ? fitted : ROOM_IMAGE{};
}

// Of the bound texture.
void SetBoundAnisotropy(float samples) {
    if (Gl().largestAnisotropy > 0.0f) {
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, samples);
    }
}

} // namespace

std::string_view ObjectFileName(std::string_view path) {
    return path.starts_with(kFolder) ? path.substr(kFolder.size()) : path;
}

std::vector<uint8_t> SpareFile(const ObjectFileReader& readSpare, const RoomReport& report,
                               std::string_view name, const std::vector<uint8_t>& damaged,
                               const std::string& fault) {
    std::vector<uint8_t> spare = readSpare ? readSpare(name) : std::vector<uint8_t>();
    if (spare == damaged) {
        spare.clear();
    }
    if (report) {
        report(spare.empty() ? fault : fault + "; the built-in one is used");
    }
    return spare;
}

void TextureCache::Start(ObjectFileReader fileReader, RoomReport reportSink,
                         ObjectFileReader spareReader) {
    End();
    readFile = std::move(fileReader);
    readSpare = std::move(spareReader);
    report = std::move(reportSink);
    decoded = 0;
    bytesUploaded = 0;
}

void TextureCache::End() {
    for (auto& [path, record] : entries) {
        DestroyTexture(record);
    }
    entries.clear();
}

TEXTURE_RECORD TextureCache::Get(std::string_view path) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [path](const auto& entry) { return entry.first == path; });
    if (found != entries.end()) {
        return found->second;
    }
    const std::vector<uint8_t> file =
        readFile ? readFile(ObjectFileName(path)) : std::vector<uint8_t>();
    if (file.empty()) {
        return {};
    }
    ROOM_IMAGE image = DecodeRoomImage(file);
    if (image.width == 0) {
        const std::string_view name = ObjectFileName(path);
        image =
            DecodeRoomImage(SpareFile(readSpare, report, name, file,
                                      std::string(name) + " is no image that the room can show"));
    }
    if (image.width == 0) {
        return {};
    }
    ++decoded;
    const TEXTURE_RECORD record = MakeTexture(image);
    if (record.glTexture != 0) {
        entries.emplace_front(LowerCase(path), record);
    }
    return record;
}

TEXTURE_RECORD TextureCache::MakeTexture(const ROOM_IMAGE& image) {
    const ROOM_IMAGE fitted = Fitted(image);
    TEXTURE_RECORD record{};
    record.width = fitted.width;
    record.height = fitted.height;
    if (!CreateTexture(record, true)) {
        return record;
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, record.mipmapped != 0 ? GL_TRUE : GL_FALSE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    SetBoundAnisotropy(anisotropy);
    if (!UploadTexture(record, fitted.pixels.data(), fitted.width, fitted.height, fitted.width)) {
        DestroyTexture(record);
    }
    bytesUploaded += fitted.pixels.size() * sizeof(uint32_t);
    return record;
}

void TextureCache::SetAnisotropy(float samples) {
    if (samples == anisotropy) {
        return;
    }
    anisotropy = samples;
    for (const auto& [path, record] : entries) {
        glBindTexture(GL_TEXTURE_2D, record.glTexture);
        SetBoundAnisotropy(samples);
    }
}
