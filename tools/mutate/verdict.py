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


def contradicts(survivors, tried, goal):
    """Whether the goal is missed, one-sided, with that confidence."""
    return chance_of_as_many(survivors, tried, goal) < 1 - CONFIDENCE


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

    def problem(self):
        survivors, goal = self.counts["survived"], self.component.mutants
        if contradicts(survivors, self.tried(), goal):
            return (f"{self.component.name}: {survivors} of {self.tried()} changes survived; "
                    f"that contradicts the goal of {goal:g} %")
        return None

    def row(self):
        counts = " | ".join(str(self.counts[outcome]) for outcome in OUTCOMES)
        return (f"| {self.component.name} | {counts} | {self.percent():.1f} % "
                f"| {self.component.mutants:g} % |\n")


HEAD = ("| component | caught | survived | equivalent | do not compile | part caught | goal |\n"
        "|---|---|---|---|---|---|---|\n")
