// The title, with one tune after another, and the game.
#include "grelot/grelot.h"

enum { kMostRounds = 60, kSecondsOfTune = 22, kFramesOfAnswer = 60 * 6 };
enum {
    kRoundAt = 0x2400 + 3 * 32 + 9,
    kBestAt = 0x2400 + 3 * 32 + 27,
    kWordAt = 0x2400 + 22 * 32 + 10
};

static u8 sequence[kMostRounds];

static const EFFECT kEffectWrong = {800, 12, 12, 40, 14, 12};
static const EFFECT kEffectRight = {213, -3, 9, 20, 0, 0};

static const SONG* const kSongList[kSongs] = {&kMorning, &kNoon, &kEvening};

static void PlaySong(u8 number) {
    BoardProgram(number);
    SoundPlay(kSongList[number]);
}

static void OneFrame(void) {
    RingFrame();
    SoundTick();
    Frame();
}

static void Title(void) {
    static u16 frames;
    static u8 number;
    ScreenTitle();
    for (;;) {
        PlaySong(number);
        ScreenColours(number);
        for (frames = 0; frames != kSecondsOfTune * 60; ++frames) {
            if (frames % 36 == 0) {
                Ring(Random() >> 3 & 3, 0);
            }
            if ((frames & 31) == 8) {
                Text(CELL(22, 10), (frames & 32) != 0 ? "           " : "PRESS START");
            }
            OneFrame();
            if ((padPressed & (kPadStart | kPadA)) != 0) {
                return;
            }
            if ((padPressed & (kPadSelect | kPadRight)) != 0) {
                break;
            }
        }
        number = number + 1 == kSongs ? 0 : number + 1;
    }
}

static void Pause(u8 frames) {
    while (frames != 0) {
        OneFrame();
        --frames;
    }
}

static void PlaySequence(u8 count) {
    static u8 i;
    Text(kWordAt, "  LISTEN   ");
    Pause(40);
    for (i = 0; i != count; ++i) {
        Ring(sequence[i], 1);
        Pause(count > 8 ? 26 : 38);
    }
}

// The bell of the button that was pressed.
static u8 Pressed(void) {
    if ((padPressed & kPadUp) != 0) {
        return kBellUp;
    }
    if ((padPressed & kPadLeft) != 0) {
        return kBellLeft;
    }
    if ((padPressed & kPadRight) != 0) {
        return kBellRight;
    }
    return (padPressed & kPadDown) != 0 ? kBellDown : kNoBell;
}

static u8 Answer(u8 count) {
    static u8 i, bell;
    static u16 patience;
    Text(kWordAt, " YOUR TURN ");
    for (i = 0; i != count; ++i) {
        patience = kFramesOfAnswer;
        do {
            OneFrame();
            bell = Pressed();
        } while (bell == kNoBell && --patience != 0);
        if (bell != sequence[i]) {
            return 0;
        }
        Ring(bell, 1);
    }
    Pause(36);
    return 1;
}

static void Game(void) {
    static u8 round;
    SoundPlay(0);
    ScreenColours(0);
    ScreenDown();
    ShowNumber(kBestAt, BestRound());
    for (round = 1; round != kMostRounds; ++round) {
        ShowNumber(kRoundAt, round);
        ScreenColours(round >> 2 & 3);
        sequence[round - 1] = Random() >> 2 & 3;
        PlaySequence(round);
        if (!Answer(round)) {
            break;
        }
        SoundEffect(&kEffectRight);
        KeepRound(round);
        ShowNumber(kBestAt, BestRound());
        Text(kWordAt, "  VERY WELL");
        Pause(40);
    }
    SoundEffect(&kEffectWrong);
    Text(kWordAt, " GAME OVER ");
    Pause(150);
    ScreenAside();
}

void main(void) {
    BoardInit();
    SoundInit();
    ppuControl = 0x08; // sprites from the second pattern table
    ringing = kNoBell;
    for (;;) {
        Title();
        Game();
    }
}
