#include "host/state_snapshot.h"

#include "base/files.h"
#include "formats/png_picture.h"
#include "formats/sha256.h"
#include "formats/zip.h"
#include "host/archive.h"
#include "host/host_data.h"
#include "host/session.h"
#include "host/session_list.h"
#include "host/session_tape.h"

#include <pugixml.hpp>

#include <algorithm>
#include <charconv>
#include <mutex>
#include <optional>
#include <utility>

namespace {

constexpr const char* kAboutEntry = "about.xml";
constexpr const char* kPictureEntry = "picture.png";
constexpr const char* kStateEntry = "state";
constexpr uint32_t kVersion = 1;

// A byte of a text may take six in XML.
constexpr uint64_t kLongestAbout = uint64_t{1} << 21;
constexpr uint64_t kLongestPicture = uint64_t{1} << 23; // of the PNG
constexpr uint64_t kLongestFile = uint64_t{1} << 25;
constexpr float kNarrowest = 0.01f; // display aspects
constexpr float kWidest = 100.0f;

using Bytes = std::vector<uint8_t>;

bool Refuse(std::string& error, std::string reason) {
    error = std::move(reason);
    return false;
}

// ---- A session's picture and state.

// The newest published frame is never the one that the session draws into. Under the session's lock, which also
// keeps `hostData`.
void CopyPicture(EMU_THREAD& session, SNAPSHOT_PICTURE& picture) {
    EMU_HOST_DATA* const data = session.hostData;
    if (data == nullptr) {
        return;
    }
    const std::scoped_lock hold(EmuFrameMutex());
    constexpr uint32_t kFrames = std::size(decltype(data->frames){});
    const EMU_VIDEO_FRAME& frame = data->frames[(data->writeIndex + kFrames - 1) % kFrames];
    if (frame.visibleWidth == 0 || frame.visibleHeight == 0 ||
        std::max(frame.visibleWidth, frame.visibleHeight) > kLongestSnapshotSide) {
        return;
    }
    picture.width = frame.visibleWidth;
    picture.height = frame.visibleHeight;
    picture.aspect = frame.visibleAspect;
    picture.pixels.reserve(size_t{picture.width} * picture.height);
    for (uint32_t y = 0; y < picture.height; ++y) {
        const uint32_t* const row =
            frame.pixels + size_t{frame.visibleY + y} * frame.width + frame.visibleX;
        picture.pixels.insert(picture.pixels.end(), row, row + picture.width);
    }
}

// What a machine without a display aspect shows has square pixels.
void CompletePicture(SNAPSHOT_PICTURE& picture) {
    for (uint32_t& pixel : picture.pixels) {
        pixel |= 0xFF000000u;
    }
    if (!(picture.aspect >= kNarrowest && picture.aspect <= kWidest)) {
        picture.aspect = static_cast<float>(std::max(picture.width, 1u)) /
                         static_cast<float>(std::max(picture.height, 1u));
        picture.aspect = std::clamp(picture.aspect, kNarrowest, kWidest);
    }
}

// False without a state.
bool Store(const TAKEN_STATE& state, SNAPSHOT_PICTURE&& picture, STATE_SNAPSHOT& snapshot) {
    snapshot.state.assign(state.bytes.get(), state.bytes.get() + state.size);
    snapshot.picture = std::move(picture);
    CompletePicture(snapshot.picture);
    return !snapshot.state.empty();
}

// A machine that had ended is left ended by a refused state.
bool LoadOrPutBack(EMU_THREAD& session, std::span<const uint8_t> state, const TAKEN_STATE& before) {
    CEmuSystem& machine = *session.machine;
    const bool hadEnded = machine.ended;
    const std::string reason = machine.endReason;
    TapeNoteState(session);
    if (machine.LoadState(state.data(), static_cast<uint32_t>(state.size()))) {
        return true;
    }
    if (!machine.LoadState(before.bytes.get(), before.size)) {
        machine.Reset(); // it refuses its own state, so there is nothing to go on with
    } else if (hadEnded) {
        machine.endReason = reason;
        machine.ended = true;
    }
    return false;
}

// ---- about.xml

template <typename Number>
std::string NumberText(Number number) {
    char text[64];
    const auto result = std::to_chars(text, text + sizeof text, number);
    return {text, result.ptr};
}

// The whole text must be the number.
template <typename Number>
bool ReadNumber(pugi::xml_node node, const char* name, Number& number) {
    const std::string_view text = node.attribute(name).value();
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

void Put(pugi::xml_node node, const char* name, const std::string& value) {
    node.append_attribute(name).set_value(value.c_str());
}

class ByteWriter : public pugi::xml_writer {
public:
    explicit ByteWriter(Bytes& target)
        : bytes(target) {}
    void write(const void* data, size_t size) override {
        const auto* const first = static_cast<const uint8_t*>(data);
        bytes.insert(bytes.end(), first, first + size);
    }

private:
    Bytes& bytes;
};

// What about.xml says of another entry.
struct PART_FACTS {
    uint64_t size = 0;
    std::string sha256;
};

void PutPart(pugi::xml_node node, const Bytes& part) {
    Put(node, "size", NumberText(part.size()));
    Put(node, "sha256", HexText(Sha256(part)));
}

bool ReadPart(pugi::xml_node node, uint64_t limit, PART_FACTS& facts) {
    facts.sha256 = node.attribute("sha256").value();
    return ReadNumber(node, "size", facts.size) && facts.size > 0 && facts.size <= limit;
}

Bytes MakeAbout(const STATE_SNAPSHOT& snapshot, const Bytes& png) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("snapshot");
    Put(root, "version", NumberText(kVersion));
    Put(root, "taken", NumberText(snapshot.takenAt));
    Put(root, "played", NumberText(snapshot.secondsPlayed));
    PutPart(root.append_child("state"), snapshot.state);
    if (!png.empty()) {
        pugi::xml_node picture = root.append_child("picture");
        PutPart(picture, png);
        Put(picture, "width", NumberText(snapshot.picture.width));
        Put(picture, "height", NumberText(snapshot.picture.height));
        Put(picture, "aspect", NumberText(snapshot.picture.aspect));
    }
    for (const SNAPSHOT_TEXT& text : snapshot.texts) {
        pugi::xml_node node = root.append_child("text");
        Put(node, "name", text.name);
        Put(node, "value", text.value);
    }
    Bytes bytes;
    ByteWriter writer(bytes);
    document.save(writer, "    ", pugi::format_indent, pugi::encoding_utf8);
    return bytes;
}

struct ABOUT {
    PART_FACTS state;
    std::optional<PART_FACTS> picture;
};

bool TextFits(const SNAPSHOT_TEXT& text) {
    return !text.name.empty() && text.name.size() <= kLongestSnapshotName &&
           text.value.size() <= kLongestSnapshotText;
}

bool PictureFits(const SNAPSHOT_PICTURE& picture) {
    return picture.width > 0 && picture.height > 0 && picture.width <= kLongestSnapshotSide &&
           picture.height <= kLongestSnapshotSide && picture.aspect >= kNarrowest &&
           picture.aspect <= kWidest;
}

bool ReadTexts(pugi::xml_node root, std::vector<SNAPSHOT_TEXT>& texts) {
    for (const pugi::xml_node node : root.children("text")) {
        SNAPSHOT_TEXT text{node.attribute("name").value(), node.attribute("value").value()};
        if (!TextFits(text) || texts.size() == kMostSnapshotTexts) {
            return false;
        }
        texts.push_back(std::move(text));
    }
    return true;
}

bool ReadAbout(const Bytes& xml, STATE_SNAPSHOT& snapshot, ABOUT& about, std::string& error) {
    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer(xml.data(), xml.size(), pugi::parse_escapes, pugi::encoding_utf8);
    const pugi::xml_node root = document.child("snapshot");
    if (!parsed || !root) {
        return Refuse(error, "about.xml is not that of a saved state");
    }
    uint32_t version = 0;
    if (!ReadNumber(root, "version", version) || version != kVersion) {
        return Refuse(error, "is of version " + std::string(root.attribute("version").value()) +
                                 ", and this program reads version " + NumberText(kVersion));
    }
    const bool times = ReadNumber(root, "taken", snapshot.takenAt) &&
                       ReadNumber(root, "played", snapshot.secondsPlayed);
    if (!times || !ReadPart(root.child("state"), kLargestSnapshotState, about.state)) {
        return Refuse(error, "about.xml says no possible time or length of the state");
    }
    if (const pugi::xml_node node = root.child("picture")) {
        SNAPSHOT_PICTURE& picture = snapshot.picture;
        if (!ReadPart(node, kLongestPicture, about.picture.emplace()) ||
            !ReadNumber(node, "width", picture.width) ||
            !ReadNumber(node, "height", picture.height) ||
            !ReadNumber(node, "aspect", picture.aspect) || !PictureFits(picture)) {
            return Refuse(error, "about.xml says no possible size of the picture");
        }
    }
    return ReadTexts(root, snapshot.texts) ||
           Refuse(error, "about.xml has a text without a name, or too many or too long ones");
}

// ---- The zip around it.

bool ReadEntry(const ZipReader& zip, const char* name, uint64_t limit, Bytes& bytes,
               std::string& error) {
    for (uint32_t i = 0; i < zip.EntryCount(); ++i) {
        ZIP_ENTRY entry;
        if (zip.Entry(i, entry) && entry.rawName == name) {
            return zip.Unpack(i, bytes, error, limit);
        }
    }
    return Refuse(error, "has no " + std::string(name));
}

bool ReadPartEntry(const ZipReader& zip, const char* name, const PART_FACTS& facts, Bytes& bytes,
                   std::string& error) {
    if (!ReadEntry(zip, name, facts.size, bytes, error)) {
        return false;
    }
    return (bytes.size() == facts.size && HexText(Sha256(bytes)) == facts.sha256) ||
           Refuse(error, std::string(name) + " is not the one that about.xml describes");
}

bool ReadPicture(const ZipReader& zip, const PART_FACTS& facts, SNAPSHOT_PICTURE& picture,
                 std::string& error) {
    Bytes file;
    PNG_PICTURE png;
    if (!ReadPartEntry(zip, kPictureEntry, facts, file, error)) {
        return false;
    }
    if (!DecodePng(file, kLongestSnapshotSide, png) || png.width != picture.width ||
        png.height != picture.height) {
        return Refuse(error, "picture.png cannot be read, or is of another size");
    }
    picture.pixels = std::move(png.pixels);
    return true;
}

bool ReadParts(std::span<const uint8_t> file, SnapshotParts parts, STATE_SNAPSHOT& snapshot,
               std::string& error) {
    ZipReader zip;
    Bytes xml;
    ABOUT about;
    return zip.Open(file, error) && ReadEntry(zip, kAboutEntry, kLongestAbout, xml, error) &&
           ReadAbout(xml, snapshot, about, error) &&
           (!about.picture || ReadPicture(zip, *about.picture, snapshot.picture, error)) &&
           (parts == SnapshotParts::kLabel ||
            ReadPartEntry(zip, kStateEntry, about.state, snapshot.state, error));
}

// What could not be read again is not written.
bool MayBeWritten(const STATE_SNAPSHOT& snapshot, std::string& error) {
    if (snapshot.state.empty() || snapshot.state.size() > kLargestSnapshotState) {
        return Refuse(error, "a state of " + NumberText(snapshot.state.size()) + " bytes");
    }
    const SNAPSHOT_PICTURE& picture = snapshot.picture;
    const bool none = picture.width == 0 && picture.height == 0 && picture.pixels.empty();
    if (!none && (!PictureFits(picture) ||
                  picture.pixels.size() != size_t{picture.width} * picture.height)) {
        return Refuse(error, "a picture of " + NumberText(picture.width) + " by " +
                                 NumberText(picture.height) + " pixels");
    }
    const bool texts =
        snapshot.texts.size() <= kMostSnapshotTexts &&
        std::all_of(snapshot.texts.begin(), snapshot.texts.end(), [](const SNAPSHOT_TEXT& text) {
            return TextFits(text) && text.name.find('\0') == std::string::npos &&
                   text.value.find('\0') == std::string::npos;
        });
    return texts || Refuse(error, "a text without a name, or too many or too long ones");
}

bool ReadFrom(const std::filesystem::path& path, SnapshotParts parts, STATE_SNAPSHOT& snapshot,
              std::string& error) {
    snapshot = {};
    Bytes file;
    if (!ReadFile(path, file, error, kLongestFile)) {
        return false;
    }
    std::string reason;
    if (!UnpackSnapshot(file, parts, snapshot, reason)) {
        error = path.string() + ": is not a saved state: " + reason;
        return false;
    }
    return true;
}

} // namespace

std::string SnapshotText(const STATE_SNAPSHOT& snapshot, std::string_view name) {
    const auto found = std::find_if(snapshot.texts.begin(), snapshot.texts.end(),
                                    [&](const SNAPSHOT_TEXT& text) { return text.name == name; });
    return found == snapshot.texts.end() ? std::string() : found->value;
}

bool EmuTakeSnapshot(EMU_THREAD& session, STATE_SNAPSHOT& snapshot) {
    TAKEN_STATE taken;
    SNAPSHOT_PICTURE picture;
    {
        const SessionHold hold(session);
        taken = EmuTakeState(session);
        CopyPicture(session, picture);
    }
    return Store(taken, std::move(picture), snapshot);
}

bool EmuGiveState(EMU_THREAD& session, std::span<const uint8_t> state, STATE_SNAPSHOT* before) {
    TAKEN_STATE left;
    SNAPSHOT_PICTURE picture;
    bool loaded = false;
    {
        const SessionHold hold(session);
        left = EmuTakeState(session);
        if (before != nullptr) {
            CopyPicture(session, picture);
        }
        // Without a state to put back nothing is tried.
        loaded = left.bytes && !state.empty() && LoadOrPutBack(session, state, left);
        if (loaded) {
            session.battery.rolledBack = true;
            session.showStatic = 0;
        }
    }
    if (before != nullptr) {
        static_cast<void>(Store(left, std::move(picture), *before));
    }
    return loaded;
}

Bytes PackSnapshot(const STATE_SNAPSHOT& snapshot, std::string& error) {
    if (!MayBeWritten(snapshot, error)) {
        return {};
    }
    const SNAPSHOT_PICTURE& picture = snapshot.picture;
    const Bytes png = EncodePng({picture.width, picture.height, picture.pixels});
    if (png.empty() != picture.pixels.empty() || png.size() > kLongestPicture) {
        error = "its picture cannot be packed";
        return {};
    }
    ZipWriter writer;
    if (!writer.Add(kAboutEntry, MakeAbout(snapshot, png), error) ||
        (!png.empty() && !writer.Add(kPictureEntry, png, error)) ||
        !writer.Add(kStateEntry, snapshot.state, error)) {
        return {};
    }
    return writer.Finish(error);
}

bool UnpackSnapshot(std::span<const uint8_t> file, SnapshotParts parts, STATE_SNAPSHOT& snapshot,
                    std::string& error) {
    snapshot = {};
    if (ReadParts(file, parts, snapshot, error)) {
        return true;
    }
    snapshot = {};
    return false;
}

bool WriteSnapshot(const std::filesystem::path& path, const STATE_SNAPSHOT& snapshot,
                   std::string& error) {
    std::string reason;
    const Bytes file = PackSnapshot(snapshot, reason);
    if (file.empty()) {
        error = path.string() + ": cannot be written: " + reason;
        return false;
    }
    return WriteFile(path, file, error);
}

bool ReadSnapshot(const std::filesystem::path& path, STATE_SNAPSHOT& snapshot, std::string& error) {
    return ReadFrom(path, SnapshotParts::kAll, snapshot, error);
}

bool ReadSnapshotLabel(const std::filesystem::path& path, STATE_SNAPSHOT& snapshot,
                       std::string& error) {
    return ReadFrom(path, SnapshotParts::kLabel, snapshot, error);
}
