#include "formats/soft_patch.h"

#include "base/bytes.h"
#include "formats/checksums.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

namespace {

constexpr std::string_view kIpsMark = "PATCH";
constexpr std::string_view kUpsMark = "UPS1";
constexpr std::string_view kBpsMark = "BPS1";
constexpr size_t kFooter = 12; // the CRC-32s of image, result and patch

constexpr const char* kCutOff = "is cut off";
constexpr const char* kTooLarge = "makes too large an image";

using Bytes = std::span<const uint8_t>;

bool BeginsWith(Bytes bytes, std::string_view mark) {
    return bytes.size() >= mark.size() && std::memcmp(bytes.data(), mark.data(), mark.size()) == 0;
}

// Reads a patch from its front. What lies past the end makes `cutOff`, and reads as zero.
class PatchReader {
public:
    explicit PatchReader(Bytes patch)
        : rest(patch) {}

    [[nodiscard]] size_t Left() const { return rest.size(); }
    [[nodiscard]] bool CutOff() const { return cutOff; }

    Bytes Take(size_t count) {
        if (count > rest.size()) {
            cutOff = true;
            count = rest.size();
        }
        const Bytes taken = rest.first(count);
        rest = rest.subspan(count);
        return taken;
    }

    uint8_t Byte() {
        const Bytes byte = Take(1);
        return byte.empty() ? uint8_t{0} : byte.front();
    }

    uint32_t BigEndian(size_t width) {
        uint32_t value = 0;
        for (const uint8_t byte : Take(width)) {
            value = value << 8 | byte;
        }
        return value;
    }

    // Seven bits a byte, the lowest first; the last byte has bit 7 set. Each further byte also counts what shorter
    // numbers can say already, so that a number has one form. Empty for more than any size needs.
    std::optional<uint64_t> Number() {
        uint64_t value = 0;
        for (uint32_t shift = 0; shift < 42; shift += 7) {
            const uint8_t byte = Byte();
            value += static_cast<uint64_t>(byte & 0x7F) << shift;
            if (cutOff) {
                return std::nullopt;
            }
            if ((byte & 0x80) != 0) {
                return value;
            }
            value += uint64_t{1} << (shift + 7);
        }
        cutOff = true;
        return std::nullopt;
    }

private:
    Bytes rest;
    bool cutOff = false;
};

// The patch ends with "EOF", or with it and the size to which the result is cut. The same three bytes are also the
// offset of a record, which is then longer.
bool AtIpsEnd(Bytes rest) {
    return BeginsWith(rest, "EOF") && (rest.size() == 3 || rest.size() == 6);
}

bool ApplyIps(Bytes patch, Bytes image, uint64_t limit, std::vector<uint8_t>& patched,
              std::string& error) {
    patched.assign(image.begin(), image.end());
    size_t at = kIpsMark.size();
    while (!AtIpsEnd(patch.subspan(at))) {
        PatchReader reader(patch.subspan(at));
        const size_t offset = reader.BigEndian(3);
        const size_t size = reader.BigEndian(2);
        const size_t run = size == 0 ? reader.BigEndian(2) : size;
        const Bytes bytes = reader.Take(size == 0 ? 1 : size);
        if (reader.CutOff()) {
            error = kCutOff;
            return false;
        }
        if (offset + run > limit) {
            error = kTooLarge;
            return false;
        }
        patched.resize(std::max(patched.size(), offset + run));
        const auto to = patched.begin() + static_cast<std::ptrdiff_t>(offset);
        if (size == 0) {
            std::fill_n(to, run, bytes.front());
        } else {
            std::ranges::copy(bytes, to);
        }
        at = patch.size() - reader.Left();
    }
    PatchReader tail(patch.subspan(at + 3));
    if (tail.Left() != 0) {
        patched.resize(std::min<size_t>(patched.size(), tail.BigEndian(3)));
    }
    return true;
}

// What UPS and BPS have in common.
struct SIZES {
    uint64_t image = 0;
    uint64_t patched = 0;
};

// Checks patch and image against the footer, and reads the sizes at the front.
bool ReadSizes(Bytes patch, Bytes image, uint64_t limit, PatchReader& reader, SIZES& sizes,
               std::string& error) {
    const Bytes footer = patch.last(kFooter);
    if (Crc32(patch.first(patch.size() - 4)) != LoadLittleEndian<uint32_t>(footer.data() + 8)) {
        error = "is damaged: its own checksum is wrong";
        return false;
    }
    sizes.image = reader.Number().value_or(0);
    sizes.patched = reader.Number().value_or(0);
    if (reader.CutOff()) {
        error = kCutOff;
        return false;
    }
    const uint32_t crc = Crc32(image);
    if (image.size() == sizes.patched && crc == LoadLittleEndian<uint32_t>(footer.data() + 4)) {
        error = "has been applied to this game already";
        return false;
    }
    if (image.size() != sizes.image || crc != LoadLittleEndian<uint32_t>(footer.data())) {
        error = "is for another game, or for another version of it";
        return false;
    }
    if (sizes.patched > limit) {
        error = kTooLarge;
        return false;
    }
    return true;
}

bool CheckResult(Bytes patch, Bytes patched, std::string& error) {
    if (Crc32(patched) != LoadLittleEndian<uint32_t>(patch.last(kFooter).data() + 4)) {
        error = "does not make the image that it names";
        return false;
    }
    return true;
}

bool ApplyUps(Bytes patch, Bytes image, uint64_t limit, std::vector<uint8_t>& patched,
              std::string& error) {
    PatchReader reader(patch.first(patch.size() - kFooter).subspan(kUpsMark.size()));
    SIZES sizes;
    if (!ReadSizes(patch, image, limit, reader, sizes, error)) {
        return false;
    }
    patched.assign(image.begin(), image.end());
    patched.resize(static_cast<size_t>(sizes.patched));
    uint64_t at = 0;
    while (reader.Left() != 0 && !reader.CutOff()) {
        at += reader.Number().value_or(0);
        // A run ends with a zero, for a byte that is the same in both.
        uint8_t change = reader.Byte();
        for (; change != 0; change = reader.Byte(), ++at) {
            if (at <
                patched
                    .size()) { // where the image is the longer one, the patch can also be taken back
                patched[static_cast<size_t>(at)] ^= change;
            }
        }
        ++at;
    }
    if (reader.CutOff()) {
        error = kCutOff;
        return false;
    }
    return CheckResult(patch, patched, error);
}

// Moves a position of a copy, by a number whose lowest bit is the sign.
bool Move(uint64_t& position, std::optional<uint64_t> by) {
    const uint64_t distance = by.value_or(0) >> 1;
    const bool back = (by.value_or(0) & 1) != 0;
    if (!by || (back && distance > position)) {
        return false;
    }
    position = back ? position - distance : position + distance;
    return true;
}

class BpsRun {
public:
    BpsRun(PatchReader& patchReader, Bytes from, std::vector<uint8_t>& to, size_t size)
        : reader(patchReader)
        , image(from)
        , patched(to)
        , room(size) {
        patched.reserve(size);
    }

    // One action. False if it reads or writes what there isn't.
    bool Step() {
        const std::optional<uint64_t> action = reader.Number();
        const uint64_t length = (action.value_or(0) >> 2) + 1;
        if (!action || length > room - patched.size()) {
            return false;
        }
        switch (*action & 3) {
        case 0: return Copy(image, patched.size(), length);
        case 1: return Append(reader.Take(static_cast<size_t>(length)), length);
        case 2:
            if (!Move(imageAt, reader.Number()) || !Copy(image, imageAt, length)) {
                return false;
            }
            imageAt += length;
            return true;
        default: break;
        }
        return Move(patchedAt, reader.Number()) && Repeat(length);
    }

private:
    bool Append(Bytes bytes, uint64_t length) {
        patched.insert(patched.end(), bytes.begin(), bytes.end());
        return bytes.size() == length;
    }

    bool Copy(Bytes from, uint64_t at, uint64_t length) {
        return at <= from.size() && length <= from.size() - at &&
               Append(from.subspan(static_cast<size_t>(at), static_cast<size_t>(length)), length);
    }

    // Byte by byte: a copy that overlaps its own result repeats it.
    bool Repeat(uint64_t length) {
        for (; length != 0; --length, ++patchedAt) {
            if (patchedAt >= patched.size()) {
                return false;
            }
            patched.push_back(patched[static_cast<size_t>(patchedAt)]);
        }
        return true;
    }

    PatchReader& reader;
    Bytes image;
    std::vector<uint8_t>& patched;
    size_t room;
    uint64_t imageAt = 0;
    uint64_t patchedAt = 0;
};

bool ApplyBps(Bytes patch, Bytes image, uint64_t limit, std::vector<uint8_t>& patched,
              std::string& error) {
    PatchReader reader(patch.first(patch.size() - kFooter).subspan(kBpsMark.size()));
    SIZES sizes;
    if (!ReadSizes(patch, image, limit, reader, sizes, error)) {
        return false;
    }
    const std::optional<uint64_t> notes = reader.Number();
    if (!notes || *notes > reader.Left()) {
        error = kCutOff;
        return false;
    }
    reader.Take(static_cast<size_t>(*notes));
    BpsRun run(reader, image, patched, static_cast<size_t>(sizes.patched));
    while (reader.Left() != 0) {
        if (!run.Step()) {
            error = "copies what is not there";
            return false;
        }
    }
    patched.resize(static_cast<size_t>(sizes.patched));
    return CheckResult(patch, patched, error);
}

} // namespace

bool IsSoftPatch(Bytes patch) {
    return BeginsWith(patch, kIpsMark) || BeginsWith(patch, kUpsMark) ||
           BeginsWith(patch, kBpsMark);
}

bool ApplySoftPatch(Bytes patch, Bytes image, uint64_t limit, std::vector<uint8_t>& patched,
                    std::string& error) {
    patched.clear();
    bool done = false;
    if (BeginsWith(patch, kIpsMark)) {
        done = ApplyIps(patch, image, limit, patched, error);
    } else if (!IsSoftPatch(patch)) {
        error = "is not a patch that is known here (IPS, UPS or BPS)";
    } else if (patch.size() < kUpsMark.size() + kFooter) {
        error = kCutOff;
    } else {
        done = BeginsWith(patch, kUpsMark) ? ApplyUps(patch, image, limit, patched, error)
                                           : ApplyBps(patch, image, limit, patched, error);
    }
    if (!done) {
        patched.clear();
    }
    return done;
}
