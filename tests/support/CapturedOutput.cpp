#include "support/CapturedOutput.h"

#include <stdexcept>

#include <unistd.h>

CapturedOutput::CapturedOutput(Stream stream)
    : m_stream(stream == Stream::Output ? stdout : stderr), m_previousDescriptor(-1),
      m_file(std::tmpfile()) {
    std::fflush(m_stream);
    m_previousDescriptor = dup(fileno(m_stream));
    if (m_file == nullptr || m_previousDescriptor < 0 ||
        dup2(fileno(m_file), fileno(m_stream)) < 0) {
        throw std::runtime_error("a standard stream could not be captured");
    }
}

CapturedOutput::~CapturedOutput() {
    Take();
}

std::string CapturedOutput::Take() {
    std::string text;
    if (m_file == nullptr) {
        return text;
    }
    std::fflush(m_stream);
    dup2(m_previousDescriptor, fileno(m_stream));
    close(m_previousDescriptor);
    std::rewind(m_file);
    char block[4096];
    while (const std::size_t count = std::fread(block, 1, sizeof block, m_file)) {
        text.append(block, count);
    }
    std::fclose(m_file);
    m_file = nullptr;
    return text;
}
