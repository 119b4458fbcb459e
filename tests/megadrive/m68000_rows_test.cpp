// The definition rows against the families of instructions they belong to.
#include "megadrive/m68000_private.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// A pattern of opcodes with the number of its rows.
struct MEMBER {
    const char* name;
    uint32_t mask;
    uint32_t match;
    size_t rows;
};

// Families whose times share a range.
struct FAMILY {
    uint32_t least;
    uint32_t most;
    std::vector<MEMBER> members;
};

// A row belongs to the first member that it matches, so narrow patterns come first.
const std::vector<FAMILY>& Families() {
    static const std::vector<FAMILY> kFamilies{
        {16,  24,  {{"MOVEP", 0xF138, 0x0108, 4}}                                                          },
        {6,
         24,       {{"BTST #", 0xFFC0, 0x0800, 12},
          {"BCHG #", 0xFFC0, 0x0840, 10},
          {"BCLR #", 0xFFC0, 0x0880, 10},
          {"BSET #", 0xFFC0, 0x08C0, 10},
          {"BTST", 0xF1C0, 0x0100, 13},
          {"BCHG", 0xF1C0, 0x0140, 10},
          {"BCLR", 0xF1C0, 0x0180, 10},
          {"BSET", 0xF1C0, 0x01C0, 10}}                                                        },
        {4,
         28,       {{"CMPI", 0xFF00, 0x0C00, 26},
          {"CMPA", 0xF0C0, 0xB0C0, 24},
          {"CMPM", 0xF138, 0xB108, 6},
          {"CMP", 0xF100, 0xB000, 37}}                                                         },
        {8,
         36,       {{"ORI", 0xFF00, 0x0000, 28},
          {"ANDI", 0xFF00, 0x0200, 28},
          {"SUBI", 0xFF00, 0x0400, 26},
          {"ADDI", 0xFF00, 0x0600, 26},
          {"EORI", 0xFF00, 0x0A00, 28}}                                                        },
        {4,   28,  {{"MOVE.B", 0xF000, 0x1000, 130}}                                                       },
        {4,   28,  {{"MOVE.W", 0xF000, 0x3000, 108}}                                                       },
        {4,   36,  {{"MOVE.L", 0xF000, 0x2000, 108}}                                                       },
        {4,
         24,       {{"MOVE from SR", 0xFFC0, 0x40C0, 8},
          {"MOVE to CCR", 0xFFC0, 0x44C0, 11},
          {"MOVE to SR", 0xFFC0, 0x46C0, 11},
          {"MOVE USP", 0xFFF0, 0x4E60, 2}}                                                     },
        {4,
         4,        {{"MOVEQ", 0xF000, 0x7000, 1},
          {"SWAP", 0xFFF8, 0x4840, 1},
          {"EXT", 0xFFB8, 0x4880, 2},
          {"NOP", 0xFFFF, 0x4E71, 1}}                                                           },
        {4,   20,  {{"LEA", 0xF1C0, 0x41C0, 7}, {"PEA", 0xFFC0, 0x4840, 7}}                                },
        {8,   20,  {{"MOVEM to memory", 0xFF80, 0x4880, 12}, {"MOVEM", 0xFF80, 0x4C80, 16}}                },
        {4,
         4,        {{"ILLEGAL", 0xFFFF, 0x4AFC, 1},
          {"TRAP", 0xFFF0, 0x4E40, 1},
          {"TRAPV", 0xFFFF, 0x4E76, 1},
          {"STOP", 0xFFFF, 0x4E72, 1},
          {"line A", 0xF000, 0xA000, 1},
          {"line F", 0xF000, 0xF000, 1}}                                                        },
        {4,   26,  {{"CHK", 0xF1C0, 0x4180, 11}, {"TAS", 0xFFC0, 0x4AC0, 10}}                              },
        {6,
         20,       {{"NBCD", 0xFFC0, 0x4800, 10}, {"SBCD", 0xF1F0, 0x8100, 5}, {"ABCD", 0xF1F0, 0xC100, 5}}},
        {4,
         28,       {{"NEGX", 0xFF00, 0x4000, 26},
          {"CLR", 0xFF00, 0x4200, 26},
          {"NEG", 0xFF00, 0x4400, 26},
          {"NOT", 0xFF00, 0x4600, 26},
          {"TST", 0xFF00, 0x4A00, 26}}                                                         },
        {12,  16,  {{"LINK", 0xFFF8, 0x4E50, 2}, {"UNLK", 0xFFF8, 0x4E58, 2}}                              },
        {0,   0,   {{"RESET", 0xFFFF, 0x4E70, 1}}                                                          },
        {16,
         20,       {{"RTE", 0xFFFF, 0x4E73, 1}, {"RTS", 0xFFFF, 0x4E75, 1}, {"RTR", 0xFFFF, 0x4E77, 1}}    },
        {8,   22,  {{"JMP", 0xFFC0, 0x4EC0, 7}, {"JSR", 0xFFC0, 0x4E80, 7}}                                },
        {12,  12,  {{"DBcc", 0xF0F8, 0x50C8, 16}}                                                          },
        {4,   20,  {{"Scc", 0xF0C0, 0x50C0, 160}}                                                          },
        {4,   28,  {{"ADDQ", 0xF100, 0x5000, 28}, {"SUBQ", 0xF100, 0x5100, 28}}                            },
        {18,  18,  {{"BSR", 0xFF00, 0x6100, 3}}                                                            },
        {10,  10,  {{"BRA", 0xFF00, 0x6000, 3}, {"Bcc", 0xF000, 0x6000, 42}}                               },
        {140, 152, {{"DIVU", 0xF1C0, 0x80C0, 11}}                                                          },
        {158, 170, {{"DIVS", 0xF1C0, 0x81C0, 11}}                                                          },
        {54,  66,  {{"MULU", 0xF1C0, 0xC0C0, 11}, {"MULS", 0xF1C0, 0xC1C0, 11}}                            },
        {8,   22,  {{"SUBA", 0xF0C0, 0x90C0, 24}, {"ADDA", 0xF0C0, 0xD0C0, 24}}                            },
        {4,   30,  {{"SUBX", 0xF130, 0x9100, 9}, {"ADDX", 0xF130, 0xD100, 9}}                              },
        {6,
         6,        {{"EXG D,D", 0xF1F8, 0xC140, 1},
          {"EXG A,A", 0xF1F8, 0xC148, 1},
          {"EXG D,A", 0xF1F8, 0xC188, 1}}                                                       },
        {4,   28,  {{"OR", 0xF000, 0x8000, 58}, {"AND", 0xF000, 0xC000, 58}}                               },
        {4,   28,  {{"SUB", 0xF000, 0x9000, 60}, {"ADD", 0xF000, 0xD000, 60}}                              },
        {4,   28,  {{"EOR", 0xF100, 0xB100, 26}}                                                           },
        {12,  20,  {{"shift of memory", 0xF0C0, 0xE0C0, 56}}                                               },
        {6,   8,   {{"shift of a register", 0xF000, 0xE000, 48}}                                           },
    };
    return kFamilies;
}

struct PLACE {
    size_t family = SIZE_MAX;
    size_t member = 0;
};

PLACE Find(uint32_t opcode) {
    for (size_t i = 0; i < Families().size(); ++i) {
        const std::vector<MEMBER>& members = Families()[i].members;
        for (size_t k = 0; k < members.size(); ++k) {
            if ((opcode & members[k].mask) == members[k].match) {
                return {i, k};
            }
        }
    }
    return {};
}

TEST(M68000Rows, EveryFamilyHasItsRowsAndReachesItsRange) {
    struct SEEN {
        std::vector<size_t> rows;
        uint32_t least = UINT32_MAX;
        uint32_t most = 0;
    };
    std::vector<SEEN> seen;
    for (const FAMILY& family : Families()) {
        seen.push_back({std::vector<size_t>(family.members.size())});
    }
    for (const M68K_OPCODE_ROW& row : M68kRows()) {
        const PLACE place = Find(row.match);
        ASSERT_NE(place.family, SIZE_MAX) << std::hex << row.match;
        SEEN& found = seen[place.family];
        ++found.rows[place.member];
        found.least = std::min(found.least, uint32_t{row.cycles});
        found.most = std::max(found.most, uint32_t{row.cycles});
    }
    for (size_t i = 0; i < seen.size(); ++i) {
        const FAMILY& family = Families()[i];
        EXPECT_EQ(seen[i].least, family.least) << family.members[0].name;
        EXPECT_EQ(seen[i].most, family.most) << family.members[0].name;
        for (size_t k = 0; k < family.members.size(); ++k) {
            EXPECT_EQ(seen[i].rows[k], family.members[k].rows) << family.members[k].name;
        }
    }
}

TEST(M68000Rows, EveryRowLiesInAClassAndMatchesItself) {
    const std::vector<uint32_t> classes{0xF000, 0xF100, 0xF180, 0xF1C0, 0xFF00,
                                        0xF1F8, 0xFFF0, 0xF1FF, 0xFFF8, 0xFFFF};
    for (const M68K_OPCODE_ROW& row : M68kRows()) {
        EXPECT_NE(std::find(classes.begin(), classes.end(), row.mask), classes.end())
            << std::hex << row.match;
        EXPECT_EQ(row.match & ~row.mask, 0U) << std::hex << row.match;
    }
}

} // namespace
