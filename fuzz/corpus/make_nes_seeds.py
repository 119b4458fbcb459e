#!/usr/bin/env python3
"""Seeds of fuzz_nes_state: patches of noise and of ones over each chip for several boards, and images."""
import pathlib
import random

folder = pathlib.Path(__file__).parent / "fuzz_nes_state"
folder.mkdir(exist_ok=True)
noise = random.Random(1)
WORK_RAM = 5 + 2048 + 10  # the machine's own piece
PIECES = {"cpu": (WORK_RAM + 5, 60), "chips": (WORK_RAM + 65, 5000)}
for board in (0, 3, 8, 12, 16):
    for name, (offset, size) in PIECES.items():
        head = bytes([board]) + offset.to_bytes(2, "little")
        (folder / f"noise-{name}-{board}").write_bytes(head + noise.randbytes(size))
        (folder / f"ones-{name}-{board}").write_bytes(head + b"\xff" * size)
header = bytes([1, 1, 0x10, 0] + [0] * 8)
(folder / "image-shift").write_bytes(b"\x40" + header + noise.randbytes(0x4000 + 0x2000))
(folder / "image-short").write_bytes(b"\x40" + header + noise.randbytes(100))
(folder / "image-trainer").write_bytes(b"\x40" + bytes([1, 1, 4, 0] + [0] * 8) + bytes(0x6200))
(folder / "image-no-banks").write_bytes(b"\x40" + bytes(12))
