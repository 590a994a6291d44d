#ifndef ISPCTL_LIBRARY_PROCESS_H
#define ISPCTL_LIBRARY_PROCESS_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "RunCommand.h"
#include "RunWire.h"

namespace ispctl {

/// In the library's process: the link to the ispctl that started it. If that ispctl ends, the
/// library's process continues to its end, because stopping could leave the device without
/// firmware.
class ParentLink {
  public:
    ParentLink(int send, int receive) : m_send(send), m_receive(receive) {}

    /// Removes the numbers of the descriptors from the arguments of this process.
    /// RETURNS null if this is not a library process.
    static std::unique_ptr<ParentLink> FromArguments(std::vector<std::string> &arguments);

    /// Sends a frame to ispctl and waits for the answer; needs no memory. RETURNS false if there is
    /// no answer.
    bool Send(FrameKind kind, std::string_view payload);

  private:
    int m_send;
    int m_receive;
    std::mutex m_mutex; ///< plug-ins may call back from threads of their own
};

/// Sets up stdio and signals of this process for plug-ins: output is reported in order, and the end
/// of ispctl does not end this process.
void BecomeLibraryProcess();

/// Opens the library, waits for ispctl's consent, passes the command line and reports the result.
/// An exception of a plug-in is not caught, because only ispctl reports how the process ended.
void RunLibrary(const RunOptions &options, ParentLink &link);

} // namespace ispctl

#endif
