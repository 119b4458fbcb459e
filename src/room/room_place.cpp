#include "room/room_place.h"

#include "room/room_camera.h"
#include "room/room_objects.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

constexpr size_t kNumbers = 5;

bool ReadNumbers(std::string_view text, std::array<float, kNumbers>& numbers) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (size_t i = 0; i < kNumbers; ++i) {
        if (i != 0 && (at == end || *at++ != ' ')) {
            return false;
        }
        const auto [next, fault] = std::from_chars(at, end, numbers[i]);
        if (fault != std::errc() || !std::isfinite(numbers[i])) {
            return false;
        }
        at = next;
    }
    return at == end;
}

// Where it is drawn, whatever its height: nobody stands on a table.
bool Covers(const CRoomObject& object, VECTOR3 place) {
    const bool turned = object.rotation == 90.0f || object.rotation == 270.0f;
    const float acrossX = turned ? object.type->depth : object.type->width;
    const float acrossZ = turned ? object.type->width : object.type->depth;
    const VECTOR3 centre = CentreOf(object);
    return std::abs(place.x - centre.x) <= acrossX / 2.0f &&
           std::abs(place.z - centre.z) <= acrossZ / 2.0f;
}

bool IsFree(const CRoomObjects& objects, VECTOR3 place) {
    const bool inside = place.x > 0.0f && place.x < kRoomWidth && place.y > 0.0f &&
                        place.y < kRoomHeight && place.z > 0.0f && place.z < kRoomDepth;
    return inside && std::ranges::none_of(
                         objects.All(), [&](const auto& object) { return Covers(*object, place); });
}

} // namespace

std::string RoomPlaceText(const CRoomCamera& camera) {
    const VECTOR3 from = camera.Position();
    std::string text;
    for (const float number : {from.x, from.y, from.z, camera.Yaw(), camera.Pitch()}) {
        std::array<char, 64> digits{};
        constexpr int kDecimals = 2;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                       std::chars_format::fixed, kDecimals);
        text += text.empty() ? "" : " ";
        text.append(digits.data(), end.ptr);
    }
    return text;
}

std::optional<ROOM_PLACE> ReadRoomPlace(std::string_view text, const CRoomObjects& objects) {
    std::array<float, kNumbers> numbers{};
    if (!ReadNumbers(text, numbers)) {
        return std::nullopt;
    }
    const VECTOR3 from{numbers[0], numbers[1], numbers[2]};
    if (!IsFree(objects, from)) {
        return std::nullopt;
    }
    CRoomCamera camera;
    camera.TurnBy(numbers[3]);
    camera.Turn(0.0f, -numbers[4]);
    return ROOM_PLACE{from, from + camera.Forward() * 100.0f};
}
