"""The three components, and what is asked of their tests; docs/testing.md says how it is measured."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Component:
    name: str
    folder: str
    lines: float  # goals, in percent
    branches: float
    mutants: float
    every_line: bool = False  # a line that no test reaches must be listed with its reason


COMPONENTS = (
    Component("library", "scaler_isp", lines=100, branches=97, mutants=99, every_line=True),
    Component("ispctl", "ispctl", lines=97, branches=90, mutants=96),
    Component("virtual scaler", "simulator", lines=97, branches=80, mutants=92),
)


def component_of(path):
    """The component to which a relative path belongs, or None."""
    return next((each for each in COMPONENTS if path.split("/")[0] == each.folder), None)
