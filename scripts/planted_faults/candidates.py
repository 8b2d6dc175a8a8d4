"""Finds all faults that the rules generate, with libclang."""
import dataclasses
import multiprocessing
import os
import subprocess

from planted_faults.finder import parse
from planted_faults.host_rules import HostRules
from planted_faults.library_rules import LibraryRules
from planted_faults.tree import ROOT, tracked_files


@dataclasses.dataclass(frozen=True)
class Subject:
    """What faults are planted in."""
    name: str
    sources: list   # folders and files
    rules: type     # a Finder
    flags: list     # of the compiler
    packages: list  # of pkg-config

    def files(self):
        return [name for name in tracked_files(*self.sources) if name.endswith((".cpp", ".h"))]

    def compile_flags(self):
        packages = subprocess.run(["pkg-config", "--cflags", *self.packages], check=True, capture_output=True,
                                  text=True)
        return ["-x", "c++", "-I.", "-Iinclude", "-fPIC", *self.flags, *packages.stdout.split()]


LIBRARY = Subject(
    "library", ["driver", "bytes", "lists", "store", "frames", "exchange", "include/velko_modbus_rtu.h"],
    LibraryRules, ["-std=c++11"], ["Qt5Core"])

# The texts are defined by CMake.
HOST = Subject(
    "host", ["host"], HostRules,
    ["-std=c++17", *(f'-D{name}=""' for name in ("PROJECT_VERSION", "DRIVER_NAME", "LIBRARIES_FROM_PROGRAMS"))],
    ["Qt5Core", "Qt5SerialPort", "libmodbus", "libpcap"])

SUBJECTS = [LIBRARY, HOST]


def faults_of(job):
    rules, files, flags = job
    unit = parse(files[0], flags)
    return [fault for file in files for fault in rules(unit, file).found.values()]


def read_together(files):
    """Puts NAME.h behind NAME.cpp, which includes it: what takes the time is what both include."""
    sources = [[name] for name in files if name.endswith(".cpp")]
    for source in sources:
        header = source[0].removesuffix(".cpp") + ".h"
        if header in files:
            source.append(header)
    taken = {name for source in sources for name in source}
    return sources + [[name] for name in files if name not in taken]


def find_candidates(subject):
    flags = subject.compile_flags()
    os.chdir(ROOT)  # the folders in the flags are relative to it
    jobs = [(subject.rules, files, flags) for files in read_together(subject.files())]
    with multiprocessing.Pool() as pool:
        found = [fault for some in pool.map(faults_of, jobs, 1) for fault in some]
    return sorted(found, key=lambda fault: fault.file)  # a seed draws the same from any order of the jobs
