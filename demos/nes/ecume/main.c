// The game: title, a round played or shown as a demo, the end, title again.
#include "ecume/ecume.h"

enum {
    kScoreDigits = 6,
    kHearts = 3,
    kFramesOfTitle = 9,
    kFramesOfDemo = 24
}; // the frames in 64ths

static u8 score[kScoreDigits], best[kScoreDigits];
static u8 hearts;
static u16 distance;
static u8 night; // grows with the distance and speeds everything up

static const EFFECT kEffectPearl = {213, -6, 8, 8, 0, 0};
static const EFFECT kEffectStar = {160, -10, 9, 14, 0, 0};
static const EFFECT kEffectHurt = {700, 40, 12, 20, 12, 10};
static const EFFECT kEffectSplash = {0, 0, 0, 0, 10, 7};
static const EFFECT kEffectStart = {400, -14, 11, 24, 0, 0};

static void ShowHearts(void) {
    static u8 i;
    for (i = 0; i != kHearts; ++i) {
        Byte(CELL(2, 15 + i), i < hearts ? kTileHeart : kTileBlank);
    }
}

// `tens` of the digits that count tens.
static void AddScore(u8 tens) {
    static u8 i;
    i = kScoreDigits - 2;
    score[i] += tens;
    while (score[i] > 9 && i != 0) {
        score[i] -= 10;
        --i;
        ++score[i];
    }
    Digits(CELL(2, 2), score, kScoreDigits);
}

static void KeepBest(void) {
    static u8 i;
    for (i = 0; i != kScoreDigits; ++i) {
        if (score[i] != best[i]) {
            if (score[i] < best[i]) {
                return;
            }
            break;
        }
    }
    for (i = 0; i != kScoreDigits; ++i) {
        best[i] = score[i];
    }
}

static void Open(u8 logo) {
    ScreenOff();
    SceneDraw(logo);
    Palette(kPalette);
    SceneScroll(distance, logo);
    DolphinReset();
    ThingsReset();
    ScreenOn();
    Digits(CELL(2, 24), best, kScoreDigits);
    Text(CELL(1, 24), "  BEST");
}

// One frame of swimming; the demo is silent.
static void Swim(u8 buttons, u8 aloud) {
    static u8 speed;
    speed = 2 + ((frameCount & 3) < night);
    distance += speed;
    SceneScroll(distance, !aloud);
    DolphinMove(buttons);
    ThingsMove(speed, night);
    if (dolphinLeapt != 0) {
        Splash(dolphinX - 10);
        if (aloud) {
            SoundEffect(&kEffectSplash);
        }
    }
    DolphinDraw();
    ThingsDraw();
}

static void Touch(void) {
    switch (ThingsTouched()) {
    case kThingNone: return;
    case kThingPearl:
        AddScore(1);
        SoundEffect(&kEffectPearl);
        return;
    case kThingStar:
        AddScore(5);
        SoundEffect(&kEffectStar);
        return;
    default: break;
    }
    if (dolphinHurt == 0) {
        dolphinHurt = 90;
        --hearts;
        ShowHearts();
        SoundEffect(&kEffectHurt);
    }
}

// True when Start was pressed.
static u8 Title(void) {
    static u16 frames;
    night = 0;
    Open(1);
    SoundPlay(&kSongDusk);
    for (frames = 0; frames != kFramesOfTitle * 64; ++frames) {
        if ((frames & 63) == 1) {
            Text(CELL(2, 3), "PRESS START  ");
        } else if ((frames & 63) == 40) {
            Text(CELL(2, 3), "             ");
        }
        Swim(Pilot(), 0);
        if (ThingsTouched() >= kThingJelly) {
            dolphinHurt = 16;
        }
        SoundTick();
        Frame();
        if ((padPressed & (kPadStart | kPadA)) != 0) {
            return 1;
        }
    }
    return 0;
}

// With `demo` the pilot plays until a button ends it. True if a button did.
static u8 Round(u8 demo) {
    static u16 frames;
    static u8 i;
    for (i = 0; i != kScoreDigits; ++i) {
        score[i] = 0;
    }
    hearts = kHearts;
    night = 0;
    distance = 0;
    Open(0);
    SoundPlay(&kSongSea);
    ShowHearts();
    AddScore(0);
    Text(CELL(1, 2), demo ? "DEMO" : "SCORE");
    for (frames = 0; hearts != 0; ++frames) {
        Swim(demo ? Pilot() : pad, 1);
        Touch();
        if ((frames & 1023) == 1023 && night != 4) {
            ++night;
        }
        SoundTick();
        Frame();
        if (demo) {
            if (padPressed != 0) {
                return 1;
            }
            if (frames == kFramesOfDemo * 64) {
                return 0;
            }
        } else if ((padPressed & kPadStart) != 0) {
            // A pause.
            SoundPlay(0);
            do {
                SoundTick();
                DolphinDraw();
                ThingsDraw();
                Frame();
            } while ((padPressed & kPadStart) == 0);
            SoundPlay(&kSongSea);
        }
    }
    return 0;
}

static void End(void) {
    static u8 frames;
    KeepBest();
    SoundPlay(0);
    Text(CELL(1, 11), "GAME OVER");
    for (frames = 0; frames != 200; ++frames) {
        SceneScroll(distance, 0);
        DolphinMove(kPadDown);
        DolphinDraw();
        ThingsDraw();
        SoundTick();
        Frame();
    }
}

void main(void) {
    BoardInit();
    SoundInit();
    ppuControl = 0x20 | 0x08; // sprites 16 high; the background in the first pattern table
    for (;;) {
        if (Title() || Round(1)) {
            SoundEffect(&kEffectStart);
            Round(0);
            End();
        }
    }
}
