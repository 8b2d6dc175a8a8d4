"""Finds all faults that the rules generate, with libclang."""
import dataclasses
import multiprocessing
import os
import subprocess

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
    rules, file, flags = job
    return list(rules(file, flags).found.values())


def find_candidates(subject):
    flags = subject.compile_flags()
    os.chdir(ROOT)  # the folders in the flags are relative to it
    with multiprocessing.Pool() as pool:
        return [fault for some in pool.map(faults_of, [(subject.rules, name, flags) for name in subject.files()], 1)
                for fault in some]
