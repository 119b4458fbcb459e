// The Debian package's files say what the build says elsewhere.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

using testing::StartsWith;

namespace {

std::string SourceText(const std::string& name) {
    std::ifstream file(std::string(OMBRELUNE_SOURCE_FOLDER "/") + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// What stands between two texts.
std::string Between(const std::string& text, const std::string& from, const std::string& to) {
    const size_t begin = text.find(from);
    if (begin == std::string::npos) {
        return "";
    }
    const size_t inner = begin + from.size();
    return text.substr(inner, text.find(to, inner) - inner);
}

std::set<std::string> BuildDepends() {
    std::istringstream list(
        Between(SourceText("packaging/debian/control"), "Build-Depends:\n", "\nHomepage"));
    std::set<std::string> names;
    for (std::string line; std::getline(list, line);) {
        names.insert(line.substr(1, line.find_first_of(", ", 1) - 1));
    }
    return names;
}

} // namespace

TEST(DebianPackage, IsBuiltWithThePackagesOfTheOrdinaryBuild) {
    std::istringstream words(Between(SourceText("tools/packages.sh"), "build_packages=(\n", "\n)"));
    std::set<std::string> expected = {"debhelper-compat"};
    for (std::string name; words >> name;) {
        expected.insert(name);
    }
    // Every Debian build has a compiler; drivers are needed to run, and a cache by developers.
    for (const char* name : {"g++", "libgl1-mesa-dri", "ccache"}) {
        expected.erase(name);
    }
    EXPECT_EQ(BuildDepends(), expected);
}

TEST(DebianPackage, HasTheProgramsVersion) {
    const std::string number =
        Between(SourceText("CMakeLists.txt"), "project(ombrelune VERSION ", " ");
    EXPECT_FALSE(number.empty());
    EXPECT_THAT(SourceText("packaging/debian/changelog"), StartsWith("ombrelune (" + number + "-"));
}
