// The file that keeps a member logged in: the keys that stand for the password, never the password.
//
// It is text, a name and a value a line, and can be read by its owner alone. Who has it can log in as the
// member at this one service, but does not learn the password.
#pragma once

#include "web/scram.h"

#include <filesystem>
#include <string>
#include <vector>

struct MEMBER_KEY {
    std::string service; // address; at another service the keys are not used
    std::string name;    // UTF-8
    std::vector<uint8_t> salt;
    uint32_t iterations = 0;
    SCRAM_KEYS keys;
};

// False if there is no file, or it is damaged.
[[nodiscard]] bool ReadMemberKey(const std::filesystem::path& path, MEMBER_KEY& key);
[[nodiscard]] bool WriteMemberKey(const std::filesystem::path& path, const MEMBER_KEY& key,
                                  std::string& error);
