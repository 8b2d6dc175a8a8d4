"""A simulated PLC in its own process, and the frames that it recorded on its line."""
import pathlib
import struct
import subprocess
import tempfile

LIMIT = 60  # seconds per program
PLC_LIMIT = 5 * LIMIT  # the PLC ends by itself after this time

REQUEST_BYTES = 8  # of a read request; replies to reads have an odd number of bytes
REPLY_OVERHEAD = 5


class Capture:
    """Times and frames as the PLC recorded them. The time of a request is when the PLC has received all of it, the
    time of a reply is when its last byte has been sent."""

    def __init__(self, path):
        data = path.read_bytes()
        self.frames = []
        place = 24
        while place + 16 <= len(data):
            seconds, microseconds, size, _ = struct.unpack_from("<4I", data, place)
            self.frames.append((seconds + microseconds / 1e6, data[place + 16:place + 16 + size]))
            place += 16 + size

    def arrivals(self):
        return [time for time, frame in self.frames if len(frame) == REQUEST_BYTES]

    def period(self, registers, skipped=2):
        """Returns the mean time from one request to the next in seconds, without the first requests after the
        start. Fails if a request has no reply: with retries the rate means nothing."""
        sizes = [len(frame) for _, frame in self.frames]
        if sizes != [REQUEST_BYTES, REPLY_OVERHEAD + 2 * registers] * (len(sizes) // 2):
            raise RuntimeError("the frames that the PLC recorded are not pairs of a request and its reply")
        arrivals = self.arrivals()[skipped:]
        if len(arrivals) < 2:
            raise RuntimeError("the PLC received too few requests to compute their rate")
        return (arrivals[-1] - arrivals[0]) / (len(arrivals) - 1)


class SimulatedLine:
    """Runs `panelhost simulate`. `device` is valid while it runs, `capture` after it has ended."""

    def __init__(self, panelhost, baud=0):
        self.command = [panelhost, "simulate", "--baud", str(baud), "--seconds", str(PLC_LIMIT)]

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.folder.name, "line.pcap")
        self.process = subprocess.Popen([*self.command, "--pcap", self.path], text=True,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        words = self.process.stdout.readline().split()
        if not words:
            self.__exit__()
            raise RuntimeError(f"{self.command[0]} simulate: does not start")
        self.device = words[1]
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.communicate(timeout=LIMIT)
        if self.path.exists():
            self.capture = Capture(self.path)
        self.folder.cleanup()


def run(command):
    """Runs a master. Raises RuntimeError if it fails."""
    ended = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=LIMIT)
    if ended.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}: exit status {ended.returncode}\n"
                           f"{ended.stderr or ended.stdout}")
