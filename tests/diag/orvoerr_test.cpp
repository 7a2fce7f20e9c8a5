#include "diag/orvoerr.h"

#include <gtest/gtest.h>

#include "diag/orvoerr_fatal.h"
#include "diag/orvoerr_text.h"

namespace orvo {
namespace {

std::string shown(const ErrRec& record) {
    size_t textStart = 0;
    return printError(record, textStart);
}
std::string shown(const ModuleRec& module) {
    std::string lines;
    for (const ErrRec& error : module.errors) lines += shown(error);
    return lines;
}
ErrRec semantic(int code) {
    ErrRec record;
    record.errClass = ERR_SEMANTIC;
    record.code = static_cast<Msg>(code);
    record.line = 1;
    return record;
}

TEST(RecordError, SortsByLineAndKeepsTheOrderWithinALine) {
    ModuleRec module;
    recordError(&module, ERR_SEMANTIC, Msg::SymbolAlreadyDefined, 5, "a");
    recordError(&module, ERR_SEMANTIC, Msg::IncompatibleTypes, 5);
    recordError(&module, ERR_WARNING, Msg::AnyWithoutDefinedByIsDeprecated, 3);
    recordError(&module, ERR_SYNTAX, Msg::LeadingZeroesIn, 12345, "007");
    EXPECT_EQ(shown(module), "  ** WARNING  line   3 : ANY without DEFINED BY is deprecated\n"
                             "  ** ERROR on line   5 : Symbol already defined: a\n"
                             "  ** ERROR on line   5 : Incompatible types\n"
                             " *** ERROR on line 12345 : Leading zeroes in: 007\n");
    EXPECT_EQ(module.nbSemErrors, 2);
    EXPECT_EQ(module.nbWarnings, 1);
    EXPECT_EQ(module.nbStxErrors, 1);
}

TEST(RecordError, CountsTheFiveHundredAndFirstWithoutKeepingIt) {
    ModuleRec module;
    for (uint32_t line = 501; line >= 1; --line)
        recordError(&module, ERR_SEMANTIC, Msg::IncompatibleTypes, line);
    EXPECT_EQ(module.nbSemErrors, 501);
    ASSERT_EQ(module.errors.size(), 500U);
    EXPECT_EQ(module.errors.front().line, 2);
}

// clang-format off
constexpr struct {
    int code;
    const char* text;
} familyCases[] = {
    {201, "INTEGER value syntax"}, {212, "ANY value syntax"}, {232, "Error code 232"},
    {235, "OPEN value syntax"}, {236, "Object syntax"}, {237, "TYPE-IDENTIFIER object syntax"},
    {238, "ABSTRACT-SYNTAX object syntax"}, {239, "ABSTRACT-SYNTAX value syntax"},
    {300, "Invalid union constraint(s)"}, {304, "Invalid ALL EXPECT constraint(s)"},
    {315, "Invalid exception specification"}, {316, "Invalid TypeConstraint constraint(s)"},
    {318, "Invalid ExceptionValue"}, {320, "Value out of union constraint(s)"},
    {335, "Value out of exception specification constraint(s)"}, {341, "Invalid INTEGER value"},
    {376, "Invalid Open type value"}, {378, "Invalid TYPE-IDENTIFIER value"},
    {379, "Error code 379"}, {414, "CHOICE may not be tagged with IMPLICIT"},
    {415, "ANY may not be tagged with IMPLICIT"},
    {416, "Open type may not be tagged with IMPLICIT"},
    {412, "Tag number shall be INTEGER and in range 0..2097151"}, {25, "More than 19 digits in"},
    {21, "More than 32000 characters in"}, {22, "More than 128 characters in"},
    {11, "$Option(s) ignored"}, {999, "Error code 999"}, {0, "Error code 0"},
    {-5, "Error code -5"},
};
// clang-format on

TEST(PrintError, EveryFamilyHasItsText) {
    for (const auto& [code, text] : familyCases) {
        SCOPED_TRACE(code);
        EXPECT_EQ(shown(semantic(code)), std::string("  ** ERROR on line   1 : ") + text + "\n");
    }
}

TEST(FatalErrorDeathTest, UnknownNumberEndsTheProcessToo) {
    EXPECT_EXIT(fatalError(static_cast<Fatal>(42), "x"), testing::ExitedWithCode(2),
                "\nFATAL ERROR : Unexpected error code\n              x\n\n");
}

} // namespace
} // namespace orvo
