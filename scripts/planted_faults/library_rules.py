"""The rules for the library: changed operators and constants, negated conditions, swapped operands, removed
calls."""
import re

from planted_faults.finder import Finder

COMPARISONS = {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"],
               ">": [">=", "<="], ">=": [">", "<"]}
CONNECTIVES = {"&&": "||", "||": "&&"}
ORDERED = {"-", "/", "%", "<<", ">>"}  # swapped operands change the result
COMMUTATIVE_CALLS = {"qMin", "qMax"}


class LibraryRules(Finder):
    def apply(self, cursor):
        self.literals(cursor)
        self.operators(cursor)
        self.conditions(cursor)
        self.arguments(cursor)
        self.statements(cursor)
        self.guards(cursor)

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

    def statements(self, cursor):
        returns_nothing = cursor.kind == self.kinds.RETURN_STMT and not list(cursor.get_children())
        if self.is_statement(cursor) or returns_nothing and self.is_in_place(cursor):
            self.add("removed call", self.range_of(cursor), "(void)0")

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
