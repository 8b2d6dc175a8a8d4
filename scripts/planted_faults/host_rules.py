"""The rules for the host: what a maintainer in a hurry or a refactoring leaves behind."""
from planted_faults import condition_rule, option_rule, order_rule, statement_rules, unit_rules, value_rules
from planted_faults.finder import Finder

RULES = [*statement_rules.RULES, order_rule.moved_call, condition_rule.not_compared, *option_rule.RULES,
         *value_rules.RULES, *unit_rules.RULES]


class HostRules(Finder):
    def apply(self, cursor):
        if any(one.kind == self.kinds.CALL_EXPR and one.spelling in statement_rules.NOISE for one in self.ancestors):
            return
        for rule in RULES:
            rule(self, cursor)
