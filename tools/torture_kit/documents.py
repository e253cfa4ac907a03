"""The four kinds of documents as counted streams: what a file holds is a number, or it is damaged.

A text and a rich text hold the first n characters of one endless text, the other two the first n entries of one
endless list; so any loss, any repetition and any torn end shows.
"""

import functools
import re


class Damaged(Exception):
    """The bytes are no state that the document ever had."""


_PER_LINE = 12


@functools.lru_cache
def stream(length):
    """At least this many characters: "000001 000002 …", a line of twelve numbers after the other."""
    count = length // 7 + 1
    return "".join(f"{number:06}" + ("\n" if number % _PER_LINE == 0 else " ") for number in range(1, count + 1))


def text(start, end):
    return stream(1 << (end + 1).bit_length())[start:end]


def _count_text(found):
    if found != text(0, len(found)):
        same = next((i for i, (a, b) in enumerate(zip(found, text(0, len(found)))) if a != b), len(found))
        raise Damaged(f"differs from character {same} of {len(found)}: {found[max(0, same - 20):same + 30]!r}")
    return len(found)


class Kind:
    suffix = ""
    first = 0       # characters or entries that the file begins with
    most = 0        # added to it at a time
    where = (300, 300)  # a click that puts the keys into the document

    def bytes_of(self, count):
        raise NotImplementedError

    def count(self, found):
        """How much of the stream the bytes hold."""
        raise NotImplementedError

    def count_put_aside(self, found):
        """The same of what the history holds for the case of a crash."""
        return self.count(found)

    def go_to_end(self, editor):
        editor.click(*self.where)
        editor.keys("ctrl+End")

    def add(self, editor, count, amount):
        """Goes on from the count by so much, at the place where go_to_end or the last add left off."""
        editor.type(text(count, count + amount))


class Text(Kind):
    suffix, first, most = ".txt", 200_000, 60

    def bytes_of(self, count):
        return text(0, count).replace("\n", "\r\n").encode()

    def count(self, found):
        return _count_text(found.decode("ascii", "replace").replace("\r\n", "\n"))


class RichText(Kind):
    suffix, first, most = ".rtf", 30_000, 40
    _token = re.compile(r"\\([a-z]+)(-?\d+)? ?|\\'(..)|\\(.)|([{}])|[\r\n]+|([^\\{}\r\n]+)", re.S)

    def bytes_of(self, count):
        body = text(0, count).replace("\n", "\\par\r\n")
        return ("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss DejaVu Sans;}}\r\n\\f0\\fs20 " + body + "\\par\r\n}\r\n").encode()

    def count(self, found):
        return _count_text(self._plain(found.decode("latin-1")))

    def _plain(self, rtf):
        if not rtf.startswith("{\\rtf1"):
            raise Damaged(f"no rich text: {rtf[:40]!r}")
        depth, skipped_from, plain, end = 0, None, [], 0
        for token in self._token.finditer(rtf):
            word, _, _, symbol, brace, run = token.groups()
            if token.start() != end or (depth == 0 and end):
                break
            end = token.end()
            if brace:
                depth += 1 if brace == "{" else -1
                if skipped_from is not None and depth < skipped_from:
                    skipped_from = None
            elif skipped_from is not None:
                continue
            elif symbol == "*" or word in ("fonttbl", "colortbl", "stylesheet", "info"):
                skipped_from = depth
            elif word in ("par", "line"):
                plain.append("\n")
            elif run:
                plain.append(run)
        if depth != 0 or rtf[end:].strip("\r\n\0"):
            raise Damaged(f"rich text that ends at {end} of {len(rtf)}, {depth} groups open")
        return "".join(plain).removesuffix("\n")  # the last paragraph's own end


class Entries(Kind):
    """Lines between a head and a tail."""
    first, most = 400, 1
    head = tail = line = ""
    dialog = ""

    def bytes_of(self, count):
        return (self.head + "".join(map(self.entry, range(1, count + 1))) + self.tail).encode()

    def entry(self, number):
        return self.line.format(f"{number:06}")

    def count(self, found):
        count = found.count(("\n" + self.line[0]).encode())
        if found != self.bytes_of(count):
            raise Damaged(f"{count} entries in {len(found)} bytes, ending {found[-60:]!r}")
        return count

    def add(self, editor, count, amount):
        for number in range(count + 1, count + amount + 1):
            editor.keys("Insert")
            editor.until(lambda: editor.display.active_title().startswith(self.dialog), f"no \"{self.dialog}\"")
            editor.type(f"k{number:06}\tv{number:06}")
            editor.keys("Return")
            editor.await_frame()


class Ini(Entries):
    suffix = ".ini"
    head, line, tail = "[s]\r\n", "k{0}=v{0}\r\n", "\r\n"
    dialog = "Add Key/Value"
    where = (500, 250)

    def go_to_end(self, editor):
        editor.click(*self.where)
        editor.keys("Home", "Right", "Home", "Down")


class Registry(Entries):
    suffix = ".reg"
    first = 20  # each round adds some; at 500 lines opening would ask
    head, line, tail = "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\T]\r\n", '"k{0}"="v{0}"\r\n', "\r\n"
    dialog = "Add New String"
    where = (150, 400)

    def count_put_aside(self, found):
        # In a layout of its own.
        return found.count(b'"k')

    def go_to_end(self, editor):
        editor.click(*self.where)
        editor.keys("Home", "asterisk", "End", "Tab")


KINDS = (Text(), RichText(), Ini(), Registry())


def kind_of(path):
    return next(kind for kind in KINDS if path.suffix == kind.suffix)
