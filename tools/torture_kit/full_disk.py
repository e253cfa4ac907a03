"""A disk that is really full, and a folder that can really not be written."""

import pathlib
import subprocess
import time

from .documents import Damaged, KINDS
from .session import CHANGED, TITLE, Display, Editor, Ended, Home, Stuck

_SIZE = 2 << 20
ADDED = 1


class Mounts:
    """Whatever was mounted goes with this object; needs to be root."""

    def __init__(self):
        self._mounted = []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for path in reversed(self._mounted):
            subprocess.run(["umount", "-l", str(path)], capture_output=True)

    def small_disk(self, path):
        path.mkdir(parents=True, exist_ok=True)
        self._mounted.append(path)
        self._mount("-t", "tmpfs", "-o", f"size={_SIZE}", "tmpfs", str(path))

    def make_read_only(self, path):
        self._mounted.append(path)
        self._mount("--bind", str(path), str(path))
        self._mount("-o", "remount,bind,ro", str(path))

    def make_writable(self, path):
        self._mount("-o", "remount,bind,rw", str(path))

    @staticmethod
    def _mount(*arguments):
        subprocess.run(["mount", *arguments], check=True, capture_output=True)


def fill(folder):
    """A file that takes all that is left."""
    ballast = folder / "ballast"
    with open(ballast, "wb", buffering=0) as file:
        for size in (1 << 16, 1 << 8, 1):
            try:
                while file.write(b"\0" * size) == size:
                    pass
            except OSError:
                continue
    return ballast


class Disk:
    def __init__(self, display, home, log):
        self.display, self.home, self.log = display, home, log
        self.failed_saves = 0

    def check(self, holds, what):
        if not holds:
            number = self.log.fault(what)
            self.display.picture(self.home.root / f"fault-{number}.png")

    def open_and_type(self, kind):
        """A document with one addition that was not saved."""
        path = self.home.files / f"document{kind.suffix}"
        path.write_bytes(kind.bytes_of(kind.first))
        editor = Editor(self.display, self.home, [path])
        editor.await_window()
        editor.until(lambda: editor.document() == path.name, f"{path.name} is not open")
        kind.go_to_end(editor)
        kind.add(editor, kind.first, ADDED)
        editor.until(lambda: editor.document() == path.name + CHANGED, f"{path.name} is not changed")
        return editor, path

    def save_in_vain(self, editor, path, why):
        """The message comes, and everything stays as it was."""
        before = path.read_bytes()
        editor.keys("ctrl+s")
        # The message has the frame's title without a document's.
        editor.until(lambda: self.display.active_title() == TITLE, f"no message that {path.name} was not saved: {why}")
        self.display.picture(self.home.root / f"{why.replace(' ', '-')}{path.suffix}.png")
        editor.keys("Return")
        editor.until(lambda: self.display.active_title() != TITLE, "the message stays")
        self.failed_saves += 1
        self.check(path.read_bytes() == before, f"{path.name} was touched: {why}")
        self.check(editor.document() == path.name + CHANGED, f"{path.name} is not marked changed any more: {why}")
        left = list(path.parent.glob(".tme-*"))
        self.check(not left, f"{left} was left: {why}")

    def save(self, editor, path, kind, count, when):
        editor.keys("ctrl+s")
        editor.until(lambda: editor.document() == path.name, f"{path.name} is not saved: {when}")
        self.check(path.read_bytes() and kind.count(path.read_bytes()) == count, f"{path.name} is not whole: {when}")

    def full_disk(self, kind):
        """The document's own disk."""
        editor, path = self.open_and_type(kind)
        ballast = fill(self.home.files)
        self.save_in_vain(editor, path, "disk full")
        kind.go_to_end(editor)
        kind.add(editor, kind.first + ADDED, ADDED)
        self.save_in_vain(editor, path, "disk full again")
        ballast.unlink()
        self.save(editor, path, kind, kind.first + 2 * ADDED, "with room again")
        editor.kill()

    def full_history(self, kind):
        """The disk of history and rescue: a save goes ahead without them, and both go on when there is room."""
        editor, path = self.open_and_type(kind)
        ballast = fill(self.home.data)
        time.sleep(8)  # past the moment when the content would be put aside
        self.save(editor, path, kind, kind.first + ADDED, "the history's disk is full")
        ballast.unlink()
        kind.go_to_end(editor)
        kind.add(editor, kind.first + ADDED, ADDED)
        editor.until(lambda: self.home.records("aside"), "nothing is put aside with room again", 60)
        editor.kill()
        aside = kind.count_put_aside(self.home.content(self.home.records("aside")[-1]))
        self.check(aside == kind.first + 2 * ADDED, f"{aside} put aside with room again")
        for record in self.home.records("aside"):
            record["file"].unlink()

    def read_only(self, kind, mounts):
        editor, path = self.open_and_type(kind)
        mounts.make_read_only(self.home.files)
        self.save_in_vain(editor, path, "folder read-only")
        mounts.make_writable(self.home.files)
        self.save(editor, path, kind, kind.first + ADDED, "with a folder that can be written again")
        editor.kill()


def run(root, display_number, log):
    display = Display(display_number)
    before, failed_saves = log.faults, 0
    try:
        for number, kind in enumerate(KINDS):
            with Mounts() as mounts:
                folder = pathlib.Path(root) / f"disk{number + 1}"
                try:
                    mounts.small_disk(folder / "files")
                    mounts.small_disk(folder / "data")
                except (OSError, subprocess.CalledProcessError) as error:
                    if number == 0:
                        log.say("full disk: left out, since nothing can be mounted here")
                        return
                    log.fault(f"{kind.suffix}: no disk any more: {error}")
                    continue
                home = Home(folder)
                home.write_settings()
                disk = Disk(display, home, log)
                for part in (disk.full_disk, disk.full_history, lambda kind: disk.read_only(kind, mounts)):
                    try:
                        part(kind)
                    except (Ended, Stuck, Damaged, OSError, subprocess.CalledProcessError) as trouble:
                        disk.check(False, f"{kind.suffix}: {trouble!r}; in front \"{display.active_title()}\"")
                    finally:
                        for editor in list(Editor.running):
                            editor.kill()
                failed_saves += disk.failed_saves
    finally:
        display.close()
    log.say(f"full disk: {failed_saves} saves failed as they must on {len(KINDS)} kinds of documents, "
            f"{log.faults - before} faults")
