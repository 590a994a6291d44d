"""tools/mutate changes what it should and nothing else, understands its list, and judges goals as stated."""

import pathlib
import re
import sys
import tempfile
import unittest

TESTS = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TESTS.parent / "tools/mutate"))

from known import KnownChanges
from mutations import mutations_of
from nearest import NEAREST
from verdict import contradicts

CHANGES = (  # a source, and all that it may become
    ("bool a = b == 1;", {"bool a = b != 1;", "bool a = b == 2;"}),
    ("if (a < b) {}", {"if (a <= b) {}", "if (!(a < b)) {}"}),
    ("std::vector<int> a;", set()),
    ("const Type *a = &b;", set()),
    ("int a = b * 0x1F;", {"int a = b / 0x1F;", "int a = b * 0x20;"}),
    ("int a = 010;", set()),
    ("++a;", {"--a;", ";"}),
    ("Type a(b);", set()),
    ("std::map<int, int> a(b);", set()),
    ("Call(b);", {";"}),
    ("a.b = !c;", {";", "a.b = c;"}),
    ("return a;", set()),
    ("for (;;) { break; }", {"for (;;) { ; }"}),
    ("Type::~Type() = default;", set()),
    ("bool operator!() const;", set()),
    ('auto a = "two words";', {'auto a = "two ~";'}),
    ('auto a = "{:x} of\\n";', {'auto a = "{:x} ~\\n";'}),
    ('auto a = "";', {'auto a = "~";'}),
    ("auto a = L'b';", {"auto a = L'\\x7f';"}),
    ('extern "C" {}', set()),
    ('[[deprecated("by b")]] int a;', set()),
    ('static_assert(1 < 2, "text");', set()),
    ("#define A 1\n// 1 < 2\n/* true */", set()),
    ("#ifdef __APPLE__\nint a = 1;\n#else\nint a = 2;\n#endif", {
        "#ifdef __APPLE__\nint a = 1;\n#else\nint a = 3;\n#endif"}),
)


class Mutations(unittest.TestCase):
    def test_source_becomes_what_the_table_says(self):
        for source, changed in CHANGES:
            with self.subTest(source):
                self.assertEqual({each.changed() for each in mutations_of("a.cpp", source)}, changed)

    def test_key_does_not_change_if_lines_move(self):
        first, = mutations_of("a.cpp", "Call();")
        moved = list(mutations_of("a.cpp", "// more\n\n    Call();"))[0]
        self.assertEqual(first.key(), moved.key())


class Known(unittest.TestCase):
    def known(self, text):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write(text)
            file.flush()
            return KnownChanges(pathlib.Path(file.name))

    def test_entries_are_read(self):
        known = self.known("# a remark\n\ncaught a.cpp\n  x < y\n  x <= y\n\n"
                           "equivalent a.cpp\n  x\n  y\n  why: they are equal\n")
        self.assertTrue(known.is_caught(("a.cpp", "x < y", "x <= y")))
        self.assertEqual(known.reason(("a.cpp", "x", "y")), "they are equal")
        self.assertIsNone(known.reason(("a.cpp", "x < y", "x <= y")))

    def test_equivalent_without_reason_is_refused(self):
        with self.assertRaises(SystemExit):
            self.known("equivalent a.cpp\n  x\n  y\n")


class Nearest(unittest.TestCase):
    def test_every_program_is_one_of_the_tests(self):
        rules = "".join(path.read_text() for path in TESTS.rglob("CMakeLists.txt"))
        for name in {name for _, programs in NEAREST for name in programs}:
            with self.subTest(name):
                folder = TESTS / "unit" / name.removeprefix("unit_").replace("_", "/")
                self.assertTrue(re.search(rf"\({name}\b", rules) or folder.is_dir())

    def test_every_folder_is_there(self):
        for prefix, _ in NEAREST:
            with self.subTest(prefix):
                self.assertTrue((TESTS.parent / prefix).is_dir())


class Verdict(unittest.TestCase):
    def test_goal_is_contradicted_only_with_confidence(self):
        for survivors, tried, goal, expected in (
                (0, 0, 99, False), (0, 300, 99, False), (1, 4, 99, True), (1, 10, 99, False),
                (6, 300, 99, False), (7, 300, 99, True), (2, 4, 92, True), (1, 4, 92, False)):
            with self.subTest(survivors=survivors, tried=tried, goal=goal):
                self.assertEqual(contradicts(survivors, tried, goal), expected)

    def test_several_goals_share_the_confidence(self):
        for survivors, tried, goal, expected in (
                (1, 4, 99, False), (2, 4, 99, True), (1, 4, 96, False), (2, 4, 96, True),
                (2, 4, 92, False), (3, 4, 92, True)):
            with self.subTest(survivors=survivors, tried=tried, goal=goal):
                self.assertEqual(contradicts(survivors, tried, goal, components=3), expected)


if __name__ == "__main__":
    unittest.main()
