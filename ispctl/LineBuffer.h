#ifndef ISPCTL_LINE_BUFFER_H
#define ISPCTL_LINE_BUFFER_H

#include <functional>
#include <string>
#include <string_view>

namespace ispctl {

/// Cuts a stream of bytes into pieces: lines with their line ends, and texts without line end where
/// something else comes in between. All pieces together are the stream.
class LineBuffer {
  public:
    using Emit = std::function<void(std::string_view)>;

    explicit LineBuffer(Emit emit) : m_emit(std::move(emit)) {}

    /// Emits each line that bytes complete; the rest waits.
    void Add(std::string_view bytes);
    /// Emits the waiting text, except the bytes of a character that is not complete yet.
    void FlushCompleteCharacters();
    /// Emits all waiting text.
    void EmitAll();

  private:
    void EmitFirst(std::size_t length);

    Emit m_emit;
    std::string m_waiting;
};

} // namespace ispctl

#endif
