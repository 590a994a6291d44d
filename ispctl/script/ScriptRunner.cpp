#include "script/ScriptRunner.h"

#include <chrono>
#include <filesystem>
#include <fmt/format.h>
#include <thread>

#include "HexDump.h"
#include "LibraryApi.h"
#include "LibraryPaths.h"
#include "Utf8.h"
#include "script/ScriptCheck.h"

namespace ispctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string WordsOf(const std::optional<PluginCode> &code) {
    return code ? ": " + code->meaning + (code->remedy.empty() ? "" : "; " + code->remedy) : "";
}

/// A status of the communication library, in its maker's words if there are any.
std::string StatusWords(const std::string &commLibrary, unsigned int status) {
    return fmt::format("status 0x{:X}{}", status,
                       WordsOf(FindCommCode(commLibrary, static_cast<int>(status))));
}

/// Runs the steps of one script on one communication library.
class StepRunner {
  public:
    StepRunner(const LibraryApi &api, CNxComm &comm, std::string commLibrary, Session &session)
        : m_api(api), m_comm(comm), m_commLibrary(std::move(commLibrary)), m_session(session) {}

    ExitStatus Run(const std::vector<ScriptStep> &steps) {
        for (const ScriptStep &step : steps) {
            const std::size_t reads = CheckScript(step.records).outputBytes;
            const ScriptResult result = m_api.RunScript(step.records, reads, m_comm);
            m_output.insert(m_output.end(), result.output.begin(), result.output.end());
            if (result.code != 0) {
                ShowOutput();
                return m_session.Fail(
                    kExitFailed,
                    DescribeScriptResult(result.code, FindCommCode(m_commLibrary, result.code)));
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
        unsigned int status = m_comm.I2CWrite(kDdcSlave, message[0], length, message.data() + 1);
        if (status != 0) {
            return Fail(statement, StatusWords(m_commLibrary, status));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(DdcWait(request.kind)));
        if (request.kind == DdcRequest::Kind::Set) {
            return true;
        }
        Bytes reply(kDdcReplyBytes);
        status = m_comm.I2CCurrentRead(kDdcSlave, kDdcReplyBytes, reply.data());
        if (status != 0) {
            return Fail(statement, StatusWords(m_commLibrary, status));
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

    const LibraryApi &m_api;
    CNxComm &m_comm;
    std::string m_commLibrary;
    Session &m_session;
    Bytes m_output;
};

/// Initialises the library and selects the channel. RETURNS why that fails; empty if it does not.
std::string Prepare(const ScriptOptions &options, const std::string &path, CNxComm &comm) {
    if (const unsigned int status = comm.Initiallize(); status != 0) {
        return fmt::format("cannot initialise the communication library ({})",
                           StatusWords(path, status));
    }
    if (options.channel) {
        const auto channel = static_cast<STRUCT_ENUM_COMM_ID>(*options.channel);
        if (const unsigned int status = comm.SetCommByID(channel); status != 0) {
            return fmt::format("cannot select channel {} ({})", *options.channel,
                               StatusWords(path, status));
        }
    }
    return "";
}

} // namespace

ExitStatus RunSteps(const ScriptOptions &options, const std::vector<ScriptStep> &steps,
                    Session &session) {
    std::string error;
    const auto library = ScalerLibrary::Open(
        options.library.empty() ? InstalledLibraryPath().string() : options.library, error);
    const auto api = library ? LibraryApi::Find(*library, error) : std::nullopt;
    if (!api) {
        return session.Fail(kExitUsage, error);
    }
    if (options.virtualScaler) {
        session.streams.PrintMessage("virtual scaler: no hardware is touched");
    }
    const std::string path =
        std::filesystem::absolute(options.virtualScaler ? VirtualCommLibraryPath().string()
                                                        : options.comm)
            .string();
    auto wide = WideFromUtf8(path);
    if (!wide) {
        return session.Fail(kExitUsage, fmt::format("{} is not valid UTF-8", path));
    }
    const LibraryApi::Comm comm = api->CreateComm();
    if (comm->LoadCommDllFile(wide->data()) != 1) {
        return session.Fail(kExitNoPlugin,
                            fmt::format("cannot load {} as a communication library", path));
    }
    if (const std::string problem = Prepare(options, path, *comm); !problem.empty()) {
        return session.Fail(kExitFailed, problem);
    }
    return StepRunner(*api, *comm, path, session).Run(steps);
}

std::string DescribeScriptResult(int code, const std::optional<PluginCode> &words) {
    const std::string own = WordsOf(words);
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
