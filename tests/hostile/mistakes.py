"""Mistakes of a command line, each refused whatever the firmware file is.

A row: name, line with {F} for the firmware file and {D} for the directory of good files, what is said of the
mistake, with "|" between alternatives.
"""

# With these the firmware file is of no use, so nobody looks at it.
FILE_IS_NOT_USED = {"no-action", "useless-action", "failing-action", "file-and-search", "wrong-keyword"}

MISTAKES = [
    ("misspelt-option", "--isp --fw {F} --bnak 3", "there is no option --bnak"),
    ("misspelt-action", "--ips --fw {F}", "there is no option --ips"),
    ("misspelt-file", "--isp --fw {F} --signflie {D}s.sig", "there is no option --signflie"),
    ("misspelt-ispctl-option", "--virtul --isp --fw {F}", "--virtul is not an option of the library"),
    ("ispctl-option-after", "--isp --fw {F} --virtual", "--virtual is not an option of the library"),
    ("ispctl-log-after", "--isp --fw {F} --log run.log", "--log is not an option of the library"),
    ("help-after", "--isp --fw {F} --help", "--help is not an option of the library"),
    ("missing-number", "--isp --fw {F} --bank", "--bank needs a value"),
    ("empty-number", "--isp --fw {F} --bank=", "the value of --bank is empty"),
    ("octal-digit", "--isp --fw {F} --bank 09", "is not an octal digit"),
    ("hexadecimal-without-0x", "--isp --fw {F} --slave 6E", "is not a number"),
    ("over-long-number", "--isp --fw {F} --bank 4294967299", "does not fit into 32 bits"),
    ("negative-number", "--isp --fw {F} --bank -1", "is out of range"),
    ("number-with-unit", "--isp --fw {F} --bank 16k", "\"k\" follows the digits"),
    ("slave-out-of-range", "--isp --fw {F} --slave 255", "is out of range"),
    ("unknown-interface", "--isp --fw {F} --comm 99", "is out of range"),
    ("two-actions", "--isp --ispdiff --fw {F}", "is an action, and"),
    ("no-action", "--fw {F}", "the line has no action"),
    ("useless-action", "--srstatus --fw {F}", "calls none of its functions"),
    ("failing-action", "--erase --fw {F}", "can only end with 0x6"),
    ("refused-action", "--factoryisp --fw {F}", "is an action that the library always refuses"),
    ("signature-without-type", "--isp --fw {F} --signfile {D}s.sig --vkfile {D}k.pem --dsmode 3",
     "is ignored without --sw or --hw"),
    ("both-types", "--isp --fw {F} --sw --hw --signfile {D}s.sig", "--hw cannot be used together with --sw"),
    ("type-without-signature", "--isp --fw {F} --sw",
     "--sw cannot be used without|--sw changes nothing without"),
    ("mode-without-key", "--isp --fw {F} --sw --signfile {D}s.sig --dsmode 3",
     "--dsmode cannot be used without|--dsmode changes nothing without"),
    ("key-without-mode", "--isp --fw {F} --sw --signfile {D}s.sig --vkfile {D}k.pem", "no key is checked"),
    ("wrong-mode", "--isp --fw {F} --sw --signfile {D}s.sig --dsmode 5", "is out of range"),
    ("file-and-search", "--isp --fw {F} --searchfw auto", "--searchfw cannot be used together with --fw"),
    ("bank-without-file", "--isp --fw {F} --bank1 9",
     "--bank1 cannot be used without --fw1|--bank1 changes nothing without --fw1"),
    ("file-twice", "--isp --fw {F} --fw {D}g.bin", "is given a second time"),
    ("boot-alone", "--isp --fw {F} --boot {D}boot.bin", "--boot changes nothing without"),
    ("boot-not-programmed", "--isp --fw {F} --hw --boot {D}boot.bin", "--boot is incomplete without"),
    ("flag-without-address", "--ispuser --fw {F} --flagdata 1,2", "--flagdata changes nothing without"),
    ("wrong-separator", "--ispuser --fw {F} --flagaddr 0 --flagdata 1.2", "the library expects"),
    ("value-of-flag", "--isp --newboot=1 --fw {F}", "--newboot takes no value"),
    ("wrong-keyword", "--edpisp --edpmode ips --fw {F}", "is not a word that --edpmode knows"),
    ("leftover", "--isp --fw {F} more", "\"more\" belongs to no option"),
    ("value-like-option", "--isp --fw {F} --signfile --sw", "as the value of --signfile"),
    ("missing-second-file", "--isp --fw {F} --fw1 {D}none.bin --bank1 9", "there is no file"),
    ("settings-after-search", "--isp --fw {F} --settingfile {D}none.ini", "there is no file"),
]
