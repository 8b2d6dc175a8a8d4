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
MANY_OBJECTS = 20


class Coverage:
    """The profiles of the tests. They are read when a fault of their file asks for it."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.scratches = {}  # by test: where it ran
        self.objects = {}    # by file: the objects that are built from it, with or without others
        self.sources = {}    # by object
        self.by_file = {}    # see lines_run
        self.by_profile = {}  # {file: {line: count}}
        self.code = {}       # by object: the files that its code comes from
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
            self.sources.setdefault(built, file)  # it comes first, before what it includes
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
        """Returns the tests that can notice the fault; None for all tests."""
        counted, run = self.lines_run(fault.file)
        last = fault.line + (ROOT / fault.file).read_bytes()[fault.start:fault.end].count(b"\n")
        lines = set(range(fault.line, last + 1)) & counted
        if not lines and fault.function:
            above = [line for line in counted if fault.line - LINES_ABOVE <= line < fault.line]
            lines = {max(above)} if above else set()
        if lines:
            return {test for test, some in run.items() if some & lines}
        return self.tests_with(fault.file)

    def tests_with(self, file):
        """Returns the tests that run anything of a file, or of the files that include a header: for a constant or
        an initial value. None for all tests."""
        objects = self.objects_of(file)
        if file.endswith(".h") and not 0 < len(objects) <= MANY_OBJECTS:
            return None
        files = {file, *(self.sources[one] for one in objects)}
        return {test for one in files for test, some in self.lines_run(one)[1].items() if some}

    def lines_run(self, file):
        """Returns the lines that contain code, and the lines that each test runs."""
        with self.lock:
            if file not in self.by_file:
                self.by_file[file] = self.read(file)
        return self.by_file[file]

    def read(self, file):
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
            code = self.code.setdefault((scratch.folder, name), set())
            if code and file not in code or not profile.is_file():
                continue
            # Many tests run nothing of an object; their profiles of it are the same.
            key = scratch.folder, name, hashlib.sha1(profile.read_bytes()).digest()
            if key not in self.by_profile:
                note = profile.with_suffix(".gcno")
                if not note.exists():
                    note.symlink_to(self.notes_of(scratch) / f"{stem}.gcno")
                self.by_profile[key] = self.counts(profile, scratch)
                code.update(self.by_profile[key])
            found.append(self.by_profile[key].get(file, {}))
        return found

    @staticmethod
    def counts(profile, scratch):
        """Returns {file: {line: count}} for the files of the working tree."""
        shown = subprocess.run(["gcov", "--json-format", "--stdout", "--relative-only", "--source-prefix",
                                str(scratch.folder), str(profile)], capture_output=True, text=True)
        counts = {}
        for one in json.loads(shown.stdout or '{"files": []}')["files"]:
            path = scratch.build_folder / one["file"]  # absolute, or from the folder of the build
            lines = counts.setdefault(os.path.relpath(path, scratch.folder), {})
            for line in one["lines"]:
                number = line["line_number"]
                lines[number] = lines.get(number, 0) + line["count"]
        return counts
