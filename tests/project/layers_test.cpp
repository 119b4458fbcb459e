// Holds every #include to the layers: a target includes its own headers and those of the targets that
// its link line names, and nothing else of ours.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path kSources = fs::path(OMBRELUNE_SOURCE_FOLDER) / "src";

struct LAYERS {
    std::map<std::string, std::string> targetOf; // file below src/ to target
    std::map<std::string, std::set<std::string>> uses;
};

// The build writes a line "file TARGET PATH" or "uses TARGET TARGET" for everything that it links.
LAYERS ReadLayers() {
    LAYERS layers;
    std::ifstream file(fs::path(OMBRELUNE_BUILD_FOLDER) / "layers.txt");
    std::string kind;
    std::string target;
    std::string what;
    while (file >> kind >> target >> what) {
        if (kind == "file") {
            layers.targetOf[what] = target;
        } else {
            layers.uses[target].insert(what);
        }
    }
    return layers;
}

std::vector<std::string> QuotedIncludes(const fs::path& path) {
    std::vector<std::string> includes;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        constexpr std::string_view kStart = "#include \"";
        if (line.starts_with(kStart)) {
            includes.push_back(line.substr(kStart.size(), line.rfind('"') - kStart.size()));
        }
    }
    return includes;
}

std::vector<std::string> SourceFiles() {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(kSources)) {
        const auto extension = entry.path().extension();
        if (extension == ".cpp" || extension == ".h") {
            files.push_back(fs::relative(entry.path(), kSources).generic_string());
        }
    }
    return files;
}

} // namespace

TEST(Layers, EverySourceBelongsToATarget) {
    const LAYERS layers = ReadLayers();
    ASSERT_GT(layers.targetOf.size(), 20u);
    for (const std::string& file : SourceFiles()) {
        EXPECT_TRUE(layers.targetOf.contains(file)) << file << " is listed by no target";
    }
}

TEST(Layers, EveryIncludeIsOfATargetThatTheLinkLineNames) {
    const LAYERS layers = ReadLayers();
    for (const auto& [file, target] : layers.targetOf) {
        for (const std::string& include : QuotedIncludes(kSources / file)) {
            const auto found = layers.targetOf.find(include);
            if (found == layers.targetOf.end()) {
                EXPECT_TRUE(
                    fs::exists(fs::path(OMBRELUNE_BUILD_FOLDER) / "src/front/generated" / include))
                    << file << " includes " << include << ", which is nobody's";
                continue;
            }
            const auto uses = layers.uses.find(target);
            const bool named = uses != layers.uses.end() && uses->second.contains(found->second);
            EXPECT_TRUE(found->second == target || named)
                << file << " of " << target << " includes " << include << " of " << found->second;
        }
    }
}

TEST(Layers, NoTargetReachesUpwardsOrRound) {
    const LAYERS layers = ReadLayers();
    std::set<std::string> done;
    std::set<std::string> open;
    for (const auto& [file, target] : layers.targetOf) {
        open.insert(target);
    }
    // Take off, again and again, what uses only what has been taken off; a circle never empties.
    for (bool progress = true; progress;) {
        progress = false;
        for (auto target = open.begin(); target != open.end();) {
            const auto uses = layers.uses.find(*target);
            bool ready = true;
            if (uses != layers.uses.end()) {
                for (const std::string& used : uses->second) {
                    ready = ready && done.contains(used);
                }
            }
            if (ready) {
                done.insert(*target);
                target = open.erase(target);
                progress = true;
            } else {
                ++target;
            }
        }
    }
    EXPECT_TRUE(open.empty()) << *open.begin() << " stands in a circle";
}

TEST(Layers, NothingBelowTheFrontOpensAWindowOrKnowsAnothersDevice) {
    const LAYERS layers = ReadLayers();
    const std::map<std::string, std::set<std::string>> mayInclude = {
        {"SDL", {"front", "sound", "bindings"}},
        {"GL/", {"front", "display"}          },
        {"AL/", {"sound"}                     },
    };
    for (const auto& [file, target] : layers.targetOf) {
        std::ifstream source(kSources / file);
        for (std::string line; std::getline(source, line);) {
            for (const auto& [prefix, targets] : mayInclude) {
                if (line.starts_with("#include <" + prefix)) {
                    EXPECT_TRUE(targets.contains(target)) << file << ": " << line;
                }
            }
        }
    }
}
