// A string is collected in strBuf, cut to its limit; bytes that its kind does not allow are then
// replaced by `~` one for one. Line ends are counted in the source, also in what is cut off.

#include "lex/lex_stri.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "lex/lex.h"
#include "tree/orvomod.h"
#include "util/utf8.h"

namespace orvo {

namespace {

/// Appends a piece of the source to strBuf, up to the limit.
void take(std::string_view piece, bool skipSpace) {
    std::string& text = lexState.strBuf;
    lexState.LineNumb += static_cast<uint32_t>(std::ranges::count(piece, '\n'));
    for (const char c : piece) {
        if (skipSpace && isChar(c, CHAR_SPACE)) continue;
        if (text.size() == maxStringLength) {
            noteLexError(Msg::TooManyCharacters);
            return;
        }
        text.push_back(c);
    }
}

/// Reads the text of a string up to the quote that ends it into strBuf; the current character is
/// the opening one.
void readStri(char endChar, bool skipSpace) {
    lexState.strBuf.clear();
    const char* from = lexState.Inp + 1;
    for (;;) {
        const auto left = static_cast<size_t>(lexState.end - from);
        const auto* stop = static_cast<const char*>(std::memchr(from, endChar, left));
        if (stop == nullptr) {
            take({from, left}, skipSpace);
            noteLexError(Msg::InvalidEndCharacterIn);
            lexState.Inp = lexState.end;
            return;
        }
        const bool doubled = endChar == '"' && stop[1] == '"';
        take({from, stop + (doubled ? 1 : 0)}, skipSpace);
        from = stop + (doubled ? 2 : 1);
        if (!doubled) break;
    }
    lexState.Inp = from;
}

/// A line end may be written with a carriage return in front.
bool isText(std::string_view text, size_t at) {
    const char c = text[at];
    if (isChar(c, CHAR_PRINT) || c == '\t' || c == '\n') return true;
    return c == '\r' && at + 1 < text.size() && text[at + 1] == '\n';
}

/// Replaces the characters of strBuf that are not allowed; with a null data() those that are no
/// text.
void checkStri(std::string_view allowed) {
    std::string& text = lexState.strBuf;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool ok =
            allowed.data() == nullptr ? isText(text, at) : allowed.find(text[at]) != allowed.npos;
        if (ok) continue;
        noteLexError(Msg::InvalidCharacterIn);
        text[at] = '~';
    }
}

/// Length of the white space at a place of strBuf; 0 when there is none.
size_t spaceAt(size_t at) {
    const std::string_view rest = std::string_view(lexState.strBuf).substr(at);
    if (rest.starts_with(noBreakSpace)) return noBreakSpace.size();
    return !rest.empty() && isChar(rest[0], CHAR_SPACE) ? 1 : 0;
}

/// A line end in a cstring, with the white space around it, is none of its characters
/// (X.680 (02/2021) 12.14.1).
void dropLineEnds() {
    std::string& text = lexState.strBuf;
    std::string kept;
    for (size_t at = 0; at < text.size();) {
        size_t end = at;
        bool isLineEnd = false;
        for (size_t length = spaceAt(end); length != 0; length = spaceAt(end)) {
            isLineEnd |= isChar(text[end], CHAR_LINE_END);
            end += length;
        }
        if (end == at) ++end; // a character
        if (!isLineEnd) kept.append(text, at, end - at);
        at = end;
    }
    text = std::move(kept);
}

/// Bytes that are no UTF-8 are replaced, and control characters.
void checkUtf8() {
    std::string& text = lexState.strBuf;
    for (size_t at = 0; at < text.size();) {
        const size_t length = utf8Length(std::string_view(text).substr(at));
        const bool isControl = length == 2 && text[at] == '\xC2' && text[at + 1] < '\xA0';
        if ((length > 1 && !isControl) || (length == 1 && isText(text, at))) {
            at += length;
            continue;
        }
        noteLexError(Msg::InvalidCharacterIn);
        for (const size_t end = at + std::max(length, size_t{1}); at < end; ++at) text[at] = '~';
    }
}

int32_t readLaterCString() {
    readStri('"', false);
    dropLineEnds();
    checkUtf8();
    lexState.Outp->setStri(internText(lexState.strBuf));
    return TOK_CSTRING;
}

void dropNoBreakSpaces() {
    std::string& text = lexState.strBuf;
    size_t kept = 0;
    for (size_t at = 0; at < text.size();) {
        if (std::string_view(text).substr(at).starts_with(noBreakSpace))
            at += noBreakSpace.size();
        else
            text[kept++] = text[at++];
    }
    text.resize(kept);
}

} // namespace

int32_t readCString() {
    if (newNotation()) return readLaterCString();
    readStri('"', false);
    checkStri({});
    lexState.Outp->setStri(internText(lexState.strBuf));
    return TOK_CSTRING;
}

int32_t readBinaryString() {
    readStri('\'', true);
    if (newNotation()) dropNoBreakSpaces();
    const bool isBits = *lexState.Inp == 'B';
    checkStri(isBits ? "01" : "0123456789ABCDEF");
    lexState.Outp->setStri(internText(lexState.strBuf));
    if (isBits || *lexState.Inp == 'H')
        ++lexState.Inp;
    else
        noteLexError(Msg::InvalidEndCharacterIn);
    return isBits ? TOK_BSTRING : TOK_HSTRING;
}

} // namespace orvo
