#ifndef ISPCTL_RUN_WIRE_H
#define ISPCTL_RUN_WIRE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace ispctl {

/// Reports of the library's process to ispctl. The process waits for an answer of one byte after
/// each frame, so ispctl knows which output came before the frame and which after it.
enum class FrameKind : char {
    Unopened = 'U',   ///< a message: why the library cannot be opened
    Unpassable = 'A', ///< a message: why the arguments cannot be passed to it
    Findings = 'F',   ///< what EncodeLineReport makes: no answer if ispctl refuses the run
    Notice = 'N',     ///< a message for the user
    Refused = 'X',    ///< a Refusal: the library is not called, or not again
    Files = 'H',      ///< array of RunFileJson: the files of the run
    Ready = 'L',      ///< a ReadyCall: the answer starts the call
    Stage = 'S',      ///< a RunStage: what the next call of the library is for
    Backup = 'B',     ///< the JSON object of a backup that was made
    Progress = 'P',   ///< an int
    Message = 'M',    ///< 32-bit characters
    Result = 'E',     ///< a RunResult and a detail: the call has returned
};

/// The result of the call, as the library's process reports it.
struct RunResult {
    std::int32_t code = 0;
    std::int32_t pluginLoaded = 1;    ///< 0: no plug-in was loaded, or none that could be called
    std::int32_t fromLibrary = 0;     ///< 0: a plug-in returned the code
    std::int32_t deviceUntouched = 0; ///< 1: the call certainly did not access the device
};

/// The call that the library's process is about to make.
struct ReadyCall {
    std::string library; ///< absolute path
    std::string line;
    std::vector<unsigned> banks; ///< that it programs, in their order; empty if not known
};

/// Why ispctl itself ends a run.
struct Refusal {
    int status = 0; ///< an ExitStatus
    std::string stage;
    std::string text;
};

std::string EncodeRefusal(const Refusal &refusal);
Refusal DecodeRefusal(const std::string &payload);

/// The calls of the library in one run.
enum class RunStage : char { Backup = 'b', Call = 'c' };

std::string EncodeReadyCall(const ReadyCall &call);
ReadyCall DecodeReadyCall(const std::string &payload);

/// A longer message is truncated to this length. UNITS: characters.
inline constexpr std::size_t kMaxMessage = 64 * 1024;
/// UNITS: bytes.
inline constexpr std::size_t kMaxFrame = (kMaxMessage + 256) * sizeof(wchar_t);

struct Frame {
    FrameKind kind{};
    std::string payload;
};

inline constexpr std::size_t kFrameHeadBytes = 1 + sizeof(std::uint32_t);

/// RETURNS what stands before the payload of a frame. REQUIRES: size <= kMaxFrame.
/// \param size  of the payload; UNITS: bytes
std::array<char, kFrameHeadBytes> FrameHead(FrameKind kind, std::size_t size) noexcept;

/// Reassembles frames, because a read may return part of one or several.
class FrameReader {
  public:
    void Add(std::string_view bytes) {
        m_bytes += bytes;
    }
    /// RETURNS the next complete frame, or nothing. Throws std::runtime_error if the bytes are not
    /// a frame.
    std::optional<Frame> Next();

  private:
    std::string m_bytes;
};

/// RETURNS the bytes of value; no byte order is defined, because both processes are the same
/// program.
template <class Value> std::string_view BytesOf(const Value &value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    return {reinterpret_cast<const char *>(&value), sizeof value};
}

/// RETURNS the value in a payload; a default value if the size is wrong.
template <class Value> Value ValueOf(std::string_view payload) {
    Value value{};
    if (payload.size() == sizeof value) {
        std::memcpy(&value, payload.data(), sizeof value);
    }
    return value;
}

} // namespace ispctl

#endif
