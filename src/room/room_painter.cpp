#include "room/room_painter.h"

#include "display/gl.h"
#include "machine/emu_system.h"
#include "room/transform.h"
#include "settings/settings.h"

#include <algorithm>
#include <tuple>

namespace {

constexpr float kMostShininess = 128.0f; // OpenGL refuses more
constexpr float kNoAnisotropy = 1.0f;

uint64_t gGenerations = 0; // main thread

// Where the camera of a view without scaling stands: the point that it moves to the origin.
VECTOR3 EyeOf(const MATRIX4& view) {
    const VECTOR3 moved{view[12], view[13], view[14]};
    return VECTOR3{} - VECTOR3{Dot({view[0], view[1], view[2]}, moved),
                               Dot({view[4], view[5], view[6]}, moved),
                               Dot({view[8], view[9], view[10]}, moved)};
}

// How far from the eye a corner of the near plane is.
float NearReach(const MATRIX4& projection) {
    const float distance = projection[14] / (projection[10] - 1.0f);
    return Length({distance / projection[0], distance / projection[5], distance});
}

} // namespace

void RoomPainter::Start(const ROOM_SERVICES& services) {
    Release();
    generation = ++gGenerations;
    gl = LoadGlFunctions(services.loader);
    textures.Start(services.readFile, services.report, services.readSpare);
    std::string error;
    if (!program.Start(gl, error) && services.report) {
        services.report(error);
    }
}

void RoomPainter::Release() {
    program.Release();
    textures.End();
    if (!buffers.empty()) {
        gl.deleteBuffers(static_cast<GLsizei>(buffers.size()), buffers.data());
        buffers.clear();
    }
    generation = 0;
}

uint32_t RoomPainter::MakeBuffer(GLenum target, const void* data, size_t bytes) {
    if (gl.genBuffers == nullptr || bytes == 0) {
        return 0;
    }
    GLuint name = 0;
    gl.genBuffers(1, &name);
    gl.bindBuffer(target, name);
    gl.bufferData(target, static_cast<GLsizeiptr>(bytes), data, GL_STATIC_DRAW);
    gl.bindBuffer(target, 0);
    (target == GL_ARRAY_BUFFER ? boundVertexBuffer : boundIndexBuffer) = 0;
    buffers.push_back(name);
    counters.bytesUploaded += bytes;
    return name;
}

uint32_t RoomPainter::MakeVertexBuffer(const void* data, size_t bytes) {
    return MakeBuffer(GL_ARRAY_BUFFER, data, bytes);
}

uint32_t RoomPainter::MakeIndexBuffer(const void* data, size_t bytes) {
    return MakeBuffer(GL_ELEMENT_ARRAY_BUFFER, data, bytes);
}

void RoomPainter::BeginScene(const MATRIX4& projection, const MATRIX4& view) {
    const uint64_t imageBytes = textures.BytesUploaded();
    counters = {};
    counters.bytesUploaded = imageBytes - imageBytesBefore;
    imageBytesBefore = imageBytes;
    lighting = Settings().GetBool(L"app_lighting");
    const bool anisotropic = Settings().GetBool(L"app_anisotropicfiltering");
    anisotropy =
        anisotropic && Gl().largestAnisotropy > 0.0f ? Gl().largestAnisotropy : kNoAnisotropy;
    textures.SetAnisotropy(anisotropy);

    wanted = {};
    listed.clear();
    stateKnown = false;
    boundVertexBuffer = boundIndexBuffer = 0;
    program.BeginScene();

    camera = Multiply(projection, view);
    viewing = view;
    reach = NearReach(projection);
    program.SetEye(EyeOf(view));
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(camera.data());
    SetTransform(kIdentity);
    if (gl.activeTexture != nullptr) {
        gl.activeTexture(GL_TEXTURE0);
    }
    if (!UsesProgram()) {
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
}

void RoomPainter::EndScene() {
    Flush();
    program.Off(counters);
    glDisable(GL_CULL_FACE);
    BindBuffer(GL_ARRAY_BUFFER, 0, boundVertexBuffer);
    BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0, boundIndexBuffer);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void RoomPainter::SetTransform(const MATRIX4& model) {
    toClip = Multiply(camera, model);
    toEye = Multiply(viewing, model);
    wanted.transform = model;
}

// The box is out of view if all its corners lie on the wrong side of one of the view's six planes.
bool RoomPainter::InView(VECTOR3 low, VECTOR3 high) {
    uint32_t wrongOfAll = 0x3F;
    for (uint32_t corner = 0; corner < 8; ++corner) {
        const VECTOR3 p{(corner & 1) != 0 ? high.x : low.x, (corner & 2) != 0 ? high.y : low.y,
                        (corner & 4) != 0 ? high.z : low.z};
        const VECTOR3 clip = TransformPoint(toClip, p);
        const float w = toClip[3] * p.x + toClip[7] * p.y + toClip[11] * p.z + toClip[15];
        uint32_t wrong = 0;
        wrong |= clip.x < -w ? 1U : 0U;
        wrong |= clip.x > w ? 2U : 0U;
        wrong |= clip.y < -w ? 4U : 0U;
        wrong |= clip.y > w ? 8U : 0U;
        wrong |= clip.z < -w ? 16U : 0U;
        wrong |= clip.z > w ? 32U : 0U;
        wrongOfAll &= wrong;
    }
    counters.objectsOutOfView += wrongOfAll != 0 ? 1U : 0U;
    return wrongOfAll == 0;
}

bool RoomPainter::EyeOutside(VECTOR3 low, VECTOR3 high) const {
    const VECTOR3 eye = EyeOf(toEye);
    return eye.x < low.x - reach || eye.x > high.x + reach || eye.y < low.y - reach ||
           eye.y > high.y + reach || eye.z < low.z - reach || eye.z > high.z + reach;
}

void RoomPainter::SetMaterial(const SURFACE_MATERIAL& material) {
    wanted.material = material;
    wanted.material.shininess = std::clamp(material.shininess, 0.0f, kMostShininess);
    wanted.brightness = 0.0f;
}

void RoomPainter::SelectTexture(uint32_t name, const TEXTURE_PLACE& place) {
    wanted.texture = name;
    wanted.place = place;
    if (name != 0) {
        wanted.material.diffuse = {};
    }
}

void RoomPainter::BindTexture(const TEXTURE_RECORD* record) {
    TEXTURE_PLACE place;
    if (record == nullptr || record->glTexture == 0) {
        SelectTexture(0, place);
        return;
    }
    place.scaleU = static_cast<float>(record->width) / static_cast<float>(record->texWidth);
    place.scaleV = static_cast<float>(record->height) / static_cast<float>(record->texHeight);
    SelectTexture(record->glTexture, place);
}

// The texture's filters are set here, since the full screen sets others.
void RoomPainter::BindPicture(const TEXTURE_RECORD& record, const EMU_VIDEO_FRAME& picture,
                              float brightness) {
    BindTexture(&record);
    if (record.glTexture == 0) {
        return;
    }
    wanted.brightness = brightness;
    wanted.place.offsetU =
        static_cast<float>(picture.visibleX) / static_cast<float>(record.texWidth);
    wanted.place.offsetV =
        static_cast<float>(picture.visibleY) / static_cast<float>(record.texHeight);
    glBindTexture(GL_TEXTURE_2D, record.glTexture);
    sent.texture = record.glTexture;
    ++counters.textureBinds;
    const bool smaller = Settings().GetBool(L"emu_gameroomfilter");
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                    smaller ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    if (Gl().largestAnisotropy > 0.0f) {
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, anisotropy);
    }
}

void RoomPainter::BindBuffer(GLenum target, uint32_t name, uint32_t& bound) {
    if (name != bound) {
        gl.bindBuffer(target, name);
        bound = name;
    }
}

void RoomPainter::DrawTriangles(uint32_t indexBuffer, const void* indices, int32_t count) {
    if (count > 0) {
        listed.push_back(wanted);
        listed.back().indexBuffer = indexBuffer;
        listed.back().indices = indices;
        listed.back().count = count;
    }
}

void RoomPainter::Flush() {
    std::ranges::stable_sort(listed, {}, [](const DRAW& draw) {
        const LIT_SURFACE surface = draw.Surface();
        return std::tuple(surface.fTV != 0.0f, surface.textured, surface.glossy);
    });
    for (const DRAW& draw : listed) {
        Send(draw);
        glDrawElements(GL_TRIANGLES, draw.count, GL_UNSIGNED_SHORT, draw.indices);
        ++counters.drawCalls;
        counters.triangles += static_cast<uint32_t>(draw.count) / 3;
    }
    listed.clear();
}

void RoomPainter::Send(const DRAW& draw) {
    SendTransform(draw.transform);
    SendArrays(draw.arrays);
    SendMaterial(draw.material);
    SendTexture(draw.texture, draw.place);
    SendBackFaces(draw.hidesBackFaces);
    BindBuffer(GL_ELEMENT_ARRAY_BUFFER, draw.indexBuffer, boundIndexBuffer);
    if (UsesProgram()) {
        program.Use(draw.Surface(), counters);
    }
    stateKnown = true;
}

void RoomPainter::SendTransform(const MATRIX4& transform) {
    if (!stateKnown || transform != sent.transform) {
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixf(transform.data());
        sent.transform = transform;
        ++counters.matrixLoads;
    }
}

void RoomPainter::SendArrays(const VERTEX_ARRAYS& arrays) {
    if (stateKnown && arrays == sent.arrays) {
        return;
    }
    BindBuffer(GL_ARRAY_BUFFER, arrays.buffer, boundVertexBuffer);
    glVertexPointer(3, GL_FLOAT, 0, arrays.positions);
    glTexCoordPointer(2, GL_FLOAT, 0, arrays.texCoords);
    const bool hasNormals = arrays.HasNormals();
    if (hasNormals) {
        glNormalPointer(GL_FLOAT, 0, arrays.normals);
    }
    if (!stateKnown || hasNormals != sent.arrays.HasNormals()) {
        hasNormals ? glEnableClientState(GL_NORMAL_ARRAY) : glDisableClientState(GL_NORMAL_ARRAY);
    }
    sent.arrays = arrays;
}

void RoomPainter::SendColour(GLenum which, const std::array<float, 3>& value,
                             std::array<float, 3>& was) {
    if (stateKnown && value == was) {
        return;
    }
    const GLfloat rgba[4]{value[0], value[1], value[2], 1.0f};
    glMaterialfv(GL_FRONT, which, rgba);
    was = value;
    ++counters.materialWrites;
}

void RoomPainter::SendMaterial(const SURFACE_MATERIAL& material) {
    SURFACE_MATERIAL& was = sent.material;
    if (!stateKnown || material.diffuse != was.diffuse) {
        // What the fixed pipeline shows, without its own lighting.
        glColor4f(material.diffuse[0], material.diffuse[1], material.diffuse[2], 1.0f);
    }
    SendColour(GL_DIFFUSE, material.diffuse, was.diffuse);
    SendColour(GL_SPECULAR, material.specular, was.specular);
    const float grey = material.emission;
    if (!stateKnown || grey != was.emission) {
        const GLfloat rgba[4]{grey, grey, grey, 1.0f};
        glMaterialfv(GL_FRONT, GL_EMISSION, rgba);
        was.emission = grey;
        ++counters.materialWrites;
    }
    if (!stateKnown || material.shininess != was.shininess) {
        glMaterialf(GL_FRONT, GL_SHININESS, material.shininess);
        was.shininess = material.shininess;
        ++counters.materialWrites;
    }
}

void RoomPainter::SendTexture(uint32_t texture, const TEXTURE_PLACE& place) {
    if (!stateKnown || texture != sent.texture) {
        glBindTexture(GL_TEXTURE_2D, texture);
        sent.texture = texture;
        ++counters.textureBinds;
    }
    if (!stateKnown || place != sent.place) {
        const MATRIX4 matrix{
            place.scaleU,  0, 0, 0, 0, place.scaleV, 0, 0, 0, 0, 1, 0, place.offsetU,
            place.offsetV, 0, 1};
        glMatrixMode(GL_TEXTURE);
        glLoadMatrixf(matrix.data());
        glMatrixMode(GL_MODELVIEW);
        sent.place = place;
        ++counters.matrixLoads;
    }
}

void RoomPainter::SendBackFaces(bool hide) {
    if (!stateKnown || hide != sent.hidesBackFaces) {
        hide ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
        sent.hidesBackFaces = hide;
    }
}
