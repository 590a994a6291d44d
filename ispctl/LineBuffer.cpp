#include "LineBuffer.h"

#include "Utf8.h"

namespace ispctl {
namespace {

// A plug-in that never writes a newline must not exhaust memory. UNITS: bytes.
constexpr std::size_t kLongestPiece = 64 * 1024;

} // namespace

void LineBuffer::EmitFirst(std::size_t length) {
    if (length > 0) {
        m_emit(std::string_view(m_pending).substr(0, length));
        m_pending.erase(0, length);
    }
}

void LineBuffer::Add(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto end = bytes.find('\n');
        const bool complete = end != std::string_view::npos;
        const std::size_t length = complete ? end + 1 : bytes.size();
        m_pending += bytes.substr(0, length);
        bytes.remove_prefix(length);
        if (complete) {
            EmitAll();
        } else if (m_pending.size() >= kLongestPiece) {
            FlushCompleteCharacters();
        }
    }
}

void LineBuffer::FlushCompleteCharacters() {
    EmitFirst(m_pending.size() - UnfinishedTail(m_pending));
}

void LineBuffer::EmitAll() {
    EmitFirst(m_pending.size());
}

} // namespace ispctl
