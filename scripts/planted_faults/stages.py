"""The tests, in the order that catches faults soonest."""
import dataclasses
import json
import os
import re
import subprocess

from planted_faults.scratch import stop

# Tests of the host run in real time and link the whole host, so they run after the others.
HOST_TEST = re.compile(r"/(host_tests|slave_side) |panelhost_test\.py ")
QUICK_SECONDS = 5    # longer tests also run later
LEAST_TIMEOUT = 20   # seconds per test


@dataclasses.dataclass
class Stage:
    names: list
    targets: list    # build targets; all if empty
    arguments: list

    def run(self, scratch):
        """Returns "", or the first failure."""
        built = scratch.build(self.targets)
        if "Error running test executable" in built.stdout:
            return "listing the tests"
        if built.returncode:
            raise DoesNotCompile
        if not self.names:
            return ""
        result = scratch.ctest("--stop-on-failure", *self.arguments)
        if result.returncode == 0:
            run = re.search(r"tests failed out of (\d+)", result.stdout)
            return "" if run and int(run[1]) == len(self.names) else "listing the tests"
        failed = re.findall(r"^\s+\d+ - (.+) \((.+)\)$", result.stdout, re.MULTILINE)
        if not failed:
            stop("ctest failed, but no test failed", result.stdout)
        return "{} ({})".format(*failed[0])


class DoesNotCompile(Exception):
    pass


def commands_of(scratch):
    """Returns {name of a test: its command}."""
    shown = json.loads(scratch.ctest("--show-only=json-v1").stdout)
    return {one["name"]: one["command"] for one in shown["tests"] if "command" in one}


def seconds_of(result):
    """Returns {name of a test: its time}."""
    return {name: float(time) for name, time in
            re.findall(r"Test +#\d+: (\S+) \.+ +Passed +([\d.]+) sec", result.stdout)}


def pattern_for(names):
    return "^(" + "|".join(re.sub(r"\W", ".", name) for name in names) + ")$"


def limit_for(seconds):
    return str(max(LEAST_TIMEOUT, int(4 * max(seconds)) + 1))


def make_stages(scratch):
    """Runs all tests without a fault and divides them into quick tests and the others."""
    result = scratch.ctest("--timeout", "300", "--repeat", "until-pass:2")
    if result.returncode:
        stop("tests fail without a fault", result.stdout)
    seconds, commands = seconds_of(result), commands_of(scratch)
    late = {name for name, command in commands.items()
            if HOST_TEST.search(" ".join(command) + " ") or seconds[name] > QUICK_SECONDS}
    soon = sorted(set(commands) - late)
    programs = {os.path.relpath(commands[name][0], scratch.build_folder) for name in soon}
    pattern = pattern_for(sorted(late))

    def limit(names):
        return limit_for(seconds[name] for name in names)
    # A test in real time may fail once on a busy machine; with a fault it fails twice.
    stages = [Stage(soon, sorted(programs), ["-E", pattern, "--timeout", limit(soon)]),
              Stage(sorted(late), [], ["-R", pattern, "--timeout", limit(late), "--repeat", "until-pass:2"])]
    for stage in stages:
        print(f"{len(stage.names)} tests, {sum(seconds[name] for name in stage.names):.0f} s, "
              f"at most {stage.arguments[3]} s each", flush=True)
    return stages


def try_fault(fault, scratches, stages_of):
    """Returns whether the fault was caught, and by what or why not; None if it does not compile. `stages_of`
    returns the stages for a fault; if no test can notice it, a stage without tests."""
    scratch = scratches.get()
    text = scratch.plant(fault)
    try:
        stages = stages_of(fault)
        for stage in stages:
            caught_by = stage.run(scratch)
            if caught_by:
                return True, caught_by
        tests = sum(len(stage.names) for stage in stages)
        return False, f"{tests} tests passed" if tests else "no test runs this line"
    except DoesNotCompile:
        return None
    except subprocess.TimeoutExpired as error:
        if error.cmd[0] != "ctest":
            raise
        return True, "the timeout of all tests"
    finally:
        (scratch.folder / fault.file).write_bytes(text)
        scratches.put(scratch)
