// docs/syntax-tree.md against the reader's tables, and its example against what it prints.

#include <gtest/gtest.h>

#include <bit>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "stx/stxreader.h"
#include "support/run.h"

namespace orvo::test {
namespace {

std::string readFile(const std::string& name) {
    std::ifstream file(ORVO_SOURCE_DIR "/" + name);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The lines behind the heading that begins with `title`, up to the next heading of a section.
std::string section(const std::string& text, const std::string& title) {
    const size_t begin = text.find("\n### " + title);
    if (begin == std::string::npos) return "";
    const size_t end = text.find("\n## ", begin);
    const size_t next = text.find("\n### ", begin + 1);
    return text.substr(begin, std::min(end, next) - begin);
}

/// The text of the fenced blocks of a language.
std::vector<std::string> blocks(const std::string& text, const std::string& language) {
    std::vector<std::string> found;
    const std::string fence = "\n```" + language + "\n";
    for (size_t at = text.find(fence); at != std::string::npos; at = text.find(fence, at)) {
        at += fence.size();
        found.push_back(text.substr(at, text.find("```", at) - at));
    }
    return found;
}

class SyntaxTreeDoc : public testing::Test {
  protected:
    const std::string text = readFile("docs/syntax-tree.md");
};

TEST_F(SyntaxTreeDoc, TellsEveryFieldWithOffsetAndWidth) {
    for (const stx::Kind kind :
         {stx::MNODE, stx::TNODE, stx::VNODE, stx::TAG, stx::SUB, stx::TED, stx::SNODE}) {
        const std::string title = std::string(stx::kindNames[kind]) + " (kind " +
                                  std::to_string(kind) + ", " +
                                  std::to_string(stx::recordSize[kind]) + " bytes)";
        const std::string rows = section(text, title);
        ASSERT_NE(rows, "") << title;
        for (const stx::Field& field : stx::fieldsOf(kind)) {
            std::string width =
                std::to_string(field.width) + (field.width == 1 ? " byte" : " bytes");
            if (field.form == stx::Form::Unsigned) width = 'u' + std::to_string(8 * field.width);
            if (field.form == stx::Form::Signed) width = 'i' + std::to_string(8 * field.width);
            if (field.form == stx::Form::Wide) width = "i64";
            if (field.form == stx::Form::Words) width = std::to_string(field.width / 4) + " x u32";
            const std::string row =
                "\n| " + std::to_string(field.offset) + " | " + width + " | `" + field.name + "` |";
            EXPECT_NE(rows.find(row), std::string::npos) << title << row;
        }
    }
}

TEST_F(SyntaxTreeDoc, TellsEveryCode) {
    for (int code = 0; code < stx::typeCount; ++code)
        EXPECT_NE(
            text.find("\n| " + std::to_string(code) + " | " + stx::typeTable[code].name + " | "),
            std::string::npos)
            << code;
    const struct {
        std::span<const stx::CodeName> names;
        const char* title;
    } tables[] = {{stx::subKindNames, "subKind"},
                  {stx::subFlagNames, "subFlags"},
                  {stx::optFlagNames, "optFlags"}};
    for (const auto& table : tables)
        for (const stx::CodeName& row : table.names) {
            int64_t shown = row.code;
            if (table.names.data() == stx::optFlagNames.data())
                shown = std::countr_zero(static_cast<uint64_t>(row.code));
            EXPECT_NE(section(text, table.title).find("| " + std::to_string(shown) + " | "),
                      std::string::npos)
                << table.title << ' ' << shown;
        }
    for (const stx::CodeName& row : stx::checkFlagNames)
        EXPECT_NE(section(text, "checkFlags").find(std::string(" | ") + row.name + " | "),
                  std::string::npos)
            << row.name;
}

TEST_F(SyntaxTreeDoc, ShowsTheExampleAndWhatItPrints) {
    const std::vector<std::string> programs = blocks(text, "cpp");
    ASSERT_EQ(programs.size(), 1U);
    EXPECT_EQ(programs[0], readFile("tools/stx/example/stxfields.cpp"));
    const std::vector<std::string> modules = blocks(text, "asn1");
    ASSERT_EQ(modules.size(), 2U);
    const RunResult run = compile({{"shop.asn", modules[1]}, {"base.asn", modules[0]}});
    ASSERT_EQ(run.status, 0) << run.out;
    const std::string command =
        std::string(ORVO_STXFIELDS) + ' ' + (run.dir->path() / "shop.stx").string() + " Order";
    std::FILE* output = popen(command.c_str(), "r");
    ASSERT_NE(output, nullptr);
    std::string printed;
    for (int ch = std::fgetc(output); ch != EOF; ch = std::fgetc(output))
        printed += static_cast<char>(ch);
    EXPECT_EQ(pclose(output), 0);
    const std::vector<std::string> outputs = blocks(text, "text");
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_EQ(printed, outputs[0]);
}

} // namespace
} // namespace orvo::test
