#ifndef SCALER_ISP_COMMON_FILE_DESCRIPTOR_H
#define SCALER_ISP_COMMON_FILE_DESCRIPTOR_H

#include <cerrno>
#include <unistd.h>

/// Owns a file descriptor.
class FileDescriptor {
  public:
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor() {
        Close();
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    void Reset(int descriptor) {
        Close();
        m_descriptor = descriptor;
    }
    bool IsOpen() const {
        return m_descriptor >= 0;
    }
    int Get() const {
        return m_descriptor;
    }
    /// RETURNS 0, or errno: written data may have been lost.
    int Close() {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return descriptor >= 0 && ::close(descriptor) != 0 ? errno : 0;
    }

  private:
    int m_descriptor;
};

#endif
