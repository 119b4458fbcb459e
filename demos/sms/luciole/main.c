// The course of the game: title, nights, their ends.
#include "luciole/luciole.h"

enum { kTitleFrames = 720, kDemoFrames = 1500, kStartHearts = 3, kStartLight = 10 };

// What ended a night.
enum { kDawn, kLost, kStopped };

static uint16_t best; // in tens
static uint8_t night;
static uint8_t demo;

// The panel's line of text: the second row of the screen.
#define PANEL 32

// What the panel shows; drawn again where it differs.
static uint16_t shownScore;
static uint8_t shownHearts, shownLight, shownLamps;

static void Number(uint16_t cell, uint16_t tens)
{
    static const uint16_t kPowers[5] = {10000, 1000, 100, 10, 1};
    uint8_t i, digit;
    for (i = 0; i < 5; ++i) {
        for (digit = '0' - ' '; tens >= kPowers[i]; ++digit)
            tens -= kPowers[i];
        Put(cell + i, digit);
    }
    Put(cell + 5, '0' - ' ');
}

static void TwoDigits(uint16_t cell, uint8_t value)
{
    uint8_t tens = '0' - ' ';
    while (value >= 10) {
        value -= 10;
        ++tens;
    }
    Put(cell, tens);
    Put(cell + 1, ('0' - ' ') + value);
}

static void Panel(void)
{
    uint8_t i;
    if (shownScore != score) {
        shownScore = score;
        Number(PANEL + 2, score);
    }
    if (shownHearts != hearts) {
        shownHearts = hearts;
        for (i = 0; i < 5; ++i)
            Put(PANEL + 9 + i, i < hearts ? '$' - ' ' : 0);
    }
    if (shownLight != light) {
        shownLight = light;
        for (i = 0; i < 5; ++i) {
            const uint8_t part = light > i << 2 ? light - (i << 2) : 0;
            Put(PANEL + 17 + i, kTileGauge + (part > 4 ? 4 : part));
        }
    }
    if (shownLamps != lampsLit) {
        shownLamps = lampsLit;
        TwoDigits(PANEL + 25, lampsLit);
    }
}

static void PanelBegin(void)
{
    uint8_t i;
    Text(PANEL, "                                ");
    Put(PANEL + 15, '*' - ' ');
    Put(PANEL + 23, '@' - ' ');
    Text(PANEL + 27, "/12");
    for (i = 0; i < 32; ++i)
        Put(i, kTilePanelEdge);
    shownScore = 0xFFFF;
    shownHearts = shownLight = shownLamps = 0xFF;
    Panel();
}

static void Pause(void)
{
    SoundPause(1);
    Text(PANEL + 9, "- PAUSED -     ");
    pausePressed = 0;
    do {
        CreaturesDraw();
        Frame();
    } while (!pausePressed);
    pausePressed = 0;
    PanelBegin();
}

static void Wait(uint16_t frames)
{
    while (frames--) {
        CreaturesDraw();
        Frame();
        if (frames < 120 && padPressed & (PAD_BUTTON1 | PAD_BUTTON2))
            break;
    }
}

// The garden is as long as its lanterns, and one screen more.
#define NIGHT_PIXELS ((uint16_t)kColumnsPerLamp * kLampsPerNight * 8)

static uint8_t PlayNight(void)
{
    uint16_t frames = 0;
    uint8_t buttons, sky = 0;
    uint16_t nextSky = NIGHT_PIXELS / kSkies;
    ScreenSky(0);
    GardenBegin(0);
    CreaturesBegin();
    PanelBegin();
    while (scrolled < NIGHT_PIXELS) {
        if (demo) {
            if (padPressed & (PAD_BUTTON1 | PAD_BUTTON2) || ++frames == kDemoFrames)
                return kStopped;
            pausePressed = 0;
            buttons = PlayerAutopilot();
            padPressed = buttons & PAD_BUTTON1;
        } else {
            buttons = pad;
        }
        if (pausePressed)
            Pause();
        if (padPressed & PAD_BUTTON1)
            PlayerShoot();
        if (padPressed & PAD_BUTTON2)
            PlayerFlare();
        // One pixel a frame, and on later nights a second one more and more often.
        GardenScroll(1 + ((uint8_t)(frameCount & 7) < night));
        PlayerMove(buttons);
        CreaturesSpawn(night);
        CreaturesMove();
        if (!hearts)
            return kLost;
        CreaturesDraw();
        Panel();
        if (demo)
            Text(PANEL + 9, frameCount & 32 ? "DEMO " : "     ");
        if (scrolled >= nextSky) {
            nextSky += NIGHT_PIXELS / kSkies;
            ScreenSky(++sky);
        }
        Frame();
    }
    return kDawn;
}

static void NightOver(void)
{
    ScreenSky(kSkies - 1);
    SoundPlay(&kSongDawn);
    GardenText(15, " THE SUN RISES ");
    score += lampsLit * 10;
    if (lampsLit == kLampsPerNight) {
        GardenText(17, " EVERY LANTERN LIT! +1000 ");
        score += 100;
    }
    Panel();
    Wait(300);
    ++night;
}

static void GameOver(void)
{
    SoundPlay(&kSongLost);
    Panel();
    GardenText(15, " YOUR LIGHT HAS GONE OUT ");
    if (score > best) {
        best = score;
        GardenText(17, " THE BEST SO FAR! ");
    }
    Wait(300);
}

static void PlayGame(void)
{
    uint8_t end;
    night = 0;
    score = 0;
    hearts = kStartHearts;
    light = kStartLight;
    do {
        if (!demo)
            SoundPlay(&kSongNight);
        end = PlayNight();
        if (end == kDawn)
            NightOver();
    } while (end == kDawn && !demo);
    if (end == kLost && !demo)
        GameOver();
}

static void TitleSprites(uint8_t tick)
{
    uint8_t i;
    // Five glow-worms on paths of their own, and the heroine.
    for (i = 0; i < 5; ++i) {
        const uint8_t x = 30 + i * 44 + Sine((tick >> 3) + i * 7) + Sine((tick >> 2) + i * 3);
        const uint8_t y = 76 + (i & 1 ? 14 : 0) + Sine((tick >> 2) + i * 5);
        Sprite((uint16_t)x << 8 | y, kSpark + (tick + i * 8 & 16 ? 2 : 0));
    }
    Figure(120 + (Sine(tick >> 3) << 1), (uint16_t)(84 + Sine(tick >> 2) / 2) << 8 | (tick & 4 ? kFlyUp : kFlyDown));
}

// Returns 1 to play, 0 for the demonstration.
static uint8_t Title(void)
{
    uint16_t frames;
    uint8_t tick = 0;
    ScreenSky(0);
    GardenBegin(1);
    Text(0, "                                ");
    Text(PANEL, "                                ");
    Text(PANEL + 7, "BEST");
    Number(PANEL + 12, best);
    Text(PANEL + 20, soundHasFm ? "FM SOUND" : "        ");
    GardenText(14, "LIGHT THE LANTERNS");
    GardenText(15, "BEFORE THE DAY BREAKS");
    GardenText(20, "1 SPARK   2 FLARE");
    SoundPlay(&kSongTitle);
    for (frames = 0; frames < kTitleFrames; ++frames) {
        ++tick;
        if (!(frames & 31))
            GardenText(17, frames & 32 ? "                  " : "* PRESS BUTTON 1 *");
        if (!(frames & 3))
            --bands[4];
        if (!(frames & 1))
            --bands[8];
        TitleSprites(tick);
        Frame();
        Random();
        if (padPressed & (PAD_BUTTON1 | PAD_BUTTON2))
            return 1;
    }
    return 0;
}

void main(void)
{
    best = 200;
    SoundInit();
    ScreenInit();
    for (;;) {
        demo = !Title();
        PlayGame();
    }
}
