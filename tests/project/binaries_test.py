"""Checks on what was linked: `core PROGRAM [MODULE...]` and `exports LIBRARY...`."""
import re
import subprocess
import sys

# What may be visible: our own names, and what the compiler makes for them.
OURS = r"(?:QB|Tolk)::|sqlet_"
MADE_FOR_OURS = (r"(?:vtable|typeinfo(?: name)?|VTT|guard variable|reference temporary .*) for "
                 r"(?:QB|Tolk)::|(?:non-)?virtual thunk to QB::")
# Weak copies of templates and inline functions of the libraries that we use: the compiler gives
# them the visibility of those libraries. A template may show its return type first.
FOREIGN = r"(?:std::|__gnu_cxx::|Q[A-Z]\w*|q[A-Z]\w*\()"
FOREIGN_INLINE = (rf"(?:(?:void|bool|int|unsigned|long|char)[&*]* )*{FOREIGN}|"
                  rf"(?:vtable|typeinfo(?: name)?|guard variable) for {FOREIGN}")
# Marks that the linker puts into every library.
LINKER = {"__bss_start", "_edata", "_end"}



def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def needed(program):
    """The shared libraries that a program asks the loader for."""
    return re.findall(r"\(NEEDED\).*\[(.+)\]", output("readelf", "-d", program))


def faults_of_core(libraries, *modules):
    """@p modules are those of Qt that it may use beside Core, and has to."""
    allowed = tuple("libQt5" + module + "." for module in ("Core", *modules))
    faults = [f"does not link {name}so: is this the right program?" for name in allowed
              if not any(library.startswith(name) for library in libraries)]
    return faults + [f"asks for {name}" for name in libraries
                     if name.startswith("libQt") and not name.startswith(allowed)]


def exports(library):
    """(kind, name) of every symbol that a library shows."""
    lines = output("nm", "-DC", "--defined-only", library).splitlines()
    return [tuple(line.split(None, 2)[1:]) for line in lines if len(line.split(None, 2)) == 3]


def faults_of_exports(symbols):
    if not any(re.match(OURS, name) for _, name in symbols):
        return ["exports nothing of ours: is this the right library?"]
    faults = []
    for kind, name in symbols:
        if re.match(OURS, name) or re.match(MADE_FOR_OURS, name) or name in LINKER: continue
        if kind in "WVu" and re.match(FOREIGN_INLINE, name): continue
        faults.append(f"exports {kind} {name}")
    return faults


def seeded_faults_are_seen():
    assert faults_of_core(["libQt5Core.so.5", "libc.so.6"]) == []
    assert len(faults_of_core(["libQt5Core.so.5", "libQt5Gui.so.5"])) == 1
    assert len(faults_of_core(["libc.so.6"])) == 1
    assert faults_of_core(["libQt5Core.so.5", "libQt5Sql.so.5"], "Sql") == []
    assert len(faults_of_core(["libQt5Core.so.5", "libQt5Widgets.so.5"], "Sql")) == 2
    sound = [("T", "QB::f()"), ("V", "vtable for QB::A"), ("W", "std::vector<int>::size() const")]
    sound += [("W", "void std::vector<int>::_M_realloc_insert<int>(int)"), ("B", "_end"),
              ("W", "int& std::vector<int>::emplace_back<int>(int&&)")]
    assert faults_of_exports(sound) == []
    for symbol in (("T", "helper()"), ("B", "counter"), ("T", "std::swap()"), ("W", "Mine::f()"),
                   ("T", "qInitResources_icons()"), ("W", "int& helper<int>(int)")):
        assert len(faults_of_exports(sound + [symbol])) == 1, symbol
    assert len(faults_of_exports([("T", "main")])) == 1


def main(kind, *files):
    seeded_faults_are_seen()
    failed = False
    modules = files[1:] if kind == "core" else ()
    for file in files[:1] if kind == "core" else files:
        faults = (faults_of_core(needed(file), *modules) if kind == "core"
                  else faults_of_exports(exports(file)))
        for fault in faults:
            print(f"{file} {fault}")
        failed = failed or bool(faults)
    return failed


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
