#!/usr/bin/python3
"""The reference host at the speed of the wire: `panelhost poll` on a simulated PLC that paces its bytes,
beside a master that does nothing but write, poll, read and keep the silence.

Prints a JSON object a line. Up to 19,200 baud: exchanges per second as a share of what the wire allows,
1/T, T being the time of request and reply and two silences. At 115,200 baud: milliseconds that the host
loses per exchange beside the bare master. The pace is taken from what the PLC saw. A share above 100 %,
or a reply that the bare master has sooner than the wire allows, fails the measurement.
"""
import functools
import pathlib
import sys
import tempfile

sys.dont_write_bytecode = True  # no folder of compiled files in the tree
import measurement
from simulated_line import SimulatedLine, run

# The bare master waits a second for the next byte; the host is to ride out as much, should the machine
# hold up the simulated PLC.
POLL_FILE = """[[link]]
name = "line"
device = "{device}"
baud = {baud}
timeout = 1000
byteTimeout = 1000
maxRegs = 125
[[link.variable]]
name = "block"
kind = "holding word"
address = 0
count = {registers}
"""


class Line:
    """What an exchange takes on a line, in seconds."""

    def __init__(self, baud, registers):
        self.baud, self.registers = baud, registers
        self.character = 11 / baud
        self.silence = 3.5 * self.character if baud <= 19200 else 0.00175
        self.frames = (8 + 5 + 2 * registers) * self.character
        self.exchange = self.frames + 2 * self.silence
        self.least_reply = self.frames + 3.5 * self.character  # when the PLC's last byte may be there


def microseconds(seconds):
    return str(int(1e6 * seconds))


def period_of_host(options, line, cycles):
    with SimulatedLine(options.panelhost, line.baud) as plc, tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder, "poll.toml")
        file.write_text(POLL_FILE.format(device=plc.device, **vars(line)), encoding="utf-8")
        run([options.panelhost, "poll", file, "--lines", "--cycles", str(cycles)])
    return plc.capture.period(line.registers)


def period_of_bare_master(options, line, cycles):
    with SimulatedLine(options.panelhost, line.baud) as plc:
        run([options.master_bare, plc.device, "--registers", str(line.registers), "--cycles", str(cycles),
             "--silence", microseconds(line.silence), "--least-time", microseconds(line.least_reply)])
    return plc.capture.period(line.registers)


def periods(options, line, seconds):
    """Of the host and of the bare master, in turn."""
    cycles = max(6, round(seconds / line.exchange))
    return measurement.in_turn(options.samples,
                               *(functools.partial(period, options, line, cycles)
                                 for period in (period_of_host, period_of_bare_master)))


def shares(line, measured):
    found = [100 * line.exchange / period for period in measured]
    if max(found) > 100:
        raise RuntimeError(f"{max(found):.3f} % of what {line.baud} baud allow: "
                           "the simulated line is faster than its speed")
    return found


def report_share(options, line, seconds):
    host, bare = (shares(line, measured) for measured in periods(options, line, seconds))
    measurement.report(f"line-share-{line.baud}-{line.registers}",
                       f"{line.baud:,} baud, {line.registers} registers: of the wire's speed", "%",
                       host, bare, "bare master")


def report_loss(options, line, seconds):
    host, bare = periods(options, line, seconds)
    measurement.report(f"line-loss-{line.baud}-{line.registers}",
                       f"{line.baud:,} baud, {line.registers} registers: lost per exchange", "ms",
                       [1000 * (one - other) for one, other in zip(host, bare)])


def main():
    options = measurement.parse(__doc__)
    seconds = 0.3 if options.brief else 2
    for baud in (9600, 19200):
        for registers in (32, 125):
            report_share(options, Line(baud, registers), seconds)
    for registers in (32, 125):
        report_loss(options, Line(115200, registers), seconds)


if __name__ == "__main__":
    measurement.finish(main)
