#include "check/CallProbe.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <exception>
#include <iterator>
#include <unistd.h>

#if defined(__GLIBC__) && defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

#include "LibrarySymbols.h"
#include "ResultInfo.h"
#include "ScalerLibrary.h"
#include "check/CallWatch.h"
#include "check/LeftBehind.h"
#include "scaler_isp/abi/ResultCodes.h"

namespace ispctl::check {
namespace {

using Clock = std::chrono::steady_clock;
using doctor::FindingId;
using SetUi = void(ScalerIspProgressCallback, ScalerIspMessageCallback, ScalerIspHubDeviceCallback);

// A slower function is not repeated: a device may be attached after all.
constexpr std::chrono::milliseconds kShortCall{200};

RecordKind RecordOf(const CallRow &row) {
    return row.role == doctor::PluginRole::Isp ? RecordKind::Command : RecordKind::Sign;
}

/// The calls of one row.
class CallSeries {
  public:
    CallSeries(void *plugin, const CallRow &row, const std::string &directory,
               CallReporter &reporter)
        : m_row(row), m_directory(directory), m_reporter(reporter), m_words(row.function) {
        m_target.function = ::dlsym(plugin, row.function);
        m_target.words = row.words;
        if (row.role == doctor::PluginRole::Sign) {
            m_target.verify = ::dlsym(plugin, "VerifySignatureExport");
        } else {
            ResolveSymbol(plugin, "SetUIFunction", m_setUi);
        }
        m_words += row.words;
    }

    void Make() {
        if (m_target.function == nullptr) {
            return;
        }
        const CallWatch watch(m_reporter);
        const auto begin = Clock::now();
        Begin(m_words, CallWatch::OnProgress, CallWatch::OnMessage);
        if (!MakeFirst()) {
            return;
        }
        const auto duration =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
        if (duration > kShortCall) {
            m_reporter.Add(FindingId::NotRepeated, std::to_string(duration.count()));
        } else {
            MeasureRepeated();
        }
        if (m_setUi != nullptr) {
            Begin(m_words + ", without callbacks", nullptr, nullptr);
            MakeAgain();
        }
    }

  private:
    void Begin(const std::string &words, ScalerIspProgressCallback progress,
               ScalerIspMessageCallback message) {
        m_reporter.Begin(words);
        if (m_setUi != nullptr) {
            m_setUi(progress, message, nullptr);
        }
    }

    CallInput NewInput() const {
        CallInput input(RecordOf(m_row), m_directory);
        m_row.prepare(input);
        input.RememberRecord();
        return input;
    }

    // RETURNS false if an exception left the function.
    bool Call(CallInput &input, int &result) {
        CallWatch::BeginAction();
        try {
            result = m_row.call(m_target.function, input);
            return true;
        } catch (const std::exception &error) {
            m_reporter.Add(FindingId::CallThrows, error.what());
        }
#if defined(__GLIBC__) && defined(__GLIBCXX__)
        catch (abi::__forced_unwind &) {
            throw; // the function ends its thread, and with it the process
        }
#endif
        catch (...) {
            m_reporter.Add(FindingId::CallThrows, "not a std::exception");
        }
        return false;
    }

    bool MakeFirst() {
        CallInput input = NewInput();
        int result = 0;
        if (!Call(input, result)) {
            return false;
        }
        if (const auto offset = input.ChangedOffset()) {
            m_reporter.Add(FindingId::RecordChanged, std::to_string(*offset));
        }
        const bool ofLibrary =
            m_row.role == doctor::PluginRole::Isp && result != 0 && !NameInTable(result).empty();
        m_reporter.Add(ofLibrary ? FindingId::CallReturnsLibraryCode : FindingId::CallReturns,
                       FormatResultCode(result));
        if (m_row.judge != nullptr) {
            m_row.judge(m_target, input, result, m_reporter);
        }
        return true;
    }

    void MakeAgain() {
        CallInput input = NewInput();
        int ignored = 0;
        Call(input, ignored);
    }

    void MeasureRepeated() {
        const LeftBehind left = MeasureLeftBehind([this] { MakeAgain(); });
        if (left.bytes > 0) {
            m_reporter.Add(FindingId::MemoryLeft, std::to_string(left.bytes));
        }
        if (left.descriptors > 0) {
            m_reporter.Add(FindingId::DescriptorsLeft, std::to_string(left.descriptors));
        }
    }

    const CallRow &m_row;
    const std::string &m_directory;
    CallReporter &m_reporter;
    std::string m_words;
    CallTarget m_target;
    SetUi *m_setUi = nullptr;
};

} // namespace

void ProbeCall(const std::string &library, const std::string &plugin, const CallRow &row,
               const std::string &directory, ParentLink &link) {
    std::string ignored;
    if (!library.empty()) {
        ScalerLibrary::Open(library, ignored);
    }
    // Nothing is to be left where the user is, nor in the device of the virtual scaler.
    const std::string device = directory + "/VirtualScaler";
    if (::chdir(directory.c_str()) != 0 ||
        ::setenv("SCALER_ISP_VIRTUAL_DEVICE", device.c_str(), 1) != 0) {
        return;
    }
    CallReporter reporter(link);
    reporter.Begin(std::string(row.function) + ": loading the plug-in");
    void *handle = ::dlopen(plugin.c_str(), RTLD_NOW);
    if (handle == nullptr) {
        return;
    }
    CallSeries(handle, row, directory, reporter).Make();
    reporter.Begin(std::string(row.function) + ": unloading the plug-in");
    ::dlclose(handle);
    doctor::Send(link, {doctor::kProbeEnd});
}

} // namespace ispctl::check
