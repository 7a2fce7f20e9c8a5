// Invariants: option records are evaluated in the order of their numbers, so the last valid
// occurrence of an option wins. A rejected record has kind 0; within one evaluation it is reported
// once.

#include "options/orvoopt_glb.h"

#include <algorithm>
#include <cstdio>
#include <unordered_set>

#include "diag/orvoerr.h"
#include "driver/orvofil.h"
#include "driver/orvofil_fix.h"
#include "options/orvoopt.h"
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
    std::fwrite(text.data(), 1, text.size(), stderr);
    ++module->nbWarnings;
}

/// What checkGlobalOptions carries through its passes.
struct Evaluation {
    ModuleRec* module;
    uint32_t& rejectedKinds;
    uint32_t line;
    std::unordered_set<uint32_t> rejected = {}; // record numbers

    void reject(TedNr record, std::string_view text) {
        rejected.insert(record.nr);
        markInvOpt(module, record, rejectedKinds, text, line);
    }
};

void warnInconsistentPrefixLen(ModuleRec* module) {
    warn(module, "\nWARNING : Inconsistent PREFIXLEN option values for different modules."
                 "\n          Check option files and ASN.1 module definition files and"
                 "\n          delete all the PREFIXLEN options. Give only the highest"
                 "\n          option value once for ORVO on the command line or in one"
                 "\n          option file.\n");
}

void evaluatePass1(Evaluation& ev, OptRange range) {
    const uint8_t& prefixLen = ev.module->options.prefixLen;
    bool differs = false;
    forEachTedRec(range, [&](TedNr record) {
        readRec(ev.module, record);
        if (tedRec.tedKind == TED_REJECTED) return;
        const std::string_view option = tedText(ev.module);
        if (!pass1GlobalOptionOK(ev.module, option)) {
            ev.reject(record, getStri(ev.module, tedRec.text));
        } else if (option.starts_with("PREFIXLEN=")) {
            if (run.firstPrefixLen == 0) run.firstPrefixLen = prefixLen;
            differs |= prefixLen != run.firstPrefixLen;
        }
    });
    if (differs) warnInconsistentPrefixLen(ev.module);
}

void evaluatePass2(Evaluation& ev, OptRange range) {
    forEachTedRec(range, [&](TedNr record) {
        readRec(ev.module, record);
        if (tedRec.tedKind == TED_REJECTED) return;
        const std::string_view stored = getStri(ev.module, tedRec.text);
        if (!pass2GlobalOptionOK(ev.module, tedText(ev.module))) ev.reject(record, stored);
    });
}

void evaluatePass3(Evaluation& ev, OptRange range) {
    bool inScope = true;
    forEachTedRec(range, [&](TedNr record) {
        if (ev.rejected.contains(record.nr)) return;
        readRec(ev.module, record);
        const std::string_view stored = getStri(ev.module, tedRec.text);
        const std::string_view option = tedText(ev.module);
        if (!pass3GlobalOptionOK(ev.module, record, tedRec.tedKind, option, inScope))
            ev.reject(record, stored);
    });
}

/// Checks the value of an option with the check of its row.
bool checkRow(const GlbOption& row, ModuleRec* module, TedNr record, std::string_view text) {
    const OptUse use{module->options, module, record};
    return row.check(use, row, text.substr(row.name.size()));
}

/// One option of one of the first two passes; options of other passes are no concern of theirs.
bool checkIfOfStage(OptStage stage, ModuleRec* module, std::string_view text) {
    const GlbOption* row = findGlbOption(text);
    return row == nullptr || row->stage != stage || checkRow(*row, module, {}, text);
}

} // namespace

void checkGlobalOptions(ModuleRec* module, uint32_t& rejectedKinds, OptRange range, uint32_t line) {
    Evaluation ev{module, rejectedKinds, line};
    evaluatePass1(ev, range);
    evaluatePass2(ev, range);
    evaluatePass3(ev, range);
    if (!ev.rejected.empty()) std::fputc('\n', stderr);
}

bool pass1GlobalOptionOK(ModuleRec* module, std::string_view text) {
    return checkIfOfStage(OptStage::Pass1, module, text);
}
bool pass2GlobalOptionOK(ModuleRec* module, std::string_view text) {
    return checkIfOfStage(OptStage::Pass2, module, text);
}

bool pass3GlobalOptionOK(ModuleRec* module, TedNr record, uint8_t kind, std::string_view text,
                         bool& inScope) {
    // Scope markers never fail: one that is lost would move the options behind it to other modules.
    switch (scopeMark(text)) {
    case ScopeMark::Begin:
        inScope = moduleIsInScopeList(module, text.substr(text.find('=') + 1));
        return true;
    case ScopeMark::End: inScope = true; return true;
    case ScopeMark::None: break;
    }
    if (!inScope) return true;
    if (kind == TED_REJECTED || kind == TED_CODE) return false;

    const GlbOption* row = findGlbOption(text);
    if (row != nullptr && row->stage == OptStage::Startup)
        return checkRow(*row, module, record, text);
    if (row != nullptr && (row->stage == OptStage::Pass1 || row->stage == OptStage::Pass2))
        return true;
    if (row != nullptr && row->stage == OptStage::Any) return checkRow(*row, module, record, text);
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals + 1 == text.size()) return isRCSKeyWord(text);
    if (kind == TED_BEO) return true;
    if (row == nullptr || kind != TED_OPTION) return isRCSKeyWord(text);
    return checkRow(*row, module, record, text);
}

void markInvOpt(ModuleRec* module, TedNr record, uint32_t& rejectedKinds, std::string_view text,
                uint32_t line) {
    constexpr size_t shownLength = 50;
    readRec(module, record);
    rejectedKinds |= 1U << tedRec.tedKind;
    tedRec.tedKind = TED_REJECTED;
    writeRec(module, record);
    if (warningsShown()) {
        const std::string shown =
            concat("\nWARNING : Option ignored: ", text.substr(0, shownLength), "\n");
        std::fwrite(shown.data(), 1, shown.size(), stderr);
    }
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
    constexpr size_t maxReference = 128;
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

    std::string reference(parts[0].substr(0, maxReference));
    std::ranges::replace(reference, '-', '_');
    const std::string_view file = checkPrefixOptionPart(module, "file prefix", parts[1], true);
    const std::string_view generation =
        checkPrefixOptionPart(module, "generation prefix", parts[2], ownGeneration);
    ModRefList& table = module->options.prefixTable;
    ModRef* ref = findPicRec(table, reference);
    if (ref == nullptr) ref = createPicRec(table, reference);
    ref->module = findOrCreateModRec(file, generation, reference);
    return true;
}

bool isRCSKeyWord(std::string_view text) {
    constexpr std::string_view rcsMagic[] = {"AUTHOR", "DATE",    "HEADER",   "ID",     "LOCKER",
                                             "LOG",    "RCSFILE", "REVISION", "SOURCE", "STATE"};
    const std::string_view word = text.substr(0, text.find(':'));
    return text.empty() || std::ranges::find(rcsMagic, word) != std::end(rcsMagic);
}

} // namespace orvo
