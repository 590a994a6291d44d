"""What a run reached of each source, from the export of llvm-cov.

Its own summaries are not used: they count a condition of a template once for each instantiation, so that one
with many types would weigh more than a whole file.
"""

import bisect
import collections
import dataclasses
import json
import os
import subprocess

from tracked_files import ROOT

Segment = collections.namedtuple("Segment", "line column count counted entry gap", defaults=(False,))


@dataclasses.dataclass
class CoveredSource:
    """One source: its lines with their counts, and the outcomes of its conditions."""

    path: str
    lines: dict  # line: how often it was reached
    outcomes: list  # (line, column, which outcome, how often)

    def missed_lines(self):
        return [line for line, count in self.lines.items() if count == 0]

    def missed_outcomes(self):
        return [(line, column, which) for line, column, which, count in self.outcomes if count == 0]


def is_start(segment):
    return segment.entry and segment.counted and not segment.gap


def line_counts(segments):
    """Counts of all lines with code: the highest of what begins in a line, or continues in it."""
    by_line = collections.defaultdict(list)
    for segment in segments:
        by_line[segment.line].append(segment)
    counts, before = {}, None
    for line in range(segments[0].line, segments[-1].line + 1) if segments else ():
        here = by_line.get(line, [])
        starts = [segment.count for segment in here if is_start(segment)]
        skipped = bool(here) and here[0].entry and not here[0].counted
        if not skipped and (starts or before and before.counted):
            counts[line] = max(starts + ([before.count] if before else []))
        before = here[-1] if here else before
    return counts


def reached_at(segments, line, column):
    """How often the code at a place was reached."""
    index = bisect.bisect_right(segments, (line, column, float("inf"))) - 1
    return segments[index].count if index >= 0 else 0


def outcomes_of(branches, segments, text):
    """Both outcomes of each condition, those of all instantiations together."""
    sums = collections.defaultdict(lambda: [0, 0])
    for line, column, end_line, end_column, taken, not_taken, *_ in branches:
        sums[line, column, end_line, end_column][0] += taken
        sums[line, column, end_line, end_column][1] += not_taken
    for (line, column, _, _), counts in sorted(sums.items()):
        if "if constexpr" in text[line - 1][:column]:
            continue
        # Reached without any outcome: the compiler knows the value, so there is no choice.
        if counts == [0, 0] and reached_at(segments, line, column):
            continue
        yield line, column, "true", counts[0]
        yield line, column, "false", counts[1]


def runs_of(lines):
    """Consecutive lines together: (first, last)."""
    runs = []
    for line in sorted(lines):
        if runs and line == runs[-1][1] + 1:
            runs[-1] = (runs[-1][0], line)
        else:
            runs.append((line, line))
    return runs


def compiled_away(missed, text):
    """Lines of functions that are evaluated at compile time: no run can count them."""
    for first, last in runs_of(missed):
        if "constexpr " in text[first - 1] or "consteval " in text[first - 1]:
            yield from range(first, last + 1)


def covered_source(path, file):
    segments = [Segment(*each) for each in file["segments"]]
    text = (ROOT / path).read_text().splitlines()
    source = CoveredSource(path, line_counts(segments), list(outcomes_of(file["branches"], segments, text)))
    away = set(compiled_away(source.missed_lines(), text))
    source.lines = {line: count for line, count in source.lines.items() if line not in away}
    source.outcomes = [each for each in source.outcomes if each[0] not in away]
    return source


def covered_sources(llvm_cov, profile, objects, folders):
    """A CoveredSource for each source in the folders, sorted by path."""
    command = [llvm_cov, "export", "--format=text", "--skip-expansions", f"--instr-profile={profile}",
               str(objects[0])]
    for each in objects[1:]:
        command += ["-object", str(each)]
    exported = json.loads(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)
    # A compiler cache may have made the paths relative to the build.
    files = {os.path.relpath(file["filename"], ROOT): file for file in exported["data"][0]["files"]}
    return [covered_source(path, file) for path, file in sorted(files.items())
            if path.split("/")[0] in folders]
