"""The list of faults that nothing outside the library or the host can observe."""
import collections
import json
import tomllib

from planted_faults.candidates import SUBJECTS, find_candidates
from planted_faults.tree import ROOT

LISTED = "scripts/planted_faults/unobservable.toml"


def read_unobservable():
    """Returns {(file, function, was, becomes): reason}."""
    entries = tomllib.loads((ROOT / LISTED).read_text()).get("fault", [])
    return {(one["file"], one.get("function", ""), one["was"], one["becomes"]): one["reason"]
            for one in entries}


def as_entry(fault):
    names = [name for name in ("file", "function", "was", "becomes") if getattr(fault, name)]
    lines = [f"{name} = {json.dumps(getattr(fault, name))}" for name in names]
    return "\n".join(["[[fault]]", *lines, 'reason = ""'])


def check(unobservable):
    known = set()
    for subject in SUBJECTS:
        candidates = find_candidates(subject)
        known |= {fault.key() for fault in candidates}
        show_counts(subject, candidates)
    stale = [key for key in unobservable if key not in known]
    for file, function, was, becomes in stale:
        print(f"no such fault in the source: {file} {function}: `{was}` -> `{becomes}`")
    if stale:
        print(f"plant-faults: {LISTED} does not match the source. Correct or remove these entries.")
    print(f"{len(unobservable)} faults are listed as unobservable")
    return 1 if stale else 0


def show_counts(subject, candidates):
    for attribute in ("rule", "file"):
        print(f"candidates of the {subject.name} by {attribute}:")
        counts = collections.Counter(getattr(one, attribute) for one in candidates)
        for name, number in sorted(counts.items()):
            print(f"  {number:5} {name}")
    without = sorted(set(subject.files()) - {one.file for one in candidates})
    print("nothing to change in:", *without)
    print(f"{len(candidates)} candidates of the {subject.name}")
