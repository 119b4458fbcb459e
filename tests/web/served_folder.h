// The service of tools/service as a process of its own, at a free port of this computer.
#pragma once

#include "web/service_texts.h"

#include "support/temporary_folder.h"

#include <string>
#include <string_view>
#include <vector>

class ServedFolder {
public:
    ServedFolder() = default;
    ~ServedFolder(); // ends the service
    ServedFolder(const ServedFolder&) = delete;
    ServedFolder& operator=(const ServedFolder&) = delete;

    [[nodiscard]] const TemporaryFolder& Files() const { return folder; }
    // Before the start or during it.
    void AddMember(const std::string& name, std::string_view password,
                   const std::string& account = {}) const;
    void Start(const std::vector<std::string>& options = {});
    [[nodiscard]] SERVICE_ADDRESSES Addresses() const;

private:
    TemporaryFolder folder;
    int process = -1;
    std::wstring address; // with a slash at the end
};
