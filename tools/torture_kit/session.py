"""A display, and the editor on it, driven by real keys."""

import json
import os
import pathlib
import signal
import subprocess
import tempfile
import threading
import time

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
EDITOR = pathlib.Path(os.environ.get("TME_EDITOR", TOP / "build" / "release" / "tme"))
TITLE = "Tamarind Editor"
CHANGED = " [CHANGED]"
SETTINGS_GROUP = r"SOFTWARE\Zorvan\TME"


class Ended(Exception):
    """The editor is gone."""


class Stuck(Exception):
    """What was waited for did not come; the text says what."""


def wait_for(condition, what, seconds=20.0, pause=0.03):
    """The first true answer of the condition."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise Stuck(what)
        time.sleep(pause)


class Over(Exception):
    """The torture is broken off."""


class Log:
    """What is said goes to the terminal and into a file; any thread may."""

    def __init__(self, path):
        self.faults = 0
        self._file, self._lock = open(path, "w", encoding="utf-8"), threading.Lock()

    def say(self, line):
        with self._lock:
            self._write(line)

    def fault(self, line):
        """Its number, from 1."""
        with self._lock:
            self.faults += not self._file.closed
            self._write(f"FAULT {line}")
            return self.faults

    def close(self):
        """What is said from then on is not heard: it comes from what was broken off."""
        with self._lock:
            self._file.close()

    def _write(self, line):
        if not self._file.closed:
            print(line, file=self._file, flush=True)
            print(line, flush=True)


class _Processes:
    """All that were started, so that none outlives the torture."""

    def __init__(self):
        self._started, self._over, self._lock = [], False, threading.Lock()

    def start(self, arguments, **options):
        """In a session of its own: Ctrl+C is for the torture alone."""
        with self._lock:
            if self._over:
                raise Over
            process = subprocess.Popen(arguments, start_new_session=True, **options)
            self._started = [other for other in self._started if other.returncode is None] + [process]
        return process

    def end(self):
        with self._lock:
            self._over = True
        for process in reversed(self._started):  # the editors first, their display last
            process.terminate()
            try:
                process.wait(2)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()


_processes = _Processes()
end_all = _processes.end


class Display:
    """An X server of its own with a window manager."""

    _START = """source tools/shell.sh
        trap stop_started EXIT
        trap exit TERM
        start_display "$1" 1000x700 "${@:2}" && start_window_manager "$1" && printf '%s\\n' "$DISPLAY"
        exec >&-
        wait"""

    def __init__(self, number=None):
        name = [f":{number}"] if number is not None else []
        with tempfile.TemporaryDirectory() as folder:
            self._server = _processes.start(["bash", "-c", self._START, "display", folder, "-ac", *name], cwd=TOP,
                                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
            self.name = self._server.stdout.read().strip()
        if not self.name:
            raise Stuck("no display with a window manager")
        self.environment = {**os.environ, "DISPLAY": self.name}

    def close(self):
        self._server.terminate()
        self._server.wait()

    def run(self, *arguments):
        """xdotool; its output, empty when it failed."""
        done = subprocess.run(["xdotool", *arguments], env=self.environment, text=True, capture_output=True)
        return done.stdout.strip() if done.returncode == 0 else ""

    def active_title(self):
        return self.run("getactivewindow", "getwindowname")

    def picture(self, path):
        subprocess.run(["import", "-window", "root", str(path)], env=self.environment, stderr=subprocess.DEVNULL)


class Home:
    """The folders of one user: documents, settings, data, runtime."""

    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.files = self.root / "files"
        self.data = self.root / "data"
        self.history = self.data / "TamarindEditor" / "history"
        self.settings = self.root / "config" / "TamarindEditor" / "registry.ini"
        self.runtime = self.root / "run"
        for folder in (self.files, self.data, self.settings.parent, self.root / "home"):
            folder.mkdir(parents=True, exist_ok=True)
        self.runtime.mkdir(mode=0o755, exist_ok=True)

    def environment(self, display):
        return {**display.environment, "HOME": str(self.root / "home"), "XDG_CONFIG_HOME": str(self.root / "config"),
                "XDG_DATA_HOME": str(self.data), "XDG_RUNTIME_DIR": str(self.runtime), "QT_QPA_PLATFORM": "xcb",
                "NO_AT_BRIDGE": "1", "LANG": "C.UTF-8"}

    def write_settings(self, autosave_minutes=0):
        """Maximised windows: the frame's title then names the active document."""
        values = {"AutoSave": autosave_minutes, "MDI%20Max": 1, "Start%20Editors%20Max": 1}
        lines = [f"{SETTINGS_GROUP}\\{name}={value}\n" for name, value in values.items()]
        self.settings.write_text("[HKEY_CURRENT_USER]\n" + "".join(lines))

    def records(self, folder):
        """What names contents in the history: `versions` or `aside`; a record that cannot be read raises."""
        return [json.loads(path.read_text()) | {"file": path} for path in sorted((self.history / folder).glob("*.json"))]

    def content(self, record):
        digest = record["digest"]
        return (self.history / "blobs" / digest[:2] / digest).read_bytes()

    def temporary_files(self):
        return [path for path in self.root.rglob(".tme-*")]


class Editor:
    """One run of the program."""

    running = set()

    def __init__(self, display, home, paths=()):
        self.display, self.home = display, home
        self.started = time.monotonic()
        self.log = open(home.root / "stderr.txt", "ab")
        self.process = _processes.start([str(EDITOR), *map(str, paths)], env=home.environment(display),
                                        stdout=self.log, stderr=self.log)
        self.window = ""
        Editor.running.add(self)

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.wait()

    def wait(self):
        self.process.wait()
        self.log.close()
        Editor.running.discard(self)

    def is_alive(self):
        return self.process.poll() is None

    def need_alive(self):
        if not self.is_alive():
            raise Ended

    def until(self, condition, what, seconds=20.0):
        def alive_and():
            self.need_alive()
            return condition()
        return wait_for(alive_and, what, seconds)

    def keys(self, *names):
        self.need_alive()
        self.display.run("key", "--delay", "4", *names)

    def type(self, text):
        for number, line in enumerate(text.split("\n")):
            if number:
                self.keys("Return")  # the tool has no key of its own for a line feed
            self.need_alive()
            if line:
                self.display.run("type", "--delay", "2", "--", line)
        self.need_alive()

    def click(self, x, y):
        self.need_alive()
        self.display.run("mousemove", str(x), str(y), "click", "1")

    def await_window(self):
        def find():
            found = self.display.run("search", "--onlyvisible", "--name", f"^{TITLE}")
            return found.split("\n")[0] if found else ""
        self.window = self.until(find, "the editor shows no window", 60)
        self.until(lambda: self.display.active_title().startswith(TITLE), "the editor's window is not active", 60)

    def document(self):
        """Caption of the active document, the marker for changes included; empty when there is none."""
        self.need_alive()
        title = self.display.run("getwindowname", self.window)
        if not title:  # the window is gone, and in a moment the process
            time.sleep(0.1)
            self.need_alive()
        return title[len(TITLE) + 4:-1] if title.startswith(f"{TITLE} - [") else ""

    def await_active(self, title, seconds=20.0):
        self.until(lambda: self.display.active_title() == title, f"no window \"{title}\"", seconds)

    def await_frame(self):
        self.until(lambda: self.display.active_title().startswith(TITLE), "the frame is covered")

    def show_document(self, number, caption):
        """Makes the document active that the Window menu lists under this number."""
        if self.document().removesuffix(CHANGED) != caption:
            self._choose_window(number)
            self.until(lambda: self.document().removesuffix(CHANGED) == caption, f"{caption} does not come to the front")

    def _shown_windows(self):
        return len(self.display.run("search", "--onlyvisible", "--pid", str(self.process.pid)).split())

    def _choose_window(self, number):
        """From the Window menu. Back when the editor is through with it; its caption then."""
        others = self._shown_windows()
        self.keys("alt+w")
        self.until(lambda: self._shown_windows() > others, "no Window menu")
        self.keys(str(number))
        self.keys("Escape")  # without such a number, the menu is still open
        self.until(lambda: self._shown_windows() <= others, "the Window menu stays open")
        return self._settled_caption()

    def _settled_caption(self):
        """While one document gives way to another, the title is neither's for a moment."""
        caption, since = self.document(), time.monotonic()
        while not caption or time.monotonic() < since + 0.4:
            time.sleep(0.05)
            now = self.document()
            if now != caption:
                caption, since = now, time.monotonic()
            if time.monotonic() > since + 20:
                raise Stuck("no document is active")
        return caption

    def documents(self):
        """Caption by number in the Window menu."""
        captions = {}
        if not self.document():
            return captions
        for number in range(1, 10):
            caption = self._choose_window(number)
            if caption in captions.values():  # there is no such number
                break
            captions[number] = caption
        return captions

    def hand_over(self, path):
        """A second launch; true when the running one took the path."""
        self.need_alive()
        launch = _processes.start([str(EDITOR), str(path)], env=self.home.environment(self.display),
                                  stdout=self.log, stderr=self.log)
        try:
            self.until(lambda: launch.poll() is not None, f"{path} is not taken over", 60)
        finally:
            if launch.poll() is None:
                launch.kill()  # else it would become the running one
            launch.wait()
        return launch.returncode == 0
