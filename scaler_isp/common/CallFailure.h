#ifndef SCALER_ISP_COMMON_CALL_FAILURE_H
#define SCALER_ISP_COMMON_CALL_FAILURE_H

#include <cerrno>
#include <exception>

/// A failure of the system that says nothing about the caller's input: no memory, no descriptor, an
/// I/O error. It must never turn into an empty or default value, because that value would end up in
/// a record and on a chip. Like std::bad_alloc it travels to the function that another binary
/// called, and becomes that function's failure there (see ExceptionBarrier.h).
///
/// It holds only the error number: throwing it needs no memory of its own.
class CallFailure : public std::exception {
  public:
    explicit CallFailure(int error) : m_error(error) {}
    const char *what() const noexcept override {
        return "a system function failed";
    }
    int Error() const { ///< errno of the function that failed
        return m_error;
    }

  private:
    int m_error;
};

/// Whether a path that could not be opened or resolved is itself the reason: it does not exist, it
/// is not accessible, it is not a path, its file system permits no such name. That is an answer
/// about the input; any other errno is a CallFailure.
inline bool IsErrorOfPath(int error) {
    return error == ENOENT || error == ENOTDIR || error == EACCES || error == EPERM ||
           error == ELOOP || error == ENAMETOOLONG || error == EISDIR || error == ENXIO ||
           error == ENODEV || error == EILSEQ || error == EINVAL;
}

#endif
