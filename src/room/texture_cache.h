// TextureCache: the images of the room and its furniture as textures, each decoded once.
//
// Paths: `.\objects\NAME`. A path is kept in lower case and looked up as it is given, so a name with
//   capitals is decoded again at each use; the program's own names have none.
// Textures repeat and are seen from far away and aslant: all have smaller levels where the driver makes
//   them. A driver that needs powers of two gets the image enlarged to one, since a repeated texture
//   must be filled to its edge; one that is larger than the driver's largest is reduced.
// Owner: the cache owns all textures; records are copies. End or the destructor frees them, with the
//   context current. Thread: main.
// Failure: damage is reported, and the spare image taken. Without one, and for an image that is missing, the
// record has no GL name.
#pragma once

#include "display/texture.h"
#include "room/image_decoder.h"

#include <cstdint>
#include <forward_list>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The bytes of a file of furniture by its name, which may be in capitals; empty if there is none.
using ObjectFileReader = std::function<std::vector<uint8_t>(std::string_view name)>;
// Takes one line for the player.
using RoomReport = std::function<void(const std::string& message)>;

// The spare of a damaged file, if that is another one; reports the fault either way.
[[nodiscard]] std::vector<uint8_t> SpareFile(const ObjectFileReader& readSpare,
                                             const RoomReport& report, std::string_view name,
                                             const std::vector<uint8_t>& damaged,
                                             const std::string& fault);

class TextureCache {
public:
    TextureCache() = default;
    ~TextureCache() { End(); }
    TextureCache(const TextureCache&) = delete;
    TextureCache& operator=(const TextureCache&) = delete;

    void Start(ObjectFileReader fileReader, RoomReport report, ObjectFileReader spareReader = {});
    void End();

    [[nodiscard]] TEXTURE_RECORD Get(std::string_view path);

    // Applies to present and later textures; 1 turns it off.
    void SetAnisotropy(float samples);

    [[nodiscard]] size_t Decoded() const { return decoded; } // images since Start
    [[nodiscard]] uint64_t BytesUploaded() const { return bytesUploaded; }

private:
    [[nodiscard]] TEXTURE_RECORD MakeTexture(const ROOM_IMAGE& image);

    std::forward_list<std::pair<std::string, TEXTURE_RECORD>> entries; // newest first
    ObjectFileReader readFile;
    ObjectFileReader readSpare;
    RoomReport report;
    float anisotropy = 1.0f;
    size_t decoded = 0;
    uint64_t bytesUploaded = 0;
};

// The name of a file in a path of the form above; the path itself if it has another form.
[[nodiscard]] std::string_view ObjectFileName(std::string_view path);
