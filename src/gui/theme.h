// The theme: named style records, read from theme.xml.
//
// The file says what every control looks like; docs/THEMES.md tells its form. Names are not unique: the
// first record of a name counts. A record, also one within another, may begin as a copy of an earlier one
// of its kind.
// Failure: silent. What cannot be read leaves zeroed records, and controls that are not seen.
// Thread: main. Order: fonts registered, images set, then ParseTheme, then the first window.
#pragma once

#include "gui/styles.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

enum class StyleKind : uint32_t {
    kBorder = 1,
    kTextBox = 2,
    kButton = 3,
    kEdit = 4,
    kList = 5,
    kListView = 6,
    kScrollbar = 7,
    kDropList = 8,
};

class CGhostTheme {
public:
    static CGhostTheme& Get(); // the process's own

    // Drops all records, then reads the text, UTF-8.
    void ParseTheme(std::string_view text);

    // Clears `record`, then copies the first record of that name into it. False if there is none
    // or it is of another kind.
    bool GetStyle(std::wstring_view name, GhostBorderStyle& record) const;
    bool GetStyle(std::wstring_view name, GhostTextStyle& record) const;
    bool GetStyle(std::wstring_view name, GhostButtonStyle& record) const;
    bool GetStyle(std::wstring_view name, GhostEditStyle& record) const;
    bool GetStyle(std::wstring_view name, GhostListStyle& record) const;
    bool GetStyle(std::wstring_view name, GhostListViewStyle& record) const;
    bool GetStyle(std::wstring_view name, GhostScrollbarStyle& record) const;
    bool GetStyle(std::wstring_view name, GhostDropListStyle& record) const;

    // The colours of the ring around what has the focus: those of FOCUS, or others that can be seen.
    struct RING_COLOURS {
        uint32_t line = 0xFFFFB347;
        uint32_t outline = 0xFF0B0E1F;
    };
    [[nodiscard]] const RING_COLOURS& FocusRing() const { return focusRing; }

    // For tests and the gallery: the names in the order of the file.
    struct NAMED {
        std::wstring name;
        StyleKind kind;
    };
    [[nodiscard]] std::vector<NAMED> Names() const;

private:
    // In the order of StyleKind, from 1.
    using RECORD =
        std::variant<GhostBorderStyle, GhostTextStyle, GhostButtonStyle, GhostEditStyle,
                     GhostListStyle, GhostListViewStyle, GhostScrollbarStyle, GhostDropListStyle>;
    struct ENTRY {
        std::wstring name;
        RECORD record;
    };
    template <typename Style>
    bool Find(std::wstring_view name, Style& record) const;

    void ReadRecords(std::string_view text);
    void FindFocusRing();

    std::vector<std::unique_ptr<ENTRY>> entries;
    RING_COLOURS focusRing; // read with the theme, since every painting of a control asks for it
};
