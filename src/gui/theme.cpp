#include "gui/theme.h"

#include "base/text.h"
#include "gui/bitmap.h"
#include "gui/font.h"

#include <pugixml.hpp>

#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

using Node = pugi::xml_node;

// Many times what a theme needs. A record has some kilobytes, whatever its kind.
constexpr size_t kMostRecords = 5000;

bool Is(const char* a, const char* b) {
    return std::strcmp(a, b) == 0;
}

bool HasName(Node node, const char* name) {
    return Is(node.attribute("name").value(), name);
}

int32_t Decimal(const char* text) {
    const long value = std::strtol(text, nullptr, 10);
    constexpr long kMost = 1 << 20; // nothing on a screen is larger
    return static_cast<int32_t>(std::min(std::max(value, -kMost), kMost));
}

// Hexadecimal, with "0x" or without.
uint32_t Colour(Node node) {
    return static_cast<uint32_t>(std::strtoull(node.attribute("val").value(), nullptr, 16));
}

int32_t Number(Node node) {
    return Decimal(node.attribute("val").value());
}

// Where both forms are present, the word (`left`) overrides the short one (`x1`).
GUI_EDGES Edges(Node node) {
    GUI_EDGES edges;
    const auto read = [&](const char* shortForm, const char* word, int32_t& value) {
        for (const char* name : {shortForm, word}) {
            if (const pugi::xml_attribute found = node.attribute(name)) {
                value = Decimal(found.value());
            }
        }
    };
    read("x1", "left", edges.left);
    read("y1", "top", edges.top);
    read("x2", "right", edges.right);
    read("y2", "bottom", edges.bottom);
    return edges;
}

struct FILL_NAME {
    const char* name;
    GhostFill type;
};
constexpr FILL_NAME kFillNames[] = {
    {"color",               GhostFill::kColour               },
    {"color_hor",           GhostFill::kGradientHorizontal   },
    {"color_ver",           GhostFill::kGradientVertical     },
    {"none",                GhostFill::kNone                 },
    {"bitmap",              GhostFill::kBitmap               },
    {"bitmap_flipy",        GhostFill::kBitmapFlipY          },
    {"bitmap_flipx",        GhostFill::kBitmapFlipX          },
    {"bitmap_smartfillhor", GhostFill::kBitmapSmartHorizontal},
    {"bitmap_smartfillver", GhostFill::kBitmapSmartVertical  },
    {"bitmap_stretch",      GhostFill::kBitmapStretch        },
    {"bitmap_repeaty",      GhostFill::kBitmapRepeatY        },
    {"bitmap_repeatxy",     GhostFill::kBitmapRepeatXY       },
};

bool NeedsBitmap(GhostFill type) {
    return type >= GhostFill::kBitmap;
}

// A fill that asks for a bitmap, by its type or by naming a file, and finds none paints nothing, whatever
// bitmap the record began with.
void Parse(Node node, GhostTexture& texture) {
    const char* const type = node.attribute("type").value();
    bool asks = false;
    bool found = false;
    for (const FILL_NAME& fill : kFillNames) {
        if (Is(type, fill.name)) {
            texture.type = fill.type;
            asks = true;
        }
    }
    for (const Node child : node.children()) {
        const char* const name = child.attribute("name").value();
        if (Is(child.name(), "color")) {
            if (Is(name, "bg")) {
                texture.colour1 = Colour(child);
            } else if (Is(name, "bg2")) {
                texture.colour2 = Colour(child);
            }
        } else if (Is(child.name(), "rect")) {
            if (Is(name, "fill1")) {
                texture.fill1 = Edges(child);
            } else if (Is(name, "fill2")) {
                texture.fill2 = Edges(child);
            } else if (*name == '\0') {
                texture.rect = Edges(child);
            }
        } else if (Is(child.name(), "file")) {
            asks = true;
            if (const GUI_BITMAP* const bitmap = *name == '#' ? LoadThemeBitmap(name) : nullptr) {
                texture.bitmap = bitmap;
                found = true;
            }
        }
    }
    if (NeedsBitmap(texture.type) && (texture.bitmap == nullptr || (asks && !found))) {
        texture.type = GhostFill::kNone;
        texture.bitmap = nullptr;
    }
}

// What `use` names, of the record's own kind; zeros for what is not there yet or of another kind.
template <typename Record>
void Use(const CGhostTheme& theme, Node node, Record& record) {
    if (const pugi::xml_attribute use = node.attribute("use")) {
        theme.GetStyle(WideFromUtf8(use.value()), record);
    }
}

struct FRAME_NAME {
    const char* name;
    GhostFrame type;
};
constexpr FRAME_NAME kFrameNames[] = {
    {"user",               GhostFrame::kUser              },
    {"color",              GhostFrame::kColour            },
    {"rounded_color",      GhostFrame::kRoundedColour     },
    {"rounded_colorinset", GhostFrame::kRoundedColourInset},
};

// Without a type, written or inherited, a border is left alone.
void Parse(const CGhostTheme& theme, Node node, GhostBorderStyle& border) {
    Use(theme, node, border);
    const pugi::xml_attribute type = node.attribute("type");
    if (!type && border.type == GhostFrame::kNone) {
        return;
    }
    for (const FRAME_NAME& frame : kFrameNames) {
        if (Is(type.value(), frame.name)) {
            border.type = frame.type;
        }
    }
    for (const Node child : node.children()) {
        const char* const name = child.attribute("name").value();
        if (Is(child.name(), "rect")) {
            border.thickness = Thicknesses(Edges(child));
        } else if (Is(child.name(), "texture")) {
            if (*name == '\0' || Is(name, "left")) {
                Parse(child, border.left);
            } else if (Is(name, "top")) {
                Parse(child, border.top);
            } else if (Is(name, "right")) {
                Parse(child, border.right);
            } else if (Is(name, "bottom")) {
                Parse(child, border.bottom);
            }
        }
    }
}

void ParseFont(Node node, GhostTextStyle& style) {
    const pugi::xml_attribute name = node.attribute("name");
    const pugi::xml_attribute size = node.attribute("size");
    if (name && size) {
        style.font = CGhostFontManager::Get().GetFont(name.value(), Decimal(size.value()));
    }
    const std::string_view align = node.attribute("align").value();
    const auto bit = [&](const char* word, uint32_t value) {
        return align.find(word) != std::string_view::npos ? value : 0;
    };
    style.align = bit("left", kAlignLeft) | bit("right", kAlignRight) | bit("top", kAlignTop) |
                  bit("bottom", kAlignBottom);
    if (const pugi::xml_attribute offset = node.attribute("xoffset")) {
        style.xOffset = static_cast<int16_t>(Decimal(offset.value()));
    }
    if (const pugi::xml_attribute offset = node.attribute("yoffset")) {
        style.yOffset = static_cast<int16_t>(Decimal(offset.value()));
    }
}

void Parse(const CGhostTheme& theme, Node node, GhostTextStyle& style) {
    Use(theme, node, style);
    for (const Node child : node.children()) {
        if (Is(child.name(), "texture")) {
            Parse(child, HasName(child, "bg2") ? style.bg2 : style.bg);
        } else if (Is(child.name(), "color")) {
            if (HasName(child, "text")) {
                style.textColour = Colour(child);
            } else if (HasName(child, "textoutline")) {
                style.textOutlineColour = Colour(child);
            }
        } else if (Is(child.name(), "border")) {
            Parse(theme, child, style.border);
        } else if (Is(child.name(), "rect")) {
            style.textRect = Edges(child);
        } else if (Is(child.name(), "font")) {
            ParseFont(child, style);
        }
    }
}

// A state of another name is the fifth.
void Parse(const CGhostTheme& theme, Node node, GhostButtonStyle& style) {
    Use(theme, node, style);
    constexpr const char* kStates[] = {"normal", "hot", "pressed", "disabled"};
    for (const Node child : node.children("textbox")) {
        size_t state = 0;
        while (state < std::size(kStates) && !HasName(child, kStates[state])) {
            ++state;
        }
        Parse(theme, child, style.states[state]);
    }
}

// A state of an unknown name is read into the last known state before it, or else into `normal`.
void Parse(const CGhostTheme& theme, Node node, GhostEditStyle& style) {
    Use(theme, node, style);
    constexpr const char* kStates[] = {"normal", "hot", "readonly"};
    size_t last = 0;
    for (const Node child : node.children("textbox")) {
        for (size_t state = 0; state < std::size(kStates); ++state) {
            last = HasName(child, kStates[state]) ? state : last;
        }
        Parse(theme, child, style.states[last]);
    }
}

struct LIST_FIELD {
    const char* name;
    GhostTextStyle GhostListStyle::*field;
};
constexpr LIST_FIELD kListFields[] = {
    {"bg",             &GhostListStyle::bg           },
    {"item_normal",    &GhostListStyle::itemNormal   },
    {"item_hot",       &GhostListStyle::itemHot      },
    {"item_selected",  &GhostListStyle::itemSelected },
    {"item2_normal",   &GhostListStyle::item2Normal  },
    {"item2_hot",      &GhostListStyle::item2Hot     },
    {"item2_selected", &GhostListStyle::item2Selected},
};

void ParseListChild(const CGhostTheme& theme, Node child, GhostListStyle& style) {
    if (Is(child.name(), "texture") && HasName(child, "imagelist")) {
        Parse(child, style.imageList);
    } else if (Is(child.name(), "textbox")) {
        for (const LIST_FIELD& row : kListFields) {
            if (HasName(child, row.name)) {
                Parse(theme, child, style.*row.field);
            }
        }
    }
}

void Parse(const CGhostTheme& theme, Node node, GhostListStyle& style) {
    Use(theme, node, style);
    for (const Node child : node.children()) {
        ParseListChild(theme, child, style);
    }
}

void Parse(const CGhostTheme& theme, Node node, GhostListViewStyle& style) {
    Use(theme, node, style);
    for (const Node child : node.children()) {
        if (Is(child.name(), "number")) {
            if (HasName(child, "headerheight")) {
                style.headerHeight = Number(child);
            } else if (HasName(child, "itemheight")) {
                style.itemHeight = Number(child);
            }
        } else if (Is(child.name(), "button")) {
            Parse(theme, child, style.header);
        } else if (Is(child.name(), "edit")) {
            Parse(theme, child, style.edit);
        } else {
            ParseListChild(theme, child, style.list);
        }
    }
}

struct SCROLLBAR_NUMBER {
    const char* name;
    int32_t GhostScrollbarStyle::*field;
};
constexpr SCROLLBAR_NUMBER kScrollbarNumbers[] = {
    {"hor_arrowbuttonwidth",  &GhostScrollbarStyle::horArrowButtonWidth },
    {"hor_height",            &GhostScrollbarStyle::horHeight           },
    {"hor_thumbminwidth",     &GhostScrollbarStyle::horThumbMinWidth    },
    {"ver_arrowbuttonheight", &GhostScrollbarStyle::verArrowButtonHeight},
    {"ver_width",             &GhostScrollbarStyle::verWidth            },
    {"ver_thumbminheight",    &GhostScrollbarStyle::verThumbMinHeight   },
};

// By the children's names alone, whatever the elements are.
void Parse(const CGhostTheme& theme, Node node, GhostScrollbarStyle& style) {
    Use(theme, node, style);
    for (const Node child : node.children()) {
        for (const SCROLLBAR_NUMBER& row : kScrollbarNumbers) {
            if (HasName(child, row.name)) {
                style.*row.field = Number(child);
            }
        }
        if (HasName(child, "bg")) {
            Parse(theme, child, style.bg);
        } else if (HasName(child, "ver_top")) {
            Parse(theme, child, style.verTop);
        } else if (HasName(child, "ver_mid")) {
            Parse(theme, child, style.verMid);
        } else if (HasName(child, "ver_bottom")) {
            Parse(theme, child, style.verBottom);
        }
    }
}

void Parse(const CGhostTheme& theme, Node node, GhostDropListStyle& style) {
    Use(theme, node, style);
    for (const Node child : node.children()) {
        if (HasName(child, "bg")) {
            Parse(theme, child, style.bg);
        } else if (Is(child.name(), "button")) {
            Parse(theme, child, style.button);
        }
    }
}

} // namespace

CGhostTheme& CGhostTheme::Get() {
    static CGhostTheme theme;
    return theme;
}

void CGhostTheme::ParseTheme(std::string_view text) {
    entries.clear();
    ReadRecords(text);
    FindFocusRing();
}

// A theme that forgot its ring must not lead a player astray.
void CGhostTheme::FindFocusRing() {
    GhostTextStyle style;
    focusRing = {};
    if (GetStyle(L"FOCUS", style) && style.textColour >> 24 != 0) {
        focusRing = {style.textColour, style.textOutlineColour};
    }
}

void CGhostTheme::ReadRecords(std::string_view text) {
    pugi::xml_document document;
    // Comments are nodes too: one before the declaration takes its place.
    const unsigned options = pugi::parse_default | pugi::parse_declaration | pugi::parse_comments;
    // A truncated file still has the records before the cut.
    document.load_buffer(text.data(), text.size(), options, pugi::encoding_utf8);
    const Node first = document.first_child();
    if (first.type() != pugi::node_declaration) {
        return;
    }
    const auto add = [&](Node node, auto style) {
        using Style = decltype(style);
        if (entries.size() >= kMostRecords) {
            return;
        }
        auto& entry = *entries.emplace_back(std::make_unique<ENTRY>());
        entry.name = WideFromUtf8(node.attribute("name").value());
        entry.record.emplace<Style>(style); // zeros, for a record that uses itself
        Parse(*this, node, style);
        entry.record.emplace<Style>(style);
    };
    Node root = first.next_sibling();
    while (root.type() == pugi::node_comment) {
        root = root.next_sibling();
    }
    for (const Node node : root.children()) {
        const char* const kind = node.name();
        if (!node.attribute("name")) {
            continue;
        }
        if (Is(kind, "border")) {
            add(node, GhostBorderStyle{});
        } else if (Is(kind, "textbox")) {
            add(node, GhostTextStyle{});
        } else if (Is(kind, "button")) {
            add(node, GhostButtonStyle{});
        } else if (Is(kind, "edit")) {
            add(node, GhostEditStyle{});
        } else if (Is(kind, "list")) {
            add(node, GhostListStyle{});
        } else if (Is(kind, "listview")) {
            add(node, GhostListViewStyle{});
        } else if (Is(kind, "scrollbar")) {
            add(node, GhostScrollbarStyle{});
        } else if (Is(kind, "droplist")) {
            add(node, GhostDropListStyle{});
        }
    }
}

template <typename Style>
bool CGhostTheme::Find(std::wstring_view name, Style& record) const {
    record = {};
    for (const auto& entry : entries) {
        if (entry->name == name) {
            const Style* const found = std::get_if<Style>(&entry->record);
            if (found != nullptr) {
                record = *found;
            }
            return found != nullptr;
        }
    }
    return false;
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostBorderStyle& record) const {
    return Find(name, record);
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostTextStyle& record) const {
    return Find(name, record);
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostButtonStyle& record) const {
    return Find(name, record);
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostEditStyle& record) const {
    return Find(name, record);
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostListStyle& record) const {
    return Find(name, record);
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostListViewStyle& record) const {
    return Find(name, record);
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostScrollbarStyle& record) const {
    return Find(name, record);
}

bool CGhostTheme::GetStyle(std::wstring_view name, GhostDropListStyle& record) const {
    return Find(name, record);
}

std::vector<CGhostTheme::NAMED> CGhostTheme::Names() const {
    std::vector<NAMED> names;
    for (const auto& entry : entries) {
        names.push_back({entry->name, static_cast<StyleKind>(entry->record.index() + 1)});
    }
    return names;
}
