"""Options and output of the measuring programs."""
import argparse
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = {"panelhost": "host/panelhost", "driver": "libVelko_Modbus_RTU.so.1", "master_bare": "bench/master_bare",
            "master_driver": "bench/master_driver", "master_libmodbus": "bench/master_libmodbus"}


def parse(description):
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--samples", type=int, default=5, help="samples of each side, taken in turn (default: 5)")
    parser.add_argument("--brief", action="store_true", help="run for a few seconds, as a check that it works")
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/bench",
                        help="build folder of the preset bench (default: build/bench)")
    options = parser.parse_args()
    if options.brief:
        options.samples = 1
    if options.samples < 1:
        parser.error("--samples must be 1 or more")
    for name, place in PROGRAMS.items():
        setattr(options, name, options.build / place)
        if not (options.build / place).exists():
            raise RuntimeError(f"{options.build / place}: no such file. Build the preset bench, or change --build.")
    return options


def in_turn(samples, *measures):
    """Returns a list of samples for each measure. The measures take turns, so that a temporary load on the machine
    affects all of them."""
    rounds = [[measure() for measure in measures] for _ in range(samples)]
    return [list(column) for column in zip(*rounds)]


def report(name, title, unit, ours, peer=None, peer_name=None):
    """Prints one figure as a line of JSON."""
    def samples(values):
        return [round(value, 4) for value in values]

    line = {"id": name, "title": title, "unit": unit, "ours": samples(ours)}
    if peer is not None:
        line.update(peer=samples(peer), peer_name=peer_name)
    print(json.dumps(line), flush=True)


def finish(work):
    """Runs `work`. If it fails, prints the error and exits with 1."""
    try:
        work()
    except (RuntimeError, OSError, subprocess.TimeoutExpired) as error:
        sys.exit(f"{pathlib.Path(sys.argv[0]).name}: {error}")
