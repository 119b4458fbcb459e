// A robot's hands on the whole program: every input that a window can get, drawn by chance, and mischief with the
// files that the program plays from.
//
// An operation depends on the random numbers and on what is shown. The same seed makes the same inputs again as far
// as the program, whose machines run in real time, is as far at each of them.
#pragma once

#include "front/program_rig.h"
#include "front/virtual_joystick.h"

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

// Numbers by chance, the same ones for a seed on every computer.
class Dice {
public:
    explicit Dice(uint32_t seed)
        : engine(seed) {}
    // From 0 to `less` - 1.
    int32_t Below(int32_t less) {
        return static_cast<int32_t>(engine() % static_cast<uint32_t>(less));
    }
    bool OneIn(int32_t times) { return Below(times) == 0; }
    template <typename List>
    const auto& Of(const List& list) {
        return list[static_cast<size_t>(Below(static_cast<int32_t>(std::size(list))))];
    }

private:
    std::mt19937 engine;
};

// The program's clock, which goes on by a frame of a machine with each round. The machines then run as fast as the
// robot plays, be the program instrumented or the computer busy: a run tries as much of it everywhere.
// While the main thread waits for a time itself, as for the benchmark, the clock goes on as others do.
// Order: made before a session runs, and ended after the last one.
class RobotClock {
public:
    RobotClock();
    ~RobotClock();
    RobotClock(const RobotClock&) = delete;
    RobotClock& operator=(const RobotClock&) = delete;
    static void Go(int64_t microseconds);
};

class RobotHand {
public:
    // `home` is the program's; the files to drop lie in a folder apart.
    RobotHand(std::filesystem::path homeFolder, const TemporaryFolder& dropFolder, Dice& random)
        : home(std::move(homeFolder))
        , drops(dropFolder)
        , dice(random) {}

    // One operation, whose events the next rounds read. Returns what it was.
    std::string Act();

    // Between two runs of the program, when none of its files is open: harms one of its own files as well.
    std::string HarmAtRest();

    // The program has ended, and its joysticks with it.
    void LetGo();

private:
    struct DEED {
        const char* name;
        int32_t weight;
        std::string (RobotHand::*act)();
    };
    static const std::vector<DEED>& Deeds();

    std::string TapKey();
    std::string HoldKey();
    std::string ClickAnywhere();
    std::string ClickOnWindow();
    std::string Drag();
    std::string Wheel();
    std::string Move();
    std::string TypeText();
    std::string Pad();
    std::string PlugPad();
    std::string Resize();
    std::string WindowEvent();
    std::string DropFiles();
    std::string HarmGames();
    std::string CloseWindow();

    std::string DropOne();

    std::filesystem::path home;
    const TemporaryFolder& drops;
    Dice& dice;
    std::vector<SDL_Scancode> held;
    std::unique_ptr<VirtualJoystick> pad;
    int32_t padButtons = 0;
    int32_t padButton = -1; // down since the last operation
};

// Harms one file, in one of the ways in which disks and players do.
std::string HarmFile(const std::filesystem::path& file, Dice& dice);
