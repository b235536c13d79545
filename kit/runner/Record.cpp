#include "Record.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

// Invalid UTF-8 in the output of programs is replaced.
std::string line(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json testLine(const Record& record, const TestRun& test) {
    return {{"check", record.check.id},
            {"test", test.name},
            {"result", nameOf(test.outcome)},
            {"reason", test.reason},
            {"milliseconds", test.milliseconds}};
}

// Fixed widths, so that long details leave room for the other columns.
constexpr const char* kStyle =
    "body{font:15px sans-serif;margin:2em}table{border-collapse:collapse}"
    "td,th{border:1px solid #bbb;padding:.3em .6em;vertical-align:top;text-align:left;"
    "overflow-wrap:anywhere}pre{white-space:pre-wrap;margin:0}"
    ".results{table-layout:fixed;width:100%}.results th:nth-child(1){width:12%}"
    ".results th:nth-child(2){width:22%}.results th:nth-child(3){width:7%}"
    ".results th:nth-child(5){width:8%}.results th:nth-child(6){width:6%}"
    ".results th:nth-child(7){width:21%}.passed{background:#dfd}.failed{background:#fcc}"
    ".skipped{background:#eee}.needs{background:#ffd}";

const char* classOf(Outcome outcome) {
    return outcome == Outcome::NeedsWindows ? "needs" : nameOf(outcome);
}

std::string cell(const std::string& html) { return "<td>" + html + "</td>"; }

std::string pre(const std::string& text) {
    return text.empty() ? std::string() : "<pre>" + htmlText(text) + "</pre>";
}

std::string claimOf(const Check& check) {
    if (check.page.empty()) return {};
    return htmlText(check.page) + ": &ldquo;" + htmlText(check.sentence) + "&rdquo;";
}

// The reason, the tests that did not pass, and the figures.
std::string detailsOf(const Record& record) {
    std::string text = record.reason;
    const auto add = [&](const std::string& more) { text += (text.empty() ? "" : "\n") + more; };
    for (const TestRun& test : record.output.tests) {
        if (test.outcome == Outcome::Passed) continue;
        add(test.name + " " + nameOf(test.outcome) + ": " + test.reason);
    }
    for (const auto& [name, value] : record.output.figures) add(name + ": " + value);
    return text;
}

// Empty for a success, and for a check that was not run.
std::string errorOf(const Record& record) {
    return record.error == 0 ? std::string() : hexadecimal(record.error);
}

std::string timeOf(const Record& record) {
    if (record.raw.empty()) return {};
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%ld.%03ld s", record.milliseconds / 1000,
                  record.milliseconds % 1000);
    return seconds;
}

std::string rowOf(const Record& record) {
    std::string result = nameOf(record.outcome);
    if (!record.raw.empty()) {
        result = "<a href=\"" + htmlText(record.raw) + "\">" + result + "</a>";
    }
    return std::string("<tr class=\"") + classOf(record.outcome) + "\">" +
           cell(htmlText(record.check.id)) + cell(htmlText(record.check.decides)) + cell(result) +
           cell(pre(detailsOf(record))) + cell(errorOf(record)) + cell(timeOf(record)) +
           cell(claimOf(record.check)) + "</tr>\n";
}

std::string countsOf(const std::vector<Record>& records) {
    std::string text;
    for (const Outcome outcome :
         {Outcome::Passed, Outcome::Failed, Outcome::Skipped, Outcome::NeedsWindows}) {
        const auto count =
            std::count_if(records.begin(), records.end(),
                          [outcome](const Record& record) { return record.outcome == outcome; });
        if (count == 0) continue;
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + nameOf(outcome);
    }
    return text;
}

}  // namespace

std::string hexadecimal(std::uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(number));
    return text;
}

std::string recordLines(const Record& record) {
    Json json = {{"check", record.check.id},
                 {"decides", record.check.decides},
                 {"page", record.check.page},
                 {"sentence", record.check.sentence},
                 {"result", nameOf(record.outcome)},
                 {"reason", record.reason},
                 {"error", hexadecimal(record.error)},
                 {"milliseconds", record.milliseconds},
                 {"raw", record.raw}};
    for (const auto& [name, value] : record.output.figures) json["figures"][name] = value;
    std::string text = line(json);
    for (const TestRun& test : record.output.tests) text += line(testLine(record, test));
    return text;
}

std::string factsText(const Facts& facts) {
    Json json = Json::object();
    for (const auto& [name, value] : facts) json[name] = value;
    return json.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string htmlText(std::string_view text) {
    std::string html;
    for (const char c : text) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t' ? '?' : c;
        }
    }
    return html;
}

std::string summaryPage(const std::vector<Record>& records, const Facts& facts) {
    std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<title>Results of the Windows kit</title><style>" +
        std::string(kStyle) + "</style></head><body>\n<h1>Results of the Windows kit</h1>\n<p>" +
        htmlText(countsOf(records)) +
        "</p>\n<table "
        "class=\"results\"><tr><th>check</th><th>question</th><th>result</th><th>details</th>"
        "<th>error or status</th><th>time</th><th>document</th></tr>\n";
    for (const Record& record : records) page += rowOf(record);
    page += "</table>\n<h2>Machine</h2>\n<table>\n";
    for (const auto& [name, value] : facts) {
        page += "<tr>" + cell(htmlText(name)) + cell(pre(value)) + "</tr>\n";
    }
    return page + "</table>\n</body></html>\n";
}
