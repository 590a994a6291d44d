#include "explain/GivenBanks.h"

#include "explain/RecordFields.h"
#include "line/GivenArguments.h"

namespace ispctl {
namespace {

using ScalerIspFacts::Kind;

void Append(std::vector<BankUse> &uses, const std::vector<std::string> &arguments,
            const ParseArguments &parse) {
    const ParsedLine parsed = parse(arguments);
    if (!parsed.accepted) {
        return;
    }
    const auto &command = parsed.records->command;
    const auto banks =
        BankUsesOf({reinterpret_cast<const char *>(&command), SizeOf(RecordKind::Command)});
    uses.insert(uses.end(), banks.begin(), banks.end());
}

bool IsOf(const GivenArgument &argument, Kind kind) {
    return argument.option != nullptr && argument.option->effect.kind == kind &&
           argument.value.has_value();
}

std::string FullName(const GivenArgument &argument) {
    return "--" + std::string(argument.option->name);
}

} // namespace

std::vector<BankUse> GivenBanks(const std::vector<std::string> &arguments,
                                const ParseArguments &parse) {
    const auto given = ReadGivenArguments(arguments);
    std::vector<BankUse> uses;
    for (const GivenArgument &firmware : given) {
        if (!IsOf(firmware, Kind::Firmware)) {
            continue;
        }
        std::vector<std::string> alone{"--isp", FullName(firmware), *firmware.value};
        for (const GivenArgument &bank : given) {
            if (IsOf(bank, Kind::Bank) &&
                bank.option->effect.entry == firmware.option->effect.entry) {
                alone.insert(alone.end(), {FullName(bank), *bank.value});
            }
        }
        Append(uses, alone, parse);
    }
    return uses;
}

std::vector<BankUse> BootBanks(const std::string &path, const ParseArguments &parse) {
    std::vector<BankUse> uses;
    Append(uses, {"--isp", "--fw", path}, parse);
    for (BankUse &use : uses) {
        use.boot = true;
    }
    return uses;
}

} // namespace ispctl
