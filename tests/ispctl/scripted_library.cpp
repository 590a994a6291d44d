// A stand-in for the library. Each word of the command line after the program word is one step:
//   out:T err:T    T to standard output or standard error, through stdio
//   many:N         N lines of 100 bytes to standard output
//   message:T      T to the message callback; progress:N to the progress callback
//   surrogate      a message that is no valid Unicode
//   long:N         a message of N characters
//   sleep:N        N milliseconds; result:N ends the run
//   abort exit:N _exit:N raise:N end the process; atexit:N ends it with N after the run
// In T, \n is a line end, \e an escape and \xNN a byte.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "scaler_isp/OperateScaler.h"
#include "scaler_isp/entry/CommandLineSplit.h"

namespace {

std::string Unescaped(const std::string &text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
        } else if (text[++i] == 'n') {
            bytes += '\n';
        } else if (text[i] == 'e') {
            bytes += '\033';
        } else {
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        }
    }
    return bytes;
}

void Print(std::FILE *stream, const std::string &text) {
    const std::string bytes = Unescaped(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
}

void Message(ScalerIspMessageCallback message, const std::string &text) {
    const std::string bytes = Unescaped(text);
    std::wstring wide(bytes.begin(), bytes.end());
    message(wide.data());
}

void End(const std::string &name, const std::string &value) {
    if (name == "abort") {
        std::abort();
    } else if (name == "exit") {
        std::exit(std::stoi(value)); // NOLINT(concurrency-mt-unsafe)
    } else if (name == "_exit") {
        ::_exit(std::stoi(value));
    } else if (name == "raise") {
        ::raise(std::stoi(value));
    } else if (name == "atexit") {
        static const int status = std::stoi(value);
        std::atexit([] { ::_exit(status); });
    }
}

void Step(const std::string &name, const std::string &value, ScalerIspProgressCallback progress,
          ScalerIspMessageCallback message) {
    if (name == "out" || name == "err") {
        Print(name == "out" ? stdout : stderr, value);
    } else if (name == "many") {
        for (int i = std::stoi(value); i > 0; --i) {
            std::printf("%099d\n", i);
        }
    } else if (name == "message") {
        Message(message, value);
    } else if (name == "surrogate") {
        std::wstring text = L"a\\";
        text += static_cast<wchar_t>(0xD800);
        message(text.data());
    } else if (name == "progress") {
        progress(std::stoi(value));
    } else if (name == "sleep") {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(value)));
    } else if (name == "long") {
        std::wstring text(static_cast<std::size_t>(std::stoi(value)), L'x');
        message(text.data());
    } else {
        End(name, value);
    }
}

} // namespace

extern "C" SCALER_ISP_API int OperateScaler(const wchar_t *commandLine, void *,
                                            ScalerIspProgressCallback progress,
                                            ScalerIspMessageCallback message) {
    const std::wstring wide = commandLine;
    std::vector<std::string> words;
    ParseCommandLineParameter(words, std::string(wide.begin(), wide.end()));
    for (std::size_t i = 1; i < words.size(); ++i) {
        const auto colon = words[i].find(':');
        const std::string name = words[i].substr(0, colon);
        const std::string value = colon == std::string::npos ? "" : words[i].substr(colon + 1);
        if (name == "result") {
            return std::stoi(value, nullptr, 0);
        }
        Step(name, value, progress, message);
    }
    return 0;
}

// Words at blanks, and a double quote anywhere switches the meaning of blanks.
SCALER_ISP_API int ParseCommandLineParameter(std::vector<std::string> &tokens,
                                             const std::string &commandLine) {
    std::string word;
    bool quoted = false;
    for (const char character : commandLine + " ") {
        if (character == '"') {
            quoted = !quoted;
        } else if (character != ' ' || quoted) {
            word += character;
        } else if (!word.empty()) {
            tokens.push_back(word);
            word.clear();
        }
    }
    return 1;
}
