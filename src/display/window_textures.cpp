#include "display/window_textures.h"

#include <GL/gl.h>

void WindowTextures::Create(uint32_t id, int32_t width, int32_t height) {
    Destroy(id);
    if (width <= 0 || height <= 0 || textures.size() >= kMostWindowTextures) {
        return;
    }
    TEXTURE_RECORD record{};
    record.width = static_cast<uint32_t>(width);
    record.height = static_cast<uint32_t>(height);
    if (CreateTexture(record, false)) {
        textures.emplace(id, record);
    }
}

void WindowTextures::Destroy(uint32_t id) {
    const auto found = textures.find(id);
    if (found != textures.end()) {
        DestroyTexture(found->second);
        textures.erase(found);
    }
}

void WindowTextures::Upload(uint32_t id, const uint32_t* pixels, int32_t stride) {
    const auto found = textures.find(id);
    if (found == textures.end() || stride <= 0) {
        return;
    }
    const TEXTURE_RECORD& record = found->second;
    if (UploadTexture(record, pixels, record.width, record.height, static_cast<uint32_t>(stride))) {
        ++uploads;
    }
}

void WindowTextures::Draw(uint32_t id, int32_t sourceX, int32_t sourceY, int32_t x, int32_t y,
                          int32_t width, int32_t height) const {
    const auto found = textures.find(id);
    if (found == textures.end()) {
        return;
    }
    const TEXTURE_RECORD& record = found->second;
    const auto across = static_cast<float>(record.texWidth);
    const auto down = static_cast<float>(record.texHeight);
    const float textureLeft = static_cast<float>(sourceX) / across;
    const float textureTop = static_cast<float>(sourceY) / down;
    const float textureRight = static_cast<float>(sourceX + width) / across;
    const float textureBottom = static_cast<float>(sourceY + height) / down;
    const auto left = static_cast<float>(x);
    const auto top = static_cast<float>(y);
    const auto right = static_cast<float>(x + width);
    const auto bottom = static_cast<float>(y + height);

    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, record.glTexture);
    SetTextureFilter(TextureFilter::kNearest);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glColor4ub(255, 255, 255, 255);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBegin(GL_QUADS);
    glTexCoord2f(textureLeft, textureTop);
    glVertex2f(left, top);
    glTexCoord2f(textureRight, textureTop);
    glVertex2f(right, top);
    glTexCoord2f(textureRight, textureBottom);
    glVertex2f(right, bottom);
    glTexCoord2f(textureLeft, textureBottom);
    glVertex2f(left, bottom);
    glEnd();
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}

bool WindowTextures::Size(uint32_t id, int32_t& width, int32_t& height) const {
    const auto found = textures.find(id);
    if (found == textures.end()) {
        return false;
    }
    width = static_cast<int32_t>(found->second.width);
    height = static_cast<int32_t>(found->second.height);
    return true;
}

void WindowTextures::End() {
    for (auto& [id, record] : textures) {
        DestroyTexture(record);
    }
    textures.clear();
}
