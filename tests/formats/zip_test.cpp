#include "formats/hand_made.h"
#include "formats/zip.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdlib>
#include <string>

namespace {

// One entry of an archive assembled byte by byte.
struct HAND_ENTRY {
    std::string name;
    Bytes data;
    bool deflate = false;
    bool descriptor = false; // sizes and checksum come after the data, not before it
    bool zip64 = false;
    uint16_t flags = 0;
    uint32_t checksumFault = 0; // XORed into the checksum
    uint32_t sizeFault = 0;     // added to the stated size
};

uint32_t Checksum(const Bytes& data) {
    return static_cast<uint32_t>(crc32(0, data.data(), static_cast<uInt>(data.size())));
}

Bytes Deflated(const Bytes& data) {
    z_stream stream{};
    // A negative window means a raw stream.
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY), Z_OK);
    Bytes packed(deflateBound(&stream, data.size()));
    Bytes input = data;
    stream.next_in = input.data();
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

void Append(Bytes& bytes, size_t width, uint64_t value) {
    bytes.resize(bytes.size() + width);
    PutInteger(bytes, bytes.size() - width, width, value);
}

struct HAND_PARTS {
    Bytes local;
    Bytes central;
};

HAND_PARTS EntryParts(const HAND_ENTRY& entry, size_t offset) {
    const Bytes body = entry.deflate ? Deflated(entry.data) : entry.data;
    const uint32_t checksum = Checksum(entry.data) ^ entry.checksumFault;
    const uint64_t size = entry.data.size() + entry.sizeFault;
    const auto flags = static_cast<uint16_t>(entry.flags | (entry.descriptor ? 8 : 0));
    Bytes extra;
    if (entry.zip64) {
        Append(extra, 2, 1);
        Append(extra, 2, 16);
        Append(extra, 8, size);
        Append(extra, 8, body.size());
    }
    const auto common = [&](bool sizesKnown) {
        Bytes bytes;
        Append(bytes, 2, entry.zip64 ? 45 : 20);
        Append(bytes, 2, flags);
        Append(bytes, 2, entry.deflate ? 8 : 0);
        Append(bytes, 4, 0x00210000); // time and date
        Append(bytes, 4, sizesKnown ? checksum : 0);
        Append(bytes, 4, !sizesKnown ? 0 : (entry.zip64 ? 0xFFFFFFFF : body.size()));
        Append(bytes, 4, !sizesKnown ? 0 : (entry.zip64 ? 0xFFFFFFFF : size));
        Append(bytes, 2, entry.name.size());
        Append(bytes, 2, extra.size());
        return bytes;
    };
    HAND_PARTS parts;
    parts.local =
        Bytes{'P', 'K', 3, 4} + common(!entry.descriptor) + Text(entry.name) + extra + body;
    if (entry.descriptor) {
        parts.local = parts.local + Bytes{'P', 'K', 7, 8};
        Append(parts.local, 4, checksum);
        Append(parts.local, 4, body.size());
        Append(parts.local, 4, size);
    }
    parts.central = Bytes{'P', 'K', 1, 2, 20, 0} + common(true);
    parts.central.resize(parts.central.size() + 10); // comment, disk, attributes
    Append(parts.central, 4, offset);
    parts.central = parts.central + Text(entry.name) + extra;
    return parts;
}

Bytes HandZip(const std::vector<HAND_ENTRY>& entries, bool zip64 = false) {
    Bytes archive;
    Bytes central;
    for (const HAND_ENTRY& entry : entries) {
        const HAND_PARTS parts = EntryParts(entry, archive.size());
        archive = archive + parts.local;
        central = central + parts.central;
    }
    const size_t centralOffset = archive.size();
    archive = archive + central;
    if (zip64) {
        const size_t end64 = archive.size();
        archive = archive + Bytes{'P', 'K', 6, 6};
        Append(archive, 8, 44);
        Append(archive, 2, 45);
        Append(archive, 2, 45);
        Append(archive, 8, 0);
        Append(archive, 8, entries.size());
        Append(archive, 8, entries.size());
        Append(archive, 8, central.size());
        Append(archive, 8, centralOffset);
        archive = archive + Bytes{'P', 'K', 6, 7};
        Append(archive, 4, 0);
        Append(archive, 8, end64);
        Append(archive, 4, 1);
    }
    archive = archive + Bytes{'P', 'K', 5, 6};
    Append(archive, 4, 0);
    Append(archive, 2, zip64 ? 0xFFFF : entries.size());
    Append(archive, 2, zip64 ? 0xFFFF : entries.size());
    Append(archive, 4, zip64 ? 0xFFFFFFFF : central.size());
    Append(archive, 4, zip64 ? 0xFFFFFFFF : centralOffset);
    Append(archive, 2, 0);
    return archive;
}

HAND_ENTRY Stored(std::string name, const Bytes& data) {
    HAND_ENTRY entry;
    entry.name = std::move(name);
    entry.data = data;
    return entry;
}

HAND_ENTRY Packed(std::string name, const Bytes& data) {
    HAND_ENTRY entry = Stored(std::move(name), data);
    entry.deflate = true;
    return entry;
}

// Opens the archive, which must outlive the reader.
void Open(ZipReader& reader, const Bytes& archive) {
    std::string error;
    ASSERT_TRUE(reader.Open(archive, error)) << error;
}

void ExpectContent(const ZipReader& reader, uint32_t index, const Bytes& expected) {
    Bytes bytes;
    std::string error;
    EXPECT_TRUE(reader.Unpack(index, bytes, error)) << error;
    EXPECT_TRUE(bytes == expected) << index;
}

void ExpectRefused(const ZipReader& reader, uint32_t index, uint64_t limit = uint64_t{1} << 28) {
    Bytes bytes = {1, 2, 3};
    std::string error;
    EXPECT_FALSE(reader.Unpack(index, bytes, error, limit));
    EXPECT_TRUE(bytes.empty());
    EXPECT_FALSE(error.empty());
}

const Bytes kText = Text("some text, some text, some text, some more text");

} // namespace

TEST(ZipReader, StoredAndDeflatedEntriesAreRead) {
    CRandom random(1);
    const Bytes large = random.Fill(200000) + Bytes(100000, 7);
    const Bytes archive = HandZip({Stored("a.txt", kText), Packed("folder/b.bin", large),
                                   Stored("empty", {}), Packed("also empty", {})});
    ZipReader reader;
    Open(reader, archive);
    ASSERT_EQ(reader.EntryCount(), 4u);
    ZIP_ENTRY entry;
    ASSERT_TRUE(reader.Entry(1, entry));
    EXPECT_EQ(entry.name, L"folder/b.bin");
    EXPECT_EQ(entry.rawName, "folder/b.bin");
    EXPECT_EQ(entry.unpackedSize, large.size());
    ExpectContent(reader, 0, kText);
    ExpectContent(reader, 1, large);
    ExpectContent(reader, 2, {});
    ExpectContent(reader, 3, {});
    ExpectContent(reader, 1, large); // and once more
}

TEST(ZipReader, SizesAfterTheDataAreRead) {
    HAND_ENTRY entry = Packed("a", kText);
    entry.descriptor = true;
    const Bytes archive = HandZip({entry, Stored("b", kText)});
    ZipReader reader;
    Open(reader, archive);
    ExpectContent(reader, 0, kText);
    ExpectContent(reader, 1, kText);
}

TEST(ZipReader, Zip64ArchiveIsRead) {
    HAND_ENTRY entry = Packed("a", kText);
    entry.zip64 = true;
    const Bytes archive = HandZip({entry, Stored("b", kText)}, true);
    ZipReader reader;
    Open(reader, archive);
    ASSERT_EQ(reader.EntryCount(), 2u);
    ZIP_ENTRY stated;
    ASSERT_TRUE(reader.Entry(0, stated));
    EXPECT_EQ(stated.unpackedSize, kText.size());
    ExpectContent(reader, 0, kText);
    ExpectContent(reader, 1, kText);
}

TEST(ZipReader, DuplicatedNamesAreSeparateEntries) {
    const Bytes archive = HandZip({Stored("same", Text("1")), Stored("same", Text("2"))});
    ZipReader reader;
    Open(reader, archive);
    ExpectContent(reader, 0, Text("1"));
    ExpectContent(reader, 1, Text("2"));
}

TEST(ZipReader, Utf8NamesArriveWide) {
    HAND_ENTRY entry =
        Stored("\xC3\xA9\xE2\x82\xAC.sms", kText); // e with an acute accent, euro sign
    entry.flags = 0x800;
    const Bytes archive = HandZip({entry, Stored("\xC3\xA9", kText)});
    ZipReader reader;
    Open(reader, archive);
    ZIP_ENTRY read;
    ASSERT_TRUE(reader.Entry(0, read));
    EXPECT_EQ(read.name, L"\u00E9\u20AC.sms");
    EXPECT_EQ(read.rawName, "\xC3\xA9\xE2\x82\xAC.sms");
    // Also without the flag, as many writers leave it out.
    ASSERT_TRUE(reader.Entry(1, read));
    EXPECT_EQ(read.name, L"\u00E9");
}

TEST(ZipReader, OldNamesAreTakenForTheirCodePage) {
    const Bytes archive = HandZip({Stored("\x82.sms", kText)}); // e with an acute accent in 437
    ZipReader reader;
    Open(reader, archive);
    ZIP_ENTRY read;
    ASSERT_TRUE(reader.Entry(0, read));
    EXPECT_EQ(read.name, L"\u00E9.sms");
}

TEST(ZipReader, OddNamesAreCleanedAndStayReadable) {
    const Bytes archive = HandZip({Stored("C:\\games\\..\\x.sms", kText), Stored("", kText),
                                   Stored("folder/", {}), Stored(std::string(5000, 'n'), kText)});
    ZipReader reader;
    Open(reader, archive);
    ZIP_ENTRY read;
    ASSERT_TRUE(reader.Entry(0, read));
    EXPECT_EQ(read.name, L"x.sms");
    EXPECT_EQ(read.rawName, "C:\\games\\..\\x.sms");
    ASSERT_TRUE(reader.Entry(1, read));
    EXPECT_EQ(read.name, L"");
    ASSERT_TRUE(reader.Entry(3, read));
    EXPECT_EQ(read.name.size(), 5000u);
    ExpectContent(reader, 0, kText);
    ExpectContent(reader, 1, kText);
}

TEST(ZipReader, IndexOutOfRangeIsRefused) {
    const Bytes archive = HandZip({Stored("a", kText)});
    ZipReader reader;
    Open(reader, archive);
    ZIP_ENTRY entry;
    EXPECT_FALSE(reader.Entry(1, entry));
    EXPECT_FALSE(reader.Entry(UINT32_MAX, entry));
    ExpectRefused(reader, 1);
}

TEST(ZipReader, NothingIsReadBeforeOpeningAndAfterClosing) {
    const Bytes archive = HandZip({Stored("a", kText)});
    ZipReader reader;
    ZIP_ENTRY entry;
    EXPECT_EQ(reader.EntryCount(), 0u);
    EXPECT_FALSE(reader.Entry(0, entry));
    ExpectRefused(reader, 0);
    Open(reader, archive);
    reader.Close();
    EXPECT_EQ(reader.EntryCount(), 0u);
    EXPECT_FALSE(reader.Entry(0, entry));
    ExpectRefused(reader, 0);
}

TEST(ZipReader, OpeningAgainTakesTheNewArchive) {
    const Bytes first = HandZip({Stored("a", Text("1"))});
    const Bytes second = HandZip({Stored("b", Text("2")), Stored("c", {})});
    ZipReader reader;
    Open(reader, first);
    Open(reader, second);
    EXPECT_EQ(reader.EntryCount(), 2u);
    ExpectContent(reader, 0, Text("2"));
    std::string error;
    EXPECT_FALSE(reader.Open(Text("no archive"), error));
    EXPECT_EQ(reader.EntryCount(), 0u);
}

TEST(ZipReader, BytesThatAreNoArchiveAreRefused) {
    const Bytes inputs[] = {
        {}, Text("P"), Text("not a zip archive, whatever its name"), Bytes(1000)};
    for (const Bytes& input : inputs) {
        ZipReader reader;
        std::string error;
        EXPECT_FALSE(reader.Open(input, error));
        EXPECT_NE(error.find("zip"), std::string::npos) << error;
    }
}

TEST(ZipReader, ChecksumThatDoesNotFitIsDamage) {
    for (HAND_ENTRY entry : {Stored("a", kText), Packed("a", kText)}) {
        entry.checksumFault = 1;
        const Bytes archive = HandZip({entry, Stored("b", kText)});
        ZipReader reader;
        Open(reader, archive);
        ExpectRefused(reader, 0);
        ExpectContent(reader, 1, kText);
    }
}

TEST(ZipReader, DamagedDataIsRefused) {
    Bytes archive = HandZip({Packed("a", kText)});
    archive[30 + 1 + 5] ^= 0x10; // header, name, and a few bytes into the stream
    ZipReader reader;
    Open(reader, archive);
    ExpectRefused(reader, 0);
}

TEST(ZipReader, EncryptedEntryIsRefused) {
    HAND_ENTRY entry = Stored("a", kText);
    entry.flags = 1;
    const Bytes archive = HandZip({entry});
    ZipReader reader;
    Open(reader, archive);
    ExpectRefused(reader, 0);
}

TEST(ZipReader, EntryLargerThanTheLimitIsRefused) {
    const Bytes archive = HandZip({Packed("a", Bytes(1000, 1))});
    ZipReader reader;
    Open(reader, archive);
    ExpectRefused(reader, 0, 999);
    Bytes bytes;
    std::string error;
    EXPECT_TRUE(reader.Unpack(0, bytes, error, 1000)) << error;
    EXPECT_EQ(bytes, Bytes(1000, 1));
}

TEST(ZipReader, StreamThatHoldsMoreThanItStatesIsDamage) {
    HAND_ENTRY entry = Packed("bomb", Bytes(20000000, 0));
    entry.sizeFault = static_cast<uint32_t>(-19999990); // states ten bytes
    const Bytes archive = HandZip({entry});
    ZipReader reader;
    Open(reader, archive);
    ZIP_ENTRY stated;
    ASSERT_TRUE(reader.Entry(0, stated));
    ExpectRefused(reader, 0, 100000);
    ExpectRefused(reader, 0);
}

TEST(ZipReader, StatedSizeAllocatesNothing) {
    HAND_ENTRY entry = Packed("a", kText);
    entry.sizeFault = 0xF0000000;
    const Bytes archive = HandZip({entry});
    ZipReader reader;
    Open(reader, archive);
    ZIP_ENTRY stated;
    ASSERT_TRUE(reader.Entry(0, stated));
    EXPECT_GT(stated.unpackedSize, 0xF0000000u);
    ExpectRefused(reader, 0, UINT64_MAX);
}

TEST(ZipReader, AnyBytesEndInAResult) {
    const Bytes whole = HandZip({Stored("a.sms", kText), Packed("b.gg", Bytes(3000, 5))}, true);
    CRandom random(2);
    size_t opened = 0;
    size_t unpacked = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes mutated = whole;
        for (uint32_t count = 1 + random.Below(4); count > 0; --count) {
            mutated[random.Below(mutated.size())] = random.Byte();
        }
        mutated.resize(random.Below(4) == 0 ? random.Below(mutated.size()) : mutated.size());
        ZipReader reader;
        std::string error;
        if (!reader.Open(mutated, error)) {
            EXPECT_FALSE(error.empty());
            continue;
        }
        ++opened;
        for (uint32_t i = 0; i < std::min(reader.EntryCount(), 10u); ++i) {
            Bytes bytes;
            if (reader.Unpack(i, bytes, error, 10000)) {
                EXPECT_LE(bytes.size(), 10000u);
                ++unpacked;
            }
        }
    }
    EXPECT_GT(opened, 1000u);
    EXPECT_GT(unpacked, 1000u);
}

TEST(ZipWriter, EntriesAreReadBack) {
    CRandom random(3);
    const Bytes noise = random.Fill(70000);
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("0123456789ab", kText, error)) << error;
    ASSERT_TRUE(writer.Add("\xC3\xA9", noise, error)) << error;
    ASSERT_TRUE(writer.Add("empty", {}, error)) << error;
    const Bytes archive = writer.Finish(error);
    ZipReader reader;
    Open(reader, archive);
    ASSERT_EQ(reader.EntryCount(), 3u);
    ZIP_ENTRY entry;
    ASSERT_TRUE(reader.Entry(1, entry));
    EXPECT_EQ(entry.name, L"\u00E9");
    EXPECT_EQ(entry.unpackedSize, noise.size());
    ExpectContent(reader, 0, kText);
    ExpectContent(reader, 1, noise);
    ExpectContent(reader, 2, {});
}

TEST(ZipWriter, EntriesAreCopiedAndDeflated) {
    ZipWriter writer;
    std::string error;
    Bytes data(100000, 3);
    ASSERT_TRUE(writer.Add("a", data, error)) << error;
    data.assign(100000, 4);
    const Bytes archive = writer.Finish(error);
    EXPECT_LT(archive.size(), 2000u);
    EXPECT_EQ(GetInteger(archive, 8, 2), 8u); // the method in the first local header
    ZipReader reader;
    Open(reader, archive);
    ExpectContent(reader, 0, Bytes(100000, 3));
}

TEST(ZipWriter, EqualContentMakesEqualBytesInAnyTimeZone) {
    Bytes archives[2];
    for (const char* zone : {"UTC+11", "UTC-5"}) {
        ASSERT_EQ(setenv("TZ", zone, 1), 0); // NOLINT(concurrency-mt-unsafe): one thread runs
        tzset();
        ZipWriter writer;
        std::string error;
        ASSERT_TRUE(writer.Add("a", kText, error)) << error;
        archives[zone[3] == '+' ? 0 : 1] = writer.Finish(error);
    }
    ASSERT_EQ(unsetenv("TZ"), 0); // NOLINT(concurrency-mt-unsafe)
    tzset();
    EXPECT_EQ(archives[0], archives[1]);
    EXPECT_EQ(GetInteger(archives[0], 10, 4), 0x00210000u); // midnight, 1 January 1980
}

TEST(ZipWriter, SecondEntryOfANameIsRefusedAndTheFirstStays) {
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("a", kText, error)) << error;
    EXPECT_FALSE(writer.Add("a", Text("other"), error));
    EXPECT_NE(error.find("a: "), std::string::npos);
    const Bytes archive = writer.Finish(error);
    ZipReader reader;
    Open(reader, archive);
    ASSERT_EQ(reader.EntryCount(), 1u);
    ExpectContent(reader, 0, kText);
}

TEST(ZipWriter, ArchiveOfNothingCanBeOpened) {
    ZipWriter writer;
    std::string error;
    const Bytes archive = writer.Finish(error);
    EXPECT_EQ(archive, (Bytes{'P', 'K', 5, 6} + Bytes(18)));
    ZipReader reader;
    Open(reader, archive);
    EXPECT_EQ(reader.EntryCount(), 0u);
}

TEST(ZipWriter, IsEmptyAfterFinishing) {
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("a", kText, error)) << error;
    ASSERT_FALSE(writer.Finish(error).empty());
    ASSERT_TRUE(writer.Add("b", Text("x"), error)) << error;
    const Bytes archive = writer.Finish(error);
    ZipReader reader;
    Open(reader, archive);
    ASSERT_EQ(reader.EntryCount(), 1u);
    ExpectContent(reader, 0, Text("x"));
}

TEST(ZipWriter, UnfinishedWriterGoesAway) {
    ZipWriter writer;
    std::string error;
    EXPECT_TRUE(writer.Add("a", kText, error)) << error;
}

TEST(CleanEntryName, DropsDrivesSlashesAndStepsUp) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"plain.sms",         L"plain.sms"   },
        {L"a/b\\c.sms",        L"a/b\\c.sms"  },
        {L"C:x.sms",           L"x.sms"       },
        {L"c:\\x.sms",         L"x.sms"       },
        {L"/x.sms",            L"x.sms"       },
        {L"\\/\\x.sms",        L"x.sms"       },
        {L"a/../x.sms",        L"x.sms"       },
        {L"a\\..\\x.sms",      L"x.sms"       },
        {L"a/..\\x.sms",       L"x.sms"       },
        {L"a\\../x.sms",       L"x.sms"       },
        {L"a/../b/../c/x.sms", L"c/x.sms"     },
        {L"/../../x.sms",      L"x.sms"       },
        {L"a/../C:/x.sms",     L"x.sms"       },
        {L"a/../",             L""            },
        {L"../x.sms",          L"../x.sms"    },
        {L"a/...//x.sms",      L"a/...//x.sms"},
        {L"a/..",              L"a/.."        },
        {L":x",                L":x"          },
        {L"",                  L""            },
    };
    for (const auto& [name, cleaned] : rows) {
        EXPECT_EQ(CleanEntryName(name), cleaned) << name;
    }
}

TEST(LastPathComponent, IsTheTextAfterTheLastSlashOfEitherKind) {
    EXPECT_EQ(LastPathComponent(L"a/b\\c"), L"c");
    EXPECT_EQ(LastPathComponent(L"a\\b/c"), L"c");
    EXPECT_EQ(LastPathComponent(L"c"), L"c");
    EXPECT_EQ(LastPathComponent(L"a/"), L"");
    EXPECT_EQ(LastPathComponent(L""), L"");
}
