#include "mutate.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>

#include "lex/orvotok.h"

namespace fuzz {
namespace {

/// Tokens and what stands between them, in the order of the text; together they are the text.
using Pieces = std::vector<std::string>;

bool isWordChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '&';
}
bool isBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
bool isWord(const std::string& piece) {
    return std::isalpha(static_cast<unsigned char>(piece[0])) != 0 || piece[0] == '&';
}
bool isName(const std::string& piece) {
    return isWord(piece) && !std::ranges::all_of(piece, [](unsigned char c) {
               return std::isupper(c) != 0 || c == '-';
           });
}
bool isNumber(const std::string& piece) {
    return std::isdigit(static_cast<unsigned char>(piece[0])) != 0;
}
bool isToken(const std::string& piece) {
    return !isBlank(piece[0]) && !piece.starts_with("--");
}

size_t lengthOfPiece(std::string_view text) {
    const auto whileTrue = [text](auto&& holds) {
        size_t length = 1;
        while (length < text.size() && holds(text[length])) ++length;
        return length;
    };
    const auto upTo = [text](std::string_view end) {
        const size_t found = text.find(end, end.size());
        return found == std::string_view::npos ? text.size() : found + end.size();
    };
    if (text.starts_with("--")) {
        const size_t line = text.find('\n');
        return std::min(upTo("--"), line == std::string_view::npos ? text.size() : line);
    }
    if (isBlank(text[0])) return whileTrue(isBlank);
    if (isWordChar(text[0]) && text[0] != '-') return whileTrue(isWordChar);
    if (text[0] == '"' || text[0] == '\'') return upTo(text.substr(0, 1));
    for (const std::string_view mark : {"::=", "...", "..", "[[", "]]"})
        if (text.starts_with(mark)) return mark.size();
    return 1;
}

Pieces piecesOf(std::string_view text) {
    Pieces pieces;
    while (!text.empty()) {
        const size_t length = lengthOfPiece(text);
        pieces.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return pieces;
}

std::string textOf(const Pieces& pieces) {
    std::string text;
    for (const std::string& piece : pieces) text += piece;
    return text;
}

/// A part of a text: the pieces from `first` up to `end`.
struct Range {
    size_t first = 0, end = 0;
    [[nodiscard]] size_t size() const { return end - first; }
};

std::string textOf(const Pieces& pieces, Range range) {
    std::string text;
    for (size_t at = range.first; at < range.end; ++at) text += pieces[at];
    return text;
}

/// Brackets with what they hold, inner ones too.
std::vector<Range> groupsOf(const Pieces& pieces) {
    std::vector<Range> groups;
    std::vector<size_t> open;
    for (size_t at = 0; at < pieces.size(); ++at) {
        if (std::strchr("{([", pieces[at][0]) != nullptr) open.push_back(at);
        if (std::strchr("})]", pieces[at][0]) == nullptr || open.empty()) continue;
        groups.push_back({open.back(), at + 1});
        open.pop_back();
    }
    return groups;
}

struct Definition {
    Range range;
    std::string name;
};

/// From the name in front of a "::=" to the next such name; the module header is none.
std::vector<Definition> definitionsOf(const Pieces& pieces) {
    std::vector<Definition> definitions;
    size_t depth = 0, lineStart = 0;
    bool inBody = false;
    for (size_t at = 0; at < pieces.size(); ++at) {
        const std::string& piece = pieces[at];
        if (piece == "{") ++depth;
        if (piece == "}" && depth > 0) --depth;
        // The name stands behind the last end of a line, or is the word before a single type.
        if (depth == 0 && isBlank(piece[0]) && piece.find('\n') != std::string::npos)
            lineStart = at + 1;
        if (piece == "BEGIN") inBody = true;
        if (piece == "END" && depth == 0 && !definitions.empty())
            definitions.back().range.end = std::min(definitions.back().range.end, at);
        if (piece != "::=" || depth != 0 || !inBody) continue;
        size_t first = lineStart;
        while (first < at && !isWord(pieces[first])) ++first;
        if (first == at) continue;
        if (!definitions.empty()) {
            Range& before = definitions.back().range;
            if (first <= before.first) continue;
            before.end = std::min(before.end, first);
        }
        definitions.push_back({{first, pieces.size()}, pieces[first]});
    }
    return definitions;
}

std::vector<size_t> tokensOf(const Pieces& pieces, bool (*which)(const std::string&)) {
    std::vector<size_t> places;
    for (size_t at = 0; at < pieces.size(); ++at)
        if (which(pieces[at])) places.push_back(at);
    return places;
}

std::string moduleName(const Pieces& pieces) {
    const auto found = std::ranges::find_if(pieces, isName);
    return found != pieces.end() ? *found : pieces.empty() ? "M" : pieces.front();
}

// ---- changes ------------------------------------------------------------------------------------

struct Change {
    std::vector<Pieces>& modules;
    Dice& dice;
    Pieces& here; // the module that is changed

    Pieces& any() { return dice.of(modules); }
    size_t place(const Pieces& pieces, bool (*which)(const std::string&) = isToken) {
        const std::vector<size_t> places = tokensOf(pieces, which);
        return places.empty() ? pieces.size() : dice.of(places);
    }
    Range range(const Pieces& pieces) {
        const size_t first = place(pieces);
        return {first, std::min(pieces.size(), first + 1 + dice.below(12))};
    }
    void insert(size_t at, const std::string& text) {
        here.insert(here.begin() + static_cast<std::ptrdiff_t>(std::min(at, here.size())), text);
    }
    void replace(Range range, const std::string& text) {
        const auto first = here.begin() + static_cast<std::ptrdiff_t>(range.first);
        here.erase(first, first + static_cast<std::ptrdiff_t>(range.size()));
        insert(range.first, text);
    }
    void replace(size_t at, const std::string& text) {
        if (at < here.size()) here[at] = text;
    }
};

std::string knownWord(Dice& dice) {
    std::string word(orvo::tokenName(static_cast<int32_t>(dice.below(orvo::tokenCount))));
    std::ranges::replace(word, '_', '-');
    return word.empty() ? "," : word;
}

constexpr const char* numbers[] = {"0",
                                   "1",
                                   "2",
                                   "127",
                                   "128",
                                   "255",
                                   "256",
                                   "32767",
                                   "32768",
                                   "65535",
                                   "65536",
                                   "2147483647",
                                   "2147483648",
                                   "4294967295",
                                   "4294967296",
                                   "9223372036854775807",
                                   "9223372036854775808",
                                   "18446744073709551615",
                                   "18446744073709551616",
                                   "99999999999999999999",
                                   "1.5",
                                   "1E400",
                                   "0.0"};

constexpr const char* optionComments[] = {"$INT=U8",
                                          "$N=16",
                                          "$NEAR=YES",
                                          "$PLMBOOLE=YES",
                                          "$ENTRY=PDU",
                                          "$TNAME=x",
                                          "$SEGLISTLIM=1",
                                          "$CHOICE=8",
                                          "$COMPMASK=8",
                                          "$REAL=32",
                                          "$CNAME=y$CCONV=HU",
                                          "$//x",
                                          "$STANDARD-VERSION=2021",
                                          "$DEFINITION-CATEGORY=ROSE",
                                          "$ALLOW",
                                          "$PREFIX=A:b",
                                          "$BEO=x",
                                          "$EXTENSIONS=SKIP"};

constexpr const char* snippets[] = {
    "(SIZE (0..MAX))",
    "(WITH COMPONENTS {..., a PRESENT})",
    "(CONTAINING NULL ENCODED BY {1 2})",
    "(CONSTRAINED BY {})",
    "({T}{@a})",
    "(FROM (\"a\"..\"z\"))",
    "(PATTERN \"[a-z]#(1,2)\")",
    "(ALL EXCEPT 1 | 2 ^ 3, ..., 4)",
    "(SETTINGS \"Basic=Date\")",
    "...",
    "[[ 2: a NULL ]]",
    "OPTIONAL",
    "DEFAULT {}",
    "DEFAULT 0",
    "COMPONENTS OF T",
    "{a 1, b {2}}",
    "T {NULL}",
    "{T, INTEGER : n, C : o}",
    "[1] IMPLICIT",
    "[APPLICATION 2] EXPLICIT",
    "SEQUENCE OF",
    "SET SIZE (1) OF",
    "INSTANCE OF C",
    "C.&id",
    "@.a",
    "!5",
    "MIN<..<MAX",
    "a < T",
    "WITH SUCCESSORS",
    "TYPE-IDENTIFIER.&Type",
    "{T|x, ..., y}",
    "WITH SYNTAX {[A &a] B &B}",
    "EXTENSIBILITY IMPLIED",
    "XER INSTRUCTIONS",
    "[TAG: 1]",
    "'0'B",
    "'FF'H",
    "\"\"",
    "{1,2,3,4}",
    "CHARACTER STRING",
    "EMBEDDED PDV",
    "EXTERNAL",
    "MACRO ::= BEGIN TYPE NOTATION ::= empty VALUE NOTATION ::= value(VALUE INTEGER) END",
    "ANY DEFINED BY a",
    "UNION",
    "INTERSECTION"};

void replaceByKnown(Change& change) {
    change.replace(change.place(change.here), knownWord(change.dice));
}
void insertSnippet(Change& change) {
    change.insert(change.place(change.here), std::string(" ") + change.dice.of(snippets) + " ");
}
void replaceByOther(Change& change) {
    const Pieces& from = change.any();
    const size_t other = change.place(from);
    if (other < from.size()) change.replace(change.place(change.here), from[other]);
}
void swapTokens(Change& change) {
    const size_t a = change.place(change.here), b = change.place(change.here);
    if (a < change.here.size()) std::swap(change.here[a], change.here[b]);
}
void copyRange(Change& change) {
    const Pieces& from = change.any();
    change.insert(change.place(change.here), " " + textOf(from, change.range(from)) + " ");
}
void dropRange(Change& change) {
    change.replace(change.range(change.here), " ");
}
void repeatRange(Change& change) {
    const Range range = change.range(change.here);
    std::string text;
    const size_t times = change.dice.oneIn(8) ? 200 : 1 + change.dice.below(8);
    for (size_t i = 0; i < times; ++i) text += textOf(change.here, range) + " ";
    change.insert(range.end, " " + text);
}
void changeNumber(Change& change) {
    const std::string number = change.dice.of(numbers);
    change.replace(change.place(change.here, isNumber),
                   change.dice.oneIn(4) ? "-" + number : number);
}
void replaceGroup(Change& change) {
    const Pieces from = change.any();
    const std::vector<Range> groups = groupsOf(change.here), others = groupsOf(from);
    if (groups.empty() || others.empty()) return;
    change.replace(change.dice.of(groups), textOf(from, change.dice.of(others)));
}
/// A group stands within itself, once or many times.
void nestGroup(Change& change) {
    const std::vector<Range> groups = groupsOf(change.here);
    if (groups.empty()) return;
    const Range group = change.dice.of(groups);
    const Range inner = change.dice.of(groups);
    std::string before, behind;
    if (inner.first >= group.first && inner.end <= group.end && inner.size() < group.size()) {
        before = textOf(change.here, {group.first, inner.first});
        behind = textOf(change.here, {inner.end, group.end});
    } else {
        before = change.here[group.first], behind = change.here[group.end - 1];
    }
    std::string text = textOf(change.here, group);
    const size_t times = change.dice.oneIn(16) ? 60 : 1 + change.dice.below(4);
    for (size_t i = 0; i < times && text.size() < 20000; ++i) text = before + text + behind;
    change.replace(group, text);
}
void replaceName(Change& change) {
    const std::vector<Definition> definitions = definitionsOf(change.any());
    if (definitions.empty()) return;
    change.replace(change.place(change.here, isName), change.dice.of(definitions).name);
}
void swapDefinitions(Change& change) {
    const std::vector<Definition> definitions = definitionsOf(change.here);
    if (definitions.size() < 2) return;
    Range a = change.dice.of(definitions).range, b = change.dice.of(definitions).range;
    if (a.first > b.first) std::swap(a, b);
    if (a.first == b.first) return;
    const std::string textOfA = textOf(change.here, a), textOfB = textOf(change.here, b);
    change.replace(b, textOfA);
    change.replace(a, textOfB);
}
void copyDefinition(Change& change) {
    const Pieces from = change.any();
    const std::vector<Definition> definitions = definitionsOf(from);
    if (definitions.empty()) return;
    const Definition& definition = change.dice.of(definitions);
    std::string text = textOf(from, definition.range) + "\n";
    if (!change.dice.oneIn(3))
        text.replace(0, definition.name.size(),
                     definition.name + std::to_string(change.dice.below(4)));
    const std::vector<Definition> here = definitionsOf(change.here);
    if (!here.empty()) change.insert(change.dice.of(here).range.first, text);
}
void dropDefinition(Change& change) {
    const std::vector<Definition> definitions = definitionsOf(change.here);
    if (!definitions.empty()) change.replace(change.dice.of(definitions).range, "\n");
}
void import(Pieces& module, const std::string& name, const std::string& from) {
    const auto imports = std::ranges::find(module, "IMPORTS");
    const auto begin = std::ranges::find(module, "BEGIN");
    if (imports != module.end())
        module.insert(imports + 1, " " + name + " FROM " + from + " ");
    else if (begin != module.end())
        module.insert(begin + 1, "\nIMPORTS " + name + " FROM " + from + ";\n");
}
/// Another module gets the definition, and this one imports it.
void moveDefinition(Change& change) {
    const std::vector<Definition> definitions = definitionsOf(change.here);
    Pieces& other = change.any();
    const std::vector<Definition> others = definitionsOf(other);
    if (definitions.empty() || others.empty() || &other == &change.here) return;
    const Definition definition = change.dice.of(definitions);
    const std::string text = textOf(change.here, definition.range);
    change.replace(definition.range, "\n");
    const size_t at = change.dice.of(others).range.first;
    other.insert(other.begin() + static_cast<std::ptrdiff_t>(at), text + "\n");
    import(change.here, definition.name, moduleName(other));
}
void importSymbol(Change& change) {
    const Pieces& other = change.any();
    const std::vector<Definition> definitions = definitionsOf(other);
    if (!definitions.empty())
        import(change.here, change.dice.of(definitions).name, moduleName(other));
}
void referExternally(Change& change) {
    const size_t at = change.place(change.here, isName);
    if (at < change.here.size()) change.here[at].insert(0, moduleName(change.any()) + ".");
}
void parameterize(Change& change) {
    const std::vector<Definition> definitions = definitionsOf(change.here);
    if (definitions.empty()) return;
    const Definition& definition = change.dice.of(definitions);
    constexpr const char* formals[] = {" {T} ", " {INTEGER : n} ", " {T, T : v} ", " {C : O} ",
                                       " {C} "};
    constexpr const char* actuals[] = {" {NULL} ", " {5} ", " {INTEGER, 5} ", " {{o}} ", " {C} "};
    const size_t which = change.dice.below(std::size(formals));
    for (std::string& piece : change.here)
        if (piece == definition.name && !change.dice.oneIn(4)) piece += actuals[which];
    change.here[definition.range.first] = definition.name + formals[which];
}
void addOption(Change& change) {
    const size_t at = change.dice.oneIn(3) ? 0 : change.place(change.here) + 1;
    change.insert(at, std::string(" --") + change.dice.of(optionComments) + "-- ");
}
void addModule(Change& change) {
    if (change.modules.size() >= 6) return;
    const std::vector<Definition> definitions = definitionsOf(change.here);
    if (definitions.empty()) return;
    const Definition& definition = change.dice.of(definitions);
    const std::string name = moduleName(change.here) + std::to_string(change.dice.below(4));
    import(change.here, definition.name, name);
    change.modules.push_back(piecesOf(name + " DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n" +
                                      textOf(change.here, definition.range) + "\nEND\n"));
}

using ChangeFn = void (*)(Change& change);
constexpr ChangeFn changes[] = {
    replaceByKnown,  insertSnippet,  replaceByOther, swapTokens,     copyRange,      dropRange,
    repeatRange,     changeNumber,   replaceGroup,   nestGroup,      replaceName,    replaceName,
    swapDefinitions, copyDefinition, copyDefinition, dropDefinition, moveDefinition, importSymbol,
    referExternally, parameterize,   addOption,      addModule};

} // namespace

size_t Dice::below(size_t n) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return n == 0 ? 0 : static_cast<size_t>((state_ >> 33) % n);
}

std::vector<std::string> split(std::string_view input) {
    std::vector<std::string> texts;
    for (;;) {
        const size_t end = input.find(separator);
        texts.emplace_back(input.substr(0, end));
        if (end == std::string_view::npos) return texts;
        input.remove_prefix(end + separator.size());
    }
}

std::string join(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : separator.data()) + text;
    return all;
}

void mutateModules(std::vector<std::string>& modules, Dice& dice) {
    std::vector<Pieces> all;
    for (const std::string& text : modules) all.push_back(piecesOf(text));
    all.reserve(all.size() + 3); // `here` stays where it is
    const size_t times = 1 + dice.below(3);
    for (size_t i = 0; i < times; ++i) {
        Change change{all, dice, dice.of(all)};
        dice.of(changes)(change);
        // What was put in as one piece counts as its tokens from now on.
        for (Pieces& pieces : all) pieces = piecesOf(textOf(pieces));
    }
    modules.clear();
    for (const Pieces& pieces : all) modules.push_back(textOf(pieces));
}

void mutateLines(std::string& text, const std::vector<std::string>& words, Dice& dice) {
    std::vector<std::string> lines;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    std::string& line = dice.of(lines);
    std::string& other = dice.of(lines);
    switch (dice.below(6)) {
    case 0: std::swap(line, other); break;
    case 1: line += other; break;
    case 2: line = dice.of(words); break;
    case 3: line += dice.of(words); break;
    case 4: lines.insert(lines.begin(), dice.of(words)); break;
    default: line.clear(); break;
    }
    text.clear();
    for (const std::string& each : lines) text += (text.empty() ? "" : "\n") + each;
}

size_t mutateInput(uint8_t* data, size_t size, size_t maxSize, unsigned seed) {
    Dice dice(seed);
    if (dice.oneIn(6)) return LLVMFuzzerMutate(data, size, maxSize);
    std::string input(reinterpret_cast<const char*>(data), size);
    change(input, dice);
    return input.copy(reinterpret_cast<char*>(data), maxSize);
}

size_t crossInputs(std::string_view one, std::string_view other, uint8_t* out, size_t maxSize,
                   unsigned seed, size_t lead) {
    Dice dice(seed);
    std::vector<std::string> texts = split(one.substr(std::min(lead, one.size())));
    const std::vector<std::string> others = split(other.substr(std::min(lead, other.size())));
    for (const std::string& text : others) {
        if (dice.oneIn(3)) texts.push_back(text);
        if (dice.oneIn(3)) dice.of(texts) = text;
    }
    const std::string input = std::string(one.substr(0, lead)) + join(texts);
    return input.copy(reinterpret_cast<char*>(out), maxSize);
}

} // namespace fuzz
