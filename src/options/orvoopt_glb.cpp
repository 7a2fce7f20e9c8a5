// Invariants: option records are evaluated in the order of their numbers, so the last valid
// occurrence of an option wins. A rejected record has kind 0; within one evaluation it is reported
// once.

#include "options/orvoopt_glb.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "diag/orvoerr.h"
#include "driver/orvofil.h"
#include "driver/orvofil_fix.h"
#include "lex/orvotok.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "util/ascii.h"
#include "util/text.h"

namespace orvo {
namespace {

/// Warnings about options are shown; only then they are counted.
bool warningsShown() {
    return run.verboseEx >= 2;
}
void warn(ModuleRec* module, std::string_view text) {
    if (!warningsShown()) return;
    put(stderr, text);
    ++module->nbWarnings;
}

/// An option record under evaluation.
struct OptionEntry {
    TedNr record;
    uint8_t kind; // TED_REJECTED: was so before the evaluation
    std::string_view stored;
    const GlbOption* row; // null for an unknown one
    bool rejected = false;

    std::string_view text() const { return stored.substr(stored.empty() ? 0 : 1); }
    bool isOf(OptStage stage) const {
        return kind != TED_REJECTED && !rejected && row != nullptr && row->stage == stage;
    }
};

/// What checkGlobalOptions carries through its passes.
struct Evaluation {
    ModuleRec* module;
    uint32_t& rejectedKinds;
    uint32_t line;
    std::vector<OptionEntry> entries = {};
    bool anyRejected = false;

    void reject(OptionEntry& entry) {
        entry.rejected = anyRejected = true;
        markInvOpt(module, entry.record, rejectedKinds, entry.stored, line);
    }
};

void collectEntries(Evaluation& ev, OptRange range) {
    forEachTedRec(range, [&ev](TedNr record) {
        readRec(ev.module, record);
        OptionEntry entry{record, tedRec.tedKind, getStri(ev.module, tedRec.text), nullptr};
        entry.row = findGlbOption(entry.text());
        ev.entries.push_back(entry);
    });
}

/// Checks the value of an option with the check of its row.
bool checkRow(const Evaluation& ev, const OptionEntry& entry) {
    const OptUse use{ev.module->options, ev.module, entry.record};
    return entry.row->check(use, *entry.row, entry.text().substr(entry.row->name.size()));
}

// ---- PREFIXLEN= ---------------------------------------------------------------------------------

void warnInconsistentPrefixLen(ModuleRec* module) {
    warn(module, "\nWARNING : Inconsistent PREFIXLEN option values for different modules."
                 "\n          Check option files and ASN.1 module definition files and"
                 "\n          delete all the PREFIXLEN options. Give only the highest"
                 "\n          option value once for ORVO on the command line or in one"
                 "\n          option file.\n");
}

void evaluatePass1(Evaluation& ev) {
    const uint8_t& prefixLen = ev.module->options.prefixLen;
    bool differs = false;
    for (OptionEntry& entry : ev.entries) {
        if (!entry.isOf(OptStage::Pass1)) continue;
        if (!checkRow(ev, entry)) {
            ev.reject(entry);
            continue;
        }
        if (run.firstPrefixLen == 0) run.firstPrefixLen = prefixLen;
        differs |= prefixLen != run.firstPrefixLen;
    }
    if (differs) warnInconsistentPrefixLen(ev.module);
}

// ---- PREFIX= ------------------------------------------------------------------------------------

bool isComment(const OptionEntry& entry) {
    return entry.stored.starts_with('$');
}

void evaluatePrefixes(Evaluation& ev, std::span<OptionEntry> entries) {
    for (OptionEntry& entry : entries)
        if (entry.isOf(OptStage::Pass2) && !checkRow(ev, entry)) ev.reject(entry);
}

/// The same PREFIX= options with the same PREFIXLEN= lead to the same modules, once the first
/// module on the list has its prefix: until then it may claim one (driver/orvofil).
bool firstModuleIsSettled() {
    return run.bOfModRList == nullptr || !run.bOfModRList->filePrefix.empty();
}

/// Evaluates the PREFIX= options of the command line, or takes over what they mapped for the module
/// before.
void evaluateSharedPrefixes(Evaluation& ev, std::span<OptionEntry> entries) {
    OptionBlock& block = ev.module->options;
    SharedPrefixes& shared = run.sharedPrefixes;
    std::vector<const char*> texts;
    for (const OptionEntry& entry : entries)
        if (entry.isOf(OptStage::Pass2)) texts.push_back(entry.stored.data());
    if (texts.empty()) return;
    if (shared.prefixLen == block.prefixLen && shared.options == texts) {
        block.sharedPrefixes = shared.modules;
        return;
    }
    const bool settled = firstModuleIsSettled();
    const int32_t warningsBefore = ev.module->nbWarnings;
    PrefixMap own = std::exchange(block.prefixes, {});
    evaluatePrefixes(ev, entries);
    std::swap(own, block.prefixes);
    if (shared.modules == nullptr || *shared.modules != own)
        shared.modules = std::make_shared<const PrefixMap>(std::move(own));
    block.sharedPrefixes = shared.modules;
    // What is said of the options is said for each module.
    if (!settled || ev.module->nbWarnings != warningsBefore) texts.clear();
    shared.prefixLen = block.prefixLen;
    shared.options = std::move(texts);
}

/// The comments of the module stand in front of the command line.
void evaluatePass2(Evaluation& ev) {
    const std::span<OptionEntry> all(ev.entries);
    const auto lastComment = std::find_if(all.rbegin(), all.rend(), isComment);
    const auto comments = static_cast<size_t>(lastComment.base() - all.begin());
    evaluatePrefixes(ev, all.first(comments));
    evaluateSharedPrefixes(ev, all.subspan(comments));
}

// ---- all others ---------------------------------------------------------------------------------

/// An option in scope that is no scope mark.
bool isValid(const Evaluation& ev, const OptionEntry& entry) {
    if (entry.kind == TED_REJECTED || entry.kind == TED_CODE) return false;
    const std::string_view text = entry.text();
    const size_t equals = text.find('=');
    const bool hasValue = equals != std::string_view::npos && equals + 1 != text.size();
    switch (entry.row != nullptr ? entry.row->stage : OptStage::Value) {
    case OptStage::Startup:
    case OptStage::Any: return checkRow(ev, entry);
    case OptStage::Pass1:
    case OptStage::Pass2: return true;
    case OptStage::Scope:
    case OptStage::Value: break;
    }
    if (hasValue && entry.kind == TED_BEO) return true;
    if (!hasValue || entry.row == nullptr || entry.kind != TED_OPTION) return isRCSKeyWord(text);
    return checkRow(ev, entry);
}

/// Scope markers never fail: one that is lost would move the options behind it to other modules.
void evaluatePass3(Evaluation& ev) {
    bool inScope = true;
    for (OptionEntry& entry : ev.entries) {
        if (entry.rejected) continue;
        const std::string_view text = entry.text();
        switch (scopeMark(text)) {
        case ScopeMark::Begin:
            inScope = moduleIsInScopeList(ev.module, text.substr(text.find('=') + 1));
            break;
        case ScopeMark::End: inScope = true; break;
        case ScopeMark::None:
            if (inScope && !isValid(ev, entry)) ev.reject(entry);
            break;
        }
    }
}

} // namespace

void checkGlobalOptions(ModuleRec* module, uint32_t& rejectedKinds, OptRange range, uint32_t line) {
    Evaluation ev{module, rejectedKinds, line};
    collectEntries(ev, range);
    evaluatePass1(ev);
    evaluatePass2(ev);
    evaluatePass3(ev);
    if (ev.anyRejected) std::fputc('\n', stderr);
}

void markInvOpt(ModuleRec* module, TedNr record, uint32_t& rejectedKinds, std::string_view text,
                uint32_t line) {
    constexpr size_t shownLength = 50;
    readRec(module, record);
    rejectedKinds |= 1U << tedRec.tedKind;
    tedRec.tedKind = TED_REJECTED;
    writeRec(module, record);
    if (warningsShown())
        put(stderr, concat("\nWARNING : Option ignored: ", text.substr(0, shownLength), "\n"));
    recordError(module, ERR_WARNING, Msg::OptionsIgnored, line, text);
}

ScopeMark scopeMark(std::string_view text) {
    if (startsNoCase(text, "BEGIN-SCOPE=")) return ScopeMark::Begin;
    const bool isEnd = equalNoCase(text.substr(0, text.find('=')), "END-SCOPE");
    return isEnd ? ScopeMark::End : ScopeMark::None;
}

bool moduleIsInScopeList(const ModuleRec* module, std::string_view list) {
    const std::string prefix =
        module->filePrefix.empty() ? str2prefix(module->moduleName) : module->filePrefix;
    while (true) {
        const size_t end = list.find(':');
        if (list.substr(0, end) == prefix) return true;
        if (end == std::string_view::npos) return false;
        list.remove_prefix(end + 1);
    }
}

std::string_view checkPrefixOptionPart(ModuleRec* module, std::string_view what,
                                       std::string_view part, bool warnOfCut) {
    const size_t limit = module->options.prefixLen;
    if (part.size() <= limit) return part;
    if (warnOfCut) {
        const std::string number = std::to_string(limit);
        warn(module, concat("\nWARNING : A ", what, " '", part, "' is longer than ", number,
                            " characters.\n", "          Truncating it to ", number,
                            " characters.\n", "          Check value of the PREFIXLEN option.\n"));
    }
    return part.substr(0, limit);
}

bool prefixOptOK(ModuleRec* module, std::string_view value) {
    std::string_view parts[3]; // module reference, file prefix, generation prefix
    size_t count = 0;
    for (bool more = true; more; ++count) {
        if (count == std::size(parts)) return false;
        parts[count] = value.substr(0, spanOfName(value, count == 0 ? "-" : "-_"));
        value.remove_prefix(parts[count].size());
        more = value.starts_with(':');
        if (more)
            value.remove_prefix(1);
        else if (!value.empty())
            return false;
    }
    if (parts[0].empty() || !isUpper(parts[0][0])) return false;
    if (parts[1].empty()) parts[1] = parts[0];
    const bool ownGeneration = !parts[2].empty();
    if (!ownGeneration) parts[2] = parts[1];

    const std::string reference =
        convertHyphens(std::string(parts[0].substr(0, maxIdentifierLength)));
    const std::string_view file = checkPrefixOptionPart(module, "file prefix", parts[1], true);
    const std::string_view generation =
        checkPrefixOptionPart(module, "generation prefix", parts[2], ownGeneration);
    module->options.prefixes[reference] = findOrCreateModRec(file, generation, reference);
    return true;
}

ModuleRec* mappedModule(const OptionBlock& options, std::string_view reference) {
    const std::string key(reference);
    for (const PrefixMap* map : {options.sharedPrefixes.get(), &options.prefixes}) {
        if (map == nullptr) continue;
        const auto found = map->find(key);
        if (found != map->end()) return found->second;
    }
    return nullptr;
}

bool isRCSKeyWord(std::string_view text) {
    constexpr std::string_view rcsMagic[] = {"AUTHOR", "DATE",    "HEADER",   "ID",     "LOCKER",
                                             "LOG",    "RCSFILE", "REVISION", "SOURCE", "STATE"};
    const std::string_view word = text.substr(0, text.find(':'));
    return text.empty() || std::ranges::find(rcsMagic, word) != std::end(rcsMagic);
}

} // namespace orvo
