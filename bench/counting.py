"""Counts the system calls and instructions of a program with valgrind. The load on the machine hardly changes
these figures, and they need no privileges."""
import collections
import pathlib
import re
import tempfile

from simulated_line import run

# A call that waits has a second line at its end. Reading the clock is not a system call outside valgrind.
CALL = re.compile(r"^SYSCALL\[\d+,\s*(\d+)\]\(\s*\d+\) (?!\.\.\.|sys_clock_gettime|sys_gettimeofday)",
                  re.MULTILINE)
INSTRUCTIONS = re.compile(r"I\s+refs:\s+([\d,]+)")

Counts = collections.namedtuple("Counts", "calls instructions")


def counted(command):
    """Returns the system calls of the busiest thread, which is the communication thread, and the instructions in
    user space."""
    with tempfile.TemporaryDirectory() as folder:
        log = pathlib.Path(folder, "log")
        run(["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
             "--trace-syscalls=yes", f"--log-file={log}", *command])
        text = log.read_text(encoding="utf-8", errors="replace")
    instructions = INSTRUCTIONS.search(text)
    calls = collections.Counter(CALL.findall(text))
    if not instructions or not calls:
        raise RuntimeError("valgrind counted nothing")
    return Counts(max(calls.values()), int(instructions.group(1).replace(",", "")))
