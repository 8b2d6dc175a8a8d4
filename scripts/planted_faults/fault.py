"""One fault: its place and its description."""
import dataclasses


@dataclasses.dataclass(frozen=True)
class Fault:
    rule: str
    file: str
    line: int
    function: str  # "" outside functions
    start: int     # byte offset in the file
    end: int
    replacement: bytes
    was: str       # the changed lines, stripped
    becomes: str

    def __str__(self):
        return f"{self.file}:{self.line} {self.rule}: `{self.was}` -> `{self.becomes}`"

    def key(self):
        return self.file, self.function, self.was, self.becomes

    def place(self):
        return self.file, self.start, self.end, self.replacement
