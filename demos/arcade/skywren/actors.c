#include "actors.h"

#include "art.h"
#include "board.h"
#include "random.h"
#include "sound.h"
#include "terrain.h"

#define SHOTS   4
#define ENEMIES 8
#define BULLETS 6

#define LEFT_EDGE     12
#define RIGHT_EDGE    200
#define TOP_EDGE      18
#define SPAWN_X       247
#define WREN_SPEED    2
#define SHOT_SPEED    6
#define SHOT_REST     9
#define SAFE_FRAMES   90 // after a new life
#define BLAST_FRAMES  18
#define FALL_FRAMES   70
#define BALLOON_POWER 4
#define CHAIN         4 // kites one behind the other
#define CHAIN_FRAMES  14

enum { kNobody, kKite, kCrow, kBalloon, kBlast };

typedef struct {
    u8 kind;
    u8 x;
    u8 y;
    u8 base; // the height a kite swings about
    u8 age;
    u8 power; // hits still to take
} ENEMY;

typedef struct {
    u8 x; // 0: free
    u8 y;
    s8 speedX;
    s8 speedY;
} MISSILE;

u8 lives;
u16 score;
u8 night;
static u8 wrenX;
static u8 wrenY;
static u8 safe;
static u8 fall; // frames of the fall so far, 0 flying
static u8 shotRest;
static u8 clock;
static ENEMY enemies[ENEMIES];
static MISSILE shots[SHOTS];
static MISSILE bullets[BULLETS];
static u8 untilWave;
static u8 chainLeft;
static u8 chainWait;
static u8 chainY;

// 24 * sin, 32 steps.
static const s8 swing[32] = {0,   5,   9,   13,  17,  20,  22,  24,  24,  24,  22,
                             20,  17,  13,  9,   5,   0,   -5,  -9,  -13, -17, -20,
                             -22, -24, -24, -24, -22, -20, -17, -13, -9,  -5};
// Worth in tens of points, by kind.
static const u8 worth[4] = {0, 10, 20, 50};

void ActorsBegin(void) {
    for (u8 index = 0; index < ENEMIES; ++index)
        enemies[index].kind = kNobody;
    for (u8 index = 0; index < SHOTS; ++index)
        shots[index].x = 0;
    for (u8 index = 0; index < BULLETS; ++index)
        bullets[index].x = 0;
    wrenX = 40;
    wrenY = 80;
    safe = SAFE_FRAMES;
    fall = 0;
    shotRest = 0;
    untilWave = 60;
    chainLeft = 0;
}

static u8 Distance(u8 a, u8 b) {
    return a > b ? a - b : b - a;
}

static void Spawn(u8 kind, u8 y) {
    for (u8 index = 0; index < ENEMIES; ++index) {
        ENEMY* enemy = &enemies[index];
        if (enemy->kind != kNobody)
            continue;
        enemy->kind = kind;
        enemy->x = SPAWN_X;
        enemy->y = enemy->base = y;
        enemy->age = 0;
        enemy->power = kind == kBalloon ? BALLOON_POWER : 1;
        return;
    }
}

static void SpawnWaves(void) {
    if (chainLeft != 0 && --chainWait == 0) {
        Spawn(kKite, chainY);
        chainWait = CHAIN_FRAMES;
        --chainLeft;
    }
    if (--untilWave != 0)
        return;
    untilWave = night < 4 ? (u8)(80 - night * 12) : 32;
    switch (Random() & 3) {
    case 0:
    case 1:
        chainLeft = CHAIN;
        chainWait = 1;
        chainY = 50 + (Random() & 63);
        untilWave += CHAIN * CHAIN_FRAMES;
        break;
    case 2: Spawn(kCrow, 24 + (Random() & 63)); break;
    default: Spawn(kBalloon, 110); break;
    }
}

static void Shoot(void) {
    for (u8 index = 0; index < SHOTS; ++index) {
        if (shots[index].x != 0)
            continue;
        shots[index].x = wrenX + 14;
        shots[index].y = wrenY + 2;
        shotRest = SHOT_REST;
        SoundEffect(EFFECT_SHOT);
        return;
    }
}

static void FireAtWren(const ENEMY* enemy) {
    for (u8 index = 0; index < BULLETS; ++index) {
        MISSILE* bullet = &bullets[index];
        if (bullet->x != 0)
            continue;
        bullet->x = enemy->x;
        bullet->y = enemy->y + 4;
        bullet->speedX = enemy->x > wrenX ? -2 : 2;
        bullet->speedY = 0;
        if (Distance(enemy->y, wrenY) > 16)
            bullet->speedY = wrenY > enemy->y ? 1 : -1;
        return;
    }
}

static void MoveWren(u8 controls) {
    if ((controls & CONTROL_UP) && wrenY > TOP_EDGE)
        wrenY -= WREN_SPEED;
    if (controls & CONTROL_DOWN)
        wrenY += WREN_SPEED;
    if ((controls & CONTROL_LEFT) && wrenX > LEFT_EDGE)
        wrenX -= WREN_SPEED;
    if ((controls & CONTROL_RIGHT) && wrenX < RIGHT_EDGE)
        wrenX += WREN_SPEED;
    if (shotRest != 0)
        --shotRest;
    else if (controls & (CONTROL_FIRE | CONTROL_SECOND))
        Shoot();
}

static void MoveEnemy(ENEMY* enemy) {
    u8 step = 1;
    ++enemy->age;
    switch (enemy->kind) {
    case kKite:
        step = 2;
        enemy->y = (u8)(enemy->base + swing[enemy->age >> 1 & 31]);
        break;
    case kCrow:
        step = 3;
        if (enemy->age & 1)
            enemy->y += enemy->y < wrenY ? 1 : enemy->y > wrenY ? -1 : 0;
        break;
    case kBalloon:
        if ((enemy->age & 3) == 0 && enemy->y > 40)
            --enemy->y;
        if ((enemy->age & 63) == 40 && fall == 0)
            FireAtWren(enemy);
        break;
    default:
        if (enemy->age >= BLAST_FRAMES)
            enemy->kind = kNobody;
        break;
    }
    if (enemy->x < step + 4)
        enemy->kind = kNobody;
    enemy->x -= step;
}

static void Burst(ENEMY* enemy) {
    score += worth[enemy->kind];
    enemy->kind = kBlast;
    enemy->age = 0;
    SoundEffect(EFFECT_BLAST);
}

static void ShotHits(MISSILE* shot) {
    for (u8 index = 0; index < ENEMIES; ++index) {
        ENEMY* enemy = &enemies[index];
        if (enemy->kind == kNobody || enemy->kind == kBlast)
            continue;
        if (Distance(shot->x, enemy->x + 4) > 9 || Distance(shot->y, enemy->y + 3) > 9)
            continue;
        shot->x = 0;
        if (--enemy->power == 0)
            Burst(enemy);
        return;
    }
}

static void MoveShots(void) {
    for (u8 index = 0; index < SHOTS; ++index) {
        MISSILE* shot = &shots[index];
        if (shot->x == 0)
            continue;
        if (shot->x > 255 - SHOT_SPEED - 8) {
            shot->x = 0;
            continue;
        }
        shot->x += SHOT_SPEED;
        if (shot->y > GroundAt(shot->x) - 6)
            shot->x = 0;
        else
            ShotHits(shot);
    }
}

static void MoveBullets(void) {
    for (u8 index = 0; index < BULLETS; ++index) {
        MISSILE* bullet = &bullets[index];
        if (bullet->x == 0)
            continue;
        bullet->x += bullet->speedX;
        bullet->y += bullet->speedY;
        if (bullet->x < 8 || bullet->x > 248 || bullet->y < 16 || bullet->y > 184)
            bullet->x = 0;
    }
}

static u8 IsHit(void) {
    if (wrenY + 13 > GroundAt(wrenX + 8))
        return 1;
    if (safe != 0)
        return 0;
    for (u8 index = 0; index < ENEMIES; ++index) {
        const ENEMY* enemy = &enemies[index];
        if (enemy->kind != kNobody && enemy->kind != kBlast && Distance(enemy->x, wrenX) < 11 &&
            Distance(enemy->y, wrenY) < 10)
            return 1;
    }
    for (u8 index = 0; index < BULLETS; ++index) {
        const MISSILE* bullet = &bullets[index];
        if (bullet->x != 0 && Distance(bullet->x, wrenX + 4) < 7 &&
            Distance(bullet->y, wrenY + 3) < 6)
            return 1;
    }
    return 0;
}

u8 ActorsStep(u8 controls) {
    ++clock;
    if (safe != 0)
        --safe;
    if (fall == 0) {
        SpawnWaves();
        MoveWren(controls);
    }
    for (u8 index = 0; index < ENEMIES; ++index) {
        if (enemies[index].kind != kNobody)
            MoveEnemy(&enemies[index]);
    }
    MoveShots();
    MoveBullets();
    if (fall != 0)
        return ++fall == FALL_FRAMES ? ACTORS_LOST : ACTORS_PLAYING;
    if (IsHit()) {
        fall = 1;
        SoundEffect(EFFECT_CRASH);
    }
    return ACTORS_PLAYING;
}

// Follows the nearest enemy's height, keeps off the ground and away from what comes close.
u8 ActorsThink(void) {
    u8 goal = 84;
    u8 nearest = 255;
    for (u8 index = 0; index < ENEMIES; ++index) {
        const ENEMY* enemy = &enemies[index];
        if (enemy->kind == kNobody || enemy->kind == kBlast || enemy->x < wrenX)
            continue;
        if (enemy->x < nearest) {
            nearest = enemy->x;
            goal = enemy->y;
            if (enemy->x - wrenX < 44)
                goal = wrenY < goal ? goal - 40 : goal + 40;
        }
    }
    for (u8 index = 0; index < BULLETS; ++index) {
        const MISSILE* bullet = &bullets[index];
        if (bullet->x != 0 && Distance(bullet->x, wrenX) < 40 && Distance(bullet->y, wrenY) < 20)
            goal = wrenY < bullet->y ? wrenY - 20 : wrenY + 20;
    }
    const u8 ground = GroundAt(wrenX + 40) - 28;
    if (goal > ground)
        goal = ground;
    u8 controls = CONTROL_FIRE;
    if (wrenY + 2 < goal)
        controls |= CONTROL_DOWN;
    else if (wrenY > goal + 2)
        controls |= CONTROL_UP;
    return controls;
}

static void DrawWren(void) {
    if (fall != 0) {
        const u8 frame = fall >> 3;
        if (frame < 3)
            AddWideSprite(wrenX, wrenY, SPRITE_BLAST + frame * 4);
        return;
    }
    // It flickers while nothing can hurt it.
    if (safe & 4)
        return;
    AddWideSprite(wrenX, wrenY, SPRITE_WREN + (clock & 8 ? 4 : 0));
}

static u8 EnemyTile(const ENEMY* enemy) {
    const u8 second = enemy->age & 8 ? 4 : 0;
    switch (enemy->kind) {
    case kKite: return SPRITE_KITE + second;
    case kCrow: return SPRITE_CROW + second;
    case kBalloon: return SPRITE_BALLOON;
    default: return (u8)(SPRITE_BLAST + enemy->age / 6 * 4);
    }
}

void ActorsDraw(void) {
    SpritesBegin();
    DrawWren();
    for (u8 index = 0; index < SHOTS; ++index) {
        if (shots[index].x != 0)
            AddSprite(shots[index].x, shots[index].y, SPRITE_SHOT);
    }
    for (u8 index = 0; index < BULLETS; ++index) {
        if (bullets[index].x != 0)
            AddSprite(bullets[index].x, bullets[index].y, SPRITE_BULLET);
    }
    for (u8 index = 0; index < ENEMIES; ++index) {
        const ENEMY* enemy = &enemies[index];
        if (enemy->kind != kNobody)
            AddWideSprite(enemy->x, enemy->y, EnemyTile(enemy));
    }
}
