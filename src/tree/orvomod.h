#pragma once

// The module record, its option block and the state of the run.

#include <cstdint>
#include <cstdio>
#include <deque>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "diag/orvomsg.h"
#include "lex/orvotok.h"
#include "tree/orvodef.h"
#include "util/flat.h"
#include "util/guard.h"

namespace orvo {

// ---- symbols ------------------------------------------------------------------------------------

/// A list of symbols in order of entry, with its indexes: only the list is walked, only the indexes
/// are searched. symtab/orvosym adds to all of them.
struct SymTab {
    STabNr first, last;
    FlatMap<int32_t, STabNr> byName; // the first symbol of a name
    FlatMap<int32_t, STabNr> byNode; // the first symbol of a definition
    // Own table: the defined names, by the characters of them that count (NAMELEN=).
    std::vector<bool> definedNames;            // shorter ones, by string number
    FlatSet<std::string_view> definedPrefixes; // the others
    uint8_t prefixLen = 0;                     // how many count; 0 = none noted yet
};

/// A module that a module names: by IMPORTS, by an external reference or on demand.
struct ModRef {
    std::string name;    // as the module names it, hyphens stored as "_"
    uint32_t number = 0; // from 2; 1 always means the module itself
    VNodeNr value;       // the assigned identifier given after FROM
    ModuleRec* module = nullptr;
    ModuleRec* dropped = nullptr; // what `module` was, when nothing can be taken from it
    uint8_t state = 0;            // 0 on demand, 1 external reference, 2 IMPORTS
    uint8_t selection = 0;        // 1 WITH SUCCESSORS, 2 WITH DESCENDANTS
    uint32_t line = 0;
    SymTab symbols; // taken from that module
    ModRef* next = nullptr;
};

/// The references of a module in order of creation. Entries never move.
struct ModRefList {
    ModRef* modRefFirst = nullptr;
    ModRef* modRefLast = nullptr;
    std::vector<std::unique_ptr<ModRef>> refs;
    std::unordered_map<std::string, ModRef*> byName;        // the first of a name
    std::unordered_map<const ModuleRec*, ModRef*> byModule; // the first to a module
    std::vector<ModRef*> byNumber;                          // numbers are counted up; null = none
    // Imported symbols of a name with their references, by reference number.
    std::unordered_map<int32_t, std::vector<std::pair<ModRef*, STabNr>>> imported;
};

// ---- options ------------------------------------------------------------------------------------

/// Naming of generated items; the texts are "" when not given. In the ENTRY record fixConv holds
/// the entry value and fixName the name part behind it.
struct FixRec {
    std::string fixPref;
    std::string fixName;
    std::string fixSuff;
    std::string fixConv;       // an optional H (insert "_" between words), then L or U
    std::string fixIdent;      // identifier the record is for; per-identifier records keep its ":"
    uint32_t fixIdentLen = 0;  // characters of it that count
    FixRec* fixNext = nullptr; // next per-identifier record
};
/// The module-wide naming record of a kind and the per-identifier records behind it, in order of
/// entry. Per-identifier records never move. Only the chain is walked, only the index is searched.
struct FixList {
    FixRec head; // head.fixNext is the first per-identifier record
    FixRec* last = nullptr;
    std::vector<std::unique_ptr<FixRec>> records;
    std::unordered_map<std::string, FixRec*> byIdent; // by identifier, hyphens as "_"
};
/// Naming kinds; kind 9 (values in a second role) shares the record of kind 3.
enum FixKind : int {
    FIX_TYPE = 1,
    FIX_CLASS = 2,
    FIX_VALUE = 3,
    FIX_OBJECT = 4,
    FIX_VALUE_SET = 5,
    FIX_OBJECT_SET = 6,
    FIX_COMPONENT = 7,
    FIX_FIELD = 8,
    FIX_VALUE2 = 9,
};

/// The modules that PREFIX= options map, by module reference.
using PrefixMap = std::unordered_map<std::string, ModuleRec*>;

/// Option values of a module; the initial values are the defaults.
struct OptionBlock {
    std::string sourceDir;       // search path directory of the source, "" when opened as named
    bool sourceDirKnown = false; // sourceDir has been set by opening the source
    std::string sourceFileName;
    std::string listingFileName;
    // PREFIX= of the module's comments.
    PrefixMap prefixes;
    // PREFIX= of the command line, which goes before; shared by the modules that have the same.
    std::shared_ptr<const PrefixMap> sharedPrefixes;
    OptRange range;             // the module's options
    uint32_t entryCount = 0;    // type assignments marked with ENTRY
    uint32_t exportedTypes = 0; // exported type assignments

    uint8_t prefixLen = 5;
    uint8_t encf = 0xFF, decf = 0xFF, askf = 0xFF, prif = 0xFF;
    uint8_t altEncf[8] = {}, altDecf[8] = {};
    bool allow = false;
    bool lenient = false; // with newNotation: common faults of published modules are warnings
    TedNr backEndFirst, backEndLast;
    std::string info, backEndDir, headerDir, tabRef;
    uint8_t codeGen[3] = {1, 1, 1}, testGen[3] = {1, 1, 1};
    uint8_t intSize = 0, listSize = 0, compMaskSize = 0, choiceSize = 0, realSize = 11;
    bool pushPath = false, reentrant = false, plmBoole = false, nearPtr = false, altTab = false;
    bool asnhc = false, optVars = false, omitSkippedFields = false;
    bool xref = true, list = true, ansiC = true;
    uint16_t standardVersion = 1994;
    uint8_t definitionCategory = 0;
    uint8_t typ = 1, def = 1, tab = 0, tabf = 0, tdefs = 0, cdefs = 0, tabo = 0;
    uint8_t decimals = 255;
    uint8_t compTag = 0, explicitTags = 0; // EXPLICIT=: 0 allow, 1 warn, 2 error
    uint8_t nameLen = 32;
    uint8_t recursion = 0, tagUsage = 0; // 0 ignore, 1 warning, 2 error
    uint8_t generate = 3;
    uint8_t memory = 0, zeroHome = 0;
    uint8_t defLen = 0;
    uint8_t extensions = 1; // 1 SAVE
    uint8_t setN = 2;
    uint8_t altMax = 0;
    uint32_t cGeneration = 0; // CGEN_* bits
    int32_t segListLim = 16384, dynListLim = 4096, dynArrLim = 0, segStrLim = 16384,
            dynStrLim = 4096;
    int32_t split = 0;
    bool hasRealLim = false;
    RealVal realLim = {};
    std::vector<std::string> combine;
    FixList naming[9]; // by FixKind 1..8
    FixList entry;     // head.fixConv is the entry value of every type assignment
};
/// Bits of C-GENERATION=.
enum CGeneration : uint32_t {
    CGEN_OLD = 1,
    CGEN_REAL = 2,
    CGEN_COMMONTIME = 4,
    CGEN_EXTERNAL = 8,
    CGEN_SIGNED_CONTROL = 16,
    CGEN_ANY_FUNCTIONS = 32,
};

// ---- modules ------------------------------------------------------------------------------------

struct RecPage;      // storage of some records of a kind (tree/orvorec)
struct StriCacheRec; // string caches of a module (tree/orvorec_stri)
struct FindCache;    // what look-ups and walks noted about a module (tree/orvoutil_find)
struct CheckCache;   // what pass 5 computed once about a module (check/check_cache)

enum ParseState : uint8_t { PARSE_NEW = 0, PARSE_ERROR = 1, PARSE_OK = 2 };

/// A name of the module that is, or may be, that of a macro.
struct MacroUse {
    int32_t macro = 0; // string number
    uint32_t line = 0;
    VNodeNr value;            // what it defines, when its type is not known yet
    TNodeNr type;             // what it defines, when the name may be that of a type
    bool byNotation = false;  // no type is written with the notation that follows
    bool byReference = false; // the value is a reference whose type is not known yet
};

/// Everything about one module; lives for the whole run. The built-in module has one too.
struct ModuleRec {
    uint32_t handle = 0;    // place in run.modules, from 1; what ANode records hold
    std::string moduleName; // hyphens stored as "_"; empty = none yet
    TimeStamp timeStamp = {};
    std::string filePrefix;       // empty = none
    std::string generationPrefix; // empty = none
    VNodeNr objIdValueNr;
    uint8_t parseState = PARSE_NEW;
    OptionBlock options;
    ModRefList modRefs;
    ModuleRec* next = nullptr;
    TNodeNr firstTypeHead, lastTypeHead;
    VNodeNr firstValueHead, lastValueHead;
    VNodeNr firstDefVal, lastDefVal;
    SymTab symTab;
    uint32_t nextRecNr[kindCount] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    uint8_t importsState = 0, exportsState = 0; // 0 no clause, 1 empty, 2 a list
    uint8_t tagDefault = 1;                     // 1 explicit, 2 implicit or automatic
    bool automaticTags = false, extensibilityImplied = false;
    bool otherInstructions = false;            // unprefixed `[NAME]` is an encoding instruction
    std::set<std::string, std::less<>> macros; // names that are macros, and what was left out
    std::vector<MacroUse> macroUses;           // in the order of their values
    // Heads of value sets whose governor has a constraint of its own: its text, negated. Until pass
    // 3, which gives such a governor a record.
    std::unordered_map<uint32_t, int32_t> governorTexts;
    bool newNotation = false;  // its notation is that of 2021
    bool named = false;        // the command line names its file
    bool missing = false;      // KEEP-GOING=: imported, but its file is not there
    bool out = false;          // KEEP-GOING=: has an error, or refers to a module that is out
    bool hasTree = false;      // its tree has been written
    bool stringsAdded = false; // pass 5 has added strings that records in the tree file name
    int32_t nbStxErrors = 0, nbSemErrors = 0, nbSymErrors = 0, nbWarnings = 0;
    int32_t nbRecorded = 0;                             // diagnostics recorded, kept or not
    std::vector<ErrRec> errors;                         // sorted by line, then order of recording
    std::set<std::pair<int32_t, std::string>> warnedOf; // message and detail (recordOnce)
    std::FILE* srcFile = nullptr;                       // open during pass 1 and during the listing
    bool isStream = false;        // the source is no regular file: it cannot be read a second time
    std::string streamText;       // what was read of it
    std::FILE* lstFile = nullptr; // open during the listing
    std::set<uint32_t> preparedLists;        // component lists that solve/solve_ref has prepared
    uint64_t touchedIn = 0;                  // the trial parse that has noted the counters
    std::vector<RecPage*> recDir[kindCount]; // by index; null = no record of it written yet
    Owned<StriCacheRec> striCache;
    Owned<FindCache> findCache;
    Owned<CheckCache> checkCache;
};

enum Verbose : uint8_t { VERBOSE_NONE = 0, VERBOSE_NORMAL = 1, VERBOSE_TOOL = 2 };

/// What finds a record on the module list by the file prefix it has or may claim.
struct ModIndex {
    std::unordered_map<std::string, ModuleRec*> byFilePrefix;          // the first of a prefix
    std::unordered_map<std::string, std::deque<ModuleRec*>> unclaimed; // by source file name
};

/// What modules store of an option of the command line or of an option file.
struct StoredOption {
    bool isStored = false;
    uint8_t kind = 0; // TED_OPTION, TED_BEO or TED_REJECTED
    std::string text;
};
/// A line of an option file that says something.
struct OptionLine {
    std::string line; // as it stands there
    StoredOption option;
};

/// The PREFIX= options of the command line that were evaluated last: each module has the same, as a
/// rule, and takes over what they map.
struct SharedPrefixes {
    uint8_t prefixLen = 0;
    std::vector<const char*> options; // shared copies of their texts; empty = evaluate anew
    std::shared_ptr<const PrefixMap> modules;
};

/// State of the run as a whole.
struct Run {
    ModuleRec* bOfModRList = nullptr; // module list, in order of compilation
    ModuleRec* eOfModRList = nullptr;
    ModuleRec* iso8824MP = nullptr;                  // the built-in module, not on the list
    std::vector<std::unique_ptr<ModuleRec>> modules; // by handle - 1, the built-in one included
    ModIndex index;
    int16_t nrOfModules = 0; // user modules whose pass 1 has started
    uint8_t verbose = VERBOSE_NORMAL;
    int32_t verboseEx = 3;
    bool strict_standard = false;
    bool keepGoing = false; // KEEP-GOING=
    bool clean = false;     // CLEAN=
    bool checking = false;  // pass 5 of such a run: records of modules that are out are not read
    // STANDARD-VERSION= and LENIENT= of the command line and the option files outside of scopes:
    // they hold from the first character of every module.
    uint16_t editionFromStart = 1994;
    bool lenientFromStart = false;
    bool anyNewNotation = false; // of one of the modules: the built-in module has more kinds then
    std::string lstDir, stxDir;
    uint8_t firstPrefixLen = 0; // the first PREFIXLEN= value given in the run, 0 = none yet
    std::unordered_map<std::string, std::vector<OptionLine>> optionFiles; // by name
    SharedPrefixes sharedPrefixes;
    std::vector<std::string> asnSearchPath;
    std::set<std::pair<uint64_t, uint64_t>> sourceFiles; // device and number of each one opened
    TimeStamp timeStamp = {};
    int32_t totalNbStxErrors = 0, totalNbSemErrors = 0, totalNbSymErrors = 0, totalNbWarnings = 0;
    bool isZOV = false;
    std::string zovPrefix, zovDirectory;
};
extern Run run;
extern ModuleRec*
    cMP; // the current module: every pass, the lexer, the parser and the store act on it

/// The module that a reference number of `module` designates: itself for 1, null when there is
/// none.
ModuleRec* getModPtr(ModuleRec* module, uint32_t refNr);

/// The file, whatever path leads to it, is a source that the run has opened.
[[nodiscard]] bool isSource(const std::string& path);

/// The notation of today is in force in the current module; what is read of an instance or another
/// module's record is judged by the module that is given.
inline bool newNotation() {
    return cMP->newNotation;
}
inline bool newNotation(const ModuleRec* module) {
    return module != nullptr && module->newNotation;
}
/// Common faults of published modules are warnings in the module.
inline bool isLenient(const ModuleRec* module) {
    return newNotation(module) && module->options.lenient;
}

/// Progress lines are printed at all.
inline bool progressShown() {
    return run.verbose != VERBOSE_NONE && run.verboseEx >= 3;
}

} // namespace orvo
