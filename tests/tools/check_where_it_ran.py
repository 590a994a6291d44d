#!/usr/bin/env python3
"""The table of what ran where follows the results, and its check rejects what no command could have shown."""

import pathlib
import tempfile

import where_it_ran

LIBRARY = ("library", "macOS x86_64", where_it_ran.LOADER)
ON_A_MAC = ("library", "macOS arm64", where_it_ran.REAL)
CLAIM = "`./dev macos x86_64`: black-box cases"
RESULTS = '''<testsuite><testcase name="blackbox.banks" status="run"/>{}</testsuite>'''
FAILED = '<testcase name="blackbox.search" status="fail"><failure/></testcase>'
OTHER = '<testsuite><testcase name="selftest" status="run"/></testsuite>'


def cell_with(results, shown):
    """What becomes of the cell of the library with these results of the tests."""
    with tempfile.TemporaryDirectory() as place:
        where_it_ran.ROOT = pathlib.Path(place)
        if results:
            folder = where_it_ran.ROOT / "build/macos/x86_64"
            folder.mkdir(parents=True)
            (folder / "tests.xml").write_text(results)
        return where_it_ran.cell_of(*LIBRARY, {LIBRARY: shown})


def claims():
    return {key: where_it_ran.NONE.get(key[1:], where_it_ran.NO) for key in where_it_ran.everything()}


def main():
    root = where_it_ran.ROOT
    assert cell_with(RESULTS.format(""), "no") == CLAIM
    assert cell_with(RESULTS.format(FAILED), CLAIM) == "no"
    assert cell_with("", CLAIM) == CLAIM, "without results the page stays as it is"
    assert cell_with(OTHER, CLAIM) == CLAIM, "other tests say nothing about it"
    where_it_ran.ROOT = root
    assert not list(where_it_ran.page_problems(claims()))
    assert list(where_it_ran.page_problems({**claims(), LIBRARY: "yes"}))
    assert list(where_it_ran.page_problems({**claims(), ON_A_MAC: "`./dev macos arm64`: black-box cases"}))
    assert list(where_it_ran.differences({**claims(), LIBRARY: CLAIM}, claims()))
    assert not list(where_it_ran.missing_commands())
    print("cells follow the results; a claim for a Mac is rejected")


if __name__ == "__main__":
    main()
