"""The diagram as a screen reader sees it: over AT-SPI, from another process, on a screen of its own.

Skips (77) with a line where AT-SPI, Xvfb or Python's dbus are not installed.
"""

import contextlib
import os
import shutil
import subprocess
import sys
import tempfile
import time

LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
SYSTEM_PYTHON = "/usr/bin/python3"
A11Y = "org.a11y.atspi."
CHECKED, SELECTED = 4, 23  # bits of AtspiStateType


def skip(what):
    print(f"skipped: {what} is not installed")
    sys.exit(77)


def start_screen_and_bus():
    for tool in ("Xvfb", "dbus-run-session", LAUNCHER, SYSTEM_PYTHON):
        if not shutil.which(tool):
            skip(tool)
    if subprocess.run([SYSTEM_PYTHON, "-c", "import dbus"], capture_output=True).returncode:
        skip("Python's dbus")
    with tempfile.TemporaryDirectory() as runtime, x_screen() as display:
        os.chmod(runtime, 0o700)
        environment = dict(os.environ, XDG_RUNTIME_DIR=runtime, DISPLAY=display,
                           QT_QPA_PLATFORM="xcb")
        environment.pop("WAYLAND_DISPLAY", None)
        return subprocess.run(["dbus-run-session", "--", SYSTEM_PYTHON, "-B", __file__, "inside"],
                              env=environment, timeout=120).returncode


@contextlib.contextmanager
def x_screen():
    """The name of a display that Xvfb found free itself. It keeps the root window's properties when
    the last client leaves: one of them is the address of the accessibility bus.
    """
    read, write = os.pipe()
    with open(read) as number, subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24",
             "-nolisten", "tcp", "-noreset"], pass_fds=[write], stderr=subprocess.DEVNULL) as server:
        os.close(write)
        try:
            yield ":" + number.readline().strip()
        finally:
            server.terminate()


class Node:
    def __init__(self, bus, name, path):
        self.bus, self.name, self.path = bus, name, path
        self.proxy = bus.get_object(name, path)

    def call(self, interface, method, *arguments):
        return self.proxy.get_dbus_method(method, A11Y + interface)(*arguments)

    def children(self):
        return [Node(self.bus, *child) for child in self.call("Accessible", "GetChildren")]

    def role(self):
        return str(self.call("Accessible", "GetRoleName"))

    def title(self):
        return str(self.proxy.Get(A11Y + "Accessible", "Name",
                                  dbus_interface="org.freedesktop.DBus.Properties"))

    def has(self, state):
        return bool(int(self.call("Accessible", "GetState")[0]) >> state & 1)

    def act(self, action):
        names = [str(entry[0]) for entry in self.call("Action", "GetActions")]
        self.call("Action", "DoAction", names.index(action))

    def extents(self):
        return tuple(int(value) for value in self.call("Component", "GetExtents", 0))

    def first(self, role):
        """Depth first; None if there is none."""
        if self.role() == role:
            return self
        return next(filter(None, (child.first(role) for child in self.children())), None)


def wait_for(what, condition):
    end = time.monotonic() + 30
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.1)  # another process; nothing here tells when it is ready
    raise AssertionError("waited in vain for " + what)


def canvas_of(bus):
    def look():
        root = Node(bus, A11Y + "Registry", "/org/a11y/atspi/accessible/root")
        return next(filter(None, (app.first("layered pane") for app in root.children())), None)
    return wait_for("the canvas", look)


def check(canvas):
    children = canvas.children()
    items = [child for child in children if child.role() == "panel"]
    links = [child for child in children if child.role() == "push button"]
    assert canvas.title() == "Diagram", canvas.title()
    assert len(items) == 200 and len(links) == 300, (len(items), len(links))
    assert items[0].title() == "customer_0", items[0].title()
    assert " JOIN: " in links[0].title(), links[0].title()
    assert items[0].extents()[2:] == (200, 237), items[0].extents()

    row = items[0].children()[1]
    assert (row.role(), row.title()) == ("check box", "id")
    before = row.has(CHECKED)
    row.act("Toggle")
    wait_for("the tick", lambda: row.has(CHECKED) != before)
    items[1].act("Select")
    wait_for("the selection", lambda: items[1].has(SELECTED))
    assert not items[0].has(SELECTED)


def inside():
    import dbus
    # The launcher writes the address on the root window before it answers. Qt's bridge must find it
    # there: over the session bus it comes too late for a bridge made when the service is up already.
    address = dbus.SessionBus().get_object("org.a11y.Bus", "/org/a11y/bus").GetAddress(
        dbus_interface="org.a11y.Bus")
    desk = subprocess.Popen([os.environ["JOINERY_DESK"], "--canvas-demo"])
    try:
        check(canvas_of(dbus.bus.BusConnection(address)))
        print("seen from outside: 200 items, 300 links, a tick, a selection")
    finally:
        desk.terminate()
        desk.wait()


if __name__ == "__main__":
    sys.exit(inside() if "inside" in sys.argv else start_screen_and_bus())
