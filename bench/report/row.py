"""One figure: samples of ours and, where there is one, of a peer, taken in turn."""
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
        """Ours to the peer's."""
        return self.our_median() / self.peer_median() if self.peer and self.peer_median() else None
