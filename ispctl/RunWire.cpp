#include "RunWire.h"

#include <sstream>
#include <stdexcept>

namespace ispctl {
namespace {

constexpr std::size_t kHeadBytes = 1 + sizeof(std::uint32_t);

} // namespace

std::string EncodeFrame(FrameKind kind, std::string_view payload) {
    const auto length = static_cast<std::uint32_t>(payload.size());
    std::string frame(1, static_cast<char>(kind));
    return frame.append(BytesOf(length)).append(payload);
}

std::string EncodeRefusal(const Refusal &refusal) {
    const std::string payload = std::to_string(refusal.status) + '\0' + refusal.stage + '\0';
    return payload + refusal.text.substr(0, kMaxFrame - payload.size());
}

Refusal DecodeRefusal(const std::string &payload) {
    Refusal refusal;
    std::istringstream fields(payload);
    fields >> refusal.status;
    fields.ignore();
    std::getline(fields, refusal.stage, '\0');
    std::getline(fields, refusal.text, '\0');
    return refusal;
}

std::string EncodeReadyCall(const ReadyCall &call) {
    std::string payload = call.library + '\0' + call.line + '\0';
    for (const unsigned bank : call.banks) {
        payload += std::to_string(bank) + ' ';
    }
    return payload;
}

ReadyCall DecodeReadyCall(const std::string &payload) {
    ReadyCall call;
    std::istringstream fields(payload);
    std::getline(fields, call.library, '\0');
    std::getline(fields, call.line, '\0');
    for (unsigned bank = 0; fields >> bank;) {
        call.banks.push_back(bank);
    }
    return call;
}

std::optional<Frame> FrameReader::Next() {
    if (m_bytes.size() < kHeadBytes) {
        return std::nullopt;
    }
    const auto length =
        ValueOf<std::uint32_t>(std::string_view(m_bytes).substr(1, sizeof(std::uint32_t)));
    if (length > kMaxFrame) {
        throw std::runtime_error("the library's process sent an invalid frame");
    }
    if (m_bytes.size() < kHeadBytes + length) {
        return std::nullopt;
    }
    Frame frame{static_cast<FrameKind>(m_bytes.front()), m_bytes.substr(kHeadBytes, length)};
    m_bytes.erase(0, kHeadBytes + length);
    return frame;
}

} // namespace ispctl
