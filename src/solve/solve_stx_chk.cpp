// Checks of WITH SYNTAX lists (X.681 (07/2002) 10.12): known fields and literals, no field twice,
// and that one token of look-ahead tells which optional groups are present.
//
// The list is read into a tree of elements first; the checks walk that tree in the order of the
// text.

#include <algorithm>
#include <array>
#include <unordered_set>
#include <vector>

#include "diag/orvoerr.h"
#include "solve/solve_stx.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"

namespace orvo {

namespace {

/// A word, a punctuation, a field or an optional group of a syntax list.
struct Element {
    SNode entry;
    std::vector<Element> group; // of an optional group
};
using Elements = std::vector<Element>;

/// What a first token stands for, as far as telling tokens apart needs it.
struct StxToken {
    int32_t token = 0;
    int32_t value = 0;
    uint32_t line = 0;
    bool isSet = false;
    uint8_t typeCode = TYP_NONE; // of a field, references followed
};
using TokenList = std::vector<StxToken>;

/// The class whose list is checked.
struct ClassCheck {
    ModuleRec* module = nullptr; // of its records, which errors are recorded against too
    TNodeNr firstField;
};

bool isField(int32_t token) {
    return token == TOK_TYPEFIELDID || token == TOK_VALUEFIELDID;
}
bool isGroup(const Element& element) {
    return element.entry.token == TOK_LBRACKET;
}

std::string_view nameOf(const ClassCheck& check, int32_t value) {
    return getStri(check.module, value);
}

void report(const ClassCheck& check, Msg code, uint32_t line, std::string_view detail = {}) {
    recordError(check.module, ERR_SEMANTIC, code, line, detail);
}

/// Reads the entries from `nr` on, up to the end of their list.
Elements readElements(ModuleRec* module, int32_t nr, uint32_t& left) {
    Elements elements;
    while (nr > 0 && left != 0) {
        --left;
        readRec(module, SNodeNr{static_cast<uint32_t>(nr)});
        Element element{sNode, {}};
        nr = element.entry.next;
        if (isGroup(element)) element.group = readElements(module, element.entry.value, left);
        elements.push_back(std::move(element));
    }
    return elements;
}

Elements syntaxOf(const ClassCheck& check, uint32_t syntaxList) {
    uint32_t left = nextRec<KIND_SNODE>(check.module).nr;
    return readElements(check.module, static_cast<int32_t>(syntaxList), left);
}

/// Calls fn for every element, those of groups in place of the group.
template <typename Fn> void forEachElement(const Elements& elements, Fn&& fn) {
    for (const Element& element : elements) {
        if (isGroup(element))
            forEachElement(element.group, fn);
        else
            fn(element.entry);
    }
}

/// A field reference appears twice.
bool checkDuplicateFieldSettings(const ClassCheck& check, const Elements& elements) {
    bool ok = true;
    std::unordered_set<int64_t> seen;
    forEachElement(elements, [&](const SNode& entry) {
        if (!isField(entry.token)) return;
        if (seen.insert(int64_t{entry.token} << 32 | static_cast<uint32_t>(entry.value)).second)
            return;
        report(check, Msg::DuplicateFieldSetting, entry.line);
        ok = false;
    });
    return ok;
}

/// Looks a field up: whether it is a set, and the kind of its type.
bool findFieldById(const ClassCheck& check, std::string_view name, StxToken& token) {
    if (!findTypeCompById(check.module, check.firstField, name)) return false;
    token.isSet = isSetTNode();
    skipTypes(true);
    token.typeCode = tNode.typeCode;
    return true;
}

bool checkFieldId(const ClassCheck& check, const SNode& entry, StxToken& token) {
    token = {entry.token, entry.value, entry.line, false, TYP_NONE};
    if (!isField(entry.token) || findFieldById(check, nameOf(check, entry.value), token))
        return true;
    report(check, Msg::FieldNameExpected, entry.line);
    return false;
}

/// The notation of the kind may begin like a type, or with `{`.
bool mayBeginLikeType(const StxToken& token) {
    return token.isSet || is(token.typeCode, TypeClass::LikeType);
}

/// Tokens met so far, as far as it matters for another token.
struct TokenSets {
    std::unordered_set<int32_t> words;  // literal words by name
    std::unordered_set<int32_t> others; // codes of value fields and of literals with a code
    bool types = false;                 // a type field
    bool sets = false;                  // a set field
    bool likeType[2] = {};              // a type or set (0), a value field (1) like a type
};

void addToken(TokenSets& known, const StxToken& token) {
    if (isField(token.token) && mayBeginLikeType(token))
        known.likeType[token.token == TOK_VALUEFIELDID] = true;
    if (token.token == TOK_TYPEID)
        known.words.insert(token.value);
    else if (token.token != TOK_TYPEFIELDID)
        known.others.insert(token.token);
    else
        (token.isSet ? known.sets : known.types) = true;
}

/// True when a token can be told from all those.
bool checkToken(const StxToken& token, const TokenSets& known) {
    if (isField(token.token) && mayBeginLikeType(token) &&
        known.likeType[token.token != TOK_VALUEFIELDID])
        return false;
    if (token.token == TOK_TYPEID) return !known.words.contains(token.value);
    if (token.token == TOK_TYPEFIELDID) return !(token.isSet ? known.sets : known.types);
    return !known.others.contains(token.token);
}

/// Every token differs from those behind it; the lists are given from the last one of the text on.
bool checkLL1(const ClassCheck& check, const std::vector<TokenList>& lists) {
    std::vector<const StxToken*> conflicts;
    TokenSets behind;
    for (auto list = lists.rbegin(); list != lists.rend(); ++list) {
        for (auto token = list->rbegin(); token != list->rend(); ++token) {
            if (!checkToken(*token, behind)) conflicts.push_back(&*token);
            addToken(behind, *token);
        }
    }
    for (auto conflict = conflicts.rbegin(); conflict != conflicts.rend(); ++conflict) {
        const StxToken& token = **conflict;
        const bool named = isField(token.token) || token.token == TOK_TYPEID;
        report(check, Msg::SyntaxIsNotLL1, token.line,
               named ? nameOf(check, token.value) : std::string_view());
    }
    return conflicts.empty();
}

bool checkOptionalGroups(const ClassCheck& check, const Elements& elements, size_t& at,
                         std::vector<TokenList>& lists);

/// The tokens an optional group can begin with; `literal` tells whether the group before it in the
/// run began with a literal, and then whether this one does.
bool stxDefFIRSTOfGroup(const ClassCheck& check, const Element& group, TokenList& tokens,
                        bool& literal) {
    bool ok = true;
    const bool beginsWithField = !group.group.empty() && isField(group.group.front().entry.token);
    if (literal && beginsWithField) {
        report(check, Msg::LiteralExpected, group.entry.line);
        ok = false;
    } else {
        literal = !group.group.empty() && !beginsWithField && !isGroup(group.group.front());
    }
    bool hasContent = false;
    for (size_t at = 0; at < group.group.size();) {
        const Element& element = group.group[at];
        if (isGroup(element)) {
            hasContent = true;
            const bool first = at == 0;
            std::vector<TokenList> nested;
            ok &= checkOptionalGroups(check, group.group, at, nested);
            if (first)
                for (const TokenList& list : nested)
                    tokens.insert(tokens.end(), list.begin(), list.end());
            continue;
        }
        StxToken token;
        ok &= checkFieldId(check, element.entry, token);
        hasContent |= isField(element.entry.token);
        if (at == 0) tokens.push_back(token);
        ++at;
    }
    if (hasContent) return ok;
    report(check, Msg::PrimitiveFieldNameOrOptionalGroupExpected, group.entry.line);
    return false;
}

bool stxDefFIRST(const ClassCheck& check, const Element& element, TokenList& tokens,
                 bool& literal) {
    if (isGroup(element)) return stxDefFIRSTOfGroup(check, element, tokens, literal);
    StxToken token;
    const bool ok = checkFieldId(check, element.entry, token);
    tokens.push_back(token);
    return ok;
}

/// A run of optional groups at `at`, and the element behind it; `at` is moved behind both. The
/// lists of what they can begin with are handed back, the last one first.
bool checkOptionalGroups(const ClassCheck& check, const Elements& elements, size_t& at,
                         std::vector<TokenList>& lists) {
    bool ok = true;
    bool literal = false;
    while (at < elements.size() && isGroup(elements[at]))
        ok &= stxDefFIRST(check, elements[at++], lists.emplace_back(), literal);
    if (at < elements.size())
        ok &= stxDefFIRST(check, elements[at++], lists.emplace_back(), literal);
    std::reverse(lists.begin(), lists.end());
    ok &= checkLL1(check, lists);
    return ok;
}

/// Field names and optional groups.
bool checkFieldSettings(const ClassCheck& check, const Elements& elements) {
    bool ok = true;
    for (size_t at = 0; at < elements.size();) {
        if (isGroup(elements[at])) {
            std::vector<TokenList> lists;
            ok &= checkOptionalGroups(check, elements, at, lists);
        } else {
            StxToken token;
            ok &= checkFieldId(check, elements[at++].entry, token);
        }
    }
    return ok;
}

/// Reserved words that begin a type, a value or a set, and so cannot be literals.
constexpr std::array invalidLiterals = {
    TOK_ALL, TOK_BIT, TOK_BOOLEAN, TOK_CHARACTER, TOK_CHOICE, TOK_EMBEDDED, TOK_ENUMERATED,
    TOK_EXCEPT, TOK_EXTERNAL, TOK_FALSE, TOK_INSTANCE, TOK_INTEGER, TOK_INTERSECTION,
    TOK_MINUS_INFINITY, TOK_NULL, TOK_OBJECT, TOK_PLUS_INFINITY, TOK_REAL, TOK_SEQUENCE, TOK_SET,
    TOK_TRUE, TOK_UNION,
    // of later editions
    TOK_DATE, TOK_DATE_TIME, TOK_DURATION, TOK_NOT_A_NUMBER, TOK_OID_IRI, TOK_RELATIVE_OID,
    TOK_RELATIVE_OID_IRI, TOK_TIME, TOK_TIME_OF_DAY, TOK_UTF8STRING};

} // namespace

bool checkUsrDefSyntax() {
    const KeepRec<KIND_TNODE> keep;
    const ClassCheck check{typeModule(), TNodeNr{tNode.ref}};
    const Elements elements = syntaxOf(check, tNode.syntaxList);
    return checkDuplicateFieldSettings(check, elements) && checkFieldSettings(check, elements);
}

void checkSyntaxDef() {
    const KeepRec<KIND_TNODE> keep;
    const ClassCheck check{typeModule(), TNodeNr{tNode.ref}};
    forEachElement(syntaxOf(check, tNode.syntaxList), [&](const SNode& entry) {
        if (isField(entry.token)) {
            const std::string_view name = nameOf(check, entry.value);
            if (!findTypeCompById(check.module, check.firstField, name))
                report(check, Msg::UnknownFieldId, entry.line, name);
        } else if (std::find(invalidLiterals.begin(), invalidLiterals.end(), entry.token) !=
                   invalidLiterals.end()) {
            report(check, Msg::InvalidLiteral, entry.line, tokenName(entry.token));
        }
    });
}

} // namespace orvo
