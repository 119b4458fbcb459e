#include "host/screenshot.h"

#include "base/bytes.h"
#include "base/files.h"
#include "facts/machine_facts.h"
#include "formats/png_picture.h"
#include "host/report.h"
#include "host/session.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <atomic>
#include <filesystem>
#include <system_error>

namespace {

constexpr uint32_t kBmpHeader = 54;
constexpr uint32_t kBmpInfo = 40;

std::atomic<bool> gKeyWasDown{false};
std::atomic<WindowShotSink> gWindowShots{nullptr};

std::tm LocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm time{};
#ifdef _WIN32
    localtime_s(&time, &now);
#else
    localtime_r(&now, &time);
#endif
    return time;
}

void WriteBmpHeader(uint8_t* out, uint32_t width, uint32_t height, uint32_t fileSize) {
    out[0] = 'B';
    out[1] = 'M';
    StoreLittleEndian<uint32_t>(out + 2, fileSize);
    StoreLittleEndian<uint32_t>(out + 10, kBmpHeader);
    StoreLittleEndian<uint32_t>(out + 14, kBmpInfo);
    StoreLittleEndian<uint32_t>(out + 18, width);
    StoreLittleEndian<uint32_t>(out + 22, height);
    StoreLittleEndian<uint16_t>(out + 26, 1);  // planes
    StoreLittleEndian<uint16_t>(out + 28, 24); // bits a pixel; the rest stays 0: no compression
}

// The shown part of a picture, which may be nothing.
struct SHOT_AREA {
    uint32_t left;
    uint32_t top;
    uint32_t width;
    uint32_t height;
};

SHOT_AREA ShotArea(const EMU_VIDEO_FRAME& video, bool wholePicture) {
    if (video.pixels == nullptr) {
        return {};
    }
    return wholePicture
               ? SHOT_AREA{0, 0, video.width, video.height}
               : SHOT_AREA{video.visibleX, video.visibleY, video.visibleWidth, video.visibleHeight};
}

// As PNG's own keyword wants it: RFC 3339, but for the colon in the zone.
std::string TimeText(const std::tm& time) {
    char text[64];
    const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &time);
    return {text, length};
}

} // namespace

std::vector<uint8_t> EncodeScreenshotPng(const EMU_VIDEO_FRAME& video, bool wholePicture,
                                         const SCREENSHOT_FACTS& facts) {
    const SHOT_AREA area = ShotArea(video, wholePicture);
    PNG_PICTURE picture{area.width, area.height, {}};
    picture.pixels.reserve(size_t{area.width} * area.height);
    for (uint32_t row = 0; row < area.height; ++row) {
        const uint32_t* const source =
            video.pixels + size_t{area.top + row} * video.width + area.left;
        picture.pixels.insert(picture.pixels.end(), source, source + area.width);
    }
    return EncodePng(picture, {
                                  {"Title",         facts.gameName      },
                                  {"Source",        facts.machine       },
                                  {"Creation Time", TimeText(facts.time)},
                                  {"Software",      "Ombrelune"         },
    });
}

std::vector<uint8_t> EncodeBmp(const EMU_VIDEO_FRAME& video, bool wholePicture) {
    const auto [left, top, width, height] = ShotArea(video, wholePicture);
    if (width == 0 || height == 0) {
        return {};
    }
    const size_t rowBytes = (size_t{width} * 3 + 3) / 4 * 4;
    std::vector<uint8_t> file(kBmpHeader + rowBytes * height);
    WriteBmpHeader(file.data(), width, height, static_cast<uint32_t>(file.size()));
    for (uint32_t row = 0; row < height; ++row) {
        const uint32_t* source = video.pixels + size_t{top + height - 1 - row} * video.width + left;
        uint8_t* out = file.data() + kBmpHeader + rowBytes * row;
        for (uint32_t x = 0; x < width; ++x, out += 3) {
            out[0] = static_cast<uint8_t>(source[x]);
            out[1] = static_cast<uint8_t>(source[x] >> 8);
            out[2] = static_cast<uint8_t>(source[x] >> 16);
        }
    }
    return file;
}

std::string ScreenshotName(const std::string& gameName, const std::tm& time, uint32_t attempt,
                           ScreenshotKind kind) {
    char stamp[64];
    const size_t length = std::strftime(stamp, sizeof stamp, " %Y-%m-%d %H-%M-%S", &time);
    std::string name = FileNameFromTitle(gameName) + std::string(stamp, length);
    if (attempt != 0) {
        name.append("-").append(std::to_string(attempt));
    }
    return name + (kind == ScreenshotKind::kBmp ? ".bmp" : ".png");
}

SCREENSHOT_FACTS ScreenshotFacts(const EMU_THREAD& session) {
    const MACHINE_FACTS* const machine = FindMachineFacts(static_cast<uint16_t>(session.system));
    return {session.gameName, machine != nullptr ? machine->name : "", LocalTime()};
}

bool WriteScreenshotFile(const EMU_VIDEO_FRAME& video, bool wholePicture,
                         const SCREENSHOT_FACTS& facts) {
    const bool asBmp = Settings().GetBool(L"app_screenshotbmp");
    const ScreenshotKind kind = asBmp ? ScreenshotKind::kBmp : ScreenshotKind::kPng;
    const std::vector<uint8_t> file =
        asBmp ? EncodeBmp(video, wholePicture) : EncodeScreenshotPng(video, wholePicture, facts);
    if (file.empty()) {
        return false;
    }
    std::filesystem::path path;
    std::error_code ignored;
    uint32_t attempt = 0;
    do {
        path =
            ResolvePath(std::string(".\\screenshots\\")
                            .append(ScreenshotName(facts.gameName, facts.time, attempt++, kind)));
    } while (std::filesystem::exists(path, ignored));
    std::string error;
    if (!WriteFile(path, file, error, WriteMode::kCreate)) {
        HostReport("screenshot: " + error);
        return false;
    }
    HostNotice("Screenshot: " + path.filename().string());
    return true;
}

bool WriteScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video) {
    return WriteScreenshotFile(video, Settings().GetBool(L"app_screenshotfull"),
                               ScreenshotFacts(session));
}

void HostSetWindowShotSink(WindowShotSink sink) {
    gWindowShots = sink;
}

void EmuTakeScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video) {
    if (InputActiveKey() != session.key) {
        return;
    }
    const bool down = InputIsDown(session.key, L"Take ScreenShot");
    if (gKeyWasDown.exchange(down) || !down) {
        return;
    }
    const WindowShotSink window = gWindowShots;
    if (window != nullptr && Settings().GetBool(L"app_screenshotwindow")) {
        window(ScreenshotFacts(session));
    } else {
        WriteScreenshot(session, video);
    }
}
