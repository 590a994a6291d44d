#include "explain/ExplainJson.h"

#include <fmt/format.h>

#include "JsonText.h"
#include "ResultInfo.h"
#include "explain/RecordJson.h"
#include "line/FindingJson.h"

namespace ispctl {
namespace {

Json Strings(const std::vector<std::string> &strings) {
    Json list = Json::array();
    for (const std::string &string : strings) {
        list.push_back(JsonString(string));
    }
    return list;
}

Json Results(const PlanStep &step) {
    Json list = Json::array();
    for (const PlanResult &result : step.results) {
        Json entry{{"code", nullptr},
                   {"hex", nullptr},
                   {"name", nullptr},
                   {"source", result.source},
                   {"text", JsonString(result.text)}};
        if (result.code) {
            entry["code"] = *result.code;
            entry["hex"] = FormatResultCode(*result.code);
            entry["name"] = NameInTable(*result.code);
        }
        list.push_back(std::move(entry));
    }
    return list;
}

Json Plan(const Explanation &explanation) {
    Json list = Json::array();
    for (const PlanStep &step : explanation.plan) {
        list.push_back({{"step", step.name},
                        {"text", JsonString(step.text)},
                        {"plug_in", StringOrNull(step.plugIn)},
                        {"function", StringOrNull(step.function)},
                        {"results", Results(step)}});
    }
    return list;
}

/// Null unless the line is right with all corrections.
Json Corrected(const Explanation &explanation) {
    const CorrectedLine &corrected = explanation.corrected;
    return corrected.arguments.empty() || !corrected.remaining.empty()
               ? Json()
               : Strings(corrected.arguments);
}

Json Flash(const Explanation &explanation) {
    Json banks = Json::array();
    for (const BankUse &use : explanation.banks) {
        banks.push_back({{"bank", use.bank},
                         {"address", fmt::format("0x{:06X}", std::uint64_t{use.bank} * kBankSize)},
                         {"file", JsonString(use.file)},
                         {"file_bank", use.fileBank},
                         {"boot", use.boot}});
    }
    return {{"banks", std::move(banks)},
            {"overlaps", explanation.flash.overlaps},
            {"beyond_end", explanation.flash.beyondEnd}};
}

void AddRecords(Json &document, const Explanation &explanation) {
    Json records = Json::object();
    Json fields = Json::object();
    for (const auto &[record, bytes] : RecordsOf(explanation)) {
        const std::string name(NameOf(record));
        records[name] = RecordValues(record, bytes);
        fields[name] = RecordFieldDetails(record, bytes, explanation.choice);
    }
    document["records"] = std::move(records);
    document["fields"] = std::move(fields);
}

Json Differences(const Explanation &explanation) {
    Json list = Json::array();
    for (const FieldDifference &difference : explanation.differences) {
        list.push_back({{"record", NameOf(difference.record)},
                        {"field", difference.name},
                        {"offset", difference.offset},
                        {"here", JsonString(difference.first)},
                        {"file", JsonString(difference.second)}});
    }
    return list;
}

} // namespace

std::string ExplainJson(const Explanation &explanation, Charset charset) {
    const bool ofLine = !explanation.library.empty();
    Json document{{"status", static_cast<int>(StatusOf(explanation))},
                  {"accepted", ofLine ? Json(explanation.accepted) : Json(nullptr)},
                  {"reason", StringOrNull(explanation.notPassed)},
                  {"printed", JsonString(explanation.printed)},
                  {"library", StringOrNull(explanation.library)},
                  {"command_line", StringOrNull(explanation.commandLine)},
                  {"arguments", Strings(explanation.arguments)},
                  {"findings", FindingsJson(explanation.findings)},
                  {"corrected", Corrected(explanation)},
                  {"plan", Plan(explanation)},
                  {"flash", Flash(explanation)}};
    AddRecords(document, explanation);
    if (!explanation.comparedFile.empty()) {
        document["differences"] = Differences(explanation);
    }
    return JsonDocument(document, charset);
}

} // namespace ispctl
