#include <cerrno>
#include <cstdio>
#include <cstring>

#include "probe/Groups.h"
#include "probe/Platform.h"
#include "probe/Scratch.h"

namespace {

constexpr const char *kComposed = "\xC3\xB6";    // ö as one character
constexpr const char *kDecomposed = "o\xCC\x88"; // o and a combining mark

std::string ListedAs(const std::string &directory) {
    std::string listed;
    for (const std::string &name : NamesIn(directory)) {
        listed += listed.empty() ? name : " " + name;
    }
    return listed;
}

bool Opens(const std::string &path) {
    std::FILE *file = std::fopen(path.c_str(), "rb");
    if (file != nullptr) {
        std::fclose(file);
    }
    return file != nullptr;
}

/// HFS+ decomposes names, APFS keeps them and finds a file by either form.
void ProbeForm(const Surroundings &surroundings, const std::string &check, const char *created,
               const char *other) {
    const std::string folder = surroundings.directory + "/" + check;
    MakeDirectory(folder);
    WriteFile(folder + "/" + created, "x");
    surroundings.results.Assume(check + "_is_listed_as", created, ListedAs(folder));
    surroundings.results.Assume(check + "_by_the_other_form",
                                PlatformAssumption("not found", "found"),
                                Opens(folder + "/" + other) ? "found" : "not found");
}

void ProbeFolderAsFile(const Surroundings &surroundings) {
    const std::string folder = surroundings.directory + "/folder";
    MakeDirectory(folder);
    std::FILE *file = std::fopen(folder.c_str(), "rb");
    surroundings.results.Assume("folder_as_file", "opens", file != nullptr ? "opens" : "fails");
    if (file == nullptr) {
        return;
    }
    std::fseek(file, 0, SEEK_END);
    surroundings.results.Note("size_of_folder_as_file", std::to_string(std::ftell(file)));
    char byte = 0;
    errno = 0;
    std::rewind(file);
    const std::size_t count = std::fread(&byte, 1, 1, file);
    surroundings.results.Assume("reading_folder_as_file", "EISDIR",
                                count == 0 ? ErrorName(errno) : "a byte");
    std::fclose(file);
}

void ProbeOrder(const Surroundings &surroundings) {
    const std::string folder = surroundings.directory + "/order";
    MakeDirectory(folder);
    for (const char *name : {"b", "a", "C", "10", "9"}) {
        WriteFile(folder + "/" + name, "");
    }
    surroundings.results.Note("order_of_b_a_C_10_9", ListedAs(folder));
}

} // namespace

void ProbeNames(const Surroundings &surroundings) {
    ProbeForm(surroundings, "composed_name", kComposed, kDecomposed);
    ProbeForm(surroundings, "decomposed_name", kDecomposed, kComposed);
    ProbeFolderAsFile(surroundings);
    ProbeOrder(surroundings);
    WriteFile(surroundings.directory + "/lower", "");
    surroundings.results.Note("name_in_other_case",
                              Opens(surroundings.directory + "/LOWER") ? "found" : "not found");
    surroundings.results.Note("strerror_of_ENOENT", std::strerror(ENOENT));
}
