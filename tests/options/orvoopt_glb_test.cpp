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
    {"-STRICTSTANDARD", accepted}, {"-VERSION", rejected}, {"-UNKNOWN=1", rejected}, {"-UNKNOWN", rejected},
    {"-PREFIXLEN=1", [](const Block& b) { return b.prefixLen == 1; }},
    {"-PREFIXLEN=32", [](const Block& b) { return b.prefixLen == 32; }},
    {"-PREFIXLEN=0", rejected}, {"-PREFIXLEN=33", rejected}, {"-PREFIXLEN=", rejected},
    {"-prefixlen=7", [](const Block& b) { return b.prefixLen == 7; }},
    {"-PREFIX=My-Mod:mm", [](const Block& b) { return findPicRec(b.prefixTable, "My_Mod")->module->filePrefix == "mm"; }},
    {"-PREFIX=My-Mod:nn:g_p", [](const Block& b) { return findPicRec(b.prefixTable, "My_Mod")->module->generationPrefix == "g_p"; }},
    {"-PREFIX=Mod", [](const Block& b) { return findPicRec(b.prefixTable, "Mod")->module->filePrefix == "Mod"; }},
    {"-PREFIX=Mod::gen", [](const Block& b) { return findPicRec(b.prefixTable, "Mod")->module->filePrefix == "Mod"; }},
    {"-PREFIX=mod:mm", rejected}, {"-PREFIX=", rejected}, {"-PREFIX=M:a:b:c", rejected},
    {"-PREFIX=M:a.b", rejected}, {"-PREFIX=M:a:b.c", rejected}, {"-PREFIX=My_Mod:mm", rejected},
    {"-BEGIN-SCOPE=other -INT=x", accepted}, {"-begin-scope=other -end-scope -INT=x", rejected},
    {"-END-SCOPE", accepted}, {"-BEGIN-SCOPE=x", accepted},
    {"-TCONV=hl", [](const Block& b) { return b.naming[FIX_TYPE].head.fixConv == "hl"; }},
    {"-TCONV=", accepted}, {"-TCONV=LU", rejected}, {"-TCONV=H", rejected}, {"-TCONV=x", rejected},
    {"-TPREF=Abc:x_", [](const Block& b) { return b.naming[FIX_TYPE].head.fixPref.empty() && findGlbFixRecByName(b.naming[FIX_TYPE], "Abc")->fixPref == "x_"; }},
    {"-TPREF=x -TPREF=", [](const Block& b) { return b.naming[FIX_TYPE].head.fixPref.empty(); }},
    {"-TPREF=abc:x_", rejected}, {"-TPREF=a.b", rejected}, {"-TPREF=:x", rejected},
    {"-TNAME=n", [](const Block& b) { return b.naming[FIX_TYPE].head.fixName == "n"; }}, {"-TNAME=n;", rejected},
    {"-TSUFF=_s", [](const Block& b) { return b.naming[FIX_TYPE].head.fixSuff == "_s"; }}, {"-TSUFF=A:b:c", rejected},
    {"-VCONV=U", [](const Block& b) { return b.naming[FIX_VALUE].head.fixConv == "U"; }}, {"-VCONV=V", rejected},
    {"-VPREF=v:p", [](const Block& b) { return findGlbFixRecByName(b.naming[FIX_VALUE], "v")->fixPref == "p"; }}, {"-VPREF=V:p", rejected},
    {"-VNAME=v", [](const Block& b) { return b.naming[FIX_VALUE].head.fixName == "v"; }}, {"-VNAME=v!", rejected},
    {"-VSUFF=v", [](const Block& b) { return b.naming[FIX_VALUE].head.fixSuff == "v"; }}, {"-VSUFF=v!", rejected},
    {"-OCONV=HU", [](const Block& b) { return b.naming[FIX_OBJECT].head.fixConv == "HU"; }}, {"-OCONV=UH", rejected},
    {"-OPREF=o", [](const Block& b) { return b.naming[FIX_OBJECT].head.fixPref == "o"; }}, {"-OPREF=O:o", rejected},
    {"-ONAME=o", [](const Block& b) { return b.naming[FIX_OBJECT].head.fixName == "o"; }}, {"-ONAME=o+", rejected},
    {"-OSUFF=o", [](const Block& b) { return b.naming[FIX_OBJECT].head.fixSuff == "o"; }}, {"-OSUFF=o+", rejected},
    {"-CCONV=HL", [](const Block& b) { return b.naming[FIX_COMPONENT].head.fixConv == "HL"; }}, {"-CCONV=C", rejected},
    {"-CPREF=c", [](const Block& b) { return b.naming[FIX_COMPONENT].head.fixPref == "c"; }}, {"-CPREF=C:c", rejected},
    {"-CNAME=a-b:c", [](const Block& b) { return findGlbFixRecByName(b.naming[FIX_COMPONENT], "a_b")->fixName == "c"; }}, {"-CNAME=a_b:c", rejected},
    {"-CSUFF=c", [](const Block& b) { return b.naming[FIX_COMPONENT].head.fixSuff == "c"; }}, {"-CSUFF=c/", rejected},
    {"-FCONV=L", [](const Block& b) { return b.naming[FIX_FIELD].head.fixConv == "L"; }}, {"-FCONV=F", rejected},
    {"-FPREF=Id:f", [](const Block& b) { return findGlbFixRecByName(b.naming[FIX_FIELD], "Id")->fixPref == "f"; }}, {"-FPREF=&id:f", rejected},
    {"-FNAME=id:f", [](const Block& b) { return findGlbFixRecByName(b.naming[FIX_FIELD], "id")->fixName == "f"; }}, {"-FNAME=f&", rejected},
    {"-FSUFF=f", [](const Block& b) { return b.naming[FIX_FIELD].head.fixSuff == "f"; }}, {"-FSUFF=f&", rejected},
    {"-CLCONV=L", [](const Block& b) { return b.naming[FIX_CLASS].head.fixConv == "L"; }}, {"-CLCONV=C", rejected},
    {"-CLPREF=C:c", [](const Block& b) { return findGlbFixRecByName(b.naming[FIX_CLASS], "C")->fixPref == "c"; }}, {"-CLPREF=c:c", rejected},
    {"-CLNAME=c", [](const Block& b) { return b.naming[FIX_CLASS].head.fixName == "c"; }}, {"-CLNAME=c#", rejected},
    {"-CLSUFF=c", [](const Block& b) { return b.naming[FIX_CLASS].head.fixSuff == "c"; }}, {"-CLSUFF=c#", rejected},
    {"-VSCONV=L", [](const Block& b) { return b.naming[FIX_VALUE_SET].head.fixConv == "L" && b.naming[FIX_VALUE].head.fixSuff.empty(); }}, {"-VSCONV=S", rejected},
    {"-VSPREF=V:v", [](const Block& b) { return findGlbFixRecByName(b.naming[FIX_VALUE_SET], "V")->fixPref == "v"; }}, {"-VSPREF=v:v", rejected},
    {"-VSNAME=v", [](const Block& b) { return b.naming[FIX_VALUE_SET].head.fixName == "v"; }}, {"-VSNAME=v#", rejected},
    {"-VSSUFF=v", [](const Block& b) { return b.naming[FIX_VALUE_SET].head.fixSuff == "v"; }}, {"-VSSUFF=v#", rejected},
    {"-OSCONV=L", [](const Block& b) { return b.naming[FIX_OBJECT_SET].head.fixConv == "L"; }}, {"-OSCONV=S", rejected},
    {"-OSPREF=O:o", [](const Block& b) { return findGlbFixRecByName(b.naming[FIX_OBJECT_SET], "O")->fixPref == "o"; }}, {"-OSPREF=o:o", rejected},
    {"-OSNAME=o", [](const Block& b) { return b.naming[FIX_OBJECT_SET].head.fixName == "o"; }}, {"-OSNAME=o#", rejected},
    {"-OSSUFF=o", [](const Block& b) { return b.naming[FIX_OBJECT_SET].head.fixSuff == "o"; }}, {"-OSSUFF=o#", rejected},
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
    {"$//one -INT=8 $//two", [](const Block& b) { return b.backEndFirst.nr + 2 == b.backEndLast.nr; }}, {"$/one", rejected},
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
    "A=",        "L=",    "V=",     "VERBOSE=", "STRICTSTANDARD", "//", "BEGIN-SCOPE=",
    "END-SCOPE", "ALLOW", "BEO=//", "BEO="};
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
        SCOPED_TRACE(option.name);
        EXPECT_TRUE(withAccepted.contains(option.name) || neverAccepted.contains(option.name));
        EXPECT_TRUE(withRejected.contains(option.name) || neverRejected.contains(option.name));
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
        EXPECT_TRUE(a.options.combine.empty() && a.options.prefixTable.refs.empty()) << row.text;
    }
}

TEST_F(GlobalOptions, DefaultsOfTheTableAreThoseOfAFreshModule) {
    const OptionBlock fresh;
    for (const GlbOption& option : glbOptions()) {
        if (option.dflt.empty()) continue;
        SCOPED_TRACE(option.name);
        OptionBlock block;
        EXPECT_TRUE(option.check({block, nullptr, {}}, option, option.dflt));
        if (option.name == "DEFINITION-CATEGORY=") continue; // changes its followers too
        uint32_t words[2][6];
        packModWords(fresh, words[0]);
        packModWords(block, words[1]);
        EXPECT_TRUE(std::ranges::equal(words[0], words[1]));
        const auto others = [](const OptionBlock& of) {
            return std::vector<int64_t>{
                of.prefixLen,  of.encf,         of.decf,       of.askf,      of.prif,
                of.compTag,    of.explicitTags, of.nameLen,    of.recursion, of.tagUsage,
                of.segListLim, of.dynListLim,   of.dynArrLim,  of.segStrLim, of.dynStrLim,
                of.split,      of.codeGen[0],   of.codeGen[2], of.testGen[1]};
        };
        EXPECT_EQ(others(block), others(fresh));
    }
    initMetaRec(a.options);
    EXPECT_EQ(a.options.memory, 0);
    EXPECT_EQ(a.options.zeroHome, 0);
}

TEST_F(GlobalOptions, LastValidOccurrenceWinsAndCommandLineComesAfterComments) {
    EXPECT_FALSE(evaluate(a, {{"$NAMELEN=20"}, {"-NAMELEN=40"}, {"-NAMELEN=400"}}));
    EXPECT_EQ(a.options.nameLen, 40);
}

TEST_F(GlobalOptions, RejectionIsReportedOnceWithItsText) {
    EXPECT_FALSE(evaluate(
        a,
        {{"$PREFIX=low"}, {"-PREFIXLEN=99"}, {"-CUT", TED_REJECTED}, {"$T1", TED_CODE}, {"-INT=8"}},
        7));
    EXPECT_EQ(printed(), "\nWARNING : Option ignored: -PREFIXLEN=99\n"
                         "\nWARNING : Option ignored: $PREFIX=low\n"
                         "\nWARNING : Option ignored: -CUT\n"
                         "\nWARNING : Option ignored: $T1\n\n");
    ASSERT_EQ(a.errors.size(), 4U);
    EXPECT_EQ(a.nbWarnings, 4);
    EXPECT_EQ(a.errors[0].code, Msg::OptionsIgnored);
    EXPECT_EQ(a.errors[0].errClass, ERR_WARNING);
    EXPECT_EQ(a.errors[0].line, 7);
    EXPECT_EQ(a.errors[0].detail, "-PREFIXLEN=99");
    EXPECT_EQ(rejectedKinds, 1U << TED_OPTION | 1U << TED_CODE | 1U << TED_REJECTED);
    for (uint32_t nr = 1; nr <= 5; ++nr) {
        readRec(&a, TedNr{nr});
        EXPECT_EQ(tedRec.tedKind, nr == 5 ? TED_OPTION : TED_REJECTED) << nr;
    }
}

TEST_F(GlobalOptions, LongTextsAreShownUpToFiftyCharactersAndSilentlyAtVerbosityOne) {
    const std::string text = "-X=" + std::string(60, 'y');
    evaluate(a, {{text}});
    EXPECT_EQ(printed(), "\nWARNING : Option ignored: " + text.substr(0, 50) + "\n\n");
    EXPECT_EQ(a.errors.at(0).detail, text);
    run.verboseEx = 1;
    evaluate(a, {{text}});
    EXPECT_EQ(printed(), "\n");
    EXPECT_EQ(a.errors.size(), 1U);
}

TEST_F(GlobalOptions, NamesAreStoredInUpperCaseAndValuesAsWritten) {
    EXPECT_TRUE(evaluate(a, {{"-info=Some text"}, {"$//Some text"}}));
    readRec(&a, TedNr{1});
    EXPECT_EQ(getStri(&a, tedRec.text), "-INFO=Some text");
    readRec(&a, TedNr{2});
    EXPECT_EQ(getStri(&a, tedRec.text), "$//Some text");
}

TEST_F(GlobalOptions, ScopesLimitOptionsToTheModulesThatTheyName) {
    const std::vector<Option> options = {{"-BEGIN-SCOPE=x:y"},
                                         {"-INT=8"},
                                         {"-N=bad"},
                                         {"-PREFIXLEN=6"},
                                         {"-CUT", TED_REJECTED},
                                         {"-END-SCOPE"},
                                         {"-N=16"},
                                         {"-BEGIN-SCOPE=xx:z"},
                                         {"-REAL=32"}};
    b.moduleName = "Xx_Module"; // no file prefix yet: xx-mo
    struct {
        const char* filePrefix;
        bool inFirst, inSecond;
    } rows[] = {{"x", true, false},
                {"y", true, false},
                {"xx", false, true},
                {"z", false, true},
                {"", false, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.filePrefix);
        b.filePrefix = row.filePrefix;
        EXPECT_EQ(evaluate(b, options), !row.inFirst);
        EXPECT_EQ(b.errors.size(), row.inFirst ? 2U : 0U);
        EXPECT_EQ(b.options.intSize, row.inFirst ? 6 : 0);
        EXPECT_EQ(b.options.listSize, 7);
        EXPECT_EQ(b.options.prefixLen, 6);
        EXPECT_EQ(b.options.realSize, row.inSecond ? 10 : 11);
    }
    b.filePrefix.clear();
    EXPECT_TRUE(moduleIsInScopeList(&b, "a:xx-mo:b"));
    EXPECT_FALSE(moduleIsInScopeList(&b, "a:xx-mod:b"));
}

TEST_F(GlobalOptions, PrefixIsCutToTheLengthGivenAnywhere) {
    EXPECT_TRUE(evaluate(a, {{"-PREFIX=My-Mod:mm"}, {"-PREFIXLEN=1"}}));
    const ModuleRec* mapped = findPicRec(a.options.prefixTable, "My_Mod")->module;
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
    EXPECT_EQ(a.options.prefixTable.refs.size(), 1U);
    EXPECT_EQ(findPicRec(a.options.prefixTable, "M")->module->filePrefix, "ff");
}

TEST_F(GlobalOptions, DifferentPrefixLengthsOfModulesAreReported) {
    evaluate(a, {{"-PREFIXLEN=5"}});
    evaluate(b, {});
    EXPECT_EQ(printed(), "");
    EXPECT_TRUE(evaluate(b, {{"-PREFIXLEN=6"}}));
    EXPECT_EQ(printed(), "\nWARNING : Inconsistent PREFIXLEN option values for different modules."
                         "\n          Check option files and ASN.1 module definition files and"
                         "\n          delete all the PREFIXLEN options. Give only the highest"
                         "\n          option value once for ORVO on the command line or in one"
                         "\n          option file.\n");
    EXPECT_EQ(b.nbWarnings, 1);
}

TEST_F(GlobalOptions, CategoryWithPrefixBelongsToTheFilesWhoseNameBeginsSo) {
    initMetaRec(a.options);
    const OptUse use{a.options, &a, {}};
    const GlbOption& row = *findGlbOption("DEFINITION-CATEGORY=");
    a.options.sourceFileName = "main.x.asn";
    EXPECT_TRUE(row.check(use, row, "main.x:TANVO-SERVICE"));
    EXPECT_EQ(a.options.definitionCategory, 0);
    EXPECT_TRUE(row.check(use, row, "ma:TANVO-SERVICE"));
    EXPECT_EQ(a.options.definitionCategory, 1);
}

TEST_F(GlobalOptions, BackEndOptionsNeedAValueAndAreNotLookedInto) {
    EXPECT_TRUE(evaluate(a, {{"-BEO=INT=x", TED_BEO}, {"$BEO=//x", TED_BEO}}));
    EXPECT_FALSE(evaluate(a, {{"-BEO=", TED_BEO}}));
    EXPECT_FALSE(evaluate(a, {{"$BEO", TED_BEO}}));
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
