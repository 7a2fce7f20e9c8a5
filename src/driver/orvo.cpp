// The run is a fixed sequence: each pass goes over the built-in module, silently, and then over
// every user module in list order, before the next pass begins. Pass 1 follows the list as it
// grows, since imports append to it. Between the passes no record is pending: every pass ends with
// a flush, so the current module is simply set.

#include "driver/orvo.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "check/p5objset.h"
#include "check/p5typ.h"
#include "check/p5val.h"
#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "diag/orvoerr_hello.h"
#include "diag/orvoerr_list.h"
#include "diag/orvozov.h"
#include "diag/timing.h"
#include "driver/orvo_pass4.h"
#include "driver/orvofil.h"
#include "driver/orvofil_stx.h"
#include "options/orvoopt.h"
#include "options/orvovar.h"
#include "parser/iso8824.h"
#include "parser/parser.h"
#include "solve/solve.h"
#include "solve/solve_macro.h"
#include "solve/solve_pass3.h"
#include "symtab/orvosym_imp.h"
#include "symtab/orvosym_list.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr int allKinds = -1;

/// Calls fn for every user module, as the current one. The list may grow meanwhile.
template <typename Fn> void forEachModule(Fn&& fn) {
    for (cMP = run.bOfModRList; cMP != nullptr; cMP = cMP->next) fn();
}

bool hasErrors(const ModuleRec& module) {
    return module.nbStxErrors != 0 || module.nbSemErrors != 0;
}

// ---- start --------------------------------------------------------------------------------------

void initGlobVars() {
    getTimeStamp(run.timeStamp);
    run.verbose = VERBOSE_NORMAL;
    appendModuleRec(newModuleRec());
    run.iso8824MP = newModuleRec();
    run.iso8824MP->filePrefix = run.iso8824MP->generationPrefix = "iso8824";
}

/// Names of a module that was not named first on the command line. A file that is named there but
/// which no module reference leads to goes by its own name when the run goes on.
void setFileNames(std::string_view namedSource, std::string_view namedListing) {
    if (cMP->filePrefix.empty() && run.keepGoing && cMP->named) {
        cMP->options.sourceFileName = namedSource;
        cMP->options.listingFileName = namedListing;
        return;
    }
    if (cMP->filePrefix.empty())
        fatalError(Fatal::NoFileName,
                   "Check options PREFIXLEN and PREFIX or use the KAVRIMOL tool.");
    const std::string& prefix = cMP->filePrefix;
    newStriVal(cMP->options.sourceFileName, "", prefix.size(), prefix, ".asn");
    newStriVal(cMP->options.listingFileName, "", prefix.size(), prefix, ".lst");
}

void printFileNames() {
    if (!progressShown()) return;
    const OptionBlock& options = cMP->options;
    if (run.verbose == VERBOSE_NORMAL) {
        printProgress(concat("source file  : ", options.sourceFileName));
        printProgress(concat("listing file : ", options.listingFileName));
    } else {
        printProgress(concat(" ", options.sourceDir, options.sourceFileName));
    }
}

/// The current module is known by its name alone, and has no file.
bool lacksFile() {
    return run.keepGoing && !cMP->named &&
           !sourceExists(run.asnSearchPath, cMP->options.sourceFileName);
}

void initUserModule(int argc, char** argv) {
    const std::string source = cMP->options.sourceFileName;
    const std::string listing = cMP->options.listingFileName;
    initMetaRec(cMP->options);
    if (run.nrOfModules == 0) {
        parseCmdLineParams(argc, argv);
        if (run.verbose == VERBOSE_NORMAL) {
            sayHello(stdout, run.timeStamp.version, orvoPatch);
            printNotice(stdout, run.timeStamp);
            std::fputc('\n', stdout);
        }
    } else {
        setFileNames(source, listing);
        cMP->missing = lacksFile();
        if (cMP->missing) return;
    }
    if (run.nrOfModules < std::numeric_limits<int16_t>::max()) ++run.nrOfModules;
    printFileNames();
}

/// Everything that pass 1 collects starts empty.
void clearPass1Fields(ModuleRec& module) {
    std::ranges::fill(module.nextRecNr, 1U);
    module.firstTypeHead = module.lastTypeHead = {};
    module.firstValueHead = module.lastValueHead = {};
    module.firstDefVal = module.lastDefVal = {};
    module.symTab = {};
    module.exportsState = module.importsState = 0;
    module.nbStxErrors = module.nbSemErrors = module.nbSymErrors = module.nbWarnings = 0;
    module.automaticTags = module.extensibilityImplied = module.otherInstructions = false;
    module.macros.clear();
    module.macroUses.clear();
    module.governorTexts.clear();
    module.tagDefault = 1;
}

void initPass1Vars(int argc, char** argv, bool builtIn) {
    if (builtIn)
        initMetaRec(cMP->options);
    else
        initUserModule(argc, argv);
    clearPass1Fields(*cMP);
    cMP->newNotation = builtIn ? run.anyNewNotation : run.editionFromStart == 2021;
    cMP->options.lenient = !builtIn && run.lenientFromStart;
    run.anyNewNotation |= cMP->newNotation;
}

// ---- the built-in module ------------------------------------------------------------------------

/// Any diagnostic about the built-in module is a defect of the compiler itself.
void checkInternal(std::string_view detail) {
    if (!hasErrors(*cMP) && cMP->nbWarnings == 0) return;
    printListing(stderr, true, nullptr, iso8824State.iso8824Module);
    fatalError(Fatal::Internal, detail);
}

void parseInternal() {
    constexpr std::string_view detail = "Parsing of ISO8824";
    cMP = run.iso8824MP;
    {
        const Timed timed(Phase::Pass1);
        Restore<uint8_t> quiet(run.verbose, VERBOSE_NONE);
        initPass1Vars(0, nullptr, true);
        initAnyPassVars();
        parseISO8824();
        flushRecs(allKinds);
    }
    checkInternal(detail);
}

void passInternal(void (*pass)(), Phase phase, std::string_view detail) {
    cMP = run.iso8824MP;
    if (cMP->parseState == PARSE_OK) {
        const Timed timed(phase);
        Restore<uint8_t> quiet(run.verbose, VERBOSE_NONE);
        initAnyPassVars();
        pass();
        flushRecs(allKinds);
    }
    checkInternal(detail);
}

void passFive();

void solveRefs1Internal() {
    passInternal(solveRefs1, Phase::Pass2, "First solving pass for ISO8824");
}
void solveRefs2Internal() {
    passInternal(solveRefs2, Phase::Pass3, "Second solving pass for ISO8824");
}
void passFourInternal() {
    passInternal(passFour, Phase::Pass4, "Pass four for ISO8824");
}
// Errors of the earlier passes have ended the run: the built-in module is free of them here.
void passFiveInternal() {
    passInternal(passFive, Phase::Pass5, "Pass five for ISO8824");
}

// ---- the passes over the user modules -----------------------------------------------------------

void passOne(int argc, char** argv) {
    forEachModule([argc, argv] {
        const Timed timed(Phase::Pass1);
        initPass1Vars(argc, argv, false);
        if (cMP->missing) return;
        initAnyPassVars();
        OptionBlock& options = cMP->options;
        cMP->srcFile = fopenTextFileInSearchPathForRd(run.asnSearchPath, options.sourceFileName,
                                                      options.sourceDir);
        options.sourceDirKnown = true;
        parse(argc, argv);
        closeFile(cMP->srcFile, "Source file");
        flushRecs(allKinds);
    });
}

// ---- KEEP-GOING= --------------------------------------------------------------------------------
//
// A module that has an error, or refers to one that is out, is out. What refers to nothing that is
// out can be checked and written: pass 5 goes from a module where its references lead, and no
// further. References on demand (ModRef state 0) say nothing of their own: they follow the others,
// or lead from the instances of a definition to who made them, which only he looks at.

/// The modules of the files that the command line names, by name.
using LooseModules = std::unordered_map<std::string, ModuleRec*>;

LooseModules looseModules() {
    LooseModules loose;
    forEachModule([&loose] {
        if (cMP->named && !cMP->missing) loose.try_emplace(cMP->moduleName, cMP);
    });
    return loose;
}

/// A reference of the current module, which was to lead to `target`.
void settleReference(ModRef& ref, ModuleRec* target, const LooseModules& loose) {
    const auto found = loose.find(ref.name);
    if (!target->missing) {
        if (ref.module == nullptr)
            recordError(cMP, ERR_SEMANTIC, Msg::CheckFilePrefixes, ref.line, ref.name);
        else if (target->parseState == PARSE_ERROR)
            markUnread(ref);
    } else if (found != loose.end() && found->second != cMP &&
               !cMP->modRefs.byModule.contains(found->second)) {
        changeTarget(cMP, ref, found->second);
        if (found->second->parseState == PARSE_ERROR) markUnread(ref);
    } else {
        recordError(cMP, ERR_SEMANTIC, Msg::ModuleFileNotFound, ref.line,
                    concat(ref.name, " (", target->options.sourceFileName, ")"));
        markUnread(ref);
        dropTarget(cMP, ref);
    }
}

/// Modules without a file are reported where they are referred to, and leave the list.
void settleMissingModules() {
    const LooseModules loose = looseModules();
    std::unordered_set<const ModuleRec*> referred;
    forEachModule([&] {
        for (ModRef* ref = cMP->modRefs.modRefFirst; ref != nullptr; ref = ref->next) {
            ModuleRec* const target = ref->module != nullptr ? ref->module : ref->dropped;
            if (target == nullptr || target == cMP) continue;
            referred.insert(target);
            settleReference(*ref, target, loose);
        }
    });
    ModuleRec* last = nullptr;
    forEachModule([&] {
        if (!cMP->missing) {
            last = cMP;
            return;
        }
        if (!referred.contains(cMP)) fatalError(Fatal::OpenRead, cMP->options.sourceFileName);
        assert(last != nullptr); // the first module is always there
        last->next = cMP->next;
    });
    run.eOfModRList = last;
}

/// Takes the modules out that have errors, and all that refer to them.
void markOut() {
    std::unordered_map<const ModuleRec*, std::vector<ModuleRec*>> users;
    std::vector<ModuleRec*> pending;
    forEachModule([&] {
        for (const ModRef* ref = cMP->modRefs.modRefFirst; ref != nullptr; ref = ref->next) {
            const ModuleRec* target = ref->module != nullptr ? ref->module : ref->dropped;
            if (ref->state != 0 && target != nullptr) users[target].push_back(cMP);
        }
        if (cMP->nbStxErrors == 0) cMP->nbSymErrors = countUndefined(); // as the listing has them
        if (cMP->parseState != PARSE_OK || hasErrors(*cMP) || cMP->nbSymErrors != 0)
            pending.push_back(cMP);
    });
    while (!pending.empty()) {
        ModuleRec* const module = pending.back();
        pending.pop_back();
        if (std::exchange(module->out, true)) continue;
        const auto found = users.find(module);
        if (found != users.end())
            pending.insert(pending.end(), found->second.begin(), found->second.end());
    }
}

/// A pass over the modules whose header and body were parsed without a syntax error.
void passOver(void (*pass)(), Phase phase) {
    forEachModule([pass, phase] {
        if (cMP->parseState != PARSE_OK || cMP->out) return;
        const Timed timed(phase);
        initAnyPassVars();
        pass();
        flushRecs(allKinds);
    });
}

void checkTypeAssignments() {
    for ([[maybe_unused]] const TNodeNr nr : chain(cMP, cMP->firstTypeHead))
        if (tNode.formals == 0) static_cast<void>(checkTNode());
}

void checkValueAssignments() {
    for ([[maybe_unused]] const VNodeNr nr : chain(cMP, cMP->firstValueHead)) {
        ModuleRec* governor = getModPtr(cMP, vNode.govTypeMod);
        if (governor != nullptr && vNode.govType != 0) readRec(governor, TNodeNr{vNode.govType});
        if (vNode.formals == 0) static_cast<void>(checkVNode(cMP, true, true));
    }
}

void passFive() {
    if (progressShown())
        printProgress(concat("semantic checking (pass 5) for ", cMP->options.sourceFileName));
    checkTypeAssignments();
    checkValueAssignments();
}

/// Pass 5 follows references into any module, so one faulty module keeps it from all.
bool allModulesSolved() {
    for (const ModuleRec* module = run.bOfModRList; module != nullptr; module = module->next)
        if (module->parseState != PARSE_OK || hasErrors(*module)) return false;
    return true;
}

// ---- listings, trees, summary -------------------------------------------------------------------

void openListing() {
    OptionBlock& options = cMP->options;
    if (!cMP->isStream)
        cMP->srcFile = fopenTextFileInSearchPathForRd(run.asnSearchPath, options.sourceFileName,
                                                      options.sourceDir);
    cMP->lstFile = fopenTextFile(run.lstDir, options.listingFileName, "w");
    sayHello(cMP->lstFile, run.timeStamp.version, orvoPatch);
    printNotice(cMP->lstFile, run.timeStamp);
    std::fputc('\n', cMP->lstFile);
}

void printModuleResult(bool failed) {
    if (!progressShown()) return;
    const char* result = failed                 ? "errors found - no tree output"
                         : cMP->out             ? "not checked - no tree output"
                         : cMP->nbWarnings != 0 ? "ok with warnings"
                                                : "ok";
    printProgress(concat("compiler listing for ", cMP->options.sourceFileName, " (", result, ")"));
}

void diagnostics() {
    const Timed timed(Phase::Listing);
    openListing();
    {
        Restore<uint8_t> verbose(run.verbose);
        if (run.verbose != VERBOSE_NONE) run.verbose = VERBOSE_TOOL;
        printListing(cMP->lstFile, cMP->options.list, cMP->srcFile, cMP->streamText);
    }
    if (cMP->nbStxErrors == 0) printSymTab(cMP->nbSymErrors);
    const bool failed = hasErrors(*cMP) || cMP->nbSymErrors != 0;
    printModuleResult(failed);
    sayBye(cMP->lstFile, cMP->nbStxErrors, cMP->nbSemErrors, cMP->nbSymErrors, cMP->nbWarnings);
    closeFile(cMP->srcFile, "Source file");
    closeFile(cMP->lstFile, "Listing file");
    if (!failed && !cMP->out) writeTree(cMP);
    run.totalNbStxErrors += cMP->nbStxErrors;
    run.totalNbSemErrors += cMP->nbSemErrors;
    run.totalNbSymErrors += cMP->nbSymErrors;
    run.totalNbWarnings += cMP->nbWarnings;
}

bool runFailed() {
    return run.totalNbStxErrors != 0 || run.totalNbSemErrors != 0 || run.totalNbSymErrors != 0;
}

int compilationSummary() {
    if (run.verbose == VERBOSE_NORMAL || (run.verbose == VERBOSE_NONE && runFailed())) {
        if (run.nrOfModules > 1) std::fputs("Total errors:\n", stdout);
        sayBye(stdout, run.totalNbStxErrors, run.totalNbSemErrors, run.totalNbSymErrors,
               run.totalNbWarnings);
    }
    return runFailed() ? 1 : 0;
}

void initZOV() {
    run.isZOV = zovIsActive();
    if (!run.isZOV) return;
    zovSummaryOpenFile();
    zovSummaryBeginBlock("Message");
}

void compilationSummaryForZOV() {
    if (!run.isZOV) return;
    zovSummaryBeginBlock("Summary");
    summaryForZOV(run.totalNbStxErrors, run.totalNbSemErrors, run.totalNbSymErrors,
                  run.totalNbWarnings);
    zovSummaryCloseFile();
}

/// Writes the type list for the integrated environment: "Module.Type" for every type assignment of
/// every user module. The environment offers the listed types as top-level types, so parameterized
/// ones, sets and classes are left out.
void zovCreateTypeList() {
    std::FILE* file = zovOpenTextFile(".atl", "w");
    for (ModuleRec* module = run.bOfModRList; module != nullptr; module = module->next) {
        CurrentModule current(module);
        forEachTNodeByMod(module, module->firstTypeHead, [&] {
            if (tNode.formals != 0 || !isTypeTNode()) return;
            std::string line = concat(module->moduleName, ".", getStri(module, tNode.name), "\n");
            std::ranges::replace(line, '_', '-');
            put(file, line);
        });
    }
    closeFile(file, "Type list file");
}

void typeListForZOV() {
    if (run.isZOV && !runFailed()) zovCreateTypeList();
}

} // namespace

int orvo_main(int argc, char** argv) {
    initGlobVars();
    passOne(argc, argv);
    if (run.keepGoing) settleMissingModules();
    parseInternal(); // the notation of the modules decides which kinds it has
    solveRefs1Internal();
    if (run.anyNewNotation) {
        passOver(settleMacroTypes, Phase::Pass1);
        passOver(settleMacros, Phase::Pass1);
    }
    passOver(solveRefs1, Phase::Pass2);
    if (run.anyNewNotation) passOver(governMacroReferences, Phase::Pass2);
    solveRefs2Internal();
    passOver(solveRefs2, Phase::Pass3);
    passFourInternal();
    passOver(passFour, Phase::Pass4);
    passFiveInternal();
    if (run.keepGoing) markOut();
    if (run.keepGoing || allModulesSolved()) {
        run.checking = run.keepGoing;
        const Timed timed(Phase::Pass5);
        passOver(passFive, Phase::Pass5);
        markListElements();
        markIgnorables();
        checkUniqueFields();
        flushRecs(allKinds);
        run.checking = false;
        if (run.keepGoing) markOut();
    }
    initZOV();
    forEachModule(diagnostics);
    if (run.clean) removeEarlierTrees();
    const int status = compilationSummary();
    compilationSummaryForZOV();
    typeListForZOV();
    if (timingState.on) printTiming(stderr);
    return status;
}

} // namespace orvo
