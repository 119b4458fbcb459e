// An image of the room's furniture of any bytes.
#include "room/image_decoder.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const ROOM_IMAGE image = DecodeRoomImage({data, size});
    if (image.pixels.size() != size_t{image.width} * image.height ||
        image.width > kLongestImageSide || image.height > kLongestImageSide) {
        std::abort();
    }
    return 0;
}
