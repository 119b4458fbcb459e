#include "display/display_fixture.h"
#include "display/gl.h"
#include "display/gl_private.h"

namespace {

using Gl21 = DisplayTest;

TEST(GlVersion, TwoPointOneIsTheLeast) {
    const struct {
        const char* version;
        bool serves;
    } rows[] = {
        {"2.1",                                     true },
        {"2.1 Mesa 22.3.6",                         true },
        {"4.5 (Compatibility Profile) Mesa 22.3.6", true },
        {"3.0",                                     true },
        {"10.0",                                    true },
        {"2.0.1 vendor",                            false},
        {"1.4 (2.1 Mesa 22.3.6)",                   false},
        {"OpenGL ES 3.2 Mesa 22.3.6",               false},
        {"2",                                       false},
        {"2.",                                      false},
        {"",                                        false},
    };
    for (const auto& row : rows) {
        std::string error;
        EXPECT_EQ(GlVersionServes(row.version, error), row.serves) << row.version;
        EXPECT_EQ(error.empty(), row.serves) << row.version;
    }
}

TEST(GlVersion, RefusalNamesWhatTheDriverOffersAndWhatIsNeeded) {
    std::string error;
    EXPECT_FALSE(GlVersionServes("1.4 Old", error));
    EXPECT_NE(error.find("1.4 Old"), std::string::npos);
    EXPECT_NE(error.find("OpenGL 2.1"), std::string::npos);
}

TEST(GlExtensions, NameCountsAsAWholeWordOnly) {
    EXPECT_TRUE(GlHasWord("GL_a GL_b GL_c", "GL_a"));
    EXPECT_TRUE(GlHasWord("GL_a GL_b GL_c", "GL_b"));
    EXPECT_TRUE(GlHasWord("GL_a GL_b GL_c", "GL_c"));
    EXPECT_TRUE(GlHasWord("GL_a GL_b GL_c ", "GL_c"));
    EXPECT_FALSE(GlHasWord("GL_ab GL_cd", "GL_a"));
    EXPECT_FALSE(GlHasWord("GL_ab GL_cd", "L_cd"));
    EXPECT_FALSE(GlHasWord("", "GL_a"));
}

TEST(GlWithoutContext, IsRefusedWithAMessage) {
    std::string error;
    EXPECT_FALSE(GlStart(error));
    EXPECT_EQ(error, "there is no OpenGL context");
    EXPECT_EQ(Gl().largestTexture, 0U);
}

TEST(GlCoreProfile, IsRefusedBecauseItLacksTheFixedPipeline) {
    const GlContext context(16, 16, GlProfile::kCore);
    ASSERT_TRUE(context.Ready()) << context.Error();
    std::string error;
    EXPECT_FALSE(GlStart(error));
    EXPECT_NE(error.find("core profile"), std::string::npos) << error;
}

TEST_F(Gl21, CapabilitiesComeFromTheContext) {
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    EXPECT_EQ(Gl().largestTexture, static_cast<uint32_t>(largest));
    EXPECT_EQ(Gl().renderer, reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    const std::string extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    EXPECT_EQ(Gl().anyTextureSize,
              extensions.find("GL_ARB_texture_non_power_of_two") != std::string::npos);
    EXPECT_EQ(Gl().largestAnisotropy >= 1.0f,
              extensions.find("GL_EXT_texture_filter_anisotropic") != std::string::npos);
    EXPECT_TRUE(Gl().mipmaps) << "part of OpenGL since 1.4";
}

TEST_F(Gl21, OddTextureSizesCanBeForbiddenUntilTheNextStart) {
    const bool before = Gl().anyTextureSize;
    GlForbidOddTextureSizes();
    EXPECT_FALSE(Gl().anyTextureSize);
    std::string error;
    ASSERT_TRUE(GlStart(error)) << error;
    EXPECT_EQ(Gl().anyTextureSize, before);
}

} // namespace
