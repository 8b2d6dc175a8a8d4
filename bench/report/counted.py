"""Figures counted by callgrind: instructions and allocations."""
from report.callgrind import count
from report.row import Row

TURNS = 200
REQUEST_CRC_BYTES = 6  # station, function, register, count
REPLY_HEADER_BYTES = 3


def exchange_counts(program, registers, requests):
    """Returns instructions per exchange without checksums, instructions per byte under a checksum, allocations per
    exchange."""
    counts = count([program, "exchange", TURNS, registers, requests])
    crc = counts.own_of("CalCRC")
    if crc == 0:
        raise RuntimeError("callgrind found no function CalCRC: the compiler may have inlined it")
    bytes_checked = REQUEST_CRC_BYTES + REPLY_HEADER_BYTES + 2 * registers
    return ((counts.total - crc) / TURNS, crc / TURNS / bytes_checked,
            counts.allocations() / TURNS)


def exchange_rows(program):
    for registers in (1, 125):
        rest, crc, allocations = exchange_counts(program, registers, 1)
        what = f"{registers} register{'s' if registers > 1 else ''}"
        yield Row(f"exchange-{registers}", f"one exchange of {what}, without checksums",
                  "instructions", [rest])
        yield Row(f"exchange-allocations-{registers}", f"one exchange of {what}", "allocations",
                  [allocations])
    yield Row("crc-byte", "checksum, bit by bit, per byte", "instructions", [crc])
    short, long = (exchange_counts(program, 1, requests)[0] for requests in (10, 10000))
    yield Row("exchange-long-list", "one exchange, list of 10,000 requests", "instructions", [long],
              [short], "list of 10")


def get_rows(program):
    for words in (1, 100):
        counts = count([program, "get", TURNS, words, 0])
        what = f"GetRegisterData of {words} word{'s' if words > 1 else ''}"
        yield Row(f"get-{words}", what, "instructions", [counts.total / TURNS])
        yield Row(f"get-allocations-{words}", what, "allocations", [counts.allocations() / TURNS])


def rebuild_rows(program):
    largest = 100000
    for far, what in ((0, "that merge"), (1, "far apart")):
        base, most = (count([program, "rebuild", 1, size, far]).total / size
                      for size in (1000, largest))
        yield Row(f"rebuild-{'far' if far else 'near'}",
                  f"rebuild of {largest:,} variables {what}, per variable", "instructions", [most],
                  [base], "1,000 variables")


def write_rows(program):
    bits = 10000
    counts = count([program, "write-bits", 1, bits, 0])
    yield Row("write-bits", f"write of {bits:,} bits in one call, per bit", "instructions",
              [counts.total / bits])


def counted_rows(program):
    yield from exchange_rows(program)
    yield from get_rows(program)
    yield from rebuild_rows(program)
    yield from write_rows(program)
