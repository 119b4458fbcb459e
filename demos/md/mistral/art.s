| The pictures: planes A and B as cells and maps, then the drawings of the sprites. A drawing is its columns and
| rows in cells, two words, then its rows of pixels, four bits each.

    .include "common/md.inc"
    .include "mistral/mistral.inc"

    .section .rodata
    .global skyTiles, skyTilesEnd, skyMap
    .global seaTiles, seaTilesEnd, seaMap
    .global swellTiles, swellTilesEnd, swellMap
    .global cloudsTiles, cloudsTilesEnd, cloudsMap
    .global logoTiles, logoTilesEnd, logoMap
    .global artPlanes, artFigures, artLights

| The far plane above the horizon, palette 0: sky in colours 1 to 7, sun 8 to 10, far hills 11 and 12,
| near hills 13 and 14, lit windows 15.
    .include "sky.inc"
| The sea, palette 1, from the horizon down: colours 1 to 7, crests 8 and 9.
    .include "sea.inc"
| The near swell of plane A, palette 1, colours 10 to 15.
    .include "swell.inc"
| The clouds of plane A, palette 2, colours 1 (lit) to 6 (shade).
    .include "clouds.inc"
| The title, palette 2: colours 8 to 12 from top to foot, shadow 13, edge 14.
    .include "logo.inc"

| The sprites, palette 3.
artPlanes:
    .include "planes.inc"
artFigures:
    .include "figures.inc"
artLights:
    .include "light.inc"
artEnd:

| In video RAM all cells lie below the window's map.
.equ kDrawings, kShade+1
.if kSpriteTile + (artEnd-artPlanes-kDrawings*4)/32 > kWindowMap/32
    .error "the pictures of Mistral have more cells than there is video RAM"
.endif
