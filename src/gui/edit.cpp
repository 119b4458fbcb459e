#include "gui/edit.h"

#include "gui/keyboard.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

namespace {

constexpr int64_t kBlink = 530000;   // microseconds that the caret is seen or not
constexpr int64_t kDragStep = 30000; // microseconds of a step while a drag scrolls
constexpr int32_t kDragUnits = 8;    // of such a step
constexpr wchar_t kSecretDot = L'\x2022';
constexpr size_t kAll = 100000; // what a double click selects up to
constexpr uint32_t kCaretColour = 0xFF000000;

std::wstring OneLine(std::wstring_view text) {
    std::wstring line;
    for (const wchar_t character : text) {
        if (character == L'\n' || character == L'\t') {
            line += L' ';
        } else if (!IsControlCharacter(character)) {
            line += character;
        }
    }
    return line;
}

} // namespace

CGhostEdit::CGhostEdit(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                       const std::wstring& wantedStyle, const std::wstring& caption,
                       uint32_t editFlags, const GUI_PLACE& place)
    : text(OneLine(caption))
    , caret(text.size())
    , anchor(text.size())
    , flags(editFlags) {
    window = MakeControlWindow(parent, creationId, this, place);
    SetStyle(wantedStyle);
    CGhostManager::Get().SetTabStop(window, true);
    PlaceControl(window, place);
}

CGhostEdit::~CGhostEdit() {
    OnGone(this);
}

void CGhostEdit::SetText(const std::wstring& wanted) {
    text = OneLine(wanted);
    caret = anchor = text.size();
    ShowCaret();
    dirty = true;
}

void CGhostEdit::SetStyle(const std::wstring& name) {
    GhostEditStyle found;
    CGhostTheme::Get().GetStyle(name, found);
    SetStyle(found);
}

void CGhostEdit::SetStyle(const GhostEditStyle& wanted) {
    style = wanted;
    CGhostManager::Get().SetWindowFrame(window, &Look().border);
    dirty = true;
}

void CGhostEdit::SetReadOnly(bool wanted) {
    readOnly = wanted;
    ShowStyle(readOnly ? kReadOnly : hovered ? kHot : kNormal);
    dirty = true;
}

void CGhostEdit::ShowStyle(uint32_t index) {
    if (index != styleIndex) {
        styleIndex = index;
        CGhostManager::Get().SetWindowFrame(window, &Look().border);
        dirty = true;
    }
}

// ---- Places.

std::wstring CGhostEdit::Shown() const {
    return (flags & kSecret) != 0 ? std::wstring(text.size(), kSecretDot) : text;
}

GUI_RECT CGhostEdit::Inner() const {
    const GUI_EDGES& margin = Look().textRect;
    return {margin.left, margin.top, std::max(0, width - margin.left - margin.right),
            std::max(0, height - margin.top - margin.bottom)};
}

int32_t CGhostEdit::CaretX(size_t at) const {
    return MeasurePrefix(Look().font, Shown(), at);
}

size_t CGhostEdit::CharacterAt(int x) const {
    const int32_t inText = x - Inner().x + scroll;
    return inText <= 0 ? 0 : FitText(Look().font, Shown(), inText);
}

void CGhostEdit::ClampScroll() {
    // One unit more than the text, for the caret at its end.
    scroll = std::clamp(scroll, 0, std::max(0, CaretX(text.size()) + 1 - Inner().width));
}

void CGhostEdit::ShowCaret() {
    const int32_t at = CaretX(caret);
    scroll = std::min(scroll, at);
    scroll = std::max(scroll, at + 1 - Inner().width);
    ClampScroll();
    caretShown = true;
    blinkTime = 0;
    dirty = true;
}

void CGhostEdit::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                          int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    ClampScroll();
    dirty = true;
}

// ---- The caret and the selection.

void CGhostEdit::MoveCaret(size_t to, bool select) {
    caret = std::min(to, text.size());
    if (!select) {
        anchor = caret;
    }
    ShowCaret();
}

void CGhostEdit::SetSelection(size_t start, size_t end) {
    anchor = std::min(start, text.size());
    caret = std::min(end, text.size());
    ShowCaret();
}

std::wstring CGhostEdit::SelectedText() const {
    return text.substr(SelectionStart(), SelectionEnd() - SelectionStart());
}

// The places of the spaces, which is where control with left and right stops.
size_t CGhostEdit::SpaceBefore(size_t at) const {
    const size_t found = at > 0 ? text.rfind(L' ', at - 1) : std::wstring::npos;
    return found == std::wstring::npos ? 0 : found;
}

size_t CGhostEdit::SpaceAfter(size_t at) const {
    return std::min(text.find(L' ', at + 1), text.size());
}

// ---- Changes.

void CGhostEdit::Changed() {
    ShowCaret();
    OnChange(this, text);
}

bool CGhostEdit::RemoveSelection() {
    if (anchor == caret) {
        return false;
    }
    const size_t start = SelectionStart();
    text.erase(start, SelectionEnd() - start);
    caret = anchor = start;
    return true;
}

void CGhostEdit::Insert(std::wstring_view more) {
    if (readOnly) {
        return;
    }
    const bool removed = RemoveSelection();
    size_t count = more.size();
    if (maxLength != 0) {
        count = std::min(count, maxLength - std::min(maxLength, text.size()));
    }
    text.insert(caret, more.substr(0, count));
    caret = anchor = caret + count;
    if (removed || count > 0) {
        Changed();
    }
}

// ---- Keys.

namespace {

bool KeyIsDown(GHOSTGUIKey left, GHOSTGUIKey right) {
    const CGhostManager& manager = CGhostManager::Get();
    return manager.IsKeyDown(static_cast<uint32_t>(left)) ||
           manager.IsKeyDown(static_cast<uint32_t>(right));
}

bool ShiftIsDown() {
    return KeyIsDown(GHOSTGUIKey::kLeftShift, GHOSTGUIKey::kRightShift);
}

bool ControlIsDown() {
    return KeyIsDown(GHOSTGUIKey::kLeftCtrl, GHOSTGUIKey::kRightCtrl);
}

} // namespace

bool CGhostEdit::ControlKey(GHOSTGUIKey key) {
    CGhostManager& manager = CGhostManager::Get();
    switch (key) {
    case GHOSTGUIKey::kA: SetSelection(0, text.size()); return true;
    case GHOSTGUIKey::kC:
    case GHOSTGUIKey::kX:
        if (anchor != caret && (flags & kSecret) == 0) {
            manager.SetClipboard(SelectedText());
            if (key == GHOSTGUIKey::kX && !readOnly && RemoveSelection()) {
                Changed();
            }
        }
        return true;
    case GHOSTGUIKey::kV:
        if (std::wstring pasted; manager.GetClipboard(pasted)) {
            Insert(OneLine(pasted));
        }
        return true;
    default: return false;
    }
}

bool CGhostEdit::MoveKey(GHOSTGUIKey key) {
    const size_t caretBefore = caret;
    const size_t anchorBefore = anchor;
    const bool select = ShiftIsDown();
    const bool bySpaces = ControlIsDown();
    // Without shift, left and right end a selection at that side of it.
    const bool ends = anchor != caret && !select && !bySpaces;
    switch (key) {
    case GHOSTGUIKey::kHome: MoveCaret(0, select); break;
    case GHOSTGUIKey::kEnd: MoveCaret(text.size(), select); break;
    case GHOSTGUIKey::kLeft:
        MoveCaret(ends       ? SelectionStart()
                  : bySpaces ? SpaceBefore(caret)
                             : caret - std::min<size_t>(caret, 1),
                  select);
        break;
    case GHOSTGUIKey::kRight:
        MoveCaret(ends ? SelectionEnd() : bySpaces ? SpaceAfter(caret) : caret + 1, select);
        break;
    default: return false;
    }
    return select || bySpaces || caret != caretBefore || anchor != anchorBefore;
}

void CGhostEdit::EraseKey(GHOSTGUIKey key) {
    if (readOnly) {
        return;
    }
    if (anchor == caret) { // one character, as if it were selected
        caret = key == GHOSTGUIKey::kDelete ? std::min(caret + 1, text.size())
                                            : caret - std::min<size_t>(caret, 1);
    }
    if (RemoveSelection()) {
        Changed();
    }
}

void CGhostEdit::OnKeyDown(GHOSTGUIKey key) {
    if (ControlIsDown() && ControlKey(key)) {
        return;
    }
    switch (key) {
    case GHOSTGUIKey::kBackspace:
    case GHOSTGUIKey::kDelete: EraseKey(key); break;
    case GHOSTGUIKey::kReturn:
    case GHOSTGUIKey::kEscape:
        if ((flags & kSubmits) != 0) {
            OnSubmit(this, key == GHOSTGUIKey::kReturn);
        }
        break;
    case GHOSTGUIKey::kUp:
    case GHOSTGUIKey::kDown: MoveFocusByKey(key); break;
    case GHOSTGUIKey::kLeft:
    case GHOSTGUIKey::kRight:
        // The keys of the keyboard on the screen move the caret alone.
        arrow.Press(key, [&](bool) { return MoveKey(key) || keyboard != nullptr; });
        break;
    default: MoveKey(key); break;
    }
}

void CGhostEdit::OnChar(unsigned character) {
    const auto one = static_cast<wchar_t>(character);
    if (!IsControlCharacter(one)) {
        Insert({&one, 1});
    }
}

bool CGhostEdit::OnActivateKey() {
    if (!readOnly) {
        CGhostKeyboard::Open(this);
    }
    return true;
}

// ---- The mouse.

void CGhostEdit::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    caretShown = true;
    blinkTime = 0;
    arrow.Forget();
    if (gained) {
        ShowCaret();
    }
    dirty = true;
    OnFocusChange(this, gained);
}

void CGhostEdit::OnMouseMove(int x, int y) {
    if (dragging) {
        const GUI_RECT inner = Inner();
        dragScroll = x < inner.x ? -1 : x >= inner.Right() ? 1 : 0;
        if (dragScroll == 0) {
            MoveCaret(CharacterAt(x), true);
        }
        return;
    }
    hovered = x >= 0 && y >= 0 && x < width && y < height;
    if (!readOnly) {
        ShowStyle(hovered ? kHot : kNormal);
    }
}

void CGhostEdit::OnMouseLeave() {
    hovered = false;
    if (!readOnly) {
        ShowStyle(kNormal);
    }
}

void CGhostEdit::OnMouseDown(int x, int /*y*/, unsigned button) {
    if (button == kLeftButton) {
        dragging = true;
        MoveCaret(CharacterAt(x), ShiftIsDown());
    }
}

void CGhostEdit::OnMouseUp(int x, int y, unsigned button) {
    if (button == kLeftButton && dragging) {
        EndDrag();
        OnMouseMove(x, y);
    }
}

void CGhostEdit::OnMouseDoubleClick(int /*x*/, int /*y*/, unsigned button) {
    if (button == kLeftButton) {
        SetSelection(0, kAll);
    }
}

void CGhostEdit::EndDrag() {
    dragging = false;
    dragScroll = 0;
}

// While a drag is beyond an end the text moves on, and the selection with it.
void CGhostEdit::OnTick(unsigned microseconds) {
    if (dragging) {
        RestWithoutCapture(window, [this] { EndDrag(); });
    }
    if (dragging && dragScroll != 0) {
        dragTime += microseconds;
        for (; dragTime >= kDragStep; dragTime -= kDragStep) {
            scroll += dragScroll * kDragUnits;
            ClampScroll();
            const GUI_RECT inner = Inner();
            caret = CharacterAt(dragScroll < 0 ? inner.x : inner.Right());
            dirty = true;
        }
    }
    if (focused) {
        blinkTime += microseconds;
        if (blinkTime >= kBlink) {
            blinkTime %= kBlink;
            caretShown = !caretShown;
            dirty = true;
        }
    }
}

// ---- Painting.

void CGhostEdit::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const GhostTextStyle& look = Look();
    PaintFill(*surface, look.bg, {0, 0, width, height});
    const GUI_RECT inner = Inner();
    surface->PushOrigin(inner);
    // Only what is seen of a long text is drawn.
    const std::wstring shown = Shown();
    const size_t before = FitText(look.font, shown, std::max(0, scroll));
    const size_t first = before - std::min<size_t>(before, 1);
    const int32_t firstX = CaretX(first) - scroll;
    const size_t count =
        FitText(look.font, std::wstring_view(shown).substr(first), inner.width - firstX) + 1;
    const uint32_t align = kAlignLeft | (look.align & (kAlignTop | kAlignBottom));
    DrawText(*surface, look.font, std::wstring_view(shown).substr(first, count), look.textColour,
             look.textOutlineColour, align, {firstX, 0, inner.width - firstX, inner.height},
             look.xOffset, look.yOffset);
    const int32_t start = CaretX(SelectionStart()) - scroll + look.xOffset;
    const int32_t end = CaretX(SelectionEnd()) - scroll + look.xOffset;
    if (end > start) {
        surface->InvertRect({start, 0, end - start, inner.height});
    }
    if (focused && caretShown) {
        const bool own = look.bg2.type == GhostFill::kColour && look.bg2.colour1 != 0;
        surface->FillRect({CaretX(caret) - scroll + look.xOffset, 0, 1, inner.height},
                          own ? look.bg2.colour1 : kCaretColour);
    }
    surface->PopOrigin();
    if (focused) {
        PaintFocusRing(*surface, {0, 0, width, height});
    }
}
