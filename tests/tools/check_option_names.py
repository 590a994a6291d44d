#!/usr/bin/env python3
"""What tools/option_names.py finds wrong with a page."""

import unittest

import option_names


class Page(unittest.TestCase):
    END = "<!-- end of table -->\n"
    TABLES = ("<!-- table: options lights -->\n| `--light`, `--shine` |  | as --other |  |\n" + END +
              "<!-- table: options files -->\n| `--fw` | file |  |  |\n" + END)

    def problems(self, text, options=("light", "shine", "fw")):
        return option_names.problems_of_page("page", text, options, {"other"})

    def test_page_with_all_options_is_fine(self):
        self.assertEqual(self.problems(self.TABLES + "`--light` and --fw=x, `--` and --other\n"), [])

    def test_missing_option_is_reported(self):
        self.assertEqual(
            self.problems(self.TABLES + "`--colour` x\n", ("light", "shine", "fw", "colour")),
            ["page: no table explains --colour"])

    def test_name_that_is_no_option_is_reported(self):
        self.assertEqual(self.problems(self.TABLES + "\n`--lights`\n"),
                         ["page:8: there is no option --lights"])

    def test_short_name_stands_only_where_abbreviations_are_told(self):
        self.assertEqual(self.problems(self.TABLES + "--li\n"), ["page:7: there is no option --li"])
        self.assertEqual(self.problems(self.TABLES + "abbreviated: --li --lo\n"),
                         ["page:7: there is no option --lo"])


if __name__ == "__main__":
    unittest.main()
