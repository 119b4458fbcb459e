#include "room/room_objects.h"

#include "room/model_3ds.h"
#include "room/room_types.h"

#include <algorithm>
#include <utility>

CRoomObjectType::CRoomObjectType() = default;
CRoomObjectType::~CRoomObjectType() = default;

CRoomObjects::CRoomObjects() = default;
CRoomObjects::~CRoomObjects() = default;

namespace {

std::unique_ptr<CRoomObjectType> MakeType(const ROOM_TYPE_ROW& row) {
    auto type = std::make_unique<CRoomObjectType>();
    type->id = row.id;
    type->width = row.width;
    type->height = row.height;
    type->depth = row.depth;
    type->isFurniture = row.isFurniture;
    type->restsOnOthers = row.restsOnOthers;
    if (row.screen != nullptr) {
        type->isScreen = true;
        type->lightOffset = row.screen->lightOffset;
        type->direction = row.screen->direction;
        type->ball = row.screen->ball;
        type->cutoffAngle = row.screen->cutoffAngle;
        type->falloff = row.screen->falloff;
        type->flickerModulus = row.screen->flickerModulus;
        type->brightness = row.screen->brightness;
        type->flickerAmplitude = row.screen->flickerAmplitude;
    }
    return type;
}

bool IsSideways(float rotation) {
    return rotation == 90.0f || rotation == 270.0f;
}

} // namespace

void CRoomObjects::Build(const ModelLoader& load) {
    Clear();
    for (const ROOM_TYPE_ROW& row : kRoomTypes) {
        std::unique_ptr<CRoomObjectType> type = MakeType(row);
        if (load) {
            type->model = load(row.file);
            if (type->model == nullptr) {
                continue;
            }
        }
        types.push_back(std::move(type));
    }
    for (const ROOM_PLACE_ROW& place : kRoomPlaces) {
        const uint32_t id = AddObject(place.type, place.x, place.z, place.rotation);
        if (place.slot != kNoTelevisionSlot) {
            televisions[place.slot] = id;
        }
    }
}

void CRoomObjects::Clear() {
    objects.clear();
    types.clear();
    televisions.fill(0);
    lastId = 0;
}

uint32_t CRoomObjects::AddObject(uint32_t typeId, float x, float z, float rotation) {
    const CRoomObjectType* const type = FindType(typeId);
    if (type == nullptr) {
        return 0;
    }
    auto made = std::make_unique<CRoomObject>();
    made->id = ++lastId;
    made->type = type;
    made->lightOffset = type->lightOffset;
    made->direction = type->direction;
    if (rotation == 90.0f) {
        std::swap(made->direction.x, made->direction.z);
    } else if (rotation == 180.0f) {
        made->direction.z = -made->direction.z;
    }
    CRoomObject& object = *made;
    objects.insert(objects.begin(), std::move(made));
    MoveObject(object, x, z, rotation);
    return object.id;
}

// An object rests on the one below it; what that one rests on does not count.
void CRoomObjects::MoveObject(CRoomObject& object, float x, float z, float rotation) {
    object.x = x;
    object.y = 0.0f;
    object.z = z;
    object.rotation = rotation;
    if (!object.type->restsOnOthers) {
        return;
    }
    const auto under = std::find_if(objects.begin(), objects.end(), [&](const auto& other) {
        return other.get() != &object && FootprintOf(*other).Contains(x, z);
    });
    if (under != objects.end()) {
        object.y = (*under)->type->height;
    }
}

CRoomObject* CRoomObjects::Find(uint32_t id) {
    const auto found = std::find_if(objects.begin(), objects.end(),
                                    [&](const auto& object) { return object->id == id; });
    return found != objects.end() ? found->get() : nullptr;
}

const CRoomObjectType* CRoomObjects::FindType(uint32_t typeId) const {
    const auto found = std::find_if(types.begin(), types.end(),
                                    [&](const auto& type) { return type->id == typeId; });
    return found != types.end() ? found->get() : nullptr;
}

void CRoomObjects::Attach(uint32_t id, const SESSION_PICTURE& session) {
    CRoomObject* const object = Find(id);
    if (object == nullptr) {
        return;
    }
    object->picture = session.picture;
    object->texture = session.texture;
    object->colours = session.colours;
    object->on = true;
    object->changed = true;
}

void CRoomObjects::TurnOff(uint32_t id) {
    CRoomObject* const object = Find(id);
    if (object == nullptr) {
        return;
    }
    object->on = false;
    object->changed = false;
    object->picture = {};
    object->texture = {};
    object->colours = {};
}

FOOTPRINT FootprintOf(const CRoomObject& object) {
    const float width = object.type->width;
    const float depth = object.type->depth;
    if (IsSideways(object.rotation)) {
        return {object.z, object.z + depth, object.x, object.x + width};
    }
    if (object.rotation == 180.0f) {
        return {object.x - width, object.x - width, object.z - depth, object.z - depth};
    }
    return {object.x, object.x + width, object.z, object.z + depth};
}

VECTOR3 CentreOf(const CRoomObject& object) {
    float width = object.type->width;
    float depth = object.type->depth;
    if (IsSideways(object.rotation)) {
        std::swap(width, depth);
    }
    return {object.x + width / 2.0f, object.y + object.type->height / 2.0f,
            object.z + depth / 2.0f};
}

VECTOR3 LightOf(const CRoomObject& object) {
    const VECTOR3 offset = object.lightOffset;
    if (object.direction.z == -1.0f && object.direction.x == 0.0f) {
        return {object.x + object.type->width - offset.x, object.y + offset.y,
                object.z + object.type->depth - offset.z};
    }
    return {object.x + offset.x, object.y + offset.y, object.z + offset.z};
}
