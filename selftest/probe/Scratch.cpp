#include "probe/Scratch.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void Stop(const std::string &path) {
    std::perror(path.c_str());
    std::exit(2);
}

} // namespace

void WriteFile(const std::string &path, const std::string &content) {
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        Stop(path);
    }
    const std::size_t written = std::fwrite(content.data(), 1, content.size(), file);
    if (std::fclose(file) != 0 || written != content.size()) {
        Stop(path);
    }
}

std::string ReadFile(const std::string &path) {
    std::string content;
    std::FILE *file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return content;
    }
    char buffer[4096];
    for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
        content.append(buffer, count);
    }
    std::fclose(file);
    return content;
}

void CopyFile(const std::string &from, const std::string &to) {
    WriteFile(to, ReadFile(from));
    if (::chmod(to.c_str(), 0755) != 0) {
        Stop(to);
    }
}

void MakeDirectory(const std::string &path) {
    if (::mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
        Stop(path);
    }
}

void MakeLink(const std::string &target, const std::string &path) {
    if (::symlink(target.c_str(), path.c_str()) != 0) {
        Stop(path);
    }
}

std::vector<std::string> NamesIn(const std::string &directory) {
    std::vector<std::string> names;
    DIR *opened = ::opendir(directory.c_str());
    if (opened == nullptr) {
        Stop(directory);
    }
    while (const dirent *entry = ::readdir(opened)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    ::closedir(opened);
    return names;
}

std::string ErrorName(int number) {
    switch (number) {
    case 0:
        return "success";
    case EACCES:
        return "EACCES";
    case EILSEQ:
        return "EILSEQ";
    case EINVAL:
        return "EINVAL";
    case EISDIR:
        return "EISDIR";
    case ELOOP:
        return "ELOOP";
    case ENAMETOOLONG:
        return "ENAMETOOLONG";
    case ENOENT:
        return "ENOENT";
    case ENOTDIR:
        return "ENOTDIR";
    default:
        return "error " + std::to_string(number);
    }
}
