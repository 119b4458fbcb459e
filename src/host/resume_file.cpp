#include "host/resume_file.h"

#include "base/files.h"
#include "host/host_data.h"
#include "host/kept_copy.h"
#include "host/report.h"

#include <algorithm>
#include <ctime>
#include <mutex>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

void ResumeBegin(RESUME_FILE& file, SESSION_RESUME&& resume) {
    file.path = std::move(resume.file);
    file.onDisk = std::move(resume.state);
    file.texts = std::move(resume.texts);
    file.textsChanged = true;
    file.secondsBefore = resume.secondsPlayed;
    file.began = HostClock().nowMicroseconds();
}

void ResumeSetText(RESUME_FILE& file, std::string_view name, std::string_view value) {
    const std::scoped_lock hold(file.lock);
    const auto text = std::ranges::find(file.texts, name, &SNAPSHOT_TEXT::name);
    if (text == file.texts.end()) {
        file.texts.push_back({std::string(name), std::string(value)});
    } else if (text->value != value) {
        text->value = value;
    } else {
        return;
    }
    file.textsChanged = true;
}

bool ResumeWrite(RESUME_FILE& file, STATE_SNAPSHOT&& snapshot) {
    bool textsChanged = false;
    {
        const std::scoped_lock hold(file.lock);
        textsChanged = std::exchange(file.textsChanged, false);
        snapshot.texts = file.texts;
    }
    if (!textsChanged && snapshot.state == file.onDisk) {
        return true;
    }
    constexpr int64_t kSecond = 1'000'000;
    const int64_t ran = (HostClock().nowMicroseconds() - file.began) / kSecond;
    snapshot.takenAt = std::time(nullptr);
    snapshot.secondsPlayed = file.secondsBefore + static_cast<uint64_t>(std::max<int64_t>(ran, 0));
    std::string error;
    if (!WriteSnapshot(file.path, snapshot, error)) {
        if (!std::exchange(file.failed, true)) {
            HostReport(error +
                       "; the next start of the program cannot continue the game from here");
        }
        const std::scoped_lock hold(file.lock);
        file.textsChanged = true;
        return false;
    }
    file.failed = false;
    file.onDisk = std::move(snapshot.state);
    return true;
}

void ResumeDelete(const RESUME_FILE& file) {
    std::error_code code;
    if (!file.path.empty() && !fs::remove(file.path, code) && code) {
        HostReport(file.path.string() + ": cannot be deleted: " + code.message());
    }
}

std::string ResumeSetAside(const fs::path& file, const std::string& why) {
    const fs::path aside = FreeAsidePath(file, "refused");
    std::error_code code;
    fs::rename(file, aside, code);
    const std::string named =
        why.starts_with(file.string()) ? why : file.string() + ": " + why; // the disk's own words
    return named + (code ? "; it cannot be set aside and stays: " + code.message()
                         : "; it is kept as " + aside.string());
}
