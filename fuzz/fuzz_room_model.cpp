// A `.3ds` file of any bytes: it is refused and leaves nothing, or every index of the model is good.
#include "room/model_3ds.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void Check(bool good) {
    if (!good) {
        std::abort();
    }
}

void CheckObject(const Model_3DS& model, const Model_3DS::Object& object) {
    const auto vertices = static_cast<size_t>(object.numVerts);
    Check(object.vertices.size() == vertices * 3 && object.normals.size() == vertices * 3);
    Check(object.texCoords.size() >= vertices * 2);
    Check(object.matFaces.size() == static_cast<size_t>(object.numMatFaces));
    for (const float value : object.normals) {
        Check(std::isfinite(value));
    }
    for (const Model_3DS::MaterialFaces& group : object.matFaces) {
        Check(group.materialIndex >= 0 && group.materialIndex < model.numMaterials);
        Check(group.subFaces.size() == static_cast<size_t>(group.numSubFaces));
        for (const uint16_t index : group.subFaces) {
            Check(index < vertices);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Model_3DS model;
    std::string error;
    if (!model.Load(data, size, "fuzz", error)) {
        Check(!error.empty() && model.objects.empty() && model.materials.empty());
        return 0;
    }
    for (const Model_3DS::Object& object : model.objects) {
        CheckObject(model, object);
    }
    return 0;
}
