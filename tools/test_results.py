#!/usr/bin/env python3
"""Repeats the end of what failed tests printed, and names the tests that a run skipped; with CI=true in the
environment a skipped test is a failure.

usage: test_results.py JUNIT-FILE
"""

import os
import sys
import xml.etree.ElementTree

LAST_LINES = 40


def main():
    cases = list(xml.etree.ElementTree.parse(sys.argv[1]).iter("testcase"))
    skipped = [case.get("name") for case in cases
               if case.get("status") in ("notrun", "disabled") or case.find("skipped") is not None]
    failed = [case for case in cases if case.find("failure") is not None]
    for name in skipped:
        print(f"skipped: {name}")
    for case in failed:
        print(f"failed: {case.get('name')}")
        for line in (case.findtext("system-out") or "").splitlines()[-LAST_LINES:]:
            print(f"    {line}")
    print(f"{len(cases) - len(skipped)} tests ran, {len(failed)} failed, {len(skipped)} were skipped")
    return 1 if failed or skipped and os.environ.get("CI") == "true" else 0


if __name__ == "__main__":
    sys.exit(main())
