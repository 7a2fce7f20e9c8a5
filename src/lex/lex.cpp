// The text of a module lies in one buffer that ends with a NUL, the only byte that is looked at for
// the end of the input. Runs of characters of one class are scanned with the table of classes; a
// name or number is a view into the buffer unless it must be rewritten.

#include "lex/lex.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdio>
#include <limits>

#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "diag/timing.h"
#include "lex/i64.h"
#include "lex/lex_meta.h"
#include "lex/lex_stri.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"

namespace orvo {

LexState lexState;

namespace {

consteval CharTable makeCharTable() {
    CharTable table = {};
    const auto add = [&table](int from, int to, int classes) {
        for (int c = from; c <= to; ++c)
            table.classes[c] = static_cast<uint8_t>(table.classes[c] | classes);
    };
    add(' ', '~', CHAR_PRINT);
    add('A', 'Z', CHAR_UPPER);
    add('a', 'z', CHAR_LOWER);
    add('0', '9', CHAR_DIGIT);
    add('\t', '\r', CHAR_SPACE); // tab, line feed, vertical tab, form feed, carriage return
    add(' ', ' ', CHAR_SPACE);
    add('\n', '\r', CHAR_LINE_END);
    for (const char c : {'\0', '\n', '$', '-'}) add(c, c, CHAR_COMMENT);
    return table;
}

} // namespace

constinit const CharTable charTable = makeCharTable();

namespace {

// ---- the text -----------------------------------------------------------------------------------

/// The lines of a source have numbers, and each takes a byte at least.
constexpr uint64_t maxSourceLength = std::numeric_limits<int32_t>::max();
/// A pipe or a device may have no end. This is fifty times the largest modules that are published,
/// and little enough to be read before it is refused.
constexpr uint64_t maxStreamLength = uint64_t{256} << 20;

void readSourceFile(std::string& text) {
    text.clear();
    std::FILE* file = cMP->srcFile;
    if (file == nullptr) return;
    const Timed reading(Phase::Read);
    struct stat status = {};
    cMP->isStream = fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode);
    const uint64_t known = cMP->isStream ? 0 : static_cast<uint64_t>(status.st_size);
    const uint64_t most = cMP->isStream ? maxStreamLength : maxSourceLength;
    constexpr size_t fewest = 65536;
    size_t length = 0;
    bool fits = known <= most;
    while (fits && length == text.size()) { // to the end, which is elsewhere when the file grows
        text.resize(length != 0  ? std::max(fewest, length * 2)
                    : known != 0 ? static_cast<size_t>(known) + 1
                                 : fewest);
        length += std::fread(text.data() + length, 1, text.size() - length, file);
        fits = length <= most;
    }
    if (!fits || std::ferror(file) != 0) fatalError(Fatal::Read, cMP->options.sourceFileName);
    text.resize(length);
    if (cMP->isStream) cMP->streamText = text;
}

void startInput() {
    if (!lexState.fromMemory) readSourceFile(lexState.text);
    const std::string_view text = lexState.fromMemory ? lexState.inputStri : lexState.text;
    lexState.begin = lexState.Inp = text.data();
    lexState.end = text.data() + text.size();
    lexState.LineNumb = 1;
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (newNotation() && text.starts_with(byteOrderMark)) lexState.Inp += byteOrderMark.size();
}

void skipSpace() {
    const char* at = lexState.Inp;
    for (; isChar(*at, CHAR_SPACE); ++at)
        if (*at == '\n') ++lexState.LineNumb;
    lexState.Inp = at;
}

// ---- names and numbers --------------------------------------------------------------------------

/// A name with a hyphen or one that is too long, in strBuf; it ends at `end`.
std::string_view rewriteName(const char* from, const char* end) {
    std::string& name = lexState.strBuf;
    const auto length = static_cast<size_t>(end - from);
    if (length > maxIdentifierLength) noteLexError(Msg::NameTooLong);
    name.assign(from, std::min(length, maxIdentifierLength));
    std::ranges::replace(name, '-', '_'); // names are stored as the back ends can use them
    return name;
}

/// Modules that were written for one tool have names with underscores. They are stored as hyphens
/// are.
bool readsUnderscores() {
    return isLenient(cMP);
}

/// A name that goes on with the underscore at `at`.
std::string_view readUnderscoreName(const char* from, const char* at) {
    while (isChar(*at, CHAR_NAME) || *at == '_' || (*at == '-' && isChar(at[1], CHAR_NAME))) ++at;
    lexState.Inp = at;
    const std::string_view name = rewriteName(from, at);
    recordOnce(cMP, Msg::UnderscoreInName, lexState.LineNumb, {from, name.size()});
    return name;
}

/// Reads a name at the current character. A hyphen belongs to it only before a letter or digit, so
/// that `a--` is a name and a comment (X.680 (07/2002) 11.3).
std::string_view readRef() {
    const char* const from = lexState.Inp;
    const char* at = from;
    bool hyphens = false;
    for (;; hyphens = true, ++at) {
        while (isChar(*at, CHAR_NAME)) ++at;
        if (*at != '-' || !isChar(at[1], CHAR_NAME)) break;
    }
    lexState.Inp = at;
    if (*at == '_' && readsUnderscores()) [[unlikely]]
        return readUnderscoreName(from, at);
    const auto length = static_cast<size_t>(at - from);
    if (hyphens || length > maxIdentifierLength) return rewriteName(from, at);
    return {from, length};
}

constexpr size_t longestKeyword = [] {
    size_t longest = 0;
    for (const std::string_view name : gMGTabInp) longest = std::max(longest, name.size());
    return longest;
}();

/// Codes of the table's names from `first` to `last` that begin with a given letter.
struct LetterRange {
    uint8_t from, to; // `to` is behind the last one
};
using LetterIndex = std::array<LetterRange, 26>;
consteval LetterIndex indexLetters(int first, int last) {
    LetterIndex index = {};
    for (int code = last; code >= first; --code) {
        LetterRange& range = index[static_cast<size_t>(gMGTabInp[code][0] - 'A')];
        if (range.to == 0) range.to = static_cast<uint8_t>(code + 1);
        range.from = static_cast<uint8_t>(code);
    }
    return index;
}
constexpr LetterIndex reservedIndex = indexLetters(firstReservedWord, lastReservedWord);
constexpr LetterIndex typeNameIndex = indexLetters(firstTypeName, lastTypeName);
constexpr LetterIndex laterIndex = indexLetters(firstLaterWord, lastLaterWord);

/// Bisects the names of a range that begin with the letter of `name`.
int32_t searchRange(const LetterIndex& index, std::string_view name) {
    const auto [from, to] = index[static_cast<size_t>(name[0] - 'A')];
    const std::string_view* const end = gMGTabInp + to;
    const std::string_view* const found = std::lower_bound(gMGTabInp + from, end, name);
    return found != end && *found == name ? static_cast<int32_t>(found - gMGTabInp) : -1;
}

/// The name from `from` to the current character is a reserved word but for its underscores.
bool onlyLooksReserved(const char* from) {
    return readsUnderscores() &&
           std::string_view(from, lexState.Inp).find('_') != std::string_view::npos;
}

int32_t readName() {
    const char* const from = lexState.Inp;
    const bool isTypeName = isChar(*from, CHAR_UPPER);
    const std::string_view name = readRef();
    if (isTypeName) {
        const int32_t keyword = searchKeywords(name);
        const bool asWritten = name.data() == from;
        if (keyword >= 0 && (asWritten || !onlyLooksReserved(from))) return keyword;
    }
    const int32_t stri = internText(name);
    lexState.Outp->setStri(isTypeName ? stri : -stri);
    return isTypeName ? TOK_TYPEID : TOK_VALUEID;
}

/// The text of a number that is more than a word, as long as a string may be.
int32_t numberText(std::string_view text) {
    if (text.size() > maxStringLength) noteLexError(Msg::TooManyCharacters);
    return internText(text.substr(0, maxStringLength));
}

void installNumber(std::string_view digits) {
    if (digits.size() >= 2 && digits[0] == '0') {
        noteLexError(Msg::LeadingZeroesIn);
        return;
    }
    I64& value = lexState.Outp->value;
    const bool fits = digits.size() <= maxNumberDigits && i64strtosint64(digits, value);
    if (fits && !i64ismax(value)) return;
    value = i64max();
    if (!newNotation())
        noteLexError(Msg::TooManyDigits);
    else if (!fits)
        lexState.Outp->text = numberText(digits);
}

const char* skipDigits(const char* at) {
    while (isChar(*at, CHAR_DIGIT)) ++at;
    return at;
}

/// The digits of the exponent that begins with the letter at `at`; null when none does.
const char* exponentDigits(const char* at) {
    if (*at != 'e' && *at != 'E') return nullptr;
    at += at[1] == '-' || at[1] == '+' ? 2 : 1;
    return isChar(*at, CHAR_DIGIT) ? at : nullptr;
}

/// The end of a real number whose integer part ends at `at`; `at` when it is a number. The point of
/// `1..5`, `1.id` and `1.&Field` belongs to what follows (X.680 (02/2021) 12.9).
const char* endOfReal(const char* at) {
    const bool isName = isChar(at[1], CHAR_LETTER) && exponentDigits(at + 1) == nullptr;
    if (*at == '.' && at[1] != '.' && at[1] != '&' && !isName) at = skipDigits(at + 1);
    const char* const digits = exponentDigits(at);
    if (digits == nullptr) return at;
    if (digits[0] == '0' && isChar(digits[1], CHAR_DIGIT)) noteLexError(Msg::LeadingZeroesIn);
    return skipDigits(digits);
}

int32_t realNumber(const char* from, const char* end) {
    lexState.Inp = end;
    lexState.Outp->text = numberText({from, static_cast<size_t>(end - from)});
    return TOK_REALNUMBER;
}

int32_t readNumber() {
    const char* const from = lexState.Inp;
    const char* const at = skipDigits(from);
    const bool mayBeReal = *at == '.' || *at == 'e' || *at == 'E';
    if (mayBeReal && newNotation())
        if (const char* const end = endOfReal(at); end != at) return realNumber(from, end);
    lexState.Inp = at;
    installNumber({from, static_cast<size_t>(at - from)});
    return TOK_NUMBER;
}

// ---- tokens -------------------------------------------------------------------------------------

/// Steps over `length` characters, which are the token `code`.
int32_t symbol(int32_t code, int length) {
    lexState.Inp += length;
    return code;
}

/// A character that begins no token: the scan goes on behind it, the error stays with the token
/// that follows.
int32_t noToken(int length) {
    noteLexError(Msg::LexicalErrorBefore);
    return symbol(-1, length);
}

int32_t readDots() {
    const char* const at = lexState.Inp;
    if (at[1] != '.') return symbol(TOK_DOT, 1);
    return at[2] != '.' ? symbol(TOK_RANGE, 2) : symbol(TOK_ELLIPSIS, 3);
}

int32_t readColons() {
    const char* const at = lexState.Inp;
    if (at[1] != ':') return symbol(TOK_COLON, 1);
    return at[2] == '=' ? symbol(TOK_ASSIGN, 3) : noToken(2);
}

int32_t readFieldName() {
    if (!isChar(lexState.Inp[1], CHAR_LETTER)) return noToken(1);
    ++lexState.Inp;
    const bool isTypeName = isChar(*lexState.Inp, CHAR_UPPER);
    const int32_t stri = internText(readRef());
    lexState.Outp->setStri(isTypeName ? stri : -stri);
    return isTypeName ? TOK_TYPEFIELDID : TOK_VALUEFIELDID;
}

int32_t readHyphen() {
    if (lexState.Inp[1] != '-') return symbol(TOK_MINUS, 1);
    lexState.Inp += 2;
    skipComment();
    return -1;
}

/// The comment that begins with `/*` at the current character, those inside it included. One that
/// is not closed swallows the rest: the end of the text has its line then, and the error (X.680
/// (02/2021) 12.6.4).
int32_t readBlockComment() {
    const uint32_t line = lexState.LineNumb;
    uint32_t open = 0;
    const char* at = lexState.Inp;
    do {
        if (at[0] == '/' && at[1] == '*') {
            ++open;
            at += 2;
        } else if (at[0] == '*' && at[1] == '/') {
            --open;
            at += 2;
        } else {
            if (*at == '\n') ++lexState.LineNumb;
            if (atEnd(at)) break;
            ++at;
        }
    } while (open != 0);
    lexState.Inp = at;
    if (open == 0) return -1;
    lexState.Outp->lexError =
        static_cast<int32_t>(Msg::InvalidEndCharacterIn); // whatever was noted
    lexState.Outp->line = line;
    return TOK_EOF;
}

/// What only notation of today knows; -1 when there was no token.
int32_t readLaterSymbol() {
    const char* const at = lexState.Inp;
    if (at[0] == '/' && at[1] == '*') return readBlockComment();
    if (at[0] == noBreakSpace[0] && at[1] == noBreakSpace[1])
        return symbol(-1, static_cast<int>(noBreakSpace.size()));
    return noToken(1);
}

/// A token that begins with a character that is no letter, digit or white space; -1 when there was
/// none after all.
int32_t readSymbol() {
    const char* const at = lexState.Inp;
    switch (*at) {
    case '!': return symbol(TOK_EXCLAMATION, 1);
    case '(': return symbol(TOK_LPAREN, 1);
    case ')': return symbol(TOK_RPAREN, 1);
    case '*': return symbol(TOK_ASTERISK, 1);
    case ',': return symbol(TOK_COMMA, 1);
    case ';': return symbol(TOK_SEMICOLON, 1);
    case '<': return symbol(TOK_LESS, 1);
    case '@': return symbol(TOK_AT, 1);
    case '^': return symbol(TOK_CARET, 1);
    case '{': return symbol(TOK_LBRACE, 1);
    case '|': return symbol(TOK_BAR, 1);
    case '}': return symbol(TOK_RBRACE, 1);
    case '[': return at[1] == '[' ? symbol(TOK_LVERSION, 2) : symbol(TOK_LBRACKET, 1);
    case ']': return at[1] == ']' ? symbol(TOK_RVERSION, 2) : symbol(TOK_RBRACKET, 1);
    case '.': return readDots();
    case ':': return readColons();
    case '"': return readCString();
    case '\'': return readBinaryString();
    case '&': return readFieldName();
    case '-': return readHyphen();
    default: return newNotation() ? readLaterSymbol() : noToken(1);
    }
}

/// Scans the next token into Outp.
int32_t input() {
    for (;;) {
        if (isChar(*lexState.Inp, CHAR_SPACE)) skipSpace();
        lexState.Outp->line = lexState.LineNumb;
        lexState.Outp->offset = static_cast<uint32_t>(lexState.Inp - lexState.begin);
        const char c = *lexState.Inp;
        if (isChar(c, CHAR_LETTER)) return readName();
        if (isChar(c, CHAR_DIGIT)) return readNumber();
        if (atEnd(lexState.Inp)) return TOK_EOF;
        const int32_t code = readSymbol();
        if (code >= 0) return code;
    }
}

} // namespace

void setInput(std::string_view text) {
    lexState.fromMemory = text.data() != nullptr;
    lexState.inputStri = text;
}

int32_t NextToken(TokenList& list) {
    if (!list.first) startInput();
    assert(lexState.Inp != nullptr);
    const TokNr nr = newToken();
    Token& token = tokenAt(nr);
    lexState.Outp = &token;
    token.code = input();
    if (list.first)
        tokenAt(list.last).next = nr.nr;
    else
        list.first = nr;
    list.last = nr;
    ++list.count;
    return token.code;
}

void resumeBehind(const Token& token) {
    lexState.Inp = lexState.begin + token.offset + tokenName(token.code).size();
    lexState.LineNumb = token.line;
}

void endInput() {
    lexState.text = {};
    lexState.begin = lexState.Inp = nullptr;
    lexState.end = nullptr;
}

int32_t searchKeywords(std::string_view name) {
    if (name.empty() || name.size() > longestKeyword || !isChar(name[0], CHAR_UPPER)) return -1;
    int32_t code = searchRange(reservedIndex, name);
    if (code >= 0 || lexState.fromMemory) return code; // the built-in module defines the others
    code = searchRange(typeNameIndex, name);
    return code >= 0 || !newNotation() ? code : searchRange(laterIndex, name);
}

void noteLexError(Msg error) {
    const bool replaces = error == Msg::LexicalErrorBefore || error == Msg::LeadingZeroesIn ||
                          error == Msg::TooManyDigits;
    int32_t& noted = lexState.Outp->lexError;
    if (noted == 0 || replaces) noted = static_cast<int32_t>(error);
}

int32_t internText(std::string_view text) {
    if (cMP->parseState == PARSE_ERROR) return 0;
    return static_cast<int32_t>(putStri(cMP, text).nr);
}

} // namespace orvo
