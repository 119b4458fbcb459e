// The module that writes video files (video/video_file.h): found and loaded when it is first asked for.
#pragma once

#include "video/video_file.h"

#include <memory>
#include <string>

// Null with one line that says why. Any thread.
[[nodiscard]] std::unique_ptr<CVideoFile> NewVideoFile(std::string& error);
