"""Something is not compared: an operand of a condition or a member in std::tie is left out."""


def not_compared(finder, cursor):
    left_out_operand(finder, cursor)
    left_out_member(finder, cursor)


def left_out_operand(finder, cursor):
    parts = finder.infix(cursor)
    if not parts or parts[1] not in ("&&", "||"):
        return
    left, operator, _, right = parts
    whole = finder.range_of(left)[0], finder.range_of(right)[1]
    finder.add("not compared", (finder.range_of(left)[1], whole[1]), "")
    before = finder.infix(finder.unwrapped(left))
    if not before or before[1] != operator:  # otherwise its own operands are left out one by one
        finder.add("not compared", (whole[0], finder.range_of(right)[0]), "")


def left_out_member(finder, cursor):
    if cursor.kind != finder.kinds.CALL_EXPR:
        return
    if cursor.spelling == "tie":
        for span in entries(finder, cursor):
            if not any(tie_pair(finder, one) for one in finder.ancestors):
                finder.add("not compared", span, "")
    pair = tie_pair(finder, cursor)
    if not pair:
        return
    (start, _), (_, end) = (finder.range_of(one) for one in pair)
    for first, second in zip(*(entries(finder, one) for one in pair)):
        text = finder.text
        kept = text[start:first[0]] + text[first[1]:second[0]] + text[second[1]:end]
        finder.add("not compared", (start, end), kept.decode())


def tie_pair(finder, cursor):
    """Returns the two std::tie of a comparison, or None."""
    parts = finder.infix(cursor)
    pair = [finder.unwrapped(one) for one in (parts[0], parts[3])] if parts else []
    return pair if len(pair) == 2 and all(one.spelling == "tie" for one in pair) else None


def entries(finder, tie):
    """Returns the range of each entry with one comma."""
    given = [finder.range_of(one) for one in tie.get_arguments()]
    if len(given) < 2:
        return []
    first = [(given[0][0], given[1][0])]
    return first + [(before[1], one[1]) for before, one in zip(given, given[1:])]
