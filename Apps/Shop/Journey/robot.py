"""A customer for the shop: sees what a screen reader and a screenshot see, and acts with a real
mouse and keyboard, on a screen, a session bus and in a home of its own."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import threading
import time
from fnmatch import fnmatchcase

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

PATIENCE = 60.0  # seconds; longer than anything takes, and only ever waited for when it is broken
GLANCE = 0.05
WALLET_BLUE = {False: (0x53, 0x3C, 0xE6), True: (0x6D, 0x58, 0xF5)}  # of its button, light and dark


class Stuck(Exception):
    """What should have happened did not."""


class Robot:
    def __init__(self, program, output, size=(360, 640), dark=False, window_manager=False,
                 arguments=()):
        self.size, self.dark = size, dark
        self.output = pathlib.Path(output)
        self.output.mkdir(parents=True, exist_ok=True)
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="corner-coffee-"))
        self.lines, self.news = [], threading.Condition()
        self.shots = 0
        self.processes = []
        self.transcript = open(self.output / "transcript.txt", "w", encoding="utf-8")
        try:
            self._start(program, window_manager, arguments)
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    # The stage

    def _start(self, program, window_manager, arguments):
        program = pathlib.Path(program).resolve()
        environment = self._environment(program.parent / "share")
        self.errors = open(self.output / "errors.txt", "wb")
        # A number of its own: the first that is free may be taken in another network namespace.
        display = self._announced(
            ["Xvfb", f":{os.getpid() % 50000 + 100}", "-displayfd", "{fd}", "-r", "-screen", "0", "%dx%dx24" % self.size,
             "-nolisten", "tcp", "-noreset"], environment)
        environment["DISPLAY"] = ":" + display
        environment["DBUS_SESSION_BUS_ADDRESS"] = self._announced(
            ["dbus-daemon", "--session", "--nofork", "--print-address={fd}"], environment)
        os.environ.update(environment)
        if window_manager:
            self._run(["openbox"], environment)
        Atspi.init()
        self.shop = subprocess.Popen([program, *arguments], env=environment, text=True,
                                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.processes.append(self.shop)
        threading.Thread(target=self._listen, daemon=True).start()
        self.window = self.wait("the shop's window", self._find_window)
        self._xdotool("windowsize", self.window, *self.size)
        self._xdotool("windowmove", self.window, 0, 0)
        self._xdotool("windowfocus", self.window)
        self.wait("the window's size", lambda: self._geometry()[2:] == self.size)
        self.wait("the first picture", lambda: len(set(self.pixels()[self.size[1] // 2])) > 2)

    def _environment(self, share):
        settings = self.home / "config" / "gtk-4.0"
        settings.mkdir(parents=True)
        (settings / "settings.ini").write_text(
            "[Settings]\ngtk-enable-animations=0\ngtk-cursor-blink=0\n"
            "gtk-font-name=Cantarell 11\n"
            f"gtk-application-prefer-dark-theme={int(self.dark)}\n")
        # As on a screen that a window fills; the border is for the mouse to pull at.
        (settings / "gtk.css").write_text(
            "window.solid-csd { padding: 0; border: none; box-shadow: none; }\n")
        folders = {"HOME": "home", "XDG_CONFIG_HOME": "config", "XDG_CACHE_HOME": "cache",
                   "XDG_DATA_HOME": "data", "XDG_RUNTIME_DIR": "run"}
        environment = {name: value for name, value in os.environ.items()
                       if name in ("PATH", "LD_LIBRARY_PATH", "SHELL", "USER", "ASAN_OPTIONS")}
        for name, folder in folders.items():
            (self.home / folder).mkdir(mode=0o700, exist_ok=True)
            environment[name] = str(self.home / folder)
        environment.update(XDG_DATA_DIRS=f"{share}:/usr/local/share:/usr/share", LANG="C.UTF-8",
                           GDK_BACKEND="x11", G_DEBUG="fatal-criticals", GTK_A11Y="atspi",
                           G_MESSAGES_DEBUG="CornerCoffee", TMPDIR=tempfile.gettempdir())
        return environment

    def _announced(self, command, environment):
        """Starts a server and returns the address that it announces."""
        reader, writer = os.pipe()
        self._run([part.format(fd=writer) for part in command], environment, pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as announcement:
            address = announcement.readline().strip()
        if not address:
            raise Stuck(command[0] + " does not start")
        return address

    def _run(self, command, environment, **options):
        self.processes.append(subprocess.Popen(command, env=environment, stdout=self.errors,
                                               stderr=self.errors, **options))

    def close(self):
        for process in reversed(self.processes):
            process.terminate()
            process.wait()
        shutil.rmtree(self.home, ignore_errors=True)
        self.transcript.close()

    def quit(self):
        """Closes the shop's window and returns its exit code."""
        self.click("Close")
        return self.shop.wait(PATIENCE)

    # What it notices

    def tell(self, text):
        print(text, flush=True)
        print(text, file=self.transcript, flush=True)

    def _listen(self):
        for line in self.shop.stdout:
            text = re.sub(r"^(\(.*?\): )?(CornerCoffee)-(DEBUG|Message): [\d:.]+: ", "", line.rstrip())
            with self.news:
                self.lines.append(text)
                self.news.notify_all()
            print("    shop: " + text, file=self.transcript, flush=True)
        with self.news:
            self.news.notify_all()

    def wait(self, what, condition):
        """Waits until the condition holds, looking again whenever the shop says something."""
        deadline = time.monotonic() + PATIENCE
        while True:
            seen = condition()
            if seen:
                return seen
            shop = getattr(self, "shop", None)
            if shop is not None and shop.poll() is not None:
                raise Stuck(f"waiting for {what}, but the shop has ended: {shop.returncode}")
            if time.monotonic() > deadline:
                self.screenshot("stuck")
                raise Stuck(f"waited in vain for {what}")
            with self.news:
                self.news.wait(GLANCE)

    def count(self, beginning):
        """How many of the shop's lines begin so."""
        with self.news:
            return sum(line.startswith(beginning) for line in self.lines)

    def _xdotool(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], check=False, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def _find_window(self):
        found = self._xdotool("search", "--onlyvisible", "--name", "^Corner Coffee$").split()
        return found[-1] if found else None

    def _geometry(self):
        text = self._xdotool("getwindowgeometry", "--shell", self.window)
        values = dict(line.split("=") for line in text.split())
        return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def _nodes(self):
        """Everything that a screen reader finds that can be used, with the area in which it is seen."""
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            if application and application.get_name() == "corner-coffee":
                frame = application.get_child_at_index(0)
                if frame:
                    yield from self._below(frame, frame.get_extents(Atspi.CoordType.WINDOW))

    def _below(self, node, view):
        if not node.get_state_set().contains(Atspi.StateType.SENSITIVE):
            return
        if node.get_role() == Atspi.Role.SCROLL_PANE:
            view = node.get_extents(Atspi.CoordType.WINDOW)
        yield node, view
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child:
                yield from self._below(child, view)

    def find(self, name, role=None):
        """The widget of this name or pattern, by role when there are several, and its view."""
        try:
            for node, view in self._nodes():
                if fnmatchcase(node.get_name(), name) and role in (None, node.get_role_name()):
                    box = node.get_extents(Atspi.CoordType.WINDOW)
                    if box.width > 0 and box.height > 0:
                        return node, box, view
        except gi.repository.GLib.Error:
            pass  # it changed while it was read: look again
        return None

    def see(self, name, role=None):
        return self.wait(f"“{name}”", lambda: self.find(name, role))

    def is_gone(self, name):
        self.wait(f"the end of “{name}”", lambda: not self.find(name))

    # What it does

    def _at(self, x, y):
        """A point of the window's content on the screen; the window has a border around it."""
        left, top, width, height = self._geometry()
        frame = next(self._nodes())[1]
        return left + (width - frame.width) // 2 + x, top + (height - frame.height) // 2 + y

    def click(self, name, role="push button"):
        self.tell(f"  click “{name}”")

        def in_view():
            found = self.find(name, role)
            if not found:
                return None
            _, box, view = found
            middle = (box.x + box.width // 2, box.y + box.height // 2)
            if view.y <= box.y and box.y + box.height <= view.y + view.height:
                return self._at(*middle)
            below = box.y > view.y
            self._xdotool("mousemove", *self._at(view.x + view.width // 2,
                                                 view.y + view.height // 2))
            self._xdotool("click", 5 if below else 4)
            return None

        self.click_at(*self.wait(f"“{name}” to be in reach", in_view))

    def click_at(self, x, y):
        self._xdotool("mousemove", x, y, "click", 1)

    def keys(self, *names):
        self.tell("  press " + " ".join(names))
        self._xdotool("key", "--clearmodifiers", *names)

    def type(self, text):
        self.tell(f"  type “{text}”")
        self._xdotool("type", text)

    def pixels(self):
        data = subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], check=True,
                              stdout=subprocess.PIPE).stdout
        width = self.size[0]
        return [data[row * width * 3:(row + 1) * width * 3] for row in range(self.size[1])]

    def wallet_button(self):
        """A point in the wallet page's Confirm button: the first wide bar of the wallet's blue."""
        width = 100
        for y, row in enumerate(self.pixels()):
            start = row.find(bytes(WALLET_BLUE[self.dark]) * width)
            if start >= 0:
                return start // 3 + width // 2, y + 5
        return None

    def page(self):
        """Waits for the wallet's page, until it has come to rest."""
        self.see("Web page", "dialog")
        last = []

        def at_rest():
            last.append(self.find("Web page", "dialog") and self.wallet_button())
            return last[-1] if len(last) > 1 and last[-1] == last[-2] else None

        return self.wait("the wallet's page", at_rest)

    def screenshot(self, name):
        self.shots += 1
        path = self.output / f"{self.shots:02}-{name}.png"
        self._xdotool("mousemove", *self.size)

        picture = [None, self.pixels()]

        def still():
            picture[:] = [picture[1], self.pixels()]
            return picture[0] == picture[1]

        if name != "stuck":
            self.wait("a still picture", still)
        subprocess.run(["import", "-window", "root", "-strip", str(path)], check=True)
        self.tell(f"  screenshot {path}")
        return path

    def leftovers(self):
        """What the shop left in its home, the toolkit's own things aside."""
        own = ("config/gtk-4.0", "mesa_shader_cache", "dconf", "at-spi", "fontconfig",
               "dbus-1", "gvfs", "bwrapinfo.json", "openbox.log")
        return [str(path) for path in self.home.rglob("*")
                if path.is_file() and not any(part in str(path) for part in own)]
