// The furniture of the room: its types, the placed objects, and the list of televisions.
//
// Units: room units; the room is kRoomWidth by kRoomHeight by kRoomDepth with a corner at the origin. Rotations
// in degrees about y: 0, 90, 180 or 270. A position is that of the object's box: its corner of lowest x, y and z.
// Owner: CRoomObjects owns types and objects; models are drawn by whoever draws the room.
// Thread: main.
#pragma once

#include "display/session_picture.h"
#include "room/vector.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

class Model_3DS;

inline constexpr float kRoomWidth = 500.0f;  // x
inline constexpr float kRoomHeight = 260.0f; // y
inline constexpr float kRoomDepth = 800.0f;  // z

struct CRoomObjectType {
    CRoomObjectType();
    ~CRoomObjectType();
    CRoomObjectType(const CRoomObjectType&) = delete;
    CRoomObjectType& operator=(const CRoomObjectType&) = delete;

    uint32_t id = 0;
    float width = 0.0f; // x, y and z of the box at rotation 0
    float height = 0.0f;
    float depth = 0.0f;
    std::unique_ptr<Model_3DS> model; // null in a room without pictures, as tests use it
    bool isFurniture = false;
    bool restsOnOthers = false; // stands on what lies under its position
    bool isScreen = false;

    // Of a screen: the light that its picture casts.
    VECTOR3 lightOffset;      // from the object's corner
    VECTOR3 direction;        // the way that the screen faces
    float ball = 0.0f;        // radius around the light within which it shines to all sides
    float cutoffAngle = 0.0f; // degrees from the direction
    float falloff = 0.0f;     // lessens the quadratic attenuation
    uint32_t flickerModulus = 0;
    float brightness = 0.0f;       // of the picture itself
    float flickerAmplitude = 0.0f; // 0 for a screen that does not flicker
};

struct CRoomObject {
    uint32_t id = 0; // also the key of the session that plays on it
    const CRoomObjectType* type = nullptr;
    float flicker = 0.0f; // -flickerAmplitude to 0
    float rotation = 0.0f;
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    bool on = false;      // a session plays on it and has made a picture
    bool changed = false; // its texture has been attached
    EMU_VIDEO_FRAME picture{};
    TEXTURE_RECORD texture{}; // a copy: the session's display side owns it
    COLOUR_HISTORY colours;
    VECTOR3 direction;   // the type's, rotated
    VECTOR3 lightOffset; // the type's
};

// What an object covers of the floor.
struct FOOTPRINT {
    float left; // x
    float right;
    float front; // z
    float back;

    [[nodiscard]] constexpr bool Contains(float x, float z) const {
        return x >= left && x <= right && z >= front && z <= back;
    }
};

inline constexpr size_t kTelevisionSlots = 9;

class CRoomObjects {
public:
    // Loads one type's model by its file name, `coffeetable.3ds`; null if there is none.
    using ModelLoader = std::function<std::unique_ptr<Model_3DS>(std::string_view file)>;

    CRoomObjects();
    ~CRoomObjects();
    CRoomObjects(const CRoomObjects&) = delete;
    CRoomObjects& operator=(const CRoomObjects&) = delete;

    // Makes the types and places all objects. A type whose model is missing is left out, with its objects.
    // Without a loader there are no models, and no type is left out.
    void Build(const ModelLoader& load);
    void Clear();

    // 0 if there is no such type.
    uint32_t AddObject(uint32_t typeId, float x, float z, float rotation);
    // Puts the object on the floor, or on the object under its position.
    void MoveObject(CRoomObject& object, float x, float z, float rotation);

    [[nodiscard]] CRoomObject* Find(uint32_t id);
    [[nodiscard]] const CRoomObjectType* FindType(uint32_t typeId) const;
    // Newest first: the order of drawing, picking and looking for what lies under an object.
    [[nodiscard]] const std::vector<std::unique_ptr<CRoomObject>>& All() const { return objects; }
    // Object ids by slot; 0 in an empty one.
    [[nodiscard]] const std::array<uint32_t, kTelevisionSlots>& Televisions() const {
        return televisions;
    }

    // The session's newest picture becomes the object's; the object is on.
    void Attach(uint32_t id, const SESSION_PICTURE& session);
    // The session has ended.
    void TurnOff(uint32_t id);

private:
    std::vector<std::unique_ptr<CRoomObjectType>> types;
    std::vector<std::unique_ptr<CRoomObject>> objects;
    std::array<uint32_t, kTelevisionSlots> televisions{};
    uint32_t lastId = 0;
};

// At rotations 90 and 270 the two axes are exchanged, position included, and at 180 the box is a single point:
// so the furniture was laid out, and the heights of what stands on it depend on it.
[[nodiscard]] FOOTPRINT FootprintOf(const CRoomObject& object);

// The middle of the object's box as it is drawn, width and depth exchanged at rotations 90 and 270.
[[nodiscard]] VECTOR3 CentreOf(const CRoomObject& object);

// The place of the light that the object's picture casts.
[[nodiscard]] VECTOR3 LightOf(const CRoomObject& object);
