#!/usr/bin/env python3
"""Names the tests that a run skipped; with CI=true in the environment they are a failure.

usage: check_skipped.py JUNIT-FILE
"""

import os
import sys
import xml.etree.ElementTree


def main():
    cases = list(xml.etree.ElementTree.parse(sys.argv[1]).iter("testcase"))
    skipped = [case.get("name") for case in cases
               if case.get("status") in ("notrun", "disabled") or case.find("skipped") is not None]
    for name in skipped:
        print(f"skipped: {name}")
    print(f"{len(cases) - len(skipped)} tests ran, {len(skipped)} were skipped")
    return 1 if skipped and os.environ.get("CI") == "true" else 0


if __name__ == "__main__":
    sys.exit(main())
