// The list that floats over other windows, of a drop list or a menu.
#pragma once

#include "gui/list.h"

#include <functional>
#include <string>

// A hidden list that ends with its owner, whose part it is. Keys aim at its rows; return or a release of the
// mouse chooses one. `close` is called when escape is pressed and when the focus goes to a window that is not
// the control's own, as `isOwn` says.
[[nodiscard]] CGhostList* MakeFloatingList(GHOSTMANAGER_WINDOW* owner, uint32_t creationId,
                                           const std::wstring& style, std::function<void()> close,
                                           std::function<bool(const void*)> isOwn);

// Shows it there, in front of all others, with the focus.
void OpenFloatingList(CGhostList& list, const GUI_RECT& place);
