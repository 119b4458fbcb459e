#include "sega8/vdp_slots.h"

#include "sega8/vdp_slot_lists.h"

constinit const std::array<VdpSlotList, 4> kVdpSlotLists = vdp_slot_lists::kLists;
