"""Draws the faults to plant at random."""
import random


class Draw:
    """Draws one candidate from each file first, then from all files; no candidate twice."""

    def __init__(self, candidates, unobservable, seed, count):
        self.unobservable = unobservable
        self.left = list(candidates)
        random.Random(seed).shuffle(self.left)
        files = sorted({fault.file for fault in candidates})
        self.drawn = [self.next_of(file) for file in files[:count]]
        self.drawn += [self.next_of(None) for _ in range(count - len(self.drawn))]

    def next_of(self, file):
        """Returns the next candidate of the file, or of any file if none is left in it; None at the end."""
        for fault in sorted(self.left, key=lambda one: one.file != file) if file else list(self.left):
            self.left.remove(fault)
            if not is_unobservable(fault, self.unobservable):
                return fault
        return None

    def instead_of(self, fault):
        return self.next_of(fault.file)


class DrawByRule:
    """Draws from one rule after the other, from the file that was drawn from least; no candidate twice."""

    def __init__(self, candidates, unobservable, seed, count):
        self.unobservable = unobservable
        self.left = list(candidates)
        generator = random.Random(seed)
        generator.shuffle(self.left)
        self.rules = sorted({fault.rule for fault in candidates})
        generator.shuffle(self.rules)
        files = sorted({fault.file for fault in candidates})
        generator.shuffle(files)
        self.times = dict.fromkeys(files, 0)  # in which the order of the files stays random
        self.drawn = [self.next_of(self.rules[number % len(self.rules)]) for number in range(count)]

    def next_of(self, rule):
        """Returns the next candidate of the rule, or of any rule if none is left of it; None at the end."""
        places = {file: place for place, file in enumerate(self.times)}
        while self.left:
            fault = min(self.left,
                        key=lambda one: (one.rule != rule, self.times[one.file], places[one.file]))
            self.left.remove(fault)
            if not is_unobservable(fault, self.unobservable):
                self.times[fault.file] += 1
                return fault
        return None

    def instead_of(self, fault):
        return self.next_of(fault.rule)


def is_unobservable(fault, unobservable):
    reason = unobservable.get(fault.key())
    if reason is not None:
        print(f"unobservable  {fault}: {reason}", flush=True)
    return reason is not None
