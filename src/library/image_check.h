// Whether a file can be a game at all.
//
// Everything that takes games asks here: `play`, `convert`, `info`, adding, and the conversion of a folder. It
// refuses only what is certainly none, and accepts a file in doubt: dumps without a header, with a copier's header
// or with bytes left over are all played by somebody. A database that knows an image overrules it.
//
// Any thread may call.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

enum class ImageFault : uint8_t {
    kNone,
    kOtherKind, // a text, a picture, an archive, a program: what lies beside games in any folder
    kDamaged,   // a game of which a part is missing
};

struct IMAGE_VERDICT {
    ImageFault fault = ImageFault::kNone;
    std::string reason; // what follows "FILE: "; empty without a fault
};

// `file` is as on the disk, with a copier's header; `system` the machine that it is to be played on. Pieces of arcade
// boards are always accepted, since some chips are tiny.
[[nodiscard]] IMAGE_VERDICT CheckImage(uint16_t system, std::span<const uint8_t> file);

// The same of an image in a `.game`, which is as the machine sees it.
[[nodiscard]] IMAGE_VERDICT CheckPreparedImage(uint16_t system, std::span<const uint8_t> image);

// What a file of no machine is, by its first bytes or because all of it is text ("is a PNG picture"); empty for
// anything else.
[[nodiscard]] std::string_view OtherKindOf(std::span<const uint8_t> file);
