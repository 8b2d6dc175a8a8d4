"""The tables of docs/json.md, and lines that are checked against them."""
import os
import re

PAGE = os.path.join(os.path.dirname(__file__), "..", "docs", "json.md")
EVERY_LINE, EVERY_LINE_OF_POLL = "In every line", "In every line of `poll`"
SIMPLE = {
    "text": lambda value: isinstance(value, str),
    "integer": lambda value: isinstance(value, int) and not isinstance(value, bool),
    "number": lambda value: isinstance(value, (int, float)) and not isinstance(value, bool),
    "boolean": lambda value: isinstance(value, bool),
    "list": lambda value: isinstance(value, list) and all(isinstance(one, (int, float, str)) for one in value),
    "null": lambda value: value is None,
    "time": lambda value: re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z", str(value)),
}


class JsonPage:
    """Checks lines; `unseen` are the fields, as "EVENT.FIELD", that no line had so far."""

    def __init__(self):
        self.tables = self.read_tables()
        self.unseen = {f"{table}.{field}" for table, fields in self.tables.items() for field in fields}

    @staticmethod
    def read_tables():
        """Heading -> field -> (type, is it always present?). Shared tables are merged into the others."""
        tables, names, is_poll = {}, [], False
        with open(PAGE, encoding="utf-8") as page:
            for line in page:
                cells = [cell.strip() for cell in line.split("|")]
                if line.startswith("#"):
                    heading = line.strip("# \n")
                    is_poll = "poll" in heading if line.startswith("## ") else is_poll
                    names = [heading] if heading.startswith("In every") else heading.replace("`", "").split(", ")
                elif len(cells) == 7 and cells[1].startswith("`"):
                    for name in names:
                        fields = tables.setdefault(name, {})
                        if not name.startswith("In every") and name != "gap" and not fields:
                            fields.update(tables[EVERY_LINE])
                            fields.update(tables[EVERY_LINE_OF_POLL] if is_poll else {})
                        fields[cells[1].strip("`")] = (cells[2], cells[4] == "always")
        del tables[EVERY_LINE], tables[EVERY_LINE_OF_POLL]
        return tables

    def check(self, line):
        """Raises AssertionError if the page does not describe the line."""
        self.check_object(line, line["event"])

    def check_object(self, item, name):
        fields = self.tables[name]
        for field, (kind, is_required) in fields.items():
            if field in item:
                self.unseen.discard(f"{name}.{field}")
                assert self.fits(item[field], kind), f"{name}.{field} is not {kind}: {item}"
            assert field in item or not is_required, f"{name}.{field} is missing: {item}"
        assert item.keys() <= fields.keys(), f"{name}: {item.keys() - fields.keys()} are not on the page: {item}"

    def fits(self, value, kind):
        """Does the value have the type? `kind` is a cell of the column "type"."""
        container, _, part = kind.partition(" of ")
        if container == "list" and part:
            return isinstance(value, list) and all(self.fits(one, part) for one in value)
        if container == "object":
            return isinstance(value, dict) and all(self.fits(one, part) for one in value.values())
        if kind in self.tables:
            self.check_object(value, kind)
            return True
        return any(f'`"{value}"`' == one if one.startswith("`") else SIMPLE[one](value) for one in kind.split(", "))
