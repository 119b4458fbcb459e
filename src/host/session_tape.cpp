#include "host/session_tape.h"

#include "base/files.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "host/dated_file.h"
#include "host/report.h"
#include "host/session_list.h"
#include "machine/battery.h"
#include "machine/sound_settings.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr int32_t kMostMinutes = 60;
constexpr size_t kMostActions = 32; // bits of FRAME_INPUTS::actions

std::vector<std::wstring_view> ActionsOf(uint32_t system) {
    std::vector<std::wstring_view> actions;
    const MACHINE_FACTS* const facts = FindMachineFacts(static_cast<uint16_t>(system));
    if (facts == nullptr) {
        return actions;
    }
    const auto add = [&](std::span<const std::wstring_view> names) {
        actions.insert(actions.end(), names.begin(), names.end());
    };
    if (facts->readsConsoleActions) {
        add(facts->consoleActions);
    }
    add(facts->playerActions[0]);
    add(facts->playerActions[1]);
    actions.resize(std::min(actions.size(), kMostActions));
    return actions;
}

bool SameSound(const SOUND_CHOICE& one, const SOUND_CHOICE& other) {
    return one.rate == other.rate && one.quality == other.quality && one.cutoff == other.cutoff &&
           (!one.cutoff ||
            (one.cutoffLow == other.cutoffLow && one.cutoffHigh == other.cutoffHigh));
}

// False after a report.
bool Write(const fs::path& path, std::span<const uint8_t> bytes, std::ios::openmode mode) {
    std::ofstream file(path, std::ios::binary | mode);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        HostReport(path.string() + ": the recording cannot be written");
        return false;
    }
    return true;
}

// A file that cannot be written is given up.
void Append(SESSION_TAPE& tape, std::span<const uint8_t> bytes) {
    if (!tape.fileFailed && !tape.file.empty() && !bytes.empty()) {
        tape.fileFailed = !Write(tape.file, bytes, std::ios::app);
    }
}

FRAME_INPUTS PlayersInputs(const EMU_THREAD& session, const EMU_INPUT_STATE* input) {
    FRAME_INPUTS inputs;
    const std::vector<std::wstring_view>& actions = session.tape->actions;
    for (size_t i = 0; i < actions.size(); ++i) {
        inputs.actions |= InputIsDown(session.key, actions[i]) ? 1u << i : 0;
    }
    if (input != nullptr) {
        inputs.pointers = {input->pointer[0].x, input->pointer[0].y, input->pointer[1].x,
                           input->pointer[1].y};
    }
    return inputs;
}

// Says how the recording ended, once it has.
void TellEnd(const SESSION_TAPE& tape) {
    if (!tape.replay->Running()) {
        HostNotice(tape.replay->Result());
    }
}

void TakeOver(SESSION_TAPE& tape) {
    if (tape.replay != nullptr && tape.replay->Running()) {
        tape.replay->TakeOver();
        TellEnd(tape);
    }
}

} // namespace

std::array<Sha256Digest, 2> TapeImages(CGameFile* const games[2]) {
    std::array<Sha256Digest, 2> images{};
    for (size_t i = 0; i < images.size(); ++i) {
        if (games[i] != nullptr) {
            const uint8_t* const hash = games[i]->SelectedRomHash();
            std::memcpy(images[i].data(), hash != nullptr ? hash : games[i]->Header().headerHash,
                        images[i].size());
        }
    }
    return images;
}

void TapeBegin(EMU_THREAD& session, CGameFile* const games[2], const void* options,
               const SESSION_RECORDS& records) {
    const int32_t minutes =
        records.lastMinutes ? std::clamp(Settings().GetInt(L"emu_recordminutes"), 0, kMostMinutes)
                            : 0;
    if (records.replay == nullptr && records.file.empty() && minutes == 0) {
        return;
    }
    auto tape = std::make_shared<SESSION_TAPE>();
    tape->actions = ActionsOf(session.system);
    RECORDING_ABOUT about;
    about.program = RecordingProgram();
    about.title = session.gameName;
    about.game = records.game;
    about.console = records.console;
    about.system = static_cast<uint16_t>(session.system);
    about.images = TapeImages(games);
    std::memcpy(about.options.data(), options, about.options.size());
    about.sound = SoundChoiceFromSettings();
    if (records.replay != nullptr) {
        tape->replay = std::make_unique<SessionReplay>(
            records.replay, SameSound(about.sound, records.replay->about.sound));
        tape->replay->Begin(*session.machine);
    }
    if (minutes != 0 || !records.file.empty()) {
        tape->recorder =
            std::make_unique<SessionRecorder>(std::move(about), static_cast<uint32_t>(minutes));
    }
    if (!records.file.empty() && Write(records.file, {}, std::ios::trunc)) {
        tape->recorder->BeginFile();
    } else {
        tape->fileFailed = !records.file.empty();
    }
    tape->file = records.file;
    session.tape = std::move(tape);
}

void TapeNoteReset(EMU_THREAD& session) {
    if (session.tape == nullptr) {
        return;
    }
    TakeOver(*session.tape);
    if (session.tape->recorder != nullptr) {
        session.tape->recorder->NoteReset();
    }
}

void TapeNoteState(EMU_THREAD& session) {
    if (session.tape == nullptr) {
        return;
    }
    TakeOver(*session.tape);
    if (session.tape->recorder != nullptr) {
        session.tape->recorder->NoteState();
    }
}

TapedFrame::TapedFrame(EMU_THREAD& taped, const EMU_INPUT_STATE* input)
    : session(taped) {
    SESSION_TAPE& tape = *session.tape;
    FRAME_INPUTS inputs;
    std::optional<REPLAY_FRAME> next;
    if (tape.replay != nullptr && tape.replay->Running()) {
        next = tape.replay->BeforeFrame(*session.machine);
        TellEnd(tape);
    }
    replayed = next.has_value();
    inputs = replayed ? next->inputs : PlayersInputs(session, input);
    if (tape.recorder != nullptr) {
        if (replayed && next->stateTaken) {
            tape.recorder->NoteState();
        }
        if (replayed && next->reset) {
            tape.recorder->NoteReset();
        }
        if (!tape.recorder->BeforeFrame(*session.machine, inputs)) {
            HostReport("There is not enough memory to record what is played");
        }
    }
    pointers.pointer[0] = {inputs.pointers[0], inputs.pointers[1]};
    pointers.pointer[1] = {inputs.pointers[2], inputs.pointers[3]};
    given.emplace(session.key, tape.actions, inputs.actions);
}

void TapedFrame::Done(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio) {
    SESSION_TAPE& tape = *session.tape;
    if (tape.recorder != nullptr) {
        tape.recorder->AfterFrame(video, audio);
    }
    if (replayed) {
        tape.replay->AfterFrame(*session.machine, video, audio);
        TellEnd(tape);
    }
}

void TapeSaveLastMinutes(EMU_THREAD& session) {
    std::vector<uint8_t> bytes;
    uint32_t frames = 0;
    if (session.tape != nullptr && session.tape->recorder != nullptr) {
        const std::scoped_lock hold(session.lock);
        bytes = session.tape->recorder->LastMinutes(*session.machine, frames);
    }
    if (bytes.empty()) {
        HostNotice("Nothing was recorded yet");
        return;
    }
    const fs::path path = DatedFile(".\\recordings\\", session.gameName, ".recording");
    std::string error;
    if (!WriteFile(path, bytes, error, WriteMode::kCreate)) {
        HostReport("recording: " + error);
        return;
    }
    HostNotice("Recording: " + path.filename().string());
}

void TapeKeep(EMU_THREAD& session) {
    if (session.tape == nullptr || session.tape->file.empty()) {
        return;
    }
    std::vector<uint8_t> bytes;
    {
        const SessionHold hold(session);
        bytes = session.tape->recorder->TakeFileBytes();
    }
    Append(*session.tape, bytes);
}

bool TapeEnd(EMU_THREAD& session) {
    if (session.tape == nullptr || session.tape->file.empty()) {
        return true;
    }
    session.tape->recorder->EndFile(*session.machine);
    Append(*session.tape, session.tape->recorder->TakeFileBytes());
    return !session.tape->fileFailed;
}
