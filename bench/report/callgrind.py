"""Runs a program under valgrind's callgrind and reads its counts."""
import collections
import pathlib
import subprocess
import tempfile

ALLOCATING = ("malloc", "calloc", "realloc")


class Counts:
    """All instructions, those of each function without its callees, and the calls of each function."""

    def __init__(self, text):
        self.total = 0
        self.own = collections.Counter()
        self.calls = collections.Counter()
        function = callee = ""
        after_call = False
        for line in text.splitlines():
            key, _, value = line.partition("=")
            if key == "fn":
                function = value
            elif key == "cfn":
                callee = value
            elif key == "calls":
                self.calls[callee] += int(value.split()[0])
                after_call = True  # the next line is the cost of the callee
            elif line.startswith("totals:"):
                self.total = int(line.split()[1])
            elif line[:1].isdigit():
                if not after_call:
                    self.own[function] += int(line.split()[1])
                after_call = False

    def own_of(self, name):
        """Returns the instructions of all C++ functions of this name."""
        return sum(cost for function, cost in self.own.items() if function.split("(")[0] == name)

    def allocations(self):
        return sum(self.calls[name] for name in ALLOCATING)


def count(command):
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "out"
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--instr-atstart=no", "--compress-strings=no",
             "--compress-pos=no", f"--callgrind-out-file={out}", *map(str, command)],
            capture_output=True, text=True, timeout=300)
        if run.returncode != 0:
            raise RuntimeError(f"{' '.join(map(str, command))} failed under callgrind:\n{run.stderr}")
        counts = Counts(out.read_text())
        if counts.total == 0:
            raise RuntimeError(f"callgrind counted nothing in {' '.join(map(str, command))}")
        return counts
