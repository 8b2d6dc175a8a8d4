"""Figures measured by Google Benchmark, which takes the samples of all figures in turn."""
import collections
import json
import re
import subprocess

from report.row import Row

TITLES = {
    "exchange": "one exchange",
    "get-alone": "GetRegisterData, alone",
    "get-beside-loop": "GetRegisterData beside the loop",
    "loop-alone": "the loop without readers",
    "rebuild": "rebuild of the list",
    "loop-held-up-by-rebuild": "longest exchange while the list is rebuilt",
    "queue-1024-writes": "1,024 writes queued",
    "carry-out-1024-writes": "1,024 writes executed",
    "write-bits-in-one-call": "write of bits in one call",
    "read-once-65536-pieces": "one-shot read of 65,536 registers, maxRegs 1",
}


def parameters_of(name):
    """"get/words:1/threads:2" -> {"words": "1", "threads": "2"}"""
    return dict(part.split(":") for part in name.split("/")[1:] if ":" in part)


def title_of(name):
    parameters = parameters_of(name)
    far = parameters.pop("far", None)
    parts = [f"{int(value):,} {key[:-1] if value == '1' else key}" for key, value in parameters.items()]
    parts += [] if far is None else ["far apart" if far == "1" else "merged"]
    return ", ".join([TITLES[name.split("/")[0]], *parts]).replace("thread", "reader")


def place_of(name):
    """Returns the sort key for the table; the benchmarks run in any order."""
    numbers = [int(value) for value in parameters_of(name).values()]
    return list(TITLES).index(name.split("/")[0]), numbers


def run_benchmark(program, samples, seconds):
    run = subprocess.run(
        [program, f"--benchmark_repetitions={samples}", f"--benchmark_min_time={seconds}",
         "--benchmark_enable_random_interleaving=true", "--benchmark_format=json"],
        stdout=subprocess.PIPE, text=True, check=True, timeout=900)
    return [one for one in json.loads(run.stdout)["benchmarks"] if one["run_type"] == "iteration"]


def timed_rows(program, samples, seconds):
    times, loop_rates, units = collections.defaultdict(list), collections.defaultdict(list), {}
    for one in run_benchmark(program, samples, seconds):
        name = re.sub("/(real_time|manual_time|iterations:[0-9]+)", "", one["run_name"])
        # The reported time is divided by the number of threads; a reader waits for one of its own calls.
        times[name].append(one["real_time"] * one["threads"])
        units[name] = one["time_unit"]
        if "loop" in one:
            loop_rates[name].append(one["loop"])
    alone = [1e9 / time for time in times["loop-alone"]]
    for name, samples_of in sorted(times.items(), key=lambda item: place_of(item[0])):
        peer = []
        if name.startswith("get-beside-loop"):
            peer = times[f"get-alone/words:{parameters_of(name)['words']}"]
        yield Row(name.replace("/", "-").replace(":", "-"), title_of(name), units[name],
                  samples_of, peer, "alone" if peer else "")
    for name, rates in sorted(loop_rates.items(), key=lambda item: place_of(item[0])):
        yield Row(name.replace("/", "-").replace(":", "-") + "-loop",
                  f"the loop beside {title_of(name).replace(' beside the loop', '')}",
                  "exchanges/s", rates, alone, "loop alone")
