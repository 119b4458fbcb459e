// Files for desktops and software centres, held against the tools that check or read them.
#include "facts/machine_facts.h"

#include "packaging/installed.h"
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

using testing::IsEmpty;

namespace {

std::string FileText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The types that a file of this ending may have by its name.
std::set<std::string> TypesOf(const std::string& ending, const std::string& list) {
    constexpr std::string_view kBegin = "<mime-type type=\"";
    const std::string pattern = "pattern=\"*" + ending + "\"";
    std::set<std::string> types;
    size_t at = list.find(kBegin);
    while (at != std::string::npos) {
        const size_t name = at + kBegin.size();
        at = list.find(kBegin, name);
        if (list.substr(name, at - name).find(pattern) != std::string::npos) {
            types.insert(list.substr(name, list.find('"', name) - name));
        }
    }
    return types;
}

std::set<std::string> DesktopTypes(const std::string& desktopFile) {
    std::smatch found;
    std::set<std::string> types;
    if (std::regex_search(desktopFile, found, std::regex("MimeType=(.*)"))) {
        std::istringstream list(found[1]);
        for (std::string type; std::getline(list, type, ';');) {
            types.insert(type);
        }
    }
    return types;
}

size_t Lines(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

TEST_F(Installed, ProgramPlaysADemoWhereverItIsPut) {
    const std::filesystem::path hashes = folder.Path() / "hashes.txt";
    const PROGRAM_RESULT played = Ombrelune({"play", "demo:gg-glimmer", "--headless", "--frames",
                                             "30", "--frame-hashes", hashes.string()});
    EXPECT_EQ(played.exitCode, 0) << played.error;
    EXPECT_EQ(Lines(FileText(hashes)), 30u);
}

TEST_F(Installed, DesktopFileIsValid) {
    const PROGRAM_RESULT checked =
        System({"desktop-file-validate", Share("applications/ombrelune.desktop").string()});
    EXPECT_EQ(checked.exitCode, 0);
    EXPECT_THAT(checked.output + checked.error, IsEmpty());
}

TEST_F(Installed, MetainfoIsValid) {
    const PROGRAM_RESULT checked =
        System({"appstreamcli", "validate", "--no-net", "--strict",
                Share("metainfo/org.ombrelune.ombrelune.metainfo.xml").string()});
    EXPECT_EQ(checked.exitCode, 0) << checked.output << checked.error;
}

TEST_F(Installed, MetainfoShowsPicturesThatExist) {
    const std::string text = Text("metainfo/org.ombrelune.ombrelune.metainfo.xml");
    static const std::regex kPicture("<image [^>]*>https://[^<]*/([^/<]+)</image>");
    size_t pictures = 0;
    for (std::sregex_iterator at(text.begin(), text.end(), kPicture), end; at != end; ++at) {
        ++pictures;
        EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(OMBRELUNE_SOURCE_FOLDER) /
                                            "docs/pictures" / (*at)[1].str()))
            << (*at)[1];
    }
    EXPECT_GE(pictures, 3u);
}

// Two endings are left to what the file holds: desktops know a Mega Drive image of any name by its header, and a
// .bin file may be anything.
TEST_F(Installed, DesktopKnowsTheFilesOfEveryMachine) {
    const std::string types = FileText("/usr/share/mime/packages/freedesktop.org.xml") +
                              Text("mime/packages/ombrelune.xml");
    const std::set<std::string> ours = DesktopTypes(Text("applications/ombrelune.desktop"));
    std::set<std::string> endings = {".game", ".zip"};
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        endings.insert(machine.extensions.begin(), machine.extensions.end());
    }
    endings.erase(".bin");
    for (const std::string& ending : endings) {
        const std::set<std::string> found = TypesOf(ending, types);
        EXPECT_TRUE(std::any_of(found.begin(), found.end(), [&](const std::string& type) {
            return ours.contains(type);
        })) << ending;
    }
}

TEST_F(Installed, FileTypesCanBeReadByTheDesktop) {
    const PROGRAM_RESULT made = System({"update-mime-database", Share("mime").string()});
    EXPECT_EQ(made.exitCode, 0) << made.error;
    EXPECT_TRUE(std::filesystem::exists(Share("mime/application/x-ombrelune-game.xml")));
}

// A PNG begins with eight fixed bytes and a header with its width and height, most significant byte first.
TEST_F(Installed, IconsHaveTheSizesOfTheirFolders) {
    for (const uint32_t size : {16u, 22u, 24u, 32u, 48u, 64u, 96u, 128u, 192u, 256u, 512u}) {
        const std::string folderName = std::to_string(size) + "x" + std::to_string(size);
        const auto png =
            folder.Read("usr/share/icons/hicolor/" + folderName + "/apps/ombrelune.png");
        ASSERT_GT(png.size(), 24u) << folderName;
        for (const size_t at : {16u, 20u}) {
            const uint32_t pixels = uint32_t{png[at]} << 24 | uint32_t{png[at + 1]} << 16 |
                                    uint32_t{png[at + 2]} << 8 | uint32_t{png[at + 3]};
            EXPECT_EQ(pixels, size);
        }
    }
    EXPECT_THAT(Text("icons/hicolor/scalable/apps/ombrelune.svg"), testing::StartsWith("<svg"));
}
