#include "RunWire.h"

#include <sstream>
#include <stdexcept>

namespace ispctl {

std::array<char, kFrameHeadBytes> FrameHead(FrameKind kind, std::size_t size) noexcept {
    const auto length = static_cast<std::uint32_t>(size);
    std::array<char, kFrameHeadBytes> head{static_cast<char>(kind)};
    std::memcpy(&head[1], &length, sizeof length);
    return head;
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
    if (m_bytes.size() < kFrameHeadBytes) {
        return std::nullopt;
    }
    const auto length =
        ValueOf<std::uint32_t>(std::string_view(m_bytes).substr(1, sizeof(std::uint32_t)));
    if (length > kMaxFrame) {
        throw std::runtime_error("the library's process sent an invalid frame");
    }
    if (m_bytes.size() < kFrameHeadBytes + length) {
        return std::nullopt;
    }
    Frame frame{static_cast<FrameKind>(m_bytes.front()), m_bytes.substr(kFrameHeadBytes, length)};
    m_bytes.erase(0, kFrameHeadBytes + length);
    return frame;
}

} // namespace ispctl
