#include "luciole/luciole.h"

enum { kNothing, kDrop, kBat, kSpinner, kStinger, kShot, kPuff, kExtraHeart };

enum { kCreatures = 14, kLeftEdge = -16, kLightFull = 20, kFlareCost = 10, kHurtFrames = 90 };

typedef struct {
    uint8_t kind;
    int16_t x;
    uint8_t y;
    uint8_t base; // height about which it swings
    uint8_t age;
} Creature;

uint8_t playerX, playerY, hearts, light, hurtFrames;
uint16_t score;

static Creature creatures[kCreatures];
static int16_t x16, y16;       // the player's place in sixteenths of a pixel
static int8_t speedX, speedY;  // sixteenths a frame
static uint8_t age;
static uint8_t untilSpawn, chainLeft, chainY;
static uint16_t randomState; // 0 until first used

static const int8_t kSine[32] = {
    0, 3, 6, 9, 11, 13, 15, 16, 16, 16, 15, 13, 11, 9, 6, 3,
    0, -3, -6, -9, -11, -13, -15, -16, -16, -16, -15, -13, -11, -9, -6, -3,
};

int8_t Sine(uint8_t angle)
{
    return kSine[angle & 31];
}

uint8_t Random(void)
{
    if (!randomState)
        randomState = 0xACE1;
    randomState ^= randomState << 7;
    randomState ^= randomState >> 9;
    randomState ^= randomState << 8;
    return (uint8_t)(randomState >> 3);
}

void CreaturesBegin(void)
{
    uint8_t i;
    for (i = 0; i < kCreatures; ++i)
        creatures[i].kind = kNothing;
    x16 = 48 << 4;
    y16 = 90 << 4;
    speedX = speedY = 0;
    playerX = 48;
    playerY = 90;
    hurtFrames = 60;
    untilSpawn = 60;
    chainLeft = 0;
}

static Creature *NewCreature(uint8_t kind, uint8_t y)
{
    uint8_t i;
    Creature *creature = creatures;
    for (i = 0; i < kCreatures; ++i, ++creature) {
        if (creature->kind != kNothing)
            continue;
        creature->kind = kind;
        creature->x = 255;
        creature->y = creature->base = y;
        creature->age = 0;
        return creature;
    }
    return 0;
}

void CreaturesSpawn(uint8_t night)
{
    uint8_t chance;
    if (--untilSpawn)
        return;
    if (chainLeft) {
        --chainLeft;
        NewCreature(kDrop, chainY);
        untilSpawn = chainLeft ? 14 : 40;
        return;
    }
    chance = Random();
    untilSpawn = 50 - (night > 6 ? 30 : night * 5);
    if (chance < 100) {
        chainLeft = 3 + (chance & 3);
        chainY = 40 + (Random() & 63) + (Random() & 31);
        untilSpawn = 14;
    } else if (chance < 160) {
        NewCreature(kBat, 44 + (Random() & 63));
    } else if (chance < 205) {
        NewCreature(kSpinner, 70 + (Random() & 31));
    } else if (chance < 248) {
        NewCreature(kStinger, 40 + (Random() & 127));
    } else {
        NewCreature(kExtraHeart, 60 + (Random() & 63));
    }
}

static uint8_t Near(const Creature *creature, const Creature *other)
{
    const uint8_t distanceX = (uint8_t)(other->x - creature->x + 12);
    const uint8_t distanceY = other->y - creature->y + 11;
    return distanceX < 24 && distanceY < 22;
}

static void Burst(Creature *creature)
{
    creature->kind = kPuff;
    creature->age = 0;
    score += 5;
    SoundEffect(kSoundPoof);
}

static void ShotHits(Creature *shot)
{
    uint8_t i;
    Creature *creature = creatures;
    for (i = 0; i < kCreatures; ++i, ++creature) {
        if (creature->kind < kBat || creature->kind > kStinger || !Near(creature, shot))
            continue;
        Burst(creature);
        shot->kind = kNothing;
        return;
    }
}

static void MeetPlayer(Creature *creature)
{
    const int16_t distanceX = creature->x - playerX + 10;
    const uint8_t distanceY = creature->y - playerY + 10;
    if (distanceX < 0 || distanceX > 20 || distanceY > 20)
        return;
    if (creature->kind == kDrop) {
        creature->kind = kNothing;
        score += 1;
        if (light < kLightFull)
            ++light;
        SoundEffect(kSoundDew);
    } else if (creature->kind == kExtraHeart) {
        creature->kind = kNothing;
        score += 10;
        if (hearts < 5)
            ++hearts;
        SoundEffect(kSoundLamp);
    } else if (!hurtFrames) {
        --hearts;
        hurtFrames = kHurtFrames;
        SoundEffect(kSoundHurt);
    }
}

static void MoveOne(Creature *creature)
{
    ++creature->age;
    switch (creature->kind) {
    case kDrop:
    case kExtraHeart:
        creature->x -= 1 + scrollStep;
        creature->y = creature->base + (Sine(creature->age >> 1) >> 1);
        break;
    case kBat:
        creature->x -= 1 + scrollStep;
        creature->y = creature->base + Sine(creature->age >> 1) + (Sine(creature->age >> 2) >> 1);
        break;
    case kSpinner:
        creature->x -= scrollStep;
        creature->y = creature->base + Sine(creature->age >> 2) + Sine(creature->age >> 2);
        break;
    case kStinger:
        creature->x -= 2 + scrollStep;
        if (creature->age & 1)
            creature->y += creature->y < playerY ? 1 : creature->y > playerY ? -1 : 0;
        break;
    case kShot:
        creature->x += 5;
        if (creature->x > 248)
            creature->kind = kNothing;
        else if (creature->age & 1) // ten pixels are less than anything it could hit
            ShotHits(creature);
        return;
    case kPuff:
        creature->x -= scrollStep;
        if (creature->age == 16)
            creature->kind = kNothing;
        return;
    }
    if (creature->x <= kLeftEdge) {
        creature->kind = kNothing;
        return;
    }
    MeetPlayer(creature);
}

void CreaturesMove(void)
{
    uint8_t i;
    Creature *creature = creatures;
    for (i = 0; i < kCreatures; ++i, ++creature)
        if (creature->kind != kNothing)
            MoveOne(creature);
}

static void DrawSpider(const Creature *creature)
{
    uint8_t y = creature->y;
    const uint16_t x = (uint16_t)(creature->x + 4) << 8;
    Figure(creature->x, (uint16_t)y << 8 | kSpider);
    if (creature->x < -4 || creature->x > 251)
        return;
    while (y > 32) { // up to the panel's lower edge
        y -= 16;
        Sprite(x | y, kThread);
    }
    Sprite(x | 16, kThread);
}

static void DrawOne(const Creature *creature)
{
    const uint16_t y = (uint16_t)creature->y << 8;
    const uint8_t beat = creature->age & 8 ? 4 : 0;
    switch (creature->kind) {
    case kDrop:
        if (creature->x >= 0 && creature->x < 256)
            Sprite((uint16_t)creature->x << 8 | creature->y, kDew + (creature->age & 16 ? 2 : 0));
        break;
    case kExtraHeart:
        if (creature->x >= 0 && creature->x < 256)
            Sprite((uint16_t)creature->x << 8 | creature->y, kHeart);
        break;
    case kShot:
        Sprite((uint16_t)creature->x << 8 | creature->y, kSpark + (creature->age & 2));
        break;
    case kBat:
        Figure(creature->x, y | (kBatUp + beat));
        break;
    case kSpinner:
        DrawSpider(creature);
        break;
    case kStinger:
        Figure(creature->x, y | kWasp);
        break;
    case kPuff:
        Figure(creature->x, y | (kPoof + beat));
        break;
    }
}

// Every other frame in the opposite order, so that on a crowded line nobody is missing for long.
void CreaturesDraw(void)
{
    uint8_t i;
    if (!(hurtFrames & 4))
        Figure(playerX, (uint16_t)playerY << 8 | (age & 4 ? kFlyUp : kFlyDown));
    if (frameCount & 1) {
        for (i = 0; i < kCreatures; ++i)
            DrawOne(&creatures[i]);
    } else {
        for (i = kCreatures; i; --i)
            DrawOne(&creatures[i - 1]);
    }
}

static int8_t Push(int8_t speed, uint8_t less, uint8_t more)
{
    if (less)
        speed -= 4;
    if (more)
        speed += 4;
    if (!less && !more)
        speed -= speed > 0 ? 1 : speed < 0 ? -1 : 0;
    if (speed > 34)
        speed = 34;
    if (speed < -34)
        speed = -34;
    return speed;
}

void PlayerMove(uint8_t buttons)
{
    ++age;
    if (hurtFrames)
        --hurtFrames;
    speedX = Push(speedX, buttons & PAD_LEFT, buttons & PAD_RIGHT);
    speedY = Push(speedY, buttons & PAD_UP, buttons & PAD_DOWN);
    x16 += speedX;
    y16 += speedY;
    if (x16 < 10 << 4) {
        x16 = 10 << 4;
        speedX = 0;
    }
    if (x16 > 224 << 4) {
        x16 = 224 << 4;
        speedX = 0;
    }
    if (y16 < 18 << 4) {
        y16 = 18 << 4;
        speedY = 0;
    }
    if (y16 > 166 << 4) {
        y16 = 166 << 4;
        speedY = 0;
    }
    playerX = (uint8_t)(x16 >> 4);
    playerY = (uint8_t)(y16 >> 4) + (Sine(age >> 1) >> 3); // it hovers
    if (GardenTouchLamp(playerX, playerY)) {
        score += 10;
        SoundEffect(kSoundLamp);
    }
}

void PlayerShoot(void)
{
    uint8_t i, shots = 0;
    Creature *shot;
    for (i = 0; i < kCreatures; ++i)
        if (creatures[i].kind == kShot)
            ++shots;
    if (shots == 3)
        return;
    shot = NewCreature(kShot, playerY + 1);
    if (!shot)
        return;
    shot->x = playerX + 12;
    SoundEffect(kSoundSpark);
}

void PlayerFlare(void)
{
    uint8_t i;
    if (light < kFlareCost)
        return;
    light -= kFlareCost;
    for (i = 0; i < kCreatures; ++i)
        if (creatures[i].kind >= kBat && creatures[i].kind <= kStinger)
            Burst(&creatures[i]);
    ScreenFlash();
    SoundEffect(kSoundFlare);
}

// For the demonstration: goes for lanterns and drops, shoots at what is in the way.
uint8_t PlayerAutopilot(void)
{
    uint8_t i, buttons = 0, goal = 104, danger = 0;
    int16_t nearest = 300;
    const Creature *creature = creatures;
    for (i = 0; i < kCreatures; ++i, ++creature) {
        if (creature->x < playerX + 4)
            continue;
        if (creature->kind == kDrop || creature->kind == kExtraHeart) {
            if (creature->x < nearest) {
                nearest = creature->x;
                goal = creature->y;
            }
        } else if (creature->kind >= kBat && creature->kind <= kStinger && creature->x < playerX + 110) {
            const uint8_t distance = creature->y - playerY + 16;
            if (distance < 32)
                danger = 1;
        }
    }
    i = GardenLampAhead(playerX);
    if (i)
        goal = i;
    if (goal + 3 < playerY)
        buttons |= PAD_UP;
    if (goal > playerY + 3)
        buttons |= PAD_DOWN;
    if (danger && (age & 7) == 0)
        buttons |= PAD_BUTTON1;
    return buttons;
}
