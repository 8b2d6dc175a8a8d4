"""Compares the figures with their limits and with the last reviewed counts."""
import json
import pathlib
import tomllib

FOLDER = pathlib.Path(__file__).resolve().parent.parent
LIMITS = FOLDER / "limits.toml"
STORED = FOLDER / "stored_counts.json"
COUNTED_UNITS = ("instructions", "allocations", "system calls")
TOLERATED = 1.10


def limit_problems(row, limit):
    value, ratio = row.our_median(), row.ratio()
    if "at_most" in limit and value > limit["at_most"]:
        yield f"{value:g}, more than the {limit['at_most']:g} allowed"
    if "at_least" in limit and value < limit["at_least"]:
        yield f"{value:g}, less than the {limit['at_least']:g} required"
    if "ratio_at_most" in limit and (ratio is None or ratio > limit["ratio_at_most"]):
        yield f"{ratio or 0:.3g} times the peer's, more than the {limit['ratio_at_most']:g} allowed"


def stored_problems(row, stored):
    value = row.our_median()
    if row.unit not in COUNTED_UNITS:
        return
    if row.id not in stored:
        yield f"{value:g} {row.unit}, no stored count. Store it with scripts/bench --store."
    elif value > TOLERATED * stored[row.id]:
        yield (f"{value:g} {row.unit}, more than 10 % above the stored {stored[row.id]:g}. Correct the code, or "
               "store the new count with scripts/bench --store.")
    elif value < stored[row.id] / TOLERATED:
        yield (f"{value:g} {row.unit}, more than 10 % below the stored {stored[row.id]:g}. Check that the code "
               "still does its work, then store the new count with scripts/bench --store.")


def judge(rows, brief):
    """Returns the problems as lines. A limit or stored count without a row is also a problem. A brief run has too
    few samples to check timed figures."""
    limits = {name: limit for name, limit in tomllib.loads(LIMITS.read_text()).items()
              if not (brief and limit.get("timed"))}
    stored = json.loads(STORED.read_text())
    problems = []
    for row in rows:
        found = [*limit_problems(row, limits.get(row.id, {})), *stored_problems(row, stored)]
        problems += [f"{row.id} ({row.title}): {problem}" for problem in found]
    problems += [f"{name}: has a limit or a stored count, but is not measured"
                 for name in sorted((set(limits) | set(stored)) - {row.id for row in rows})]
    return problems


def store(rows):
    counts = {row.id: round(row.our_median(), 2) for row in rows if row.unit in COUNTED_UNITS}
    STORED.write_text(json.dumps(dict(sorted(counts.items())), indent=4) + "\n")
