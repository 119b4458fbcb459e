#!/usr/bin/env python3
"""Seeds of fuzz_sega8_state: for each machine a patch over all of its chips, of noise and of ones."""
import pathlib
import random

folder = pathlib.Path(__file__).parent / "fuzz_sega8_state"
folder.mkdir(exist_ok=True)
noise = random.Random(1)
PATCH = 5000  # bytes before the end of the state
for machine in range(6):
    head = bytes([machine]) + PATCH.to_bytes(2, "little")
    (folder / f"noise-{machine}").write_bytes(head + noise.randbytes(PATCH))
    (folder / f"ones-{machine}").write_bytes(head + b"\xff" * PATCH)
