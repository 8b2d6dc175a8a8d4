"""Statements and initial values that are left out."""
import re

NOISE = {"fflush", "msleep", "reserve"}  # calls without an effect that a test could see
RESETS = {"clear", "reset", "restart"}
NO_VALUE = re.compile(r"0|'\\0'|false|nullptr|std::nullopt|\{\s*\}")


def left_out_statement(finder, cursor):
    if not finder.is_statement(cursor):
        return
    statement = finder.unwrapped(cursor)
    assigned = assigned_value(finder, statement)
    if assigned and is_no_value(finder, assigned):
        rule = "not reset"
    elif assigned or is_change(finder, statement):
        rule = "dropped assignment"
    elif statement.spelling in RESETS:
        rule = "not reset"
    elif statement.spelling in NOISE:
        return
    else:
        rule = "removed call"
    finder.add(rule, finder.range_of(cursor), "(void)0")


def assigned_value(finder, cursor):
    parts = finder.infix(cursor)
    return finder.unwrapped(parts[3]) if parts and parts[1] == "=" else None


def is_change(finder, cursor):
    """True for +=, ++ and the like."""
    kinds = finder.kinds
    if cursor.kind == kinds.COMPOUND_ASSIGNMENT_OPERATOR:
        return True
    if cursor.kind == kinds.UNARY_OPERATOR:
        return bool(re.match(r"\+\+|--|.*(\+\+|--)$", finder.text_of(cursor)))
    return cursor.kind == kinds.CALL_EXPR and cursor.spelling in ("operator+=", "operator-=", "operator++")


def is_no_value(finder, cursor):
    """True for 0, false, T() and the like."""
    text, called = finder.text_of(cursor), cursor.referenced
    is_object = not called or called.kind == finder.kinds.CONSTRUCTOR
    return bool(NO_VALUE.fullmatch(text) or is_object and re.fullmatch(r"[\w:<>]+(\(\)|\{\})", text))


def default_value(finder, cursor):
    """A member gets the value of its type instead of the one that its declaration gives it."""
    if cursor.kind != finder.kinds.FIELD_DECL:
        return
    values = [one for one in cursor.get_children() if one.kind.is_expression()]
    given = re.search(r"=\s*", finder.text_of(cursor))
    if not values or not given:
        return
    value = finder.unwrapped(values[-1])
    constant = value.referenced
    is_first = constant and constant.kind == finder.kinds.ENUM_CONSTANT_DECL and constant.enum_value == 0
    if not is_first and not is_no_value(finder, value) and not finder.text_of(value).startswith("="):
        finder.add("dropped assignment", finder.range_of(values[-1]), "{}")


def initialiser(finder, cursor):
    """The same for a member that the constructor initialises."""
    if cursor.kind != finder.kinds.CONSTRUCTOR:
        return
    for member in cursor.get_children():
        if member.kind != finder.kinds.MEMBER_REF or not has_default(finder, member.referenced):
            continue
        start = finder.range_of(member)[1]
        end = closing_bracket(finder.text, start)
        if end > start + 2:
            finder.add("dropped assignment", (start, end), "()")


def has_default(finder, field):
    kinds = finder.kinds
    field_type = field.type.get_canonical()
    if field_type.spelling.endswith("&"):
        return False
    constructors = [one for one in field_type.get_declaration().get_children() if one.kind == kinds.CONSTRUCTOR]
    return not constructors or any(not list(one.get_arguments()) for one in constructors)


def closing_bracket(text, start):
    """Returns the offset behind the bracket that closes the one at `start`."""
    depth = 0
    for place in range(start, len(text)):
        depth += {b"(": 1, b"{": 1, b")": -1, b"}": -1}.get(text[place:place + 1], 0)
        if depth == 0:
            return place + 1
    return start


RULES = [left_out_statement, default_value, initialiser]
