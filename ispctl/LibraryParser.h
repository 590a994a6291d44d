#ifndef ISPCTL_LIBRARY_PARSER_H
#define ISPCTL_LIBRARY_PARSER_H

#include <optional>
#include <string>
#include <vector>

#include "ScalerLibrary.h"
#include "line/ParsedLine.h"
#include "scaler_isp/args/CCpIspArgsParse.h"

namespace ispctl {

/// The parser of an opened library, looked up by its symbols: this program does not link the class.
class LibraryParser {
  public:
    /// RETURNS nothing if the library lacks it, with the missing symbol in error.
    static std::optional<LibraryParser> Find(const ScalerLibrary &library, std::string &error);

    /// What the library makes of the arguments before it loads a plug-in. Writes no file. Standard
    /// output and standard error are redirected meanwhile, so no other thread may use them.
    /// Throws std::system_error if that is not possible.
    ParsedLine Parse(const std::vector<std::string> &arguments) const;

  private:
    using Constructor = void(void *);
    using SetDirectory = void(void *, const std::string &);
    using ParseArguments = int(void *, int, const char *const *);
    // A member that returns a class by value and a free function with the object as its parameter
    // are called in the same way in the ABIs of both systems.
    using GetCommand = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING(const void *);
    using GetSign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS(const void *);

    std::string m_directory; ///< as the library itself would express it; ends in "/"
    Constructor *m_construct = nullptr;
    SetDirectory *m_setDirectory = nullptr;
    ParseArguments *m_parse = nullptr;
    GetCommand *m_getCommand = nullptr;
    GetSign *m_getSign = nullptr;
};

} // namespace ispctl

#endif
