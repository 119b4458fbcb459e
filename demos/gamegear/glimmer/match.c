#include "match.h"

#include "art.h"
#include "console.h"
#include "random.h"
#include "sound.h"

// Places of the firefly are in 1/16 dot, its speed in 1/16 dot a frame.
#define SUB           16
#define FIELD_TOP     (12 * SUB)
#define FIELD_BOTTOM  (134 * SUB)
#define LEFT_X        6
#define RIGHT_X       ((u8)(SCREEN_WIDTH - 8 - LEFT_X))
#define KEEPER_HEIGHT 24
#define KEEPER_TOP    10
#define KEEPER_BOTTOM (SCREEN_HEIGHT - KEEPER_HEIGHT - 2)
#define KEEPER_SPEED  3
#define FIREFLY_SIZE  8
#define SERVE_SPEED   22
#define TOP_SPEED     58
#define STRIKE_FRAMES 10 // how long a stroke can meet the firefly
#define STRIKE_REST   26 // frames from one stroke to the next
#define STRIKE_GAIN   12
#define STEEPEST      36
#define SERVE_FRAMES  50
#define POINT_FRAMES  64
#define TRAIL         12

typedef struct {
    u8 y;
    s8 motion; // dots in the last frame
    u8 score;
    u8 strike; // frames since a stroke began, 0 none
} KEEPER;

enum { kServe, kRally, kPoint };

static KEEPER left;
static KEEPER right;
static s16 x;
static s16 y;
static s16 speedX;
static s16 speedY;
static u8 phase;
static u8 count; // frames left of a serve or a point
static u8 clock;
static u8 scoreChanged;
static u8 trailX[TRAIL];
static u8 trailY[TRAIL];
static u8 trailAt;

static void Serve(u8 toRight) {
    phase = kServe;
    count = SERVE_FRAMES;
    x = (SCREEN_WIDTH - FIREFLY_SIZE) / 2 * SUB;
    y = (s16)(40 + (Random() & 31)) * SUB;
    speedX = toRight ? SERVE_SPEED : -SERVE_SPEED;
    speedY = (s16)(Random() & 31) - 16;
    for (u8 index = 0; index < TRAIL; ++index)
        trailY[index] = 0;
}

void MatchBegin(u16 seed) {
    RandomSeed(seed);
    left.y = right.y = (KEEPER_TOP + KEEPER_BOTTOM) / 2;
    left.score = right.score = 0;
    left.strike = right.strike = 0;
    left.motion = right.motion = 0;
    scoreChanged = 1;
    clock = 0;
    Serve(Random() & 1);
}

u8 MatchPoints(void) {
    return left.score + right.score;
}

static void MoveKeeper(KEEPER* keeper, u8 pad) {
    const u8 before = keeper->y;
    if ((pad & PAD_UP) && keeper->y > KEEPER_TOP)
        keeper->y -= KEEPER_SPEED;
    if ((pad & PAD_DOWN) && keeper->y < KEEPER_BOTTOM)
        keeper->y += KEEPER_SPEED;
    keeper->motion = (s8)(keeper->y - before);
    if (keeper->strike != 0 && ++keeper->strike > STRIKE_REST)
        keeper->strike = 0;
    if ((pad & (PAD_ONE | PAD_TWO)) && keeper->strike == 0)
        keeper->strike = 1;
}

static u8 IsStriking(const KEEPER* keeper) {
    return keeper->strike != 0 && keeper->strike <= STRIKE_FRAMES;
}

// The firefly's height over a keeper's upper end says whether it is met, and how steeply it leaves.
static u8 Meet(const KEEPER* keeper) {
    const s16 depth = (y / SUB) + FIREFLY_SIZE - 1 - keeper->y;
    if (depth < 0 || depth >= KEEPER_HEIGHT + FIREFLY_SIZE - 2)
        return 0;
    s16 speed = speedX < 0 ? -speedX : speedX;
    speedY = (depth - (KEEPER_HEIGHT + FIREFLY_SIZE) / 2 + 1) * 2 + keeper->motion * 3;
    if (speedY > STEEPEST)
        speedY = STEEPEST;
    if (speedY < -STEEPEST)
        speedY = -STEEPEST;
    const u8 place = (u8)(x / SUB);
    if (IsStriking(keeper)) {
        speed += STRIKE_GAIN;
        SoundEffect(EFFECT_STRIKE, place);
    } else {
        ++speed;
        SoundEffect(EFFECT_HIT, place);
    }
    if (speed > TOP_SPEED)
        speed = TOP_SPEED;
    speedX = speedX < 0 ? speed : -speed;
    return 1;
}

static void Point(KEEPER* winner) {
    ++winner->score;
    scoreChanged = 1;
    phase = kPoint;
    count = POINT_FRAMES;
    SoundEffect(EFFECT_POINT, winner == &left ? SCREEN_WIDTH - 1 : 0);
}

static void Fly(void) {
    x += speedX;
    y += speedY;
    if (y < FIELD_TOP || y > FIELD_BOTTOM) {
        y = y < FIELD_TOP ? FIELD_TOP : FIELD_BOTTOM;
        speedY = -speedY;
        SoundEffect(EFFECT_EDGE, (u8)(x / SUB));
    }
    // A keeper meets it only while it comes and only at the lantern's face.
    if (speedX < 0 && x < (LEFT_X + 7) * SUB && x > (LEFT_X + 1) * SUB)
        Meet(&left);
    else if (speedX > 0 && x > (RIGHT_X - FIREFLY_SIZE + 1) * SUB && x < (RIGHT_X - 1) * SUB)
        Meet(&right);
    if (x < SUB)
        Point(&right);
    else if (x > (SCREEN_WIDTH - FIREFLY_SIZE - 1) * SUB)
        Point(&left);
    if ((clock & 1) == 0) {
        trailAt = trailAt == 0 ? TRAIL - 1 : trailAt - 1;
        trailX[trailAt] = (u8)(x / SUB);
        trailY[trailAt] = (u8)(y / SUB);
    }
}

u8 MatchStep(u8 leftPad, u8 rightPad) {
    ++clock;
    MoveKeeper(&left, leftPad);
    MoveKeeper(&right, rightPad);
    switch (phase) {
    case kServe:
        if (--count == 0)
            phase = kRally;
        break;
    case kRally: Fly(); break;
    default:
        if (--count != 0)
            break;
        if (left.score == POINTS_TO_WIN)
            return MATCH_LEFT_WON;
        if (right.score == POINTS_TO_WIN)
            return MATCH_RIGHT_WON;
        Serve(speedX > 0);
        break;
    }
    return MATCH_RUNNING;
}

// How far the firefly must have come before the console sees it, and how often it moves, by level.
static const u8 sight[3] = {84, 64, 30};
static const u8 laziness[3] = {1, 3, 7};

static u8 Think(const KEEPER* keeper, u8 distance, u8 comes, u8 level) {
    u8 goal = (KEEPER_TOP + KEEPER_BOTTOM) / 2;
    if (comes && distance < SCREEN_WIDTH - sight[level])
        goal = (u8)(y / SUB) + FIREFLY_SIZE / 2 - KEEPER_HEIGHT / 2 + (clock >> 4 & 7) - 4;
    u8 pad = 0;
    if ((clock & laziness[level]) == 0 && level != 2)
        return 0;
    if (keeper->y + 3 < goal)
        pad = PAD_DOWN;
    else if (keeper->y > goal + 3)
        pad = PAD_UP;
    if (level != 0 && comes && distance < 24 && (clock & 32))
        pad |= PAD_ONE;
    return pad;
}

u8 MatchThinkLeft(u8 level) {
    return Think(&left, (u8)(x / SUB), speedX < 0, level);
}

u8 MatchThinkRight(u8 level) {
    return Think(&right, (u8)(SCREEN_WIDTH - x / SUB), speedX > 0, level);
}

static void DrawKeeper(const KEEPER* keeper, u8 place, u8 tile, u8 marked) {
    if (IsStriking(keeper))
        tile += 3;
    AddSprite(place, keeper->y, tile);
    AddSprite(place, keeper->y + 8, tile + 1);
    AddSprite(place, keeper->y + 16, tile + 2);
    if (marked && keeper->y < SCREEN_HEIGHT - KEEPER_HEIGHT - 8)
        AddSprite(place, keeper->y + KEEPER_HEIGHT + 2, TILE_MARK);
}

static void DrawFirefly(void) {
    const u8 placeX = (u8)(x / SUB);
    const u8 placeY = (u8)(y / SUB);
    if (phase == kPoint) {
        const u8 frame = (POINT_FRAMES - count) >> 3;
        if (frame < 3) {
            AddSprite(placeX, placeY, TILE_BURST + frame);
            AddSprite(placeX, placeY - frame * 4, TILE_BURST + frame);
            AddSprite(placeX, placeY + frame * 4, TILE_BURST + frame);
        }
        return;
    }
    // It blinks before it flies.
    if (phase == kServe && (count & 8))
        return;
    AddSprite(placeX, placeY, TILE_FIREFLY + (clock >> 2 & 1));
    if (phase == kServe)
        return;
    for (u8 spark = 0; spark < 3; ++spark) {
        const u8 index = (u8)((trailAt + 2 + spark * 3) % TRAIL);
        if (trailY[index] != 0)
            AddSprite(trailX[index], trailY[index], TILE_SPARK + spark);
    }
}

void MatchDraw(u8 own) {
    SpritesBegin();
    DrawFirefly();
    DrawKeeper(&left, LEFT_X, TILE_LEFT, own == 1);
    DrawKeeper(&right, RIGHT_X, TILE_RIGHT, own == 2);
}

void MatchDrawScore(void) {
    if (!scoreChanged)
        return;
    scoreChanged = 0;
    for (u8 lamp = 0; lamp < POINTS_TO_WIN; ++lamp) {
        PutCell(1 + lamp, 0, lamp < left.score ? TILE_LAMP_LEFT : TILE_LAMP_OFF);
        PutCell(SCREEN_COLUMNS - 2 - lamp, 0, lamp < right.score ? TILE_LAMP_RIGHT : TILE_LAMP_OFF);
    }
}
