#!/usr/bin/env python3
"""What tools/option_rows.py makes of a table of options, and what it finds wrong with a page."""

import unittest

import option_rows

WORDS = 'constexpr OptionKeyword kColours[] = {{"red", 1},\n    {"blue", 2}};\n'


def table(*lines):
    return WORDS + "kOptions = {{\n" + "".join(f"    {line}\n" for line in lines) + "}};\n"


GOOD = table('// Options: lights', '// lights up | --colour', 'FlagRow("light", Action, 0x1),',
             'FlagRow("shine", Action, 0x2), // like --light',
             '// which one', 'KeywordRow("colour", 5, &Args::ulColour, kColours,',
             '           "wrong colour!"),',
             '// Options: files', '// file | the first part,', '// and the second | not --light',
             'TextRow("fw", 1, &Args::strFw),', '// bytes | data', 'FlagRow("write", Rw, 2, true),')


class Table(unittest.TestCase):
    def test_rows_and_comments_become_entries(self):
        entries, problems = option_rows.read(GOOD, 5)
        self.assertEqual(problems, [])
        self.assertEqual([(e.names, e.purpose, e.value, e.meaning, e.also) for e in entries], [
            (["light", "shine"], "lights", "", "lights up", "`--colour`"),
            (["colour"], "lights", "`red`, `blue`", "which one", ""),
            (["fw"], "files", "file", "the first part, and the second", "not `--light`"),
            (["write"], "files", "bytes", "data", ""),
        ])

    def test_row_that_is_not_understood_is_reported(self):
        _, problems = option_rows.read(table('// Options: a', '// b', 'OddRow["x"],'), 1)
        self.assertEqual(problems, [f"{option_rows.TABLE}: 0 rows are understood, there are 1"])

    def test_row_without_a_comment_is_reported(self):
        first = ['// Options: a', '// b', 'FlagRow("x", A, 1),']
        for lines in (['FlagRow("y", A, 2),'],
                      ['FlagRow("y", A, 2), // like --z'],
                      ['// only a value', 'TextRow("y", 1, &A::b),'],
                      ['// a | b | c | d', 'TextRow("y", 1, &A::b),']):
            with self.subTest(lines=lines):
                self.assertEqual(option_rows.read(table(*first, *lines), 2)[1], [
                    f"{option_rows.TABLE}: --y has no comment of the form value | meaning | with"])


class Page(unittest.TestCase):
    END = "<!-- end of table -->\n"
    TABLES = ("<!-- table: options lights -->\n| `--light`, `--shine` |  | as --other |  |\n" + END +
              "<!-- table: options files -->\n| `--fw` | file |  |  |\n" + END)

    def problems(self, text, options=("light", "shine", "fw")):
        return option_rows.problems_of_page("page", text, options, {"other"})

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
