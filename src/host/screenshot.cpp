#include "host/screenshot.h"

#include "base/bytes.h"
#include "base/files.h"
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

} // namespace

std::vector<uint8_t> EncodeBmp(const EMU_VIDEO_FRAME& video, bool wholePicture) {
    const uint32_t left = wholePicture ? 0 : video.visibleX;
    const uint32_t top = wholePicture ? 0 : video.visibleY;
    const uint32_t width = wholePicture ? video.width : video.visibleWidth;
    const uint32_t height = wholePicture ? video.height : video.visibleHeight;
    if (width == 0 || height == 0 || video.pixels == nullptr) {
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

std::string ScreenshotName(const std::string& gameName, const std::tm& time, uint32_t attempt) {
    char stamp[64];
    const size_t length = std::strftime(stamp, sizeof stamp, " %Y-%m-%d %H-%M-%S", &time);
    std::string name = FileNameFromTitle(gameName) + std::string(stamp, length);
    if (attempt != 0) {
        name.append("-").append(std::to_string(attempt));
    }
    return name + ".bmp";
}

bool WriteScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video) {
    const std::vector<uint8_t> file = EncodeBmp(video, Settings().GetBool(L"app_screenshotfull"));
    if (file.empty()) {
        return false;
    }
    const std::tm time = LocalTime();
    std::filesystem::path path;
    std::error_code ignored;
    uint32_t attempt = 0;
    do {
        path = ResolvePath(std::string(".\\screenshots\\")
                               .append(ScreenshotName(session.gameName, time, attempt++)));
    } while (std::filesystem::exists(path, ignored));
    std::string error;
    if (!WriteFile(path, file, error, WriteMode::kCreate)) {
        HostReport("screenshot: " + error);
        return false;
    }
    HostNotice("Screenshot: " + path.filename().string());
    return true;
}

void EmuTakeScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video) {
    if (InputActiveKey() != session.key) {
        return;
    }
    const bool down = InputIsDown(session.key, L"Take ScreenShot");
    if (!gKeyWasDown.exchange(down) && down) {
        WriteScreenshot(session, video);
    }
}
