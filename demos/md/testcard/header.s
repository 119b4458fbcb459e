| The vectors and the header of the cartridge.
    .section .header, "a"

    .long 0x00FFFE00
    .long start
    .rept 10
    .long Fault
    .endr
    .rept 12
    .long Fault
    .endr
    .long Ignored, Ignored, Ignored, Ignored
    .long hintJump                          | level 4: a jump in RAM, set by each page
    .long Ignored
    .long FrameInterrupt                    | level 6
    .long Ignored
    .rept 32
    .long Fault
    .endr

    .ascii "SEGA MEGA DRIVE "
    .ascii "(C)OURS 2025.JAN"
    .ascii "MEGA DRIVE TEST CARD                            "
    .ascii "MEGA DRIVE TEST CARD                            "
    .ascii "GM 00000001-00"
    .word 0
    .ascii "J6              "
    .long 0x00000000, romEnd
    .long 0x00FF0000, 0x00FFFFFF
    .ascii "            "
    .ascii "            "
    .ascii "                                        "
    .ascii "JUE             "
