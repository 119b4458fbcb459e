#include "base/random.h"
#include "display/gl_private.h"
#include "display/screen_reader.h"
#include "room/room_camera.h"
#include "room/room_fixture.h"
#include "room/room_objects.h"
#include "room/room_renderer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr uint32_t kWide = 128;
constexpr uint32_t kHigh = 96;
constexpr uint32_t kAcross = 16; // pixels of a television's picture
constexpr uint32_t kDown = 12;

using Slots = std::vector<size_t>;

int Difference(uint32_t a, uint32_t b) {
    int most = 0;
    for (const int shift : {0, 8, 16}) {
        const int one = static_cast<int>(a >> shift & 0xFF);
        const int other = static_cast<int>(b >> shift & 0xFF);
        most = std::max(most, std::abs(one - other));
    }
    return most;
}

class RoomPictures : public RoomGlTest {
protected:
    void SetUp() override {
        RoomGlTest::SetUp();
        files = RoomOfBoxes(1, 16);
        camera.SetUp(static_cast<float>(kWide) / kHigh, {250, 130, 790}, {250, 100, 0});
    }

    void TearDown() override {
        EndPictures();
        renderer.Release();
        RoomGlTest::TearDown();
    }

    void Start(const GlLoader& loader = WindowLibraryLoader) {
        ROOM_SERVICES services = Services();
        services.loader = loader;
        renderer.InitRoom(services);
        objects.Build([this](std::string_view file) { return renderer.LoadModel(file); });
    }

    void LookFrom(VECTOR3 from, VECTOR3 at) {
        camera.SetUp(static_cast<float>(kWide) / kHigh, from, at);
    }

    std::vector<uint32_t> Draw() {
        renderer.Draw({kWide, kHigh, camera.Projection(), camera.View(), ceilingLight}, objects);
        return ReadScreen(kWide, kHigh);
    }

    // Each scene compiles one program at most for the lights that shine.
    void DrawUntilCompiled() {
        for (int i = 0; i < 10; ++i) {
            Draw();
        }
    }

    // The pixel at which a point of the room is seen.
    uint32_t ColourAt(const std::vector<uint32_t>& screen, VECTOR3 point) const {
        const VECTOR3 eye = TransformPoint(camera.View(), point);
        const MATRIX4 projection = camera.Projection();
        const float x = projection[0] * eye.x / -eye.z;
        const float y = projection[5] * eye.y / -eye.z;
        const auto column = static_cast<int>((x + 1) / 2 * kWide);
        const auto row = static_cast<int>((1 - y) / 2 * kHigh);
        EXPECT_TRUE(column >= 0 && column < static_cast<int>(kWide)) << column;
        EXPECT_TRUE(row >= 0 && row < static_cast<int>(kHigh)) << row;
        return screen[static_cast<size_t>(row) * kWide + static_cast<size_t>(column)];
    }

    // A picture plays on the television in this slot; its active window is all but `cut` columns at the left.
    void Play(size_t slot, const std::vector<uint32_t>& pixels, uint32_t cut = 0) {
        std::vector<uint32_t> copy = pixels;
        EMU_VIDEO_FRAME frame{};
        frame.pixels = copy.data();
        frame.width = kAcross;
        frame.height = kDown;
        frame.visibleX = cut;
        frame.visibleWidth = kAcross - cut;
        frame.visibleHeight = kDown;
        auto session = std::make_unique<SESSION_PICTURE>();
        StartSessionPicture(*session, pixels.size());
        session->inRoom = true;
        ASSERT_TRUE(UploadPicture(frame, *session, PictureScaler::kNone));
        objects.Attach(objects.Televisions()[slot], *session);
        sessions.push_back(std::move(session));
    }
    void Play(size_t slot, uint32_t colour) {
        Play(slot, std::vector<uint32_t>(size_t{kAcross} * kDown, colour));
    }

    void EndPictures() {
        for (const auto& session : sessions) {
            EndSessionPicture(*session);
        }
        sessions.clear();
    }

    CRoomCamera camera;
    CRoomObjects objects;
    RoomRenderer renderer;
    std::vector<std::unique_ptr<SESSION_PICTURE>> sessions;
    bool ceilingLight = true;
};

TEST_F(RoomPictures, FloorTilesFiveTimesAcrossAndEightAlong) {
    // The image's left half is red, its right half blue.
    std::vector<uint32_t> halves;
    for (int i = 0; i < 16 * 16; ++i) {
        halves.push_back(i % 16 < 8 ? kRed : kBlue);
    }
    files.clear();
    files["floor2.jpg"] = PngFile(16, 16, halves);
    Start();
    LookFrom({250, 250, 401}, {250, 0, 400});
    const std::vector<uint32_t> screen = Draw();
    for (int tile = 1; tile < 4; ++tile) {
        const auto left = static_cast<float>(tile) * 100;
        const uint32_t first = ColourAt(screen, {left + 25, 0, 400});
        const uint32_t second = ColourAt(screen, {left + 75, 0, 400});
        EXPECT_GT(first >> 16 & 0xFF, 50U) << tile;
        EXPECT_LT(first & 0xFF, 20U) << tile;
        EXPECT_GT(second & 0xFF, 50U) << tile;
        EXPECT_LT(second >> 16 & 0xFF, 20U) << tile;
    }
}

TEST_F(RoomPictures, PicturesHangUprightOnTheFarWall) {
    // Red, green / blue, white.
    std::vector<uint32_t> quarters;
    for (int i = 0; i < 16 * 16; ++i) {
        const bool right = i % 16 >= 8;
        const bool low = i / 16 >= 8;
        quarters.push_back(low ? (right ? kWhite : kBlue) : (right ? kGreen : kRed));
    }
    files.clear();
    files["genesisad.jpg"] = files["thewizard.jpg"] = PngFile(16, 16, quarters);
    Settings().SetBool(L"app_lighting", false);
    Start();
    for (const float middle : {200.0f, 600.0f}) {
        LookFrom({250, 180, middle}, {499, 180, middle});
        const std::vector<uint32_t> screen = Draw();
        // Someone who faces +x has +z at the right hand.
        EXPECT_EQ(ColourAt(screen, {499, 210, middle - 25}), kRed);
        EXPECT_EQ(ColourAt(screen, {499, 210, middle + 25}), kGreen);
        EXPECT_EQ(ColourAt(screen, {499, 150, middle - 25}), kBlue);
        EXPECT_EQ(ColourAt(screen, {499, 150, middle + 25}), kWhite);
    }
}

TEST_F(RoomPictures, WallsAreLitByTheLampAndDarkWithoutIt) {
    files.clear();
    Start();
    LookFrom({250, 130, 790}, {250, 130, 0});
    const uint32_t lit = ColourAt(Draw(), {250, 130, 0});
    // From (250, 250, 400): d 417.6, attenuation 1 / (1 + 0.0209 + 1.3951) = 0.4139; the wall faces the lamp with
    // cosine 400 / 417.6: 0.5 * 0.4139 + 0.6 * 0.9578 * 0.4139 = 0.4448.
    EXPECT_LE(Difference(lit, 0xFF717171), 1);
    ceilingLight = false;
    EXPECT_EQ(ColourAt(Draw(), {250, 130, 0}), kBlack);
}

TEST_F(RoomPictures, FurnitureStandsInItsPlace) {
    Settings().SetBool(L"app_lighting", false);
    Start();
    const auto near = [&](VECTOR3 point, uint32_t light, uint32_t dark) {
        const uint32_t colour = ColourAt(Draw(), point);
        return std::min(Difference(colour, light), Difference(colour, dark)) < 12;
    };
    // The couch at x 400..486, z 300..500 by its rotation; the table at x 270..350, z 300..500.
    LookFrom({450, 240, 401}, {450, 0, 400});
    EXPECT_TRUE(near({450, 70, 330}, 0xFF3C9A9A, 0xFF348888));
    EXPECT_TRUE(near({450, 70, 470}, 0xFF3C9A9A, 0xFF348888));
    LookFrom({300, 240, 401}, {300, 0, 400});
    EXPECT_TRUE(near({300, 49, 320}, 0xFF9A6A42, 0xFF8A5A36));
    EXPECT_TRUE(near({240, 0, 400}, 0xFFE0A860, 0xFFD89C54)) << "the floor beside it";
    // The flat set at x 0..18.5, z 300..500 faces +x.
    LookFrom({250, 130, 400}, {0, 130, 400});
    EXPECT_TRUE(near({18.5f, 100, 330}, 0xFF181C20, 0xFF14181C)) << "its dark glass";
    // The lamp's fixture around (250, 257, 400), seen from below.
    LookFrom({250, 130, 450}, {250, 257, 400});
    EXPECT_TRUE(near({250, 242, 400}, 0xFFFFF0D0, 0xFFF0E0C0));
}

TEST_F(RoomPictures, LogoHangsOnTheWallAndFacesTheRoom) {
    files.erase("tv2.3ds"); // a box would hide it
    Settings().SetBool(L"app_lighting", false);
    Start();
    LookFrom({250, 180, 400}, {0, 180, 400});
    // 45 by 45 and 4 thick, around (5, 220, 400).
    const std::vector<uint32_t> screen = Draw();
    for (const float z : {381.0f, 400.0f, 419.0f}) {
        const uint32_t colour = ColourAt(screen, {7, 220, z});
        EXPECT_LE(std::min(Difference(colour, 0xFFF3EAD3), Difference(colour, 0xFFE0D8C0)), 12);
    }
    EXPECT_EQ(ColourAt(screen, {0, 220, 430}), kWhite) << "the wall beside it";
}

TEST_F(RoomPictures, TelevisionShowsItsPictureUpright) {
    std::vector<uint32_t> quarters;
    for (uint32_t i = 0; i < kAcross * kDown; ++i) {
        const bool right = i % kAcross >= kAcross / 2;
        const bool low = i / kAcross >= kDown / 2;
        quarters.push_back(low ? (right ? kWhite : kBlue) : (right ? kGreen : kRed));
    }
    Start();
    Play(0, quarters);
    ceilingLight = false;
    // The set at x 25..102, z 60..130 on the unit of height 70; seen from before it.
    LookFrom({63.5f, 111, 250}, {63.5f, 111, 130});
    const std::vector<uint32_t> screen = Draw();
    const auto shown = [&](float dx, float dy) {
        return ColourAt(screen, {63.5f + dx, 111 + dy, 130});
    };
    // It shines at least at its brightness of 0.8, and no colour runs into another.
    EXPECT_GE(shown(-15, 15) >> 16 & 0xFF, 203U);
    EXPECT_LT(shown(-15, 15) & 0xFFFF, 0x0100U);
    EXPECT_GE(shown(15, 15) >> 8 & 0xFF, 203U);
    EXPECT_LT(shown(15, 15) & 0xFF00FF, 0x10000U);
    EXPECT_GE(shown(-15, -15) & 0xFF, 203U);
    EXPECT_GE(shown(15, -15) >> 16 & 0xFF, 203U);
}

TEST_F(RoomPictures, OnlyTheTelevisionThatIsOnShowsAPicture) {
    Start();
    LookFrom({180, 111, 500}, {180, 111, 100});
    const VECTOR3 first{63.5f, 111, 130}; // slots 0 and 2 share one model
    const VECTOR3 third{303.5f, 111, 100};
    const std::vector<uint32_t> off = Draw();
    Play(0, kGreen);
    Play(2, kRed);
    const std::vector<uint32_t> both = Draw();
    EXPECT_GE(ColourAt(both, first) >> 8 & 0xFF, 203U);
    EXPECT_GE(ColourAt(both, third) >> 16 & 0xFF, 203U);
    objects.TurnOff(objects.Televisions()[0]);
    const std::vector<uint32_t> one = Draw();
    EXPECT_LT(ColourAt(one, first) >> 8 & 0xFF, 60U) << "dark glass again, in the other's light";
    EXPECT_GE(ColourAt(one, third) >> 16 & 0xFF, 203U);
    objects.TurnOff(objects.Televisions()[2]);
    EXPECT_EQ(Draw(), off);
}

TEST_F(RoomPictures, OnlyTheActiveWindowOfAPictureShows) {
    // A blank column of four at the left of a green picture.
    std::vector<uint32_t> pixels;
    for (uint32_t i = 0; i < kAcross * kDown; ++i) {
        pixels.push_back(i % kAcross < 4 ? kRed : kGreen);
    }
    pixels[kAcross - 1] = kGreen;
    Start();
    Play(0, pixels, 4);
    ceilingLight = false;
    LookFrom({63.5f, 111, 250}, {63.5f, 111, 130});
    const std::vector<uint32_t> screen = Draw();
    for (float dx = -35; dx <= 37; dx += 6) { // the first texel blends with its neighbour
        EXPECT_GE(ColourAt(screen, {63.5f + dx, 111, 130}) >> 8 & 0xFF, 150U) << dx;
        EXPECT_LT(ColourAt(screen, {63.5f + dx, 111, 130}) >> 16 & 0xFF, 60U) << dx;
    }
}

TEST_F(RoomPictures, AtMostFiveLightsShineTheLampFirst) {
    Start();
    const LightProgram& program = renderer.Painter().Program();
    Draw();
    EXPECT_EQ(program.LightCount(), 1U);
    EXPECT_FALSE(program.Lights()[0].shape.bSpot);
    for (const size_t slot : Slots{8, 6, 5, 3, 1, 0}) {
        Play(slot, slot == 8 ? kRed : kWhite);
    }
    Draw();
    ASSERT_EQ(program.LightCount(), 5U);
    EXPECT_FALSE(program.Lights()[0].shape.bSpot);
    // Slots 0, 1, 3 and 5; the type of 5 has another angle. Six and eight get no light.
    EXPECT_FLOAT_EQ(program.Lights()[3].shape.spotBall, 50);
    EXPECT_FLOAT_EQ(program.Lights()[4].shape.spotBall, 60);
    ceilingLight = false;
    Draw();
    ASSERT_EQ(program.LightCount(), 5U);
    EXPECT_TRUE(program.Lights()[0].shape.bSpot);
    EXPECT_FLOAT_EQ(program.Lights()[4].shape.spotBall, 60) << "slots 0, 1, 3, 5 and 6";
    for (const size_t slot : Slots{0, 1, 3, 5, 6}) {
        objects.TurnOff(objects.Televisions()[slot]);
    }
    Draw();
    EXPECT_EQ(program.LightCount(), 1U);
    EXPECT_FLOAT_EQ(program.Lights()[0].color[0], 0.25f) << "the flat set's red";
}

TEST_F(RoomPictures, PocketScreenFlickersBetweenItsBounds) {
    Start();
    SeedRandom(1);
    Play(7, kWhite);
    const CRoomObject& pocket = *objects.Find(objects.Televisions()[7]);
    float lowest = 0;
    float highest = -1;
    for (int i = 0; i < 200; ++i) {
        Draw();
        lowest = std::min(lowest, pocket.flicker);
        highest = std::max(highest, pocket.flicker);
        ASSERT_GE(pocket.flicker, -0.06f);
        ASSERT_LE(pocket.flicker, 0.0f);
        EXPECT_FLOAT_EQ(pocket.type->model->tvBrightness, 0.65f + pocket.flicker);
    }
    EXPECT_FLOAT_EQ(lowest, -0.06f);
    EXPECT_EQ(highest, 0.0f);
}

TEST_F(RoomPictures, OtherScreensDoNotFlicker) {
    Start();
    Play(1, kWhite);
    for (int i = 0; i < 20; ++i) {
        Draw();
        EXPECT_EQ(objects.Find(objects.Televisions()[1])->type->model->tvBrightness, 0.8f);
    }
}

TEST_F(RoomPictures, RoomDrawsWithoutShaders) {
    Start([](const char* name) {
        return std::string_view(name) == "glUseProgram" ? nullptr : WindowLibraryLoader(name);
    });
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_THAT(reports[0], HasSubstr("no shaders"));
    Play(0, kGreen);
    LookFrom({63.5f, 111, 250}, {63.5f, 111, 130});
    const std::vector<uint32_t> screen = Draw();
    EXPECT_EQ(ColourAt(screen, {63.5f, 111, 130}), kGreen);
    EXPECT_EQ(ColourAt(screen, {63.5f, 200, 0}), kWhite) << "the wall behind it";
    Settings().SetBool(L"app_lighting", false);
    EXPECT_EQ(Draw(), screen) << "as with the setting off";
}

TEST_F(RoomPictures, OddTextureSizesMakeNoDifference) {
    files = RoomOfBoxes(1, 24);
    Start();
    const std::vector<uint32_t> before = Draw();
    GlForbidOddTextureSizes();
    Start();
    const std::vector<uint32_t> after = Draw();
    size_t different = 0;
    for (size_t i = 0; i < before.size(); ++i) {
        different += Difference(before[i], after[i]) > 12 ? 1U : 0U;
    }
    EXPECT_LT(different, before.size() / 100) << "edges of the enlarged images";
}

TEST_F(RoomPictures, ArraysInMemoryMakeNoDifference) {
    Start();
    Play(3, kGreen);
    const std::vector<uint32_t> before = Draw();
    EndPictures();
    Start([](const char* name) {
        return std::string_view(name) == "glGenBuffers" ? nullptr : WindowLibraryLoader(name);
    });
    Play(3, kGreen);
    EXPECT_EQ(Draw(), before);
}

TEST_F(RoomPictures, LostContextIsMadeAgainWithEverythingInIt) {
    Start();
    const std::vector<uint32_t> before = Draw();
    renderer.Release();
    {
        const GlContext other(kWide, kHigh);
        ASSERT_TRUE(other.Ready());
        std::string error;
        ASSERT_TRUE(GlStart(error)) << error;
        renderer.InitRoom(Services());
        EXPECT_EQ(Draw(), before) << "the furniture stayed";
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        renderer.Release();
    }
    // The first context is no longer current; nothing of the renderer's is left in it.
}

TEST_F(RoomPictures, MissingAndDamagedModelsAreLeftOut) {
    files.erase("couch.3ds");
    files["tv.3ds"].resize(files["tv.3ds"].size() / 2);
    Start();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_THAT(reports[0], HasSubstr("tv.3ds is damaged"));
    EXPECT_EQ(objects.FindType(104), nullptr);
    EXPECT_EQ(objects.FindType(100), nullptr);
    Draw();
    EXPECT_EQ(renderer.LoadModel("nothing.3ds"), nullptr);
    EXPECT_EQ(reports.size(), 1U);
}

TEST_F(RoomPictures, TheSpareStandsInForWhatIsDamaged) {
    const RoomFiles whole = files;
    files["tv.3ds"].resize(files["tv.3ds"].size() / 2);
    files["tv.png"] = {1, 2, 3};
    ROOM_SERVICES services = Services();
    services.readSpare = [&whole](std::string_view name) {
        const auto found = whole.find(std::string(name));
        return found != whole.end() ? found->second : Bytes();
    };
    renderer.InitRoom(services);
    objects.Build([this](std::string_view file) { return renderer.LoadModel(file); });
    EXPECT_THAT(reports, ElementsAre(AllOf(HasSubstr("tv.3ds is damaged"), HasSubstr("built-in")),
                                     AllOf(HasSubstr("tv.png"), HasSubstr("built-in"))));
    const std::vector<uint32_t> repaired = Draw();
    files = whole;
    Start();
    EXPECT_EQ(Draw(), repaired);
    EXPECT_EQ(reports.size(), 2U);
}

TEST_F(RoomPictures, ASpareThatIsTheSameFileIsNone) {
    files["tv.3ds"].resize(files["tv.3ds"].size() / 2);
    ROOM_SERVICES services = Services();
    services.readSpare = services.readFile;
    renderer.InitRoom(services);
    objects.Build([this](std::string_view file) { return renderer.LoadModel(file); });
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_THAT(reports[0], Not(HasSubstr("built-in")));
    EXPECT_EQ(objects.FindType(100), nullptr);
}

TEST_F(RoomPictures, EmptyRoomIsABox) {
    files.clear();
    Start();
    Draw();
    EXPECT_EQ(renderer.Counters().drawCalls, 4U) << "floor, walls and two pictures";
}

TEST_F(RoomPictures, SceneLeavesTheStateOfFlatDrawing) {
    Start();
    Play(0, kGreen);
    Draw();
    const auto integer = [](GLenum name) {
        GLint value = -1;
        glGetIntegerv(name, &value);
        return value;
    };
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    EXPECT_EQ(integer(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
    EXPECT_EQ(integer(GL_MATRIX_MODE), GL_MODELVIEW);
    for (const GLenum state : {GLenum{GL_DEPTH_TEST}, GLenum{GL_LIGHTING}, GLenum{GL_VERTEX_ARRAY},
                               GLenum{GL_NORMAL_ARRAY}, GLenum{GL_TEXTURE_COORD_ARRAY}}) {
        EXPECT_EQ(glIsEnabled(state), GL_FALSE) << state;
    }
    std::vector<float> matrix(16);
    glGetFloatv(GL_TEXTURE_MATRIX, matrix.data());
    EXPECT_THAT(matrix, ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
}

TEST_F(RoomPictures, NothingIsSentTwice) {
    Start();
    for (const size_t slot : Slots{0, 1, 2, 3}) {
        Play(slot, kWhite);
    }
    DrawUntilCompiled();
    const ROOM_COUNTERS& counters = renderer.Counters();
    // 12 objects, lamp and logo; two materials each at most; and four draws of the room itself.
    EXPECT_LE(counters.drawCalls, 32U);
    EXPECT_GE(counters.drawCalls, 20U);
    EXPECT_EQ(counters.bytesUploaded, 0U) << "everything was uploaded once";
    EXPECT_EQ(counters.uniformWrites, 0U) << "no light has moved";
    // A bind for each draw at most, and one more for each picture's filters.
    EXPECT_LE(counters.textureBinds, counters.drawCalls + 4);
    EXPECT_LE(counters.materialWrites, counters.drawCalls * 2);
    // Glossy and textured furniture, the pictures, the floor and its like, the plain walls; and off at the end.
    EXPECT_LE(counters.programChanges, 8U);
    EXPECT_LE(counters.matrixLoads, 36U);
    // A step to the side moves the eye, which the programs of glossy surfaces know.
    LookFrom({260, 130, 790}, {260, 100, 0});
    Draw();
    EXPECT_LE(renderer.Counters().uniformWrites, 2U);
    // A new colour goes to each program in use: plain, textured and glossy surfaces, and the screen's picture.
    Play(0, kRed);
    Draw();
    EXPECT_LE(renderer.Counters().uniformWrites, 4U);
}

// The program's own furniture, from all around and from within it.
TEST_F(RoomPictures, HiddenBackFacesMakeNoDifference) {
    files.clear();
    const auto folder = std::filesystem::path(OMBRELUNE_SOURCE_FOLDER) / "assets/objects";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        files[entry.path().filename().string()].assign(std::istreambuf_iterator<char>(file), {});
    }
    Start();
    Play(0, kWhite);
    struct VIEW {
        VECTOR3 from;
        VECTOR3 at;
    };
    constexpr VIEW kViews[] = {
        {{470, 130, 760}, {150, 60, 100}},
        {{330, 125, 690}, {400, 60, 300}},
        {{380, 118, 420}, {0, 100, 400} },
        {{360, 100, 430}, {320, 49, 385}},
        {{250, 125, 520}, {50, 110, 770}},
        {{120, 125, 520}, {440, 90, 770}},
        {{183, 100, 190}, {183, 105, 40}},
        {{20, 20, 200},   {480, 30, 500}},
        {{250, 255, 200}, {250, 0, 420} },
        {{440, 50, 400},  {0, 60, 350}  }, // in the couch
        {{250, 40, 60},   {250, 40, 700}},
        {{300, 46, 400},  {300, 60, 100}}, // in the unit, in the table
    };
    DrawUntilCompiled(); // the general program may round the other way
    std::vector<std::vector<uint32_t>> pictures;
    for (const VIEW& view : kViews) {
        LookFrom(view.from, view.at);
        pictures.push_back(Draw());
    }
    // The camera is always within boxes of this size, so that all is drawn.
    for (const auto& object : objects.All()) {
        for (Model_3DS::Object& mesh : object->type->model->objects) {
            mesh.low = {-10000, -10000, -10000};
            mesh.high = {10000, 10000, 10000};
        }
    }
    for (size_t i = 0; i < std::size(kViews); ++i) {
        LookFrom(kViews[i].from, kViews[i].at);
        const std::vector<uint32_t> all = Draw();
        size_t different = 0;
        for (size_t p = 0; p < all.size(); ++p) {
            different += all[p] != pictures[i][p] ? 1U : 0U;
        }
        // A back face that is seen all but from its edge can win a pixel from the front face beside it: its
        // depth is too steep to be exact. So the pictures are the same but for some dark specks.
        EXPECT_LE(different, all.size() / 400) << "view " << i;
    }
}

TEST_F(RoomPictures, WhatIsBehindTheCameraIsNotDrawn) {
    Start();
    LookFrom({250, 130, 790}, {250, 100, 0});
    Draw();
    const uint32_t seen = renderer.Counters().drawCalls;
    LookFrom({250, 130, 20}, {250, 130, 0});
    Draw();
    EXPECT_LT(renderer.Counters().drawCalls, seen);
    EXPECT_GT(renderer.Counters().objectsOutOfView, 4U);
}

} // namespace
