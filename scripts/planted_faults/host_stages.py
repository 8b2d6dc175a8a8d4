"""The tests for a fault in the host: only those that run its line, the quickest first."""
import concurrent.futures
import os
import queue
import shutil

from planted_faults.coverage import Coverage
from planted_faults.scratch import Scratch, stop
from planted_faults.stages import HOST_TEST, Stage, commands_of, limit_for, pattern_for, seconds_of

# The tests of the library run almost nothing of the host.
TARGETS = ["tests/host_tests", "tests/slave_side", "host/panelhost"]
INSTRUMENTED = ["host/CMakeLists.txt", "tests/CMakeLists.txt"]
STAGE_SECONDS = [1, 4, 16]  # the tests of a stage take at most so long each; those of the last one longer


class HostScratch(Scratch):
    """A copy in which the host and its tests count the lines that they run. The library does not: the tests load
    many copies of it."""

    targets = TARGETS

    def __init__(self, folder):
        super().__init__(folder)
        for name in INSTRUMENTED:
            path = self.folder / name
            path.write_text("add_compile_options(--coverage)\n" + path.read_text())
        self.unused_profiles = self.folder / "profiles"
        self.write_profiles_to(self.unused_profiles)

    def write_profiles_to(self, folder):
        self.environment = {**os.environ, "GCOV_PREFIX": str(folder)}

    def configure(self):
        return super().configure("-DCMAKE_EXE_LINKER_FLAGS=--coverage")

    def plant(self, fault):
        # A program that finds profiles of an earlier build complains on standard error.
        shutil.rmtree(self.unused_profiles, ignore_errors=True)
        return super().plant(fault)


class HostStages:
    """Selects the tests for each fault."""

    def __init__(self, scratches, folder):
        self.coverage = Coverage(folder)
        for scratch in scratches:
            self.coverage.note_objects(scratch)
        self.targets = {}
        for name, command in commands_of(scratches[0]).items():
            if HOST_TEST.search(" ".join(command) + " "):
                self.targets[name] = [target for target in TARGETS
                                      if str(scratches[0].build_folder / target) in command]
        self.seconds = measure(scratches, sorted(self.targets), self.coverage)
        print(f"{len(self.seconds)} tests, {sum(self.seconds.values()):.0f} s", flush=True)

    def __call__(self, fault):
        tests = self.coverage.tests_of(fault)
        if tests is None:
            tests = set(self.seconds)
        if not tests:
            return [Stage([], self.coverage.objects_of(fault.file)[:1], [])]
        stages = []
        for least, most in zip([-1, *STAGE_SECONDS], [*STAGE_SECONDS, float("inf")]):
            names = sorted(name for name in tests if least < self.seconds[name] <= most)
            if names:
                targets = sorted({target for name in names for target in self.targets[name]})
                stages.append(Stage(names, targets, [
                    "-R", pattern_for(names), "--timeout", limit_for(self.seconds[name] for name in names),
                    "--repeat", "until-pass:2"]))
        return stages


def measure(scratches, tests, coverage):
    """Runs each test without a fault, one at a time in each copy. Returns their times in seconds."""
    free = queue.SimpleQueue()
    for scratch in scratches:
        free.put(scratch)

    def run(test):
        scratch = free.get()
        try:
            scratch.write_profiles_to(coverage.profile_of(test, scratch))
            return scratch.ctest("-R", pattern_for([test]), "--timeout", "300", "--repeat", "until-pass:2")
        finally:
            scratch.write_profiles_to(scratch.unused_profiles)
            free.put(scratch)
    seconds = {}
    with concurrent.futures.ThreadPoolExecutor(len(scratches)) as pool:
        for test, result in zip(tests, pool.map(run, tests)):
            if result.returncode:
                stop("a test fails without a fault", result.stdout)
            seconds.update(seconds_of(result))
    return seconds
