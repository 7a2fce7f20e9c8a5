// Comments and the `$` commands in them. A command ends where its comment ends, so the two hyphens
// that close the comment are recognised while the command is read and are no part of its text.

#include "lex/lex_meta.h"

#include <algorithm>
#include <string_view>

#include "driver/orvofil_fix.h"
#include "lex/lex.h"
#include "tree/orvomod.h"

namespace orvo {

namespace {

struct MetaCmd {
    bool closed = false; // the comment has been closed
    int hyphenCnt = 0;   // hyphens read last, one behind the other
    uint8_t kind = TED_REJECTED;
    bool isOption = false; // else a directive
    bool blanks = false;   // its value may contain blanks
};

struct Directive {
    std::string_view name;
    TedKind kind;
};
constexpr Directive directives[] = {
    {"$ENTRY", TED_ENTRY}, {"$SKIP", TED_SKIP},   {"$ASNH", TED_ASNH},
    {"$PTR", TED_PTR},     {"$ASNHC", TED_ASNHC}, {"$FRAME", TED_FRAME},
    {"$SEG", TED_SEG},     {"$DYN", TED_DYN},     {"$DYNARR", TED_DYNARR}};

/// The current character as commands see it; NUL at the end of the input.
char current() {
    const char c = *lexState.Inp;
    if (!isBadChar(c)) return c;
    return atEnd(lexState.Inp) ? '\0' : '~';
}

char upper(char c) {
    return isChar(c, CHAR_LOWER) ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Steps over a character; the second of two hyphens closes the comment.
void stepOver(MetaCmd& cmd, char c) {
    ++lexState.Inp;
    cmd.hyphenCnt = c == '-' ? cmd.hyphenCnt + 1 : 0;
    cmd.closed = cmd.hyphenCnt == 2;
}

/// Appends printable characters up to a `$`, the closing `--` or one of `ends`; the closing hyphens
/// are taken off again.
template <typename Change> void readText(MetaCmd& cmd, std::string_view ends, Change change) {
    std::string& text = lexState.strBuf;
    for (char c = current(); isChar(c, CHAR_PRINT) && c != '$' && ends.find(c) == ends.npos;
         c = current()) {
        text.push_back(change(c));
        stepOver(cmd, c);
        if (!cmd.closed) continue;
        text.resize(text.size() - 2);
        return;
    }
}

/// `$/` or `$//`; the character behind `$/` is dropped when it is no second slash. A hyphen is left
/// to the value, where it may be the first of two that close the comment.
void readSlashes() {
    lexState.strBuf.push_back('/');
    ++lexState.Inp;
    const char c = current();
    if (c == '/') lexState.strBuf.push_back('/');
    if (isChar(c, CHAR_PRINT) && c != '-') ++lexState.Inp;
}

/// The first command of a module is an option however it is written: `--$ALLOW--` needs no value.
/// Recording an option puts its text into the module's strings.
bool nothingReadYet() {
    return cMP->nextRecNr[KIND_STRI8] == 1;
}

/// Settles from the name whether the command is an option, of which kind, and where its value ends.
void classify(MetaCmd& cmd) {
    const std::string_view text = lexState.strBuf;
    const std::string_view name = text.substr(1);
    const bool slashes = name.starts_with('/');
    cmd.isOption = slashes || nothingReadYet() || (!cmd.closed && current() == '=');
    if (!cmd.isOption) {
        const auto* row = std::ranges::find(directives, text, &Directive::name);
        if (row != std::end(directives)) cmd.kind = row->kind;
        return;
    }
    constexpr std::string_view codeLetters = "TEDAP";
    const bool isCode = name.size() == 2 && codeLetters.find(name[0]) != codeLetters.npos &&
                        (name[1] == '1' || name[1] == '2');
    cmd.kind = isCode ? TED_CODE : name == "BEO" ? TED_BEO : TED_OPTION;
    cmd.blanks = cmd.kind != TED_OPTION || name == "//" || name == "INFO";
}

/// Reads a `$` command; the current character is the `$`. True when its comment has been closed.
bool getMetaCmd() {
    MetaCmd cmd;
    std::string& text = lexState.strBuf;
    text.assign(1, '$');
    ++lexState.Inp;
    if (*lexState.Inp == '/')
        readSlashes();
    else
        readText(cmd, " =", upper);
    classify(cmd);
    if (cmd.isOption && !cmd.closed) readText(cmd, cmd.blanks ? "" : " ", [](char c) { return c; });
    text.resize(text.find_last_not_of(' ') + 1);
    if (text.size() > maxOptionLength) {
        text.resize(maxOptionLength);
        cmd.kind = TED_REJECTED;
    }
    if (cmd.isOption) addTedRec(lexState.Outp->options, cmd.kind, text);
    lexState.Outp->optFlags |= 1U << cmd.kind;
    return cmd.closed;
}

} // namespace

void skipComment() {
    const bool commands = cMP->parseState != PARSE_ERROR;
    const unsigned lineEnd = newNotation() ? unsigned{CHAR_LINE_END} : 0U;
    for (;; ++lexState.Inp) {
        while (!isChar(*lexState.Inp, CHAR_COMMENT | lineEnd)) ++lexState.Inp;
        while (commands && *lexState.Inp == '$')
            if (getMetaCmd()) return;
        const char* const at = lexState.Inp;
        if (*at == '\n' || isChar(*at, lineEnd) || atEnd(at)) return;
        if (*at == '-' && at[1] == '-') break;
    }
    lexState.Inp += 2;
}

} // namespace orvo
