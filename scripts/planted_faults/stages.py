"""The tests, in the order in which they catch faults soonest."""
import dataclasses
import json
import os
import re
import subprocess

from planted_faults.scratch import stop

# Tests of the host run on real time and link the whole host, so they come after the others.
HOST_TEST = re.compile(r"/host_tests |panelhost_test\.py ")
QUICK_SECONDS = 5    # a test that takes longer comes later as well
LEAST_TIMEOUT = 20   # seconds for one test


@dataclasses.dataclass
class Stage:
    names: list
    targets: list    # what to build for it; all when empty
    arguments: list

    def run(self, scratch):
        """"", or what failed first."""
        built = scratch.build(self.targets)
        if "Error running test executable" in built.stdout:
            return "the listing of the tests"
        if built.returncode:
            raise DoesNotCompile
        result = scratch.ctest("--stop-on-failure", *self.arguments)
        if result.returncode == 0:
            return ""
        failed = re.findall(r"^\s+\d+ - (.+) \((.+)\)$", result.stdout, re.MULTILINE)
        if not failed:
            stop("ctest failed, though no test did", result.stdout)
        return "{} ({})".format(*failed[0])


class DoesNotCompile(Exception):
    pass


def make_stages(scratch):
    """Runs all tests without a fault and parts them: those that are soon done, and the others."""
    result = scratch.ctest("--timeout", "300", "--repeat", "until-pass:2")
    if result.returncode:
        stop("tests fail without a fault", result.stdout)
    seconds = {name: float(time) for name, time in
               re.findall(r"Test +#\d+: (\S+) \.+ +Passed +([\d.]+) sec", result.stdout)}
    shown = json.loads(scratch.ctest("--show-only=json-v1").stdout)
    commands = {one["name"]: one["command"] for one in shown["tests"]}
    late = {name for name, command in commands.items()
            if HOST_TEST.search(" ".join(command) + " ") or seconds[name] > QUICK_SECONDS}
    soon = sorted(set(commands) - late)
    programs = {os.path.relpath(commands[name][0], scratch.build_folder) for name in soon}
    pattern = "^(" + "|".join(re.sub(r"\W", ".", name) for name in sorted(late)) + ")$"

    def limit(names):
        return str(max(LEAST_TIMEOUT, int(4 * max(seconds[name] for name in names)) + 1))
    # A test on real time may fail on a busy machine; a fault fails twice.
    stages = [Stage(soon, sorted(programs), ["-E", pattern, "--timeout", limit(soon)]),
              Stage(sorted(late), [], ["-R", pattern, "--timeout", limit(late), "--repeat", "until-pass:2"])]
    for stage in stages:
        print(f"{len(stage.names)} tests, {sum(seconds[name] for name in stage.names):.0f} s, "
              f"{stage.arguments[3]} s for each at the most", flush=True)
    return stages


def try_fault(fault, scratches, stages):
    """What caught the fault, "" when nothing did, None when it does not compile."""
    scratch = scratches.get()
    text = scratch.plant(fault)
    try:
        for stage in stages:
            caught_by = stage.run(scratch)
            if caught_by:
                return caught_by
        return ""
    except DoesNotCompile:
        return None
    except subprocess.TimeoutExpired as error:
        if error.cmd[0] != "ctest":
            raise
        return "the time-out of all tests"
    finally:
        (scratch.folder / fault.file).write_bytes(text)
        scratches.put(scratch)
