; A flag that shows which way it is turned, a ball, a block, a single dot, a half.

    .module art

    .area _CODE
; 16 x 16 each, drawn column by column so that they serve as sprites of every size.
_artFlag::
    .ascii "F..............."
    .ascii "FAA............."
    .ascii "FAAAA..........."
    .ascii "FAAAAAA........."
    .ascii "FAAAAAAAA......."
    .ascii "FAAAAAAAAAA....."
    .ascii "FAAAAAAAAAAAA..."
    .ascii "FAAAAAAAAAAAAAA."
    .ascii "F55555555555555."
    .ascii "F555555555555..."
    .ascii "F5555555555....."
    .ascii "F55555555......."
    .ascii "F555555........."
    .ascii "F5555..........."
    .ascii "F55............."
    .ascii "F..............."
_artBall::
    .ascii "..3333......3333"
    .ascii ".322223....32222"
    .ascii "32FF2223..32FF22"
    .ascii "32FF2223..32FF22"
    .ascii "32222223..322222"
    .ascii "32222223..322222"
    .ascii ".322223....32222"
    .ascii "..3333......3333"
    .ascii "4444444455555555"
    .ascii "4......45......5"
    .ascii "4.FFFF.45......5"
    .ascii "4.F..F.45..FF..5"
    .ascii "4.F..F.45..FF..5"
    .ascii "4.FFFF.45......5"
    .ascii "4......45......5"
    .ascii "4444444455555555"
