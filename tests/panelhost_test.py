"""The program panelhost as its users run it, against slaves and tools that others wrote.

    panelhost_test.py PANELHOST [TEST...]

VELKO_LAUNCHER in the environment is a command that starts PANELHOST, such as an emulator.
"""
import concurrent.futures
import contextlib
import datetime
import fcntl
import json
import os
import pathlib
import pty
import re
import select
import shlex
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time
import tty
import unittest

from json_page import JsonPage
from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.server.async_io import StartSerialServer
from pymodbus.transaction import ModbusRtuFramer

PANELHOST = []  # the launcher's words and the program's path
LIMIT = 30  # seconds for any program
LINKS = pathlib.Path(__file__).parent / "cases" / "links"


def run(*arguments, stdin=""):
    return subprocess.run([*PANELHOST, *arguments], input=stdin, capture_output=True, text=True, timeout=LIMIT)


def rows_of(name):
    with open(os.path.join(os.path.dirname(__file__), "cases", name), encoding="utf-8") as file:
        return [[cell.strip() for cell in line.split("|")] for line in file if not line.startswith("#")]


def wait_for(condition, what):
    end = time.monotonic() + LIMIT
    while not condition():
        if time.monotonic() > end:
            raise AssertionError("waited in vain for " + what)
        time.sleep(0.02)


def frames_in(capture):
    """The frames of a capture file in the classic format, written on a machine of this byte order."""
    with open(capture, "rb") as file:
        content = file.read()
    frames, place = [], 24
    while place < len(content):
        length = struct.unpack_from("=I", content, place + 8)[0]
        frames.append(content[place + 16:place + 16 + length])
        place += 16 + length
    return frames


class Simulator:
    """panelhost simulate, whose device is self.device."""

    def __init__(self, *arguments):
        pace = () if "--baud" in arguments else ("--baud", "0")
        self.trace = tempfile.TemporaryFile("w+")
        self.process = subprocess.Popen([*PANELHOST, "simulate", "--trace", *pace, *arguments], text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self.trace)
        self.device = self.process.stdout.readline().split()[1]

    def traced(self):
        return os.pread(self.trace.fileno(), 1 << 20, 0).decode()

    def end(self):
        """Returns all that it has shown."""
        self.process.terminate()
        shown = self.process.stdout.read() + self.traced()
        self.process.communicate(timeout=LIMIT)
        return shown

    def set_fault(self, fault):
        self.process.stdin.write(fault + "\n")
        self.process.stdin.flush()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if not self.process.stdout.closed:
            self.end()
        self.trace.close()


@contextlib.contextmanager
def own_terminal():
    """Yields a master and its terminal, as the only one of this machine whose device is /dev/tty."""
    folder = os.open(tempfile.gettempdir(), os.O_RDONLY)
    fcntl.flock(folder, fcntl.LOCK_EX)
    master, terminal = pty.openpty()
    yield master, terminal
    for end in (terminal, folder):
        os.close(end)


def settings_of(master):
    """The settings of a terminal at the first request, after which the terminal is gone."""
    select.select([master], [], [], LIMIT)
    _, _, flags, _, speed, *_ = termios.tcgetattr(master)
    os.close(master)
    return " ".join(["port:", *(name for name in ("B38400", "B19200") if speed == getattr(termios, name)),
                     *(name for name in ("CSTOPB", "PARODD") if flags & getattr(termios, name))])


def files_for(devices, folder):
    """Copies the files of links for the devices; returns name -> path."""
    files = {path.stem: pathlib.Path(folder, path.name) for path in LINKS.iterdir()}
    for path in files.values():
        path.write_text((LINKS / path.name).read_text().format(**{"plc": "-", "plc2": "-", **devices}))
    return files


def outcome(simulators, command):
    """Runs a row of a table: its exit status, its seconds, and all that was shown, sent and captured."""
    command, _, until = command.partition(" until ")
    command, _, given = command.partition(" < ")
    count, _, text = until.partition(" x ")
    with tempfile.TemporaryDirectory() as folder, contextlib.ExitStack() as stack:
        names = {name: os.path.join(folder, name) for name in ("pcap", "link")}
        start = time.monotonic()
        plcs = [stack.enter_context(Simulator(*shlex.split(options.format(**names))))
                for options in simulators.split("&") if options]
        names.update({"plc2" if i else "plc": plc.device for i, plc in enumerate(plcs)})
        names.update(files_for(names, folder), panelhost=shlex.join(PANELHOST))
        words = shlex.split(command.format(**names))
        first = [] if words[:1] == ["script"] else PANELHOST
        stdin, master = subprocess.PIPE, None
        if "/dev/tty" in words:  # takes a parity, unlike the name of a pseudo-terminal
            master, stdin = stack.enter_context(own_terminal())
            first = ["env", "--ignore-signal=HUP", "setsid", "-c", *PANELHOST]
        process = stack.enter_context(subprocess.Popen([*first, *words], text=True, stdin=stdin,
                                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE))
        killer = threading.Timer(LIMIT, process.kill)
        killer.start()
        shown = settings_of(master) if master else ""
        if given:
            print(given, file=process.stdin, flush=True)
        while until and shown.count(text) < int(count) and (line := process.stdout.readline()):
            shown += line
        if until:
            process.send_signal(signal.SIGINT)
        shown += process.stdout.read() + process.stderr.read()
        status, seconds = process.wait(), time.monotonic() - start
        killer.cancel()
        shown += "".join(plc.end() for plc in plcs)
        frames = frames_in(names["pcap"]) if os.path.exists(names["pcap"]) else []
        return status, seconds, shown + "".join(f"captured: {frame.hex(' ').upper()}\n" for frame in frames)


class Poll:
    """panelhost poll --json: its lines as objects, checked against their page."""

    def __init__(self, path, *arguments, page=None):
        self.page = page or JsonPage()
        self.process = subprocess.Popen([*PANELHOST, "poll", path, "--json", *arguments], text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.seen = []
        self.thread = threading.Thread(target=self.collect)
        self.thread.start()

    def collect(self):
        for line in self.process.stdout:
            self.seen.append(json.loads(line))

    def write(self, assignment):
        self.process.stdin.write(assignment + "\n")
        self.process.stdin.flush()

    def wait(self, **fields):
        def is_there():
            return any(all(item.get(k) == v for k, v in fields.items()) for item in list(self.seen))
        wait_for(is_there, str(fields) + " in\n" + "\n".join(map(str, self.seen)))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.send_signal(signal.SIGINT)
        self.process.wait(timeout=LIMIT)
        self.thread.join()
        self.process.stdin.close()
        self.process.stdout.close()
        for line in self.seen:
            self.page.check(line)


class PymodbusSlave:
    """Station 7 on self.device: the bytes go through two pseudo-terminals, one for each side."""

    def __init__(self):
        slave_master, slave = pty.openpty()
        host_master, host = pty.openpty()
        for end in (slave, host):
            tty.setraw(end)
        self.device = os.ttyname(host)
        self.ends = (slave, host)
        self.store = ModbusSlaveContext(
            hr=ModbusSequentialDataBlock(0, list(range(1000, 1200))),
            ir=ModbusSequentialDataBlock(0, list(range(65000, 65200))), zero_mode=True)
        context = ModbusServerContext(slaves={7: self.store}, single=False)
        threading.Thread(target=self.pass_on, args=(slave_master, host_master), daemon=True).start()
        threading.Thread(target=StartSerialServer, daemon=True, kwargs={
            "context": context, "framer": ModbusRtuFramer, "port": os.ttyname(slave),
            "baudrate": 19200, "parity": "N", "stopbits": 1, "bytesize": 8}).start()

    @staticmethod
    def pass_on(one, other):
        while True:
            for end in select.select([one, other], [], [])[0]:
                os.write(other if end == one else one, os.read(end, 512))


class TerminalSession:
    """A program on a terminal of its own, in the foreground of its session."""

    def __init__(self, *arguments, columns=60, rows=20):
        self.shown = ""
        self.process_id, self.terminal = pty.fork()
        if self.process_id == 0:
            os.execvp(arguments[0], arguments)
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def type(self, keys):
        self.shown = ""
        os.write(self.terminal, keys.encode())

    def wait(self, text):
        """Waits until the program has shown the text after the latest keys."""
        def is_there():
            if select.select([self.terminal], [], [], 0)[0]:
                try:
                    self.shown += os.read(self.terminal, 65536).decode("utf-8", "replace")
                except OSError:  # the program has ended
                    pass
            return text in self.shown
        wait_for(is_there, f"{text!r} on the terminal")

    def takes_lines(self):
        return bool(termios.tcgetattr(self.terminal)[3] & termios.ICANON)

    def end(self):
        """Returns how the program has ended. Reads its output meanwhile, which could block it."""
        end = time.monotonic() + LIMIT
        while time.monotonic() < end:
            if select.select([self.terminal], [], [], 0.02)[0]:
                try:
                    self.shown += os.read(self.terminal, 65536).decode("utf-8", "replace")
                except OSError:
                    pass
            done, status = os.waitpid(self.process_id, os.WNOHANG)
            if done:
                os.close(self.terminal)
                return status
        raise AssertionError("the program does not end")


class PanelhostTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def file(self, text, name="test.toml"):
        path = os.path.join(self.folder.name, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def link(self, device, *variables, settings=""):
        tables = "".join("[[link.variable]]\n" + variable + "\n" for variable in variables)
        return f'[[link]]\nname = "l"\ndevice = "{device}"\ntimeout = 9000\n{settings}\n{tables}'

    def assert_ends(self, result, status, *texts):
        self.assertEqual(result.returncode, status, result)
        for text in texts:
            self.assertIn(text, result.stdout + result.stderr)

    def test_mbpoll_reads_the_same(self):
        with Simulator("--station", "3") as plc:
            for kind in ("3", "4", "4:hex", "4:int", "3:float", "4:int -B", "4:float -B"):
                options = f"-a 3 -b 19200 -P none -r 101 -c 3 -o 9 -t {kind}".split()
                ours = run("read", plc.device, *options)
                theirs = subprocess.run(["mbpoll", "-m", "rtu", "-1", "-q", *options, plc.device],
                                        capture_output=True, text=True, timeout=LIMIT)
                self.assert_ends(ours, 0)
                line = re.compile(r"^\[(\d+)\]: \t(\S+)", re.MULTILINE)
                ours, theirs = line.findall(ours.stdout), line.findall(theirs.stdout)
                self.assertEqual(len(ours), 3)
                for (reference, value), (their_reference, their_value) in zip(ours, theirs, strict=True):
                    self.assertEqual(reference, their_reference)
                    if "float" in kind:  # of which mbpoll prints six digits
                        self.assertEqual(f"{float(value):.5e}", f"{float(their_value):.5e}")
                    else:
                        self.assertEqual(value, their_value)

    def test_mbpoll_writes_and_reads_what_is_written(self):
        with Simulator("--station", "3") as plc:
            subprocess.run([*"mbpoll -m rtu -a 3 -P none -r 201 -o 9 -q".split(), plc.device, "4711", "4712"],
                           stdout=subprocess.DEVNULL, check=True, timeout=LIMIT)
            result = run("read", plc.device, "-a", "3", "-P", "none", "-o", "9", "-0", "-r", "200", "-c", "2")
            self.assert_ends(result, 0, "[200]: \t4711\n[201]: \t4712\n")
            written = run("write", plc.device, "-a", "3", "-P", "none", "-o", "9", "-r", "301", "-t", "4:float",
                          "-B", "--", "-12.5")
            self.assert_ends(written, 0, "station 3, register addresses 300 to 301: -12.5\n")
            theirs = subprocess.run([*"mbpoll -m rtu -a 3 -P none -r 301 -o 9 -t 4:float -B -1 -q".split(), plc.device],
                                    capture_output=True, text=True, timeout=LIMIT)
            self.assertIn("[301]: \t-12.5\n", theirs.stdout)

    def test_a_slave_that_others_wrote(self):
        slave = PymodbusSlave()
        where = (slave.device, "-a", "7", "-P", "none", "-o", "9")
        wait_for(lambda: run("read", *where[:-1], ".5", "-0", "-r", "0").returncode == 0, "the slave")
        self.assert_ends(run("read", *where, "7:5", "6:6:s16:2", "1:20.3"), 0,
                         "7:5 = 1005\n6:6:s16:2 = -530 -529\n1:20.3 = 0\n")
        self.assert_ends(run("write", *where, "7:5:u32=305419896", "1:20.3=1", "4:23=9"), 0)
        self.assertEqual(slave.store.getValues(3, 5, 7), [0x5678, 0x1234, 1007, 1008, 1009, 1010 | 8, 0x09F3])
        self.assert_ends(run("read", *where, "7:500"), 6, "exception 2 (illegal data address)")

    def test_read_of_several_stations(self):
        plcs = "--station 3 --station 36 --station 37"
        options = "-a 37:36,9,3 -P none -o 2 -r 5 -c 2"
        with Simulator(*plcs.split()) as plc, concurrent.futures.ThreadPoolExecutor() as pool:
            ours = [pool.submit(outcome, plcs, f"read {{plc}} {options} --retries 0{more}") for more in ("", " --json")]
            theirs = subprocess.run(["mbpoll", "-m", "rtu", "-1", "-q", *options.split(), plc.device],
                                    capture_output=True, text=True, timeout=LIMIT)
        expected = []
        for line in theirs.stdout.splitlines():
            if "slave" in line:
                station = re.search(r"slave (\d+)", line)[1]
            elif line:
                expected.append((station, *re.match(r"\[(\d+)\]: \t(\d+)", line).groups()))
        self.assertEqual(len(expected), 6)
        (status, _, shown), (json_status, _, json_shown) = (one.result() for one in ours)
        self.assertEqual((status, json_status), (5, 5))
        self.assertEqual(re.findall(r"station (\d+): \[(\d+)\]: \t(\d+)", shown), expected)
        items = [json.loads(line) for line in json_shown.splitlines() if line.startswith("{")]
        self.assertEqual([(str(item["station"]), item["name"], str(item["value"])) for item in items
                          if item["state"] == "good"], expected)
        silent = [item for item in items if item["station"] == 9]
        self.assertEqual([(item["value"], item["state"]) for item in silent], [(None, "station offline")] * 2)
        for item in items:
            JsonPage().check(item)
            self.assertRegex(item["link"], "^/dev/pts/")

    def check_rows(self, rows):
        """Rows of (status, seconds, simulators, command, text...), all at the same time."""
        with concurrent.futures.ThreadPoolExecutor(20) as pool:
            results = pool.map(lambda row: outcome(*row[2:4]), rows)
            for (status, times, _, command, *texts), (actual, seconds, shown) in zip(rows, results):
                with self.subTest(command=command):
                    self.assertEqual(actual, int(status), shown)
                    if times:
                        least, most = map(float, times.split(".."))
                        self.assertTrue(least <= seconds <= most, seconds)
                    for text in texts:
                        self.assertEqual(text.strip("!") in shown, text[:1] != "!", f"{text} in {shown}")

    def test_options_and_exit_statuses(self):
        rows, without_row = [], set()
        for sub in re.findall(r"^  (\w+) ", run("--help").stdout.split("Subcommands:")[1], re.MULTILINE):
            for names in re.findall(r"^  (-\S+)", run(sub, "--help").stdout, re.MULTILINE):
                without_row.add((sub, *names.split(",")))
        for subs_and_option, *row in rows_of("options.table"):
            *subs, option = subs_and_option.split()
            without_row -= {known for known in without_row if known[0] in subs and option in known}
            self.assertIn(option, " ".join(row[2:4]).split())
            for sub in subs:
                rows.append([cell.replace("{sub}", sub).replace("{=}", "=9" if sub == "write" else "") for cell in row])
        self.assertEqual(without_row, set())
        self.check_rows(rows + [[status, "", *rest] for status, *rest in rows_of("exit_statuses.table")])

    def test_plan(self):
        content = self.link(
            "/dev/x", 'name = "a"\nkind = "holding word"\naddress = 10',
            'name = "b"\nkind = "holding word"\naddress = 70',
            'name = "c"\nstation = 2\nkind = "input word"\naddress = 0',
            'name = "d"\nkind = "holding 5000 word"\naddress = 1\naccess = "write"', settings="baud = 9600")
        result = run("plan", self.file(content))
        self.assert_ends(result, 0)
        rows = [line.split() for line in result.stdout.splitlines()]
        # 8 + 5 + 2 x 61 bytes of 11 bits at 9,600 baud.
        self.assertIn(["1", "3", "10..70", "61", "2", "59", "135", "154.7"], rows)
        self.assertIn(["2", "4", "0..0", "1", "1", "0", "15", "17.2"], rows)
        self.assertIn("2 requests; cycle time 187.9 ms at 9600 baud", result.stdout)
        self.assertIn("station 1, gap registers 11 to 69: 118 bytes, 135.2 ms", result.stdout)
        self.assertIn("maxRegs = 58 to split the request here", result.stdout)
        split = self.file(content.replace("baud", "maxRegs = 58\nbaud"))
        self.assert_ends(run("plan", split), 0, "3 requests")

    def test_reload_keeps_queued_writes_and_values(self):
        word = 'name = "{}"\nkind = "holding word"\naddress = {}\naccess = "read-write"'
        with Simulator("--station", "1") as plc:
            path = self.file(self.link(plc.device, word.format("a", 0)))
            with Poll(path) as poll:
                poll.wait(event="value", name="a", value=23205, state="good")
                plc.set_fault("1:late=300")
                poll.write("a=5")
                wait_for(lambda: "-> 01 10 00 00 " in plc.traced(), "the write")
                plc.set_fault("1:none")
                self.file(self.link(plc.device, word.format("b", 100), word.format("c", 0)))
                poll.process.send_signal(signal.SIGHUP)
                poll.wait(event="note", text="the file was read again")
                poll.wait(event="write", name="a", state="done")
                poll.wait(event="value", name="b", value=45009, state="good")
                poll.wait(event="value", name="c", value=5, state="good")
                self.file("x")
                poll.process.send_signal(signal.SIGHUP)
                wait_for(lambda: any("not applied" in item.get("text", "") for item in list(poll.seen)), "the refusal")
                poll.write("b=7")
                poll.wait(event="write", name="b", value="7", state="done")
                poll.write("nothing")
                poll.wait(event="note", text='nothing: refused: "nothing" is not NAME=VALUE')
            self.assertEqual(poll.process.returncode, 6)  # for that one

    def test_writes_just_before_the_end_have_a_result(self):
        for late in (False, True):
            with Simulator("--station", "1", "--fault", "1:late=400" if late else "1:none") as plc:
                with Poll(files_for({"plc": plc.device}, self.folder.name)["one"]) as poll:
                    poll.wait(event="port", state="open")
                    if late:  # the second write waits for the response to the first one
                        poll.write("v=5")
                        wait_for(lambda: "-> 01 10 00 02" in plc.traced(), "the write")
                    poll.process.send_signal(signal.SIGSTOP)
                    poll.write("w=6")  # noticed together with the signal
                    poll.process.send_signal(signal.SIGINT)
                    poll.process.send_signal(signal.SIGCONT)
                    poll.process.wait(timeout=LIMIT)
                results = [(item["name"], item["state"]) for item in poll.seen if item["event"] == "write"]
                self.assertEqual(results[:-1], [("v", "done")] * late)
                self.assertEqual(results[-1], ("w", "done" if "-> 01 10 00 14" in plc.traced() else "failed"))

    def test_lines(self):
        with Simulator("--station", "1") as plc:
            path = self.file(self.link(plc.device, 'name = "tenths"\nkind = "input word"\naddress = 0',
                                       'name = "same"\nkind = "input word"\naddress = 13'))
            start = time.monotonic()
            result = run("poll", path, "--lines", "--seconds", "2.5")
            elapsed = time.monotonic() - start
        self.assert_ends(result, 0)
        lines, tables = result.stdout.split("\n\n", 1)
        shown = re.findall(r"^\d\d:\d\d:\d\d\.\d{3}  tenths = (\d+)  \(good\)$", lines, re.MULTILINE)
        self.assertEqual(len(set(shown)), len(shown))
        self.assertGreaterEqual(len(shown), 2)
        self.assertLessEqual(len(shown), elapsed + 2)  # at most one per second, the first and the last one
        self.assertEqual([shown[-1]], re.findall(r"^tenths +1 +input word 0 +(\d+) ", tables, re.MULTILINE))
        self.assertEqual(lines.count("same = 41359  (good)"), 1)

    def test_json_lines(self):
        word = 'name = "{}"\nstation = {}\nkind = "holding word"\naddress = {}\naccess = "read-write"\n'
        page = JsonPage()
        with Simulator("--station", "1", "--station", "2", "--fault", "2:silent") as plc:
            path = self.file(self.link(
                plc.device, word.format("a", 1, 0), word.format("h", 1, 150) + 'format = "hex"\ncount = 2',
                word.format("t", 1, 160) + 'format = "text"', word.format("s", 2, 0), word.format("e", 1, 9000)
                + "[[link.station]]\nnumber = 2\ntimeout = 100\nretries = 0"))
            with Poll(path, "--heartbeat", "0.3", page=page) as poll:
                poll.wait(event="value", name="a", value=23205, state="good")
                poll.write("h=0x0A0F 0xFFFF")
                poll.wait(event="value", name="h", value=["0x0A0F", "0xFFFF"], state="good")
                poll.wait(event="value", name="e", value=None, state="never read",
                          reason="exception 2 (illegal data address)")
                poll.wait(event="station", station=2, state="offline")
                wait_for(lambda: len([item for item in list(poll.seen) if item["event"] == "counters"]) > 4, "counters")
                poll.write("a=70000")
                poll.wait(event="write", name="a", value="70000", state="refused")
                poll.write("a=7")
                poll.wait(event="value", name="a", value=7, state="good")
                plc.set_fault("2:none")
                poll.wait(event="station", station=2, state="online")
                poll.process.send_signal(signal.SIGHUP)
                poll.wait(event="note", link=None)
                plc.process.terminate()
                poll.wait(event="port", state="disconnected")
        now = datetime.datetime.now(datetime.timezone.utc)
        age = now - datetime.datetime.strptime(poll.seen[-1]["time"] + "+0000", "%Y-%m-%dT%H:%M:%S.%fZ%z")
        self.assertLess(abs(age.total_seconds()), LIMIT)
        counters, summary = ([item for item in poll.seen if item["event"] == event and item["station"] == 1]
                             for event in ("counters", "summary"))
        self.assertLess(counters[0]["sent"], summary[0]["sent"])
        self.assertEqual(counters[-1].keys(), summary[0].keys())
        self.assertIn("2", summary[0]["exceptions"])
        plan = run("plan", "--json", self.file(self.link(
            "/dev/x", word.format("a", 1, 10), word.format("b", 1, 70), settings="baud = 9600")))
        request, cycle = map(json.loads, plan.stdout.splitlines())
        for line in (request, cycle):
            page.check(line)
        self.assertEqual((request["register"], request["asked"], request["wanted"]), (10, 61, 2))
        # 8 + 5 + 2 x 61 bytes of 11 bits at 9,600 baud; two frame gaps of 3.5 characters each.
        self.assertEqual((request["lineMs"], cycle["cycleMs"]), (154.687, 162.709))
        self.assertEqual([request["gaps"][0][key] for key in ("register", "count", "maxRegs")], [11, 59, 58])
        self.assertEqual(page.unseen, set())

    def test_table_on_a_terminal(self):
        names = [f"conveyor.section.{i:02}.temperature" for i in range(40)]
        word = 'name = "{}"\nkind = "holding word"\naddress = {}\naccess = "read-write"'
        alternate, main = "\x1b[?1049h", "\x1b[?1049l"
        with Simulator("--station", "1") as plc:
            path = self.file(self.link(plc.device, *(word.format(name, i) for i, name in enumerate(names))))
            table = TerminalSession(*PANELHOST, "poll", path)
            table.wait("values 1 to ")
            self.assertIn(alternate, table.shown)
            self.assertFalse(table.takes_lines())
            table.type("\x1b[B")
            table.wait("values 2 to ")
            value, count = re.search(r"\x1b\[(\d+);1H\S[^\x1b]*\x1b\[K\x1b\[(\d+);1Hvalues 2 to ", table.shown).groups()
            self.assertEqual(int(count), int(value) + 1)  # no row between them is empty
            table.type("\x1b[F")
            table.wait("to 40 of 40")
            table.type("/.17.")
            table.wait("holding word 17")
            table.type(f"\r{names[17]} = 9x\x7f9\r")
            table.wait("= 99: done")
            table.type("\x1b")
            table.wait("values 1 to ")
            # Nobody would continue this session, so Ctrl-Z does not stop it.
            table.type("\x1a")
            table.wait(alternate)
            self.assertIn(main, table.shown)
            self.assertFalse(table.takes_lines())
            table.type("\x03")
            table.wait("values are good")
            self.assertIn(main, table.shown)
            self.assertTrue(table.takes_lines())
            self.assertEqual(table.end(), 0)
            for number in (signal.SIGTERM, signal.SIGABRT):
                table = TerminalSession(*PANELHOST, "poll", path)
                table.wait("values 1 to ")
                os.kill(table.process_id, number)
                table.wait(main)
                wait_for(table.takes_lines, "the mode of the terminal")
                self.assertEqual(os.WTERMSIG(table.end()), number if number == signal.SIGABRT else 0)

    def test_a_shell_stops_and_continues_the_table(self):
        with Simulator("--station", "1") as plc:
            path = self.file(self.link(plc.device, 'name = "v"\nkind = "holding word"\naddress = 0'))
            shell = TerminalSession("bash", "--norc", "--noediting", "-i")
            shell.type(shlex.join([*PANELHOST, "poll", path]) + "\n")
            for typed in ("> abc", "> abcabc"):
                shell.wait("good")
                wait_for(lambda: not shell.takes_lines(), "the mode of the table")
                shell.type("abc")
                shell.wait(typed)
                shell.type("\x1a")
                shell.wait("Stopped")
                self.assertIn("\x1b[?1049l", shell.shown)
                wait_for(shell.takes_lines, "the mode of the shell")
                shell.type("fg\n")
            shell.wait("> abcabc")
            shell.type("\x03")
            shell.wait("1 of 1 values are good")
            shell.type("exit\n")
            shell.end()

    def test_two_links(self):
        with Simulator("--station", "1") as one, Simulator("--station", "2") as two:
            second = self.link(two.device, 'name = "b"\nstation = 2\nkind = "input word"\naddress = 12')
            first = self.link(one.device, 'name = "a"\nkind = "input word"\naddress = 13')
            path = self.file(first.replace('"l"', '"x/l"') + second.replace('"l"', '"x_L"'))
            capture = os.path.join(self.folder.name, "c.d.pcap")
            result = run("poll", path, "--cycles", "3", "--pcap", capture)
            self.assert_ends(result, 0, "a = 41359  (good)", "b = 38536  (good)", "2 of 2 values are good.",
                             "Link x/l, station 1 sent", "Link x_L, station 2 sent")
        captures = {name: {frame[0] for frame in frames_in(os.path.join(self.folder.name, name))}
                    for name in os.listdir(self.folder.name) if name.endswith(".pcap")}
        self.assertEqual(captures, {"c.d-x_l.pcap": {1}, "c.d-x_L-2.pcap": {2}})  # the stations in each

    def test_capture(self):
        capture = os.path.join(self.folder.name, "x.pcap")
        with Simulator("--station", "1", "--fault", "1:exception=6/3") as plc:
            result = run("write", plc.device, "7:0=258", "7:1=3", "1:4.0=1", "-o", "9", "--pcap", capture)
            self.assert_ends(result, 0)
        decoded = subprocess.run(
            ["tshark", "-r", capture, "-o", 'uat:user_dlts:"User 0 (DLT=147)","mbrtu","0","","0",""',
             "-T", "fields", "-e", "frame.len", "-e", "mbrtu.unit_id", "-e", "modbus.func_code",
             "-e", "modbus.exception_code"], capture_output=True, text=True, timeout=LIMIT, check=True)
        self.assertEqual([line.split() for line in decoded.stdout.splitlines()], [
            ["11", "1", "16"], ["8", "1", "16"], ["11", "1", "16"], ["8", "1", "16"], ["8", "1", "3"],
            ["5", "1", "3", "6"], ["8", "1", "3"], ["7", "1", "3"], ["11", "1", "16"], ["8", "1", "16"]])


if __name__ == "__main__":
    os.environ["TZ"] = "UTC-5"  # a local time would differ from UTC
    PANELHOST = [*shlex.split(os.environ.get("VELKO_LAUNCHER", "")), sys.argv.pop(1)]
    unittest.main(verbosity=2)
