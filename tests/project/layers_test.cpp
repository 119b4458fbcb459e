// Holds every #include to the layers: a target includes its own headers and those of the targets that
// its link line names, and nothing else of ours; and those outside libraries that the tables here
// allow. A target or library without a row fails.

#include <gtest/gtest.h>

#include <algorithm>
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

using Names = std::set<std::string>;

// Whether a row is in use, or is for code that does not exist yet.
enum class Row { kInUse, kToCome };

// All that a target may name on its link line. Only `machines` knows the machines themselves.
struct TARGET_ROW {
    std::string target;
    Names mayUse;
    Row row = Row::kInUse;
};

// clang-format off
const std::vector<TARGET_ROW> kTargets = {
    {"base",      {}},
    {"facts",     {}},
    {"settings",  {"base"}},
    {"bindings",  {"base", "facts", "settings"}},
    {"formats",   {"base", "facts"}},
    {"machine",   {"base", "bindings", "facts", "formats", "settings"}},
    {"sega8",     {"base", "facts", "formats", "machine"}},
    {"nes",       {"base", "facts", "machine"}},
    {"megadrive", {"base", "bindings", "facts", "machine", "sega8"}},
    {"host",      {"base", "bindings", "facts", "formats", "machine", "settings"}},
    {"machines",  {"bindings", "facts", "formats", "host", "megadrive", "nes", "sega8", "settings"}},
    {"catalogue", {"base", "facts", "formats"}},
    {"demos",     {}},
    {"sound",     {"base", "bindings", "host", "machine", "settings"}},
    {"display",   {"machine", "settings"}}, // how far a set's picture is filtered is read where it is drawn
    {"gui",       {"base"}},
    {"room",      {"base", "bindings", "display", "facts", "gui", "machine", "settings"}},
    {"web",       {"base", "formats"}},
    {"video",     {"facts"}},
    {"video_encoder", {"video"}}, // a module of its own, which the program loads
    {"screens",   {"base", "bindings", "catalogue", "facts", "formats", "gui", "host", "machine", "machines",
                   "room", "settings", "web"}},
    {"assets",    {"gui"}},
    {"front",     {"assets", "base", "bindings", "catalogue", "demos", "display", "facts", "formats", "gui", "host",
                   "machine", "machines", "room", "screens", "settings", "sound", "video", "web"}},
    {"front_tools", {"assets", "base", "bindings", "catalogue", "demos", "display", "facts", "formats", "front",
                   "gui", "host", "machine", "machines", "room", "settings", "video"}},
    {"ombrelune", {"front_tools"}},
};
// clang-format on

// Outside libraries by the prefixes of their headers' names, and the targets that may include them. The
// first matching row counts.
struct LIBRARY_ROW {
    std::string library;
    Names prefixes;
    Names targets;
    Row row = Row::kInUse;
};

// clang-format off
const std::vector<LIBRARY_ROW> kLibraries = {
    {"OpenGL",           {"GL/", "SDL_opengl"},              {"display", "front", "front_tools", "room"}},
    {"SDL2",             {"SDL.h", "SDL_"},                  {"bindings", "front", "front_tools", "sound"}},
    {"OpenAL",           {"AL/"},                            {"sound"}},
    {"FreeType",         {"ft2build.h", "freetype/", "FT_"}, {"gui"}},
    {"stb_image",        {"stb_image", "stb/"},              {"gui"}},
    {"TurboJPEG",        {"turbojpeg"},                      {"room"}},
    {"XML",              {"pugixml"},                        {"catalogue", "gui", "host", "settings"}},
    {"utf8cpp",          {"utf8"},                          {"base", "front"}},
    {"Boost.Signals2",   {"boost/signals2"},                 {"gui", "screens"}},
    {"Boost.Asio",       {"boost/asio"},                     {"web"}},
    {"CLI11",            {"CLI/"},                           {"front_tools"}},
    {"JSON",             {"nlohmann/"},                      {"front_tools"}},
    {"libpng",           {"png.h"},                          {"formats", "room"}},
    {"libzip",           {"zip.h"},                          {"formats"}},
    {"liblzma",          {"lzma.h"},                         {"formats"}},
    {"LZ4",              {"lz4.h"},                          {"host"}},
    {"OpenSSL",          {"openssl/"},                       {"formats", "web"}},
    {"SQLite",           {"sqlite3"},                        {"catalogue"}},
    {"FFmpeg",           {"libavcodec/", "libavformat/", "libavutil/", "libswscale/"}, {"video_encoder"}},

    {"the processor",    {"immintrin.h"},                    {"machine", "megadrive"}},
    {"operating system", {"fcntl.h", "io.h", "linux/", "pthread.h", "sched.h", "sys/", "unistd.h"}, {"base", "front"}},
};
// clang-format on

const TARGET_ROW* RowOfTarget(const std::string& target) {
    const auto found = std::find_if(kTargets.begin(), kTargets.end(),
                                    [&](const TARGET_ROW& row) { return row.target == target; });
    return found == kTargets.end() ? nullptr : &*found;
}

const LIBRARY_ROW* RowOfHeader(const std::string& header) {
    const auto found =
        std::find_if(kLibraries.begin(), kLibraries.end(), [&](const LIBRARY_ROW& row) {
            return std::any_of(
                row.prefixes.begin(), row.prefixes.end(),
                [&](const std::string& prefix) { return header.starts_with(prefix); });
        });
    return found == kLibraries.end() ? nullptr : &*found;
}

// The standard library's headers are the only ones without a dot or a slash, FreeType's macros aside.
bool IsStandard(const std::string& header) {
    return header.find_first_of("./") == std::string::npos && !header.starts_with("FT_");
}

// What is wrong with an include of an outside header; empty if nothing is.
std::string FaultOfForeign(const std::string& target, const std::string& header) {
    if (IsStandard(header)) {
        return {};
    }
    const LIBRARY_ROW* const row = RowOfHeader(header);
    if (row == nullptr) {
        return header + " is of no library in the table";
    }
    return row->targets.contains(target) ? std::string() : row->library + " is not for " + target;
}

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

struct INCLUDES {
    std::vector<std::string> ours;    // in quotes
    std::vector<std::string> foreign; // in angle brackets, or macros
};

INCLUDES ReadIncludes(std::istream& source) {
    constexpr const char* kBlanks = " \t";
    INCLUDES includes;
    for (std::string line; std::getline(source, line);) {
        size_t at = line.find_first_not_of(kBlanks);
        if (at == std::string::npos || line[at] != '#') {
            continue;
        }
        at = line.find_first_not_of(kBlanks, at + 1);
        constexpr std::string_view kWord = "include";
        if (at == std::string::npos || line.compare(at, kWord.size(), kWord) != 0) {
            continue;
        }
        at = line.find_first_not_of(kBlanks, at + kWord.size());
        if (at == std::string::npos) {
            continue;
        }
        const char open = line[at];
        if (open == '"') {
            includes.ours.push_back(line.substr(at + 1, line.find('"', at + 1) - at - 1));
        } else if (open == '<') {
            includes.foreign.push_back(line.substr(at + 1, line.find('>', at) - at - 1));
        } else {
            includes.foreign.push_back(line.substr(at, line.find_first_of(kBlanks, at) - at));
        }
    }
    return includes;
}

INCLUDES IncludesOf(const std::string& file) {
    std::ifstream source(kSources / file);
    return ReadIncludes(source);
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
        for (const std::string& include : IncludesOf(file).ours) {
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

TEST(Layers, TheLinkLineNamesOnlyTargetsThatAreIncluded) {
    const LAYERS layers = ReadLayers();
    std::map<std::string, Names> included;
    for (const auto& [file, target] : layers.targetOf) {
        for (const std::string& include : IncludesOf(file).ours) {
            if (const auto found = layers.targetOf.find(include); found != layers.targetOf.end()) {
                included[target].insert(found->second);
            }
        }
    }
    for (const auto& [target, uses] : layers.uses) {
        for (const std::string& used : uses) {
            EXPECT_TRUE(included[target].contains(used))
                << target << " includes nothing of " << used;
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
    // Repeatedly removes targets that use only removed ones; a cycle is never removed.
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
    EXPECT_TRUE(open.empty()) << *open.begin() << " uses itself, directly or not";
}

TEST(Layers, EveryTargetHasARowAndUsesNoMoreThanItAllows) {
    const LAYERS layers = ReadLayers();
    Names targets;
    for (const auto& [file, target] : layers.targetOf) {
        targets.insert(target);
    }
    for (const std::string& target : targets) {
        const TARGET_ROW* const row = RowOfTarget(target);
        ASSERT_NE(row, nullptr) << target << " has no row";
        const auto uses = layers.uses.find(target);
        for (const std::string& used : uses == layers.uses.end() ? Names() : uses->second) {
            EXPECT_TRUE(row->mayUse.contains(used)) << target << " uses " << used;
        }
    }
    for (const TARGET_ROW& row : kTargets) {
        EXPECT_EQ(targets.contains(row.target), row.row == Row::kInUse)
            << row.target << ": the mark of its row is wrong";
        for (const std::string& used : row.mayUse) {
            EXPECT_NE(RowOfTarget(used), nullptr) << row.target << " may use " << used;
        }
    }
}

TEST(Layers, OthersLibrariesAreIncludedOnlyWhereTheirRowsAllow) {
    const LAYERS layers = ReadLayers();
    Names found;
    for (const auto& [file, target] : layers.targetOf) {
        for (const std::string& header : IncludesOf(file).foreign) {
            EXPECT_EQ(FaultOfForeign(target, header), "") << file;
            if (const LIBRARY_ROW* const row = RowOfHeader(header)) {
                found.insert(row->library);
            }
        }
    }
    for (const LIBRARY_ROW& row : kLibraries) {
        EXPECT_EQ(found.contains(row.library), row.row == Row::kInUse)
            << row.library << ": the mark of its row is wrong, or no header begins so";
        for (const std::string& target : row.targets) {
            EXPECT_NE(RowOfTarget(target), nullptr) << row.library << " is for " << target;
        }
    }
}

TEST(Layers, TheRowsRefuseWhatTheyAreThereToRefuse) {
    const std::vector<std::pair<std::string, std::string>> allowed = {
        {"front",       "SDL_events.h"             },
        {"front_tools", "CLI/CLI.hpp"              },
        {"display",     "GL/gl.h"                  },
        {"room",        "GL/glu.h"                 },
        {"room",        "png.h"                    },
        {"gui",         "ft2build.h"               },
        {"gui",         "FT_FREETYPE_H"            },
        {"gui",         "pugixml.hpp"              },
        {"gui",         "boost/signals2/signal.hpp"},
        {"web",         "boost/asio/ip/tcp.hpp"    },
        {"screens",     "vector"                   },
    };
    for (const auto& [target, header] : allowed) {
        EXPECT_EQ(FaultOfForeign(target, header), "") << target << header;
    }
    const std::vector<std::pair<std::string, std::string>> refused = {
        {"gui",     "SDL.h"               },
        {"gui",     "GL/gl.h"             },
        {"room",    "SDL_video.h"         },
        {"display", "SDL.h"               },
        {"host",    "AL/al.h"             },
        {"front",   "FT_FREETYPE_H"       },
        {"front",   "CLI/CLI.hpp"         },
        {"screens", "boost/asio.hpp"      },
        {"front",   "boost/asio.hpp"      },
        {"web",     "boost/filesystem.hpp"},
        {"base",    "curl/curl.h"         },
    };
    for (const auto& [target, header] : refused) {
        EXPECT_NE(FaultOfForeign(target, header), "") << target << header;
    }
}

TEST(Layers, AnIncludeIsSeenHoweverItIsWritten) {
    std::istringstream source("#include \"a/b.h\"\n"
                              "  #  include <SDL.h> // why\n"
                              "#include FT_FREETYPE_H\n"
                              "// #include <GL/gl.h>\n"
                              "#pragma once\n"
                              "#\n");
    const INCLUDES includes = ReadIncludes(source);
    EXPECT_EQ(includes.ours, std::vector<std::string>{"a/b.h"});
    EXPECT_EQ(includes.foreign, (std::vector<std::string>{"SDL.h", "FT_FREETYPE_H"}));
}
