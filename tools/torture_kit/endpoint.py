"""Floods the socket on which the editor takes paths from later launches."""

import collections
import pathlib
import random
import shutil
import socket
import struct
import subprocess
import sys
import threading
import time

from .documents import Text
from .session import TITLE, Display, Editor, Ended, Home, Stuck, wait_for

OPEN_PATHS = 3
HEADER = 12
MOST = 255
SENDERS = 8
# So many at once keep the endpoint waiting, until it loses its patience (10 s).
SILENT = 300


def packed(meaning, data, size=None, offset=HEADER):
    return struct.pack("<III", meaning, len(data) if size is None else size, offset) + data


def random_record(dice):
    """Kind of the record, its bytes, and whether the sender waits for the answer."""
    noise = dice.randbytes(dice.randint(0, MOST))
    meaning = dice.choice((0, 1, 2, 4, 0x80000003, dice.getrandbits(32)))
    kind = dice.choices(("noise", "over-long", "truncated", "another meaning", "inconsistent", "too much", "empty",
                         "several", "path"), (14, 14, 14, 14, 14, 14, 10, 5, 0.5))[0]
    if kind == "noise":
        return kind, noise
    if kind == "over-long":
        size = dice.choice((MOST + 1, 1 << 16, (1 << 31) - 1, 1 << 31, (1 << 32) - 1, dice.randint(256, (1 << 32) - 1)))
        return kind, packed(OPEN_PATHS, noise, size)
    if kind == "truncated":
        whole = packed(OPEN_PATHS, noise + b"x")
        return kind, whole[:dice.randint(0, len(whole) - 1)]
    if kind == "another meaning":
        return kind, packed(meaning if meaning != OPEN_PATHS else 0, noise)
    if kind == "inconsistent":
        return kind, packed(OPEN_PATHS, noise, offset=dice.choice((0, 11, 13, (1 << 32) - 1)))
    if kind == "too much":
        return kind, packed(OPEN_PATHS, noise) + dice.randbytes(dice.choice((1, 300, 100_000)))
    if kind == "empty":
        return kind, packed(OPEN_PATHS, dice.choice((b"", b"\0", b"   \0", b"\0" + noise[:200])))
    if kind == "several":
        return kind, packed(dice.choice((0, 7)), noise) * dice.randint(2, 20)
    # What is opened as paths: names of nothing, in bytes that are no text, broken off by a NUL, full of blanks.
    name = dice.choice((b"/no/such/\xff\xfe\x80.txt", b"/no/such\0file", b"\xc3", b"../" * 60 + b"x", b"\"/no such", b"%s%n"))
    return kind, packed(OPEN_PATHS, name + b"\0")


class Flood:
    def __init__(self, path, editor, records, seed):
        self.path, self.editor, self.left = path, editor, records
        self.seed = seed
        self.lock = threading.Lock()
        self.sent = collections.Counter()
        self.cut_off = self.unreached = self.dropped = 0
        self.over = threading.Event()

    def connect(self):
        """However busy the endpoint is: the system lets a blocking call wait for room in the queue. So a refusal means
        that nobody listens."""
        connection = socket.socket(socket.AF_UNIX)
        connection.connect(str(self.path))
        connection.settimeout(120)
        return connection

    def _take(self):
        with self.lock:
            self.left -= 1
            return self.left >= 0 and self.editor.is_alive()

    def send_many(self, number):
        dice = random.Random(f"{self.seed}/{number}")
        sent = collections.Counter()
        while self._take():
            kind, record = random_record(dice)
            try:
                connection = self.connect()
            except OSError:
                with self.lock:
                    self.unreached += 1
                continue
            try:
                with connection:
                    self.send(connection, record, dice)
            except OSError:  # turned away in the middle of what it never wanted
                with self.lock:
                    self.cut_off += 1
            sent[kind] += 1
        with self.lock:
            self.sent += sent

    @staticmethod
    def send(connection, record, dice):
        manner = dice.random()
        if manner < 0.02:  # in drops
            for start in range(0, min(len(record), 400), 40):
                connection.sendall(record[start:start + 40])
                time.sleep(0.002)
        else:
            connection.sendall(record)
        if manner > 0.9:  # stays for the answer, or until it is shown the door
            connection.shutdown(socket.SHUT_WR)
            connection.recv(1)

    def keep_silent(self):
        """Connections that say nothing, or half a record, until the editor hangs up; how many it hung up on."""
        connections = []
        for number in range(SILENT):
            connections.append(self.connect())
            if number % 2:
                connections[-1].sendall(packed(OPEN_PATHS, b"half", 100))
        dropped = 0
        for connection in connections:
            try:
                dropped += connection.recv(1) == b""
            except ConnectionError:
                dropped += 1
            except OSError:
                pass
            connection.close()
        self.dropped = dropped

    def put_away_messages(self):
        """What was taken for a path and is none is said in a message each; here nobody reads them."""
        while not self.over.is_set() and self.editor.is_alive():
            if self.editor.display.active_title() == "TME":
                self.editor.display.run("key", "Return")
            else:
                time.sleep(0.02)


def another_user_gets_in(path):
    """Whether a process of another user can connect; nothing when there is no way to be another."""
    if not shutil.which("setpriv"):
        return None
    code = "import socket, sys; socket.socket(socket.AF_UNIX).connect(sys.argv[1])"
    python = pathlib.Path("/usr/bin/python3")
    as_other = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
    program = str(python if python.exists() else sys.executable)
    if subprocess.run([*as_other, program, "-c", "pass"], capture_output=True).returncode != 0:
        return None
    done = subprocess.run([*as_other, program, "-c", code, str(path)], capture_output=True, text=True)
    return False if "PermissionError" in done.stderr else done.returncode == 0 or None


def wait_for_quiet(editor):
    """Until no message has come for some seconds: those of senders that are gone wait their turn, too."""
    quiet_since = time.monotonic()
    end = quiet_since + 900
    while time.monotonic() < quiet_since + 5:
        editor.need_alive()
        if not editor.display.active_title().startswith(TITLE):
            quiet_since = time.monotonic()
        if time.monotonic() > end:
            raise Stuck("messages do not end")
        time.sleep(0.05)


def run(root, records, display_number, seed, log):
    before = log.faults

    def check(holds, what):
        if not holds:
            display.picture(root / f"fault-endpoint-{log.fault(what)}.png")

    display = Display(display_number)
    home = Home(root / "endpoint")
    home.write_settings()
    editor = Editor(display, home)
    try:
        editor.await_window()
        path = next(home.settings.parent.glob("tme-*"))
        flood = Flood(path, editor, records, seed)
        kept_out = another_user_gets_in(path)
        check(not kept_out, "another user can connect")
        others = "not tried" if kept_out is None else "kept out" if not kept_out else "let in"
        begun = time.monotonic()
        senders = [threading.Thread(target=flood.send_many, args=(number,), daemon=True) for number in range(SENDERS)]
        senders.append(threading.Thread(target=flood.keep_silent, daemon=True))
        helper = threading.Thread(target=flood.put_away_messages, daemon=True)
        for thread in (*senders, helper):
            thread.start()
        wait_for(lambda: not any(thread.is_alive() for thread in senders), "a sender hangs", 3600, 0.2)
        seconds = time.monotonic() - begun
        check(editor.is_alive(), "the editor ended under the flood")
        check(not flood.unreached, f"{flood.unreached} senders found nobody listening")
        check(flood.dropped == SILENT, f"{SILENT - flood.dropped} of {SILENT} silent senders were not dropped")
        wait_for_quiet(editor)
        document = home.files / "after.txt"
        document.write_bytes(Text().bytes_of(100))
        check(editor.hand_over(document), "a real launch is not answered after the flood")
        editor.until(lambda: editor.document() == document.name, "a real path is not opened after the flood")
        kinds = ", ".join(f"{kind} {count}" for kind, count in sorted(flood.sent.items()))
        log.say(f"endpoint: {sum(flood.sent.values())} records in {seconds:.0f} s ({kinds}; {flood.cut_off} cut off while "
                f"sending), {flood.unreached} connections failed, {flood.dropped} silent senders dropped, another user "
                f"{others}, {log.faults - before} faults")
    except (Ended, Stuck) as trouble:
        check(False, f"endpoint: {trouble!r}; in front \"{display.active_title()}\"")
    finally:
        if "flood" in locals():
            flood.over.set()
        if editor.is_alive():
            editor.kill()
        display.close()
