// Skywren: a small bird against kites, crows and balloons over the islands.
#include "actors.h"
#include "art.h"
#include "backdrop.h"
#include "board.h"
#include "random.h"
#include "sound.h"
#include "terrain.h"

#define TITLE_FRAMES 420
#define DEMO_FRAMES  1900
#define OVER_FRAMES  240
#define READY_FRAMES 60
#define MOST_CREDITS 9
#define SCENE_LENGTH 0x0500 // dots from one change of scene to the next
#define FIRST_RECORD 500    // in tens
#define LIFE_EVERY   1000   // a bird more for that many tens

static u16 record = FIRST_RECORD;
static u8 credits;
static u16 nextLife;

// A frame, after which new controls are there; coins count at any time.
static void Frame(void) {
    BoardFrame();
    BackdropStep(distance);
    SoundStep();
    if ((pressed & CONTROL_COIN) && credits < MOST_CREDITS) {
        ++credits;
        SoundEffect(EFFECT_COIN);
    }
    (void)Random();
}

// Six digits; the last one of a count of tens is always 0.
static void Number(u8 column, u8 row, u16 tens) {
    static const u16 powers[5] = {10000, 1000, 100, 10, 1};
    for (u8 place = 0; place < 5; ++place) {
        u8 digit = 0;
        while (tens >= powers[place]) {
            tens -= powers[place];
            ++digit;
        }
        UpperCell(column + place, row, TILE_FONT + digit);
    }
    UpperCell(column + 5, row, TILE_FONT);
}

static void DrawHead(void) {
    Text(2, 0, "SCORE");
    Number(8, 0, score);
    Text(18, 0, "BEST");
    Number(23, 0, record);
}

static void DrawLives(void) {
    for (u8 place = 0; place < 6; ++place)
        UpperCell(2 + place, 1, place + 1 < lives ? TILE_LIFE : TILE_BLANK);
}

// The line that an attracting machine blinks.
static void DrawInvitation(u8 row, u8 time) {
    if ((time & 31) != 0)
        return;
    if (time & 32)
        Text(9, row, "                ");
    else if (credits == 0)
        Text(11, row, "INSERT COIN");
    else
        Text(9, row, "PUSH 1P START   ");
}

static void DrawCredits(u8 row) {
    Text(22, row, "CREDIT");
    UpperCell(29, row, TILE_FONT + credits);
}

static void DrawLogo(void) {
    u8 tile = TILE_LOGO;
    for (u8 letter = 0; letter < 7; ++letter) {
        const u8 column = (u8)(9 + letter * 2);
        UpperCell(column, 5, tile);
        UpperCell(column + 1, 5, tile + 1);
        UpperCell(column, 6, tile + 2);
        UpperCell(column + 1, 6, tile + 3);
        tile += 4;
    }
}

static u8 WantsStart(void) {
    return (pressed & CONTROL_START) && credits != 0;
}

// 1 when somebody starts a game.
static u8 Title(void) {
    BackdropShow(SCENE_DUSK);
    TerrainBegin();
    UpperClear(0, 1);
    DrawHead();
    DrawLogo();
    TextCentred(9, "A SMALL BIRD");
    TextCentred(11, "AGAINST THE WIND");
    SoundMusic(MUSIC_TITLE);
    for (u16 time = 0; time < TITLE_FRAMES; ++time) {
        const u8 wave = time >> 3 & 7;
        SpritesBegin();
        AddWideSprite((u8)(20 + (time >> 1)), (u8)(120 + (wave < 4 ? wave : 7 - wave)),
                      SPRITE_WREN + (time & 8 ? 4 : 0));
        DrawInvitation(18, (u8)time);
        DrawCredits(20);
        ++distance; // only the landscape moves
        Frame();
        if (WantsStart())
            return 1;
    }
    SoundMusic(MUSIC_NONE);
    return 0;
}

static void NewGame(void) {
    score = 0;
    lives = FIRST_LIVES;
    night = 0;
    nextLife = LIFE_EVERY;
    UpperClear(0, 1);
    BackdropShow(SCENE_DUSK);
    TerrainBegin();
    ActorsBegin();
    DrawHead();
}

// The course goes on faster by night.
static u8 ScrollStep(void) {
    return (night & 1) && (frameCount & 1) ? 2 : 1;
}

static void Travel(void) {
    const u8 before = (u8)(distance / SCENE_LENGTH);
    TerrainScroll(ScrollStep());
    if (before == (u8)(distance / SCENE_LENGTH))
        return;
    ++night;
    BackdropChange(night & 1 ? SCENE_NIGHT : SCENE_DUSK);
}

static void ScoreChanged(void) {
    Number(8, 0, score);
    if (score > record) {
        record = score;
        Number(23, 0, record);
    }
    if (score >= nextLife) {
        nextLife += LIFE_EVERY;
        ++lives;
        DrawLives();
        SoundEffect(EFFECT_LIFE);
    }
}

// The machine plays; 1 when somebody starts a game.
static u8 Demo(void) {
    const u16 kept = record;
    NewGame();
    for (u16 time = 0; time < DEMO_FRAMES; ++time) {
        const u16 before = score;
        Travel();
        if (ActorsStep(ActorsThink()) == ACTORS_LOST)
            break;
        ActorsDraw();
        if (score != before)
            Number(8, 0, score);
        DrawInvitation(1, (u8)time);
        Frame();
        if (WantsStart()) {
            record = kept;
            return 1;
        }
    }
    record = kept;
    return 0;
}

// One life.
static void Fly(void) {
    for (;;) {
        const u16 before = score;
        Travel();
        const u8 result = ActorsStep(held);
        ActorsDraw();
        if (score != before)
            ScoreChanged();
        Frame();
        if (result == ACTORS_LOST)
            return;
    }
}

static void GameOver(void) {
    SoundMusic(MUSIC_OVER);
    SpritesBegin();
    Frame();
    TerrainBegin();
    TextCentred(8, "GAME OVER");
    if (score == record && score != 0)
        TextCentred(11, "A NEW BEST!");
    for (u8 time = 0; time < OVER_FRAMES; ++time) {
        DrawCredits(1);
        Frame();
        if (time > 60 && WantsStart())
            return;
    }
}

static void Play(void) {
    --credits;
    NewGame();
    SoundMusic(MUSIC_PLAY);
    Text(11, 1, "GET READY!");
    while (lives != 0) {
        DrawLives();
        for (u8 time = 0; time < READY_FRAMES; ++time)
            Frame();
        Text(11, 1, "          ");
        Fly();
        --lives;
        if (lives != 0) {
            ActorsBegin();
            Text(11, 1, "GET READY!");
            ActorsDraw();
        }
    }
    SpritesBegin();
    DrawLives();
    GameOver();
}

void main(void) {
    BoardInit();
    ArtLoad();
    BoardScene(SCENE_DUSK); // the window is the upper chip's again
    UpperClear(0, 27);
    TextCentred(11, "THE SUN GOES DOWN");
    SpritesBegin();
    BoardFrame();
    UpperOn();
    BackdropBuild();
    BackdropShow(SCENE_DUSK);
    LowerOn();
    for (;;) {
        // The key that ends the invitation also begins the game; a credit left over waits for its own.
        if (Title() || Demo())
            Play();
    }
}
