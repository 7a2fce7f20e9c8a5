// The command line is read twice. At start-up it yields the file names and the few settings that
// must hold before anything is read; everything else is stored again for each module, behind the
// option comments of its header, so that the command line has the last word. Both readings must
// agree on which arguments belong to the value of an option: continuesValue decides that for both.

#include "options/orvoopt.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "diag/orvoerr_hello.h"
#include "diag/timing.h"
#include "driver/orvofil.h"
#include "driver/orvofil_fix.h"
#include "options/orvoopt_file.h"
#include "options/orvoopt_glb.h"
#include "options/orvoopt_val.h"
#include "tree/orvomod.h"
#include "util/ascii.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr std::string_view usageLines[] = {
    "",
    "Usage:",
    "  ORVO [options] [option-files] [asn-file [asn-file...]]",
    "",
    "Some options:",
    "  -A=dir       ASN.1 module definition file directory   [current directory]",
    "  -L=dir       Compiler listing file directory          [current directory]",
    "  -S=dir       Syntax file directory                    [current directory]",
    "  -C=dir       Source file directory for back-ends      [current directory]",
    "  -H=dir       Header file directory for back-ends      [current directory]",
    "  -STRICTSTANDARD   Strict ASN.1 standard compliance",
    "  -PREFIX=ASN1-modulereference:asn_file[:gen_pref]      [none]",
    "  -PREFIXLEN=n Max# of characters in asn_file/gen_pref  [5]",
    "  -ENTRY=Type-reference:[PDU|sdu]                       [none]",
    "               Selection of a top-level type.",
    "",
    "Option files:",
    "  +filename    A text file with one global option or ASN.1 file name",
    "               per line.",
    "",
    "Example:",
    "  The files asn/x.asn asn/y.asn contain two ASN.1 modules. The file pdus.opt",
    "  contains declaration of PDUs defined in those modules.",
    "",
    "  # pdus.opt - Declaration of PDUs and SDUs defined in x.asn and y.asn",
    "  -ENTRY=X-PDU:PDU",
    "  -ENTRY=Y-prim:sdu",
    "",
    "  Compilation of the ASN.1 modules and generation of a C implementation:",
    "",
    "  $ kavrimol -option-file=prefix.opt -A=asn x y",
    "  $ orvo +prefix.opt +pdus.opt -A=asn -L=lst -S=stx -C=src -H=inc x y",
    "  $ tibex +prefix.opt -S=stx x y",
};

constexpr std::string_view wordLists[] = {"-INFO=", "-BEO="};
constexpr std::string_view blankTakers[] = {"+", "-INFO=", "-BEO=", "-S", "-L", "-C", "-H"};
constexpr std::string_view phaseOneValues[] = {
    "-VERBOSE=", "-A=", "-L=", "-V=", "-KEEP-GOING=", "-CLEAN=", "-TIMING="};
constexpr std::string_view strictStandard = "-STRICTSTANDARD";

/// `text` (its name in upper case) begins with one of the names.
template <size_t N>
bool beginsWithOneOf(std::string_view text, const std::string_view (&names)[N]) {
    return std::ranges::any_of(names,
                               [text](std::string_view name) { return text.starts_with(name); });
}

std::string upperName(std::string_view text) {
    std::string upper(text);
    optionToUpper(upper);
    return upper;
}

/// Tells whether the arguments behind this one belong to its value, up to the next with a "-".
bool takesWords(std::string_view argument) {
    return beginsWithOneOf(upperName(argument), wordLists);
}
bool continuesValue(const char* argument) {
    return argument[0] != '-';
}

int skipOverMultiPartOptionValue(int argc, char** argv, int index) {
    while (index + 1 < argc && continuesValue(argv[index + 1])) ++index;
    return index;
}

/// An option on the command line, phase one. `index` moves to the last argument of its value.
bool parseCommandLineOption(int argc, char** argv, int& index) {
    const std::string_view text = argv[index];
    if (takesWords(text)) {
        index = skipOverMultiPartOptionValue(argc, argv, index);
        return true;
    }
    if (parseSelectedCmdLineOpts(text)) return true;
    argumentIgnored(text, {});
    return false;
}

[[noreturn]] void printVersion() {
    put(stdout, concat("\n", bannerLine(orvoVersion, orvoPatch), "\n"));
    std::exit(0);
}

/// Appends the words that belong to a value. False when they do not all fit.
bool appendWords(std::string& text, int argc, char** argv, int index) {
    const int last = skipOverMultiPartOptionValue(argc, argv, index);
    while (index < last) {
        const std::string_view word = argv[++index];
        if (text.size() + 1 + word.size() > maxOptionLength) return false;
        text += ' ';
        text += word;
    }
    return true;
}

/// Cuts a text at the first character that it must not contain. False when something was cut.
bool cutText(std::string& text, bool blanksToo) {
    const auto end = std::ranges::find_if(
        text, [blanksToo](char c) { return !isPrintable(c) || (blanksToo && c == ' '); });
    const bool whole = end == text.end();
    text.erase(end, text.end());
    return whole;
}

} // namespace

void argumentIgnored(std::string_view text, std::string_view file) {
    if (run.verboseEx < 2) return;
    std::string warning = concat("\nWARNING : Argument ignored: ", text, "\n");
    if (file.data() != nullptr) warning += concat("          In option file  : ", file, "\n");
    put(stderr, warning);
    ++cMP->nbWarnings;
}

void usage() {
    for (const std::string_view line : usageLines) put(stdout, concat(line, "\n"));
    std::exit(1);
}

bool verboseOptionOK(std::string_view value) {
    constexpr ValueName names[] = {
        {"NONE", VERBOSE_NONE}, {"NORMAL", VERBOSE_NORMAL}, {"TOOL", VERBOSE_TOOL}};
    return byteOptionOK(value, VERBOSE_NONE, VERBOSE_TOOL, names, run.verbose);
}

void noteEdition(std::string_view text, bool& inScope) {
    const std::string option = upperName(text);
    const ScopeMark mark = scopeMark(std::string_view(option).substr(1));
    if (mark != ScopeMark::None) inScope = mark == ScopeMark::Begin;
    if (inScope) return;
    constexpr std::string_view edition = "-STANDARD-VERSION=";
    constexpr std::string_view leniency = "-LENIENT=";
    const std::string_view all = option;
    if (all.starts_with(edition))
        static_cast<void>(
            standardVersionOptionOK(all.substr(edition.size()), run.editionFromStart));
    if (all.starts_with(leniency))
        static_cast<void>(booleOptionOK(all.substr(leniency.size()), run.lenientFromStart));
}

bool parseSelectedCmdLineOpts(std::string_view text) {
    const std::string option = upperName(text);
    const size_t equals = option.find('=');
    const std::string_view name = std::string_view(option).substr(
        0, equals == std::string::npos ? option.size() : equals + 1);
    const std::string_view value = std::string_view(option).substr(name.size());
    if (name == "-VERBOSE=") return verboseOptionOK(value);
    if (name == "-V=") return int32OptionOK(value, 1, 4, run.verboseEx);
    if (name == "-KEEP-GOING=") return booleOptionOK(value, run.keepGoing);
    if (name == "-CLEAN=") return booleOptionOK(value, run.clean);
    if (name == "-TIMING=") {
        bool on = timingState.on;
        if (!booleOptionOK(value, on)) return false;
        setTiming(on);
    }
    if (name == "-L=") return directoryOptionOK(value, run.lstDir);
    if (name == "-A=") {
        std::string directory;
        if (!directoryOptionOK(value, directory)) return false;
        addDirToSearchPath(run.asnSearchPath, directory);
    }
    if (name == strictStandard) run.strict_standard = true;
    if (name == "-VERSION") printVersion();
    return true;
}

bool parseFilePrefix(std::string_view name, int& count, std::string_view file) {
    if (!std::ranges::all_of(name, [](char c) { return isPrintable(c) && c != ' '; })) {
        argumentIgnored(name, file);
        return false;
    }
    ModuleRec* module = cMP;
    if (count++ > 0) appendModuleRec(module = newModuleRec());
    setSourceFileName(module, setFileName(name, ".asn", false));
    module->options.listingFileName = setFileName(name, ".lst", true);
    module->named = true;
    return true;
}

void parseCmdLineParams(int argc, char** argv) {
    int count = 0;
    bool good = true;
    bool inScope = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with('-')) noteEdition(argument, inScope);
        if (argument.starts_with('+'))
            good &= parseOptionFilePartially(argument.substr(1), count);
        else if (argument.starts_with('-'))
            good &= parseCommandLineOption(argc, argv, i);
        else
            good &= parseFilePrefix(argument, count, {});
    }
    if (!good || cMP->options.sourceFileName.empty()) usage();
}

void parseCmdLineOptions(int argc, char** argv, uint32_t& kinds, OptRange& range) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with('+')) handleOptionFile(argument.substr(1), kinds, range);
        if (!argument.starts_with('-')) continue;
        storeOption(optionToStore(argument, i, argc, argv), kinds, range);
        if (takesWords(argument)) i = skipOverMultiPartOptionValue(argc, argv, i);
    }
}

StoredOption optionToStore(std::string_view text, int index, int argc, char** argv) {
    const std::string upper = upperName(text);
    // What only begins like an option without value is another one, and must be reported.
    if (beginsWithOneOf(upper, phaseOneValues) || upper == strictStandard) return {};
    StoredOption option{true, TED_OPTION, std::string(text.substr(0, maxOptionLength))};
    bool good = text.size() <= maxOptionLength;
    if (argv != nullptr && takesWords(text)) good &= appendWords(option.text, argc, argv, index);
    good &= cutText(option.text, !beginsWithOneOf(upper, blankTakers));
    if (upper.starts_with("-BEO=")) option.kind = TED_BEO;
    if (!good) option.kind = TED_REJECTED;
    // What a file has is reported as it stands there when it is rejected at once.
    if (good || argv != nullptr) optionToUpper(option.text);
    return option;
}

void storeOption(const StoredOption& option, uint32_t& kinds, OptRange& range) {
    if (!option.isStored) return;
    addTedRec(range, option.kind, option.text);
    kinds |= 1U << option.kind;
}

} // namespace orvo
