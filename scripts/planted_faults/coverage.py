"""Which tests run which lines of the host: gcov's counts, one profile for each test."""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import threading

from planted_faults.tree import ROOT

LINES_ABOVE = 20  # in which the beginning of a statement is searched


class Coverage:
    """The profiles of the tests. They are read when a fault of their file asks for it."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.scratches = {}  # by test: where it ran
        self.objects = {}    # by file: the objects that contain its code
        self.by_file = {}    # by file: see read
        self.by_profile = {}
        self.lock = threading.Lock()

    def note_objects(self, scratch):
        """Reads which objects contain the code of which file, and keeps the notes that the compiler left beside
        them. Call it before the first fault is planted."""
        shown = scratch.run(["ninja", "-C", str(scratch.build_folder), "-t", "deps"], None).stdout
        for line in shown.splitlines():
            if not line.startswith(" "):
                built = line.partition(":")[0]
                continue
            file = os.path.relpath(scratch.build_folder / line.strip(), scratch.folder)
            self.objects.setdefault(file, set()).add(built)
        for note in scratch.build_folder.rglob("*.gcno"):
            copy = self.notes_of(scratch) / note.relative_to(scratch.build_folder)
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.write_bytes(note.read_bytes())

    def objects_of(self, file):
        return sorted(self.objects.get(file, []))

    def notes_of(self, scratch):
        return self.folder / "notes" / scratch.folder.name

    def profile_of(self, test, scratch):
        """The folder for the profile of a test that is about to run."""
        self.scratches[test] = scratch
        return self.folder / "profiles" / hashlib.sha1(test.encode()).hexdigest()

    def tests_of(self, fault):
        """Returns the tests that run a line of the fault; None if that cannot be said, because the line contains
        no code that runs."""
        with self.lock:
            if fault.file not in self.by_file:
                self.by_file[fault.file] = self.read(fault.file)
        counted, run = self.by_file[fault.file]
        last = fault.line + (ROOT / fault.file).read_bytes()[fault.start:fault.end].count(b"\n")
        lines = set(range(fault.line, last + 1)) & counted
        if not lines and fault.function:
            above = [line for line in counted if fault.line - LINES_ABOVE <= line < fault.line]
            lines = {max(above)} if above else set()
        if lines:
            return {test for test, some in run.items() if some & lines}
        any_line = {test for test, some in run.items() if some}
        return any_line or None

    def read(self, file):
        """Returns the lines that contain code, and the lines that each test runs."""
        counted, run = set(), {}
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for test, some in zip(self.scratches, pool.map(lambda test: self.lines_of(test, file), self.scratches)):
                for lines in some:
                    counted |= lines.keys()
                    run.setdefault(test, set()).update(line for line, count in lines.items() if count)
        return counted, run

    def lines_of(self, test, file):
        """Returns {line: count} for each object of the file that the test's programs contain."""
        scratch = self.scratches[test]
        root = pathlib.Path(f"{self.profile_of(test, scratch)}{scratch.build_folder}")
        found = []
        for name in self.objects_of(file):
            stem = name.removesuffix(".o")
            profile = root / f"{stem}.gcda"
            if not profile.is_file():
                continue
            # Many tests run nothing of an object; their profiles of it are the same.
            key = scratch.folder, name, hashlib.sha1(profile.read_bytes()).digest()
            if key not in self.by_profile:
                note = profile.with_suffix(".gcno")
                if not note.exists():
                    note.symlink_to(self.notes_of(scratch) / f"{stem}.gcno")
                self.by_profile[key] = self.counts(profile, scratch)
            found.append(self.by_profile[key].get(file, {}))
        return found

    @staticmethod
    def counts(profile, scratch):
        """Returns {file: {line: count}} for the files of the working tree."""
        shown = subprocess.run(["gcov", "--json-format", "--stdout", "--relative-only", "--source-prefix",
                                str(scratch.folder), str(profile)], capture_output=True, text=True)
        counts = {}
        for one in json.loads(shown.stdout or '{"files": []}')["files"]:
            lines = counts.setdefault(one["file"], {})
            for line in one["lines"]:
                number = line["line_number"]
                lines[number] = lines.get(number, 0) + line["count"]
        return counts
