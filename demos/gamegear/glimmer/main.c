// Glimmer: two lantern keepers on an evening lake, a firefly between them.
#include "art.h"
#include "console.h"
#include "link.h"
#include "match.h"
#include "random.h"
#include "scenery.h"
#include "sky.h"
#include "sound.h"

#define LEVELS        3
#define RESULT_FRAMES 150
#define DEMO_WAIT     600 // frames of the title before the console plays by itself
#define DEMO_FRAMES   1500

enum { kNone, kLeft, kRight }; // whose lantern is one's own

// What a screen ends with.
enum { kChoseOne, kChoseLink, kChoseDemo };

static const char* const levelNames[LEVELS] = {"DUSK", "NIGHT", "NORTHERN LIGHTS"};
// clang-format off
static const u16 spriteColours[16] = {
    0,
    RGB(15, 15, 11), RGB(15, 13, 5), RGB(15, 9, 2), RGB(9, 4, 1), RGB(15, 15, 15), // left lantern
    RGB(12, 15, 15), RGB(6, 13, 15), RGB(2, 8, 15), RGB(1, 3, 9), RGB(15, 15, 15), // right lantern
    RGB(11, 15, 3), RGB(14, 15, 9), RGB(12, 13, 15), RGB(15, 15, 9), RGB(8, 8, 8)};
// clang-format on

static u8 held;
static u8 pressed;

static void Pads(void) {
    const u8 now = ReadPad();
    pressed = now & (u8)~held;
    held = now;
}

// Returns early in the next blank time, when there is still time to change a few cells.
static void Frame(void) {
    SkyStep();
    SoundStep();
    WaitFrame();
    SpritesSend();
    SkySend();
    MatchDrawScore();
    Pads();
}

static void Wait(u8 frames) {
    while (frames-- != 0)
        Frame();
}

static void Screen(u8 mood) {
    DisplayOff();
    SceneryDraw(1);
    SkySet(mood);
    SpritesBegin();
    SpritesSend();
}

static void DrawLogo(void) {
    u16 tile = TILE_LOGO;
    for (u8 letter = 0; letter < 7; ++letter) {
        const u8 column = (u8)(3 + letter * 2);
        PutCell(column, 2, tile);
        PutCell(column + 1, 2, tile + 1);
        PutCell(column, 3, tile + 2);
        PutCell(column + 1, 3, tile + 3);
        tile += 4;
    }
}

// The firefly circles the letters on a path of 64 places.
static const s8 circle[64] = {0,   2,   4,   6,   8,   9,   11,  13,  14,  15,  16,  18,  18,
                              19,  20,  20,  20,  20,  20,  19,  18,  18,  16,  15,  14,  13,
                              11,  9,   8,   6,   4,   2,   0,   -2,  -4,  -6,  -8,  -9,  -11,
                              -13, -14, -15, -16, -18, -18, -19, -20, -20, -20, -20, -20, -19,
                              -18, -18, -16, -15, -14, -13, -11, -9,  -8,  -6,  -4,  -2};

static void DrawTitleFirefly(u8 time) {
    SpritesBegin();
    for (u8 part = 0; part < 4; ++part) {
        const u8 angle = (u8)((time >> 1) - part * 3);
        const s16 x = 76 + circle[(angle + 16) & 63] * 3;
        const s16 y = 28 + circle[angle * 2 & 63];
        const u8 tile = part == 0 ? TILE_FIREFLY + (time >> 2 & 1) : TILE_SPARK + part - 1;
        AddSprite((u8)x, (u8)y, tile);
    }
}

static u8 Title(void) {
    u8 choice = kChoseOne;
    u8 shown = 0xFF;
    Screen(0);
    SceneryDraw(0);
    DrawLogo();
    Text(6, 6, "ONE PLAYER");
    Text(6, 8, "LINK CABLE");
    TextCentred(16, "PRESS START");
    SoundMusic(MUSIC_TITLE);
    DisplayOn();
    SkyFadeTo(1);
    for (u16 time = 0; time < DEMO_WAIT; ++time) {
        Frame();
        if (shown != choice) {
            shown = choice;
            PutCell(4, 6, choice == kChoseOne ? TILE_LAMP_LEFT : TILE_LAMP_OFF);
            PutCell(4, 8, choice == kChoseLink ? TILE_LAMP_RIGHT : TILE_LAMP_OFF);
        }
        DrawTitleFirefly((u8)time);
        if (pressed & (PAD_UP | PAD_DOWN)) {
            choice = choice == kChoseOne ? kChoseLink : kChoseOne;
            SoundEffect(EFFECT_CHOOSE, SCREEN_WIDTH / 2);
            time = 0;
        }
        (void)Random();
        if (pressed & (PAD_START | PAD_ONE))
            return choice;
    }
    return kChoseDemo;
}

static void Announce(const char* first, const char* second) {
    TextCentred(6, first);
    TextCentred(8, second);
}

// Takes a message away again: the rows lie over stars and mountains, so all is drawn anew.
static void MatchScreen(u8 mood, const char* first, const char* second) {
    Screen(mood);
    Announce(first, second);
    DisplayOn();
    Wait(100);
    DisplayOff();
    SceneryDraw(1);
    DisplayOn();
}

static void ShowResult(const char* first, const char* second) {
    SoundMusic(MUSIC_END);
    WaitFrame();
    Announce(first, second);
    for (u8 frame = 0; frame < RESULT_FRAMES; ++frame) {
        Frame();
        if (frame > 40 && (pressed & (PAD_START | PAD_ONE)))
            break;
    }
}

// The evening goes on with the points.
static void FadeWithPoints(u8 mood) {
    mood += MatchPoints() / 3;
    SkyFadeTo(mood < SKY_MOODS ? mood : SKY_MOODS - 1);
}

// One match against the console; 1 when won.
static u8 PlayLevel(u8 level) {
    u8 result;
    SoundMusic(MUSIC_NONE);
    MatchScreen(level,
                level == 0   ? "FIRST EVENING"
                : level == 1 ? "SECOND EVENING"
                             : "LAST EVENING",
                levelNames[level]);
    SoundMusic(MUSIC_MATCH);
    MatchBegin((u16)(Random() << 8 | frameCount));
    do {
        Frame();
        result = MatchStep(held, MatchThinkRight(level));
        FadeWithPoints(level);
        MatchDraw(kLeft);
        if (pressed & PAD_START) {
            do
                Frame();
            while ((pressed & PAD_START) == 0);
        }
    } while (result == MATCH_RUNNING);
    return result == MATCH_LEFT_WON;
}

static void PlayAlone(void) {
    for (u8 level = 0; level < LEVELS; ++level) {
        if (!PlayLevel(level)) {
            ShowResult("THE FIREFLY IS GONE", "GAME OVER");
            return;
        }
        if (level < LEVELS - 1)
            ShowResult("WELL KEPT!", "NIGHT FALLS DEEPER");
    }
    ShowResult("ALL EVENINGS WON!", "KEEPER OF THE LAKE");
}

// The console against itself until somebody touches a button.
static void Demo(void) {
    SoundMusic(MUSIC_NONE);
    Screen(1);
    DisplayOn();
    MatchBegin(frameCount);
    for (u16 time = 0; time < DEMO_FRAMES; ++time) {
        Frame();
        if (MatchStep(MatchThinkLeft(0), MatchThinkRight(1)) != MATCH_RUNNING)
            return;
        FadeWithPoints(0);
        MatchDraw(kNone);
        if (pressed & (PAD_START | PAD_ONE))
            return;
    }
}

// Waits for the other console; LINK_WAITING when the player gives up.
static u8 Meet(void) {
    Screen(1);
    Announce("WAITING FOR FRIEND", "2 TO GO BACK");
    DisplayOn();
    LinkOpen();
    for (;;) {
        Frame();
        const u8 role = LinkMeet();
        if (role != LINK_WAITING)
            return role;
        if (pressed & PAD_TWO)
            return LINK_WAITING;
    }
}

static u8 PlayLinkedFrames(u8 role) {
    u8 result;
    do {
        u8 other = 0;
        Frame();
        if (!LinkExchange(held, &other))
            return MATCH_RUNNING;
        const u8 own = held & 0x3F;
        result = role == LINK_HOST ? MatchStep(own, other) : MatchStep(other, own);
        FadeWithPoints(0);
        MatchDraw(role == LINK_HOST ? kLeft : kRight);
    } while (result == MATCH_RUNNING);
    return result;
}

// The seed is the same on both sides.
#define LINK_SEED 0x1D0A

static void PlayLinked(void) {
    const u8 role = Meet();
    if (role == LINK_WAITING) {
        LinkClose();
        return;
    }
    MatchScreen(0, "FRIEND FOUND", role == LINK_HOST ? "YOU ARE AMBER" : "YOU ARE BLUE");
    SoundMusic(MUSIC_MATCH);
    MatchBegin(LINK_SEED);
    const u8 result = PlayLinkedFrames(role);
    LinkClose();
    if (result == MATCH_RUNNING)
        ShowResult("THE LINE IS LOST", "GAME OVER");
    else if ((result == MATCH_LEFT_WON) == (role == LINK_HOST))
        ShowResult("WELL KEPT!", "YOU WON");
    else
        ShowResult("THE FIREFLY IS GONE", "YOU LOST");
}

void main(void) {
    ConsoleInit();
    ArtLoad();
    for (u8 index = 0; index < 16; ++index)
        WriteColour(16 + index, spriteColours[index]);
    RandomSeed(1);
    for (;;) {
        switch (Title()) {
        case kChoseOne: PlayAlone(); break;
        case kChoseLink: PlayLinked(); break;
        default: Demo(); break;
        }
    }
}
