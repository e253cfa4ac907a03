"""Kills the editor again and again at random moments, and compares what is left with what was typed and saved."""

import collections
import hashlib
import math
import random
import threading
import time

from .documents import Damaged, kind_of, KINDS, Text
from .session import CHANGED, Display, Editor, Ended, Home, Over, Stuck, end_all, wait_for

# What was typed so long before a kill must come back.
RESCUE_SECONDS = 10
UNNAMED = "New Text Document"
AUTOSAVE_EVERY = 12


class Tally:
    """What all workers found."""

    def __init__(self, log):
        self.log, self.say = log, log.say
        self.kills = collections.Counter()
        self.lost, self.temporary, self.older, self.rescued, self.saves = 0, 0, 0, 0, 0

    def fault(self, line, lost=0):
        """Its number."""
        self.lost += lost
        return self.log.fault(line + (f" ({lost} bytes lost)" if lost else ""))

    def rounds(self):
        return sum(self.kills.values())

    def summary(self):
        phases = ", ".join(f"{phase} {count}" for phase, count in sorted(self.kills.items()))
        return (f"kill loop: {self.rounds()} rounds; killed during {phases}; {self.saves} saves and "
                f"{self.rescued} rescued documents checked; {self.log.faults} faults, {self.lost} bytes lost; "
                f"{self.older} rescues older than the file, {self.temporary} temporary files left")


class Document:
    def __init__(self, path, kind):
        self.path, self.kind = path, kind  # the path is null for a document that was never saved
        self.count = 0     # what the open document holds
        self.saved = 0     # seen in the file after a save, or known to be there
        self.must = 0      # what has to come back after the last kill; 0 for nothing beyond the file
        self.typed = []    # (moment, count) since the last kill

    def caption(self):
        return self.path.name if self.path else UNNAMED

    def has_typed(self, count):
        self.count = count
        self.typed.append((time.monotonic(), count))


class Worker(threading.Thread):
    def __init__(self, number, root, display_number, rounds, tally, seed):
        super().__init__(name=f"worker {number}", daemon=True)
        self.home = Home(root)
        self.display = Display(display_number)
        self.rounds, self.tally = rounds, tally
        self.random = random.Random(f"{seed}/{number}")
        self.phase = ""
        self.is_done = False
        self.editor = None
        self.killed_at = 0.0
        self.documents = []
        for kind in KINDS:
            path = self.home.files / f"document{kind.suffix}"
            path.write_bytes(kind.bytes_of(kind.first))
            document = Document(path, kind)
            document.count = document.saved = kind.first
            self.documents.append(document)

    def run(self):
        try:
            while number := self.next_round():
                self.round_name = f"round {number} ({self.name})"
                self.one_round(number)
        except Over:
            pass
        except Exception as error:  # a fault of the loop itself must not look like a pass
            self.fault(f"the loop broke off: {error!r}")
            raise
        finally:
            if self.editor and self.editor.is_alive():
                self.editor.kill()
            self.display.close()
            self.is_done = True

    def next_round(self):
        """The number of one that nobody has taken yet; 0 when there is none."""
        try:
            return self.rounds.pop()
        except IndexError:
            return 0

    def trace(self, what):
        """Each step, for whoever looks into a fault."""
        with open(self.home.root / "trace.txt", "a", encoding="utf-8") as file:
            print(f"{self.round_name} {time.monotonic() - self.editor.started:.2f} {what}", file=file)

    def fault(self, text, lost=0):
        number = self.tally.fault(f"{self.round_name}: {text}", lost)
        self.display.picture(self.home.root / f"fault-{number}.png")

    # One round.

    def one_round(self, number):
        autosave = number % AUTOSAVE_EVERY == 0 and not any(not document.path for document in self.documents)
        self.home.write_settings(1 if autosave else 0)
        plan = "autosave" if autosave else self.random.choices(("early", "save", "any"), (35, 25, 40))[0]
        self.phase = "start-up"
        self.killed_at = 0.0
        self.editor = Editor(self.display, self.home)
        seconds = {"early": self.random.uniform(0.05, 7), "save": 90, "autosave": self.random.uniform(58, 66),
                   "any": self.random.uniform(6, 30)}[plan]
        timer = threading.Timer(seconds, self.kill)
        timer.daemon = True
        timer.start()
        try:
            self.editor.await_window()
            self.look_at_rescued()
            self.open_all()
            self.edit(plan)
        except Ended:
            pass
        except Stuck as stuck:
            if self.editor.is_alive():
                self.fault(f"stuck during {self.phase}: {stuck}; in front \"{self.display.active_title()}\"")
        timer.cancel()
        self.kill()
        self.editor.wait()
        self.tally.kills[self.killed_during] += 1
        report = self.look_at_disk()
        self.tally.say(f"{self.round_name}: {plan}, killed during {self.killed_during} "
                       f"after {self.killed_at - self.editor.started:.2f} s; {report}")

    def kill(self):
        if self.killed_at:
            return
        self.killed_at = time.monotonic()
        self.killed_during = self.phase
        if not self.editor.is_alive():
            self.fault(f"the editor ended by itself during {self.phase}: {self.editor.process.returncode}")
            return
        self.editor.process.kill()

    def look_at_rescued(self):
        """Every document that must be back is, marked changed, and a save writes at least what must be in it."""
        self.phase = "rescue"
        captions = self.editor.documents()
        self.trace(f"rescued {captions}")
        for document in self.documents:
            if document.must and document.caption() + CHANGED not in captions.values():
                self.fault(f"{document.caption()} is not back; there are {sorted(captions.values())}",
                           document.must - document.saved)
                document.must = 0
        for number, caption in captions.items():
            if not caption.endswith(CHANGED):
                self.fault(f"{caption} came back without its marker")
            document = self.document_of(caption.removesuffix(CHANGED))
            self.editor.show_document(number, document.caption())
            if document.path:
                self.save(document)
            else:
                self.save_unnamed(document)
            self.tally.rescued += 1

    def document_of(self, caption):
        for document in self.documents:
            if document.caption() == caption:
                return document
        path = None if caption == UNNAMED else self.home.files / caption
        document = Document(path, Text() if not path else kind_of(path))
        self.documents.append(document)
        return document

    def save(self, document):
        """Ctrl+S, and what the file holds then. After a rescue that is the count; else the count is what it must be."""
        rescued = self.phase == "rescue"
        self.editor.keys("ctrl+s")
        self.editor.until(lambda: self.editor.document() == document.caption(), f"{document.caption()} is not saved")
        self.note_saved(document, rescued)

    def note_saved(self, document, rescued):
        self.tally.saves += 1
        try:
            written = document.kind.count(document.path.read_bytes())
        except Damaged as damage:
            raise Stuck(f"{document.caption()} was saved as what it never was: {damage}") from damage
        if rescued and written < document.must:
            self.fault(f"{document.caption()} came back with {written} of {document.must}", document.must - written)
        if rescued and written < document.saved:
            self.tally.older += 1
            self.tally.say(f"{self.round_name}: {document.caption()} came back with {written}, "
                           f"older than the file's {document.saved}")
        if not rescued and written != document.count:
            self.fault(f"{document.caption()}: typed up to {document.count}, saved {written}")
        self.trace(f"saved {written} of {document.caption()}")
        document.count = document.saved = written
        document.must = 0
        document.typed.clear()

    def save_unnamed(self, document):
        path = self.home.files / f"new-{time.time_ns()}.txt"
        self.editor.keys("ctrl+s")
        self.editor.await_active("Save Text File")
        self.editor.type(str(path))
        self.editor.keys("Return")
        self.editor.until(lambda: self.editor.document() == path.name, f"{path.name} is not saved")
        document.path = path
        self.note_saved(document, rescued=True)

    def open_all(self):
        self.phase = "opening"
        present = [caption.removesuffix(CHANGED) for caption in self.editor.documents().values()]
        for document in self.documents[:len(KINDS)]:
            if document.caption() in present:
                continue
            if not self.editor.hand_over(document.path):
                self.editor.need_alive()
                self.fault(f"{document.caption()} could not be handed over")
            self.trace(f"handed over {document.caption()}")
            document.count = document.saved
        self.list_documents()

    def list_documents(self):
        self.numbers = {}
        self.trace("list")
        for number, caption in self.editor.documents().items():
            self.numbers[self.document_of(caption.removesuffix(CHANGED))] = number
        if not self.numbers:
            raise Stuck("no document is listed")

    def edit(self, plan):
        self.phase = "edits"
        if plan != "autosave" and self.random.random() < 0.4:
            self.new_document()
        edits = 0
        while True:
            document = self.random.choice(list(self.numbers))
            self.editor.show_document(self.numbers[document], document.caption())
            document.kind.go_to_end(self.editor)
            amount = self.random.randint(1, document.kind.most)
            self.trace(f"adds {amount} to {document.count} of {document.caption()}, number {self.numbers[document]}")
            document.kind.add(self.editor, document.count, amount)
            document.has_typed(document.count + amount)
            edits += 1
            if not document.path or self.random.random() < 0.6:
                continue
            self.phase = "save"
            if plan == "save" and edits > 3 and self.random.random() < 0.5:
                self.editor.keys("ctrl+s")
                time.sleep(self.random.uniform(0, 0.08))
                return
            self.save(document)
            self.phase = "edits"
            time.sleep(self.random.uniform(0, 1))

    def new_document(self):
        self.editor.keys("alt+f")
        time.sleep(0.15)
        self.editor.keys("n", "x")
        self.editor.until(lambda: self.editor.document() == UNNAMED, "no new document")
        self.list_documents()

    # After the kill.

    def look_at_disk(self):
        self.look_at_history()
        states, lasting = [], self.documents[:len(KINDS)]
        for document in list(self.documents):
            on_disk = self.look_at_file(document) if document.path else 0
            due = [count for moment, count in document.typed if moment <= self.killed_at - RESCUE_SECONDS]
            wanted = max([document.must, *due])
            document.must = wanted if wanted > on_disk else 0
            document.typed.clear()
            states.append(f"{document.kind.suffix if document.path else 'new'} {on_disk}"
                          + (f" must {document.must}" if document.must else ""))
            document.saved = on_disk
            if document not in lasting and not document.must:
                self.documents.remove(document)  # may come back all the same
        left = self.home.temporary_files()
        for path in left:
            path.unlink()
        self.tally.temporary += len(left)
        if b"AutoSave" not in self.home.settings.read_bytes():
            self.fault("the settings are damaged")
        return ", ".join(states) + (f"; left {[str(path.relative_to(self.home.root)) for path in left]}" if left else "")

    def look_at_file(self, document):
        try:
            on_disk = document.kind.count(document.path.read_bytes())
        except (Damaged, OSError) as error:
            self.fault(f"{document.caption()}: {error}", document.saved)
            self.start_over(document)
            return document.saved
        if on_disk < document.saved and not any(count >= document.saved for count in self.kept_counts(document)):
            self.fault(f"{document.caption()}: {document.saved} was saved, {on_disk} is there, and the history has "
                       "nothing newer", document.saved - on_disk)
        return on_disk

    def start_over(self, document):
        """So that one fault is not found in every round from here on."""
        document.path.rename(document.path.with_suffix(f".fault-{self.tally.log.faults}"))
        document.path.write_bytes(document.kind.bytes_of(document.saved))
        for record in self.home.records("aside"):
            record["file"].unlink()

    def kept_counts(self, document):
        for record in self.home.records("versions"):
            if record["path"] == str(document.path):
                yield document.kind.count(self.home.content(record))

    def look_at_history(self):
        for folder in ("versions", "aside"):
            try:
                records = self.home.records(folder)
            except ValueError as error:
                self.fault(f"a record in {folder} cannot be read: {error}")
                continue
            for record in records:
                try:
                    content = self.home.content(record)
                except OSError as error:
                    self.fault(f"{record['file'].name} names what is not there: {error}")
                    continue
                if hashlib.blake2b(content, digest_size=32).hexdigest() != record["digest"]:
                    self.fault(f"{record['file'].name} names a damaged content")


def run(root, rounds, workers, first_display, seed, log):
    tally = Tally(log)
    left = list(range(rounds, 0, -1))
    started = []

    def wait_for_all():  # not by `join`: one that a signal interrupts takes the thread for ended
        wait_for(lambda: all(worker.is_done for worker in started), "", math.inf, 0.2)

    try:
        for number in range(workers):
            display = None if first_display is None else first_display + number
            worker = Worker(number + 1, root / f"worker{number + 1}", display, left, tally, seed)
            worker.start()
            started.append(worker)
        wait_for_all()
    except SystemExit:  # by a signal
        log.close()
        end_all()
        wait_for_all()
        raise
    if tally.rounds() != rounds:
        tally.fault(f"{tally.rounds()} of {rounds} rounds done")
    log.say(tally.summary())
