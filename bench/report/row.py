"""One figure: our samples and, if there is a peer, its samples, taken in turn."""
import dataclasses
import statistics


@dataclasses.dataclass
class Row:
    id: str
    title: str
    unit: str
    ours: list
    peer: list = dataclasses.field(default_factory=list)
    peer_name: str = ""

    def our_median(self):
        return statistics.median(self.ours)

    def peer_median(self):
        return statistics.median(self.peer) if self.peer else None

    def ratio(self):
        """Returns our median divided by the peer's."""
        return self.our_median() / self.peer_median() if self.peer and self.peer_median() else None
