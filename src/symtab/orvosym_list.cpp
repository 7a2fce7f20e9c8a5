// The cross-reference: undefined symbols, then the defined types and values, each with where it
// comes from and where it is used.
//
// Invariants: the symbols of all tables are collected and sorted once; symbols of one name keep the
// order own table, then references in order. Anonymous symbols (of named numbers) are not listed.

#include "symtab/orvosym_list.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "diag/orvozov.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "util/text.h"

namespace orvo {

namespace {

struct Listed {
    uint64_t begin = 0; // the first characters of the name, as a number: most names differ there
    std::string_view name;
    const ModRef* ref = nullptr; // null: the own table
    STabNr symbol;
    bool isValue = false, defined = false;
};

/// Uses that fit on one line of the listing.
constexpr size_t usesPerLine = 10;

/// Macros, and what they define without a value to be read, are symbols that nothing else may name.
bool isMacro(std::string_view name, const ModRef* ref) {
    if (cMP->macros.contains(name)) return true;
    return ref != nullptr && ref->module != nullptr && ref->module->macros.contains(name);
}

uint64_t beginOf(std::string_view name) {
    uint64_t begin = 0;
    for (size_t i = 0; i < sizeof begin; ++i)
        begin = begin << 8 | (i < name.size() ? static_cast<uint8_t>(name[i]) : 0U);
    return begin;
}

void collect(const SymTab& table, const ModRef* ref, std::vector<Listed>& symbols) {
    for (STabNr nr = table.first; nr; nr = STabNr{symAt(nr).next}) {
        const STabRec& symbol = symAt(nr);
        if (symbol.name == 0) continue;
        const std::string_view name = getStri(cMP, symbol.name);
        if (symbol.node == 0 && symbol.needed == 0 && isMacro(name, ref)) continue;
        symbols.push_back({beginOf(name), name, ref, nr, symbol.name < 0,
                           symbol.node != 0 || symbol.unread != 0});
    }
}

std::vector<Listed> allSymbols() {
    std::vector<Listed> symbols;
    collect(cMP->symTab, nullptr, symbols);
    for (const ModRef* ref = cMP->modRefs.modRefFirst; ref != nullptr; ref = ref->next)
        collect(ref->symbols, ref, symbols);
    return symbols;
}

std::vector<Listed> sortedSymbols() {
    std::vector<Listed> symbols = allSymbols();
    std::ranges::stable_sort(symbols, [](const Listed& a, const Listed& b) {
        return a.begin != b.begin ? a.begin < b.begin : a.name < b.name;
    });
    return symbols;
}

/// A line number, at least five characters wide.
void appendLine(std::string& text, uint32_t line) {
    char digits[16];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), line).ptr;
    const auto length = static_cast<size_t>(end - digits);
    if (length < 5) text.append(5 - length, ' ');
    text.append(digits, length);
}

void appendUses(std::string& text, const std::vector<uint32_t>& uses) {
    text += " usage     :\n";
    if (uses.empty()) {
        text += "   not used\n";
        return;
    }
    text += "   line";
    for (size_t i = 0; i < uses.size(); ++i) {
        if (i != 0 && i % usesPerLine == 0) text += "\n       ";
        text += ' ';
        appendLine(text, uses[i]);
    }
    text += '\n';
}

/// Tells the user of an undefined symbol, once per use.
void reportUndefined(const Listed& listed, const std::vector<uint32_t>& uses) {
    const OptionBlock& options = cMP->options;
    if (zovIsActive()) {
        zovSummaryWarning(options.sourceDir, options.sourceFileName,
                          uses.empty() ? 0 : static_cast<int>(uses.front()),
                          "Undefined symbol (first use)", listed.name);
    }
    if (run.verbose == VERBOSE_NONE) return;
    std::string text;
    for (const uint32_t line : uses.empty() ? std::vector<uint32_t>{1} : uses) {
        text += options.sourceFileName;
        text += '(' + std::to_string(line) + "): *** ERROR: ";
        text.append(listed.name).append(" undefined\n");
    }
    put(stdout, text);
}

void appendSymbol(std::string& text, const Listed& listed, const std::vector<uint32_t>& uses) {
    const STabRec& symbol = symAt(listed.symbol);
    text.append("\n").append(listed.name);
    if ((symbol.flags & SYM_EXPORTED) != 0)
        text += " exported";
    else if ((symbol.flags & SYM_IMPORTED) != 0)
        text += " imported";
    if (listed.ref != nullptr) {
        text += " from " + listed.ref->name;
        const ModuleRec* module = listed.ref->module;
        if (module != nullptr && module->moduleName != listed.ref->name)
            text += " (" + module->moduleName + ")";
    }
    text += '\n';
    if (listed.defined) {
        text += " definition:\n   line ";
        appendLine(text, symbol.line);
        text += '\n';
    }
    if (cMP->options.xref) appendUses(text, uses);
}

/// One section: its heading and the selected symbols, or the line that says there are none.
void printSTab(const std::vector<Listed>& symbols, bool isValue, bool defined,
               std::string_view heading, std::string_view none) {
    const auto selected = [&](const Listed& listed) {
        return listed.isValue == isValue && listed.defined == defined;
    };
    if (std::ranges::none_of(symbols, selected)) {
        put(cMP->lstFile, none);
        return;
    }
    constexpr size_t chunkSize = 65536;
    std::string text(heading);
    std::vector<uint32_t> uses;
    for (const Listed& listed : symbols) {
        if (!selected(listed)) continue;
        findUses(listed.symbol, uses);
        if (!defined) reportUndefined(listed, uses);
        appendSymbol(text, listed, uses);
        if (text.size() < chunkSize) continue;
        put(cMP->lstFile, text);
        text.clear();
    }
    put(cMP->lstFile, text);
}

} // namespace

int32_t countUndefined() {
    return static_cast<int32_t>(std::ranges::count(allSymbols(), false, &Listed::defined));
}

void printSymTab(int32_t& nbSymErrors) {
    const std::vector<Listed> symbols = sortedSymbols();
    nbSymErrors = static_cast<int32_t>(std::ranges::count(symbols, false, &Listed::defined));
    printSTab(symbols, false, false, "\n*** ERROR - Undefined types:\n",
              "\nNo undefined types detected\n");
    printSTab(symbols, true, false, "\n*** ERROR - Undefined values:\n",
              "\nNo undefined values detected\n");
    if (!cMP->options.xref) return;
    printSTab(symbols, false, true, "\nUSER DEFINED TYPES\n==================\n",
              "\nNo user defined types\n");
    printSTab(symbols, true, true, "\nUSER DEFINED VALUES\n==================\n",
              "\nNo user defined values\n");
}

} // namespace orvo
