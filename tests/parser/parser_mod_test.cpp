#include "driver/orvofil.h"
#include "parser/parser.h"
#include "support/pass1.h"
#include "symtab/orvosym.h"

namespace orvo {
namespace {

class Modules : public Pass1Test {
  protected:
    /// Names of a symbol list, each with its flags.
    std::string symbols(const SymTab& table) const {
        std::string text;
        for (STabNr nr = table.first; nr; nr = STabNr{symAt(nr).next}) {
            const STabRec& symbol = symAt(nr);
            text += (text.empty() ? "" : " ") + std::string(getStri(module, symbol.name)) + "/" +
                    std::to_string(symbol.flags);
        }
        return text;
    }
    /// The modules named, each with the state and the symbols of its reference and, if it has one,
    /// its assigned identifier.
    std::string references() const {
        std::string text;
        for (const ModRef* ref = module->modRefs.modRefFirst; ref != nullptr; ref = ref->next) {
            text += ref->name + ":" + std::to_string(ref->state) + " " + symbols(ref->symbols);
            if (ref->value) text += " = " + describe(ref->value);
            text += "\n";
        }
        return text;
    }
};

TEST_F(Modules, HeaderSetsTheDefaults) {
    constexpr struct {
        const char* header;
        int tagDefault;
        bool automatic, extensible;
    } cases[] = {{"", 1, false, false},
                 {"EXPLICIT TAGS", 1, false, false},
                 {"IMPLICIT TAGS", 2, false, false},
                 {"AUTOMATIC TAGS", 2, true, false},
                 {"EXTENSIBILITY IMPLIED", 1, false, true},
                 {"AUTOMATIC TAGS EXTENSIBILITY IMPLIED", 2, true, true}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.header);
        parseBody("", row.header);
        EXPECT_EQ(errors(), "");
        EXPECT_EQ(module->parseState, PARSE_OK);
        EXPECT_EQ(module->tagDefault, row.tagDefault);
        EXPECT_EQ(module->automaticTags, row.automatic);
        EXPECT_EQ(module->extensibilityImplied, row.extensible);
    }
}

TEST_F(Modules, ExplicitTaggingIsWarnedOfWhenTheOptionAsksForIt) {
    parseSource("--$EXPLICIT=1\nM\nDEFINITIONS\n::= BEGIN END");
    EXPECT_EQ(errors(), "3: $Explicit tagging not allowed\n");
    EXPECT_EQ(module->nbWarnings, 1);
    parseSource("--$EXPLICIT=1\nM\nDEFINITIONS AUTOMATIC TAGS ::= BEGIN END");
    EXPECT_EQ(errors(), "");
}

TEST_F(Modules, ExportsClauseEntersItsSymbols) {
    parseBody("A ::= NULL");
    EXPECT_EQ(module->exportsState, 0);
    EXPECT_EQ(module->options.exportedTypes, 1U);
    parseBody("EXPORTS ; A ::= NULL");
    EXPECT_EQ(module->exportsState, 1);
    EXPECT_EQ(module->options.exportedTypes, 0U);
    parseBody("EXPORTS A, b, C{}; A ::= NULL B ::= NULL C {X} ::= X b A ::= NULL");
    EXPECT_EQ(errors(), "");
    EXPECT_EQ(module->exportsState, 2);
    EXPECT_EQ(module->options.exportedTypes, 2U);
    EXPECT_EQ(symbols(module->symTab), "A/1 b/1 C/9 B/0");
    EXPECT_NE(typeAt(head("A")).nodeFlags & NF_ASSIGNMENT, 0U);
    EXPECT_EQ(typeAt(head("B")).nodeFlags & NF_ASSIGNMENT, 0U);
    EXPECT_NE(valueAt(valueHead("b")).vflags & VF_ASSIGNMENT, 0);
}

TEST_F(Modules, ImportsClauseTellsAssignedIdentifiersFromSymbols) {
    constexpr struct {
        const char* clause;
        const char* references;
    } cases[] = {{"A FROM N1x b, C FROM N2x", "N1x:2 A/2\nN2x:2 b/2 C/2\n"},
                 {"A FROM N1x b C FROM N2x", "N1x:2 A/2 = b\nN2x:2 C/2\n"},
                 {"A FROM N1x b FROM N2x", "N1x:2 A/2\nN2x:2 b/2\n"},
                 {"A FROM N1x b{} FROM N2x c", "N1x:2 A/2\nN2x:2 b/10 = c\n"},
                 {"A FROM N1x N2x.c B FROM N3x", "N1x:2 A/2 = M3.c\nN2x:1 c/0\nN3x:2 B/2\n"},
                 {"A FROM N1x { iso 5 } B FROM N2x", "N1x:2 A/2 = TYP_OBJID\nN2x:2 B/2\n"},
                 {"A, B{}, c FROM N1x", "N1x:2 A/2 B/10 c/2\n"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.clause);
        parseBody(std::string("IMPORTS ") + row.clause + ";");
        EXPECT_EQ(errors(), "");
        EXPECT_EQ(references(), row.references);
        EXPECT_EQ(module->importsState, 2);
    }
}

TEST_F(Modules, MistakesAreReportedWhereTheyStand) {
    constexpr struct {
        const char* source;
        const char* errors;
    } cases[] = {
        {"m DEFINITIONS", "1: typeid is expected after:\n"},
        {"", "1: typeid is expected after:\n"},
        {"M", "1: DEFINITIONS is expected after:\n"},
        {"M DEFINITIONS BEGIN END", "1: BEGIN is not allowed after:\n"},
        {"M DEFINITIONS IMPLICIT ::= BEGIN END", "1: TAGS is expected after:\n"},
        {"M FOO DEFINITIONS ::= BEGIN END", "1: typeid is not allowed after:\n"},
        {"M DEFINITIONS ::= END", "1: BEGIN is expected after:\n"},
        {"M DEFINITIONS ::= BEGIN", "1: End-Of-File is not allowed after:\n"},
        {"M DEFINITIONS ::= BEGIN ; END", "1: ; is not allowed after:\n"},
        {"M DEFINITIONS ::= BEGIN EXPORTS ALL; END", "1: ALL is not allowed after:\n"},
        {"M DEFINITIONS ::= BEGIN EXPORTS A B; END",
         "1: typeid is not allowed after:\n1: ; is not allowed after:\n"},
        {"M DEFINITIONS ::= BEGIN IMPORTS A FROM; END", "1: typeid is expected after:\n"},
        {"M DEFINITIONS ::= BEGIN IMPORTS A FROM N, B; END", "1: , is not allowed after:\n"},
        {"M DEFINITIONS ::= BEGIN END N DEFINITIONS ::= BEGIN END",
         "1: typeid is not allowed after:\n"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.source);
        parseSource(row.source);
        EXPECT_EQ(errors(), row.errors);
    }
}

TEST_F(Modules, NothingIsMadeBehindTheFirstSyntaxError) {
    parseBody("A ::= NULL B ::= [5 NULL C ::= SEQUENCE { a INTEGER (0..5) DEFAULT 3 } d C ::= {}");
    EXPECT_EQ(errors(), "2: ] is expected after:\n");
    EXPECT_EQ(module->parseState, PARSE_ERROR);
    EXPECT_EQ(symbols(module->symTab), "A/0 B/0");
    EXPECT_EQ(module->nextRecNr[KIND_TNODE], 3U);
    EXPECT_EQ(module->nextRecNr[KIND_VNODE], 1U);
    EXPECT_EQ(module->nextRecNr[KIND_DNODE], 1U);
}

} // namespace
} // namespace orvo
