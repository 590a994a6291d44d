"""What a sample of changes says about a goal."""

import math

CONFIDENCE = 0.95
OUTCOMES = ("caught", "survived", "equivalent", "does not compile")


def chance_of_as_many(survivors, tried, goal):
    """How likely at least that many survive if exactly the goal is caught, in percent, is true."""
    rate = 1 - goal / 100
    fewer = sum(math.comb(tried, count) * rate ** count * (1 - rate) ** (tried - count)
                for count in range(survivors))
    return 1 - fewer


def contradicts(survivors, tried, goal, components=1):
    """Whether the goal is missed, one-sided; the confidence is that of all components together, so that each
    has to be missed more clearly."""
    return chance_of_as_many(survivors, tried, goal) < 1 - CONFIDENCE ** (1 / components)


class Tally:
    """The outcomes of one component."""

    def __init__(self, component):
        self.component = component
        self.counts = dict.fromkeys(OUTCOMES, 0)

    def add(self, outcome):
        self.counts[outcome] += 1

    def tried(self):
        return self.counts["caught"] + self.counts["survived"]

    def percent(self):
        return 100 * self.counts["caught"] / self.tried() if self.tried() else 100.0

    def row(self):
        counts = " | ".join(str(self.counts[outcome]) for outcome in OUTCOMES)
        return (f"| {self.component.name} | {counts} | {self.percent():.1f} % "
                f"| {self.component.mutants:g} % |\n")


HEAD = ("| component | caught | survived | equivalent | do not compile | part caught | goal |\n"
        "|---|---|---|---|---|---|---|\n")


def contradictions(tallies):
    """The goals that a sample contradicts, in words."""
    for tally in tallies:
        survivors, tried, goal = tally.counts["survived"], tally.tried(), tally.component.mutants
        if contradicts(survivors, tried, goal, len(tallies)):
            yield (f"{tally.component.name}: {survivors} of {tried} changes survived; "
                   f"that contradicts the goal of {goal:g} %")
