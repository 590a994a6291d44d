#include "probe/LibraryCall.h"

#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include "probe/Scratch.h"
#include "scaler_isp/OperateScaler.h"

namespace {

using Operate = int (*)(const wchar_t *, void *, ScalerIspProgressCallback,
                        ScalerIspMessageCallback);

CallOutcome *g_outcome; // of the call that is running

void OnProgress(int percent) {
    g_outcome->progress.push_back(percent);
}

void OnMessage(wchar_t *text) {
    for (; *text != L'\0'; ++text) {
        g_outcome->messages += *text > 0 && *text < 0x7F ? static_cast<char>(*text) : '?';
    }
    g_outcome->messages += '\n';
}

/// Standard output goes to a file meanwhile.
class Capture {
  public:
    explicit Capture(const std::string &path) : m_standard(::dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ::dup2(file, STDOUT_FILENO);
        ::close(file);
    }
    ~Capture() {
        std::fflush(stdout);
        ::dup2(m_standard, STDOUT_FILENO);
        ::close(m_standard);
    }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

  private:
    int m_standard;
};

std::string LoaderError() {
    const char *error = ::dlerror();
    return error == nullptr ? "no reason is given" : error;
}

} // namespace

OpenLibrary::OpenLibrary(const std::string &path)
    : m_image(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (m_image != nullptr) {
        m_operate = ::dlsym(m_image, "OperateScaler");
    }
    if (m_operate == nullptr) {
        m_error = LoaderError();
    }
}

OpenLibrary::~OpenLibrary() {
    if (m_image != nullptr) {
        ::dlclose(m_image);
    }
}

bool OpenLibrary::IsOpen() const {
    return m_operate != nullptr;
}

const std::string &OpenLibrary::Error() const {
    return m_error;
}

std::string OpenLibrary::ReportedPath() const {
    Dl_info info{};
    return ::dladdr(m_operate, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "none";
}

CallOutcome OpenLibrary::Call(const std::wstring &line, const std::string &capture) const {
    CallOutcome outcome;
    g_outcome = &outcome;
    {
        const Capture captured(capture);
        outcome.result =
            reinterpret_cast<Operate>(m_operate)(line.c_str(), nullptr, OnProgress, OnMessage);
    }
    outcome.printed = ReadFile(capture);
    return outcome;
}

std::string ResultText(int result) {
    char text[16];
    std::snprintf(text, sizeof text, result < 10 ? "%d" : "0x%X", static_cast<unsigned>(result));
    return text;
}
