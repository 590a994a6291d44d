#ifndef SCALER_ISP_COMMON_CALL_FAILURE_H
#define SCALER_ISP_COMMON_CALL_FAILURE_H

#include <cerrno>
#include <exception>

/// A failure of the system that says nothing about the caller's input: no memory, no descriptor, an
/// I/O error. It must never become an empty or default value, because that value would reach a
/// record and the chip. Like std::bad_alloc it propagates to the function that another binary
/// called, and fails that function (see ExceptionBarrier.h).
///
/// It holds only the error number, so that throwing it allocates no string.
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

/// Whether a path that could not be opened or resolved is itself the cause: it does not exist, is
/// not accessible, is not a valid path, or its file system does not permit the name. That is a
/// statement about the input; any other errno is a CallFailure.
inline bool IsErrorOfPath(int error) {
    return error == ENOENT || error == ENOTDIR || error == EACCES || error == EPERM ||
           error == ELOOP || error == ENAMETOOLONG || error == EISDIR || error == ENXIO ||
           error == ENODEV || error == EILSEQ || error == EINVAL;
}

#endif
