#include "room/model_3ds.h"
#include "room/room_scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using testing::ElementsAre;
using testing::FloatEq;
using testing::HasSubstr;
using testing::Pointwise;

class ModelFile3ds : public testing::Test {
protected:
    bool Load(const Bytes& file) {
        return model.Load(file.data(), file.size(), "table.3ds", error);
    }

    void ExpectRefused(const Bytes& file, const char* why) {
        // A model that held something before must not keep it.
        const Bytes good = ModelFile(NamedMaterial("wood") + triangle.Object("good"));
        ASSERT_TRUE(Load(good)) << error;
        EXPECT_FALSE(Load(file)) << why;
        EXPECT_THAT(error, HasSubstr("table.3ds"));
        EXPECT_THAT(error, HasSubstr(why));
        EXPECT_TRUE(model.objects.empty());
        EXPECT_TRUE(model.materials.empty());
        EXPECT_EQ(model.numObjects, 0);
        EXPECT_EQ(model.totalFaces, 0);
    }

    Model_3DS::Material LoadMaterial(const Bytes& parts) {
        EXPECT_TRUE(Load(ModelFile(NamedMaterial("wood", parts)))) << error;
        return model.materials.empty() ? Model_3DS::Material{} : model.materials[0];
    }

    MeshBytes triangle{
        {0,  0, 0, 2, 0, 0, 0, 0, 3},
        {},
        {{0, 1, 2}},
        {{"wood", {0}}},
    };
    Model_3DS model;
    std::string error;
};

TEST_F(ModelFile3ds, HeightIsTheFilesZ) {
    MeshBytes mesh = triangle;
    mesh.places = {1, 2, 3, 4, 5, 6, 7, 8, 10};
    ASSERT_TRUE(Load(ModelFile(NamedMaterial("wood") + mesh.Object("one")))) << error;
    const Model_3DS::Object& object = model.objects.at(0);
    EXPECT_EQ(object.name, "one");
    EXPECT_EQ(object.numVerts, 3);
    EXPECT_THAT(object.vertices, ElementsAre(1, 3, -2, 4, 6, -5, 7, 10, -8));
    EXPECT_EQ(object.low, (VECTOR3{1, 3, -8}));
    EXPECT_EQ(object.high, (VECTOR3{7, 10, -2}));
}

TEST_F(ModelFile3ds, TextureCoordinatesHaveVTurnedRound) {
    MeshBytes mesh = triangle;
    mesh.coordinates = {0.25f, 0, 0.5f, 1, 3, 0.75f};
    ASSERT_TRUE(Load(ModelFile(NamedMaterial("wood") + mesh.Object("one")))) << error;
    EXPECT_TRUE(model.objects[0].textured);
    EXPECT_EQ(model.objects[0].numTexCoords, 3);
    EXPECT_THAT(model.objects[0].texCoords, ElementsAre(0.25f, 1, 0.5f, 0, 3, 0.25f));
}

TEST_F(ModelFile3ds, WithoutTextureCoordinatesThePlaceServes) {
    MeshBytes mesh = triangle;
    mesh.places = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    ASSERT_TRUE(Load(ModelFile(NamedMaterial("wood") + mesh.Object("one")))) << error;
    EXPECT_FALSE(model.objects[0].textured);
    EXPECT_EQ(model.objects[0].numTexCoords, 3);
    EXPECT_THAT(model.objects[0].texCoords, ElementsAre(1, 3, 4, 6, 7, 9)) << "x and height";
}

TEST_F(ModelFile3ds, NormalsPointOutOfCounterClockwiseFacesAndHaveLengthOne) {
    // In the file's axes this triangle is seen counter-clockwise from -y, which is +z once loaded.
    ASSERT_TRUE(Load(ModelFile(NamedMaterial("wood") + triangle.Object("one")))) << error;
    EXPECT_THAT(model.objects[0].normals, ElementsAre(0, 0, 1, 0, 0, 1, 0, 0, 1));
}

TEST_F(ModelFile3ds, EveryFaceSharesInItsVerticesNormalsByItsSize) {
    // A floor of 4 by 4 and a wall of 2 by 4 (height) meet in an edge. Twice their areas, 16 and 8, weight
    // the normals up (0, 1, 0) and towards the viewer (0, 0, 1) of the shared vertices.
    MeshBytes mesh;
    mesh.places = {0, 0, 0, 4, 0, 0, 4, 4, 0, 0, 0, -2};
    mesh.faces = {
        {0, 1, 2}, // flat, its normal up
        {1, 0, 3}, // upright, its normal towards -y of the file
    };
    mesh.groups = {
        {"wood", {0, 1}}
    };
    ASSERT_TRUE(Load(ModelFile(NamedMaterial("wood") + mesh.Object("one")))) << error;
    const std::vector<float>& n = model.objects[0].normals;
    // Face 1: (1 -> 0) x (1 -> 3) = (-4, 0, 0) x (-4, -2, 0) = (0, 0, 8).
    const float length = std::sqrt(16.0f * 16 + 8 * 8);
    EXPECT_NEAR(n[1], 16 / length, 1e-6);
    EXPECT_NEAR(n[2], 8 / length, 1e-6);
    EXPECT_FLOAT_EQ(n[7], 1) << "the third vertex belongs to the flat face alone";
    EXPECT_FLOAT_EQ(n[11], 1) << "and the fourth to the upright one";
}

TEST_F(ModelFile3ds, FaceWithoutAreaLeavesANormalOfLengthZero) {
    MeshBytes mesh = triangle;
    mesh.faces = {
        {0, 1, 1}
    };
    ASSERT_TRUE(Load(ModelFile(NamedMaterial("wood") + mesh.Object("one")))) << error;
    EXPECT_THAT(model.objects[0].normals, Pointwise(FloatEq(), std::vector<float>(9, 0.0f)));
}

TEST_F(ModelFile3ds, GroupsExpandTheirFacesToVertices) {
    MeshBytes mesh = triangle;
    mesh.faces = {
        {0, 1, 2},
        {2, 1, 0},
        {1, 2, 0}
    };
    mesh.groups = {
        {"glass", {2, 0}},
        {"wood",  {1}   }
    };
    ASSERT_TRUE(
        Load(ModelFile(NamedMaterial("wood") + NamedMaterial("glass") + mesh.Object("one"))))
        << error;
    const Model_3DS::Object& object = model.objects[0];
    EXPECT_EQ(object.numFaceIndices, 9);
    EXPECT_THAT(object.faces, ElementsAre(0, 1, 2, 2, 1, 0, 1, 2, 0));
    ASSERT_EQ(object.numMatFaces, 2);
    EXPECT_EQ(object.matFaces[0].materialIndex, 1);
    EXPECT_EQ(object.matFaces[0].numSubFaces, 6);
    EXPECT_THAT(object.matFaces[0].subFaces, ElementsAre(1, 2, 0, 0, 1, 2));
    EXPECT_EQ(object.matFaces[1].materialIndex, 0);
    EXPECT_THAT(object.matFaces[1].subFaces, ElementsAre(2, 1, 0));
}

TEST_F(ModelFile3ds, PartsMayLieInAnyOrder) {
    // The object before its material, and the faces before the vertices.
    const Bytes object =
        Chunk(0x4000, Name("one") + Chunk(0x4100, triangle.Faces() + triangle.Vertices()));
    ASSERT_TRUE(Load(ModelFile(object + NamedMaterial("wood")))) << error;
    EXPECT_EQ(model.objects[0].matFaces.at(0).subFaces.size(), 3U);
}

TEST_F(ModelFile3ds, UnknownChunksArePassedOver) {
    const Bytes other = Chunk(0x1234, {1, 2, 3});
    const Bytes object =
        Chunk(0x4000, Name("one") + other +
                          Chunk(0x4100, other + triangle.Vertices() + other + triangle.Faces()));
    const Bytes material = Chunk(0xAFFF, other + Chunk(0xA000, Name("wood")));
    const Bytes file = Chunk(0x0001, other + Chunk(0x3D3D, other + material + object) + other);
    ASSERT_TRUE(Load(file)) << error << " (the root's id does not matter)";
    EXPECT_EQ(model.numObjects, 1);
    EXPECT_EQ(model.numMaterials, 1);
}

TEST_F(ModelFile3ds, BytesAfterTheRootDoNotMatter) {
    ASSERT_TRUE(Load(ModelFile(NamedMaterial("wood")) + Bytes{1, 2, 3})) << error;
    EXPECT_EQ(model.numMaterials, 1);
}

TEST_F(ModelFile3ds, TotalsAreThoseOfAllObjects) {
    MeshBytes other = triangle;
    other.places.insert(other.places.end(), {5, 5, 5});
    other.faces.push_back({1, 2, 3});
    ASSERT_TRUE(
        Load(ModelFile(NamedMaterial("wood") + triangle.Object("one") + other.Object("two"))));
    EXPECT_EQ(model.numObjects, 2);
    EXPECT_EQ(model.totalVerts, 7);
    EXPECT_EQ(model.totalFaces, 3);
}

TEST_F(ModelFile3ds, TwoObjectsShareAMaterial) {
    ASSERT_TRUE(
        Load(ModelFile(NamedMaterial("wood") + triangle.Object("one") + triangle.Object("two"))));
    EXPECT_EQ(model.objects.at(0).matFaces.at(0).materialIndex, 0);
    EXPECT_EQ(model.objects.at(1).matFaces.at(0).materialIndex, 0);
}

TEST_F(ModelFile3ds, ObjectWithoutAMeshIsAnEmptyOne) {
    ASSERT_TRUE(Load(ModelFile(Chunk(0x4000, Name("lamp") + Chunk(0x4600, Floats({1, 2, 3}))))));
    EXPECT_EQ(model.numObjects, 1);
    EXPECT_EQ(model.objects[0].numVerts, 0);
    EXPECT_EQ(model.totalFaces, 0);
}

TEST_F(ModelFile3ds, MaterialBeginsBlackAndPlain) {
    const Model_3DS::Material material = LoadMaterial({});
    EXPECT_EQ(material.name, "wood");
    EXPECT_THAT(material.diffuse, ElementsAre(0, 0, 0, 1));
    EXPECT_THAT(material.specular, ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(material.selfIllum, 0);
    EXPECT_EQ(material.shininess, 0);
    EXPECT_FALSE(material.textured);
}

TEST_F(ModelFile3ds, ColoursAreBytesOrFloats) {
    const struct {
        size_t id;
        Bytes colour;
    } rows[] = {
        {0x0010, Floats({0.2f, 0.4f, 0.6f})},
        {0x0013, Floats({0.2f, 0.4f, 0.6f})},
        {0x0011, {51, 102, 153}            },
        {0x0012, {51, 102, 153}            },
    };
    for (const auto& row : rows) {
        const Bytes colour = Chunk(row.id, row.colour);
        const Model_3DS::Material material =
            LoadMaterial(Chunk(0xA020, colour) + Chunk(0xA030, colour));
        for (const Model_3DS::RGBA& read : {material.diffuse, material.specular}) {
            EXPECT_FLOAT_EQ(read[0], 0.2f) << row.id;
            EXPECT_FLOAT_EQ(read[1], 0.4f) << row.id;
            EXPECT_FLOAT_EQ(read[2], 0.6f) << row.id;
            EXPECT_EQ(read[3], 1.0f) << row.id;
        }
    }
}

TEST_F(ModelFile3ds, LastColourCounts) {
    const Model_3DS::Material material = LoadMaterial(Chunk(
        0xA020, Chunk(0x0011, {255, 255, 255}) + Chunk(0x0012, {0, 51, 255}) + Chunk(0x0099, {1})));
    EXPECT_THAT(material.diffuse, ElementsAre(0, FloatEq(0.2f), 1, 1));
}

TEST_F(ModelFile3ds, PercentagesAreHundredthsAndShininessThirtyTimesThat) {
    const auto word = [](size_t value) { return Chunk(0x0030, Word(value)); };
    const Model_3DS::Material material =
        LoadMaterial(Chunk(0xA040, word(50)) + Chunk(0xA084, word(2)));
    EXPECT_FLOAT_EQ(material.shininess, 15.0f);
    EXPECT_FLOAT_EQ(material.selfIllum, 0.02f);
}

TEST_F(ModelFile3ds, PercentageOfFloatIsTakenAsItIs) {
    const Bytes half = Chunk(0x0031, Floats({0.5f}));
    const Model_3DS::Material material = LoadMaterial(Chunk(0xA040, half) + Chunk(0xA084, half));
    EXPECT_FLOAT_EQ(material.shininess, 15.0f);
    EXPECT_FLOAT_EQ(material.selfIllum, 0.5f);
}

TEST_F(ModelFile3ds, PercentageWordsOfZeroAndOneChangeNothing) {
    for (const size_t value : {size_t{0}, size_t{1}}) {
        const Bytes faint = Chunk(0x0030, Word(value));
        EXPECT_EQ(LoadMaterial(Chunk(0xA040, faint)).shininess, 0.0f);
        const Bytes twice = Chunk(0x0030, Word(100)) + faint;
        const Model_3DS::Material material =
            LoadMaterial(Chunk(0xA040, twice) + Chunk(0xA084, twice) + Chunk(0xA040, faint));
        EXPECT_FLOAT_EQ(material.shininess, 30.0f) << "the value stays, not times 30 again";
        EXPECT_FLOAT_EQ(material.selfIllum, 1.0f);
    }
}

TEST_F(ModelFile3ds, TextureIsLookedForInTheObjectsFolder) {
    const Model_3DS::Material material = LoadMaterial(TextureMap("Wood.JPG"));
    EXPECT_TRUE(material.textured);
    EXPECT_EQ(material.texturePath, ".\\objects\\Wood.JPG");
}

TEST_F(ModelFile3ds, LongMaterialNameIsCutOff) {
    const std::string eighty(80, 'm');
    ASSERT_TRUE(Load(ModelFile(NamedMaterial(eighty)))) << error;
    EXPECT_EQ(model.materials[0].name, eighty);
    ASSERT_TRUE(Load(ModelFile(NamedMaterial(eighty + "more")))) << error;
    EXPECT_EQ(model.materials[0].name, eighty);
    ASSERT_TRUE(Load(ModelFile(Chunk(0xAFFF, Chunk(0xA000, {'a', 'b'}))))) << "no NUL";
    EXPECT_EQ(model.materials[0].name, "ab");
}

TEST_F(ModelFile3ds, OtherNamesHaveUpToEightyLetters) {
    const std::string eighty(80, 'n');
    MeshBytes mesh = triangle;
    mesh.groups[0].material = eighty;
    const Bytes material = NamedMaterial(eighty, TextureMap(eighty));
    ASSERT_TRUE(Load(ModelFile(material + mesh.Object(eighty)))) << error;
    EXPECT_EQ(model.objects[0].name, eighty);
    EXPECT_EQ(model.materials[0].texturePath, ".\\objects\\" + eighty);

    const std::string more(81, 'n');
    ExpectRefused(ModelFile(Chunk(0x4000, Name(more))), "an object's name");
    ExpectRefused(ModelFile(NamedMaterial("wood", TextureMap(more))), "an image's name");
    mesh.groups[0].material = more;
    ExpectRefused(ModelFile(NamedMaterial("wood") + mesh.Object("one")), "a material's name");
}

TEST_F(ModelFile3ds, NamesMustEndInsideTheirChunk) {
    ExpectRefused(ModelFile(Chunk(0x4000, {'a', 'b'})), "an object's name has no end");
    ExpectRefused(ModelFile(NamedMaterial("wood", Chunk(0xA200, Chunk(0xA300, {'a'})))),
                  "an image's name has no end");
}

TEST_F(ModelFile3ds, IndexEqualToTheVertexCountIsRefused) {
    MeshBytes mesh = triangle;
    for (size_t corner = 0; corner < 3; ++corner) {
        mesh.faces = {
            {0, 1, 2}
        };
        mesh.faces[0][corner] = 3;
        ExpectRefused(ModelFile(NamedMaterial("wood") + mesh.Object("one")), "no such vertex");
    }
}

TEST_F(ModelFile3ds, FaceNumberEqualToTheFaceCountIsRefused) {
    MeshBytes mesh = triangle;
    mesh.groups = {
        {"wood", {1}}
    };
    ExpectRefused(ModelFile(NamedMaterial("wood") + mesh.Object("one")), "no such face");
}

TEST_F(ModelFile3ds, GroupOfAnUnknownMaterialIsRefused) {
    ExpectRefused(ModelFile(NamedMaterial("Wood") + triangle.Object("one")),
                  "no material \"wood\"");
}

TEST_F(ModelFile3ds, FewerTextureCoordinatesThanVerticesAreRefused) {
    MeshBytes mesh = triangle;
    mesh.coordinates = {0, 0, 1, 1};
    ExpectRefused(ModelFile(NamedMaterial("wood") + mesh.Object("one")),
                  "fewer texture coordinates");
    mesh.coordinates.resize(8);
    EXPECT_TRUE(Load(ModelFile(NamedMaterial("wood") + mesh.Object("one")))) << error;
}

TEST_F(ModelFile3ds, NumbersThatAreNoPlacesAreRefused) {
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    for (const float bad : {kInfinite, -kInfinite, std::nanf("")}) {
        MeshBytes mesh = triangle;
        mesh.places[4] = bad;
        ExpectRefused(ModelFile(NamedMaterial("wood") + mesh.Object("one")), "not finite");
        ExpectRefused(ModelFile(NamedMaterial("wood", Chunk(0xA040, Chunk(0x0031, Floats({bad}))))),
                      "not finite");
        ExpectRefused(
            ModelFile(NamedMaterial("wood", Chunk(0xA020, Chunk(0x0010, Floats({0, bad, 0}))))),
            "not finite");
    }
    MeshBytes mesh = triangle;
    mesh.places[4] = -1e20f; // the square of its normal would overflow
    ExpectRefused(ModelFile(NamedMaterial("wood") + mesh.Object("one")), "too far away");
}

TEST_F(ModelFile3ds, SecondListOfOneKindIsRefused) {
    const auto mesh = [&](const Bytes& more) {
        return ModelFile(NamedMaterial("wood") +
                         Chunk(0x4000, Name("one") + Chunk(0x4100, triangle.Vertices() + more +
                                                                       triangle.Faces())));
    };
    ASSERT_TRUE(Load(mesh({}))) << error;
    ExpectRefused(mesh(triangle.Vertices()), "two lists");
    ExpectRefused(mesh(triangle.Faces()), "two lists");
    const Bytes twice = Chunk(0x4100, triangle.Vertices()) + Chunk(0x4100, triangle.Vertices());
    ExpectRefused(ModelFile(Chunk(0x4000, Name("one") + twice)), "two meshes");
}

TEST_F(ModelFile3ds, LengthsThatDoNotFitAreRefused) {
    ExpectRefused({}, "too short");
    ExpectRefused({0x4D, 0x4D, 6, 0, 0}, "too short");
    ExpectRefused(Word(0x4D4D) + Long(5), "its length");
    ExpectRefused(Word(0x4D4D) + Long(7), "its length");
    ExpectRefused(Chunk(0x4D4D, Word(0x3D3D) + Long(5)), "a chunk's length");
    ExpectRefused(Chunk(0x4D4D, Word(0x3D3D) + Long(7)), "a chunk's length");
    ExpectRefused(Chunk(0x4D4D, Word(0x3D3D) + Long(0xFFFFFFFF)), "a chunk's length");
    ExpectRefused(Chunk(0x4D4D, {1, 2, 3}), "a chunk's head");
}

TEST_F(ModelFile3ds, CountsThatDoNotFitAreRefused) {
    const auto mesh = [&](size_t id, const Bytes& contents) {
        return ModelFile(
            NamedMaterial("wood") +
            Chunk(0x4000, Name("one") + Chunk(0x4100, triangle.Vertices() + Chunk(id, contents))));
    };
    const Bytes vertices = Chunk(0x4110, Word(2) + Floats({1, 2, 3, 4, 5}));
    ExpectRefused(ModelFile(Chunk(0x4000, Name("one") + Chunk(0x4100, vertices))),
                  "a vertex list is cut off");
    ExpectRefused(mesh(0x4140, Word(1) + Floats({1})), "texture coordinates is cut off");
    ExpectRefused(mesh(0x4140, {1}), "texture coordinates is cut off");
    ExpectRefused(mesh(0x4120, Words({2, 0, 1, 2, 0})), "a face list is cut off");
    const Bytes group = Chunk(0x4130, Name("wood") + Words({2, 0}));
    ExpectRefused(mesh(0x4120, Words({1, 0, 1, 2, 0}) + group), "a face group is cut off");
    ExpectRefused(ModelFile(NamedMaterial("wood", Chunk(0xA020, Chunk(0x0011, {1, 2})))),
                  "a colour is cut off");
    ExpectRefused(ModelFile(NamedMaterial("wood", Chunk(0xA040, Chunk(0x0030, {1})))),
                  "a percentage is cut off");
}

// Every shorter file and every single wrong byte is read without harm, and is refused or whole.
TEST_F(ModelFile3ds, DamageNeverReachesOutside) {
    const MeshBytes box = BoxMesh(2, 3, 4, "wood", "glass");
    const Bytes whole =
        ModelFile(NamedMaterial("wood", TextureMap("w.jpg")) +
                  NamedMaterial("glass", ColourBytes(0xA020, 1, 2, 3)) + box.Object("box"));
    ASSERT_TRUE(Load(whole)) << error;
    for (size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(Load(cut)) << length;
    }
    for (size_t at = 0; at < whole.size(); ++at) {
        for (const uint8_t value : Bytes{0, 1, 127, 255}) {
            Bytes damaged = whole;
            damaged[at] = value;
            if (!Load(damaged)) {
                EXPECT_TRUE(model.objects.empty());
                continue;
            }
            for (const Model_3DS::Object& object : model.objects) {
                for (const Model_3DS::MaterialFaces& group : object.matFaces) {
                    EXPECT_LT(group.materialIndex, model.numMaterials);
                    for (const uint16_t index : group.subFaces) {
                        ASSERT_LT(index, object.numVerts);
                    }
                }
                ASSERT_GE(object.texCoords.size() * 3, object.vertices.size() * 2);
            }
        }
    }
}

} // namespace
