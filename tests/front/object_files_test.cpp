#include "base/files.h"
#include "front/object_files.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Bytes = std::vector<uint8_t>;

class ObjectFiles : public testing::Test {
protected:
    void SetUp() override { SetHomeFolder(folder.Path()); }

    void Write(const std::string& name, const Bytes& bytes) {
        std::filesystem::create_directories(folder.Path() / "objects");
        folder.Write("objects/" + name, bytes);
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(ObjectFiles, ThePlayersTakesThePlaceOfTheBuiltInOne) {
    const Bytes builtIn = ReadObjectFile("tv.3ds");
    EXPECT_GT(builtIn.size(), 1000u);
    Write("tv.3ds", {1, 2, 3});
    EXPECT_EQ(ReadObjectFile("tv.3ds"), (Bytes{1, 2, 3}));
    EXPECT_EQ(ReadBuiltInObject("tv.3ds"), builtIn);
}

TEST_F(ObjectFiles, CapitalsMakeNoDifference) {
    EXPECT_EQ(ReadObjectFile("TV.3DS"), ReadObjectFile("tv.3ds"));
    EXPECT_EQ(ReadBuiltInObject("Floor2.JPG"), ReadBuiltInObject("floor2.jpg"));
    Write("TV.3ds", {1});
    EXPECT_EQ(ReadObjectFile("tv.3DS"), Bytes{1});
    Write("tv.3ds", {2});
    EXPECT_EQ(ReadObjectFile("tv.3ds"), Bytes{2}) << "the same case first";
    EXPECT_EQ(ReadObjectFile("TV.3ds"), Bytes{1});
}

TEST_F(ObjectFiles, WhatCannotBeReadIsTheBuiltInOne) {
    std::filesystem::create_directories(folder.Path() / "objects" / "tv.3ds");
    EXPECT_EQ(ReadObjectFile("tv.3ds"), ReadBuiltInObject("tv.3ds"));
    EXPECT_TRUE(ReadObjectFile("nothing.3ds").empty());
}
