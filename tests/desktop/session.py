"""The program among stand-ins for what a desktop offers. The tests that use this take the folder of the
programs as their first argument and run on a display and a session bus of their own (xvfb-run,
dbus-run-session)."""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import dbus
import dbus.mainloop.glib
from gi.repository import GLib

BIN = pathlib.Path(sys.argv.pop(1)).resolve()
TOVI = "app.ardeno.Tovi"
WATCHER = "org.kde.StatusNotifierWatcher"
MOCK = "org.freedesktop.DBus.Mock"
ACCESSIBLE = "org.a11y.atspi.Accessible"
REGISTRY = "org.a11y.atspi.Registry"
FOCUSED = 1 << 12
SHOWING = 1 << 25
PROPERTIES = "org.freedesktop.DBus.Properties"
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)


class Desktop(unittest.TestCase):
    def setUp(self):
        self.bus = dbus.SessionBus()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.files = self.folder / "files"
        self.calls = []
        self.bus.add_signal_receiver(lambda name, args: self.calls.append((str(name), args)),
                                     "MethodCalled", MOCK)
        for name in ("data", "config", "cache", "run", "bin"):
            (self.folder / name).mkdir(mode=0o700)
        for name in ("DATA", "CONFIG", "CACHE"):
            os.environ[f"XDG_{name}_HOME"] = str(self.folder / name.lower())
        os.environ["XDG_RUNTIME_DIR"] = str(self.folder / "run")
        os.environ["HOME"] = str(self.folder)

    def until(self, condition, seconds=30):
        """The condition's value once it holds; it is looked at after every event of the bus and now
        and then."""
        late = []
        timers = [GLib.timeout_add(seconds * 1000, lambda: late.append(True) or True),
                  GLib.timeout_add(50, lambda: True)]
        try:
            while not (value := condition()):
                self.assertFalse(late, "nothing happened; calls: %s" % self.calls[-5:])
                GLib.MainContext.default().iteration(True)
            return value
        finally:
            for timer in timers:
                GLib.source_remove(timer)

    def called(self, method):
        return next((args for name, args in self.calls if name == method), None)

    def stand_in(self, name, path, methods, properties=None, interface=None, template=None):
        """A service with methods (name, arguments, answer, code of the answer), or one of a template."""
        interface = interface or name
        kind = ("--template", template) if template else (name, path, interface)
        server = subprocess.Popen([sys.executable, "-m", "dbusmock", *kind],
                                  stdout=subprocess.DEVNULL)
        self.addCleanup(server.wait)
        self.addCleanup(server.terminate)
        self.until(lambda: self.bus.name_has_owner(name))
        mock = dbus.Interface(self.bus.get_object(name, path), MOCK)
        mock.AddMethods(interface, methods)
        mock.AddProperties(interface, dbus.Dictionary(properties or {}, signature="sv"))
        mock.server = server
        return mock

    def fake_opener(self, end):
        """The file that an xdg-open in PATH notes what it opens in."""
        opener = self.folder / "bin/xdg-open"
        opener.write_text(f'#!/bin/sh\necho "$1" >"{self.folder}/opened"\n{end}\n')
        opener.chmod(0o700)
        return self.folder / "opened"

    def index(self, *names, dated=False):
        """Connects a folder of these files; with `dated` the first is the newest."""
        for age, name in enumerate(names):
            (self.files / name).parent.mkdir(parents=True, exist_ok=True)
            (self.files / name).write_text(name)
            if dated:
                os.utime(self.files / name, (1_700_000_000 - age, 1_700_000_000 - age))
        subprocess.run([BIN / "tovictl", "index", self.files], check=True, capture_output=True)
        preferences = self.folder / "data/Ardeno/preferences.json"
        values = json.loads(preferences.read_text())
        preferences.write_text(json.dumps({**values, "homeAccessOffered": True}))  # no dialog first

    def start(self, *arguments, **variables):
        environment = {**os.environ, **variables, "QT_QPA_PLATFORM": "xcb", "QT_QUICK_BACKEND": "software",
                       "ASAN_OPTIONS": "detect_leaks=0", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                       "PATH": f"{self.folder}/bin:{os.environ['PATH']}"}
        log = open(self.folder / "log", "wb")
        self.program = subprocess.Popen([BIN / "tovi", *arguments], env=environment, stderr=log)
        self.addCleanup(self.end, log)
        self.until(lambda: self.bus.name_has_owner(TOVI))

    def end(self, log):
        self.program.kill()
        self.program.wait()
        log.close()
        self.until(lambda: not self.bus.name_has_owner(TOVI))
        told = (self.folder / "log").read_text()
        for word in ("qrc:", "TypeError", "ReferenceError", "ERROR: ", "runtime error"):
            self.assertNotIn(word, told)

    def ended(self):
        self.until(lambda: self.program.poll() is not None)
        self.assertEqual(self.program.returncode, 0)

    def has_window(self, name="^Tovi — "):
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name],
                              capture_output=True, text=True).stdout.split()

    def enlarge(self):
        """So that nothing of the screen lies outside the window, where it is not told."""
        subprocess.run(["xdotool", "windowsize", self.until(self.has_window)[0], "1180", "3000"], check=True)

    def key(self, key):
        self.xdotool("key", key)

    def type(self, text):
        self.xdotool("type", text)

    def xdotool(self, *action):
        window = self.until(self.has_window)[0]
        subprocess.run(["xdotool", "windowfocus", "--sync", window, *action], check=True)

    def told(self):
        """Everything that assistive technology is told of what is shown: (role, name, description, object).
        The innermost of what has the keyboard is `focused`."""
        if not hasattr(self, "accessibility"):
            address = self.bus.get_object("org.a11y.Bus", "/org/a11y/bus").GetAddress(
                dbus_interface="org.a11y.Bus")
            self.accessibility = dbus.connection.Connection(address)
            self.accessibility.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                             "org.freedesktop.DBus", "Hello", "", [])
        found = []
        self.focused = ("", "", "", None)

        def walk(name, path):
            for child, at in self.ask(name, path, "GetChildren"):
                try:
                    states = self.ask(child, at, "GetState")[0]
                    if name != REGISTRY and not states & SHOWING:
                        continue
                    properties = [str(self.ask(child, at, "Get", ACCESSIBLE, key, on=PROPERTIES))
                                  for key in ("Name", "Description")]
                    found.append((str(self.ask(child, at, "GetRoleName")), *properties, (child, at)))
                    if states & FOCUSED:
                        self.focused = found[-1]
                    walk(child, at)
                except dbus.DBusException as gone:  # meanwhile
                    self.assertRegex(gone.get_dbus_name(), "Unknown(Object|Interface)$")

        walk(REGISTRY, "/org/a11y/atspi/accessible/root")
        return found

    def ask(self, name, path, method, *values, on=ACCESSIBLE):
        return self.accessibility.call_blocking(name, path, on, method, "s" * len(values), values)

    def is_told(self, text):
        return any(text in name or text in description for _, name, description, _ in self.told())
