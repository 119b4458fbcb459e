#include "host/machines.h"

const MACHINE_LIST& BuiltInMachines() {
    static const MACHINE_LIST list{};
    return list;
}
