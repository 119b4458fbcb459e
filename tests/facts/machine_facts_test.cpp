// The rows alone: their saved values and typed names, and that all names are distinct.

#include "facts/machine_facts.h"
#include "facts/sms_facts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::Pair;

TEST(MachineFacts, NumbersAndFoldersAreThoseOfFilesOnDisk) {
    std::vector<std::pair<int, std::string>> saves;
    std::vector<std::pair<std::string, std::string>> games;
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        saves.emplace_back(machine.system, machine.saveFolder);
        games.emplace_back(machine.folder, machine.databaseFile);
    }
    EXPECT_THAT(saves, ElementsAre(Pair(1, ".\\sms"), Pair(2, ".\\gamegear"), Pair(5, ".\\nes"),
                                   Pair(6, ""), Pair(4, ".\\megadrive")));
    EXPECT_THAT(
        games, ElementsAre(Pair("sms", ".\\dat\\sms.dat"), Pair("gamegear", ".\\dat\\gamegear.dat"),
                           Pair("nes", ".\\dat\\nes.dat"), Pair("arcade", ".\\dat\\arcade.dat"),
                           Pair("megadrive", ".\\dat\\megadrive.dat")));
}

TEST(MachineFacts, AreFoundByNumberAndByShortName) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        EXPECT_EQ(FindMachineFacts(machine.system), &machine);
        EXPECT_EQ(FindMachineFacts(std::string_view(machine.shortName)), &machine);
    }
    for (const int unknown : {0, 3, 7, 0xFFFF}) {
        EXPECT_EQ(FindMachineFacts(static_cast<uint16_t>(unknown)), nullptr) << unknown;
    }
    EXPECT_EQ(FindMachineFacts(std::string_view("SMS")), nullptr);
    EXPECT_EQ(FindMachineFacts(std::string_view()), nullptr);
}

TEST(MachineFacts, NoTwoMachinesShareANameAnExtensionOrAnAction) {
    std::multiset<std::string> names;
    std::multiset<std::string_view> extensions;
    std::multiset<std::wstring_view> actions;
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        for (const char* name : {machine.name, machine.shortName}) {
            names.insert(name);
        }
        extensions.insert(machine.extensions.begin(), machine.extensions.end());
        for (const auto group :
             {machine.consoleActions, machine.playerActions[0], machine.playerActions[1]}) {
            actions.insert(group.begin(), group.end());
        }
    }
    EXPECT_EQ(names.size(), std::set(names.begin(), names.end()).size());
    EXPECT_EQ(extensions.size(), std::set(extensions.begin(), extensions.end()).size());
    EXPECT_EQ(actions.size(), std::set(actions.begin(), actions.end()).size());
    EXPECT_EQ(actions.size(), 102u) << "16 NES, 24 arcade, 22 Master System, 26 Mega Drive, 14 "
                                       "Game Gear";
}

TEST(MachineFacts, ExtensionsBeginWithADotAndAreLowerCase) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        for (const std::string_view extension : machine.extensions) {
            EXPECT_EQ(extension.front(), '.') << extension;
            for (const char letter : extension) {
                EXPECT_FALSE(std::isupper(static_cast<unsigned char>(letter))) << extension;
            }
        }
    }
}

TEST(MachineFacts, ThePlayersOfAMachineHaveTheSameButtons) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        const auto [first, second] = machine.playerActions;
        ASSERT_EQ(first.size(), second.size()) << machine.name;
        for (size_t i = 0; i < first.size(); ++i) {
            std::wstring expected(first[i]);
            expected[expected.find(L" P1 ") + 2] = L'2';
            EXPECT_EQ(second[i], expected);
        }
    }
}

TEST(MachineFacts, AnOptionHasAByteOfItsOwnAndEachValueToo) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        std::set<size_t> offsets;
        std::set<std::string_view> names;
        for (const MACHINE_OPTION& option : machine.options) {
            EXPECT_LT(option.offset, kMachineOptionBytes);
            EXPECT_TRUE(offsets.insert(option.offset).second) << machine.name << option.name;
            EXPECT_TRUE(names.insert(option.name).second) << machine.name << option.name;
            std::set<uint8_t> bytes;
            std::set<std::string_view> words;
            for (const OPTION_VALUE& value : option.values) {
                EXPECT_TRUE(bytes.insert(value.byte).second) << option.name << value.word;
                EXPECT_TRUE(words.insert(value.word).second) << option.name << value.word;
            }
            EXPECT_TRUE(bytes.contains(option.initial)) << machine.name << option.name;
        }
    }
}

// The bytes in games' records and option blocks.
TEST(MachineFacts, TheMasterSystemsBytesAreSingleBits) {
    std::vector<std::vector<int>> bytes;
    std::vector<size_t> offsets;
    for (const MACHINE_OPTION& option : kSmsFacts.options) {
        offsets.push_back(option.offset);
        bytes.emplace_back();
        for (const OPTION_VALUE& value : option.values) {
            bytes.back().push_back(value.byte);
        }
    }
    EXPECT_THAT(offsets, ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(bytes,
                ElementsAre(ElementsAre(1, 2, 4, 8, 16, 32), ElementsAre(0, 1), ElementsAre(0, 1),
                            ElementsAre(1, 2, 4, 8, 16), ElementsAre(1, 2, 4, 8, 16)));
}

TEST(MachineFacts, APointersPortIsAnOptionWithThatValue) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        for (const POINTER_PORT& port : machine.pointers) {
            size_t found = 0;
            for (const MACHINE_OPTION& option : machine.options) {
                for (const OPTION_VALUE& value : option.values) {
                    found += option.offset == port.offset && value.byte == port.byte ? 1u : 0u;
                }
            }
            EXPECT_EQ(found, 1u) << machine.name << port.offset;
        }
    }
}
