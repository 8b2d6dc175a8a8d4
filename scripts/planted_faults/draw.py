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
            reason = self.unobservable.get(fault.key())
            if reason is None:
                return fault
            print(f"unobservable  {fault}: {reason}", flush=True)
        return None
