// docs/options.md against the tables of options.

#include <fstream>
#include <sstream>

#include "options/options_support.h"
#include "options/orvoopt_loc.h"
#include "support/run.h"
#include "util/text.h"

namespace orvo {
namespace {

/// Lines of the document that are rows of tables.
std::vector<std::string> tableRows() {
    std::ifstream file(ORVO_SOURCE_DIR "/docs/options.md");
    std::vector<std::string> rows;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("| ")) rows.push_back(line);
    return rows;
}

std::string code(std::string_view text) {
    return text.empty() ? "none" : concat("`", text, "`");
}
/// Alternatives separated by "|" as the document lists them.
std::string codeList(std::string_view alternatives) {
    std::string list = code(alternatives.substr(0, alternatives.find('|')));
    for (size_t at = 0; (at = alternatives.find('|', at)) != std::string_view::npos;) {
        const std::string_view rest = alternatives.substr(++at);
        list += concat(", ", code(rest.substr(0, rest.find('|'))));
    }
    return list;
}

/// The example of the row that begins so; fails when there is no such row.
std::string exampleOf(const std::vector<std::string>& rows, const std::string& beginning) {
    for (const std::string& row : rows)
        if (row.starts_with(beginning + " | `") && row.ends_with("` |"))
            return row.substr(beginning.size() + 4, row.size() - beginning.size() - 7);
    ADD_FAILURE() << "no row\n" << beginning;
    return {};
}

using OptionDocument = OptionTest;

TEST_F(OptionDocument, ListsEveryGlobalOptionWithAnExampleThatIsAccepted) {
    const std::vector<std::string> rows = tableRows();
    for (const GlbOption& option : glbOptions()) {
        const std::string example =
            exampleOf(rows, concat("| `", option.name, "` | ", codeList(optionValues(option)),
                                   " | ", code(option.dflt), " | ", option.help));
        EXPECT_NE(example.find(option.name), std::string::npos) << example;
        std::vector<Option> options;
        std::istringstream words(example);
        for (std::string word; words >> word;) options.push_back({word});
        EXPECT_EQ(evaluate(a, options), option.name != "VERSION") << example;
    }
}

/// Every example of the local options, in one module.
test::SourceFile exampleModule(const std::vector<std::string>& rows) {
    std::string components, assignments;
    for (const std::string& row : rows) {
        const size_t example = row.rfind(" | `") + 4;
        const std::string text = row.substr(example, row.size() - example - 3);
        if (text.find("--$") == std::string::npos) continue;
        if (text.find("::=") != std::string::npos)
            assignments += text + "\n";
        else
            components += concat(components.empty() ? "" : ",\n", text);
    }
    return {"m.asn", concat("M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nmy-number INTEGER ::= 1\n",
                            assignments, "T ::= CHOICE {\n", components, " }\nEND\n")};
}

TEST_F(OptionDocument, ListsEveryLocalOptionWithExamplesThatAreAccepted) {
    const std::vector<std::string> rows = tableRows();
    for (const LocOption& option : locOptions()) {
        const std::string example =
            exampleOf(rows, concat("| `", option.name, "` | ", option.types, " | ",
                                   codeList(option.values), " | ", option.help));
        EXPECT_NE(example.find(concat("--$", option.name)), std::string::npos) << example;
    }
    for (const NameOptPref& naming : nameOptPref) {
        if (naming.kind == FIX_OBJECT) continue; // objects have no naming comments
        const std::string name = concat("`", naming.prefix, "NAME=`");
        EXPECT_TRUE(std::ranges::any_of(rows, [&](const std::string& row) {
            return row.find(name) != std::string::npos && row.find(" | `") != row.rfind(" | `");
        })) << name;
    }
    const test::RunResult result = test::compile({exampleModule(rows)}, {"-DEFINITELEN=2"});
    EXPECT_EQ(result.diagnostics("m"), "") << result.file("m.lst");
}

} // namespace
} // namespace orvo
