"""A key or an option is accepted and ignored: the value that it would have by default is used."""
import functools
import re

from planted_faults.tree import ROOT, tracked_files

SETTINGS = {"LineSettings", "Link", "StationSettings", "Variable"}  # what the keys of a file set


def ignored_setting(finder, cursor):
    field = cursor.referenced
    if cursor.kind != finder.kinds.MEMBER_REF_EXPR or not field or field.kind != finder.kinds.FIELD_DECL:
        return
    owner = field.semantic_parent.spelling
    text = finder.text_of(cursor)
    if not finder.is_read(cursor) or within_tie(finder) or is_returned_reference(finder):
        return
    if owner in SETTINGS:
        finder.add("ignored setting", finder.range_of(cursor), f"{owner}().{field.spelling}")
    elif re.fullmatch(r"\w+", text) and is_option(field.spelling, finder.file):
        finder.add("ignored setting", finder.range_of(cursor), f"decltype({text}){default_of(field)}")


def within_tie(finder):
    """std::tie takes no temporary object."""
    return any(one.kind == finder.kinds.CALL_EXPR and one.spelling == "tie" for one in finder.ancestors)


def is_returned_reference(finder):
    functions = [one for one in finder.ancestors if finder.is_function(one)]
    return (finder.parent.kind == finder.kinds.RETURN_STMT
            and functions and functions[-1].result_type.spelling.endswith("&"))


def is_option(name, file):
    return file.startswith("host/commands/") and re.search(rf"\b{name}\b", options_code())


@functools.lru_cache
def options_code():
    """The beginnings of all calls that declare an option."""
    code = "".join((ROOT / name).read_text() for name in tracked_files("host/commands"))
    return "\n".join(re.findall(r"add_(?:option|flag)\w*(?:<[^>]*>)?\(\s*\"[^\"]*\",\s*(\w+)", code))


def default_of(field):
    """The value that the declaration of the member gives, in brackets."""
    tokens = [one.spelling for one in field.get_tokens()]
    if "=" not in tokens:
        return "()"
    value = " ".join(tokens[tokens.index("=") + 1:])
    return value if value.startswith("{") else f"({value})"


RULES = [ignored_setting]
