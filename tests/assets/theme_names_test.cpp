// Every style that the program asks for is in the built-in theme, with the right kind, and in the
// document for those who write a theme of their own.
#include "assets/theme_fixture.h"
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>

namespace {

const std::filesystem::path kSources = OMBRELUNE_SOURCE_FOLDER;

using Kinds = std::map<std::string, StyleKind>;

Kinds KindsOfTheme() {
    Kinds kinds;
    for (const CGhostTheme::NAMED& named : LoadedTheme().Names()) {
        kinds.emplace(std::string(named.name.begin(), named.name.end()), named.kind);
    }
    return kinds;
}

// What the toolkit and the screens ask for by fixed names.
const std::vector<std::pair<StyleKind, std::vector<std::string>>> kFixed = {
    {StyleKind::kTextBox,
     {"FOCUS",
      "TEXT_LEFT",
      "TEXT_RIGHT",
      "TEXT_CENTER",
      "SECTIONTEXT",
      "LARGEHEADERTEXT",
      "WINDOWOVERLAY",
      "MESSAGEBOXBG",
      "MESSAGEBOX",
      "MESSAGEBOX_TEXT",
      "MESSAGEBOX_TITLE",
      "TOOLTIP",
      "TOOLTIP_TEXT",
      "PROGRESSBAR",
      "PROGRESSBAR_VOLUME",
      "MASTERSYSTEM",
      "GAMEGEAR",
      "ARCADE",
      "MEGADRIVE",
      "NES",
      "SSHOT",
      "3DBOX",
      "3DBOXBG",
      "3DBOX_SSHOTSBG",
      "OMBRELUNE_LOGO",
      "GAMELISTOPTIONS_MENUBG"}                                    },
    {StyleKind::kButton,
     {"BUTTON", "BUTTON2", "BUTTON3", "OPTIONBUTTON", "MESSAGEBOX_BUTTON", "CHECKBOX", "LEFTSEL",
      "RIGHTSEL", "PLAYOFFLINE", "HOSTGAME", "JOINGAME", "WINDOW_TITLE_MIN", "WINDOW_TITLE_MAX",
      "WINDOW_TITLE_CLOSE"}                                        },
    {StyleKind::kEdit,      {"EDIT"}                               },
    {StyleKind::kList,      {"LIST", "POPUPMENU"}                  },
    {StyleKind::kListView,  {"GAMELIST", "INPUTLIST", "CREDITLIST"}},
    {StyleKind::kScrollbar, {"WINDOW_SCROLLBAR"}                   },
    {StyleKind::kDropList,  {"DROPLIST"}                           },
};

// A window of base name X asks for X_BACKGROUND.
const std::vector<std::string> kWindowNames = {"TOPAREA",
                                               "OMBRELUNE_LOGO",
                                               "BATTLEMAIN",
                                               "GAMEOPTIONS",
                                               "GAMELISTOPTIONS",
                                               "OPTIONWINDOW",
                                               "3DBOX",
                                               "3DBOXBG",
                                               "SSHOT",
                                               "3DBOX_SSHOTSBG",
                                               "MESSAGEBOXBG",
                                               "MESSAGEBOX",
                                               "MASTERSYSTEM",
                                               "GAMEGEAR",
                                               "ARCADE",
                                               "MEGADRIVE",
                                               "NES",
                                               "TOOLTIP",
                                               "GAMELISTOPTIONS_MENUBG"};

// The kind that a control's class asks for; a window's name gets its ending.
const std::map<std::string, StyleKind> kKindOfClass = {
    {"Button",    StyleKind::kButton   },
    {"CheckBox",  StyleKind::kButton   },
    {"TextBox",   StyleKind::kTextBox  },
    {"Text",      StyleKind::kTextBox  },
    {"MultiText", StyleKind::kTextBox  },
    {"Slider",    StyleKind::kTextBox  },
    {"Window",    StyleKind::kTextBox  },
    {"WindowEx",  StyleKind::kTextBox  },
    {"Edit",      StyleKind::kEdit     },
    {"List",      StyleKind::kList     },
    {"Popup",     StyleKind::kList     },
    {"ListView",  StyleKind::kListView },
    {"Scrollbar", StyleKind::kScrollbar},
    {"DropList",  StyleKind::kDropList },
};

struct ASKED {
    std::string file;
    std::string name;
    std::string control; // its class without the beginning
};

// The literals that sources hand to a control as its style: new CGhostButton(parent, id, L"STYLE" and, in
// the gallery, GalleryButton(parent, L"STYLE".
std::vector<ASKED> AskedInSource(const std::string& file, const std::string& text) {
    static const std::regex kControl(
        R"(new CGhost(\w+)\(\s*[^,;()]+,\s*[^,;()]+,\s*L"([A-Z0-9_]+)\")");
    static const std::regex kGallery(
        R"(\bGallery(Text|Window|Button)\(\s*[^,;()]+,\s*L"([A-Z0-9_]+)\")");
    std::vector<ASKED> asked;
    for (const std::regex* const pattern : {&kControl, &kGallery}) {
        for (std::sregex_iterator at(text.begin(), text.end(), *pattern), end; at != end; ++at) {
            asked.push_back({file, (*at)[2], (*at)[1]});
        }
    }
    return asked;
}

std::vector<ASKED> AskedInSources() {
    std::vector<ASKED> asked;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kSources / "src")) {
        if (entry.path().extension() == ".cpp") {
            const auto more =
                AskedInSource(entry.path().filename().string(), TextOfFile(entry.path()));
            asked.insert(asked.end(), more.begin(), more.end());
        }
    }
    return asked;
}

} // namespace

TEST(ThemeNames, EveryFixedNameHasItsKind) {
    const Kinds kinds = KindsOfTheme();
    for (const auto& [kind, names] : kFixed) {
        for (const std::string& name : names) {
            const auto found = kinds.find(name);
            ASSERT_NE(found, kinds.end()) << name;
            EXPECT_EQ(found->second, kind) << name;
        }
    }
    for (const std::string& name : kWindowNames) {
        const auto found = kinds.find(name + "_BACKGROUND");
        ASSERT_NE(found, kinds.end()) << name;
        EXPECT_EQ(found->second, StyleKind::kTextBox) << name;
    }
}

TEST(ThemeNames, ALiteralIsSeenHoweverItIsBroken) {
    const auto asked =
        AskedInSource("", "new CGhostButton(window, 0,\n    L\"BUTTON\", L\"QUIT\", 0);"
                          "GalleryWindow(root, L\"TOOLTIP\", L\"\");"
                          "new CGhostButton(window, 0, style, L\"BACK\", 0);");
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].name + " " + asked[0].control, "BUTTON Button");
    EXPECT_EQ(asked[1].name + " " + asked[1].control, "TOOLTIP Window");
}

TEST(ThemeNames, EveryLiteralThatAControlIsGivenIsDefined) {
    const Kinds kinds = KindsOfTheme();
    const auto asked = AskedInSources();
    ASSERT_GT(asked.size(), 30u);
    for (const ASKED& row : asked) {
        if (row.name == "NONE") {
            continue; // a button without a style
        }
        const auto wanted = kKindOfClass.find(row.control);
        ASSERT_NE(wanted, kKindOfClass.end()) << row.file << ": " << row.control;
        const bool window = row.control.starts_with("Window");
        const auto found = kinds.find(window ? row.name + "_BACKGROUND" : row.name);
        ASSERT_NE(found, kinds.end()) << row.file << " asks for " << row.name;
        EXPECT_EQ(found->second, wanted->second) << row.file << ": " << row.name;
    }
}

namespace {

// Words in capitals that are shown, and endings of names. A style must not be added here.
const std::set<std::string> kNoStyles = {
    "1024MB",   "128MB",       "256MB",      "512MB", "768MB", "BACK",    "BENCHMARK",
    "BMP",      "COVERS",      "CREDITS",    "ESC",   "F10",   "F11",     "HINTS",
    "METAINFO", "NONE",        "OPTIONS",    "PNG",   "QUIT",  "REVIEWS", "TRIVIA",
    "USA",      "_BACKGROUND", "_SCROLLBAR", "_TITLE"};

// Every wide literal of three capitals, digits and underscores or more, wherever it is: in a call, a table, a
// constant. Shorter ones are names of a pad's buttons.
std::set<std::string> LiteralsLikeNames(const std::string& text) {
    static const std::regex kLiteral(R"~(L"([A-Z0-9_]*[A-Z][A-Z0-9_]+)")~");
    std::set<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), kLiteral), end; at != end; ++at) {
        if (at->length(1) >= 3) {
            found.insert((*at)[1]);
        }
    }
    return found;
}

} // namespace

TEST(ThemeNames, ALiteralIsSeenInTablesAndConstantsToo) {
    const auto found =
        LiteralsLikeNames("constexpr KIND kKinds[] = {{L\"BUTTON2\", L\"Main Menu\"}};"
                          "const wchar_t* const style = L\"3DBOX\"; L\"a\" L\"Ok\" L\"7\"");
    EXPECT_EQ(found, (std::set<std::string>{"BUTTON2", "3DBOX"}));
}

// The last test sees what a control is given directly; this one sees every name, though not of which kind it is.
TEST(ThemeNames, EveryNameInTheSourcesIsDefined) {
    const Kinds kinds = KindsOfTheme();
    std::set<std::string> unused = kNoStyles;
    size_t styles = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kSources / "src")) {
        const auto ending = entry.path().extension();
        const bool web = entry.path().parent_path().filename() ==
                         "web"; // knows no windows, but tags in capitals
        if (web || (ending != ".cpp" && ending != ".h")) {
            continue;
        }
        for (const std::string& name : LiteralsLikeNames(TextOfFile(entry.path()))) {
            unused.erase(name);
            if (kNoStyles.contains(name)) {
                EXPECT_FALSE(kinds.contains(name)) << name << " is a style";
                continue;
            }
            ++styles;
            EXPECT_TRUE(kinds.contains(name) || kinds.contains(name + "_BACKGROUND"))
                << entry.path().filename() << " asks for " << name;
        }
    }
    EXPECT_GT(styles, 80u);
    EXPECT_TRUE(unused.empty()) << *unused.begin() << " is not in the sources any more";
}

TEST(ThemeNames, NoNameIsDefinedTwice) {
    std::set<std::wstring> seen;
    for (const CGhostTheme::NAMED& named : LoadedTheme().Names()) {
        EXPECT_TRUE(seen.insert(named.name).second)
            << std::string(named.name.begin(), named.name.end());
    }
}

// A record that begins as a copy of one that is not there, or of another kind, is empty.
TEST(ThemeNames, WhatARecordUsesComesBeforeItAndIsOfItsKind) {
    const std::string theme(BuiltInTheme());
    const std::regex record(R"~(\n  <(\w+) name="([^"]+)"(?: use="([^"]+)")?)~");
    std::map<std::string, std::string> before;
    for (std::sregex_iterator at(theme.begin(), theme.end(), record), end; at != end; ++at) {
        if ((*at)[3].matched) {
            EXPECT_EQ(before[(*at)[3]], (*at)[1].str()) << (*at)[2] << " uses " << (*at)[3];
        }
        before[(*at)[2]] = (*at)[1];
    }
    EXPECT_EQ(before.size(), LoadedTheme().Names().size());
}

TEST(ThemeNames, TheDocumentNamesEveryStyleAndNoOther) {
    const std::string document = TextOfFile(kSources / "docs/THEMES.md");
    const size_t start = document.find("## Every style");
    ASSERT_NE(start, std::string::npos);
    const std::string part = document.substr(start, document.find("\n## ", start + 1) - start);
    const std::regex name("`([A-Z0-9][A-Z0-9_]+)`");
    std::set<std::string> named;
    for (std::sregex_iterator at(part.begin(), part.end(), name), end; at != end; ++at) {
        named.insert((*at)[1]);
    }
    std::set<std::string> defined;
    for (const auto& [style, kind] : KindsOfTheme()) {
        defined.insert(style);
    }
    EXPECT_EQ(named, defined);
}
