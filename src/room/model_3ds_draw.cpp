#include "room/model_3ds.h"
#include "room/room_painter.h"

void Model_3DS::SetOverride(bool on) {
    overrideOn = on;
    if (hasOverride && !materials.empty()) {
        materials[0].texture = on ? overrideTexture : ownTexture;
        materials[0].textured = on || ownTextured;
    }
}

void Model_3DS::AttachPicture(const TEXTURE_RECORD& record, const EMU_VIDEO_FRAME& picture,
                              float brightness) {
    if (materials.empty()) {
        return;
    }
    Material& glass = materials[0];
    if (!hasOverride) {
        ownTexture = glass.texture;
        ownTextured = glass.textured;
    }
    overrideTexture = record;
    overridePicture = picture;
    // A picture without an active window shows whole.
    if (picture.visibleWidth != 0 && picture.visibleHeight != 0) {
        overrideTexture.width = picture.visibleWidth;
        overrideTexture.height = picture.visibleHeight;
    } else {
        overridePicture.visibleX = overridePicture.visibleY = 0;
    }
    glass.texture = overrideTexture;
    glass.textured = true;
    hasOverride = true;
    tvBrightness = brightness;
}

void Model_3DS::Prepare(RoomPainter& painter) {
    if (preparedFor == painter.Generation()) {
        return;
    }
    preparedFor = painter.Generation();
    hasOverride = overrideOn = false;
    for (Material& material : materials) {
        material.textured = !material.texturePath.empty();
        material.texture = {};
        if (material.textured) {
            material.texture = painter.Textures().Get(material.texturePath);
        }
    }
    meshes.assign(objects.size(), {});
    for (size_t i = 0; i < objects.size(); ++i) {
        MakeMesh(painter, objects[i], meshes[i]);
    }
}

// One buffer holds positions, normals and texture coordinates, array after array.
void Model_3DS::MakeMesh(RoomPainter& painter, const Object& object, MESH& mesh) const {
    std::vector<float> all;
    all.reserve(object.vertices.size() + object.normals.size() + object.texCoords.size());
    all.insert(all.end(), object.vertices.begin(), object.vertices.end());
    all.insert(all.end(), object.normals.begin(), object.normals.end());
    all.insert(all.end(), object.texCoords.begin(), object.texCoords.end());
    mesh.vertexBuffer = painter.MakeVertexBuffer(all.data(), all.size() * sizeof(float));
    for (const MaterialFaces& group : object.matFaces) {
        mesh.indexBuffers.push_back(painter.MakeIndexBuffer(
            group.subFaces.data(), group.subFaces.size() * sizeof(uint16_t)));
    }
}

void Model_3DS::Draw(RoomPainter& painter) {
    if (!visible) {
        return;
    }
    Prepare(painter);
    for (size_t i = 0; i < objects.size(); ++i) {
        const Object& object = objects[i];
        const MESH& mesh = meshes[i];
        if (object.matFaces.empty() || !painter.InView(object.low, object.high)) {
            continue;
        }
        VERTEX_ARRAYS arrays{mesh.vertexBuffer, object.vertices.data(), object.normals.data(),
                             object.texCoords.data()};
        if (mesh.vertexBuffer != 0) {
            const size_t normals = object.vertices.size() * sizeof(float);
            arrays.positions = nullptr;
            arrays.normals = BufferOffset(normals);
            arrays.texCoords = BufferOffset(2 * normals);
        }
        if (!lit) {
            arrays.normals = nullptr;
        }
        painter.SetArrays(arrays);
        for (size_t g = 0; g < object.matFaces.size(); ++g) {
            DrawGroup(painter, object.matFaces[g], mesh.indexBuffers[g]);
        }
    }
}

void Model_3DS::DrawGroup(RoomPainter& painter, const MaterialFaces& group,
                          uint32_t indexBuffer) const {
    const Material& material = materials[static_cast<size_t>(group.materialIndex)];
    const auto rgb = [](const RGBA& colour) {
        return std::array<float, 3>{colour[0], colour[1], colour[2]};
    };
    painter.SetMaterial(
        {rgb(material.diffuse), rgb(material.specular), material.selfIllum, material.shininess});
    if (hasOverride && overrideOn && group.materialIndex == 0) {
        painter.BindPicture(material.texture, overridePicture, tvBrightness);
    } else {
        painter.BindTexture(material.textured ? &material.texture : nullptr);
    }
    painter.DrawTriangles(indexBuffer, indexBuffer != 0 ? nullptr : group.subFaces.data(),
                          group.numSubFaces);
}
