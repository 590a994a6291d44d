"""The command lines of the check, one row each (README.md says how to add one)."""

import dataclasses

BANK = 65536


@dataclasses.dataclass(frozen=True)
class Line:
    """A command line and the directory it runs in.

    files      name: size (a file of zeros), or its bytes
    locale     LC_ALL; anything but C.UTF-8 is one that the build made
    folder     the library's directory, as bytes
    may_lack   files that need not open: without one the run goes on in another, stated way
    defaults   settings files: one that does not exist or may not be read counts as empty
    unresolved files of a signature check that goes on without them: their fields keep the given name
    answers    lines for the recording plug-ins (tests/blackbox/journal.h)
    """

    name: str
    text: str
    files: dict = dataclasses.field(default_factory=dict)
    locale: str = "C.UTF-8"
    folder: bytes = b"lib"
    may_lack: tuple = ()
    defaults: tuple = ()
    unresolved: tuple = ()
    answers: tuple = ()


A = {"a.bin": BANK + 1}
SIGNED = {**A, "s.sig": 1, "v.pem": 1, "k.pem": 1, "n.pem": 1}
PREFIX = "[ISP_Fw]\nstrFwPrefix=%s\n"
USER_DEFINED = b"""[UserDefinedInfo]
RecordSIMode=0
SIName=RT 20
RecordModelMode=1
ModelName=77 50
RecordPanelMode=0
PanelName=P2
RecordVersionMode=2
Version=2 3
"""

LINES = [
    Line("isp", "p --isp --fw a.bin", A),
    Line("isp_several_files",
         "p --isp --fw a.bin --bank 3 --fw1 b.bin --bank1 7 --fw4=c.bin --bank4=200 --fw9 d.bin --bank9 9",
         {**A, "b.bin": 1, "c.bin": 3 * BANK, "d.bin": 2 * BANK}),
    Line("ispuser", "p --ispuser --fw a.bin --flagaddr 0x1F000 --flagdata 1,2,3,0xFF,5,6,7,8", A),
    Line("ispdiff", "p --ispdiff --fw a.bin --comm 3 --slave 0x6E --comparever --ispchannel", A),
    Line("ispcopy", "p --ispcopy --fw a.bin --sendextracmd both --mergefwgen gen1 --cmd", A),
    Line("recordver_fwbin", "p --recordver --fwbin --fw a.bin --comm 5", A),
    Line("recordver_flash",
         "p --recordver --flash --veraddr 0x100 --totalverlen 8 --majorverlen 2 --subverlen 2 "
         "--recordvermode 1"),
    Line("recordver_userdefined", "p --recordver --userdefined 3 --comm 2"),
    Line("dumpflash", "p --dumpflash --dumpaddr 0x100 --dumplen 0x200 --dumpname größe€.bin"),
    Line("mergefwinfo", "p --mergefwinfo --write 1.2.3.4 --mergeinfotype hpfriends --mergefwgen gen2"),
    Line("userdefinedinfo", "p --userdefinedinfo --infotype hpfwname --comm 4",
         answers=("GetUserDefinedInfoFromDDCCI prints a name",)),
    Line("i2cwrite", "p --i2cwrite --writedata 0x6E,0x51,0x82,1,2 --ddccicmd"),
    Line("getscalertype", "p --getscalertype --comm 2"),
    Line("edpisp", "p --edpisp --edpmode readver --comm 3"),
    Line("boot_pass",
         "p --isp --fw a.bin --bank 9 --comm 4 --sw --factory --newboot --boot boot.bin",
         {**A, "boot.bin": BANK + 5}, may_lack=("boot.bin",)),
    Line("sw_lenovo", "p --isp --fw a.bin --sw --dsmode 1 --signfile s.sig --vkfile v.pem --subcert c.pem",
         SIGNED, may_lack=("s.sig", "v.pem")),
    Line("sw_internal_key", "p --isp --fw a.bin --sw --dsmode 2 --keypair 3 --signfile s.sig", SIGNED,
         may_lack=("s.sig",)),
    Line("sw_external_key", "p --isp --fw a.bin --sw --dsmode 3 --signfile s.sig --vkfile v.pem", SIGNED,
         may_lack=("s.sig", "v.pem")),
    Line("sw_key_from_flash", "p --isp --fw a.bin --bank 7 --comm 3 --sw --dsmode 4 --signfile s.sig",
         SIGNED, may_lack=("s.sig",), unresolved=("a.bin", "s.sig"), answers=("GetKeyFromFlash key 1220",)),
    Line("hw_isp", "p --isp --fw a.bin --hw --signfile s.sig", SIGNED),
    Line("sign_hw", "p --sign --hw --fw a.bin --signfile s.sig --nextvkfile n.pem --skfile k.pem", SIGNED,
         may_lack=("k.pem",)),
    Line("sign_sw", "p --sign --sw --dsmode 3 --fw a.bin --skfile k.pem", SIGNED),
    Line("verify", "p --verify --sw --dsmode 3 --fw a.bin --signfile s.sig --vkfile v.pem", SIGNED),
    Line("search_auto", "p --isp --searchfw auto --bank 3 --fw1 b.rom --bank1 90",
         {"only.bin": BANK, "b.rom": 1, "c.txt": 1}),
    Line("search_prefix", "p --isp --searchfw prefix",
         {"IspSetting.ini": (PREFIX % "größe").encode(), "größe_1.bin": 1, "other.bin": 1},
         defaults=("IspSetting.ini",)),
    Line("search_user_defined", "p --isp --searchfw userdefined",
         {"IspUserDefined.txt": USER_DEFINED, "RT10-M1-P1-1.2.bin": 1, "RT20-M2-P2-2.3.bin": 1},
         defaults=("IspUserDefined.txt",)),
    Line("settings_file", "p --isp --settingfile s.ini --searchfw prefix",
         {"s.ini": (PREFIX % "second").encode(), "first.bin": 1, "second.bin": BANK},
         defaults=("s.ini",)),
    Line("two_of_one_prefix", "p --isp --searchfw auto", {"a.bin": 1, "b.bin": 1}),
    Line("directory_in_utf8", 'p --isp --fw "größe 名.bin"', {"größe 名.bin": BANK + 1},
         folder="Prüf ファイル".encode()),
    Line("eucjp", "p --isp --searchfw prefix",
         {"IspSetting.ini": (PREFIX % "名").encode("euc_jp"), "名_1.bin": 1, "x.bin": 1},
         locale="ja_JP.EUC-JP", folder="ab".encode(), defaults=("IspSetting.ini",)),
    Line("latin1", "p --resetmcu --settingfile s.ini", locale="de_DE.ISO-8859-1",
         folder="größe".encode("latin-1")),
    Line("quotes", 'p --isp --fw="my monitor.bin" --bank "2"', {"my monitor.bin": BANK}),
]
