// A game container: the headers of a game, its variants and pieces, followed by the image data.
//
// A `.game` file is one container; a `.dat` database is the headers of many, back to back, with no
// data. Everything is little-endian. A record begins with a tag of four characters. Text fields are
// UTF-8, ended by a NUL within their fixed width.
//
//     GAME  88 bytes    once
//     NAME  368 each    one a variant: a title under which the browser lists the game
//     ROM0  80 each     one a piece of image data
//     SMS0 24, GAG0 23, GDF0 4 or ARC0 16 bytes by system, one for each NAME, same index
//     packed image data, LZMA (packing.h)
//
// A database entry may begin with a GADA record of 68 bytes and has no data.
//
// Owner: one thread at a time; a session's machine copies what it needs.
// Failure: by result alone, with no message. No input of any bytes reads or writes outside its buffer.
// A size field is not trusted: a rawSize over LargestUnpackedSize(packedSize) (packing.h) is refused
// before anything is allocated. Neither hash is checked, and a damaged stream is no failure: the image
// holds what could be unpacked, and zeros after it.
#pragma once

#include "facts/machine_facts.h"
#include "formats/sha256.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#pragma pack(push, 1)

struct GAME_HEADER {
    char tag[4];         // "GAME"
    uint32_t headerSize; // bytes of all records but GADA
    uint32_t rawSize;    // sum of the sizes of all ROM0 records
    uint32_t packedSize; // packed data, its five property bytes included
    uint16_t system;     // GameSystem
    uint8_t reserved[6];
    uint8_t dataHash[32];   // SHA-256 of the packed data
    uint8_t headerHash[32]; // SHA-256 of the records with both hashes and packedSize zero
};
static_assert(sizeof(GAME_HEADER) == 88);

struct NAME_RECORD {
    char tag[4];       // "NAME"
    uint8_t reserved4; // 1 for a game unknown to the database
    uint8_t playTypes; // 1 single, 2 co-operative, 4 competitive, 8 taking turns
    uint8_t year;      // minus 1900; 0 unknown
    uint8_t status;    // low seven bits: status class
    uint8_t reserved[8];
    char title[96];
    char altTitle[96];
    char regions[8];     // letters of "EJUBK"
    char contentKey[44]; // key of online content and media
    char contentKey2[44];
    uint8_t romList[64]; // ROM0 indices in playing order, ended by the first 255
};
static_assert(sizeof(NAME_RECORD) == 368);

struct ROM_RECORD {
    char tag[4];   // "ROM0"
    uint32_t size; // unpacked bytes
    uint8_t reserved[8];
    char name[32];
    uint8_t sha256[32]; // of the unpacked bytes
};
static_assert(sizeof(ROM_RECORD) == 80);

struct GADA_RECORD {
    char tag[4]; // "GADA", or zero when there is none
    char text[64];
};
static_assert(sizeof(GADA_RECORD) == 68);

// Any machine record: 24 bytes in memory whatever its size in a file.
struct MACHINE_RECORD {
    uint8_t bytes[24];
};

enum SmsFeature : uint8_t { kSmsFeatureGlasses = 1, kSmsFeatureFm = 2 };

struct SMS_RECORD {
    char tag[4]; // "SMS0"
    uint32_t reserved4;
    uint8_t features; // SmsFeature bits
    uint8_t reserved9[3];
    uint32_t input1; // device preset of port 1, in the low byte
    uint32_t input2;
    uint16_t board;   // cartridge board kind
    uint8_t consoles; // bits of the consoles it is for, as SmsConsole has them
    uint8_t kind;     // 3: a console BIOS
};
static_assert(sizeof(SMS_RECORD) == 24);

struct GAG_RECORD {
    char tag[4]; // "GAG0"
    uint8_t reserved4[16];
    uint16_t board; // at 20
    uint8_t unknown22;
};
static_assert(sizeof(GAG_RECORD) == 23);

struct ARC_RECORD {
    char tag[4]; // "ARC0"
    uint32_t reserved4;
    uint32_t board; // at 8
    uint32_t reserved12;
};
static_assert(sizeof(ARC_RECORD) == 16);

#pragma pack(pop)

// What SetNameText changes: null members stay as they are.
struct NAME_TEXTS {
    const char* title = nullptr;
    const char* altTitle = nullptr;
    const char* contentKey = nullptr;
    const char* contentKey2 = nullptr;
    const char* regions = nullptr;
};

// What GetName returns; the texts are ended by a NUL.
struct NAME_VIEW {
    std::string title;
    std::string altTitle;
    std::string contentKey;
    std::string contentKey2;
    std::string regions;
    NAME_RECORD raw{};
};

class CGameFile {
public:
    CGameFile();
    ~CGameFile();
    CGameFile(CGameFile&&) noexcept;
    CGameFile& operator=(CGameFile&&) noexcept;

    // Frees the image and empties everything; `selectedName` stays.
    void Reset();
    // An empty container for `system`, with an empty GADA record if asked for.
    void Create(bool withGada, uint16_t system);
    // At most 63 bytes.
    void SetGadaText(std::string_view text);

    // Reads records from the front of the data, and with `unpack` the image after them, which must end
    // exactly where the data ends. After a failure the records read so far are kept.
    [[nodiscard]] bool Parse(const uint8_t* data, size_t size, bool unpack);

    [[nodiscard]] uint32_t HeaderSize(bool withGada) const;
    [[nodiscard]] uint32_t TotalSize(bool withGada) const; // header and rawSize
    [[nodiscard]] uint32_t FixedRecordSize() const; // of a machine record of this system, in a file
    // All records, without the image. Sets tag and headerSize in the object.
    [[nodiscard]] std::vector<uint8_t> Serialise(bool withGada);
    void ComputeHeaderHash();
    // The whole `.game` file for this header and image; sets packedSize and both hashes. Empty when
    // the image is not of rawSize bytes or cannot be packed.
    [[nodiscard]] std::vector<uint8_t> WriteGame(std::span<const uint8_t> image);
    // The same for a database entry, whose headerHash stays as the database has it.
    [[nodiscard]] std::vector<uint8_t> WriteGameKeepingHash(std::span<const uint8_t> image);

    // Holds an image as if it had been unpacked. False when it is not of rawSize bytes.
    [[nodiscard]] bool SetData(std::vector<uint8_t> image);

    void AddRom(std::string_view name, const Sha256Digest& sha256, uint32_t size);
    // A title over 95 bytes runs on into altTitle, up to 127 bytes.
    void AddNameFromTitle(std::string_view title, uint8_t reserved4, uint8_t playTypes,
                          const MACHINE_RECORD& machineRecord);
    void AddNameCopy(const NAME_RECORD& nameRecord, const MACHINE_RECORD& machineRecord);
    void AddMachineRecord(const MACHINE_RECORD& record);
    // False for indices out of range and for 255 and above, which a slot cannot hold; true, storing
    // nothing, when all 64 slots are taken.
    bool LinkRom(uint32_t nameIndex, uint32_t romIndex);

    [[nodiscard]] bool GetName(uint32_t index, NAME_VIEW& name) const;
    [[nodiscard]] bool GetRawName(uint32_t index, NAME_RECORD& record) const;
    [[nodiscard]] bool GetRom(uint32_t index, std::string& name, ROM_RECORD& record) const;
    // The pointer is valid until the next change of this object.
    [[nodiscard]] bool GetMachineRecord(uint32_t index, const uint8_t*& record,
                                        uint32_t& length) const;
    // The first piece of this hash, or -1.
    [[nodiscard]] int FindRom(const Sha256Digest& sha256, ROM_RECORD* record = nullptr) const;
    [[nodiscard]] std::vector<int> NamesUsingRom(uint32_t romIndex) const; // ended by -1
    // 0 for a bad name; -1 for an empty slot or one out of range.
    [[nodiscard]] int NameRomAt(uint32_t nameIndex, uint32_t slot) const;
    [[nodiscard]] uint32_t RomOffset(uint32_t romIndex) const; // in the unpacked data

    // The pieces of a variant, joined. Empty for a bad index, when no image is unpacked, for a piece
    // outside it, and for more than kImageLimit bytes in all.
    [[nodiscard]] std::optional<std::vector<uint8_t>> AssembleImage(uint32_t nameIndex) const;
    [[nodiscard]] std::optional<std::vector<uint8_t>> AssembleSelectedImage() const;
    [[nodiscard]] bool SelectedMachineRecord(MACHINE_RECORD& record) const;
    // The hash of the ROM0 record whose index equals `selectedName`: the key of saved states uses the
    // name's index as a piece's. Null if there is none.
    [[nodiscard]] const uint8_t* SelectedRomHash() const;

    // Editing does nothing for an index out of range.
    // A text is cut at its field's width and has no NUL if it fills the field.
    void SetNameText(uint32_t index, const NAME_TEXTS& texts);
    // Copies the four bytes after the tag from the pattern, and the machine record.
    void SetNameBytes(uint32_t index, const NAME_RECORD& pattern,
                      const MACHINE_RECORD& machineRecord);
    void RenameRom(uint32_t index, std::string_view name);
    // Removes every occurrence of the piece from a name's list; with `renumber` the indices above it go
    // down by one.
    void UnlinkRom(uint32_t nameIndex, uint32_t romIndex, bool renumber);
    // Also unlinks the piece from every name, with renumbering.
    void RemoveRom(uint32_t index);
    // Also removes the machine record of this index.
    void RemoveName(uint32_t index);

    [[nodiscard]] uint32_t NameCount() const;
    [[nodiscard]] uint32_t RomCount() const;
    [[nodiscard]] uint32_t MachineRecordCount() const;
    [[nodiscard]] const GAME_HEADER& Header() const;
    [[nodiscard]] bool HasGada() const;
    [[nodiscard]] std::string GadaText() const;
    [[nodiscard]] bool HeaderParsed() const;
    [[nodiscard]] bool DataUnpacked() const;
    [[nodiscard]] std::span<const uint8_t> Data() const; // the unpacked image; empty until unpacked

    int32_t selectedName = -1; // index of the NAME record that the user picked

private:
    // Reads one record at the front of `rest`. Returns the bytes read; 0 for an unknown tag, a record
    // out of place or one that does not fit.
    [[nodiscard]] size_t TakeRecord(std::span<const uint8_t> rest);
    [[nodiscard]] size_t TakeMachineRecord(std::span<const uint8_t> rest);
    void TakeDefaultMachineRecord();
    [[nodiscard]] bool TakeRecords(std::span<const uint8_t> data, size_t& consumed);
    [[nodiscard]] bool Unpack(std::span<const uint8_t> packed);
    [[nodiscard]] MACHINE_RECORD FittedMachineRecord(const MACHINE_RECORD& record) const;
    [[nodiscard]] uint64_t LongRomOffset(size_t romIndex) const;

    GADA_RECORD gada{};
    GAME_HEADER header{};
    std::vector<NAME_RECORD> names;
    std::vector<ROM_RECORD> roms;
    std::vector<MACHINE_RECORD> machineRecords; // beyond FixedRecordSize() zero
    std::vector<uint8_t> data;
    bool headerParsed = false;
    bool dataUnpacked = false;
};

// The largest `.game` file that is read, well over what the largest image packs to.
inline constexpr uint64_t kGameFileLimit = uint64_t{1} << 29;

// The bytes of the records in a `.game` file of this length, as the header at its front says. 0 for a
// front of under 88 bytes, one that is no header, or more records than the file or the limit holds.
[[nodiscard]] uint32_t GameRecordBytes(std::span<const uint8_t> front, uint64_t fileSize);

// Reads a `.game` file: with `headerOnly` its records alone, ignoring what follows; otherwise all of
// it, and then the file must be exactly as long as its header says. A file that does not begin with
// "GAME" is refused.
[[nodiscard]] bool LoadGameFile(bool headerOnly, const std::filesystem::path& path,
                                CGameFile& game);

// The entries of a `.dat` file. Stops at the first bytes that are no entry and returns the entries
// before them.
[[nodiscard]] std::vector<CGameFile> ParseDatabase(const uint8_t* data, size_t size);
