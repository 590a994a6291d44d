// An ISP plug-in that does what the variable PLUGIN_STEPS says, a word a step, whatever the action:
//   erase          appends "erased" to the file that PLUGIN_FILE names, as if a chip were erased
//   out:T          T to standard output; message:T to the message callback; progress:N
//   sleep:N        N milliseconds
//   exit:N _exit:N abort throw unwind thread   end the process or the call in that way
//   return:N       the result; 0 without it
// In T, \n is a line end and \e an escape.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <pthread.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>

#include "scaler_isp/abi/IspPlugin.h"

namespace {

ScalerIspProgressCallback g_progress = nullptr;
ScalerIspMessageCallback g_message = nullptr;

std::string Variable(const char *name) {
    const char *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr ? value : "";
}

std::string Unescaped(const std::string &text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool special = text[i] == '\\' && ++i < text.size();
        bytes += !special ? text[i] : text[i] == 'n' ? '\n' : text[i] == 'e' ? '\033' : text[i];
    }
    return bytes;
}

void End(const std::string &name, int number) {
    if (name == "exit") {
        std::exit(number); // NOLINT(concurrency-mt-unsafe)
    } else if (name == "_exit") {
        ::_exit(number);
    } else if (name == "abort") {
        std::abort();
    } else if (name == "throw") {
        throw std::runtime_error("thrown by the plug-in");
    } else if (name == "unwind") {
        ::pthread_exit(nullptr);
    }
}

void Step(const std::string &name, const std::string &value) {
    if (name == "erase") {
        std::ofstream(Variable("PLUGIN_FILE"), std::ios::app) << "erased\n";
    } else if (name == "out") {
        std::printf("%s", Unescaped(value).c_str());
    } else if (name == "message") {
        const std::string bytes = Unescaped(value);
        std::wstring text(bytes.begin(), bytes.end());
        g_message(text.data());
    } else if (name == "progress") {
        g_progress(std::stoi(value));
    } else if (name == "sleep") {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(value)));
    } else {
        End(name, value.empty() ? 0 : std::stoi(value));
    }
}

int Act() {
    std::istringstream steps(Variable("PLUGIN_STEPS"));
    for (std::string step; steps >> step;) {
        const auto colon = step.find(':');
        const std::string value = colon == std::string::npos ? "" : step.substr(colon + 1);
        if (step.starts_with("return:")) {
            return std::stoi(value, nullptr, 0);
        }
        Step(step.substr(0, colon), value);
    }
    return 0;
}

} // namespace

extern "C" {
using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback) {
    g_progress = progress;
    g_message = message;
}

void SetCommInterface(CNxComm *) {}

int IspFlash(Command *) {
    return Act();
}

int GetKeyFromFlash(Command *, unsigned char *) {
    return Act();
}

int RecordFWVersion(Command *) {
    return Act();
}

int DumpFlash(Command *) {
    return Act();
}
}
