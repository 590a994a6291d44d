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
    void Close();

  private:
    int m_number;
};

/// Both ends of a pipe; neither is inherited by a program that is started.
struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;

    /// Throws std::system_error where none can be made.
    static Pipe Make();
};

/// Reading and writing there never wait.
void SetNonBlocking(const Descriptor &descriptor);

/// Lets a program that is started inherit it, or not.
void SetInherited(int descriptor, bool inherited);

/// Reads at most size bytes. RETURNS their count, 0 at the end, -1 with errno where nothing is
/// there (EAGAIN) or on failure.
long ReadSome(int descriptor, char *buffer, std::size_t size) noexcept;

/// As ReadSome, but throws std::system_error on failure: -1 means that nothing is there yet.
long ReadAvailable(int descriptor, char *buffer, std::size_t size);

/// Reads exactly size bytes, however long that takes. RETURNS whether they came.
bool ReadExactly(int descriptor, char *buffer, std::size_t size) noexcept;

} // namespace ispctl

#endif
