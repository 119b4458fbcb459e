#!/usr/bin/env python3
"""Seeds of the entries that run programs on both frame loops: random accesses to the machine's ports at random clocks,
and loops that wait for a status, a line or an interrupt."""
import pathlib
import random

here = pathlib.Path(__file__).parent
noise = random.Random(1)
ACCESSES = 120  # of a program


def byte():
    return noise.randrange(256)


def z80(video, counter, others):
    """LD B; DJNZ or NOPs, then IN, OUT, a register of the VDP, OTIR, a write to memory, or a loop that waits."""
    code = bytearray()
    for _ in range(ACCESSES):
        code += bytes([0x06, byte(), 0x10, 0xFE]) if noise.random() < 0.3 else bytes(noise.randrange(5))
        port = noise.choice(video)
        code += noise.choice([
            bytes([0xDB, port + noise.randrange(2)]),
            bytes([0x3E, byte(), 0xD3, port + noise.randrange(2)]),
            bytes([0x3E, byte(), 0xD3, noise.choice(others)]),
            bytes([0xDB, noise.choice(others)]),
            bytes([0x3E, byte() | 0x44, 0xD3, port + 1, 0x3E, 0x80 | noise.randrange(11), 0xD3, port + 1]),
            bytes([0x01, port, 1 + noise.randrange(30), 0x21, byte(), 0xC2, 0xED, noise.choice([0xB2, 0xB3])]),
            bytes([0x3E, byte(), 0x32, byte(), noise.choice([0xC1, 0xD0, 0x80])]),
            bytes([0xF3, 0xDB, video[-1] + 1, 0x07, 0x30, 0xFB, 0xFB]),
            bytes([0xDB, counter, 0xFE, noise.randrange(0xC0), 0x20, 0xFA]),
            bytes([0xFB, 0x76]),
        ])
    return bytes(code)


def m6502():
    """LDX; DEX; BNE or NOPs, then a read or write of a chip or the board, or a loop that waits."""
    code = bytearray()
    for _ in range(ACCESSES):
        code += bytes([0xA2, byte(), 0xCA, 0xD0, 0xFD]) if noise.random() < 0.3 else b"\xea" * noise.randrange(5)
        code += noise.choice([
            bytes([0xAD, noise.randrange(8), 0x20]),
            bytes([0xA9, byte(), 0x8D, noise.choice([0, 3, 4, 5, 6, 7]), 0x20]),
            bytes([0xA9, byte() | 0x18, 0x8D, 0x01, 0x20]),
            bytes([0xA9, byte(), 0x8D, noise.randrange(0x18), 0x40]),
            bytes([0xA9, byte(), 0x8D, byte(), noise.choice([0x60, 0x80, 0xA0, 0xC0, 0xE0])]),
            bytes([0x2C, 0x02, 0x20, 0x10, 0xFB]),
            bytes([0xAD, 0x02, 0x20, 0x29, 0x40, 0xF0, 0xF9]),
            bytes([0xA5, 0x10, 0xC5, 0x10, 0xF0, 0xFC]),
        ])
    return bytes(code)


def write(entry, kinds, program):
    folder = here / entry
    folder.mkdir(exist_ok=True)
    for kind in kinds:
        (folder / f"accesses-{kind}").write_bytes(bytes([kind]) + program())


write("fuzz_sms_program", range(6), lambda: z80([0xBE], 0x7E, [0x7F, 0x3F, 0xDC, 0xF0, 0xF1, 0x05, 0x03]))
write("fuzz_system_e_program", range(3), lambda: z80([0xBA, 0xBE], 0x7E, [0x7B, 0x7E, 0xF7, 0xFA, 0xF8, 0xE1]))
write("fuzz_nes_program", [0, 1, 4, 6, 8, 0x80, 0x81, 0x83, 0x84, 0x86, 0x87], m6502)
