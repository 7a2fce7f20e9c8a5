#pragma once

// Modules written line by line, each with the errors that are to be listed behind it.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/cases.h"

namespace orvo::test {

struct Line {
    std::string source;
    std::vector<std::string> errors = {};
};

inline std::string listed(size_t line, const std::string& text) {
    return listed({{static_cast<int>(line), text}});
}

/// Compiles the lines as module M in m.asn, the first of them on line 2, beside other modules.
inline RunResult compileLines(const std::vector<Line>& lines,
                              const std::vector<std::string>& options = {},
                              std::vector<SourceFile> others = {}) {
    std::string text = "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n";
    for (const Line& line : lines) text += line.source + "\n";
    others.insert(others.begin(), {"m.asn", text + "END\n"});
    return compile(others, options);
}

inline void expectFindings(const std::vector<Line>& lines,
                           const std::vector<std::string>& options = {},
                           const std::vector<SourceFile>& others = {}) {
    std::string expected;
    for (size_t i = 0; i < lines.size(); ++i)
        for (const std::string& error : lines[i].errors) expected += listed(i + 2, error);
    const RunResult result = compileLines(lines, options, others);
    EXPECT_EQ(result.diagnostics("m"), expected);
    EXPECT_EQ(result.status, expected.empty() ? 0 : 1) << result.err;
}

/// The same with the definitions, one a line, in many orders.
inline void expectFindingsInAnyOrder(std::vector<Line> lines) {
    for (const bool reversed : {false, true}) {
        if (reversed) std::ranges::reverse(lines);
        for (size_t first = 0; first < lines.size(); ++first) {
            SCOPED_TRACE(lines.front().source);
            expectFindings(lines);
            std::ranges::rotate(lines, lines.begin() + 1);
        }
    }
}

struct ErrorCase {
    const char* notation;
    const char* messages; // all on one line of the source, separated by "; "
};
/// The messages as they are listed for line 2.
inline std::string errorsOnLine2(std::string messages) {
    for (size_t at = messages.find("; "); at != std::string::npos; at = messages.find("; ", at))
        messages.replace(at, 2, "\n  ** ERROR on line   2 : ");
    return listed(2, messages);
}

} // namespace orvo::test
