// A line with round corners: the ring of the focus, and frames on dense screens.
#pragma once

#include "gui/geometry.h"

#include <cstdint>

class CGhostSurface;

// Along the inside of the rectangle, `thickness` and the radius `corner` in units. Corners are smooth.
// Nothing for a colour of 0, or a rectangle too small for the line.
void PaintRing(CGhostSurface& surface, const GUI_RECT& rect, int32_t thickness, int32_t corner,
               uint32_t colour);

// Makes the rectangle's corners transparent, beyond a ring of that radius.
void CutCorners(CGhostSurface& surface, const GUI_RECT& rect, int32_t corner);
