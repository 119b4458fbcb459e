// The furniture that the program brings: every model is whole, and every image of it is there.
#include "room/image_decoder.h"
#include "room/model_3ds.h"
#include "room/texture_cache.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

const std::filesystem::path kFolder =
    std::filesystem::path(OMBRELUNE_SOURCE_FOLDER) / "assets/objects";

std::vector<uint8_t> ReadFile(const std::string& name) {
    std::ifstream file(kFolder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(FurnitureFiles, ModelsLoadAndTheirImagesAreThere) {
    for (const char* const name :
         {"coffeetable.3ds", "couch.3ds", "tvunit.3ds", "tv.3ds", "tv2.3ds", "gamegear.3ds",
          "arcade.3ds", "lightfixture.3ds", "ombrelune.3ds", "smsbox.3ds", "ggbox.3ds"}) {
        const std::vector<uint8_t> file = ReadFile(name);
        Model_3DS model;
        std::string error;
        ASSERT_TRUE(model.Load(file.data(), file.size(), name, error)) << error;
        EXPECT_GT(model.totalFaces, 0) << name;
        for (const Model_3DS::Material& material : model.materials) {
            if (!material.textured) {
                continue;
            }
            const std::string image(ObjectFileName(material.texturePath));
            EXPECT_GT(DecodeRoomImage(ReadFile(image)).width, 0U) << name << " wants " << image;
        }
    }
}

TEST(FurnitureFiles, ImagesOfTheRoomAreThere) {
    for (const char* const name : {"floor2.jpg", "genesisad.jpg", "thewizard.jpg"}) {
        EXPECT_GT(DecodeRoomImage(ReadFile(name)).width, 0U) << name;
    }
}

} // namespace
