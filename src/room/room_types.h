// The tables of the room: what the types of furniture measure, how their screens shine, and where each stands.
#pragma once

#include "room/vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

struct ROOM_SCREEN_ROW {
    float falloff;
    float cutoffAngle; // degrees
    float ball;
    float brightness;
    float flickerAmplitude;
    uint32_t flickerModulus;
    VECTOR3 lightOffset;
    VECTOR3 direction;
};

struct ROOM_TYPE_ROW {
    uint32_t id;
    std::string_view file;
    float width; // room units at rotation 0
    float depth;
    float height;
    bool isFurniture;
    bool restsOnOthers;
    const ROOM_SCREEN_ROW* screen; // null for furniture
};

inline constexpr size_t kNoTelevisionSlot = SIZE_MAX;

struct ROOM_PLACE_ROW {
    uint32_t type;
    float x;
    float z;
    float rotation;
    size_t slot; // in the list of televisions, or kNoTelevisionSlot
};

// clang-format off
inline constexpr ROOM_SCREEN_ROW kTubeScreen     = {80.0f, 70.0f, 50.0f, 0.8f,  0.0f,  0, {38.5f, 50.0f, 54.0f},  {0.0f, 0.0f, 1.0f}};
inline constexpr ROOM_SCREEN_ROW kFlatScreen     = {80.0f, 70.0f,  0.0f, 0.8f,  0.0f,  0, {100.0f, 0.0f, 118.0f}, {0.0f, 0.0f, 1.0f}};
inline constexpr ROOM_SCREEN_ROW kHandheldScreen = {20.0f, 85.0f,  4.5f, 0.65f, 0.06f, 3, {10.0f, 2.0f, 5.0f},    {0.0f, 1.0f, 0.0f}};
inline constexpr ROOM_SCREEN_ROW kArcadeScreen   = {50.0f, 55.0f, 60.0f, 0.8f,  0.0f,  0, {42.0f, 135.0f, 85.0f}, {0.0f, -0.2f, 1.0f}};

inline constexpr uint32_t kArcadeType = 102;

inline constexpr std::array<ROOM_TYPE_ROW, 7> kRoomTypes = {{
    {105,         "coffeetable.3ds", 200.0f,  80.0f,  49.0f,   true,  false, nullptr},
    {104,         "couch.3ds",       200.0f,  86.0f,  70.347f, true,  false, nullptr},
    {101,         "tvunit.3ds",      500.0f, 137.0f,  70.0f,   true,  false, nullptr},
    {100,         "tv.3ds",           77.0f,  70.0f,  82.0f,   false, true,  &kTubeScreen},
    {106,         "tv2.3ds",         200.0f,  18.5f, 235.5f,   false, true,  &kFlatScreen},
    {103,         "gamegear.3ds",     20.0f,  11.0f,   3.0f,   false, true,  &kHandheldScreen},
    {kArcadeType, "arcade.3ds",       85.0f, 109.0f, 180.0f,   false, true,  &kArcadeScreen},
}};

// In the order of placing.
inline constexpr std::array<ROOM_PLACE_ROW, 11> kRoomPlaces = {{
    {105,         270.0f, 300.0f,  90.0f, kNoTelevisionSlot},
    {104,         400.0f, 300.0f, 270.0f, kNoTelevisionSlot},
    {101,           0.0f,   0.0f,   0.0f, kNoTelevisionSlot},
    {103,         310.0f, 390.0f,   0.0f, 7},
    {106,           0.0f, 300.0f,  90.0f, 8},
    {100,          25.0f,  60.0f,   0.0f, 0},
    {100,         145.0f,  40.0f,   0.0f, 1},
    {100,         265.0f,  30.0f,   0.0f, 2},
    {100,         385.0f,  30.0f,   0.0f, 3},
    {kArcadeType,  50.0f, 715.0f, 180.0f, 5},
    {kArcadeType, 365.0f, 715.0f, 180.0f, 6},
}};
// clang-format on
