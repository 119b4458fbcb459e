#include "library/release_name.h"

#include "base/text.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr std::string_view kLetters = "EJUBK";

// A region, or a country of one; those without a letter have no flag in the browser.
struct REGION_ROW {
    std::string_view name; // lower case
    std::string_view letters;
};
constexpr REGION_ROW kRegions[] = {
    {"europe",         "E"  },
    {"usa",            "U"  },
    {"japan",          "J"  },
    {"brazil",         "B"  },
    {"korea",          "K"  },
    {"world",          "EJU"},
    {"austria",        "E"  },
    {"belgium",        "E"  },
    {"denmark",        "E"  },
    {"finland",        "E"  },
    {"france",         "E"  },
    {"germany",        "E"  },
    {"greece",         "E"  },
    {"ireland",        "E"  },
    {"italy",          "E"  },
    {"netherlands",    "E"  },
    {"norway",         "E"  },
    {"poland",         "E"  },
    {"portugal",       "E"  },
    {"scandinavia",    "E"  },
    {"spain",          "E"  },
    {"sweden",         "E"  },
    {"switzerland",    "E"  },
    {"uk",             "E"  },
    {"united kingdom", "E"  },
    {"argentina",      ""   },
    {"asia",           ""   },
    {"australia",      ""   },
    {"canada",         ""   },
    {"china",          ""   },
    {"hong kong",      ""   },
    {"latin america",  ""   },
    {"mexico",         ""   },
    {"new zealand",    ""   },
    {"russia",         ""   },
    {"taiwan",         ""   },
    {"unknown",        ""   },
 // The codes of `release` elements.
    {"eur",            "E"  },
    {"jpn",            "J"  },
    {"jap",            "J"  },
    {"bra",            "B"  },
    {"kor",            "K"  },
    {"wor",            "EJU"},
    {"fra",            "E"  },
    {"fre",            "E"  },
    {"ger",            "E"  },
    {"ita",            "E"  },
    {"spa",            "E"  },
    {"swe",            "E"  },
    {"gbr",            "E"  },
};

const REGION_ROW* FindRegion(std::string_view name) {
    const std::string lower = LowerAscii(name);
    const auto* const found = std::ranges::find(kRegions, lower, &REGION_ROW::name);
    return found == std::end(kRegions) ? nullptr : found;
}

std::string_view Trim(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// False if one of the words, separated by commas, is no region.
bool TakeRegions(std::string_view group, std::string& letters) {
    std::string all;
    while (true) {
        const size_t comma = group.find(',');
        const REGION_ROW* const row = FindRegion(Trim(group.substr(0, comma)));
        if (row == nullptr) {
            return false;
        }
        all += row->letters;
        if (comma == std::string_view::npos) {
            break;
        }
        group.remove_prefix(comma + 1);
    }
    letters = JoinRegions(all, {});
    return true;
}

bool IsRevision(std::string_view group) {
    const std::string lower = LowerAscii(group);
    const bool version =
        lower.size() >= 2 && lower[0] == 'v' && std::isdigit(static_cast<unsigned char>(lower[1]));
    return version || lower.starts_with("rev ");
}

} // namespace

std::string_view RegionLetters(std::string_view region) {
    const REGION_ROW* const row = FindRegion(Trim(region));
    return row != nullptr ? row->letters : std::string_view{};
}

std::string JoinRegions(std::string_view left, std::string_view right) {
    std::string joined;
    for (const char letter : kLetters) {
        if (left.find(letter) != std::string_view::npos ||
            right.find(letter) != std::string_view::npos) {
            joined += letter;
        }
    }
    return joined;
}

RELEASE_NAME ParseReleaseName(std::string_view name) {
    RELEASE_NAME parsed;
    bool haveRegions = false;
    for (size_t at = 0; at < name.size();) {
        const char c = name[at];
        const size_t close = c == '('   ? name.find(')', at)
                             : c == '[' ? name.find(']', at)
                                        : std::string_view::npos;
        if (close == std::string_view::npos) {
            parsed.title += c;
            ++at;
            continue;
        }
        const std::string_view group = name.substr(at + 1, close - at - 1);
        if (c == '(' && !haveRegions) {
            haveRegions = TakeRegions(group, parsed.regions);
        }
        if (c == '(' && parsed.revision.empty() && IsRevision(group)) {
            parsed.revision = group;
        }
        parsed.bios = parsed.bios || LowerAscii(group) == "bios";
        at = close + 1;
        // Brackets within the title leave one space, not two.
        while (at < name.size() && name[at] == ' ' &&
               (parsed.title.empty() || parsed.title.back() == ' ')) {
            ++at;
        }
    }
    parsed.title = std::string(Trim(parsed.title));
    return parsed;
}
