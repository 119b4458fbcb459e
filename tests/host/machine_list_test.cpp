#include "host/host_fixture.h"
#include "host/machine_list.h"

namespace {

class MachineList : public HostTest {};

} // namespace

TEST_F(MachineList, FindsAMachineByItsSystemNumber) {
    const MACHINE_ENTRY* const entry = EmuFindMachine(4);
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(entry->folder, ".\\megadrive");
    EXPECT_EQ(entry->construct(9)->sessionKey, 9u);
}

TEST_F(MachineList, NumberThreeAndUnknownNumbersSelectNothing) {
    for (const uint32_t system : {0u, 2u, 3u, 7u, 0xFFFFu}) {
        EXPECT_EQ(EmuFindMachine(system), nullptr) << system;
    }
}

TEST_F(MachineList, InstallingAHostBuildsTheSharedTables) {
    const int32_t before = gTablesBuilt;
    EmuSetHost(TestHost());
    EXPECT_EQ(gTablesBuilt, before + 1);
}
