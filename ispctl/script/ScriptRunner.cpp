#include "script/ScriptRunner.h"

#include <chrono>
#include <fmt/format.h>
#include <thread>

#include "HexDump.h"
#include "comm/CommSession.h"
#include "script/ScriptCheck.h"

namespace ispctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Runs the steps of one script on one communication library.
class StepRunner {
  public:
    StepRunner(CommSession &bus, Session &session) : m_bus(bus), m_session(session) {}

    ExitStatus Run(const std::vector<ScriptStep> &steps) {
        for (const ScriptStep &step : steps) {
            const std::size_t reads = CheckScript(step.records).outputBytes;
            const ScriptResult result = m_bus.Api().RunScript(step.records, reads, m_bus.Comm());
            m_output.insert(m_output.end(), result.output.begin(), result.output.end());
            if (result.code != 0) {
                ShowOutput();
                return m_session.Fail(
                    kExitFailed, DescribeScriptResult(result.code, m_bus.WordsFor(result.code)));
            }
            if (step.ddc && !Send(*step.ddc)) {
                return kExitFailed;
            }
        }
        ShowOutput();
        m_session.streams.PrintMessage(DescribeScriptResult(0));
        return kExitSuccess;
    }

  private:
    /// Sends a request, and shows the answer to one that has an answer.
    bool Send(const DdcStatement &statement) {
        const DdcRequest &request = statement.request;
        ShowOutput();
        Bytes message = DdcMessage(request);
        // Communication libraries take the first byte as the sub-address; on the wire it is the
        // same.
        const auto length = static_cast<unsigned short>(message.size() - 1);
        unsigned int status =
            m_bus.Comm().I2CWrite(kDdcSlave, message[0], length, message.data() + 1);
        if (status != 0) {
            return Fail(statement, m_bus.StatusWords(status));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(DdcWait(request.kind)));
        if (request.kind == DdcRequest::Kind::Set) {
            return true;
        }
        Bytes reply(kDdcReplyBytes);
        status = m_bus.Comm().I2CCurrentRead(kDdcSlave, kDdcReplyBytes, reply.data());
        if (status != 0) {
            return Fail(statement, m_bus.StatusWords(status));
        }
        std::string error;
        const auto feature = ReadDdcReply(reply, request.feature, error);
        if (!feature) {
            return Fail(statement, error);
        }
        m_session.streams.Print(Stream::Output,
                                fmt::format("VCP 0x{:02X}: {} of {}\n", request.feature,
                                            feature->current, feature->maximum));
        return true;
    }

    bool Fail(const DdcStatement &statement, const std::string &reason) {
        m_session.Fail(kExitFailed,
                       fmt::format("failed in line {} (ddc): {}", statement.line, reason));
        return false;
    }

    /// What was read since it was last shown; numbered from 0 each time.
    void ShowOutput() {
        m_session.streams.Print(Stream::Output, HexDump(m_output));
        m_output.clear();
    }

    CommSession &m_bus;
    Session &m_session;
    Bytes m_output;
};

} // namespace

ExitStatus RunSteps(const ScriptOptions &options, const std::vector<ScriptStep> &steps,
                    Session &session) {
    ExitStatus status = kExitUsage;
    auto bus = CommSession::Open(options, session, status);
    return bus ? StepRunner(*bus, session).Run(steps) : status;
}

std::string DescribeScriptResult(int code, const std::string &own) {
    switch (code) {
    case 0:
        return "success";
    case 1:
        return "failed with 0x1: unknown opcode, or status 1 of the communication library" + own;
    case 2:
        return "failed with 0x2: unsupported opcode, or status 2 of the communication library" +
               own;
    case 3:
        return "failed with 0x3: a poll used up its tries, or status 3 of the communication "
               "library" +
               own;
    case 6:
        return "failed with 0x6: the communication library lacks a function that the script needs" +
               own;
    default:
        return fmt::format("failed with 0x{:X}: status of the communication library{}",
                           static_cast<unsigned int>(code), own);
    }
}

} // namespace ispctl
