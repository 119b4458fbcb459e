// Text can be read in every style and state: the contrast of its colour with what it lies on is at least
// 4.5 to 1, as the guidelines for accessible content on the web ask.
#include "gui/bitmap.h"
#include "gui/list_rows.h"

#include "assets/theme_fixture.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr uint32_t kNight1 = 0xFF12162E; // panels, which lie under every control
constexpr double kLeastContrast = 4.5;

// Relative luminance of a colour of the sRGB space.
double Luminance(uint32_t argb) {
    const auto linear = [argb](uint32_t shift) {
        const double value = (argb >> shift & 0xFF) / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
}

double Contrast(uint32_t a, uint32_t b) {
    const double first = Luminance(a);
    const double second = Luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

// `over` an opaque colour.
uint32_t Composited(uint32_t over, uint32_t ground) {
    const double alpha = (over >> 24) / 255.0;
    uint32_t result = 0xFF000000;
    for (const uint32_t shift : {0u, 8u, 16u}) {
        const double mixed =
            (over >> shift & 0xFF) * alpha + (ground >> shift & 0xFF) * (1.0 - alpha);
        result |= static_cast<uint32_t>(mixed + 0.5) << shift;
    }
    return result;
}

// Every colour of the part of a bitmap that text may lie on: between the ends of a smart fill, and not on
// the lines at its upper and lower edge.
std::vector<uint32_t> ColoursOfBitmap(const GhostTexture& texture) {
    constexpr int32_t kEdge = 2; // units
    const GUI_BITMAP& bitmap = *texture.bitmap;
    const bool smart = texture.type == GhostFill::kBitmapSmartHorizontal;
    const auto pixel = [&](int32_t units) {
        return static_cast<int32_t>(std::lround(units * bitmap.density));
    };
    const int32_t left = smart ? pixel(texture.rect.left) : 0;
    const int32_t right = bitmap.pixelWidth - (smart ? pixel(texture.rect.right) : 0);
    std::vector<uint32_t> colours;
    for (int32_t y = pixel(kEdge); y < bitmap.pixelHeight - pixel(kEdge); ++y) {
        for (int32_t x = left; x < right; ++x) {
            colours.push_back(bitmap.pixels[static_cast<size_t>(y * bitmap.pixelWidth + x)]);
        }
    }
    return colours;
}

std::vector<uint32_t> ColoursOf(const GhostTexture& texture) {
    switch (texture.type) {
    case GhostFill::kNone: return {0};
    case GhostFill::kColour: return {texture.colour1};
    case GhostFill::kGradientHorizontal:
    case GhostFill::kGradientVertical: {
        std::vector<uint32_t> colours;
        constexpr uint32_t kSteps = 16;
        for (uint32_t i = 0; i <= kSteps; ++i) {
            uint32_t mixed = 0;
            for (const uint32_t shift : {0u, 8u, 16u, 24u}) {
                const uint32_t from = texture.colour1 >> shift & 0xFF;
                const uint32_t to = texture.colour2 >> shift & 0xFF;
                mixed |= (from * (kSteps - i) + to * i) / kSteps << shift;
            }
            colours.push_back(mixed);
        }
        return colours;
    }
    default: return ColoursOfBitmap(texture);
    }
}

double WorstContrast(uint32_t text, const GhostTexture& fill) {
    double worst = 21.0;
    for (const uint32_t colour : ColoursOf(fill)) {
        const uint32_t ground = Composited(colour, kNight1);
        worst = std::min(worst, Contrast(Composited(text, ground), ground));
    }
    return worst;
}

struct SAMPLE {
    std::string what;
    GhostTextStyle style;
    bool field = false; // whose second fill is the caret
};

void Add(std::vector<SAMPLE>& samples, const std::string& name, const GhostButtonStyle& style) {
    constexpr std::array<const char*, 5> kStates = {" normal", " hot", " pressed", " disabled",
                                                    " of another name"};
    for (size_t i = 0; i < kStates.size(); ++i) {
        samples.push_back({name + kStates[i], style.states[i]});
    }
}

void Add(std::vector<SAMPLE>& samples, const std::string& name, const GhostEditStyle& style) {
    constexpr std::array<const char*, 3> kStates = {" normal", " hot", " read-only"};
    for (size_t i = 0; i < kStates.size(); ++i) {
        samples.push_back({name + kStates[i], style.states[i], true});
    }
}

void Add(std::vector<SAMPLE>& samples, const std::string& name, const GhostListStyle& style) {
    samples.push_back({name + " item_normal", style.itemNormal});
    samples.push_back({name + " item_hot", style.itemHot});
    samples.push_back({name + " item_selected", style.itemSelected});
    samples.push_back({name + " item2_normal", style.item2Normal});
    samples.push_back({name + " item2_hot", style.item2Hot});
    samples.push_back({name + " item2_selected", style.item2Selected});
    samples.push_back({name + " disabled row", DisabledText(style.itemNormal)});
    samples.push_back({name + " disabled odd row", DisabledText(style.item2Normal)});
}

template <typename Style>
Style Record(const std::wstring& name) {
    Style style;
    EXPECT_TRUE(LoadedTheme().GetStyle(name, style));
    return style;
}

// The text of every record of the theme in every state.
std::vector<SAMPLE> Samples() {
    std::vector<SAMPLE> samples;
    for (const CGhostTheme::NAMED& named : LoadedTheme().Names()) {
        const std::string name(named.name.begin(), named.name.end());
        switch (named.kind) {
        case StyleKind::kTextBox:
            samples.push_back({name, Record<GhostTextStyle>(named.name)});
            break;
        case StyleKind::kButton: Add(samples, name, Record<GhostButtonStyle>(named.name)); break;
        case StyleKind::kEdit: Add(samples, name, Record<GhostEditStyle>(named.name)); break;
        case StyleKind::kList: Add(samples, name, Record<GhostListStyle>(named.name)); break;
        case StyleKind::kListView: {
            const auto style = Record<GhostListViewStyle>(named.name);
            Add(samples, name, style.list);
            Add(samples, name + " header", style.header);
            Add(samples, name + " edit", style.edit);
            break;
        }
        case StyleKind::kDropList:
            samples.push_back({name, Record<GhostDropListStyle>(named.name).bg});
            samples.push_back({name + " disabled", DisabledText(samples.back().style)});
            break;
        default: break; // borders and scrollbars have no text
        }
    }
    return samples;
}

} // namespace

TEST(ThemeContrast, IsWhatItIsKnownToBe) {
    EXPECT_NEAR(Contrast(0xFFFFFFFF, 0xFF000000), 21.0, 1e-9);
    EXPECT_NEAR(Contrast(0xFF777777, 0xFFFFFFFF), 4.48, 0.01);
    EXPECT_NEAR(Contrast(0xFFF3EAD3, kNight1), 14.8, 0.1); // moon on night 1
}

TEST(ThemeContrast, SeesTheWorstOfAGradientAndOfATransparentFill) {
    GhostTexture fill;
    fill.type = GhostFill::kGradientVertical;
    fill.colour1 = 0xFF000000;
    fill.colour2 = 0xFFFFFFFF;
    EXPECT_NEAR(WorstContrast(0xFFFFFFFF, fill), 1.0, 1e-9);
    fill.type = GhostFill::kNone;
    EXPECT_NEAR(WorstContrast(0xFFF3EAD3, fill), 14.8, 0.1);
}

TEST(ThemeContrast, IsEnoughInEveryStyleAndState) {
    size_t tested = 0;
    for (SAMPLE sample : Samples()) {
        if (sample.style.textColour >> 24 == 0) {
            continue; // a style without text
        }
        if (sample.what.starts_with("CHECKBOX")) {
            sample.style.bg.type = GhostFill::kNone; // the caption lies beside the box
        }
        ++tested;
        EXPECT_GE(WorstContrast(sample.style.textColour, sample.style.bg), kLeastContrast)
            << sample.what;
        const GhostTexture& second = sample.style.bg2;
        if (sample.field) {
            EXPECT_GE(WorstContrast(second.colour1, sample.style.bg), kLeastContrast)
                << sample.what << ", caret";
            continue;
        }
        // The part of a slider that is filled.
        if (second.type != GhostFill::kColour || second.colour1 >> 24 != 0) {
            EXPECT_GE(WorstContrast(sample.style.textColour, second), kLeastContrast)
                << sample.what << ", filled";
        }
    }
    EXPECT_GT(tested, 100u);
}
