#ifndef SCALER_ISP_TESTS_UNIT_MODULES_MODULE_CALLS_H
#define SCALER_ISP_TESTS_UNIT_MODULES_MODULE_CALLS_H

#include <functional>
#include <string>
#include <vector>

/// One call that a test module received.
struct ModuleCall {
    std::string name;
    void *first;
    void *second;
    void *third;
};

/// Receives the calls of all test modules while it lives; one at a time.
class ModuleCalls {
  public:
    ModuleCalls();
    ~ModuleCalls();
    ModuleCalls(const ModuleCalls &) = delete;
    ModuleCalls &operator=(const ModuleCalls &) = delete;

    /// The names of all calls so far, in order.
    std::vector<std::string> Names() const;

    std::vector<ModuleCall> calls;
    /// What a module's function returns; 0 unless a test says otherwise.
    std::function<int(const ModuleCall &)> answer = [](const ModuleCall &) { return 0; };
    /// Called with true before a call is recorded and with false after its answer, so that what
    /// fails for the library does not fail for the test.
    void (*suspend)(bool) = [](bool) {};
};

/// The path of a test module (its name in CMakeLists.txt), and whether it is in the process.
std::string ModulePath(const std::string &name);
bool IsLoaded(const std::string &path);

#endif
