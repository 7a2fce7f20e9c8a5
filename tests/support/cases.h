#pragma once

// Tables of small modules and of what the compiler finds in them.

#include <cstdio>
#include <string>
#include <vector>

#include "support/run.h"

namespace orvo::test {

/// A diagnostic; "W" in front of the text makes it a warning.
struct Finding {
    int line;
    std::string text;
};

/// The lines that a listing has for them.
inline std::string listed(const std::vector<Finding>& findings) {
    std::string lines;
    for (const Finding& finding : findings) {
        const bool warning = finding.text.starts_with("W ");
        std::string number = std::to_string(finding.line);
        number.insert(0, number.size() < 3 ? 3 - number.size() : 0, ' ');
        lines += std::string("  ** ") + (warning ? "WARNING " : "ERROR on") + " line " + number +
                 " : " + finding.text.substr(warning ? 2 : 0) + '\n';
    }
    return lines;
}

/// Module M with automatic tags, whose body begins on line 2.
inline SourceFile moduleM(const std::string& body) {
    return {"m.asn", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n" + body + "\nEND\n"};
}
inline std::string diagnosticsOf(const std::string& body) {
    return compile({moduleM(body)}).diagnostics("m");
}

/// Compiles a module M; the body begins on line 2. `defaults`: "IMPLICIT TAGS " and the like.
inline RunResult compileBody(const std::string& body, std::vector<std::string> options = {},
                             const std::string& defaults = "") {
    return compile({{"m.asn", "M DEFINITIONS " + defaults + "::= BEGIN\n" + body + "\nEND\n"}},
                   std::move(options));
}

} // namespace orvo::test
