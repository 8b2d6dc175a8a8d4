"""Two neighbouring statements are swapped."""
import re

# Calls whose order among themselves has no effect that a test would look at.
UNORDERED = re.compile(r"\badd_?\w*([Oo]ption|flag)|\bfooter\b|\bdescription\b|\bset\w*\(|\bclose\(")
CHANGES = {"operator=", "operator+=", "operator-=", "operator<<", "operator++", "operator--"}
ACCESSES = {"at", "back", "begin", "data", "end", "find", "front", "get"}  # change nothing by themselves
OWN = re.compile(r"(\./)?(host|include)/")


class Effect:
    """What a statement reads and changes, as far as it shows."""

    def __init__(self, finder, statement):
        self.finder = finder
        self.reads, self.writes = set(), set()  # texts such as `link.line`
        self.reads_state = False  # of the object or of other objects
        self.changes_state = False
        self.is_open = False      # may change anything
        self.is_timed = False     # depends on the time
        self.declared = None
        kinds = finder.kinds
        if statement.kind == kinds.DECL_STMT:
            variables = [one for one in statement.get_children() if one.kind == kinds.VAR_DECL]
            self.declared = variables[0].spelling if len(variables) == 1 else ""
            self.writes.add(self.declared)
        self.look(statement)

    def look(self, cursor):
        if self.is_variable(cursor):
            self.read(cursor)
            return
        changed = self.changed_by(cursor)
        if changed is not None:
            self.change(changed)
        if cursor.kind == self.finder.kinds.CALL_EXPR:
            self.call(cursor)
        for child in cursor.get_children():
            self.look(child)

    def read(self, cursor):
        self.reads.add(self.place_of(cursor))
        self.reads_state |= not self.is_local(cursor)
        owner = self.owner_of(cursor)
        if owner and not self.is_variable(owner):
            self.look(owner)

    def change(self, cursor):
        self.writes.add(self.place_of(cursor))
        self.changes_state |= not self.is_local(cursor)

    def owner_of(self, cursor):
        inner = list(cursor.get_children())
        return self.finder.unwrapped(inner[0]) if inner else None

    def is_local(self, cursor):
        """True for a local variable and its members."""
        cursor = self.finder.unwrapped(cursor)
        while self.is_variable(cursor) and self.owner_of(cursor):
            cursor = self.owner_of(cursor)
        return (cursor.kind == self.finder.kinds.DECL_REF_EXPR and self.is_variable(cursor)
                and not cursor.referenced.type.spelling.endswith("&"))

    def is_variable(self, cursor):
        kinds, target = self.finder.kinds, cursor.referenced
        return bool(target and cursor.kind in (kinds.DECL_REF_EXPR, kinds.MEMBER_REF_EXPR)
                    and target.kind in (kinds.VAR_DECL, kinds.PARM_DECL, kinds.FIELD_DECL))

    def changed_by(self, cursor):
        """Returns the operand that an assignment, ++ or the like changes."""
        kinds, finder = self.finder.kinds, self.finder
        children = list(cursor.get_children())
        if cursor.kind == kinds.COMPOUND_ASSIGNMENT_OPERATOR or (
                cursor.kind == kinds.CALL_EXPR and cursor.spelling in CHANGES and children):
            return children[0]
        if cursor.kind == kinds.UNARY_OPERATOR and re.search(r"\+\+|--|&", finder.text_of(cursor)):
            return children[0]
        parts = finder.infix(cursor)
        return parts[0] if parts and parts[1] == "=" else None

    def call(self, cursor):
        kinds = self.finder.kinds
        target = cursor.referenced
        if not target:
            self.is_open = True
            return
        is_own = target.location.file and OWN.match(target.location.file.name)
        if target.kind == kinds.CONSTRUCTOR or cursor.spelling.startswith("operator"):
            return
        if target.kind == kinds.CXX_METHOD:
            if target.is_static_method():
                self.is_timed |= cursor.spelling == "now"
            elif target.is_const_method():
                self.reads_state |= bool(is_own)
            elif is_own:
                self.is_open = True
            elif cursor.spelling not in ACCESSES:
                self.change_object(cursor)
        elif is_own:
            constant = all(not one.type.spelling.endswith("&") or one.type.spelling.startswith("const ")
                           for one in target.get_arguments())
            self.is_open |= not constant or target.result_type.spelling == "void"
        elif not self.is_standard(target):
            self.is_open = True  # a function of the system

    @staticmethod
    def is_standard(target):
        """True for a function in namespace std or in one of its namespaces."""
        place = target.semantic_parent
        while place and place.semantic_parent and place.spelling != "std":
            place = place.semantic_parent
        return bool(place and place.spelling == "std")

    def change_object(self, cursor):
        children = list(cursor.get_children())
        base = list(children[0].get_children()) if children else []
        if base:
            self.change(base[0])

    def place_of(self, cursor):
        return re.sub(r"\s+|^this->", "", self.finder.text_of(self.finder.unwrapped(cursor))).replace("->", ".")


def moved_call(finder, cursor):
    if cursor.kind != finder.kinds.COMPOUND_STMT:
        return
    statements = list(cursor.get_children())
    for first, second in zip(statements, statements[1:]):
        if not is_simple(finder, first) or not is_simple(finder, second):
            continue
        if finder.text_of(first) == finder.text_of(second):
            continue
        if matters(finder, first, second):
            swap(finder, first, second)


def is_simple(finder, statement):
    kinds = finder.kinds
    if statement.kind == kinds.DECL_STMT:
        return True
    return (statement.kind.is_expression() and finder.followed_by(b";", statement)
            and statement.kind != kinds.CXX_THROW_EXPR)


def matters(finder, first, second):
    """False if the order of the statements has no effect, or if the second one needs what the first one declares."""
    if all(UNORDERED.search(finder.text_of(one)) for one in (first, second)):
        return False
    one, other = Effect(finder, first), Effect(finder, second)
    if one.declared is not None and re.search(rf"\b{one.declared}\b", finder.text_of(second)):
        return False
    return (touches(one.writes, other) or touches(other.writes, one)
            or one.is_open and reaches_out(other) or other.is_open and reaches_out(one))


def touches(changed, effect):
    return any(place == one or place.startswith(one + ".") or one.startswith(place + ".")
               for one in changed for place in effect.reads | effect.writes)


def reaches_out(effect):
    """True if it depends on something that a call could change, or changes what a call could read."""
    return effect.is_open or effect.is_timed or effect.reads_state or effect.changes_state


def swap(finder, first, second):
    ends = []
    for statement in (first, second):
        start, end = finder.range_of(statement)
        if statement.kind != finder.kinds.DECL_STMT:
            end = finder.text.index(b";", end) + 1
        ends.append((start, end))
    text = finder.text
    (start, middle), (begin, end) = ends
    swapped = text[begin:end] + text[middle:begin] + text[start:middle]
    finder.add("moved call", (start, end), swapped.decode())
