#ifndef ISPCTL_LIBRARY_PROCESS_H
#define ISPCTL_LIBRARY_PROCESS_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "RunCommand.h"
#include "RunWire.h"

namespace ispctl {

/// In the library's process: the way to the console that started it. The console may go away; what
/// runs here then runs on to its end.
class ConsoleLink {
  public:
    ConsoleLink(int send, int receive) : m_send(send), m_receive(receive) {}

    /// Takes the numbers of the descriptors off the arguments of this process.
    /// RETURNS null where this is no such process.
    static std::unique_ptr<ConsoleLink> Take(std::vector<std::string> &arguments);

    /// Tells the console, and waits until it has noted that. RETURNS false where nobody answers.
    bool Send(FrameKind kind, std::string_view payload);

  private:
    int m_send;
    int m_receive;
    std::mutex m_mutex; ///< plug-ins may call back from threads of their own
};

/// Takes over what this process must be for a plug-in: its output is told in order, and a console
/// that goes away does not end it.
void BecomeLibraryProcess();

/// Opens the library, asks the console, hands the command line over and tells the result.
/// What a plug-in throws or ends goes through: the console tells it.
void RunLibrary(const RunOptions &options, ConsoleLink &link);

} // namespace ispctl

#endif
