#include "front/speed_mark.h"

#include "gui/control.h"
#include "gui/manager.h"
#include "gui/styles.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/text_box.h"
#include "gui/theme.h"
#include "gui/window.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// Units.
constexpr int32_t kFromEdge = 20;
constexpr int32_t kHeight = 34;
constexpr int32_t kMargin = 12;
constexpr int32_t kArrowWidth = 11;
constexpr int32_t kArrowHeight = 16;
constexpr int32_t kArrowStep = 12;
constexpr int32_t kFactorGap = 9;
constexpr int32_t kArrowsWidth = kArrowStep + kArrowWidth;

// How much of each pixel an arrow covers that points to the right, or to the left: four points each way count.
std::vector<uint8_t> ArrowMask(int32_t width, int32_t height, bool left) {
    constexpr int32_t kPoints = 4;
    std::vector<uint8_t> mask(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            int32_t inside = 0;
            for (int32_t point = 0; point < kPoints * kPoints; ++point) {
                const int32_t column = point % kPoints;
                const int32_t row = point / kPoints;
                const double across = (x + (column + 0.5) / kPoints) / width;
                const double down = (y + (row + 0.5) / kPoints) / height;
                const double toPoint = left ? across : 1.0 - across; // 0 at the point
                inside += std::abs(2.0 * down - 1.0) <= toPoint ? 1 : 0;
            }
            mask[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] =
                static_cast<uint8_t>(inside * 255 / (kPoints * kPoints));
        }
    }
    return mask;
}

} // namespace

class SpeedMarkFace : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    explicit SpeedMarkFace(GHOSTMANAGER_WINDOW* parent) {
        window = MakeControlWindow(parent, 0, this, {});
        CGhostManager::Get().SetTabStop(window, false);
        CGhostTheme::Get().GetStyle(L"KEYTEXT", text);
    }

    void SetSpeed(int32_t speed) {
        backwards = speed < 0;
        const int32_t times = std::abs(speed);
        factor = backwards && times == 1 ? std::wstring() : std::to_wstring(times) + L"x";
        dirty = true;
    }

    [[nodiscard]] const std::wstring& Factor() const { return factor; }
    [[nodiscard]] int32_t WantedWidth() const {
        const int32_t words =
            factor.empty() ? 0 : kFactorGap + MeasureText(text.font, factor).width;
        return 2 * kMargin + kArrowsWidth + words;
    }

    void Destroy() override { delete this; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) override {
        const int32_t top = (surface->Height() - kArrowHeight) / 2;
        for (const int32_t x : {kMargin, kMargin + kArrowStep}) {
            PaintArrow(*surface, x, top);
        }
        const int32_t left = kMargin + kArrowsWidth + kFactorGap;
        PaintText(*surface, text, factor, {left, 0, surface->Width() - left, surface->Height()});
    }

protected:
    ~SpeedMarkFace() override = default;

private:
    void PaintArrow(CGhostSurface& surface, int32_t x, int32_t y) const {
        const int32_t left = surface.PixelX(x);
        const int32_t top = surface.PixelY(y);
        const int32_t width = std::max(surface.PixelX(x + kArrowWidth) - left, 1);
        const int32_t height = std::max(surface.PixelY(y + kArrowHeight) - top, 1);
        const std::vector<uint8_t> mask = ArrowMask(width, height, backwards);
        surface.StampMask(left, top, mask.data(), width, height, width, text.textColour);
    }

    GhostTextStyle text;
    std::wstring factor;
    bool backwards = false;
};

SpeedMark::SpeedMark()
    : back(new CGhostTextBox(nullptr, 0, L"ROOMHINT", L"", {false, 0, 0, 8, kHeight}))
    , face(new SpeedMarkFace(back->window)) {
    CGhostManager::Get().ShowWindow(back->window, false);
}

SpeedMark::~SpeedMark() {
    CGhostManager::Get().DestroyWindow(back->window);
}

const std::wstring& SpeedMark::Factor() const {
    return face->Factor();
}

void SpeedMark::Show(int32_t speed) {
    const bool resized = CGhostManager::Get().ScreenRect().width != screenWidth;
    if (speed == shown && !resized) {
        return;
    }
    shown = speed;
    if (Visible()) {
        face->SetSpeed(speed);
        Place();
    }
    CGhostManager::Get().ShowWindow(back->window, Visible());
}

void SpeedMark::Place() {
    screenWidth = CGhostManager::Get().ScreenRect().width;
    const int32_t width = face->WantedWidth();
    back->SetPos(screenWidth - kFromEdge - width, kFromEdge, width, kHeight);
    face->SetPos(0, 0, width, kHeight);
}
