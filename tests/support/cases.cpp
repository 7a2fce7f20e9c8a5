#include "support/cases.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace orvo::test {
namespace {

std::vector<std::string> split(const std::string& text, const std::string& between) {
    std::vector<std::string> parts;
    for (size_t at = 0, end = 0; end != std::string::npos; at = end + between.size()) {
        end = text.find(between, at);
        parts.push_back(text.substr(at, end == std::string::npos ? end : end - at));
    }
    return parts;
}

/// Compiles and compares what is found.
RunResult expectFound(const std::string& source, const std::vector<Finding>& findings,
                      const Frame& frame) {
    std::vector<SourceFile> files = frame.others;
    files.insert(files.begin(), {"m.asn", "M DEFINITIONS " + frame.defaults + "::= BEGIN " +
                                              frame.head + "\n" + source + "END\n"});
    const RunResult run = compile(files, frame.options);
    EXPECT_EQ(run.diagnostics("m"), listed(findings));
    const bool failed = std::ranges::any_of(
        findings, [](const Finding& finding) { return !finding.text.starts_with("W "); });
    EXPECT_EQ(run.status, failed ? 1 : 0) << run.err;
    return run;
}

RunResult expectLines(const std::vector<std::string>& lines, const Frame& frame) {
    std::vector<Finding> findings;
    std::string source;
    for (size_t at = 0; at < lines.size(); ++at) {
        std::string line = lines[at];
        std::ranges::copy(findingsIn(takeBehind(line, " --! "), static_cast<int>(at) + 2),
                          std::back_inserter(findings));
        source += line + '\n';
    }
    return expectFound(source, findings, frame);
}

} // namespace

std::vector<std::string> linesOf(const std::string& body) {
    std::vector<std::string> lines = split(body, "\n");
    if (lines.front().empty()) lines.erase(lines.begin());
    if (!lines.empty() && lines.back().empty()) lines.pop_back();
    return lines;
}

std::string takeBehind(std::string& line, const char* mark) {
    const size_t at = line.find(mark);
    if (at == std::string::npos) return {};
    const std::string text = line.substr(std::min(line.size(), at + 5));
    line.erase(at);
    return text;
}
std::vector<Finding> findingsIn(const std::string& marks, int line) {
    std::vector<Finding> findings;
    if (marks.empty()) return findings;
    for (const std::string& text : split(marks, " ; ")) {
        const bool hasLine = text.size() > 3 && text[0] >= '0' && text[0] <= '9' && text[1] == ':';
        findings.push_back(hasLine ? Finding{text[0] - '0', text.substr(3)} : Finding{line, text});
    }
    return findings;
}
std::string withLines(std::string text) {
    for (size_t at = 0; (at = text.find("\\n", at)) != std::string::npos;)
        text.replace(at, 2, "\n");
    return text;
}

std::string listed(const std::vector<Finding>& findings) {
    std::string lines;
    for (const Finding& finding : findings) {
        const bool isWarning = finding.text.starts_with("W "),
                   isLexical = finding.text.starts_with("L ");
        std::string number = std::to_string(finding.line);
        number.insert(0, number.size() < 3 ? 3 - number.size() : 0, ' ');
        lines += std::string(isLexical ? " *** " : "  ** ") +
                 (isWarning ? "WARNING " : "ERROR on") + " line " + number + " : " +
                 finding.text.substr(isWarning || isLexical ? 2 : 0) + '\n';
    }
    return lines;
}
std::string listed(int line, const std::string& text) {
    return listed({{line, text}});
}

void expectRows(const std::string& rows, const Frame& frame, const FactOf& factOf) {
    for (std::string row : linesOf(rows)) {
        SCOPED_TRACE(row);
        std::vector<Finding> findings = findingsIn(takeBehind(row, " --! "), 2);
        if (!findings.empty() && !frame.last.empty()) findings.push_back({2, frame.last});
        std::string fact = takeBehind(row, " --= ");
        fact.resize(std::min(fact.size(), fact.find(" -- ")));
        const RunResult run = expectFound(frame.before + withLines(row) + '\n', findings, frame);
        if (factOf && run.status == 0) {
            EXPECT_EQ(factOf(TreeFacts(run, "m")), fact);
        }
    }
}

RunResult expectMarked(const std::string& body, const Frame& frame) {
    return expectLines(linesOf(body), frame);
}
void expectMarkedInAnyOrder(const std::string& body) {
    std::vector<std::string> lines = linesOf(body);
    for (const bool reversed : {false, true}) {
        if (reversed) std::ranges::reverse(lines);
        for (size_t first = 0; first < lines.size(); ++first) {
            SCOPED_TRACE(lines.front());
            expectLines(lines, automatic);
            std::ranges::rotate(lines, lines.begin() + 1);
        }
    }
}

std::vector<std::pair<std::string, std::string>> factsIn(const std::string& text) {
    std::vector<std::pair<std::string, std::string>> facts;
    for (const std::string& line : linesOf(text))
        for (const std::string& fact : split(line, " ; "))
            facts.push_back({fact.substr(0, fact.find(": ")), fact.substr(fact.find(": ") + 2)});
    return facts;
}
void expectFacts(const std::string& facts,
                 const std::function<std::string(const std::string&)>& factOf) {
    for (const auto& [place, fact] : factsIn(facts)) EXPECT_EQ(factOf(place), fact) << place;
}
void expectFacts(const TreeFacts& tree, const std::string& facts) {
    static const std::map<std::string, std::string (TreeFacts::*)(std::string_view) const> known = {
        {"kind", &TreeFacts::kind},         {"actualKind", &TreeFacts::actualKind},
        {"tags", &TreeFacts::tags},         {"finalTags", &TreeFacts::finalTags},
        {"bounds", &TreeFacts::bounds},     {"valueField", &TreeFacts::valueField},
        {"flags", &TreeFacts::flags},       {"optFlags", &TreeFacts::optFlags},
        {"presence", &TreeFacts::presence}, {"constraint", &TreeFacts::constraint},
        {"named", &TreeFacts::named},       {"components", &TreeFacts::components},
        {"options", &TreeFacts::options},   {"valueText", &TreeFacts::valueText}};
    expectFacts(facts, [&](const std::string& place) {
        const size_t space = place.find(' ');
        return (tree.*known.at(place.substr(0, space)))(place.substr(space + 1));
    });
}

void expectTypes(const std::string& types, const Frame& frame,
                 const std::function<std::string(const TreeFacts&, const std::string&)>& factOf) {
    const auto rows = factsIn(types);
    std::string body;
    for (size_t i = 0; i < rows.size(); ++i)
        body += "T" + std::to_string(i) + " ::= " + rows[i].first + "\n";
    const TreeFacts tree(expectMarked(body, frame), "m");
    for (size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(factOf(tree, "T" + std::to_string(i)), rows[i].second) << rows[i].first;
}

SourceFile moduleM(const std::string& body) {
    return {"m.asn", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n" + body + "\nEND\n"};
}
std::string diagnosticsOf(const std::string& body) {
    return compile({moduleM(body)}).diagnostics("m");
}
RunResult compileBody(const std::string& body, std::vector<std::string> options,
                      const std::string& defaults) {
    return compile({{"m.asn", "M DEFINITIONS " + defaults + "::= BEGIN\n" + body + "\nEND\n"}},
                   std::move(options));
}

std::string numbered(std::string text, int number) {
    for (size_t at = 0; (at = text.find_first_of("#@", at)) != std::string::npos;)
        text.replace(at, 1, std::to_string(text[at] == '#' ? number : number - 1));
    return text;
}

} // namespace orvo::test
