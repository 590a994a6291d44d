#ifndef ISPCTL_PIPE_H
#define ISPCTL_PIPE_H

#include <string_view>
#include <utility>

namespace ispctl {

/// Owns one open descriptor.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() {
        Close();
    }
    Descriptor(Descriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }

    int Number() const {
        return m_number;
    }
    bool IsOpen() const {
        return m_number >= 0;
    }
    /// RETURNS 0, or the error number: a file system may report only now that a write has failed.
    int Close();

  private:
    int m_number;
};

/// Both ends of a pipe; started programs inherit neither.
struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;

    /// Throws std::system_error if no pipe can be created.
    static Pipe Make();
};

/// Makes reads and writes return instead of waiting.
void SetNonBlocking(const Descriptor &descriptor);

/// Sets whether started programs inherit the descriptor.
void SetInherited(int descriptor, bool inherited);

/// Reads at most size bytes. RETURNS their count, 0 at the end, -1 with errno on failure or if
/// there is nothing yet (EAGAIN).
long ReadSome(int descriptor, char *buffer, std::size_t size) noexcept;

/// As ReadSome, but throws std::system_error on failure: -1 means that there is nothing yet.
long ReadAvailable(int descriptor, char *buffer, std::size_t size);

/// Reads exactly size bytes and waits for them. RETURNS false at the end or on failure.
bool ReadExactly(int descriptor, char *buffer, std::size_t size) noexcept;

} // namespace ispctl

#endif
