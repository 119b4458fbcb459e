// A picture file of what the program's window shows.
#pragma once

#include <filesystem>

class Application;

// PNG. False, after a line to the user, if it cannot be written.
[[nodiscard]] bool WriteWindowPicture(Application& application, const std::filesystem::path& path);
