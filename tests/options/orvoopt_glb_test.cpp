#include "options/orvoopt_glb.h"

#include <algorithm>
#include <set>

#include "options/options_support.h"
#include "util/ascii.h"

namespace orvo {
namespace {

using Block = OptionBlock;

struct OptionCase {
    const char* text;            // several options are separated by blanks
    bool (*holds)(const Block&); // what an accepted one does; null: the last one is rejected
};
bool accepted(const Block&) {
    return true;
}
constexpr bool (*rejected)(const Block&) = nullptr;

// clang-format off
const OptionCase optionCases[] = {
    {"-A=x", accepted}, {"-L=", accepted}, {"-V=9", accepted}, {"-VERBOSE=x", accepted},
    {"-KEEP-GOING=x", accepted}, {"-TIMING=x", accepted}, {"-STRICTSTANDARD", accepted}, {"-VERSION", rejected}, {"-UNKNOWN=1", rejected}, {"-UNKNOWN", rejected},
    {"-PREFIXLEN=1", [](const Block& b) { return b.prefixLen == 1; }},
    {"-PREFIXLEN=32", [](const Block& b) { return b.prefixLen == 32; }},
    {"-PREFIXLEN=0", rejected}, {"-PREFIXLEN=33", rejected}, {"-PREFIXLEN=", rejected},
    {"-prefixlen=7", [](const Block& b) { return b.prefixLen == 7; }},
    {"-PREFIX=My-Mod:mm", [](const Block& b) { return mappedModule(b, "My_Mod")->filePrefix == "mm"; }},
    {"-PREFIX=My-Mod:nn:g_p", [](const Block& b) { return mappedModule(b, "My_Mod")->generationPrefix == "g_p"; }},
    {"-PREFIX=Mod", [](const Block& b) { return mappedModule(b, "Mod")->filePrefix == "Mod"; }},
    {"-PREFIX=Mod::gen", [](const Block& b) { return mappedModule(b, "Mod")->filePrefix == "Mod"; }},
    {"-PREFIX=mod:mm", rejected}, {"-PREFIX=", rejected}, {"-PREFIX=M:a:b:c", rejected},
    {"-PREFIX=M:a.b", rejected}, {"-PREFIX=M:a:b.c", rejected}, {"-PREFIX=My_Mod:mm", rejected},
    {"-BEGIN-SCOPE=other -INT=x", accepted}, {"-begin-scope=other -end-scope -INT=x", rejected},
    {"-END-SCOPE", accepted}, {"-BEGIN-SCOPE=x", accepted}, {"-BEGIN-SCOPE", rejected}, {"-BEGIN-SCOPEX=other", rejected},
    {"-BEGIN-SCOPEX=my -INT=x", rejected}, {"-BEGIN-SCOPE=other -END-SCOPE= -INT=x", rejected}, {"-END-SCOPEY", rejected},
    {"-BEGIN-SCOPE=other -END-SCOPEY -INT=x", accepted}, {"-BEGIN-SCOPE=other -BEGIN-SCOPE -INT=x", accepted},
    {"-TPREF=x -TPREF=", [](const Block& b) { return b.naming[FIX_TYPE].head.fixPref.empty(); }},
    {"-ENTRY=X-PDU:PDU", [](const Block& b) { return findFixRecByEntryTypeName(b.entry, "X_PDU")->fixConv == "PDU" && findFixRecByEntryTypeName(b.entry, "Y") == nullptr; }},
    {"-ENTRY=X:012:x_name", [](const Block& b) { return findFixRecByEntryTypeName(b.entry, "X")->fixName == "x_name"; }},
    {"-ENTRY=sdu", [](const Block& b) { return findFixRecByEntryTypeName(b.entry, "Y")->fixConv == "sdu"; }},
    {"-ENTRY=X:9", rejected}, {"-ENTRY=X:", rejected}, {"-ENTRY=PDUs", rejected}, {"-ENTRY=X_Y:PDU", rejected}, {"-ENTRY=", rejected},
    {"-ENCF=07", [](const Block& b) { return b.encf == 0x81; }}, {"-ENCF=8", rejected}, {"-ENCF=", rejected},
    {"-DECF=1", [](const Block& b) { return b.decf == 2; }}, {"-DECF=x", rejected},
    {"-ASKF=2", [](const Block& b) { return b.askf == 4; }}, {"-ASKF=0,1", rejected},
    {"-PRIF=3", [](const Block& b) { return b.prif == 8; }}, {"-PRIF=-1", rejected},
    {"-ALTMAX=2 -ALTENCF=1:03", [](const Block& b) { return b.altEncf[1] == 9 && b.altEncf[0] == 0; }},
    {"-ALTENCF=0:1", rejected}, {"-ALTMAX=2 -ALTENCF=2:1", rejected}, {"-ALTMAX=2 -ALTENCF=1", rejected}, {"-ALTMAX=1 -ALTENCF=0:8", rejected},
    {"-ALTMAX=8 -ALTDECF=7:7", [](const Block& b) { return b.altDecf[7] == 0x80; }}, {"-ALTDECF=0:", rejected},
    {"-ALLOW", [](const Block& b) { return b.allow; }}, {"-ALLOW=1", rejected},
    {"$//one -INT=8 $//two", [](const Block& b) { return b.backEndFirst.nr + 2 == b.backEndLast.nr; }}, {"$/ONE", rejected},
    {"-BEO=//x", [](const Block& b) { return b.backEndFirst && b.backEndFirst == b.backEndLast; }},
    {"-COMBINE=a:b,c", [](const Block& b) { return b.combine == std::vector<std::string>{"a", "b", "c"}; }},
    {"-COMBINE=long-1.stx:b.stx", [](const Block& b) { return b.combine == std::vector<std::string>{"long-", "b"}; }},
    {"-COMBINE=a:b -COMBINE=", [](const Block& b) { return b.combine.empty(); }},
    {"-COMBINE=a", rejected}, {"-COMBINE=a,b", rejected}, {"-COMBINE=a:b,", rejected}, {"-COMBINE=a:,b", rejected},
    {"-COMBINE=a:b:c", rejected}, {"-COMBINE=a:b,a", rejected}, {"-COMBINE=a:b.asn", rejected}, {"-COMBINE=.stx:b", rejected},
    {"-INFO=x:y", [](const Block& b) { return b.info == "x:y"; }}, {"-INFO=", rejected},
    {"-C=src", [](const Block& b) { return b.backEndDir == "src/"; }}, {"-C=", rejected},
    {"-H=inc/", [](const Block& b) { return b.headerDir == "inc/"; }}, {"-H=", rejected},
    {"-S=stx", [](const Block&) { return run.stxDir == "stx/"; }}, {"-S=\x7F", rejected},
    {"-DEFINITION-CATEGORY=tanvo-ios", [](const Block& b) { return b.definitionCategory == 3 && b.tab == 1 && b.memory == 1 && b.zeroHome == 1 && b.codeGen[2] == 2; }},
    {"-REENTRANT=1 -DEFINITION-CATEGORY=OTHER", [](const Block& b) { return b.definitionCategory == 255 && b.tab == 0 && !b.reentrant && b.codeGen[2] == 1; }},
    {"-DEFINITION-CATEGORY=x:2", [](const Block& b) { return b.definitionCategory == 0 && b.memory == 0; }},
    {"-DEFINITION-CATEGORY=4", rejected}, {"-DEFINITION-CATEGORY=x:", rejected}, {"-DEFINITION-CATEGORY=NONE", rejected},
    {"-TANVO=2", [](const Block& b) { return b.definitionCategory == 2 && b.testGen[0] == 2 && b.tab == 1; }}, {"-TANVO=3", rejected},
    {"-COD=2::none", [](const Block& b) { return b.codeGen[0] == 2 && b.codeGen[1] == 1 && b.codeGen[2] == 0; }},
    {"-COD=3", rejected}, {"-COD=1:1:1:1", rejected}, {"-COD=1:both", rejected},
    {"-TST=:combined", [](const Block& b) { return b.testGen[1] == 1; }}, {"-TST=:::", rejected},
    {"-INT=u16", [](const Block& b) { return b.intSize == 3; }}, {"-INT=U64", [](const Block& b) { return b.intSize == 5; }},
    {"-INT=8", [](const Block& b) { return b.intSize == 6; }}, {"-INT=8 -INT=optimize", [](const Block& b) { return b.intSize == 0; }},
    {"-INT=u", rejected}, {"-INT=24", rejected}, {"-INT=uu8", rejected}, {"-INT=U0", rejected},
    {"-N=64", [](const Block& b) { return b.listSize == 9; }}, {"-N=u16", rejected},
    {"-COMPMASK=16", [](const Block& b) { return b.compMaskSize == 7; }}, {"-COMPMASK=1", rejected},
    {"-CHOICE=32", [](const Block& b) { return b.choiceSize == 8; }}, {"-CHOICE=U8", rejected},
    {"-REAL=128", [](const Block& b) { return b.realSize == 12; }}, {"-REAL=0", [](const Block& b) { return b.realSize == 0; }}, {"-REAL=16", rejected},
    {"-PUSHPATH=yes", [](const Block& b) { return b.pushPath; }}, {"-PUSHPATH=on", rejected},
    {"-REENTRANT=TRUE", [](const Block& b) { return b.reentrant; }}, {"-REENTRANT=2", rejected},
    {"-PLMBOOLE=1", [](const Block& b) { return b.plmBoole; }}, {"-PLMBOOLE=01", rejected},
    {"-NEAR=YES", [](const Block& b) { return b.nearPtr; }}, {"-NEAR=y", rejected},
    {"-ALTTAB=YES", [](const Block& b) { return b.altTab; }}, {"-ALTTAB=y", rejected},
    {"-ASNHC=YES", [](const Block& b) { return b.asnhc; }}, {"-ASNHC=y", rejected},
    {"-OPTVARS=YES", [](const Block& b) { return b.optVars; }}, {"-OPTVARS=y", rejected},
    {"-OMIT-SKIPPED-FIELDS=YES", [](const Block& b) { return b.omitSkippedFields; }}, {"-OMIT-SKIPPED-FIELDS=y", rejected},
    {"-XREF=false", [](const Block& b) { return !b.xref; }}, {"-XREF=n", rejected},
    {"-LIST=0", [](const Block& b) { return !b.list; }}, {"-LIST=n", rejected},
    {"-ANSI-C=No", [](const Block& b) { return !b.ansiC; }}, {"-ANSI-C=n", rejected},
    {"-STANDARD-VERSION=1990", [](const Block& b) { return b.standardVersion == 1990; }}, {"-STANDARD-VERSION=1992", rejected},
    {"-STANDARD-VERSION=2021 -LENIENT=yes", [](const Block& b) { return b.standardVersion == 2021 && b.lenient; }}, {"-LENIENT=on", rejected},
    {"-TYP=no", [](const Block& b) { return b.typ == 0; }}, {"-TYP=TRUE", rejected},
    {"-DEF=0", [](const Block& b) { return b.def == 0; }}, {"-DEF=2", rejected},
    {"-TAB=yes", [](const Block& b) { return b.tab == 1; }}, {"-TAB=2", rejected},
    {"-TAB=yes -TABF=yes", [](const Block& b) { return b.tabf == 1; }}, {"-TAB=no -TABF=yes", rejected},
    {"-TDEFS=1", [](const Block& b) { return b.tdefs == 1; }}, {"-TDEFS=3", rejected},
    {"-CDEFS=1", [](const Block& b) { return b.cdefs == 1; }}, {"-CDEFS=3", rejected},
    {"-TABO=1", [](const Block& b) { return b.tabo == 1; }}, {"-TABO=3", rejected},
    {"-TABREF=t.t", [](const Block& b) { return b.tabRef == "t.t"; }}, {"-TABREF=", rejected},
    {"-DECIMALS=127", [](const Block& b) { return b.decimals == 127; }}, {"-DECIMALS=128", rejected},
    {"-DIAGLEVEL=x", accepted}, {"-DIAGLEVEL=", rejected},
    {"-COMPTAG=2", [](const Block& b) { return b.compTag == 2; }}, {"-COMPTAG=3", rejected},
    {"-EXPLICIT=1", [](const Block& b) { return b.explicitTags == 1; }}, {"-EXPLICIT=yes", rejected},
    {"-NAMELEN=128", [](const Block& b) { return b.nameLen == 128; }}, {"-NAMELEN=8", accepted}, {"-NAMELEN=7", rejected},
    {"-NAMELEN=129", rejected}, {"-NAMELEN=0129", rejected}, {"-NAMELEN=012", rejected}, {"-NAMELEN=256", rejected},
    {"-RECURSION=warning", [](const Block& b) { return b.recursion == 1; }}, {"-RECURSION=warn", rejected},
    {"-TAGUSAGE=2", [](const Block& b) { return b.tagUsage == 2; }}, {"-TAGUSAGE=3", rejected},
    {"-GENERATE=Visibles", [](const Block& b) { return b.generate == 2; }}, {"-GENERATE=4", rejected},
    {"-MEMORY=yes", [](const Block& b) { return b.memory == 1; }}, {"-TANVO=1 -MEMORY=no", rejected},
    {"-DEFINITION-CATEGORY=OTHER -MEMORY=no", [](const Block& b) { return b.memory == 0; }},
    {"-ZEROHOME=1", [](const Block& b) { return b.zeroHome == 1; }}, {"-TANVO=1 -ZEROHOME=0", rejected},
    {"-DEFINITELEN=definite-definitecomps", [](const Block& b) { return b.defLen == 3; }}, {"-DEFINITELEN=4", rejected},
    {"-EXTENSIONS=skip", [](const Block& b) { return b.extensions == 0; }}, {"-EXTENSIONS=YES", rejected},
    {"-SETN=named-numbers", [](const Block& b) { return b.setN == 1; }}, {"-SETN=numbers", rejected},
    {"-ALTMAX=8", [](const Block& b) { return b.altMax == 8; }}, {"-ALTMAX=9", rejected},
    {"-C-GENERATION=OLD:real-n:DATETIMEZ", [](const Block& b) { return b.cGeneration == (CGEN_OLD | CGEN_EXTERNAL | CGEN_SIGNED_CONTROL | CGEN_ANY_FUNCTIONS); }},
    {"-C-GENERATION=EXTERNAL -C-GENERATION=COMMONTIME:EXTERNAL-N", [](const Block& b) { return b.cGeneration == CGEN_COMMONTIME; }},
    {"-C-GENERATION=REAL:", rejected}, {"-C-GENERATION=NEW", rejected},
    {"-SEGLISTLIM=2147483647", [](const Block& b) { return b.segListLim == INT32_MAX; }}, {"-SEGLISTLIM=2147483648", rejected},
    {"-DYNLISTLIM=0", [](const Block& b) { return b.dynListLim == 0; }}, {"-DYNLISTLIM=-1", rejected},
    {"-DYNARRLIM=7", [](const Block& b) { return b.dynArrLim == 7; }}, {"-DYNARRLIM=07", rejected},
    {"-SEGSTRLIM=7", [](const Block& b) { return b.segStrLim == 7; }}, {"-SEGSTRLIM=+7", rejected},
    {"-DYNSTRLIM=7", [](const Block& b) { return b.dynStrLim == 7; }}, {"-DYNSTRLIM=99999999999999999999", rejected},
    {"-SPLIT=7", [](const Block& b) { return b.split == 7; }}, {"-SPLIT=7x", rejected},
    {"-REALLIM={2147483647,10,32767}", [](const Block& b) { return b.hasRealLim && i64native(b.realLim.mantissa) == INT32_MAX && b.realLim.base == 10 && b.realLim.exponent == 32767; }},
    {"-REALLIM={0,10,5}", [](const Block& b) { return b.realLim.base == -1 && i64native(b.realLim.mantissa) == 0; }},
    {"-REALLIM={1,10,32768}", rejected}, {"-REALLIM={2147483648,10,1}", rejected}, {"-REALLIM={1,2,3}", rejected}, {"-REALLIM=1,10,3", rejected},
    {"-REALLIM={,10,3}", rejected}, {"-REALLIM={1,10,}", rejected}, {"-REALLIM={1,10,3}}", rejected},
    {"-ZOV-PREFIX=my_zov", [](const Block&) { return run.zovPrefix == "my_zov"; }}, {"-ZOV-PREFIX=a.b", rejected},
    {"-ZOV-DIRECTORY=d", [](const Block&) { return run.zovDirectory == "d/"; }}, {"-ZOV-DIRECTORY=", rejected},
    {"$ID:", accepted}, {"$", accepted}, {"$LOG", accepted}, {"$REVISION:", accepted}, {"$LOGS", rejected}, {"$ID", accepted},
};
// clang-format on

// BEO= has a test of its own.
const std::set<std::string_view> neverRejected = {
    "A=", "L=",           "V=",        "VERBOSE=", "KEEP-GOING=", "TIMING=", "STRICTSTANDARD",
    "//", "BEGIN-SCOPE=", "END-SCOPE", "ALLOW",    "BEO=//",      "BEO="};
const std::set<std::string_view> neverAccepted = {"VERSION", "BEO="};

class GlobalOptions : public OptionTest {
  protected:
    GlobalOptions() { a.filePrefix = "my"; }
};

TEST_F(GlobalOptions, AcceptExactlyTheValuesOfTheirKind) {
    std::set<std::string_view> withAccepted, withRejected;
    for (const OptionCase& row : optionCases) {
        SCOPED_TRACE(row.text);
        std::vector<Option> options;
        for (std::string_view rest = row.text; !rest.empty();) {
            const std::string_view text = rest.substr(0, rest.find(' '));
            rest.remove_prefix(std::min(text.size() + 1, rest.size()));
            options.push_back({std::string(text), text.starts_with("-BEO") ? TED_BEO : TED_OPTION});
        }
        std::string& last = options.back().text;
        const bool valid = row.holds != nullptr;
        EXPECT_EQ(evaluate(a, options), valid);
        EXPECT_TRUE(!valid || row.holds(a.options));
        EXPECT_TRUE(valid || a.errors.empty() || a.errors.back().detail == last);
        std::ranges::transform(last, last.begin(), toUpper);
        const GlbOption* option = findGlbOption(std::string_view(last).substr(1));
        if (option != nullptr) (valid ? withAccepted : withRejected).insert(option->name);
    }
    for (const GlbOption& option : glbOptions()) {
        const std::string_view end =
            std::string_view(option.name).substr(std::max(option.name.size(), size_t{5}) - 5);
        if (end == "CONV=" || end == "PREF=" || end == "NAME=" || end == "SUFF=") continue;
        SCOPED_TRACE(option.name);
        EXPECT_TRUE(withAccepted.contains(option.name) || neverAccepted.contains(option.name));
        EXPECT_TRUE(withRejected.contains(option.name) || neverRejected.contains(option.name));
    }
}

TEST_F(GlobalOptions, NamingOptionsSetTheTextsOfTheirOwnKind) {
    constexpr struct {
        const char* lead;
        FixKind kind;
        const char *ident, *stored, *wrongIdent;
    } kinds[] = {{"T", FIX_TYPE, "Abc", "Abc", "abc"}, {"V", FIX_VALUE, "v", "v", "V"},
                 {"O", FIX_OBJECT, "o", "o", "O"},     {"C", FIX_COMPONENT, "a-b", "a_b", "a_b"},
                 {"F", FIX_FIELD, "Id", "Id", "&id"},  {"CL", FIX_CLASS, "C", "C", "c"},
                 {"VS", FIX_VALUE_SET, "V", "V", "v"}, {"OS", FIX_OBJECT_SET, "O", "O", "o"}};
    for (const auto& [lead, kind, ident, stored, wrongIdent] : kinds) {
        SCOPED_TRACE(lead);
        const std::string option = std::string("-") + lead;
        EXPECT_TRUE(evaluate(a, {{option + "CONV=hU"},
                                 {option + "PREF=" + ident + ":p_"},
                                 {option + "NAME=n"},
                                 {option + "SUFF=_s"}}));
        const FixList& list = a.options.naming[kind];
        EXPECT_EQ(list.head.fixConv + list.head.fixPref + list.head.fixName + list.head.fixSuff,
                  "hUn_s");
        ASSERT_NE(findGlbFixRecByName(list, stored), nullptr);
        EXPECT_EQ(findGlbFixRecByName(list, stored)->fixPref, "p_");
        for (const std::string& wrong :
             {std::string("CONV=LU"), std::string("CONV=H"),
              std::string("PREF=") + wrongIdent + ":p", std::string("PREF=:p"),
              std::string("NAME=n;"), std::string("SUFF=A:b:c")})
            EXPECT_FALSE(evaluate(a, {{option + wrong}})) << wrong;
    }
}

TEST_F(GlobalOptions, RejectedValuesLeaveTheSettingsAlone) {
    uint32_t before[6];
    uint32_t after[6];
    packModWords(OptionBlock(), before);
    for (const OptionCase& row : optionCases) {
        if (row.holds != nullptr || std::string_view(row.text).find(' ') != std::string_view::npos)
            continue;
        evaluate(a, {{row.text}});
        packModWords(a.options, after);
        EXPECT_TRUE(std::ranges::equal(before, after)) << row.text;
        EXPECT_TRUE(std::ranges::equal(a.options.codeGen, OptionBlock().codeGen)) << row.text;
        EXPECT_TRUE(a.options.combine.empty()) << row.text;
        EXPECT_TRUE(a.options.sharedPrefixes == nullptr || a.options.sharedPrefixes->empty());
    }
}

TEST_F(GlobalOptions, PrefixIsCutToTheLengthGivenAnywhere) {
    EXPECT_TRUE(evaluate(a, {{"-PREFIX=My-Mod:mm"}, {"-PREFIXLEN=1"}}));
    const ModuleRec* mapped = mappedModule(a.options, "My_Mod");
    EXPECT_EQ(mapped->filePrefix, "m");
    EXPECT_EQ(mapped->generationPrefix, "m");
    EXPECT_EQ(mapped->moduleName, "My_Mod");
    EXPECT_EQ(run.eOfModRList, mapped);
    EXPECT_EQ(printed(), "\nWARNING : A file prefix 'mm' is longer than 1 characters.\n"
                         "          Truncating it to 1 characters.\n"
                         "          Check value of the PREFIXLEN option.\n");
    EXPECT_TRUE(evaluate(a, {{"-PREFIX=M:f:gen"}, {"-PREFIXLEN=2"}, {"-PREFIX=M:ff"}}));
    EXPECT_NE(printed().find("A generation prefix 'gen' is longer than 2 characters."),
              std::string::npos);
    EXPECT_EQ(a.options.sharedPrefixes->size(), 1U);
    EXPECT_EQ(mappedModule(a.options, "M")->filePrefix, "ff");
}

TEST_F(GlobalOptions, PrefixesOfTheCommandLineAreSharedByTheModulesThatHaveTheSame) {
    const Option x{"-PREFIX=Xx:x"}, y{"-PREFIX=Yy:y"};
    const struct {
        std::vector<Option> options;
        const char* prefixes; // of Xx, Yy and Zz
        bool shared;          // with a module that has x and y
    } cases[] = {{{x, y}, "xy-", true},
                 {{{"$PREFIX=Yy:c"}, {"$PREFIX=Zz:z"}, x, {"-INT=8"}, y}, "xyz", true},
                 {{y, x}, "xy-", true},
                 {{x, {"$PREFIX=Yy:c"}, y}, "xy-", false}, // as nobody can write them
                 {{x, {"-PREFIX=Yy:n"}}, "xn-", false},
                 {{x, {"-PREFIX=Yy:n"}, y, {"-PREFIX=zz:z"}}, "xy-", true}, // one is rejected
                 {{x}, "x--", false},
                 {{{"$PREFIX=Xx:x"}, {"$PREFIX=Yy:y"}}, "xy-", false}};
    for (const auto& [options, prefixes, shared] : cases) {
        EXPECT_TRUE(evaluate(a, {x, y}));
        for (int time = 0; time < 2; ++time) {
            evaluate(b, options);
            std::string found;
            for (const char* name : {"Xx", "Yy", "Zz"}) {
                const ModuleRec* mapped = mappedModule(b.options, name);
                found += mapped != nullptr ? mapped->filePrefix : "-";
            }
            EXPECT_EQ(found, prefixes);
            EXPECT_EQ(a.options.sharedPrefixes == b.options.sharedPrefixes, shared) << prefixes;
            EXPECT_EQ(b.errors.size(), options.size() == 4 ? 1U : 0U);
        }
    }
    printed();
    for (ModuleRec* module : {&a, &b}) { // what is said of an option is said for each module
        EXPECT_TRUE(evaluate(*module, {{"-PREFIX=Xx:xxxxxxxx"}}));
        EXPECT_TRUE(printed().starts_with("\nWARNING : A file prefix 'xxxxxxxx' is longer"));
    }
}

TEST(ModuleWords, HoldTheOptionsInTheirPlaces) {
    OptionBlock block;
    uint32_t words[6];
    packModWords(block, words);
    // TYP, DEF, ANSI-C, EXTENSIONS, XREF, LIST
    EXPECT_EQ(words[0], 0x1C0083U);
    EXPECT_EQ(words[1], 0x02000300U);
    EXPECT_EQ(words[2], 0U);
    EXPECT_EQ(words[3], 0xFF00000BU);
    EXPECT_EQ(words[4], 0U);
    EXPECT_EQ(words[5], 0U);
    block.def = block.ansiC = block.xref = false;
    block.tabo = block.zeroHome = 1;
    block.allow = true;
    block.definitionCategory = 255;
    block.intSize = 2;
    block.choiceSize = 9;
    block.standardVersion = 1990;
    block.altMax = 8;
    block.cGeneration = CGEN_OLD;
    block.entryCount = 70000;
    packModWords(block, words);
    EXPECT_EQ(words[0], 0x360041U);
    EXPECT_EQ(words[1], 0x020003FFU);
    EXPECT_EQ(words[2], 0x09000002U);
    EXPECT_EQ(words[3], 0xFF08010BU);
    EXPECT_EQ(words[4], 1U);
    EXPECT_EQ(words[5], 70000U);
}

} // namespace
} // namespace orvo
