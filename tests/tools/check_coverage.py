"""tools/coverage.py counts lines and outcomes as llvm-cov means them, and its floors only rise."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

from coverage import raised_floors
from covered_source import Segment, compiled_away, line_counts, outcomes_of, runs_of


def start(line, column, count):
    return Segment(line, column, count, True, True)


def back(line, column, count):
    """Where the code around goes on."""
    return Segment(line, column, count, True, False)


class Lines(unittest.TestCase):
    def test_line_has_highest_count_of_what_begins_or_continues_in_it(self):
        segments = [start(1, 10, 5), start(2, 9, 0), back(4, 6, 5), start(5, 3, 7),
                    Segment(6, 2, 0, False, False)]
        self.assertEqual(line_counts(segments), {1: 5, 2: 5, 3: 0, 4: 0, 5: 7, 6: 7})

    def test_lines_outside_functions_do_not_count(self):
        segments = [start(1, 1, 1), Segment(1, 9, 0, False, False), start(4, 1, 0),
                    Segment(4, 9, 0, False, False)]
        self.assertEqual(line_counts(segments), {1: 1, 4: 0})

    def test_gap_does_not_begin_code(self):
        segments = [start(1, 1, 3), Segment(2, 5, 0, True, True, True), back(2, 9, 3),
                    Segment(3, 2, 0, False, False)]
        self.assertEqual(line_counts(segments), {1: 3, 2: 3, 3: 3})

    def test_file_without_code_has_no_lines(self):
        self.assertEqual(line_counts([]), {})

    def test_consecutive_lines_are_one_run(self):
        self.assertEqual(runs_of([7, 3, 4, 5]), [(3, 5), (7, 7)])

    def test_functions_evaluated_at_compile_time_do_not_count(self):
        text = ["constexpr int F() {", "    return 1;", "}", "int G() {", "}"]
        self.assertEqual(list(compiled_away([1, 2, 3], text)), [1, 2, 3])
        self.assertEqual(list(compiled_away([4, 5], text)), [])


class Outcomes(unittest.TestCase):
    def outcomes(self, branches, text, segments=(start(1, 1, 4),)):
        return [tuple(each) for each in outcomes_of(branches, list(segments), [text])]

    def test_instantiations_count_together(self):
        self.assertEqual(self.outcomes([(1, 5, 1, 9, 2, 0), (1, 5, 1, 9, 0, 3)], "if (a)"),
                         [(1, 5, "true", 2), (1, 5, "false", 3)])

    def test_condition_that_was_never_evaluated_misses_both(self):
        self.assertEqual(self.outcomes([(1, 5, 1, 9, 0, 0)], "if (a)", [start(1, 1, 0)]),
                         [(1, 5, "true", 0), (1, 5, "false", 0)])

    def test_value_that_the_compiler_knows_is_no_condition(self):
        self.assertEqual(self.outcomes([(1, 5, 1, 9, 0, 0)], "if (a)"), [])
        self.assertEqual(self.outcomes([(1, 15, 1, 19, 0, 4)], "if constexpr (a)"), [])


class Floors(unittest.TestCase):
    def test_floor_rises_with_slack_and_never_falls(self):
        self.assertEqual(raised_floors({"a": (90.0, 95.0)}, {"a": (96.27, 95.1)}), {"a": (95.2, 95.0)})
        self.assertEqual(raised_floors({}, {"a": (50.0, 60.0)}), {"a": (49.0, 59.0)})


if __name__ == "__main__":
    unittest.main()
