#include "chip/LibraryChoice.h"

#include <CLI/CLI.hpp>

#include "chip/ChipDirectories.h"

namespace ispctl {

void AddLibraryChoice(CLI::App &command, std::string &library, bool &virtualScaler) {
    CLI::Option *file =
        command.add_option("--lib", library, "the library to open, by path")->type_name("FILE");
    CLI::Option *chip = command
                            .add_option_function<std::string>(
                                "--chip",
                                [&library](const std::string &name) {
                                    std::string error;
                                    const auto found = FindChipLibrary(name, error);
                                    if (!found) {
                                        throw CLI::ValidationError("--chip", error);
                                    }
                                    library = found->string();
                                },
                                "the library of this chip, from its own directory")
                            ->type_name("NAME")
                            ->excludes(file);
    command
        .add_flag("--virtual", virtualScaler,
                  "the virtual scaler's library: no hardware is touched")
        ->disable_flag_override()
        ->excludes(file)
        ->excludes(chip);
}

} // namespace ispctl
