// Runs a target on the files of its corpus, without a fuzzer: what was found once stays a test.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

std::vector<std::uint8_t> BytesOf(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What the code under test prints is of no interest; a failed check has a descriptor of its own.
void CloseStandardStreams() {
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
}

int Replay(const char *corpus) {
    std::vector<std::filesystem::path> cases;
    for (const auto &entry : std::filesystem::directory_iterator(corpus)) {
        cases.push_back(entry.path());
    }
    std::sort(cases.begin(), cases.end());
    if (cases.empty()) {
        std::fprintf(stderr, "no case in %s\n", corpus);
        return 1;
    }
    const int terminal = ::dup(STDERR_FILENO);
    CloseStandardStreams();
    for (const auto &path : cases) {
        // Before the run: the last name is the case that ends the process.
        ::dprintf(terminal, "%s\n", path.c_str());
        const std::vector<std::uint8_t> bytes = BytesOf(path);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    ::dprintf(terminal, "%zu cases\n", cases.size());
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS\n", argv[0]);
        return 2;
    }
    try {
        return Replay(argv[1]);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
