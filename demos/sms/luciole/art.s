; The pictures, a character a pixel. ArtTile in screen.c tells the letters' meaning.

    .module art
    .globl _artLogo, _artHills, _artMoon, _artStars, _artBush, _artLeaves, _artFlowers, _artMushroom
    .globl _artGrass, _artFront, _artLamp, _artLit, _artPost, _artFoot, _artPanel, _artFlyUp
    .globl _artFlyDown, _artBatUp, _artBatDown, _artSpider, _artWasp, _artPoof, _artPoofOut, _artDew
    .globl _artSpark, _artThread

    .area _CODE
    .include "logo.inc"
    .include "sky.inc"
    .include "garden.inc"
    .include "sprites.inc"
