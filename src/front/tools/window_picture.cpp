#include "front/tools/window_picture.h"

#include "base/files.h"
#include "front/application.h"
#include "front/terminal.h"
#include "front/tools/media_files.h"

#include <vector>

bool WriteWindowPicture(Application& application, const std::filesystem::path& path) {
    std::vector<uint32_t> pixels = application.ReadWindow();
    EMU_VIDEO_FRAME picture{};
    picture.pixels = pixels.data();
    picture.width = picture.visibleWidth = application.MainWindow().PixelWidth();
    picture.height = picture.visibleHeight = application.MainWindow().PixelHeight();
    std::string error;
    if (!WriteFile(path, PngOfFrame(picture), error)) {
        Complain(error);
        return false;
    }
    return true;
}
