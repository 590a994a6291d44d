#ifndef SCALER_ISP_TESTS_SUPPORT_CAPTURED_OUTPUT_H
#define SCALER_ISP_TESTS_SUPPORT_CAPTURED_OUTPUT_H

#include <cstdio>
#include <string>

/// Collects what is written to one of the standard streams, as raw bytes and at the file
/// descriptor, so that nothing is lost that another library or a child process writes.
///
/// Text that stdio still holds is flushed at both ends. Captures of the same stream do not nest.
class CapturedOutput {
  public:
    enum class Stream { Output, Error };

    explicit CapturedOutput(Stream stream);
    /// Gives the stream back; text not taken is dropped.
    ~CapturedOutput();
    CapturedOutput(const CapturedOutput &) = delete;
    CapturedOutput &operator=(const CapturedOutput &) = delete;

    /// Ends the capture. RETURNS everything written since the beginning; the empty text a second
    /// time.
    std::string Take();

  private:
    std::FILE *m_stream;
    int m_previousDescriptor;
    std::FILE *m_file;
};

/// Runs a function and returns what it wrote to standard output.
template <class Function> std::string OutputOf(Function &&function) {
    CapturedOutput captured(CapturedOutput::Stream::Output);
    function();
    return captured.Take();
}

/// Runs a function and returns what it wrote to standard error.
template <class Function> std::string ErrorOutputOf(Function &&function) {
    CapturedOutput captured(CapturedOutput::Stream::Error);
    function();
    return captured.Take();
}

#endif
