#ifndef SCALER_ISP_TESTS_SIMULATOR_FILE_SIZE_LIMIT_H
#define SCALER_ISP_TESTS_SIMULATOR_FILE_SIZE_LIMIT_H

#include <csignal>

#include <sys/resource.h>

/// No file can grow beyond this size, as on a disk that is full.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit{bytes, m_previous.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

  private:
    void (*m_handler)(int);
    rlimit m_previous{};
};

#endif
