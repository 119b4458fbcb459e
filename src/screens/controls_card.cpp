#include "screens/controls_card.h"

#include "facts/machine_facts.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "screens/key_line.h"
#include "screens/play_keys.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>

namespace {

// Units.
constexpr int32_t kDrawingWidth = 280;
constexpr int32_t kDrawingHeight = 150;
constexpr int32_t kDrawingX = (ControlsCard::kWidth - kDrawingWidth) / 2;
constexpr int32_t kDrawingY = 28;
constexpr int32_t kLabelGap = 8; // between a label and its line
constexpr int32_t kLabelWidth = kDrawingX - 2 * kLabelGap;
constexpr int32_t kLabelHeight = 24;
constexpr int32_t kStraight = 3; // a line that would climb less has no corner
constexpr int32_t kDot = 2;      // half of the dot at the end of a line

enum class Side : uint8_t { kLeft, kRight };

// A part of the controller. Its line leaves the label at `y`, and ends at (toX, toY), all from the drawing's corner.
struct PART {
    std::wstring_view action; // empty: the four directions
    const wchar_t* does;
    Side side;
    int32_t y;
    int32_t toX;
    int32_t toY;
};

// The lines of one side do not cross: who has a line above the drawing comes from further in than the next one below.
constexpr PART kMasterSystem[] = {
    {L"",               L"move",  Side::kLeft,  90, 38,  89},
    {L"SMS PAUSE",      L"pause", Side::kLeft,  16, 101, 16},
    {L"SMS P1 BUTTON1", L"1",     Side::kRight, 36, 188, 74},
    {L"SMS P1 BUTTON2", L"2",     Side::kRight, 90, 249, 89},
};
constexpr PART kGameGear[] = {
    {L"",              L"move",  Side::kLeft,  76,  26,  76 },
    {L"GG P1 START",   L"start", Side::kRight, 10,  232, 37 },
    {L"GG P1 BUTTON2", L"2",     Side::kRight, 76,  258, 76 },
    {L"GG P1 BUTTON1", L"1",     Side::kRight, 142, 214, 104},
};
constexpr PART kNes[] = {
    {L"",               L"move",   Side::kLeft,  84,  34,  84 },
    {L"NES P1 SELECT",  L"select", Side::kLeft,  142, 118, 103},
    {L"NES P1 BUTTONB", L"B",      Side::kRight, 20,  197, 76 },
    {L"NES P1 BUTTONA", L"A",      Side::kRight, 89,  250, 89 },
    {L"NES P1 START",   L"start",  Side::kRight, 142, 152, 103},
};
constexpr PART kArcade[] = {
    {L"Arcade Insert Coin1", L"coin",  Side::kLeft,  33,  96,  33 },
    {L"",                    L"move",  Side::kLeft,  70,  52,  68 },
    {L"Arcade Start1",       L"start", Side::kRight, 33,  205, 33 },
    {L"Arcade P1 BUTTON2",   L"2",     Side::kRight, 92,  237, 92 },
    {L"Arcade P1 BUTTON1",   L"1",     Side::kRight, 146, 172, 119},
};
constexpr PART kMegaDrive[] = {
    {L"",                     L"move",  Side::kLeft,  80,  34,  80 },
    {L"MEGADRIVE P1 START",   L"start", Side::kLeft,  146, 136, 97 },
    {L"MEGADRIVE P1 BUTTONX", L"X",     Side::kRight, -14, 176, 64 },
    {L"MEGADRIVE P1 BUTTONY", L"Y",     Side::kRight, 12,  202, 56 },
    {L"MEGADRIVE P1 MODE",    L"mode",  Side::kRight, 38,  256, 30 },
    {L"MEGADRIVE P1 BUTTONZ", L"Z",     Side::kRight, 64,  236, 57 },
    {L"MEGADRIVE P1 BUTTONC", L"C",     Side::kRight, 92,  251, 85 },
    {L"MEGADRIVE P1 BUTTONB", L"B",     Side::kRight, 120, 212, 104},
    {L"MEGADRIVE P1 BUTTONA", L"A",     Side::kRight, 148, 184, 113},
};

struct MACHINE_CARD {
    const wchar_t* style = nullptr; // null: unknown machine
    std::span<const PART> parts;
};

MACHINE_CARD CardOf(uint16_t system) {
    switch (system) {
    case kSystemMasterSystem: return {L"CONTROLS_MASTERSYSTEM", kMasterSystem};
    case kSystemGameGear: return {L"CONTROLS_GAMEGEAR", kGameGear};
    case kSystemNes: return {L"CONTROLS_NES", kNes};
    case kSystemArcade: return {L"CONTROLS_ARCADE", kArcade};
    case kSystemMegaDrive: return {L"CONTROLS_MEGADRIVE", kMegaDrive};
    default: return {};
    }
}

KEY_WORDS WordsOf(const PART& part, uint16_t system, const PadNames& padNames) {
    KEY_WORDS words;
    words.does = part.does;
    const auto& player = FindMachineFacts(system)->playerActions[0];
    const bool moves = part.action.empty();
    if (moves) {
        words.keys = DirectionKeys({player[0], player[1], player[2], player[3]});
    } else if (std::wstring key = KeyOfAction(part.action); !key.empty()) {
        words.keys.push_back(std::move(key));
    }
    if (std::wstring pad = padNames ? padNames(moves ? player[0] : part.action) : std::wstring();
        !pad.empty()) {
        words.pads.push_back(std::move(pad));
    }
    return words;
}

} // namespace

ControlsCard::ControlsCard(GHOSTMANAGER_WINDOW* parent, uint16_t system, const PadNames& padNames) {
    window = MakeControlWindow(parent, 0, this, {});
    CGhostManager::Get().SetTabStop(window, false);
    const MACHINE_CARD card = CardOf(system);
    CGhostTheme::Get().GetStyle(L"CONTROLS_LINE", lineStyle);
    if (card.style == nullptr) {
        return;
    }
    CGhostTheme::Get().GetStyle(card.style, drawing);
    labels.reserve(card.parts.size());
    lines.reserve(card.parts.size());
    for (const PART& part : card.parts) {
        KEY_WORDS words = WordsOf(part, system, padNames);
        if (words.keys.empty() && words.pads.empty()) {
            continue;
        }
        auto* const label = new KeyLine(window, 0);
        label->SetWords({std::move(words)});
        const bool left = part.side == Side::kLeft;
        const int32_t wide = std::min(label->WantedWidth(), kLabelWidth);
        const int32_t y = kDrawingY + part.y;
        const int32_t edge = left ? kDrawingX - kLabelGap : kDrawingX + kDrawingWidth + kLabelGap;
        label->SetPos(left ? edge - kLabelGap - wide : edge + kLabelGap, y - kLabelHeight / 2, wide,
                      kLabelHeight);
        labels.push_back(label);
        lines.push_back({edge, y, kDrawingX + part.toX, kDrawingY + part.toY});
    }
}

void ControlsCard::MoveTo(int32_t x, int32_t y) {
    SetPos(x, y, kWidth, kHeight);
}

void ControlsCard::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    PaintText(*surface, drawing, {}, {kDrawingX, kDrawingY, kDrawingWidth, kDrawingHeight});
    const uint32_t colour = lineStyle.textColour;
    for (const LINE& line : lines) {
        const bool straight = std::abs(line.toY - line.y) < kStraight;
        const int32_t y = line.y;
        surface->FillRect(
            {std::min(line.fromX, line.toX), y, std::abs(line.toX - line.fromX) + 1, 1}, colour);
        if (!straight) {
            surface->FillRect({line.toX, std::min(y, line.toY), 1, std::abs(line.toY - y) + 1},
                              colour);
        }
        surface->FillRect(
            {line.toX - kDot + 1, (straight ? y : line.toY) - kDot + 1, 2 * kDot - 1, 2 * kDot - 1},
            colour);
    }
}
