#ifndef ISPCTL_RUN_WIRE_H
#define ISPCTL_RUN_WIRE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace ispctl {

/// What the library's process tells the console. Each frame is answered with one byte before that
/// process goes on, so the console knows what was printed before it and what after.
enum class FrameKind : char {
    Refused = 'R',  ///< a text: the library is not called, and why
    Ready = 'L',    ///< a path, NUL, a command line: the answer starts the call
    Progress = 'P', ///< an int
    Message = 'M',  ///< 32-bit characters
    Result = 'E',   ///< a RunResult: the call is over
};

/// What the library's process knows at the end of the call.
struct RunResult {
    std::int32_t code = 0;
    std::int32_t pluginLoaded = 1; ///< 0: no plug-in was loaded, so none can have been called
};

/// The longest message that is kept; of a longer one the rest is cut. UNITS: characters.
inline constexpr std::size_t kMaxMessage = 64 * 1024;
/// UNITS: bytes.
inline constexpr std::size_t kMaxFrame = (kMaxMessage + 256) * sizeof(wchar_t);

struct Frame {
    FrameKind kind{};
    std::string payload;
};

/// RETURNS the bytes of a frame. REQUIRES: at most kMaxFrame bytes of payload.
std::string EncodeFrame(FrameKind kind, std::string_view payload);

/// Collects the bytes of frames.
class FrameReader {
  public:
    void Add(std::string_view bytes) {
        m_bytes += bytes;
    }
    /// RETURNS the next whole frame. Throws std::runtime_error for bytes that are none.
    std::optional<Frame> Take();

  private:
    std::string m_bytes;
};

/// RETURNS a value as the bytes of a payload; both processes are the same program.
template <class Value> std::string_view BytesOf(const Value &value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    return {reinterpret_cast<const char *>(&value), sizeof value};
}

/// RETURNS the value in a payload; a default one where the size is wrong.
template <class Value> Value ValueOf(std::string_view payload) {
    Value value{};
    if (payload.size() == sizeof value) {
        std::memcpy(&value, payload.data(), sizeof value);
    }
    return value;
}

} // namespace ispctl

#endif
