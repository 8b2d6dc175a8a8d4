"""Finds all faults that the rules generate, with libclang."""
import multiprocessing
import os
import re
import subprocess

from planted_faults.fault import Fault
from planted_faults.tree import ROOT, tracked_files

SOURCES = ["driver", "bytes", "lists", "store", "frames", "exchange", "include/velko_modbus_rtu.h"]

COMPARISONS = {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"],
               ">": [">=", "<="], ">=": [">", "<"]}
CONNECTIVES = {"&&": "||", "||": "&&"}
ORDERED = {"-", "/", "%", "<<", ">>"}  # swapped operands change the result
COMMUTATIVE_CALLS = {"qMin", "qMax"}


def compile_flags():
    qt = subprocess.run(["pkg-config", "--cflags", "Qt5Core"], check=True, capture_output=True,
                        text=True)
    return ["-std=c++11", "-x", "c++", "-I.", "-Iinclude", "-fPIC", *qt.stdout.split()]


class Finder:
    """The candidates of one file."""

    def __init__(self, file, flags):
        import clang.cindex as clang  # imported here, after scripts/setup has installed it
        self.kinds = clang.CursorKind
        self.record = clang.TypeKind.RECORD
        self.file = file
        self.text = (ROOT / file).read_bytes()
        self.found = {}
        with_macros = clang.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD
        unit = clang.Index.create().parse(file, flags, options=with_macros)
        errors = [str(one) for one in unit.diagnostics if one.severity >= clang.Diagnostic.Error]
        if errors:
            raise SystemExit("plant-faults: libclang cannot read this:\n" + "\n".join(errors))
        own = [one for one in unit.cursor.get_children()
               if one.location.file and one.location.file.name == file]
        self.macros = [self.range_of(one) for one in own if one.kind == self.kinds.MACRO_INSTANTIATION]
        for cursor in own:
            if not cursor.kind.is_preprocessing():
                self.visit(cursor, None, "")

    def visit(self, cursor, parent, function):
        kinds = self.kinds
        if cursor.kind == kinds.STATIC_ASSERT:
            return
        if cursor.kind in (kinds.FUNCTION_DECL, kinds.CXX_METHOD, kinds.CONSTRUCTOR, kinds.DESTRUCTOR):
            function = cursor.spelling
        self.function = function
        self.literals(cursor)
        self.operators(cursor)
        self.conditions(cursor)
        self.arguments(cursor)
        self.statements(cursor, parent)
        self.guards(cursor)
        for child in cursor.get_children():
            self.visit(child, cursor, function)

    # The range of a cursor.

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

    # The rules.

    def literals(self, cursor):
        kinds = self.kinds
        span, text = self.range_of(cursor), self.text_of(cursor)
        if cursor.kind == kinds.INTEGER_LITERAL:
            number = re.fullmatch(r"(0[xX][0-9a-fA-F]+|[1-9][0-9]*|0)([uUlL]*)", text)
            if not number:
                return
            value, suffix = int(number[1], 0), number[2]
            more = f"0x{value + 1:X}" if text[:2] in ("0x", "0X") else str(value + 1)
            self.add("constant", span, more + suffix)
            if value:
                self.add("constant", span, "0" + suffix)
        elif cursor.kind == kinds.CXX_BOOL_LITERAL_EXPR:
            self.add("constant", span, "false" if text == "true" else "true")
        elif cursor.kind == kinds.CHARACTER_LITERAL:
            self.add("constant", span, f"char({text} + 1)")
        elif cursor.kind == kinds.ENUM_CONSTANT_DECL and text == cursor.spelling:
            self.add("constant", span, f"{text} = {cursor.enum_value + 1}")

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

    def operators(self, cursor):
        parts = self.infix(cursor)
        if not parts:
            return
        left, operator, span, right = parts
        for other in COMPARISONS.get(operator, []):
            self.add("comparison", span, other)
        if operator in CONNECTIVES:
            self.add("condition", span, CONNECTIVES[operator])
            self.negate(left)
            self.negate(right)
        if operator in ORDERED and cursor.kind == self.kinds.BINARY_OPERATOR:
            whole = self.range_of(left)[0], self.range_of(right)[1]
            self.add("swapped operands", whole, f"{self.grouped(right)} {operator} {self.grouped(left)}")

    def negate(self, condition):
        parts = self.infix(condition)
        if parts and parts[1] in COMPARISONS:
            return  # the rule for comparisons includes the negation
        self.add("condition", self.range_of(condition), "!" + self.grouped(condition))

    def conditions(self, cursor):
        kinds = self.kinds
        children = list(cursor.get_children())
        if cursor.kind in (kinds.IF_STMT, kinds.WHILE_STMT, kinds.CONDITIONAL_OPERATOR):
            self.negate(children[0])
        elif cursor.kind == kinds.FOR_STMT:
            head = self.text_of(cursor).partition(";")[0]
            start = self.range_of(cursor)[0] + len(head.encode()) + 1
            after = [child for child in children if self.range_of(child)[0] >= start]
            if after and self.followed_by(b";", after[0]):  # the condition, not the step or the body
                self.negate(after[0])

    def arguments(self, cursor):
        if (cursor.kind != self.kinds.CALL_EXPR or cursor.spelling.startswith("operator")
                or cursor.spelling in COMMUTATIVE_CALLS):
            return
        start, end = self.range_of(cursor)
        given = [one for one in cursor.get_arguments()  # without default arguments, which are elsewhere
                 if one and start < self.range_of(one)[0] < self.range_of(one)[1] < end]
        for left, right in zip(given, given[1:]):
            if self.plain_type(left) != self.plain_type(right):
                continue
            first, last = self.range_of(left), self.range_of(right)
            between = self.text[first[1]:last[0]].decode()
            self.add("swapped operands", (first[0], last[1]),
                     self.text_of(right) + between + self.text_of(left))

    @staticmethod
    def plain_type(cursor):
        return cursor.type.get_canonical().spelling.removeprefix("const ")

    def statements(self, cursor, parent):
        kinds = self.kinds
        if not parent:
            return
        blocks = (kinds.COMPOUND_STMT, kinds.CASE_STMT, kinds.DEFAULT_STMT)
        bodies = (kinds.IF_STMT, kinds.FOR_STMT, kinds.WHILE_STMT, kinds.CXX_FOR_RANGE_STMT)
        in_place = parent.kind in blocks or parent.kind in bodies and self.ends_as_body(cursor, parent)
        returns_nothing = cursor.kind == kinds.RETURN_STMT and not list(cursor.get_children())
        if in_place and self.followed_by(b";", cursor) and (cursor.kind.is_expression() or returns_nothing):
            self.add("removed call", self.range_of(cursor), "(void)0")

    def ends_as_body(self, cursor, parent):
        """Returns False for the parts of the head of a loop or condition."""
        children = list(parent.get_children())
        behind_condition = children[1:] if parent.kind == self.kinds.IF_STMT else children[-1:]
        return cursor in behind_condition

    def guards(self, cursor):
        """Removes unused objects, which exist only for their constructor and destructor."""
        kinds = self.kinds
        if cursor.kind != kinds.COMPOUND_STMT:
            return
        for statement in cursor.get_children():
            variables = list(statement.get_children()) if statement.kind == kinds.DECL_STMT else []
            if len(variables) != 1 or variables[0].type.get_canonical().kind != self.record:
                continue
            uses = [one for one in cursor.walk_preorder()
                    if one.kind == kinds.DECL_REF_EXPR and one.referenced == variables[0]]
            if not uses:
                self.add("removed call", self.range_of(statement), "(void)0;")


def faults_of(job):
    return list(Finder(*job).found.values())


def source_files():
    return [name for name in tracked_files(*SOURCES) if name.endswith((".cpp", ".h"))]


def find_candidates():
    flags = compile_flags()
    os.chdir(ROOT)  # the folders in the flags are relative to it
    with multiprocessing.Pool() as pool:
        return [fault for some in pool.map(faults_of, [(name, flags) for name in source_files()], 1)
                for fault in some]
