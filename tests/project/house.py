"""The rooms of the project and the rules between them, as checks on a source tree.

The rooms come from the table in docs/architecture.md, what a room may use from its CMakeLists.txt,
and what hosts may include from cmake/public_headers.txt. Every check takes the root of a tree and
returns a list of faults, each a line that names file and reason.
"""
import os
import re
from dataclasses import dataclass
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
TABLE_ROW = re.compile(r"^\|\s*(\d+)\s*\|\s*`([^`]+)/`\s*\|([^|]*)\|([^|]*)\|", re.M)
ROOM = re.compile(r"joinery_room\(\s*(\w+)([^)]*)\)")
GROUND = "model/export.h"
SOURCES = (".h", ".cpp", ".inc", ".c")


@dataclass
class Room:
    folder: str
    floor: int
    qt: frozenset
    to_come: bool

    @property
    def is_library(self):
        return self.folder.startswith("src/")

    @property
    def sees_inside(self):
        """The library's rooms see each other, and so does a program without Gui, made from them."""
        return self.is_library or (self.folder.startswith("apps/") and "Gui" not in self.qt)


@dataclass
class Target:
    """What CMake says of a room."""
    name: str
    is_core: bool
    uses_qt: bool
    uses: tuple


def modules(cell):
    names = set(cell.split()) - {"none"}
    return frozenset(names | {"Core", "Gui"} if "Widgets" in names else names)


def read_rooms(root):
    text = (root / "docs/architecture.md").read_text()
    return {folder: Room(folder, int(floor), modules(qt), what.strip().startswith("To come"))
            for floor, folder, qt, what in TABLE_ROW.findall(text)}


def read_targets(root):
    targets = {}
    for path in sorted(root.glob("src/**/CMakeLists.txt")):
        for name, rest in ROOM.findall(path.read_text()):
            before, _, uses = rest.partition("USES")
            words = before.split()
            targets[path.parent.relative_to(root).as_posix()] = Target(
                name, "CORE" in words, "STDONLY" not in words, tuple(uses.split()))
    return targets


def closures(targets):
    """For each folder the set of folders that it may include from, its own among them."""
    folder_of = {target.name: folder for folder, target in targets.items()}

    def reach(folder, seen):
        if folder in seen: return seen
        seen.add(folder)
        for used in targets[folder].uses:
            if used in folder_of: reach(folder_of[used], seen)
        return seen

    return {folder: reach(folder, set()) for folder in targets}


def read_public_headers(root):
    path = root / "cmake/public_headers.txt"
    lines = path.read_text().splitlines() if path.exists() else []
    return [line.strip() for line in lines if line.strip() and not line.startswith("#")]


def room_of(rooms, path):
    """The room of a file, by the longest folder that holds it; None outside all rooms."""
    folders = [folder for folder in rooms if path.startswith(folder + "/")]
    return rooms[max(folders, key=len)] if folders else None


def source_files(root, *tops):
    for top in tops:
        for folder, _, names in os.walk(root / top):
            for name in sorted(names):
                if name.endswith(SOURCES):
                    yield (Path(folder) / name).relative_to(root).as_posix()


def includes(root, path):
    """(is_quoted, name) of every include in a file."""
    text = (root / path).read_text(errors="replace")
    return [(mark == '"', name) for mark, name in INCLUDE.findall(text)]


def resolve(root, path, name):
    """The file that a quoted include names, as a path from the root, or None."""
    if name.endswith(".moc") or os.path.basename(name).startswith(("ui_", "moc_")): return path
    candidates = ["src/" + name, name]
    if path.startswith("tests/"): candidates.append("tests/" + name)
    return next((c for c in candidates if (root / c).is_file()), None)


def check_table(root):
    """The table, the folders and the CMake targets name the same rooms."""
    rooms, targets = read_rooms(root), read_targets(root)
    faults = [f"{folder}: a room that docs/architecture.md does not list"
              for folder in targets if folder not in rooms]
    for folder, room in rooms.items():
        present = (root / folder).is_dir()
        if present == room.to_come:
            faults.append(f"{folder}: the table in docs/architecture.md says "
                          + ("to come" if room.to_come else "there is such a room"))
        target = targets.get(folder)
        if not target: continue
        if target.is_core != (room.qt == {"Core"}) or target.uses_qt != bool(room.qt):
            faults.append(f"{folder}: CORE or STDONLY in CMake does not agree with the table")
    return faults


def check_direction(root, rooms, allowed, path, name, found):
    here, there = room_of(rooms, path), room_of(rooms, found)
    if there is None: return [f"{path}: includes {name}, which lies in no room"]
    if here is there or found == "src/" + GROUND: return []
    if there.floor >= here.floor:
        where = "upwards" if there.floor > here.floor else "from a neighbour on the same floor"
        return [f"{path}: includes {name} {where} ({here.floor} to {there.floor})"]
    if here.folder in allowed and there.folder not in allowed[here.folder]:
        return [f"{path}: includes {name}, but {here.folder} does not use {there.folder} in CMake"]
    return []


def check_includes(root):
    """Quoted includes exist, are written from the root, and go down as the table allows."""
    rooms, allowed = read_rooms(root), closures(read_targets(root))
    public = set(read_public_headers(root))
    faults = []
    if (root / "src" / GROUND).exists() and includes(root, "src/" + GROUND):
        faults.append(f"src/{GROUND}: lies under all floors, so it includes nothing")
    for path in source_files(root, "src", "hostkit", "apps"):
        here = room_of(rooms, path)
        if here is None:
            faults.append(f"{path}: lies in no room of docs/architecture.md")
            continue
        for name in (name for is_quoted, name in includes(root, path) if is_quoted):
            found = resolve(root, path, name)
            if found is None or ".." in name.split("/"):
                faults.append(f"{path}: {name} is not written from the root of the sources")
                continue
            faults += check_direction(root, rooms, allowed, path, name, found)
            if not here.sees_inside and found.startswith("src/") and name not in public:
                faults.append(f"{path}: includes {name}, which hosts do not see")
    return faults


def check_qt(root, qt_headers):
    """Each room includes only headers of the Qt modules that the table grants it."""
    rooms = read_rooms(root)
    module_folders = sorted(p for p in Path(qt_headers).iterdir() if p.is_dir())

    def modules_of(name):
        if "/" in name and name.startswith("Qt"): return {name.split("/")[0]}
        return {p.name for p in module_folders if (p / name).exists()}

    faults = []
    for path in source_files(root, "src", "hostkit", "apps"):
        room = room_of(rooms, path)
        for is_quoted, name in includes(root, path):
            if is_quoted or room is None: continue
            found = modules_of(name)
            if found and not found & {"Qt" + module for module in room.qt}:
                faults.append(f"{path}: includes <{name}> of {'/'.join(sorted(found))}")
    return faults


def check_public_headers(root):
    """The list is closed under inclusion, its headers exist, and every exported class is in it."""
    listed = read_public_headers(root)
    faults = []
    for name in listed:
        path = resolve(root, "src/x", name)
        if path is None:
            faults.append(f"{name}: listed in cmake/public_headers.txt, but there is no such file")
            continue
        faults += [f"{name}: is public and includes {used}, which is not"
                   for is_quoted, used in includes(root, path) if is_quoted and used not in listed]
    for path in source_files(root, "src", "hostkit"):
        name = path[4:] if path.startswith("src/") else path
        if not path.endswith(".h") or name in listed or name == GROUND: continue
        if re.search(r"\b(QB|JOINERY_QTSQL)_EXPORT\b|\bSQLET_API\b", (root / path).read_text()):
            faults.append(f"{path}: exports something, but hosts do not see the header")
    return faults


LINK = re.compile(r"\]\(([^)#\s]+)(?:#[^)]*)?\)")
CODE = re.compile(r"^```.*?^```|`[^`\n]*`", re.M | re.S)


def check_links(root, files):
    """Links between the documents lead to files."""
    faults = []
    for name in files:
        if not name.endswith(".md"): continue
        for target in LINK.findall(CODE.sub("", (root / name).read_text())):
            if "://" in target or (root / name).parent.joinpath(target).exists(): continue
            faults.append(f"{name}: links to {target}, which is not there")
    return faults


# Put together here, so that this file passes its own check. In capitals it is a word of SQL.
WORDS = re.compile(r"\b(?:[Ss]" + r"pecifications?|spec\.md|[Pp]arts? \d+\.\d+)\b")
TEXT_FILES = SOURCES + (".md", ".py", ".txt", ".cmake", ".in", ".json", ".ts", ".sql", ".yml",
                        ".svg", ".sh", ".qrc", ".golden", ".1", ".desktop", "")


def check_words(root, files):
    """No file speaks of documents that a reader of the project does not have."""
    faults = []
    for name in files:
        path = root / name
        if path.suffix not in TEXT_FILES or not path.is_file(): continue
        for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
            word = WORDS.search(line)
            if word: faults.append(f"{name}:{number}: says \"{word.group()}\"")
    return faults
