"""Copies of the working tree, each with its own build."""
import concurrent.futures
import pathlib
import resource
import shutil
import subprocess

from planted_faults.tree import ROOT, tracked_files

BUILD_TIMEOUT = 1200
STAGE_TIMEOUT = 1800
TEST_MEMORY = 4 << 30  # bytes of address space: stops faults that allocate in an endless loop


class Scratch:
    """A copy of the working tree with its own build."""

    targets = ()        # what is built before the first fault; all if empty
    environment = None  # of commands; as that of this program if None

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.build_folder = self.folder / "build/release"
        for name in tracked_files():
            if (ROOT / name).is_file():
                (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(ROOT / name, self.folder / name)

    def run(self, command, timeout, **options):
        return subprocess.run(command, cwd=self.folder, timeout=timeout, text=True, errors="replace",
                              env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)

    def configure(self, *arguments):
        # Warnings must not catch a fault: -w silences them in spite of -Werror. No optimisation, because
        # the build takes more time than the tests.
        return self.run(["cmake", "--preset", "release", "-DCMAKE_CXX_FLAGS=-w",
                         "-DCMAKE_CXX_FLAGS_RELEASE=-O0 -DNDEBUG", *arguments], BUILD_TIMEOUT)

    def build(self, targets):
        return self.run(["ninja", "-C", str(self.build_folder), *targets], BUILD_TIMEOUT)

    def ctest(self, *arguments):
        def with_ceiling():
            resource.setrlimit(resource.RLIMIT_AS, (TEST_MEMORY, TEST_MEMORY))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        return self.run(["ctest", "--test-dir", str(self.build_folder), "--no-tests=error", "-j2",
                         *arguments], STAGE_TIMEOUT, preexec_fn=with_ceiling)

    def plant(self, fault):
        path = self.folder / fault.file
        text = path.read_bytes()
        path.write_bytes(text[:fault.start] + fault.replacement + text[fault.end:])
        return text


def stop(message, output):
    raise SystemExit(f"{output[-4000:]}\nplant-faults: {message}")


def make_scratches(folder, number, kind=Scratch):
    scratches = []
    for index in range(number):
        (folder / str(index)).mkdir()
        scratches.append(kind(folder / str(index)))
    for step in (kind.configure, lambda scratch: scratch.build(kind.targets)):
        with concurrent.futures.ThreadPoolExecutor(number) as pool:
            for result in pool.map(step, scratches):
                if result.returncode:
                    stop("the source does not build without a fault", result.stdout)
    return scratches
