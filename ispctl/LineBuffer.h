#ifndef ISPCTL_LINE_BUFFER_H
#define ISPCTL_LINE_BUFFER_H

#include <functional>
#include <string>
#include <string_view>

namespace ispctl {

/// Splits a stream of bytes into lines with their newlines, or parts of lines if something else
/// comes in between. The pieces concatenated are the stream.
class LineBuffer {
  public:
    using Emit = std::function<void(std::string_view)>;

    explicit LineBuffer(Emit emit) : m_emit(std::move(emit)) {}

    /// Emits each complete line and keeps the rest.
    void Add(std::string_view bytes);
    /// Emits the pending text, except the bytes of an incomplete character.
    void FlushCompleteCharacters();
    /// Emits all pending text.
    void EmitAll();

  private:
    void EmitFirst(std::size_t length);

    Emit m_emit;
    std::string m_pending;
};

} // namespace ispctl

#endif
