#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "diag/orvomsg.h"
#include "support/run.h"

namespace orvo::test {
namespace {

struct Row {
    std::string text, example, option;
};

/// The rows of docs/diagnostics.md by number; "\|" in a cell is a bar.
std::map<int, Row> documentedRows() {
    std::ifstream file(ORVO_SOURCE_DIR "/docs/diagnostics.md");
    std::map<int, Row> rows;
    for (std::string line; std::getline(file, line);) {
        std::vector<std::string> cells(1);
        for (size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '\\' && i + 1 < line.size() && line[i + 1] == '|')
                cells.back() += line[++i];
            else if (line[i] == '|')
                cells.emplace_back();
            else
                cells.back() += line[i];
        }
        for (std::string& cell : cells) {
            const size_t first = cell.find_first_not_of(' ');
            cell = first == std::string::npos
                       ? ""
                       : cell.substr(first, cell.find_last_not_of(' ') - first + 1);
        }
        const bool numbered = cells.size() > 2 && !cells[1].empty() &&
                              cells[1].find_first_not_of("0123456789") == std::string::npos;
        if (!numbered) continue;
        Row row{cells[2], cells.size() > 4 ? cells[4] : "", ""};
        std::smatch match;
        const std::regex option("^\\(options: ([^)]*)\\) (.*)$");
        const std::string example = row.example;
        if (std::regex_match(example, match, option)) {
            row.option = match[1];
            row.example = match[2];
        }
        EXPECT_TRUE(rows.emplace(std::stoi(cells[1]), row).second) << "twice: " << cells[1];
    }
    return rows;
}

/// Where a message of the family begins: its text up to the first word in italics.
std::string beginning(const std::string& text) {
    std::string start = text.substr(0, text.find(" / "));
    start = start.substr(0, start.find('*'));
    while (!start.empty() && start.back() == ' ') start.pop_back();
    return start.empty() ? "is expected after:" : start;
}

TEST(DiagnosticsDocument, HasEveryMessageWithItsText) {
    const auto rows = documentedRows();
    for (const MessageText& message : errorList) {
        const auto row = rows.find(static_cast<int>(message.code));
        ASSERT_NE(row, rows.end()) << "no row " << static_cast<int>(message.code);
        std::string_view text = message.text;
        text.remove_suffix(text.ends_with(' ')); // which a cell of a table does not show
        EXPECT_EQ(row->second.text, text);
    }
}

TEST(DiagnosticsDocument, ExamplesProvokeTheirMessages) {
    int provoked = 0;
    for (const auto& [number, row] : documentedRows()) {
        SCOPED_TRACE(number);
        if (row.example.size() < 2 || row.example.front() != '`') continue;
        std::string body = row.example.substr(1, row.example.size() - 2);
        if (body.find("DEFINITIONS") == std::string::npos)
            body = "M DEFINITIONS ::= BEGIN\n" + body + "\nEND\n";
        std::vector<std::string> options{"-V=3"};
        std::istringstream words(row.option);
        for (std::string word; words >> word;) options.push_back(word);
        const RunResult run = compile({{"m.asn", body}}, options);
        EXPECT_NE(run.listing("m").find(beginning(row.text)), std::string::npos)
            << body << run.listing("m");
        ++provoked;
    }
    EXPECT_GE(provoked, 70);
}

} // namespace
} // namespace orvo::test
