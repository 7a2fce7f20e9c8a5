// One fault in a project: a faulty line more, a line less, another value.

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>

#include "meta_model.h"

namespace orvo::meta {
namespace {

/// Texts with one thing less: an item of a list, a constraint, what follows a component's type.
std::vector<std::string> smallerTexts(const std::string& text) {
    std::vector<std::string> list;
    const auto endOf = [&text](size_t at, const char* stops) {
        for (int depth = 0; at < text.size(); ++at) {
            if (depth == 0 && std::strchr(stops, text[at]) != nullptr) break;
            if (std::strchr("{([", text[at]) != nullptr) ++depth;
            if (std::strchr("})]", text[at]) != nullptr && depth-- == 0) break;
        }
        return at;
    };
    const auto without = [&](size_t from, size_t to) {
        if (to <= text.size()) list.push_back(text.substr(0, from) + text.substr(to));
    };
    for (size_t at = 0; at < text.size(); ++at) {
        const char ch = text[at];
        if (ch == ' ' || ch == ',') without(at, endOf(at + 1, ","));
        if (ch == ' ') without(at, endOf(at + 1, " ,\n"));
        if (std::strchr("{([", ch) == nullptr) continue;
        without(at, endOf(at + 1, "") + 1);
        if (const size_t comma = endOf(at + 1, ","); text[comma] == ',') without(at + 1, comma + 1);
    }
    std::ranges::stable_sort(list, {}, &std::string::size);
    return list;
}

// Separated by ~. $Ty and the like stand for any definition of that kind, $Me for the one that gets
// the fault.
constexpr std::string_view faultyComponents = R"(
INTEGER (0..5) DEFAULT 9 ~ [3000000] INTEGER ~ [$va] INTEGER ~ [UNIVERSAL 5] NULL ~
[$va] IMPLICIT ANY ~ INTEGER (5..1) ~ INTEGER (1..10 | 30..20) ~ INTEGER ($Ty) ~
INTEGER (SIZE (1)) ~ INTEGER ($va) ~ INTEGER {fn(1), fm(1)} ~ INTEGER {fn($va)} ~ BIT STRING {fb($va)} ~ ENUMERATED {fe($va)} ~
OCTET STRING (SIZE (0..$va)) ~ INTEGER ({$Os}) ~
INTEGER --$INT=U7-- ~ IA5String (FROM ("ab".."c")) ~ OCTET STRING (SIZE (-1..5)) ~
BIT STRING {fb(-1)} ~ BIT STRING {fb(1)} DEFAULT '0101'B ~ OBJECT IDENTIFIER DEFAULT {1} ~
OBJECT IDENTIFIER DEFAULT {$va} ~ UTCTime DEFAULT "9913312359Z" ~
REAL DEFAULT {mantissa 5, base 3, exponent 1} ~ ENUMERATED {fe, ff(0), fg(0)} ~
ENUMERATED {fe, ff} DEFAULT fx ~ ANY DEFINED BY nix ~
SEQUENCE {fa [1] NULL OPTIONAL, fb [1] NULL} ~ SEQUENCE {fa NULL, fa NULL} ~
SEQUENCE {COMPONENTS OF $Ty, fa $Ty} ~ SEQUENCE {..., fa NULL, ...} ~
SEQUENCE {fa INTEGER OPTIONAL, fb $Ty} (WITH COMPONENTS {fb PRESENT}) ~ SET {fa ANY, fb NULL} ~
CHOICE {fa $Ty, fb $Ty} ~ SEQUENCE OF $Me ~ SEQUENCE (SIZE (0..5)) OF INTEGER DEFAULT {1, TRUE} ~
$Me ~ SET {fa $Me} ~ nix < $Ty ~ $CLS ~ INSTANCE OF $CLS ~ TYPE-IDENTIFIER.&id ({$Os}) ~
TYPE-IDENTIFIER.&Type ({$Os}{@nix}) ~ TYPE-IDENTIFIER.&Type DEFAULT $ob.&Type : 5 ~
$ob.&Type DEFAULT 5 ~ $ob.&Type (5 | 6) ~ $Pa {5} ~ $Pa {INTEGER (5..1)} ~ $Pa {{$ob}} ~
$Ty (0..MAX) ~ $Ty ($Ty) ~ $Ty (WITH COMPONENTS {..., nix PRESENT}) ~ $Ty (WITH COMPONENTS {}) ~
$Ty (SIZE (0..1))(SIZE (5)) ~ $Ty DEFAULT {} ~ $Ty DEFAULT 77 ~ $Ty DEFAULT $va ~
$Ty DEFAULT "abc" ~ $Vs DEFAULT 9999)";
constexpr std::string_view faultyFields = R"(
&fx $CLS ~ &fx INTEGER DEFAULT TRUE ~ &fx INTEGER UNIQUE DEFAULT 5 ~ &fx $Ty DEFAULT {} ~
&fx $Ty DEFAULT $va ~ &fx $CLS DEFAULT $ob ~ &Fx $CLS DEFAULT {$ob} ~
&Fx INTEGER DEFAULT {5..1} ~ &Fx INTEGER DEFAULT {TRUE} ~ &Fx DEFAULT INTEGER (5..1) ~
&Fx DEFAULT $Ty (0..MAX) ~ &fx &Fx)";
constexpr std::string_view faultyElements = R"(
$ob ~ $va ~ $Ty ~ {} ~ 5..1 ~ TRUE ~ nix)";
constexpr std::string_view faultyValues = R"(
{} ~ TRUE ~ 77 ~ -9999 ~ $va ~ "abc" ~ $ob ~ {1})";

/// One of those that are separated by "~".
std::string oneOfTable(Random& random, std::string_view table) {
    for (auto left = random.below(static_cast<int>(std::ranges::count(table, '~')) + 1); left > 0;
         --left)
        table.remove_prefix(table.find('~') + 2);
    table.remove_prefix(table.front() == '\n' ? 1 : 0);
    return std::string(table.substr(0, table.find(" ~")));
}

template <typename List> auto& oneOf(Random& random, List&& list) {
    return list[static_cast<size_t>(random.below(static_cast<int>(std::size(list))))];
}

std::string filled(const Project& project, Random& random, const std::string& pattern,
                   const std::string& me) {
    std::string text;
    for (size_t at = 0; at < pattern.size(); ++at) {
        size_t end = at + 1;
        while (end < pattern.size() && std::isalpha(static_cast<unsigned char>(pattern[end])) != 0)
            ++end;
        const std::string stem = pattern.substr(at + 1, end - at - 1);
        if (pattern[at] != '$' || stem == "INT") {
            text += pattern[at];
            continue;
        }
        std::vector<std::string> names;
        for (const Definition& definition : project.definitions)
            if (definition.name.starts_with(stem)) names.push_back(definition.name);
        text += stem == "Me" ? me : names.empty() ? "Nix" : oneOf(random, names);
        at = end - 1;
    }
    return text;
}

/// Where an entry of a list of components or fields begins, on a line of its own.
std::vector<size_t> entriesOf(const std::string& text, bool fields) {
    std::vector<size_t> list;
    for (size_t at = text.find("\n    , "); at != std::string::npos;
         at = text.find("\n    , ", at + 1))
        if ((text[at + 7] == '&') == fields && text[at + 7] != '[') list.push_back(at);
    return list;
}

/// The word in front of the brace that encloses the place.
bool isInChoice(const std::string& text, size_t at) {
    for (int depth = 0; at-- > 0;) {
        if (text[at] == '}') ++depth;
        if (text[at] == '{' && depth-- == 0)
            return at > 6 && text.compare(at - 7, 6, "CHOICE") == 0;
    }
    return false;
}

/// Puts another name for one of a definition; the rest of the line, to find it again.
std::string takeOtherName(const Project& project, Random& random, std::string& text) {
    std::vector<std::pair<size_t, size_t>> places;
    const auto isLetter = [&text](size_t at) {
        return std::isalnum(static_cast<unsigned char>(text[at])) != 0 || text[at] == '-';
    };
    for (size_t at = text.find("::="), end = at; at < text.size(); at = std::max(end, at + 1)) {
        for (end = at; end < text.size() && isLetter(end);) ++end;
        const std::string word = text.substr(at, end - at);
        if (std::string_view("&=:").find(text[at - 1]) == std::string_view::npos &&
            std::ranges::find(project.definitions, word, &Definition::name) !=
                project.definitions.end())
            places.push_back({at, end - at});
    }
    if (places.empty()) return "";
    const auto [at, size] = oneOf(random, places);
    text.replace(at, size, oneOf(random, project.definitions).name);
    return text.substr(at, text.find('\n', at) - at);
}

/// A faulty value, element, setting; a faulty component or field. Its line begins with the result.
std::string plantIn(const Project& project, Random& random, const std::string& name,
                    std::string& text) {
    const auto fill = [&](std::string_view table) {
        return filled(project, random, oneOfTable(random, table), name);
    };
    const bool isClass = name.starts_with("CLS");
    if (name.starts_with("va")) {
        text.replace(text.find("::=") + 4, text.size(), fill(faultyValues));
        return name + " ";
    }
    if (name.starts_with("Os") || name.starts_with("Vs")) {
        text.insert(text.find("::= {") + 5, fill(faultyElements) + " | ");
        return name + " ";
    }
    const std::vector<size_t> entries = entriesOf(text, isClass);
    if (name.starts_with("ob") && entries.empty()) { // a setting less
        const size_t line = text.find("\n    ", text.find("\n    ") + 1);
        if (line == std::string::npos) return "";
        text.erase(line, text.find_first_of("\n}", line + 5) - line);
        return name + " ";
    }
    if (entries.empty()) return "";
    const size_t at = oneOf(random, entries);
    const std::string entry = isClass ? fill(faultyFields) : "fx " + fill(faultyComponents);
    const bool isOptional = !isClass && !isInChoice(text, at) && random.chance(70) &&
                            entry.find("DEFAULT") == std::string::npos;
    text.insert(at, "\n    , " + entry + (isOptional ? " OPTIONAL" : ""));
    return entry;
}

} // namespace

void plantFault(Project& project, Random& random) {
    project.isFaulty = true;
    for (int tries = 0; tries < 100 && project.mark.empty(); ++tries) {
        Definition& definition = oneOf(random, project.definitions);
        if (definition.parameterized) continue; // it is found where it is used
        project.faulty = definition.name;
        const int how = random.below(100);
        if (how >= 25) {
            project.mark = plantIn(project, random, definition.name, definition.text);
        } else if (how >= 8) {
            project.mark = takeOtherName(project, random, definition.text);
        } else { // anything less; it does not show here
            definition.text = oneOf(random, smallerTexts(definition.text));
            project.faulty = "";
            return;
        }
    }
}

} // namespace orvo::meta
