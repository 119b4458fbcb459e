#include "base/audio_rate.h"
#include "base/files.h"
#include "base/random.h"
#include "formats/sha256.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/input_script.h"
#include "front/tools/inspection_options.h"
#include "front/tools/media_files.h"
#include "front/tools/play.h"
#include "front/tools/screenshots.h"
#include "host/aligned_block.h"
#include "host/frame_loop.h"
#include "host/picture.h"
#include "host/session.h"
#include "machine/inspection.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <cstdio>
#include <fstream>

namespace {

constexpr uint32_t kSessionKey = 1;
constexpr uint32_t kDefaultFrames = 600; // without --frames

class HeadlessRun {
public:
    HeadlessRun(const PLAY_OPTIONS& playOptions, OPENED_GAME& openedGame)
        : options(playOptions)
        , opened(openedGame) {}

    int Run() {
        if (const int code = ReadOptions(); code != kExitDone) {
            return code;
        }
        if (!Prepare()) {
            return kExitFailed;
        }
        for (uint32_t frame = 1; frame <= frames; ++frame) {
            script.Feed(frame);
            input = {};
            EmuStep(*session, &input, &video, &sound.frame, false);
            EmuRotateFrame(video, scratch);
            if (!KeepFrame(frame)) {
                return kExitFailed;
            }
            if (session->machine->ended) {
                // The requested files are still written: they may tell why.
                Complain(options.game + ": frame " + std::to_string(frame) + ": " +
                         session->machine->endReason);
                static_cast<void>(Finish());
                return kExitFailed;
            }
        }
        return Finish() ? kExitDone : kExitFailed;
    }

private:
    int ReadOptions() {
        frames = options.frames != 0 ? options.frames : kDefaultFrames;
        std::string error;
        if (!ReadScreenshots(options.screenshots, frames, screenshots, error) ||
            !CheckInspections(options, opened.game.Header().system, error)) {
            Complain(error);
            return kExitUsage;
        }
        return kExitDone;
    }

    bool Prepare() {
        SeedRandom(1);
        // No rewind states: there is no key to rewind with.
        Settings().SetInt(L"emu_rewindbuffer", 0);
        InputScript::BindActions(Settings());
        InputSetActiveKey(kSessionKey);
        std::string error;
        if (!options.inputFile.empty() && !script.Load(options.inputFile, error)) {
            Complain(error);
            return false;
        }
        CGameFile* const games[2] = {&opened.game, opened.hasBios ? &opened.bios : nullptr};
        session = EmuCreateSession(kSessionKey, games, opened.options.data(), opened.title);
        if (!session) {
            const std::string why = EmuLastError();
            Complain(options.game + ": " + (why.empty() ? "cannot be started" : why));
            return false;
        }
        session->showStatic = options.showStatic ? 1 : 0;
        pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
        video.pixels = pixels.get();
        if (!options.hashFile.empty()) {
            hashes.open(options.hashFile, std::ios::binary | std::ios::trunc);
            if (!hashes) {
                Complain(options.hashFile + ": cannot be written");
                return false;
            }
        }
        return options.loadState.empty() || LoadState();
    }

    bool LoadState() {
        std::vector<uint8_t> bytes;
        std::string error;
        if (!ReadFile(options.loadState, bytes, error)) {
            Complain(error);
            return false;
        }
        if (!session->machine->LoadState(bytes.data(), static_cast<uint32_t>(bytes.size()))) {
            Complain(options.loadState + ": is not a state of this machine");
            return false;
        }
        return true;
    }

    bool KeepFrame(uint32_t frame) {
        const size_t values = size_t{sound.frame.sampleCount} * 2;
        if (!options.wavFile.empty()) {
            samples.insert(samples.end(), sound.frame.samples, sound.frame.samples + values);
        }
        if (hashes.is_open()) {
            const size_t pictureBytes = size_t{video.width} * video.height * sizeof(uint32_t);
            hashes << frame << ' ' << video.width << ' ' << video.height << ' '
                   << HexText(
                          Sha256({reinterpret_cast<const uint8_t*>(video.pixels), pictureBytes}))
                   << ' ' << sound.frame.sampleCount << ' '
                   << HexText(Sha256({reinterpret_cast<const uint8_t*>(sound.frame.samples),
                                      values * sizeof(int16_t)}))
                   << '\n';
        }
        for (const SCREENSHOT_REQUEST& shot : screenshots) {
            if (shot.frame == frame || (shot.frame == 0 && frame == frames)) {
                if (!Write(shot.path, PngOfFrame(video))) {
                    return false;
                }
            }
        }
        return true;
    }

    static bool Write(const std::string& path, std::span<const uint8_t> bytes) {
        std::string error;
        if (!WriteFile(path, bytes, error)) {
            Complain(error);
            return false;
        }
        return true;
    }

    bool SaveState() {
        uint32_t size = 0;
        const StateBlob state = session->machine->SaveState(size);
        if (!state) {
            Complain(options.saveState + ": the machine returned no state");
            return false;
        }
        return Write(options.saveState, {state.get(), size});
    }

    bool Peek(const std::string& text, const CInspection& inspection) {
        PEEK peek;
        static_cast<void>(ReadPeek(text, peek)); // has been checked
        for (uint32_t i = 0; i < peek.length; ++i) {
            uint8_t value = 0;
            if (!inspection.Peek(peek.address + i, value)) {
                std::printf("\n");
                Complain("--peek " + text + ": reaches beyond the address space");
                return false;
            }
            std::printf("%s%02x", i == 0 ? "" : " ", value);
        }
        std::printf("\n");
        return true;
    }

    bool Dump(const std::string& text, const CInspection& inspection) {
        const size_t equals = text.find('=');
        const std::string region = text.substr(0, equals);
        const std::vector<uint8_t> bytes = inspection.Dump(region);
        if (bytes.empty()) {
            std::string names;
            for (const std::string_view name : inspection.Regions()) {
                names += " " + std::string(name);
            }
            Complain("--dump " + text + ": this game has no such memory; it has" + names);
            return false;
        }
        return Write(text.substr(equals + 1), bytes);
    }

    bool Inspect() {
        if (options.peeks.empty() && options.dumps.empty()) {
            return true;
        }
        const auto* inspection = dynamic_cast<const CInspection*>(session->machine.get());
        if (inspection == nullptr) {
            Complain("this machine cannot be looked into");
            return false;
        }
        bool done = true;
        for (const std::string& peek : options.peeks) {
            done = Peek(peek, *inspection) && done;
        }
        for (const std::string& dump : options.dumps) {
            done = Dump(dump, *inspection) && done;
        }
        return done;
    }

    bool Finish() {
        if (hashes.is_open() && !hashes.flush()) {
            Complain(options.hashFile + ": cannot be written");
            return false;
        }
        return (options.wavFile.empty() ||
                Write(options.wavFile, WavOfSamples(samples, AudioRate()))) &&
               (options.saveState.empty() || SaveState()) && Inspect();
    }

    const PLAY_OPTIONS& options;
    OPENED_GAME& opened;
    uint32_t frames = 0;
    std::vector<SCREENSHOT_REQUEST> screenshots;
    InputScript script;
    std::unique_ptr<EMU_THREAD> session;
    AlignedBlock<uint32_t> pixels;
    EMU_VIDEO_FRAME video{};
    EMU_INPUT_STATE input{};
    SOUND_FRAME sound;
    std::vector<uint32_t> scratch;
    std::vector<int16_t> samples; // of the whole run, for the WAV
    std::ofstream hashes;
};

} // namespace

int PlayHeadless(const PLAY_OPTIONS& options, OPENED_GAME& opened) {
    return HeadlessRun(options, opened).Run();
}
