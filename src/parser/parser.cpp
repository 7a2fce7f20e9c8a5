// The first record of inputList is the current token, and parserState.Inp its copy: rules change
// the copy, which is put back before the record leaves the front. The list never runs empty while a
// module is parsed, so that a list that is empty means a new source to the lexer.

#include "parser/parser.h"

#include <array>
#include <string_view>
#include <vector>

#include "diag/orvoerr.h"
#include "diag/orvoerr_hello.h"
#include "options/orvoopt.h"
#include "parser/parser_defer.h"
#include "parser/parser_mod.h"
#include "parser/parser_typ.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "util/text.h"

namespace orvo {

ParserState parserState;

namespace {

TokenList& inputList() {
    return parserState.inputList;
}
Token& inp() {
    return parserState.Inp;
}

/// The token behind a buffered one, lexed if needed.
TokNr following(TokNr at) {
    if (tokenAt(at).next == 0) NextToken(inputList());
    return TokNr{tokenAt(at).next};
}

/// The text ends in a comment that is not closed.
bool endsInComment(const Token& token) {
    return token.code == TOK_EOF && lexicalError(token.lexError) == Msg::InvalidEndCharacterIn;
}

/// A comment that is not closed hides the rest of the module: nothing is said of that.
void openComment(Token& token) {
    recordError(cMP, ERR_SYNTAX, lexicalError(token.lexError), token.line, "/*");
    token.lexError = 0;
    cMP->parseState = PARSE_ERROR;
    ++parserState.NbErrors;
    inp() = token;
    StopParsing();
}

/// Makes the first token current. Its lexical error is recorded once, however often the token gets
/// to the front.
void loadInp() {
    Token& token = tokenAt(inputList().first);
    if (endsInComment(token)) return openComment(token);
    if (token.lexError != 0 && !parserState.passingOver) {
        const Msg code = lexicalError(token.lexError);
        recordError(cMP, code == Msg::NameTooLong ? ERR_WARNING : ERR_SYNTAX, code, token.line,
                    tokenName(token.code));
        token.lexError = 0;
    }
    inp() = token;
    if (token.code < 0 || token.code >= tokenCount) inp().code = TOK_OUT_OF_TABLE;
}

/// Puts what the rules made of the current token back into its record.
void saveInp() {
    Token& token = tokenAt(inputList().first);
    const uint32_t next = token.next;
    token = inp();
    token.next = next;
}

/// Takes the first record off the list.
TokNr takeFirst() {
    TokenList& list = inputList();
    const TokNr nr = list.first;
    list.first = TokNr{tokenAt(nr).next};
    --list.count;
    return nr;
}

void sayStopping(std::string_view reason) {
    if (run.verbose != VERBOSE_NONE) printProgress(concat("stopping parsing - ", reason));
}

/// The options before the first token belong to the module, in front of those of the command line.
void readModuleOptions(int argc, char** argv) {
    Token& first = tokenAt(inputList().first);
    parseCmdLineOptions(argc, argv, first.optFlags, first.options);
    cMP->options.range = first.options;
    first.optFlags = 0;
    first.options = {};
}

void parseModule() {
    while (inputList().count < lookAheadTokens) NextToken(inputList());
    insertToken(TOK_MARKER, 0);
    ReadIn();
    MGR3ModuleDefinition();
    if (parserState.MGStop || inp().code == TOK_EOF) return;
    MGError(notAllowed); // a file holds one module
    while (inp().code != TOK_EOF) ReadIn();
}

} // namespace

void parse(int argc, char** argv) {
    parserState = {};
    if (progressShown())
        printProgress(concat("parsing (pass 1) for ", cMP->options.sourceFileName));
    NextToken(inputList());
    readModuleOptions(argc, argv);
    inp() = tokenAt(inputList().first);
    if (endsInComment(inp())) {
        openComment(tokenAt(inputList().first));
    } else if (inp().code == TOK_TYPEID) {
        parseModule();
    } else {
        MGError(TOK_TYPEID);
        sayStopping("can not find module reference");
    }
    while (inputList().first) freeToken(takeFirst());
    endInput();
}

// ---- tokens -------------------------------------------------------------------------------------

void ReadIn() {
    ParserState& state = parserState;
    if (state.MGStop) return;
    state.Parsing = true;
    ++state.consumed;
    saveInp();
    const TokNr nr = takeFirst();
    state.ctxtArr[state.ctxtInd] = static_cast<uint16_t>(inp().code);
    state.ctxtInd = static_cast<uint16_t>((state.ctxtInd + 1) % std::size(state.ctxtArr));
    state.prevL = inp().line;
    if (buildsTree() && inp().optFlags != 0)
        recordError(cMP, ERR_WARNING, Msg::OptionsIgnored, inp().line);
    if (buildsTree() && isDeferring())
        deferToken(nr);
    else
        freeToken(nr);
    if (inputList().count < lookAheadTokens) NextToken(inputList());
    loadInp();
}

const Token& lookAhead(uint32_t n) {
    if (n == 0 || parserState.MGStop) return inp();
    TokNr at = inputList().first;
    for (; n != 0; --n) at = following(at);
    return tokenAt(at);
}

std::string_view nameOf(const Token& token) {
    const bool isName = token.code == TOK_TYPEID || token.code == TOK_VALUEID;
    return isName && token.stri() != 0 ? getStri(cMP, token.stri()) : std::string_view();
}

void insertToken(int32_t code, int32_t value) {
    if (parserState.MGStop) return;
    saveInp();
    const TokNr nr = newToken();
    Token& token = tokenAt(nr);
    token.code = code;
    token.setStri(value);
    token.line = inp().line;
    token.next = inputList().first.nr;
    inputList().first = nr;
    ++inputList().count;
    inp() = token;
}

void convertToken() {
    Token& token = inp();
    if (token.code == TOK_VALUEID) {
        if (lookAhead(1).code == TOK_LESS && lookAhead(2).code != TOK_RANGE)
            token.code = TOK_COMPONENTID;
        return;
    }
    if (token.code != TOK_TYPEID || lookAhead(1).code != TOK_DOT) return;
    const Token& name = lookAhead(2);
    if (name.code != TOK_TYPEID && name.code != TOK_VALUEID) return;
    token.code = TOK_MODULEID;
    if (!buildsTree()) return;
    int32_t moduleRef = token.stri();
    handleExtRef(moduleRef, name.stri(), token.line);
    token.setStri(moduleRef);
}

void relexBehind() {
    if (parserState.MGStop) return;
    TokenList& list = inputList();
    uint32_t firstOption = UINT32_MAX; // comments are read again, with their options
    for (TokNr at{tokenAt(list.first).next}; at;) {
        const Token& token = tokenAt(at);
        if (token.options.first > 0)
            firstOption = std::min(firstOption, static_cast<uint32_t>(token.options.first));
        const TokNr next{token.next};
        freeToken(at);
        at = next;
    }
    if (firstOption != UINT32_MAX) {
        flushRecs(KIND_TED);
        cMP->nextRecNr[KIND_TED] = firstOption;
    }
    tokenAt(list.first).next = 0;
    list.last = list.first;
    list.count = 1;
    resumeBehind(inp());
    while (list.count < lookAheadTokens) NextToken(list);
}

void splitVersionBrackets() {
    Token& token = inp();
    if (token.code != TOK_LVERSION && token.code != TOK_RVERSION) return;
    const Token whole = token;
    token.code = whole.code == TOK_LVERSION ? TOK_LBRACKET : TOK_RBRACKET;
    token.optFlags = 0;
    token.options = {};
    insertToken(token.code, 0);
    token.optFlags = whole.optFlags; // what stands before the pair stands before its first half
    token.options = whole.options;
}

bool MGIsInSet(const TokenSet& set) {
    return set.has(inp().code);
}

// ---- errors and recovery ------------------------------------------------------------------------

void MGError(int32_t expected) {
    ParserState& state = parserState;
    if (state.MGStop || !state.Parsing) return;
    if (++state.NbErrors >= maxSyntaxErrors) {
        sayStopping("too many syntax errors");
        StopParsing();
        return;
    }
    cMP->parseState = PARSE_ERROR;
    std::array<std::string_view, 7> pieces;
    pieces[0] = tokenName(expected >= 0 ? expected : inp().code);
    pieces[1] = expected >= 0            ? "is expected after:"
                : expected == notAllowed ? "is not allowed after:"
                                         : "can only be used once after:";
    for (size_t back = 0; back < std::size(state.ctxtArr); ++back)
        pieces[2 + back] =
            tokenName(state.ctxtArr[(state.ctxtInd + back) % std::size(state.ctxtArr)]);
    recordSyntaxError(cMP, inp().line, pieces);
    state.Parsing = false;
}

constexpr TokenSet alwaysStop = {TOK_SEQUENCE, TOK_SET, TOK_EOF};

void MGSkip(const TokenSet& followSet) {
    MGError(notAllowed);
    while (!MGIsInSet(followSet) && !MGIsInSet(alwaysStop)) ReadIn();
}

bool expectToken(int32_t code) {
    if (inp().code != code) {
        MGError(code);
        return false;
    }
    ReadIn();
    return true;
}

void StopParsing() {
    const uint32_t line = inp().line;
    inp() = {};
    inp().line = line;
    parserState.MGStop = true;
}

bool NestingLevel::tooDeep() const {
    if (!depth_.tooDeep()) return false;
    if (parserState.MGStop) return true;
    MGError(notAllowed);
    if (parserState.MGStop) return true; // it was one error too many
    sayStopping("nesting too deep");
    StopParsing();
    return true;
}

// ---- decisions by look-ahead --------------------------------------------------------------------

namespace {

// A brace that was looked for keeps in its value where its partner is: the low word is the number
// of the closing one; a high word of -1 says that there is none. So nested lists are scanned once.

constexpr I64 noPartner = {-1, 0};

/// Settles the partners of `open` and of all braces inside.
void matchBraces(TokNr open) {
    std::vector<TokNr> pending;
    for (TokNr at = open;; at = following(at)) {
        Token& token = tokenAt(at);
        const bool isOpen = token.code == TOK_LBRACE;
        if (token.code == TOK_EOF || (isOpen && token.value == noPartner)) {
            for (const TokNr nr : pending) tokenAt(nr).value = noPartner;
            return;
        }
        if (isOpen && token.value.low != 0) {
            at = TokNr{token.value.low};
        } else if (isOpen) {
            pending.push_back(at);
        } else if (token.code == TOK_RBRACE) {
            tokenAt(pending.back()).value = {0, at.nr};
            pending.pop_back();
            if (pending.empty()) return;
        }
    }
}

/// The token behind the actual parameters that begin at `at`, if they do; none when they do not
/// end.
TokNr skipActuals(TokNr at) {
    Token& token = tokenAt(at);
    if (token.code != TOK_LBRACE) return at;
    if (token.value == I64{}) matchBraces(at);
    return token.value == noPartner ? TokNr{} : following(TokNr{token.value.low});
}

/// {`.` valuefieldid} `.` typefieldid: a type that an object holds.
bool typeFieldFollows(TokNr at) {
    while (tokenAt(at).code == TOK_DOT) {
        at = following(at);
        if (tokenAt(at).code == TOK_TYPEFIELDID) return true;
        if (tokenAt(at).code != TOK_VALUEFIELDID) return false;
        at = following(at);
    }
    return false;
}

constexpr TokenSet typeWords = {TOK_ANY,      TOK_BIT,      TOK_BOOLEAN,    TOK_CHARACTER,
                                TOK_CHOICE,   TOK_EMBEDDED, TOK_ENUMERATED, TOK_INSTANCE,
                                TOK_INTEGER,  TOK_OBJECT,   TOK_OCTET,      TOK_REAL,
                                TOK_SEQUENCE, TOK_SET,      TOK_UNIVERSAL,  TOK_LBRACKET};

bool isReferenceToType(bool inBraces) {
    const bool qualified = inp().code == TOK_MODULEID;
    TokNr reference = inputList().first;
    if (qualified) reference = following(following(reference));
    const bool isTypeName = (qualified ? tokenAt(reference) : inp()).code == TOK_TYPEID;
    if (isTypeName && (!inBraces || qualified)) return true;
    const TokNr behind = skipActuals(following(reference));
    if (!behind) return false;
    const int32_t code = tokenAt(behind).code;
    if (isTypeName) return code == TOK_DOT || code == TOK_LPAREN || code == TOK_COLON;
    return typeFieldFollows(behind);
}

} // namespace

bool typeFollows(bool inBraces) {
    const int32_t code = inp().code;
    if (MGIsInSet(typeWords) || isTypeName(code)) return true;
    if (code == TOK_NULL) {
        const int32_t next = lookAhead(1).code;
        return next == TOK_LPAREN || next == TOK_COLON;
    }
    convertToken();
    switch (inp().code) {
    case TOK_COMPONENTID: return true;
    case TOK_TYPEID:
    case TOK_VALUEID:
    case TOK_MODULEID: return isReferenceToType(inBraces);
    default: return false;
    }
}

bool namedIdentListFollows() {
    if (lookAhead(1).code != TOK_VALUEID) return false;
    const auto endsItem = [](int32_t code) { return code == TOK_COMMA || code == TOK_RBRACE; };
    if (lookAhead(2).code != TOK_LPAREN) return endsItem(lookAhead(2).code);
    uint32_t last = 3; // the token of the number
    if (lookAhead(3).code == TOK_MINUS) {
        last = 4;
        if (lookAhead(4).code != TOK_NUMBER) return false;
    } else if (lookAhead(3).code == TOK_TYPEID) {
        last = 5;
        if (lookAhead(4).code != TOK_DOT || lookAhead(5).code != TOK_VALUEID) return false;
    } else if (lookAhead(3).code != TOK_NUMBER && lookAhead(3).code != TOK_VALUEID) {
        return false;
    }
    return lookAhead(last + 1).code == TOK_RPAREN && endsItem(lookAhead(last + 2).code);
}

} // namespace orvo
