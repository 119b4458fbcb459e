#include "luciole/luciole.h"

#define NAME_TABLE 0x3800u
#define SPRITE_TABLE 0x3F00u
#define SPRITES 64
// As much as fits under the picture with all the sprites: past line 14 the line interrupts use the VDP.
#define QUEUE 48
#define RGB(r, g, b) ((r) | (g) << 2 | (b) << 4)

extern const char artHills[], artMoon[], artLogo[], artStars[], artBush[], artLeaves[], artFlowers[],
    artMushroom[], artGrass[], artFront[], artLamp[], artLit[], artPost[], artFoot[], artPanel[];
extern const char artFlyUp[], artFlyDown[], artBatUp[], artBatDown[], artSpider[], artWasp[], artPoof[],
    artPoofOut[], artDew[], artSpark[], artThread[];

typedef struct {
    const char *text;
    uint8_t width, height; // tiles
} Art;

// In the order of the tile numbers; the plain tiles of colours 2, 3 and 6 come between.
static const Art kScenery[] = {
    {artHills, 16, 4}, {artMoon, 4, 4}, {artStars, 5, 1},
};
static const Art kGarden[] = {
    {artBush, 4, 1}, {artLeaves, 2, 1}, {artFlowers, 3, 1}, {artMushroom, 2, 2}, {artGrass, 2, 1},
    {artFront, 4, 2}, {artLamp, 2, 2}, {artLit, 2, 2}, {artPost, 2, 1}, {artFoot, 2, 1}, {artPanel, 6, 1},
};
static const char *const kFigures[] = {
    artFlyUp, artFlyDown, artBatUp, artBatDown, artSpider, artWasp, artPoof, artPoofOut, artDew, artSpark, artThread,
};

// Colours 1 to 9: sky from the top, far and near hills, hedge, its leaves, lawn, its blades.
static const uint8_t kSky[kSkies][9] = {
    {RGB(0, 0, 1), RGB(0, 0, 2), RGB(1, 1, 3), RGB(0, 1, 2), RGB(0, 0, 1), RGB(0, 1, 1), RGB(0, 2, 1), RGB(0, 1, 0), RGB(0, 2, 0)},
    {RGB(0, 0, 2), RGB(1, 0, 2), RGB(2, 1, 3), RGB(1, 0, 2), RGB(0, 0, 1), RGB(0, 1, 1), RGB(0, 2, 1), RGB(0, 1, 0), RGB(0, 2, 0)},
    {RGB(1, 0, 2), RGB(2, 1, 3), RGB(3, 1, 2), RGB(1, 1, 2), RGB(1, 0, 1), RGB(0, 1, 1), RGB(0, 2, 1), RGB(0, 1, 0), RGB(0, 2, 0)},
    {RGB(1, 1, 3), RGB(3, 1, 2), RGB(3, 2, 1), RGB(2, 1, 2), RGB(1, 0, 2), RGB(0, 1, 1), RGB(1, 2, 1), RGB(0, 1, 0), RGB(1, 2, 0)},
    {RGB(1, 2, 3), RGB(3, 2, 3), RGB(3, 3, 1), RGB(2, 2, 2), RGB(1, 1, 2), RGB(0, 1, 1), RGB(1, 3, 1), RGB(0, 2, 0), RGB(2, 3, 0)},
    {RGB(1, 2, 3), RGB(2, 3, 3), RGB(3, 3, 2), RGB(1, 2, 2), RGB(1, 2, 1), RGB(0, 2, 1), RGB(1, 3, 1), RGB(0, 2, 0), RGB(2, 3, 1)},
};

static const uint8_t kFixedColours[] = {
    RGB(3, 3, 3), RGB(3, 3, 1), RGB(3, 2, 0), RGB(1, 1, 0), RGB(3, 1, 2), RGB(2, 3, 3),
};
static const uint8_t kSpriteColours[] = {
    RGB(0, 0, 0), RGB(3, 3, 3), RGB(3, 3, 1), RGB(3, 2, 0), RGB(2, 1, 0), RGB(1, 3, 3), RGB(1, 2, 3), RGB(1, 0, 1),
    RGB(2, 1, 2), RGB(3, 2, 3), RGB(3, 0, 1), RGB(1, 2, 0), RGB(1, 3, 1), RGB(2, 2, 2), RGB(3, 1, 1), RGB(0, 0, 0),
};

uint8_t pad, padPressed;

// sprites.s
extern uint8_t spriteY[SPRITES];
extern uint8_t spriteXAndTile[SPRITES * 2];
extern uint8_t spriteCount;

typedef struct {
    uint16_t cell, tile;
} QueuedTile;
static QueuedTile queue[QUEUE];
static uint8_t queued;
static uint8_t dark; // between ScreenOff and ScreenOn

static uint8_t skyStep, skyShown, flash;
static uint8_t framesSeen;

static void DrawArt(const Art *art)
{
    const uint16_t stride = (uint16_t)art->width << 3;
    const char *row = art->text;
    uint8_t x, y;
    for (y = art->height; y; --y) {
        const char *tile = row;
        for (x = art->width; x; --x) {
            ArtTile(tile, stride);
            tile += 8;
        }
        row += stride << 3;
    }
}

// Sprites of 8 x 16 want their tiles column by column.
static void DrawFigure(const char *art)
{
    ArtTile(art, 16);
    ArtTile(art + 128, 16);
    ArtTile(art + 8, 16);
    ArtTile(art + 136, 16);
}

static void DrawPlain(uint8_t colour)
{
    uint8_t row, plane, bits;
    for (row = 0; row < 8; ++row) {
        bits = colour;
        for (plane = 0; plane < 4; ++plane) {
            VdpByte(bits & 1 ? 0xFF : 0);
            bits >>= 1;
        }
    }
}

static void DrawTiles(void)
{
    uint8_t i;
    VdpAddress(VRAM_WRITE);
    FontTiles(64, 0x0F);
    for (i = 0; i < 3; ++i)
        DrawArt(&kScenery[i]);
    DrawPlain(1);
    DrawPlain(2);
    DrawPlain(3);
    DrawPlain(6);
    for (i = 0; i < sizeof(kGarden) / sizeof(kGarden[0]); ++i)
        DrawArt(&kGarden[i]);
    FontTiles(62, 0x6A);
    VdpAddress(VRAM_WRITE | 0x2000);
    for (i = 0; i < sizeof(kFigures) / sizeof(kFigures[0]); ++i)
        DrawFigure(kFigures[i]);
    VdpAddress(VRAM_WRITE | kTileLogo * 32);
    {
        static const Art kLogo = {artLogo, 28, 4};
        DrawArt(&kLogo);
    }
}

static void SendSky(void)
{
    const uint8_t *colours = kSky[skyStep];
    uint8_t i;
    VdpAddress(CRAM_WRITE | 1);
    for (i = 0; i < 9; ++i)
        VdpByte(flash && i < 3 ? RGB(3, 3, 3) : colours[i]);
    skyShown = skyStep;
}

void ScreenInit(void)
{
    static const uint8_t kRegisters[11] = {
        0x36, // mode 4, line interrupts, left column hidden
        0xA2, // display off, frame interrupts, sprites of 8 x 16
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF0, 0, 0, 0xFF,
    };
    uint8_t i;
    for (i = 0; i < 11; ++i)
        VdpRegister(i, kRegisters[i]);
    DrawTiles();
    VdpAddress(NAME_TABLE | VRAM_WRITE);
    VdpZeros(32 * 28 * 2);
    VdpAddress(SPRITE_TABLE | VRAM_WRITE);
    VdpByte(0xD0);
    VdpAddress(CRAM_WRITE);
    VdpByte(0);
    SendSky();
    VdpCopy(kFixedColours, sizeof(kFixedColours));
    VdpCopy(kSpriteColours, sizeof(kSpriteColours));

    // Line counts: see interrupt.s. The bands begin at lines 16, 72, 104 and 176; the second entry only
    // bridges the first two.
    bands[1] = 39;
    bands[3] = 31;
    bands[5] = 71;
    bands[7] = 255;
    bands[9] = 255;
    bands[11] = 255;
    VdpRegister(1, 0xE2);
    __asm__("ei");
}

void ScreenSky(uint8_t step)
{
    skyStep = step;
}

void ScreenFlash(void)
{
    flash = 4;
}

static void SendQueue(void)
{
    const QueuedTile *entry = queue;
    for (; queued; --queued, ++entry) {
        VdpAddress((NAME_TABLE | VRAM_WRITE) + entry->cell + entry->cell);
        VdpWord(entry->tile);
    }
}

void ScreenOff(void)
{
    spriteCount = 0;
    Frame();
    __asm__("di");
    VdpRegister(1, 0xA2);
    dark = 1;
}

void ScreenOn(void)
{
    dark = 0;
    (void)VdpStatus(); // what was asked for meanwhile
    __asm__("ei");
    Frame();
    VdpRegister(1, 0xE2);
}

void Put(uint16_t cell, uint16_t tile)
{
    QueuedTile *entry;
    if (dark) {
        VdpAddress((NAME_TABLE | VRAM_WRITE) + cell + cell);
        VdpWord(tile);
        return;
    }
    if (queued == QUEUE)
        Frame();
    entry = &queue[queued++];
    entry->cell = cell;
    entry->tile = tile;
}

void Text(uint16_t cell, const char *text)
{
    for (; *text; ++text)
        Put(cell++, (uint8_t)(*text - ' '));
}

void TextOnHedge(uint16_t cell, const char *text)
{
    for (; *text; ++text)
        Put(cell++, kTileHedgeFont + (uint8_t)(*text - ' '));
}

static void SendSprites(void)
{
    if (spriteCount < SPRITES)
        spriteY[spriteCount] = 0xD0;
    VdpAddress(SPRITE_TABLE | VRAM_WRITE);
    VdpCopy(spriteY, spriteCount < SPRITES ? spriteCount + 1 : SPRITES);
    if (spriteCount) {
        VdpAddress((SPRITE_TABLE + 0x80) | VRAM_WRITE);
        VdpCopy(spriteXAndTile, (uint16_t)spriteCount << 1);
    }
    spriteCount = 0;
}

void Frame(void)
{
    uint8_t held;
    const uint8_t before = frameCount;
    while (frameCount == before) {
    }
    SendSprites();
    SendQueue();
    if (skyShown != skyStep || flash) {
        if (flash)
            --flash;
        SendSky();
    }
    // The music keeps its tempo even if a frame took too long.
    while (framesSeen != frameCount) {
        ++framesSeen;
        SoundTick();
    }
    held = PadRead();
    padPressed = held & ~pad;
    pad = held;
}
