#include "host/battery_file.h"

#include "base/files.h"
#include "host/battery.h"
#include "host/report.h"
#include "host/session.h"
#include "host/session_private.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kReadLimit = uint64_t{1} << 20;
constexpr char kSuffix[] = ".sav";

using Bytes = std::vector<uint8_t>;

CBattery* BatteryOf(const EMU_THREAD& session) {
    return dynamic_cast<CBattery*>(session.machine.get());
}

// `.\folder\saves\name.zip` becomes `.\folder\saves\name.0123456789ab`.
std::string Stem(const EMU_THREAD& session) {
    const std::string& archive = session.archivePath;
    return archive.substr(0, archive.rfind('.') + 1) + session.stateEntryName;
}

bool Exists(const fs::path& path) {
    std::error_code code;
    return fs::status(path, code).type() != fs::file_type::not_found;
}

// Keeps what is no memory of this game under the first free name.
bool KeepDamaged(const std::string& stem, const Bytes& content) {
    uint32_t number = 1;
    fs::path aside;
    do {
        aside = ResolvePath(stem + ".damaged-" + std::to_string(number++) + kSuffix);
    } while (Exists(aside));
    const fs::path path = ResolvePath(stem + kSuffix);
    std::string error;
    if (!WriteFile(aside, content, error, WriteMode::kCreate)) {
        HostReport(path.string() + ": not this game's memory, and no copy can be kept: " + error);
        return false;
    }
    HostReport(path.string() + ": not this game's memory (" + std::to_string(content.size()) +
               " bytes); a copy is kept as " + aside.string());
    return true;
}

// Gives whether the contents are on the disk now.
bool Write(const std::string& stem, const Bytes& contents, bool keepFormer) {
    const fs::path path = ResolvePath(stem + kSuffix);
    std::string error;
    Bytes former;
    if (keepFormer && Exists(path)) {
        if (!ReadFile(path, former, error, kReadLimit) ||
            !WriteFile(ResolvePath(stem + ".before" + kSuffix), former, error)) {
            HostReport(error);
            return false;
        }
    }
    if (!WriteFile(path, contents, error)) {
        HostReport(error);
        return false;
    }
    return true;
}

bool IsDue(const EMU_THREAD& session, const Bytes& contents) {
    return !session.battery.untouchable && !contents.empty() &&
           contents != session.battery.onDisk && contents != session.battery.refused;
}

void Note(EMU_THREAD& session, Bytes contents, bool written) {
    if (written) {
        session.battery.onDisk = std::move(contents);
        session.battery.formerKept = true;
    } else {
        session.battery.refused = std::move(contents); // the same bytes are not tried again
    }
}

} // namespace

void EmuLoadBattery(EMU_THREAD& session) {
    CBattery* const battery = BatteryOf(session);
    if (battery == nullptr) {
        return;
    }
    session.battery.onDisk = battery->BatteryContents();
    const std::string stem = Stem(session);
    const fs::path path = ResolvePath(stem + kSuffix);
    if (session.battery.onDisk.empty() || !Exists(path)) {
        return;
    }
    Bytes bytes;
    std::string error;
    if (!ReadFile(path, bytes, error, kReadLimit)) {
        HostReport(error + "; the game starts without it and it stays as it is");
        session.battery.untouchable = true;
        return;
    }
    if (battery->SetBatteryContents(bytes)) {
        session.battery.onDisk = std::move(bytes);
        return;
    }
    session.battery.untouchable = !KeepDamaged(stem, bytes);
    session.battery.formerKept = true;
}

void EmuSaveBattery(EMU_THREAD& session) {
    const CBattery* const battery = BatteryOf(session);
    if (battery == nullptr) {
        return;
    }
    session.battery.refused.clear(); // a last try
    Bytes contents = battery->BatteryContents();
    if (IsDue(session, contents)) {
        const bool written = Write(Stem(session), contents, !session.battery.formerKept);
        Note(session, std::move(contents), written);
    }
}

void EmuKeepBatteries() {
    struct DUE {
        uint32_t serial;
        std::string stem;
        bool keepFormer;
        Bytes contents;
        bool written;
    };
    std::vector<DUE> due;
    EmuForEachSession([&](EMU_THREAD& session) {
        const CBattery* const battery = BatteryOf(session);
        if (battery == nullptr || session.battery.onDisk.empty()) {
            return;
        }
        Bytes contents;
        {
            const SessionHold hold(session);
            contents = battery->BatteryContents();
        }
        if (IsDue(session, contents)) {
            due.push_back({session.serial, Stem(session), !session.battery.formerKept,
                           std::move(contents), false});
        }
    });
    for (DUE& file : due) {
        file.written = Write(file.stem, file.contents, file.keepFormer);
    }
    if (due.empty()) {
        return;
    }
    EmuForEachSession([&](EMU_THREAD& session) {
        for (DUE& file : due) {
            if (file.serial == session.serial) {
                Note(session, std::move(file.contents), file.written);
            }
        }
    });
}
