"""Walks through the code of one file with libclang. The rules are in the classes that derive from Finder."""
import os
import re

from planted_faults.fault import Fault
from planted_faults.tree import ROOT


def parse(file, flags):
    """Returns the code of the file and of what it includes."""
    import clang.cindex as clang  # imported here, after scripts/setup has installed it
    with_macros = clang.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD
    unit = clang.Index.create().parse(file, flags, options=with_macros)
    errors = [str(one) for one in unit.diagnostics if one.severity >= clang.Diagnostic.Error]
    if errors:
        raise SystemExit("plant-faults: libclang cannot read this:\n" + "\n".join(errors))
    return unit


class Finder:
    """The candidates of one file. A derived class adds them in `apply`."""

    def __init__(self, unit, file):
        import clang.cindex as clang
        self.kinds = clang.CursorKind
        self.record = clang.TypeKind.RECORD
        self.file = file
        self.text = (ROOT / file).read_bytes()
        self.found = {}
        own = [one for one in unit.cursor.get_children()
               if one.location.file and os.path.normpath(one.location.file.name) == file]
        self.macros = [self.range_of(one) for one in own if one.kind == self.kinds.MACRO_INSTANTIATION]
        self.ancestors = []  # of the visited cursor, outermost first
        for cursor in own:
            if not cursor.kind.is_preprocessing():
                self.visit(cursor, "")

    def visit(self, cursor, function):
        if cursor.kind == self.kinds.STATIC_ASSERT:
            return
        if self.is_function(cursor):
            function = cursor.spelling
        self.function = function
        self.apply(cursor)
        self.ancestors.append(cursor)
        for child in cursor.get_children():
            self.visit(child, function)
        self.ancestors.pop()

    def apply(self, cursor):
        """Adds the candidates of this cursor."""
        raise NotImplementedError

    @property
    def parent(self):
        """The parent of the visited cursor, or None."""
        return self.ancestors[-1] if self.ancestors else None

    # The text of a cursor.

    @staticmethod
    def range_of(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def text_of(self, cursor):
        start, end = self.range_of(cursor)
        return self.text[start:end].decode()

    def grouped(self, cursor):
        text = self.text_of(cursor)
        closed = cursor.kind == self.kinds.PAREN_EXPR or re.fullmatch(r"\w+", text)
        return text if closed else f"({text})"

    def followed_by(self, character, cursor):
        return self.text[self.range_of(cursor)[1]:].lstrip().startswith(character)

    def add(self, rule, span, replacement):
        """Adds a candidate, unless the code comes from a macro or an earlier rule made the same fault."""
        start, end = span
        in_macro = any(start < last and first < end for first, last in self.macros)
        if start > end or in_macro or self.text[start:end] == replacement.encode():
            return
        first = self.text.rfind(b"\n", 0, start) + 1
        last = self.text.find(b"\n", end)
        was = self.text[first:last]
        becomes = self.text[first:start] + replacement.encode() + self.text[end:last]
        one_line = [" ".join(part.decode().split()) for part in (was, becomes)]
        fault = Fault(rule, self.file, self.text.count(b"\n", 0, start) + 1, self.function, start, end,
                      replacement.encode(), *one_line)
        self.found.setdefault((start, end, replacement), fault)

    # Parts of the code.

    def is_function(self, cursor):
        kinds = self.kinds
        return cursor.kind in (kinds.FUNCTION_DECL, kinds.CXX_METHOD, kinds.CONSTRUCTOR, kinds.DESTRUCTOR,
                               kinds.FUNCTION_TEMPLATE)

    def infix(self, cursor):
        """Returns left operand, operator, its range and right operand of a binary operator, or None."""
        kinds = self.kinds
        operands = list(cursor.get_children())
        if cursor.kind == kinds.CALL_EXPR and cursor.spelling.startswith("operator"):
            operands = operands[:1] + operands[2:]  # without the operator function
        elif cursor.kind != kinds.BINARY_OPERATOR:
            return None
        if len(operands) != 2:
            return None
        left, right = operands
        start, end = self.range_of(left)[1], self.range_of(right)[0]
        between = self.text[start:end].decode()
        operator = between.strip()
        start += between.find(operator)
        return left, operator, (start, start + len(operator)), right

    def unwrapped(self, cursor):
        """The expression without the implicit conversions around it."""
        while cursor.kind == self.kinds.UNEXPOSED_EXPR:
            inner = list(cursor.get_children())
            if len(inner) != 1:
                break
            cursor = inner[0]
        return cursor

    def is_read(self, cursor):
        """True if the visited cursor, a variable or a member, is only read here."""
        kinds = self.kinds
        if cursor.type.is_const_qualified():
            return True
        for user in reversed(self.ancestors):
            target = user.referenced
            if user.kind == kinds.MEMBER_REF_EXPR and target and target.kind == kinds.CXX_METHOD:
                return target.is_const_method()
            if user.kind not in (kinds.PAREN_EXPR, kinds.MEMBER_REF_EXPR):
                return user.kind == kinds.UNEXPOSED_EXPR  # a conversion to a value or to something constant
        return False

    @staticmethod
    def plain_type(cursor):
        return cursor.type.get_canonical().spelling.removeprefix("const ")

    def is_statement(self, cursor):
        """True if the visited cursor is an expression that is a statement of its own."""
        return self.is_in_place(cursor) and cursor.kind.is_expression()

    def is_in_place(self, cursor):
        """True if the visited cursor is the body of something or a part of a block, before its semicolon."""
        kinds, parent = self.kinds, self.parent
        if not parent:
            return False
        blocks = (kinds.COMPOUND_STMT, kinds.CASE_STMT, kinds.DEFAULT_STMT)
        bodies = (kinds.IF_STMT, kinds.FOR_STMT, kinds.WHILE_STMT, kinds.CXX_FOR_RANGE_STMT)
        in_place = parent.kind in blocks or parent.kind in bodies and self.ends_as_body(cursor, parent)
        return in_place and self.followed_by(b";", cursor)

    def ends_as_body(self, cursor, parent):
        """Returns False for the parts of the head of a loop or condition."""
        children = list(parent.get_children())
        behind_condition = children[1:] if parent.kind == self.kinds.IF_STMT else children[-1:]
        return cursor in behind_condition
