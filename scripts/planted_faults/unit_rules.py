"""A wrong unit: another unit of time, a factor left out."""
import re

OTHERS = {"seconds": ["milliseconds"], "milliseconds": ["seconds", "microseconds"], "microseconds": ["milliseconds"],
          "minutes": ["seconds"]}
TIME = re.compile(r"(?:std::chrono::)?(seconds|milliseconds|microseconds|minutes)\s*\((?!\s*0?\s*\))")
CAST = re.compile(r"(?:std::chrono::)?(?:duration_cast|ceil|floor|round)<(?:std::chrono::)?(\w+)>")


def other_unit(finder, cursor):
    kinds = finder.kinds
    if cursor.kind not in (kinds.CALL_EXPR, kinds.CXX_FUNCTIONAL_CAST_EXPR):
        return
    text = finder.text_of(cursor)
    named = TIME.match(text) or CAST.match(text)
    if not named:
        return
    start = finder.range_of(cursor)[0]
    begin = start + named.start(1)
    qualified = text[:named.start(1)].endswith("std::chrono::")
    for other in OTHERS.get(named[1], []):
        finder.add("wrong unit", (begin, start + named.end(1)), other if qualified else f"std::chrono::{other}")


def constant_of_time(finder, cursor):
    """A constant such as `const milliseconds PAUSE(500)` is given in a smaller unit."""
    if cursor.kind != finder.kinds.VAR_DECL:
        return
    value = re.search(r"\bconst(?:expr)? (?:std::chrono::)?\w*seconds \w+\((\d+)\)", finder.text_of(cursor))
    if value and value[1] != "0":
        start = finder.range_of(cursor)[0]
        finder.add("wrong unit", (start + value.start(1), start + value.end(1)), f"{value[1]} * 1000")


def left_out_factor(finder, cursor):
    parts = finder.infix(cursor)
    if not parts or parts[1] not in ("*", "/"):
        return
    left, operator, _, right = parts
    start, end = finder.range_of(left)[0], finder.range_of(right)[1]
    if is_constant(finder, right):
        finder.add("wrong unit", (finder.range_of(left)[1], end), "")
    elif operator == "*" and is_constant(finder, left):
        finder.add("wrong unit", (start, finder.range_of(right)[0]), "")


def is_constant(finder, cursor):
    cursor = finder.unwrapped(cursor)
    text = finder.text_of(cursor)
    return (cursor.kind in (finder.kinds.INTEGER_LITERAL, finder.kinds.FLOATING_LITERAL)
            or bool(re.fullmatch(r"[A-Z][A-Z0-9_]+", text)))


RULES = [other_unit, constant_of_time, left_out_factor]
