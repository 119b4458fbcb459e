#include "room/cover_view.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr size_t kColumns = 3;
constexpr float kCellWidth = 90.0f;
constexpr float kCellHeight = 130.0f;
constexpr float kFlipRate = 300.0f; // degrees a second
constexpr float kMostAcross = 3.0f;
constexpr float kMostUp = 0.8f;
constexpr float kNear = 10.0f;
constexpr float kFar = 1000.0f;
const float kHalfView = std::tan(std::numbers::pi_v<float> / 8.0f); // of 45 degrees, at distance 1

// From where a rectangle of this size just fits into the view.
float DistanceFor(float width, float height, float aspect) {
    return std::max(height, width / aspect) / 2.0f / kHalfView;
}

} // namespace

VECTOR3 CoverView::PlaceOf(size_t slot) {
    return {static_cast<float>(slot % kColumns) * kCellWidth + kCellWidth / 2.0f,
            kCellHeight / 2.0f - static_cast<float>(slot / kColumns) * kCellHeight, 0.0f};
}

void CoverView::SetCovers(std::span<const int> kinds, bool withCabinet) {
    slots = {};
    count = std::min(kinds.size(), kMostCovers);
    for (size_t i = 0; i < count; ++i) {
        const bool known = kinds[i] >= 0 && static_cast<size_t>(kinds[i]) < kBoxSizes.size();
        slots[i].kind = known ? kinds[i] : kNoCover;
    }
    cabinet = withCabinet;
    zoomed = kMostCovers;
    leanAcross = 0.0f;
    leanUp = 0.0f;
    PlaceCamera();
}

void CoverView::SetSize(uint32_t width, uint32_t height) {
    viewWidth = std::max(width, 1U);
    viewHeight = std::max(height, 1U);
    PlaceCamera();
}

// From the first column with something in it to the one after the last. The cabinet takes the first column.
std::pair<float, float> CoverView::ColumnsInUse() const {
    size_t first = cabinet ? 0 : kColumns;
    size_t last = cabinet ? 1 : 0;
    for (size_t i = 0; i < count; ++i) {
        if (slots[i].kind != kNoCover) {
            first = std::min(first, i % kColumns);
            last = std::max(last, i % kColumns + 1);
        }
    }
    return first < last ? std::pair{static_cast<float>(first), static_cast<float>(last)}
                        : std::pair{0.0f, static_cast<float>(kColumns)};
}

float CoverView::RowsInUse() const {
    return static_cast<float>(std::max<size_t>((count + kColumns - 1) / kColumns, 1));
}

VECTOR3 CoverView::Middle() const {
    const auto [left, right] = ColumnsInUse();
    return {(left + right) * kCellWidth / 2.0f, kCellHeight - RowsInUse() * kCellHeight / 2.0f,
            0.0f};
}

void CoverView::PlaceCamera() {
    const float aspect = static_cast<float>(viewWidth) / static_cast<float>(viewHeight);
    VECTOR3 aim;
    if (zoomed < kMostCovers) {
        aim = PlaceOf(zoomed);
        distance = DistanceFor(kCellWidth, kCellHeight, aspect);
    } else {
        const auto [left, right] = ColumnsInUse();
        aim = Middle();
        distance = DistanceFor((right - left) * kCellWidth, RowsInUse() * kCellHeight, aspect);
    }
    const VECTOR3 from = {aim.x + leanAcross, aim.y + leanUp, distance};
    camera.SetUp(aspect, from, {from.x, from.y, 0.0f});
    camera.SetRange(kNear, kFar);
}

void CoverView::Lean(float across, float up) {
    leanAcross = std::clamp(across, -kMostAcross, kMostAcross);
    leanUp = std::clamp(up, -kMostUp, kMostUp);
    PlaceCamera();
}

void CoverView::Update(float seconds) {
    for (SLOT& slot : slots) {
        if (!slot.flipping) {
            continue;
        }
        const float end = slot.turn < 180.0f ? 180.0f : 360.0f;
        slot.turn += kFlipRate * seconds;
        if (slot.turn >= end) {
            slot.turn = end == 360.0f ? 0.0f : end;
            slot.flipping = false;
        }
    }
}

size_t CoverView::SlotAt(int32_t x, int32_t y) const {
    const VECTOR3 point =
        camera.Unproject((static_cast<float>(x) + 0.5f) / static_cast<float>(viewWidth),
                         (static_cast<float>(y) + 0.5f) / static_cast<float>(viewHeight),
                         kFar / (kFar - kNear) - kFar * kNear / (kFar - kNear) / distance);
    for (size_t i = 0; i < count; ++i) {
        if (slots[i].kind == kNoCover) {
            continue;
        }
        const BOX_SIZE box = kBoxSizes[static_cast<size_t>(slots[i].kind)];
        const VECTOR3 place = PlaceOf(i);
        if (std::abs(point.x - place.x) <= box.width / 2.0f &&
            std::abs(point.y - place.y) <= box.height / 2.0f) {
            return i;
        }
    }
    return kMostCovers;
}

void CoverView::CoverClick(int button, int32_t x, int32_t y) {
    const size_t slot = SlotAt(x, y);
    if (slot == kMostCovers) {
        return;
    }
    if (button == 1) {
        zoomed = slot == zoomed ? kMostCovers : slot;
        PlaceCamera();
    } else if (button == 2) {
        TurnOver(slot);
    }
}

void CoverView::LookCloser() {
    zoomed = zoomed == kMostCovers ? 0 : zoomed + 1;
    while (zoomed < count && slots[zoomed].kind == kNoCover) {
        ++zoomed;
    }
    if (zoomed >= count) {
        zoomed = kMostCovers;
    }
    PlaceCamera();
}

void CoverView::TurnOver() {
    for (size_t slot = 0; slot < count; ++slot) {
        if (zoomed == kMostCovers || zoomed == slot) {
            TurnOver(slot);
        }
    }
}
