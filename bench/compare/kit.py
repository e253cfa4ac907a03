"""What the comparisons with other programs share."""

import argparse
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import time

TOP = pathlib.Path(__file__).resolve().parent.parent.parent


def arguments(description, folders):
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--tmec", default=TOP / "build" / "release" / "tmec", type=pathlib.Path,
                        help="the program to measure (default: build/release/tmec)")
    parser.add_argument("--show", action="store_true", help="name each file that is not right")
    if folders:
        parser.add_argument("folders", nargs="+", type=pathlib.Path, metavar="FOLDER", help="searched with all below")
    given = parser.parse_args()
    if not given.tmec.exists():
        sys.exit(f"{given.tmec} is not there: build it with ./run or cmake --build --preset release")
    return given


def files_below(folders, suffix):
    return sorted(path for folder in folders for path in folder.rglob("*")
                  if path.is_file() and path.suffix.lower() == suffix)


def has_peer(program, package):
    """Says so where it is missing."""
    if shutil.which(program):
        return True
    print(f"{program} is missing, so nothing is compared with it: apt-get install {package}")
    return False


def run(*command, seconds=120, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, check=False, timeout=seconds, **options)


def measure(*command):
    """Seconds from the start of a process to its end, its most memory in bytes (at least this script's), and its exit
    status. Output is dropped.
    """
    nothing = [(os.POSIX_SPAWN_OPEN, number, os.devnull, os.O_RDWR, 0) for number in (0, 1, 2)]
    start = time.perf_counter()
    process = os.posix_spawnp(str(command[0]), [str(part) for part in command], os.environ, file_actions=nothing)
    _, status, usage = os.wait4(process, 0)
    return time.perf_counter() - start, usage.ru_maxrss * 1024, os.waitstatus_to_exitcode(status)


def median_of(runs, *command):
    """Median and least seconds, most memory in bytes; ends the script where the command does not succeed."""
    measured = [measure(*command) for _ in range(runs)]
    for _, _, status in measured:
        if status != 0:
            sys.exit(f"{' '.join(map(str, command))} ends with {status}")
    times = [seconds for seconds, _, _ in measured]
    return statistics.median(times), min(times), max(memory for _, memory, _ in measured)


def decoded(data):
    """Text of a file as UTF-16 with a mark, else as UTF-8, else byte by byte."""
    for mark, encoding in ((b"\xff\xfe", "utf-16"), (b"\xfe\xff", "utf-16"), (b"\xef\xbb\xbf", "utf-8-sig")):
        if data.startswith(mark):
            return data.decode(encoding, errors="replace")
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError:
        return data.decode("latin-1")
