#include "room/closed_parts.h"
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
    meshes.clear();
    for (const Object& object : objects) {
        meshes.push_back(MakeMesh(painter, object));
    }
}

// One buffer holds positions, normals and texture coordinates, array after array.
Model_3DS::MESH Model_3DS::MakeMesh(RoomPainter& painter, const Object& object) const {
    MESH mesh;
    std::vector<uint16_t> drawn;
    for (const MaterialFaces& group : object.matFaces) {
        drawn.insert(drawn.end(), group.subFaces.begin(), group.subFaces.end());
    }
    const std::vector<bool> closed = FindClosedParts(object.vertices, drawn);
    size_t first = 0;
    for (size_t g = 0; g < object.matFaces.size(); ++g) {
        PART part{g, first, 0, 0};
        const size_t end = first + object.matFaces[g].subFaces.size();
        for (const bool wanted : {true, false}) {
            for (size_t i = first; i < end; i += 3) {
                if (closed[i / 3] == wanted) {
                    mesh.indices.insert(mesh.indices.end(), drawn.data() + i, drawn.data() + i + 3);
                    (wanted ? part.closed : part.open) += 3;
                }
            }
        }
        mesh.parts.push_back(part);
        first = end;
    }

    std::vector<float> all;
    all.reserve(object.vertices.size() + object.normals.size() + object.texCoords.size());
    all.insert(all.end(), object.vertices.begin(), object.vertices.end());
    all.insert(all.end(), object.normals.begin(), object.normals.end());
    all.insert(all.end(), object.texCoords.begin(), object.texCoords.end());
    mesh.vertexBuffer = painter.MakeVertexBuffer(all.data(), all.size() * sizeof(float));
    mesh.indexBuffer =
        painter.MakeIndexBuffer(mesh.indices.data(), mesh.indices.size() * sizeof(uint16_t));
    return mesh;
}

void Model_3DS::Draw(RoomPainter& painter) {
    if (!visible) {
        return;
    }
    Prepare(painter);
    for (size_t i = 0; i < objects.size(); ++i) {
        if (!meshes[i].indices.empty() && painter.InView(objects[i].low, objects[i].high)) {
            DrawMesh(painter, objects[i], meshes[i]);
        }
    }
}

void Model_3DS::DrawMesh(RoomPainter& painter, const Object& object, const MESH& mesh) const {
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
    const bool fromOutside = painter.EyeOutside(object.low, object.high);
    for (const PART& part : mesh.parts) {
        DrawPart(painter, object, mesh, part, fromOutside);
    }
}

void Model_3DS::DrawPart(RoomPainter& painter, const Object& object, const MESH& mesh,
                         const PART& part, bool fromOutside) const {
    const int32_t index = object.matFaces[part.group].materialIndex;
    const Material& material = materials[static_cast<size_t>(index)];
    const auto rgb = [](const RGBA& colour) {
        return std::array<float, 3>{colour[0], colour[1], colour[2]};
    };
    painter.SetMaterial(
        {rgb(material.diffuse), rgb(material.specular), material.selfIllum, material.shininess});
    if (hasOverride && overrideOn && index == 0) {
        painter.BindPicture(material.texture, overridePicture, tvBrightness);
    } else {
        painter.BindTexture(material.textured ? &material.texture : nullptr);
    }
    const auto indices = [&](size_t first) {
        return mesh.indexBuffer != 0 ? BufferOffset(first * sizeof(uint16_t))
                                     : static_cast<const void*>(mesh.indices.data() + first);
    };
    if (!fromOutside) {
        painter.DrawTriangles(mesh.indexBuffer, indices(part.first), part.closed + part.open);
        return;
    }
    painter.HideBackFaces(true);
    painter.DrawTriangles(mesh.indexBuffer, indices(part.first), part.closed);
    painter.HideBackFaces(false);
    painter.DrawTriangles(mesh.indexBuffer, indices(part.first + static_cast<size_t>(part.closed)),
                          part.open);
}
