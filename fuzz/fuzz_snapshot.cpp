// Files of saved states. The first byte says what the rest is: 0 a whole file; 1 the about.xml of a file whose state
// is one "s" and whose picture one pixel; 2 the picture of a file in which all lengths and hashes are right.
#include "formats/png_picture.h"
#include "formats/sha256.h"
#include "formats/zip.h"
#include "host/state_snapshot.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

using Bytes = std::vector<uint8_t>;

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

Bytes Zip(const Bytes& about, const Bytes& picture) {
    ZipWriter writer;
    std::string error;
    const Bytes state = {'s'};
    Require(writer.Add("about.xml", about, error) && writer.Add("picture.png", picture, error) &&
            writer.Add("state", state, error));
    return writer.Finish(error);
}

Bytes AboutOf(const Bytes& picture) {
    PNG_PICTURE size;
    const bool read = DecodePng(picture, kLongestSnapshotSide, size);
    const std::string xml =
        R"(<snapshot version="1" taken="0" played="0"><state size="1" sha256=")" +
        HexText(Sha256(Bytes{'s'})) + R"("/><picture size=")" + std::to_string(picture.size()) +
        R"(" sha256=")" + HexText(Sha256(picture)) + R"(" width=")" +
        std::to_string(read ? size.width : 1) + R"(" height=")" +
        std::to_string(read ? size.height : 1) + R"(" aspect="1.5"/></snapshot>)";
    return {xml.begin(), xml.end()};
}

Bytes FileOf(uint8_t kind, const Bytes& rest) {
    switch (kind) {
    case 1: return Zip(rest, EncodePng({1, 1, {0xFF000000}}));
    case 2: return Zip(AboutOf(rest), rest);
    default: return rest;
    }
}

bool Same(const STATE_SNAPSHOT& a, const STATE_SNAPSHOT& b) {
    return a.state == b.state && a.picture.pixels == b.picture.pixels &&
           a.picture.width == b.picture.width && a.picture.aspect == b.picture.aspect &&
           a.takenAt == b.takenAt && a.secondsPlayed == b.secondsPlayed &&
           std::equal(a.texts.begin(), a.texts.end(), b.texts.begin(), b.texts.end(),
                      [](const SNAPSHOT_TEXT& left, const SNAPSHOT_TEXT& right) {
                          return left.name == right.name && left.value == right.value;
                      });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const Bytes file = FileOf(data[0], {data + 1, data + size});
    STATE_SNAPSHOT snapshot;
    STATE_SNAPSHOT label;
    std::string error;
    const bool labelled = UnpackSnapshot(file, SnapshotParts::kLabel, label, error);
    if (!UnpackSnapshot(file, SnapshotParts::kAll, snapshot, error)) {
        Require(!error.empty() && snapshot.state.empty() && snapshot.texts.empty());
        return 0;
    }
    Require(labelled && !snapshot.state.empty());
    // What can be read can be written, and is then the same.
    const Bytes again = PackSnapshot(snapshot, error);
    STATE_SNAPSHOT second;
    Require(UnpackSnapshot(again, SnapshotParts::kAll, second, error) && Same(snapshot, second));
    return 0;
}
