// Only as much of the notation is read as tells comments and strings from the rest, and finds
// headers, IMPORTS clauses and external references. A module runs to the END that closes its BEGIN:
// END is no name, and only macros of older modules hold a BEGIN ... END of their own. In
// information objects BEGIN may be a word of a defined syntax, so it counts behind "::=" alone.
// Macros and ENCODING-CONTROL sections refer to no module.
//
// Signs of newer notation are those that no module of 1994 can hold, so that nobody is advised to
// take an option that the module does not need.

#include "kavrimol/scan.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "util/ascii.h"

namespace kavrimol {
namespace {

using orvo::isDigit;
using orvo::isLetter;
using orvo::isUpper;

enum class Sort {
    End,
    UpperName,
    LowerName,
    String, // "..." or '...'
    Assign,
    Dot,
    Semicolon,
    LeftBrace,
    RightBrace,
    Other
};

struct Lexeme {
    Sort sort = Sort::Other;
    std::string_view text;
    uint32_t line = 0;
    [[nodiscard]] bool is(std::string_view word) const {
        return sort == Sort::UpperName && text == word;
    }
    [[nodiscard]] bool isName() const { return sort == Sort::UpperName || sort == Sort::LowerName; }
};

struct Scanner {
    std::string_view text;
    size_t at = 0;
    uint32_t line = 1;
    Sign sign{}; // a comment that only newer notation has
    [[nodiscard]] bool atEnd() const { return at >= text.size(); }
    [[nodiscard]] char peek(size_t ahead = 0) const {
        return at + ahead < text.size() ? text[at + ahead] : '\0';
    }
    [[nodiscard]] bool sees(std::string_view what) const {
        return text.substr(at).starts_with(what);
    }
    void advance(size_t count = 1) {
        for (; count != 0 && !atEnd(); --count)
            if (text[at++] == '\n') ++line;
    }
};

/// Keeps the first sign.
void noteSign(Sign& sign, std::string_view what, uint32_t line) {
    if (sign.what.empty()) sign = {std::string(what), line};
}

/// Ends at the second "--" or at the end of the line, of which a page break is one.
void skipComment(Scanner& scanner) {
    constexpr std::string_view lineEnds = "\n\v\f";
    scanner.advance(2);
    while (!scanner.atEnd() && lineEnds.find(scanner.peek()) == std::string_view::npos) {
        if (scanner.sees("--")) return scanner.advance(2);
        scanner.advance();
    }
}

/// Block comments nest.
void skipBlockComment(Scanner& scanner) {
    noteSign(scanner.sign, "a /* */ comment", scanner.line);
    size_t open = 0;
    do {
        const bool opens = scanner.sees("/*");
        const bool closes = scanner.sees("*/");
        if (opens) ++open;
        if (closes) --open;
        scanner.advance(opens || closes ? 2 : 1);
    } while (open != 0 && !scanner.atEnd());
}

/// A doubled quote inside a string makes two strings of it here, which is the same to us.
void skipString(Scanner& scanner) {
    const char quote = scanner.peek();
    do scanner.advance();
    while (!scanner.atEnd() && scanner.peek() != quote);
    scanner.advance();
}

void skipName(Scanner& scanner) {
    const auto isNameChar = [](char c) { return isLetter(c) || isDigit(c) || c == '_'; };
    while (isNameChar(scanner.peek()) || (scanner.peek() == '-' && isNameChar(scanner.peek(1))))
        scanner.advance();
}

void skipBlanks(Scanner& scanner) {
    constexpr std::string_view blanks = " \t\r\n\v\f", noBreakSpace = "\xc2\xa0";
    while (!scanner.atEnd()) {
        if (blanks.find(scanner.peek()) != std::string_view::npos)
            scanner.advance();
        else if (scanner.sees(noBreakSpace))
            scanner.advance(noBreakSpace.size());
        else if (scanner.sees("--"))
            skipComment(scanner);
        else if (scanner.sees("/*"))
            skipBlockComment(scanner);
        else
            return;
    }
}

/// Passes over the symbol under the scanner and tells its sort.
Sort skipSymbol(Scanner& scanner) {
    if (scanner.sees("::=")) {
        scanner.advance(3);
        return Sort::Assign;
    }
    const char c = scanner.peek();
    if (c == '"' || c == '\'') {
        skipString(scanner);
        return Sort::String;
    }
    if (c == '.') { // a range or an extension marker unless it stands alone
        size_t dots = 0;
        while (scanner.peek(dots) == '.') ++dots;
        scanner.advance(dots);
        return dots == 1 ? Sort::Dot : Sort::Other;
    }
    scanner.advance();
    switch (c) {
    case '&': skipName(scanner); return Sort::Other; // a field of a class
    case ';': return Sort::Semicolon;
    case '{': return Sort::LeftBrace;
    case '}': return Sort::RightBrace;
    default: return Sort::Other;
    }
}

Lexeme next(Scanner& scanner) {
    skipBlanks(scanner);
    Lexeme lexeme;
    lexeme.line = scanner.line;
    const size_t begin = scanner.at;
    if (scanner.atEnd()) {
        lexeme.sort = Sort::End;
    } else if (isLetter(scanner.peek())) {
        lexeme.sort = isUpper(scanner.peek()) ? Sort::UpperName : Sort::LowerName;
        skipName(scanner);
    } else {
        lexeme.sort = skipSymbol(scanner);
    }
    lexeme.text = scanner.text.substr(begin, scanner.at - begin);
    return lexeme;
}

/// The object identifier of a header; "::=" would stand behind it.
void skipObjectIdentifier(Scanner& scanner, Lexeme& lexeme) {
    while (lexeme.sort != Sort::RightBrace && lexeme.sort != Sort::Assign &&
           lexeme.sort != Sort::End)
        lexeme = next(scanner);
    if (lexeme.sort == Sort::RightBrace) lexeme = next(scanner);
}

/// Goes on to the next "Name [{...} ["..."]] DEFINITIONS"; false when there is none.
[[nodiscard]] bool findHeader(Scanner& scanner, ModuleText& module) {
    Lexeme lexeme = next(scanner);
    while (lexeme.sort != Sort::End) {
        const Lexeme name = lexeme;
        lexeme = next(scanner);
        if (name.sort != Sort::UpperName || name.is("DEFINITIONS")) continue;
        if (lexeme.sort == Sort::LeftBrace) skipObjectIdentifier(scanner, lexeme);
        const Lexeme iri = lexeme;
        if (iri.sort == Sort::String) lexeme = next(scanner);
        if (!lexeme.is("DEFINITIONS")) continue;
        if (iri.sort == Sort::String) noteSign(scanner.sign, iri.text, iri.line);
        module.name = name.text.substr(0, maxNameLength);
        module.line = name.line;
        return true;
    }
    return false;
}

enum class Clause { Header, Begin, Exports, Imports, Assignments, Encoding };

/// Types of newer notation whose names hardly are anything else. A module that defines or imports
/// one of them means that.
constexpr std::array<std::string_view, 6> laterTypes = {
    "UTF8String", "RELATIVE-OID", "OID-IRI", "RELATIVE-OID-IRI", "DATE-TIME", "TIME-OF-DAY"};

/// A module whose header has been found.
struct Body {
    ModuleText& module;
    std::unordered_set<std::string> named{};
    Clause clause = Clause::Header;
    size_t open = 0;                                     // BEGINs that wait for their END
    Lexeme before{}, beforeThat{};                       // the last two lexemes
    std::array<uint32_t, laterTypes.size()> laterLine{}; // of the first use; 0 = none
    std::array<bool, laterTypes.size()> isOwn{};
};

/// The words that stand together in newer notation alone.
constexpr struct {
    std::string_view first, second, sign;
} laterWords[] = {
    {"EXPORTS", "ALL", "EXPORTS ALL"},
    {"WITH", "SUCCESSORS", "WITH SUCCESSORS"},
    {"WITH", "DESCENDANTS", "WITH DESCENDANTS"},
};

/// Not the `<` of a selection type.
bool isTypeBegin(const Lexeme& lexeme) {
    return lexeme.sort == Sort::UpperName || lexeme.text == "[";
}

void noteLaterType(Body& body, const Lexeme& lexeme) {
    const Lexeme& name = lexeme.sort == Sort::Assign ? body.before : lexeme;
    const auto* const type = std::ranges::find(laterTypes, name.text);
    if (type == laterTypes.end()) return;
    const auto at = static_cast<size_t>(type - laterTypes.begin());
    if (lexeme.sort == Sort::Assign || body.clause == Clause::Imports)
        body.isOwn[at] = true;
    else if (body.clause == Clause::Assignments && body.laterLine[at] == 0)
        body.laterLine[at] = lexeme.line;
}

/// Looks for newer notation that ends with the lexeme.
void noteSigns(Body& body, const Lexeme& lexeme) {
    Sign& sign = body.module.newer;
    noteLaterType(body, lexeme);
    if (!sign.what.empty()) return;
    for (const auto& words : laterWords)
        if (body.before.text == words.first && lexeme.text == words.second)
            noteSign(sign, words.sign, lexeme.line);
    if (body.clause == Clause::Header && lexeme.is("INSTRUCTIONS"))
        noteSign(sign, lexeme.text, lexeme.line);
    const bool argument = lexeme.sort == Sort::String || lexeme.sort == Sort::LowerName;
    const bool constraint = body.before.is("PATTERN") || body.before.is("SETTINGS");
    if (body.beforeThat.text == "(" && constraint && argument)
        noteSign(sign, body.before.text, body.before.line);
    if (body.clause == Clause::Encoding) noteSign(sign, "ENCODING-CONTROL", body.before.line);
    if (body.beforeThat.is("OF") && body.before.sort == Sort::LowerName && isTypeBegin(lexeme))
        noteSign(sign, "OF " + std::string(body.before.text), body.before.line);
}

/// The first sign of all: of the text in front of and in the module, and of its types.
void settleSign(Body& body, Sign& inComments) {
    Sign& sign = body.module.newer;
    const auto take = [&sign](std::string_view what, uint32_t line) {
        if (line != 0 && (sign.what.empty() || line < sign.line)) sign = {std::string(what), line};
    };
    for (size_t at = 0; at < laterTypes.size(); ++at)
        if (!body.isOwn[at]) take(laterTypes[at], body.laterLine[at]);
    take(inComments.what, inComments.line);
    inComments = {};
}

void addReference(Body& body, const Lexeme& name) {
    std::string module(name.text.substr(0, maxNameLength));
    if (module == body.module.name || !body.named.insert(module).second) return;
    body.module.references.push_back({std::move(module), name.line});
}

void followClause(Body& body, const Lexeme& lexeme) {
    switch (body.clause) {
    case Clause::Begin:
        body.clause = lexeme.is("EXPORTS")   ? Clause::Exports
                      : lexeme.is("IMPORTS") ? Clause::Imports
                                             : Clause::Assignments;
        break;
    case Clause::Exports:
        if (lexeme.sort == Sort::Semicolon) body.clause = Clause::Begin;
        break;
    case Clause::Imports:
        if (lexeme.sort == Sort::Semicolon) body.clause = Clause::Assignments;
        if (lexeme.sort == Sort::UpperName && body.before.is("FROM")) addReference(body, lexeme);
        break;
    case Clause::Assignments: // a class may have that name
        if (body.before.is("ENCODING-CONTROL") && lexeme.sort == Sort::UpperName)
            body.clause = Clause::Encoding;
        break;
    case Clause::Header:
    case Clause::Encoding: break;
    }
}

/// False at the END of the module.
[[nodiscard]] bool followBody(Body& body, const Lexeme& lexeme) {
    if (lexeme.is("END")) {
        if (body.open <= 1) return false;
        --body.open;
    } else if (lexeme.is("BEGIN") && body.before.sort == Sort::Assign &&
               body.clause != Clause::Encoding) {
        if (++body.open == 1)
            body.clause = Clause::Begin;
        else // older than 1994, and read over with newer notation
            noteSign(body.module.newer, "MACRO", lexeme.line);
    } else {
        followClause(body, lexeme);
    }
    const bool refers = body.clause != Clause::Encoding && body.open <= 1;
    if (refers && lexeme.isName() && body.before.sort == Sort::Dot &&
        body.beforeThat.sort == Sort::UpperName)
        addReference(body, body.beforeThat);
    noteSigns(body, lexeme);
    body.beforeThat = body.before;
    body.before = lexeme;
    return true;
}

} // namespace

std::vector<ModuleText> scanModules(std::string_view text) {
    std::vector<ModuleText> modules;
    Scanner scanner{text};
    for (ModuleText module; findHeader(scanner, module); module = {}) {
        Body body{module};
        for (Lexeme lexeme = next(scanner); lexeme.sort != Sort::End; lexeme = next(scanner))
            if (!followBody(body, lexeme)) break;
        settleSign(body, scanner.sign);
        module.end = scanner.at;
        modules.push_back(std::move(module));
    }
    return modules;
}

} // namespace kavrimol
