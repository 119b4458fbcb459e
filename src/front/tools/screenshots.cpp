#include "front/tools/screenshots.h"

#include "front/tools/number_text.h"

namespace {

bool ReadRequest(const std::string& text, SCREENSHOT_REQUEST& request) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals + 1 >= text.size()) {
        return false;
    }
    request.path = text.substr(equals + 1);
    std::string_view number = std::string_view(text).substr(0, equals);
    return number == "last" ||
           (TakeNumber(number, request.frame) && number.empty() && request.frame != 0);
}

} // namespace

bool ReadScreenshots(const std::vector<std::string>& texts, uint32_t frames,
                     std::vector<SCREENSHOT_REQUEST>& requests, std::string& error) {
    for (const std::string& text : texts) {
        SCREENSHOT_REQUEST request;
        if (!ReadRequest(text, request)) {
            error = "--screenshot " + text + ": is not FRAME=FILE.png; frames count from 1";
            return false;
        }
        if (frames != 0 && request.frame > frames) {
            error = "--screenshot " + text + ": the run ends at frame " + std::to_string(frames);
            return false;
        }
        requests.push_back(request);
    }
    return true;
}
