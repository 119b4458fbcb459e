#include "base/bytes.h"
#include "base/files.h"
#include "formats/zip.h"
#include "web/media_archive.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

namespace {

// A picture of this test's own: "PIC", the sides as two bytes each, and a byte for the cover kind.
Bytes Picture(uint32_t width, uint32_t height, uint8_t kind = 255) {
    Bytes file = {'P', 'I', 'C'};
    for (const uint32_t side : {width, height}) {
        file.push_back(static_cast<uint8_t>(side));
        file.push_back(static_cast<uint8_t>(side >> 8));
    }
    file.push_back(kind);
    return file;
}

bool ReadSize(std::span<const uint8_t> file, PICTURE_SIZE& size) {
    if (file.size() < 8 || file[0] != 'P' || file[1] != 'I' || file[2] != 'C') {
        return false;
    }
    size = {LoadLittleEndian<uint16_t>(&file[3]), LoadLittleEndian<uint16_t>(&file[5])};
    return true;
}

// A picture whose last byte is 'd' is damaged after its header.
bool Decodes(std::span<const uint8_t> file) {
    return file.back() != 'd';
}
const PICTURE_CHECK kCheck = {ReadSize, Decodes};

bool Decode(std::span<const uint8_t> file, MEDIA_PICTURE& picture) {
    PICTURE_SIZE size;
    if (!ReadSize(file, size)) {
        return false;
    }
    picture = {size.width, size.height, file[7] == 255 ? kNoBoxArt : file[7], {}};
    return true;
}

// An archive of files called 0.png, 1.png and so on, unless there are names.
Bytes Zip(const std::vector<Bytes>& files, const std::vector<std::string>& names = {}) {
    ZipWriter zip;
    std::string error;
    for (size_t i = 0; i < files.size(); ++i) {
        const std::string name = names.empty() ? std::to_string(i) + ".png" : names[i];
        EXPECT_TRUE(zip.Add(name, files[i], error)) << error;
    }
    return zip.Finish(error);
}

// What is wrong with an archive; empty if nothing is.
std::string Fault(const Bytes& archive) {
    std::string error;
    const bool good = CheckMediaArchive(archive, kCheck, error);
    EXPECT_EQ(good, error.empty());
    return error;
}

// Sets a 4-byte field of every central header, which begins "PK\1\2".
void SetCentralField(Bytes& archive, size_t offset, uint32_t value) {
    constexpr uint8_t kMark[] = {'P', 'K', 1, 2};
    for (auto at = archive.begin();; ++at) {
        at = std::search(at, archive.end(), std::begin(kMark), std::end(kMark));
        if (at == archive.end()) {
            return;
        }
        StoreLittleEndian(&*at + offset, value);
    }
}
constexpr size_t kUnpackedSize = 24;

} // namespace

TEST(MediaArchive, OfPicturesIsGood) {
    EXPECT_EQ(Fault(Zip({Picture(200, 150), Picture(4096, 4096), Picture(1, 1)})), "");
    EXPECT_EQ(Fault(Zip({Bytes(), Picture(600, 800)}, {"folder/", "folder/box.png"})), "");
}

TEST(MediaArchive, MustBeAZip) {
    const Bytes page = {'<', 'h', 't', 'm', 'l', '>'};
    EXPECT_EQ(Fault({}), "the media archive is not a zip file");
    EXPECT_EQ(Fault(page), "the media archive is not a zip file");
    EXPECT_EQ(Fault(Picture(200, 150)), "the media archive is not a zip file");
}

TEST(MediaArchive, CutAnywhereIsRefused) {
    const Bytes archive = Zip({Picture(200, 150), Picture(60, 80)});
    ASSERT_EQ(Fault(archive), "");
    for (size_t size = 0; size < archive.size(); ++size) {
        const Bytes cut(archive.begin(), archive.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_NE(Fault(cut), "") << size;
    }
}

TEST(MediaArchive, MustHaveAPicture) {
    EXPECT_EQ(Fault(Zip({})), "the media archive has no pictures");
    EXPECT_EQ(Fault(Zip({Bytes()}, {"folder/"})), "the media archive has no pictures");
}

TEST(MediaArchive, HasPicturesAlone) {
    const Bytes text = {'h', 'e', 'l', 'l', 'o'};
    EXPECT_EQ(Fault(Zip({Picture(200, 150), text})), "entry 2 of the media archive is no picture");
    const std::pair<uint32_t, uint32_t> sizes[] = {
        {0,    150 },
        {200,  0   },
        {4097, 1   },
        {1,    4097},
    };
    for (const auto& [width, height] : sizes) {
        EXPECT_EQ(Fault(Zip({Picture(width, height)})),
                  "entry 1 of the media archive is no picture");
    }
}

TEST(MediaArchive, HasAsManyPixelsAsItMayAndNoMore) {
    const std::vector<Bytes> two(2, Picture(4096, 4096)); // twice 16 million
    EXPECT_EQ(Fault(Zip(two)), "");
    EXPECT_EQ(Fault(Zip({two[0], two[1], Picture(1, 1)})),
              "the pictures of the media archive are too large");
}

TEST(MediaArchive, HasNoPictureThatIsDamagedAfterItsHeader) {
    EXPECT_EQ(Fault(Zip({Picture(1, 1), Picture(200, 150, 'd')})),
              "entry 2 of the media archive is no picture");
}

TEST(MediaArchive, IsRefusedForTooManyPixelsBeforeThesePicturesAreDecoded) {
    int decoded = 0;
    const PICTURE_CHECK counting = {ReadSize, [&](std::span<const uint8_t>) {
                                        ++decoded;
                                        return true;
                                    }};
    const Bytes archive = Zip({Picture(4096, 4096), Picture(4096, 4096), Picture(1, 1)});
    std::string error;
    EXPECT_FALSE(CheckMediaArchive(archive, counting, error));
    EXPECT_EQ(decoded, 2) << "the third would be too many";
    decoded = 0;
    EXPECT_FALSE(CheckMediaArchive(Zip({Picture(4097, 4096)}), counting, error));
    EXPECT_EQ(decoded, 0);
}

TEST(MediaArchive, HasAsManyEntriesAsItMayAndNoMore) {
    std::vector<Bytes> pictures(kMostMediaEntries, Picture(200, 150));
    EXPECT_EQ(Fault(Zip(pictures)), "");
    pictures.push_back(Picture(200, 150));
    EXPECT_EQ(Fault(Zip(pictures)), "the media archive has more than 64 entries");
}

TEST(MediaArchive, ABombIsNotUnpacked) {
    // 16 MB of zeros pack to a few kilobytes.
    Bytes bomb = Picture(200, 150);
    bomb.resize(kLargestMediaEntry + 1);
    const Bytes archive = Zip({bomb});
    EXPECT_LT(archive.size(), 100'000u);
    EXPECT_EQ(Fault(archive), "entry 1 of the media archive is too large");
}

TEST(MediaArchive, ManySmallerBombsAreRefusedTogether) {
    Bytes bomb = Picture(200, 150);
    bomb.resize(kLargestMediaEntry);
    EXPECT_EQ(Fault(Zip({bomb, bomb, bomb, Picture(200, 150)})),
              "the media archive is too large when unpacked");
}

TEST(MediaArchive, AFalseSizeIsDamage) {
    Bytes bomb = Picture(200, 150);
    bomb.resize(1'000'000);
    Bytes archive = Zip({bomb});
    SetCentralField(archive, kUnpackedSize, 8);
    EXPECT_EQ(Fault(archive), "entry 1 of the media archive is damaged");
    SetCentralField(archive, kUnpackedSize, 0xFFFFFFFE);
    EXPECT_EQ(Fault(archive), "entry 1 of the media archive is too large");
}

TEST(MediaArchive, KeepsItsRevisionOnTheService) {
    const TemporaryFolder folder;
    const fs::path path = folder.Path() / "media" / "Game v1.2.zip";
    const Bytes first = Zip({Picture(200, 150)});
    const Bytes second = Zip({Picture(60, 80)});
    std::string error;
    EXPECT_EQ(MediaRevision(path), 0) << "there is none";
    ASSERT_TRUE(StoreMediaArchive(path, first, 7, error)) << error;
    EXPECT_EQ(folder.Read("media/Game v1.2.zip"), first);
    EXPECT_EQ(MediaRevision(path), 7);
    ASSERT_TRUE(StoreMediaArchive(path, second, 8, error)) << error;
    EXPECT_EQ(folder.Read("media/Game v1.2.zip"), second);
    EXPECT_EQ(MediaRevision(path), 8);
}

TEST(MediaArchive, ThePlayersOwnHasNoRevision) {
    const TemporaryFolder folder;
    const fs::path path = folder.Path() / "game.zip";
    const Bytes theirs = Zip({Picture(200, 150)});
    folder.Write("game.zip", theirs);
    EXPECT_EQ(MediaRevision(path), std::nullopt);
    std::string error;
    ASSERT_TRUE(StoreMediaArchive(path, theirs, 7, error)) << error;
    EXPECT_EQ(MediaRevision(path), 7);
    folder.Write("game.zip", Zip({Picture(60, 80)}));
    EXPECT_EQ(MediaRevision(path), std::nullopt) << "the player has replaced the service's";
    folder.Write("game.zip", theirs);
    for (const char* const note : {"", "7", "seven", "-", "99999999999 x\n"}) {
        folder.Write("game.cover", std::string_view(note));
        EXPECT_EQ(MediaRevision(path), std::nullopt) << note;
    }
}

TEST(MediaArchive, AnOldOneStaysIfTheNewOneCannotBeWritten) {
    const TemporaryFolder folder;
    folder.Write("media", std::string_view("a file, no folder"));
    std::string error;
    EXPECT_FALSE(StoreMediaArchive(folder.Path() / "media" / "game.zip", Zip({}), 1, error));
    EXPECT_NE(error, "");
}

TEST(MediaArchive, NamesOfEntriesBecomeNoPaths) {
    const TemporaryFolder folder;
    const std::vector<std::string> names = {"../../evil.png", "/etc/evil.png", "..\\..\\evil",
                                            "c:\\evil.png"};
    const Bytes archive = Zip(std::vector<Bytes>(names.size(), Picture(200, 150)), names);
    std::string error;
    ASSERT_TRUE(StoreMediaArchive(folder.Path() / "in" / "game.zip", archive, 1, error));
    EXPECT_EQ(ReadLocalMedia(archive, Decode).screenshots.size(), names.size());
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path())) {
        files.push_back(fs::relative(entry.path(), folder.Path()));
    }
    EXPECT_THAT(files, testing::UnorderedElementsAre(fs::path("in"), fs::path("in/game.zip"),
                                                     fs::path("in/game.cover")));
}

TEST(MediaArchive, NamesOfEntriesAreNotInMessages) {
    Bytes archive = Zip({Bytes(1, 'x')}, {"@[31m@evil"});
    std::replace(archive.begin(), archive.end(), uint8_t{'@'}, uint8_t{0x1B});
    EXPECT_EQ(Fault(archive), "entry 1 of the media archive is no picture");
}

TEST(MediaArchive, LiesBesideTheSystemsGamesWhateverTheGameIsCalled) {
    const TemporaryHome home;
    EXPECT_EQ(MediaArchivePath("sms", L"Luciole"), home.Path() / "sms" / "media" / "Luciole.zip");
    EXPECT_EQ(MediaArchivePath("nes", L"../../x"), home.Path() / "nes" / "media" / ".._.._x.zip");
    EXPECT_EQ(MediaArchivePath("nes", L".."), home.Path() / "nes" / "media" / "__.zip");
}

TEST(LocalMedia, HasBoxArtAndScreenshotsInTheirOrder) {
    const Bytes archive = Zip({Picture(200, 150), Picture(600, 800, 1), Picture(200, 151),
                               Bytes(3, 'x'), Picture(200, 150, 0), Picture(201, 150)});
    const LOCAL_MEDIA media = ReadLocalMedia(archive, Decode);
    ASSERT_EQ(media.boxArt.size(), 2u);
    EXPECT_EQ(media.boxArt[0].coverKind, 1);
    EXPECT_EQ(media.boxArt[0].width, 600u);
    EXPECT_EQ(media.boxArt[1].coverKind, 0);
    EXPECT_EQ(media.screenshots.size(), 1u);
}

TEST(LocalMedia, HasSixBoxesAndFiveScreenshotsAtMost) {
    std::vector<Bytes> pictures;
    for (uint8_t i = 0; i < 8; ++i) {
        pictures.push_back(Picture(60, 80, i));
        pictures.push_back(Picture(200, 150));
    }
    const LOCAL_MEDIA media = ReadLocalMedia(Zip(pictures), Decode);
    ASSERT_EQ(media.boxArt.size(), 6u);
    EXPECT_EQ(media.boxArt[5].coverKind, 5);
    EXPECT_EQ(media.screenshots.size(), 5u);
}

TEST(LocalMedia, OfNoArchiveIsEmpty) {
    const LOCAL_MEDIA media = ReadLocalMedia({}, Decode);
    EXPECT_TRUE(media.boxArt.empty());
    EXPECT_TRUE(media.screenshots.empty());
}
