// A context in a window of 128 x 96 pixels. A test of a smaller screen draws into its lower left, where
// OpenGL's viewport begins.
#pragma once

#include "display/gl.h"
#include "display/texture.h"

#include "support/gl_context.h"
#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

inline constexpr uint32_t kBlack = 0xFF000000;
inline constexpr uint32_t kWhite = 0xFFFFFFFF;
inline constexpr uint32_t kRed = 0xFFFF0000;
inline constexpr uint32_t kGreen = 0xFF00FF00;
inline constexpr uint32_t kBlue = 0xFF0000FF;

class DisplayTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(context.Ready()) << context.Error();
        std::string error;
        ASSERT_TRUE(GlStart(error)) << error;
    }

    // OpenGL keeps its first error until it is read.
    void TearDown() override {
        if (context.Ready()) {
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        }
    }

    static void ClearScreen(uint32_t rgb) {
        const auto part = [rgb](int shift) {
            return static_cast<float>(rgb >> shift & 0xFF) / 255;
        };
        glClearColor(part(16), part(8), part(0), 0.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    // The whole allocated texture, top row first.
    static std::vector<uint32_t> Texels(const TEXTURE_RECORD& record) {
        std::vector<uint32_t> texels(size_t{record.texWidth} * record.texHeight);
        glBindTexture(GL_TEXTURE_2D, record.glTexture);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
        return texels;
    }

    static int LevelWidth(const TEXTURE_RECORD& record, int level) {
        GLint width = 0;
        glBindTexture(GL_TEXTURE_2D, record.glTexture);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
        return width;
    }

    GlContext context{128, 96};
};
