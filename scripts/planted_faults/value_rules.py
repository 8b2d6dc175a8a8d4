"""The other one of two values of the same type is used: a variable, a parameter or a member."""


def other_variable(finder, cursor):
    kinds = finder.kinds
    used = cursor.referenced
    if cursor.kind != kinds.DECL_REF_EXPR or not used or used.kind not in (kinds.VAR_DECL, kinds.PARM_DECL):
        return
    if finder.text_of(cursor) != used.spelling or not finder.is_read(cursor):
        return
    visible = visible_variables(finder, cursor)
    if used not in visible:
        return
    place = visible.index(used)
    nearest = [*reversed(visible[:place]), *visible[place + 1:]]
    other = next((one for one in nearest if fits(used, one)), None)
    if other:
        finder.add("other value", finder.range_of(cursor), other.spelling)


def visible_variables(finder, cursor):
    """Returns the parameters and local variables that are declared before the cursor, in order of declaration."""
    kinds, start = finder.kinds, finder.range_of(cursor)[0]
    found = []
    for place in reversed(finder.ancestors):
        for child in place.get_children():
            variables = child.get_children() if child.kind == kinds.DECL_STMT else [child]
            found += [one for one in variables
                      if one.kind in (kinds.VAR_DECL, kinds.PARM_DECL) and finder.range_of(one)[1] <= start]
        if finder.is_function(place) or place.kind == kinds.LAMBDA_EXPR:  # which sees only what it captures
            break
    return sorted((one for one in found if one.spelling), key=lambda one: one.extent.start.offset)


def fits(used, other):
    return (other.spelling != used.spelling and plain(other) == plain(used)
            and (is_constant(used) or not is_constant(other)))


def plain(cursor):
    """Returns the type without const and reference."""
    return cursor.type.get_canonical().spelling.removeprefix("const ").removesuffix("&").strip()


def is_constant(cursor):
    return cursor.type.get_canonical().spelling.startswith("const ")


def other_member(finder, cursor):
    kinds, used = finder.kinds, cursor.referenced
    if cursor.kind != kinds.MEMBER_REF_EXPR or not used or used.kind != kinds.FIELD_DECL or not finder.is_read(cursor):
        return
    owner = used.semantic_parent
    same = [one for one in owner.get_children()
            if one.kind == kinds.FIELD_DECL and one.type.get_canonical() == used.type.get_canonical()]
    if len(same) < 2 or used not in same:
        return
    other = same[(same.index(used) + 1) % len(same)]
    end = finder.range_of(cursor)[1]
    finder.add("other value", (end - len(used.spelling), end), other.spelling)


RULES = [other_variable, other_member]
