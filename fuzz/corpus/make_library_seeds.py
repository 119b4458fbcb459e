#!/usr/bin/env python3
"""Writes the seeds of fuzz_database and fuzz_logiqx into their folders."""

import hashlib
import pathlib
import struct

from make_seeds import IMAGE, MACHINES, records

HERE = pathlib.Path(__file__).parent
SYSTEMS = {1: "sms", 2: "gg", 4: "md", 5: "nes", 6: "arcade"}


def write(folder, title, data):
    path = HERE / folder / title
    path.parent.mkdir(exist_ok=True)
    path.write_bytes(data)


def with_hash(entry):
    """The entry with its header's hash, taken while both hashes and the packed size are zero."""
    blank = entry[:12] + bytes(4) + entry[16:24] + bytes(64) + entry[88:]
    return blank[:56] + hashlib.sha256(blank).digest() + blank[88:]


def gada(text):
    return b"GADA" + text.ljust(64, b"\0")


for number in MACHINES:
    one = with_hash(records(number, [IMAGE[:100], IMAGE[100:]], [(b"One", [0]), (b"Two", [1])]))
    other = records(number, [IMAGE], [(b"Other", [0])])
    write("fuzz_database", f"system-{number}.dat", gada(b"one") + one + other)
write("fuzz_database", "short-default.dat", records(2, [IMAGE], [(b"Gear", [0])], b"GDF0"))
write("fuzz_database", "names-of-nothing.dat", records(5, [], []) * 2)

RULES = {
    1: 'fm="1" glasses="0" input1="phaser" input2="6button" board="korean" consoles="sms1-pal,mark3" kind="3"',
    2: 'board="codemasters"',
    4: 'play="single,coop,versus,turns"',
    5: 'regions="EJUBK" status="5"',
    6: 'board="4"',
}


def rom(title, size, seed, sha256=True):
    digest = hashlib.sha256(bytes([seed])).hexdigest()
    sha1 = hashlib.sha1(bytes([seed])).hexdigest()
    return (f'<rom name="{title}" size="{size}" crc="0123abcd" sha1="{sha1}"'
            + (f' sha256="{digest}"' if sha256 else "") + ' status="verified"/>')


def datafile(games):
    return ('<?xml version="1.0"?>\n<!DOCTYPE datafile PUBLIC "-//Logiqx//DTD ROM Management Datafile//EN" '
            '"http://www.logiqx.com/Dats/datafile.dtd">\n<datafile><header><name>n</name></header>\n'
            + games + "</datafile>\n")


PARENTS = (f'<game name="Luciole (Europe, Brazil) (Rev A) (En,Fr)" id="1"><description>d</description>'
           f'<year>1990</year><release name="Hotaru (Japan)" region="JPN" date="1991-02-03"/>'
           f'{rom("a.sms", 1040, 1)}</game>\n'
           f'<game name="Firefly (USA)" cloneof="Luciole (Europe, Brazil) (Rev A) (En,Fr)">{rom("b", 1040, 2)}</game>\n'
           f'<game name="Vagalume" cloneofid="1">{rom("c.sms", 1040, 3, False)}</game>\n'
           f'<game name="[BIOS] Console (World)" isbios="yes">{rom("d", 1040, 2)}</game>\n')
SETS = (f'<machine name="set"><description>A set &amp; more (Japan)</description>'
        f'{rom("1.ic1", 512, 1)}{rom("opcodes", 512, 2)}</machine>\n'
        f'<machine name="none"><rom name="x" size="0" status="nodump"/></machine>\n')
TITLES = f'<game name="One (Korea)">{rom("a.md", 1024, 1)}</game><game name="one">{rom("b.md", 2048, 2)}</game>'

for number, machine in SYSTEMS.items():
    rules = f'<rules machine="{machine}"><game name="*(*)" year="1991" {RULES[number]}/></rules>'.encode()
    for title, games in (("parents", PARENTS), ("sets", SETS), ("titles", TITLES)):
        write("fuzz_logiqx", f"{title}-{machine}", struct.pack("<BH", number, len(rules)) + rules
              + datafile(games).encode())
