"""The rows of the result."""

import dataclasses
import statistics


def median(values):
    return statistics.median(values)


@dataclasses.dataclass
class Row:
    what: str
    ours: str
    against: str
    value: float  # the ratio, or the figure itself
    goal: float
    unit: str = ""
    at_least: bool = False

    def passes(self):
        return self.value >= self.goal if self.at_least else self.value <= self.goal

    def line(self):
        sign = ">=" if self.at_least else "<="
        return (
            f"| {self.what} | {self.ours} | {self.against} | {self.value:.2f}{self.unit} "
            f"| {sign} {self.goal:g}{self.unit} | {'pass' if self.passes() else 'MISSED'} |"
        )


def ratio(what, ours, theirs, goal, form):
    """A row of medians; `form` shows one of them."""
    return Row(what, form(median(ours)), form(median(theirs)), median(ours) / median(theirs), goal)


HEAD = "| what | Corvane | against | figure | reach | |\n| --- | --- | --- | --- | --- | --- |"


def milliseconds(seconds):
    return f"{seconds * 1e3:.0f} ms"


def megabytes(size):
    return f"{size:.1f} MB"
