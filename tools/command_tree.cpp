// Prints the commands of ispctl with their options, and the options of the library, as one JSON
// document for tools/command_pages.py.

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "ExitStatus.h"
#include "line/FindingTable.h"
#include "scaler_isp/args/CommandFacts.h"

namespace {

using Json = nlohmann::ordered_json;

std::string Trimmed(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of('\n'), text.size());
    const std::size_t end = text.find_last_not_of(" \n");
    return end == std::string_view::npos ? "" : std::string(text.substr(begin, end + 1 - begin));
}

/// The part of a footer between a heading and the next one; with an empty heading what precedes
/// all.
std::string PartOf(std::string_view footer, std::string_view heading) {
    constexpr std::string_view kHeadings[] = {"Examples:\n", "Exit status:"};
    std::size_t begin = 0;
    if (!heading.empty()) {
        begin = footer.find(heading);
        if (begin == std::string_view::npos) {
            return "";
        }
        begin += heading.size();
    }
    std::size_t end = footer.size();
    for (const std::string_view next : kHeadings) {
        end = std::min(end, footer.find(next, begin));
    }
    return Trimmed(footer.substr(begin, end - begin));
}

Json NamesOf(const CLI::Option &option) {
    Json names = Json::array();
    for (const std::string &name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const std::string &name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

/// The word for a value; choices, which the parser writes as FORM:{a,b}, as a|b.
std::string ValueOf(const CLI::Option &option) {
    std::string value = option.get_items_expected_max() > 0 ? option.get_type_name() : "";
    if (const std::size_t braces = value.find(":{"); braces != std::string::npos) {
        value = value.substr(braces + 2, value.size() - braces - 3);
        std::replace(value.begin(), value.end(), ',', '|');
    }
    return value;
}

Json OptionOf(const CLI::Option &option) {
    return {{"names", NamesOf(option)},
            {"value", ValueOf(option)},
            {"description", option.get_description()}};
}

Json ArgumentOf(const CLI::Option &option) {
    return {{"name", option.get_name(true)},
            {"required", option.get_required()},
            {"many", option.get_items_expected_max() > 1},
            {"description", option.get_description()}};
}

Json CommandOf(const CLI::App &app) {
    Json command = {{"name", app.get_name()},
                    {"description", app.get_description()},
                    {"notes", PartOf(app.get_footer(), "")},
                    {"examples", PartOf(app.get_footer(), "Examples:\n")},
                    {"arguments", Json::array()},
                    {"options", Json::array()},
                    {"takes library options", false},
                    {"commands", Json::array()}};
    for (const CLI::Option *option : app.get_options()) {
        if (option->get_positional()) {
            command["arguments"].push_back(ArgumentOf(*option));
            command["takes library options"] = option->get_name(true) == "ARGS";
        } else {
            command["options"].push_back(OptionOf(*option));
        }
    }
    for (const CLI::App *below : app.get_subcommands([](const CLI::App *) { return true; })) {
        if (!below->get_group().empty()) {
            command["commands"].push_back(CommandOf(*below));
        }
    }
    return command;
}

Json LibraryOptions() {
    Json rows = Json::array();
    for (const ScalerIspFacts::OptionFacts &option : ScalerIspFacts::kOptions) {
        Json keywords = Json::array();
        for (std::string_view rest = option.effect.keywords; !rest.empty();) {
            const std::size_t end = std::min(rest.find(' '), rest.size());
            keywords.push_back(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        rows.push_back({{"name", option.name},
                        {"value", option.takesValue},
                        {"keywords", keywords},
                        {"form", option.form},
                        {"section", option.section},
                        {"meaning", option.meaning}});
    }
    return rows;
}

Json Findings() {
    Json names = Json::array();
    for (const ispctl::FindingRow &row : ispctl::kFindingRows) {
        names.push_back(row.name);
    }
    return names;
}

Json ExitStatuses() {
    Json rows = Json::array();
#define ISPCTL_EXIT_STATUS(NAME, VALUE, MEANING)                                                   \
    rows.push_back({{"value", VALUE}, {"meaning", MEANING}});
    ISPCTL_EXIT_STATUSES(ISPCTL_EXIT_STATUS)
#undef ISPCTL_EXIT_STATUS
    return rows;
}

} // namespace

int main() {
    ispctl::Session session;
    const ispctl::Commands commands(session);
    const Json document = {{"version", commands.app.version()},
                           {"command", CommandOf(commands.app)},
                           {"library options", LibraryOptions()},
                           {"findings", Findings()},
                           {"exit statuses", ExitStatuses()}};
    std::puts(document.dump(1).c_str());
    return 0;
}
