// Saves settings under faults, one child process for each order of the driver.
//
//   settings_host orders FOLDER WRITER SCENARIO   orders (injected.h) on standard input
//   settings_host kills FOLDER WRITER COUNT SEED  kills saving processes at random instants
//   settings_host writers FOLDER WRITER COUNT     two processes, each with keys of its own
//   settings_host threads FOLDER WRITER COUNT     two threads likewise
//   settings_host full FOLDER WRITER limit|disk   saves where the file cannot grow
//
// FOLDER/old.ini holds the old contents; the file that is written is FOLDER/run/s.ini. After each
// save the contents and everything else of FOLDER/run go to the report, standard output as it was:
// a line of numbers, then the bytes that it announces.

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <sched.h>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "injected.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/common/CCpNxString.h"
#include "scaler_isp/settings/FwPathStore.h"
#include "scaler_isp/settings/ProfileStore.h"

namespace {

namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;
constexpr int kNoResult = -2; // of a writer that returns nothing

injector g_injector;
fs::path g_folder;
FILE *g_report;

[[noreturn]] void GiveUp(const std::string &what) {
    std::fprintf(stderr, "settings_host: %s: %s\n", what.c_str(), std::strerror(errno));
    std::exit(2);
}

std::wstring Wide(const fs::path &path) {
    return path.wstring();
}

// ---- the four writers; what they write depends on nothing but the number. Everything that the
// host itself needs is made before, so that no fault meets it. ----

using Save = std::function<int()>;

Save PrepareWide(const fs::path &file, int number) {
    return [value = L"gr\u00F6\u00DFe" + std::to_wstring(number), name = Wide(file)] {
        return CpNxWritePrivateProfileStringW(L"ISP_Fw", L"strFwPrefix", value.c_str(),
                                              name.c_str());
    };
}

Save PrepareNarrow(const fs::path &file, int number) {
    return [value = "prefix" + std::to_string(number), name = file.string()] {
        return CpNxWritePrivateProfileStringA("ISP_Fw", "strFwPrefix", value.c_str(), name.c_str());
    };
}

Save PrepareRecord(const fs::path &file, int number) {
    const auto record = std::make_shared<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
    const std::wstring name = Wide(file);
    const std::wstring path = L"/fw/" + std::to_wstring(number) + L".bin";
    std::wcsncpy(record->wszSettingFile, name.c_str(), std::size(record->wszSettingFile) - 1);
    record->stMapFw.ulFwCount = 3;
    for (unsigned int i = 0; i < 3; ++i) {
        record->stMapFw.ulTargetBank[i] = i;
        std::wcsncpy(record->stMapFw.stFwBank[i].wszFwPath, path.c_str(), 259);
    }
    return [record] {
        record->SaveSetting();
        return kNoResult;
    };
}

Save PrepareFirmwarePath(const fs::path &file, int number) {
    const auto firmware = std::make_shared<CCpNxString>(Wide(g_folder / "fw.bin").c_str());
    const auto name = std::make_shared<CCpNxString>(Wide(file).c_str());
    return [firmware, name, number] { // good for one call: the function takes them by value
        SaveFwPathFromFile(std::move(*firmware), std::move(*name),
                           static_cast<unsigned int>(number % 8));
        return kNoResult;
    };
}

using Writer = Save (*)(const fs::path &, int);

Writer WriterNamed(const std::string &name) {
    return name == "wide"     ? PrepareWide
           : name == "narrow" ? PrepareNarrow
           : name == "record" ? PrepareRecord
                              : PrepareFirmwarePath;
}

// ---- files ----

std::string ReadAll(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void WriteAll(const fs::path &path, const std::string &bytes) {
    std::ofstream file(path, std::ios::binary);
    if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
        GiveUp(path);
    }
}

void Own(const fs::path &path, mode_t mode, uid_t owner) {
    if (::geteuid() == 0 && ::chown(path.c_str(), owner, owner) != 0) {
        GiveUp(path);
    }
    ::chmod(path.c_str(), mode);
}

/// FOLDER/run as the scenario wants it, with the old file in it.
void Stage(const std::string &scenario) {
    const fs::path run = g_folder / "run";
    const fs::path file = run / "s.ini";
    ::chmod(run.c_str(), 0755);
    fs::remove_all(run);
    fs::create_directory(run);
    Own(run, 0755, 0);
    if (scenario == "missing") {
        return;
    }
    fs::path real = file;
    if (scenario == "symbolic_link") {
        fs::create_directory(run / "real");
        real = run / "real" / "target.ini";
        fs::create_symlink("real/target.ini", file);
    }
    WriteAll(real, ReadAll(g_folder / "old.ini"));
    ::setxattr(real.c_str(), "user.a-note-too-long-for-a-small-string", "kept", 4,
               0); // not every file system has them
    Own(real, 0640, 1234);
    if (scenario == "second_link") {
        fs::create_hard_link(file, run / "other.ini");
    } else if (scenario == "write_only") {
        Own(file, 0200, kNobody);
        Own(run, 0755, kNobody);
    } else if (scenario == "read_only_directory") {
        Own(file, 0644, kNobody);
        Own(run, 0555, 0);
    }
}

bool IsForNobody(const std::string &scenario) {
    return scenario == "write_only" || scenario == "read_only_directory";
}

/// Names, and whatever a save must keep, of everything below FOLDER/run.
std::string Surroundings() {
    std::vector<std::string> lines;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(g_folder / "run")) {
        struct stat status {};
        std::array<char, 64> note{};
        std::ostringstream line;
        ::lstat(entry.path().c_str(), &status);
        line << entry.path().lexically_relative(g_folder / "run").string() << " mode " << std::oct
             << status.st_mode << std::dec << " owner " << status.st_uid << ":" << status.st_gid;
        if (S_ISREG(status.st_mode)) {
            ::getxattr(entry.path().c_str(), "user.a-note-too-long-for-a-small-string", note.data(),
                       note.size() - 1);
            line << " links " << status.st_nlink << " note " << note.data();
        }
        lines.push_back(line.str());
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\n";
    }
    return text;
}

// ---- one disturbed save ----

struct Outcome {
    int stage; // 1 in the disturbed save, 2 in the next one, 3 after both
    int result;
    int next_result;
    long injected;
    long new_of_others;
    int new_descriptors;
    std::array<long, FAULTS_COUNT> calls;
};

struct Side {
    std::string contents;
    std::string surroundings;
    std::string out;
};

Side Look() {
    return {ReadAll(g_folder / "run/s.ini"), Surroundings(), ReadAll(g_folder / "out.txt")};
}

/// The child: one save under the order, or the undisturbed one after it.
void SaveUnder(const order &order, Writer writer, Outcome &outcome, bool next) {
    std::array<unsigned char, MAX_DESCRIPTORS> before{};
    ::alarm(seconds_to_a_hang());
    const Save save = writer(g_folder / "run/s.ini", 1);
    int &result = next ? outcome.next_result : outcome.result;
    open_descriptors(before.data());
    const long others = g_injector.live_of_others();
    outcome.stage = next ? 2 : 1;
    g_injector.arm(next ? -1 : order.operation, order.first, order.forever, order.error);
    result = save();
    g_injector.disarm();
    std::fflush(stdout);
    if (!next) {
        outcome.injected = g_injector.injected();
        for (int i = 0; i < FAULTS_COUNT; ++i) {
            outcome.calls[static_cast<std::size_t>(i)] = g_injector.calls(i);
        }
        outcome.new_descriptors = count_new_descriptors(before.data());
        outcome.new_of_others = g_injector.live_of_others() - others;
    }
    outcome.stage = next ? 3 : 2;
}

int InChild(bool forNobody, auto body) {
    int status = 0;
    const pid_t child = ::fork();
    if (child == 0) {
        if (forNobody && ::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
            ::_exit(2);
        }
        body();
        ::_exit(0);
    }
    if (child < 0 || ::waitpid(child, &status, 0) != child) {
        GiveUp("fork");
    }
    return status;
}

void Report(const order &order, int status, const Outcome &outcome,
            const std::array<Side, 3> &sides) {
    std::fprintf(g_report, "%d %ld %d %d %d %d %ld %d %ld %d %d", order.operation, order.first,
                 order.forever, order.error, status, outcome.stage, outcome.injected,
                 outcome.new_descriptors, outcome.new_of_others, outcome.result,
                 outcome.next_result);
    for (const Side &side : sides) {
        std::fprintf(g_report, " %zu %zu %zu", side.contents.size(), side.surroundings.size(),
                     side.out.size());
    }
    for (const long calls : outcome.calls) {
        std::fprintf(g_report, " %ld", calls);
    }
    std::fputc('\n', g_report);
    for (const Side &side : sides) {
        for (const std::string *text : {&side.contents, &side.surroundings, &side.out}) {
            std::fwrite(text->data(), 1, text->size(), g_report);
        }
    }
    std::fflush(g_report);
}

/// Both saves happen in processes of their own, because the first may have been killed.
void RunOrder(const order &order, Writer writer, const std::string &scenario, Outcome &outcome) {
    outcome = {};
    const bool forNobody = IsForNobody(scenario);
    fs::resize_file(g_folder / "out.txt", 0);
    const Side staged = Look();
    const int status = InChild(forNobody, [&] { SaveUnder(order, writer, outcome, false); });
    std::array<Side, 3> sides;
    sides[2] = staged;
    sides[0] = Look();
    fs::resize_file(g_folder / "out.txt", 0);
    if (outcome.stage == 2 || WIFSIGNALED(status)) {
        const int next = InChild(forNobody, [&] { SaveUnder(order, writer, outcome, true); });
        outcome.stage = next == 0 ? 3 : 2;
    }
    sides[1] = Look();
    Report(order, status, outcome, sides);
}

// ---- the modes ----

Outcome &SharedOutcome() {
    void *memory =
        ::mmap(nullptr, sizeof(Outcome), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        GiveUp("mmap");
    }
    return *static_cast<Outcome *>(memory);
}

void RunOrders(Writer writer, const std::string &scenario) {
    Outcome &outcome = SharedOutcome();
    order order{};
    // The first save of a process also builds what the C++ library keeps; it is no leak.
    Stage("missing");
    writer(g_folder / "run/s.ini", 1)();
    writer(g_folder / "run/s.ini", 1)();
    while (read_order(stdin, &order) != 0) {
        Stage(scenario);
        if (scenario == "planted") {
            const std::string name = ReadAll(g_folder / "temporary_name");
            fs::create_symlink(g_folder / "victim", g_folder / "run" / name);
        }
        RunOrder(order, writer, scenario, outcome);
    }
}

/// Each round: a process saves again and again until it is killed.
void RunKills(Writer writer, int count, unsigned int seed) {
    Outcome &outcome = SharedOutcome();
    std::mt19937 random(seed);
    Stage("existing");
    for (int round = 0; round < count; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int number = 0;; ++number) {
                writer(g_folder / "run/s.ini", number)();
            }
        }
        ::usleep(static_cast<useconds_t>(500 + random() % 4000));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        outcome = {};
        outcome.stage = 3;
        std::array<Side, 3> sides;
        sides[0] = Look();
        if (sides[0].contents.size() < fs::file_size(g_folder / "old.ini")) {
            Stage("existing"); // lost already; the next round shall have something to lose
        }
        if (round + 1 == count) {
            outcome.next_result = writer(g_folder / "run/s.ini", 1)();
            sides[1] = Look();
        }
        Report({-1, round + 1, 0, 0}, 0, outcome, sides);
    }
}

/// Keys of its own for each of two writers; both families write, and the file is one.
void WriteKeys(Writer writer, int which, int count, int &refused) {
    const fs::path file = g_folder / "run/s.ini";
    for (int i = 0; i < count; ++i) {
        const std::wstring key = L"key" + std::to_wstring(i);
        const std::wstring section = L"writer" + std::to_wstring(which);
        const std::string narrowKey(key.begin(), key.end());
        const std::string narrowSection(section.begin(), section.end());
        const int result =
            writer == PrepareNarrow
                ? CpNxWritePrivateProfileStringA(narrowSection.c_str(), narrowKey.c_str(), "value",
                                                 file.c_str())
                : CpNxWritePrivateProfileStringW(section.c_str(), key.c_str(), L"value",
                                                 Wide(file).c_str());
        refused += result != 1;
    }
}

void RunWriters(Writer writer, int count, bool threads) {
    Outcome &outcome = SharedOutcome();
    Stage("existing");
    int refused = 0;
    if (threads) {
        int refusedThere = 0;
        std::thread other([&] { WriteKeys(writer, 1, count, refusedThere); });
        WriteKeys(writer, 0, count, refused);
        other.join();
        refused += refusedThere;
    } else {
        const pid_t child = ::fork();
        if (child == 0) {
            WriteKeys(writer, 1, count, refused);
            ::_exit(refused == 0 ? 0 : 1);
        }
        int status = 0;
        WriteKeys(writer, 0, count, refused);
        ::waitpid(child, &status, 0);
        refused += status != 0;
    }
    outcome.stage = 3;
    outcome.result = refused;
    Report({-1, 1, 0, 0}, 0, outcome, {Look(), Side{}, Side{}});
}

/// A real disk of 256 KiB in a mount namespace of this process, with so many pages left free.
void MakeSmallDisk(int freePages) {
    const fs::path run = g_folder / "run";
    if (::mount("none", run.c_str(), "tmpfs", 0, "size=256k") != 0) {
        GiveUp("mount");
    }
    WriteAll(run / "s.ini", ReadAll(g_folder / "old.ini"));
    std::ofstream filler(run / "filler", std::ios::binary);
    while (filler.put('x').flush()) {
    }
    filler.close();
    const auto size = fs::file_size(run / "filler");
    fs::resize_file(run / "filler", size - std::min<std::uintmax_t>(
                                               size, static_cast<unsigned>(freePages) * 4096U));
}

void RunFull(Writer writer, bool disk) {
    Outcome &outcome = SharedOutcome();
    const order order{-1, 1, 0, 0};
    if (disk && (::unshare(CLONE_NEWNS) != 0 ||
                 ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)) {
        return; // the driver says so
    }
    std::signal(SIGXFSZ, SIG_IGN);
    Stage("existing");
    writer(g_folder / "run/s.ini", 1)();
    const auto before = fs::file_size(g_folder / "old.ini");
    // Pages left free, or bytes that the file may grow; the last is enough for anything.
    for (const int step : {0, 1, 4, 30}) {
        Stage("existing");
        if (disk) {
            MakeSmallDisk(step);
        }
        outcome = {};
        fs::resize_file(g_folder / "out.txt", 0);
        const int status = InChild(false, [&] {
            const rlimit limit{before + static_cast<unsigned>(step), RLIM_INFINITY};
            if (!disk) {
                ::setrlimit(RLIMIT_FSIZE, &limit);
            }
            SaveUnder(order, writer, outcome, false);
        });
        std::array<Side, 3> sides{Look(), Side{}, Side{}};
        fs::remove(g_folder / "run/filler");
        InChild(false, [&] { SaveUnder(order, writer, outcome, true); });
        sides[1] = Look();
        Report({-1, step, 0, 0}, status, outcome, sides);
        if (disk) {
            ::umount((g_folder / "run").c_str());
        }
    }
}

} // namespace

int main(int argc, char **argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() < 5) {
        std::fprintf(stderr, "settings_host MODE FOLDER WRITER ARGUMENT...\n");
        return 2;
    }
    std::setlocale(LC_CTYPE, "C.UTF-8"); // for the paths of this program alone
    find_injector(&g_injector);
    load_locale();
    g_folder = arguments[2];
    g_report = ::fdopen(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 100), "w");
    if (std::freopen((g_folder / "out.txt").c_str(), "a", stdout) == nullptr) {
        GiveUp("out.txt");
    }
    static std::array<char, BUFSIZ>
        buffer; // so that the first output of the library takes no memory
    std::setvbuf(stdout, buffer.data(), _IOFBF, buffer.size());
    const Writer writer = WriterNamed(arguments[3]);
    const std::string &mode = arguments[1];
    if (mode == "orders") {
        RunOrders(writer, arguments[4]);
    } else if (mode == "kills") {
        RunKills(writer, std::stoi(arguments[4]),
                 static_cast<unsigned int>(std::stoul(arguments.at(5))));
    } else if (mode == "full") {
        RunFull(writer, arguments[4] == "disk");
    } else {
        RunWriters(writer, std::stoi(arguments[4]), mode == "threads");
    }
    return 0;
}
