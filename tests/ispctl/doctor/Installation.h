#ifndef SCALER_ISP_TESTS_ISPCTL_INSTALLATION_H
#define SCALER_ISP_TESTS_ISPCTL_INSTALLATION_H

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ConsoleProcess.h"
#include "support/TempFolder.h"

/// A directory with a link to the real library and both recording plug-ins, for `ispctl doctor`.
class Installation {
  public:
    using Json = nlohmann::json;

    Installation() {
        std::filesystem::create_symlink(REAL_LIBRARY, Library());
        Copy(RECORDING_ISP, kIspPlugin);
        Copy(RECORDING_SIGN, kSignPlugin);
    }

    static constexpr const char *kIspPlugin = "PlugIn/libIsp.dylib";
    static constexpr const char *kSignPlugin = "libSignVerify.dylib";

    std::string Library() const {
        return folder.Path("libScalerIsp.so");
    }
    /// Replaces a file by a copy.
    void Copy(const std::string &from, const std::string &name) const {
        Remove(name);
        std::filesystem::create_directories(std::filesystem::path(folder.Path(name)).parent_path());
        std::filesystem::copy_file(from, folder.Path(name));
    }
    void Remove(const std::string &name) const {
        std::filesystem::remove_all(folder.Path(name));
    }

    /// Runs doctor. RETURNS how it ended; its output must be one JSON document.
    Json Doctor() {
        const ConsoleResult result = RunConsole({"doctor", "--json", "--lib", Library()});
        status = result.status;
        Json document = Json::parse(result.out);
        EXPECT_EQ(document["status"], status);
        EXPECT_EQ(result.err, "");
        return document;
    }
    /// The findings of this name.
    static std::vector<Json> Named(const Json &document, const std::string &name) {
        std::vector<Json> found;
        for (const Json &finding : document["findings"]) {
            if (finding["name"] == name) {
                found.push_back(finding);
            }
        }
        return found;
    }
    /// The names of all findings that are not ok.
    static std::vector<std::string> Bad(const Json &document) {
        std::vector<std::string> names;
        for (const Json &finding : document["findings"]) {
            if (finding["class"] == "warning" || finding["class"] == "error") {
                names.push_back(finding["name"]);
                EXPECT_NE(finding["remedy"], "") << finding;
            }
        }
        return names;
    }

    TempFolder folder;
    int status = -1;
};

#endif
