#include "screens/credits.h"

#include "gui/list_view.h"
#include "gui/text_box.h"
#include "gui/window.h"

namespace {

// Units.
constexpr int32_t kTop = 50;
constexpr int32_t kMargin = 200;
constexpr int32_t kFoot = 40;
constexpr int32_t kColumn = 200;

} // namespace

std::span<const CREDIT> Credits() {
    static constexpr CREDIT kCredits[] = {
        {L"The authors of Ombrelune",   L"Chips, machines, games, drawings, furniture: everything "
                                      L"that is not named below. MIT licence"},
        {L"SDL 2",                      L"Window, keys, controllers, sound card. zlib licence"                    },
        {L"OpenAL Soft",                L"Places the sound of each set in the room. LGPL 2"                       },
        {L"Mesa, OpenGL drivers",       L"Draw what the program asks for. MIT licence"                            },
        {L"FreeType",                   L"Letters. FreeType licence"                                              },
        {L"Inter",                      L"The letters that you read. Copyright The Inter Project Authors, SIL Open Font "
                   L"License 1.1"                                                               },
        {L"JetBrains Mono",
         L"The figures. Copyright The JetBrains Mono Project Authors, SIL Open Font License 1.1"                  },
        {L"Boost",                      L"Signals of the controls, and the net. Boost Software License 1.0"       },
        {L"pugixml",                    L"Settings and theme files. MIT licence"                                  },
        {L"libzip and zlib",            L"Zip archives. BSD and zlib licences"                                    },
        {L"XZ Utils",                   L"Packs the games. Public domain"                                         },
        {L"OpenSSL",                    L"Knows a game by its hash. Apache License 2.0"                           },
        {L"SQLite",                     L"Remembers what lies in the library. Public domain"                      },
        {L"libpng, libjpeg-turbo, stb", L"Pictures. libpng, BSD and MIT licences"                                 },
        {L"CLI11, UTF8-CPP",            L"Command line and text. BSD and Boost licences"                          },
        {L"SDCC, cc65, GNU binutils",
         L"Built our games for machines of the eighties. GPL, zlib and GPL"                                       },
        {L"GoogleTest, LLVM",           L"Found the mistakes that you do not see. BSD and Apache licences"        },
        {L"Google Benchmark",           L"Found what was slow. Apache License 2.0"                                },
        {L"Debian",                     L"Keeps all of this in good order. Thank you"                             },
    };
    return kCredits;
}

CGUICredits::CGUICredits(GHOSTMANAGER_WINDOW* parentWindow)
    : CGUIPanel(parentWindow)
    , title(Own(new CGhostTextBox(parent, 0, L"SECTIONTEXT", L"CREDITS", {})))
    , list(Own(new CGhostListView(parent, 0, L"CREDITLIST",
                                  CGhostListView::kNoSelection | CGhostListView::kFixedColumns,
                                  {}))) {
    list->AddColumn(L"Name", kColumn);
    list->AddColumn(L"What they did", kColumn);
    for (const CREDIT& credit : Credits()) {
        const int32_t row = list->AddRow();
        list->SetCell(row, 0, credit.name);
        list->SetCell(row, 1, credit.what);
    }
}

// The second column has the rest of the list: at its first width it would cut most of the texts.
void CGUICredits::Layout(int32_t width, int32_t height) {
    title->SetPos((width - 680) / 2, 10, 680, 25);
    list->SetPos(kMargin, kTop, width - 2 * kMargin, height - kTop - kFoot);
    list->SetColumnWidth(1, list->window->clientRect.width - list->ColumnWidth(0));
}

void CGUICredits::TakeFocus() {
    list->SetFocus();
}
