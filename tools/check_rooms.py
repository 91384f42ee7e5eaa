"""check_rooms.py: compares what each room of src/ includes with what its CMakeLists.txt names.

A room may include its own headers and those of the rooms behind ON, its direct neighbours, which
all must come before it in src/CMakeLists.txt. Prints a line for each include of a room that is not
named, for each room that is named in vain, and for each that comes later; exit status 1 then.
"""
import re
import sys
from pathlib import Path

SRC = Path(__file__).resolve().parent.parent / "src"
ROOM = re.compile(r"dsmake_room\(\s*(\S+)\s(.*?)\)", re.DOTALL)
INCLUDE = re.compile(r'\s*#\s*include\s+"([^"]+)"')


def read_rooms():
    """The rooms in the order of src/CMakeLists.txt, each with the rooms that it names."""
    rooms = {}
    for folder in re.findall(r"add_subdirectory\((\S+)\)", (SRC / "CMakeLists.txt").read_text()):
        name, rest = ROOM.search((SRC / folder / "CMakeLists.txt").read_text()).groups()
        if name != folder:
            sys.exit(f"src/{folder}/CMakeLists.txt: the room is called {name}")
        rooms[name] = rest.partition(" ON ")[2].split()
    return rooms


def includes_of(room):
    """File, line and room of every include of a header of src/."""
    for file in sorted((SRC / room).glob("*.[ch]pp")):
        for number, line in enumerate(file.read_text().splitlines(), 1):
            found = INCLUDE.match(line)
            if found and "/" in found[1]:
                yield f"src/{room}/{file.name}:{number}", found[1].rpartition("/")[0]


def faults_of(room, named, earlier):
    used = set()
    for place, other in includes_of(room):
        used.add(other)
        if other not in (room, *named):
            yield f"{place}: {other} is not named in src/{room}/CMakeLists.txt"
    for other in named:
        if other not in used:
            yield f"src/{room}/CMakeLists.txt: {other} is named, but nothing of it is included"
        if other not in earlier:
            yield f"src/{room}/CMakeLists.txt: {other} does not come before {room}"


def main():
    faults = []
    earlier = set()
    for room, named in read_rooms().items():
        faults += faults_of(room, named, earlier)
        earlier.add(room)
    print("\n".join(faults) or f"{len(earlier)} rooms include what they name, and nothing else.")
    return 1 if faults else 0


sys.exit(main())
