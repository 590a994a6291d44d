#!/usr/bin/env python3
"""The cases that do not run in the loader are the known ones, no more and no fewer.

usage: check_exclusions.py LIST CASE-FILE...
"""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "blackbox"))
from case_file import read_cases


def main():
    known = [line for line in pathlib.Path(sys.argv[1]).read_text().splitlines()
             if not line.startswith("#")]
    cases = [case for path in sys.argv[2:] for case in read_cases(path)[0]]
    left_out = sorted(case.name for case in cases if "not-in-loader" in case.single)
    print(f"{len(left_out)} of {len(cases)} cases do not run in the loader:")
    print("\n".join("    " + name for name in left_out))
    return 0 if left_out == sorted(known) else 1


if __name__ == "__main__":
    sys.exit(main())
