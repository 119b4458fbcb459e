// What the host's tests share: a home folder of their own, the settings of a first run, the tests'
// machines, a host without window or device, and a check for leftovers.
#pragma once

#include "formats/game_file.h"
#include "host/host_data.h"
#include "host/session.h"
#include "host/test_machine.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

// A game of one piece whose hash begins with `identity`, six times; its first variant is picked.
[[nodiscard]] CGameFile MakeGame(uint16_t system, uint8_t identity = 0xA5);

// The session-side host callbacks, with counters. Time is simulated and advances by itself.
struct HOST_COUNTS {
    std::atomic<int32_t> opens{0};
    std::atomic<int32_t> closes{0};
    std::atomic<int32_t> threadStarts{0};
    std::atomic<int32_t> threadEnds{0};
    std::atomic<int32_t> presents{0};
    std::atomic<int32_t> submits{0};
};

class HostTest : public testing::Test {
public:
    ~HostTest() override;

protected:
    HostTest();

    // Starts a game of `system` and returns its serial.
    uint32_t Start(uint32_t key, const std::string& name = "Game", uint16_t system = 1,
                   const TEST_BEHAVIOUR& behaviour = {}, uint8_t identity = 0xA5);
    // A session without a thread, past its static.
    std::unique_ptr<EMU_THREAD> Create(const TEST_BEHAVIOUR& behaviour = {},
                                       const std::string& name = "Game", uint16_t system = 1,
                                       uint8_t identity = 0xA5);
    // Calls `with` for the machine of a running session, under its lock. False without one.
    static bool WithMachine(uint32_t key, const std::function<void(CTestMachine&)>& with);
    // Waits up to a minute until `condition` is true.
    static bool Eventually(const std::function<bool()>& condition);
    static void Press(std::wstring_view action, bool down);
    static std::vector<std::string> TakeReports();

    TemporaryHome home;
    static HOST_COUNTS gCounts;
    static EMU_HOST_CALLBACKS TestHost();
};

[[nodiscard]] CTestMachine& MachineOf(EMU_THREAD& session);
