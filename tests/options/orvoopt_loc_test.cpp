#include "options/orvoopt_loc.h"

#include "options/options_support.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

constexpr uint32_t bit(uint32_t kind) {
    return 1U << kind;
}

class LocalOptions : public OptionTest {
  protected:
    /// A named node of a type, left in the buffer; TCS_HEADER makes it the head of an assignment.
    TNodeNr node(uint8_t code, int32_t status = TCS_MANDATORY, std::string_view name = "name") {
        const auto stri = static_cast<int32_t>(putStri(&a, name).nr);
        const TNodeNr nr =
            status == TCS_HEADER ? addTypeHeadArc(stri, 0, 1) : addTypeArc(nullptr, 1);
        tNode.name = stri;
        tNode.compStatus = status;
        setTypeNode(code);
        return nr;
    }
    /// Attaches comments and directives to the node; the kinds that were not consumed.
    uint32_t patch(TNodeNr nr, const std::vector<Option>& options, uint32_t directives = 0) {
        OptRange range;
        uint32_t kinds = directives;
        for (const Option& option : options) {
            addTedRec(range, option.kind, option.text);
            kinds |= bit(option.kind);
        }
        patchOpts(nr, kinds, range);
        return kinds;
    }
};

struct LocalCase {
    uint8_t code;
    int32_t status;
    const char* text;
    bool (*holds)(); // null: rejected
};
constexpr bool (*rejected)() = nullptr;

// clang-format off
const LocalCase localCases[] = {
    {TYP_INTEGER, TCS_MANDATORY, "$INT=U16", [] { return tNode.sizeOpt == 3; }}, {TYP_INTEGER, TCS_MANDATORY, "$INT=7", rejected},
    {TYP_ENUM, TCS_HEADER, "$INT=8", [] { return tNode.sizeOpt == 6; }}, {TYP_SYNONYM, TCS_MANDATORY, "$INT=8", rejected},
    {TYP_REAL, TCS_MANDATORY, "$REAL=32", [] { return tNode.sizeOpt == 10; }}, {TYP_INTEGER, TCS_MANDATORY, "$REAL=32", rejected},
    {TYP_BITSTR, TCS_MANDATORY, "$N=16", [] { return tNode.sizeOpt == 7; }}, {TYP_BITSTR, TCS_MANDATORY, "$N=U16", rejected},
    {TYP_CHASTR, TCS_MANDATORY, "$N=16", [] { return tNode.sizeOpt == 7; }}, {TYP_GENTIME, TCS_MANDATORY, "$N=16", rejected},
    {TYP_SETOF, TCS_MANDATORY, "$N=16", [] { return tNode.sizeOpt == 7; }}, {TYP_OBJDESCR, TCS_MANDATORY, "$N=8", [] { return tNode.sizeOpt == 6; }},
    {TYP_CLASS, TCS_HEADER, "$COMPMASK=32", [] { return tNode.sizeOpt == 8; }}, {TYP_CHOICE, TCS_HEADER, "$COMPMASK=32", rejected},
    {TYP_CHOICE, TCS_HEADER, "$CHOICE=8", [] { return tNode.sizeOpt == 6; }}, {TYP_SET, TCS_HEADER, "$CHOICE=8", rejected},
    {TYP_BOOLEAN, TCS_MANDATORY, "$PLMBOOLE=YES", [] { return (tNode.optFlags & OPTF_PLMBOOLE) != 0; }}, {TYP_BOOLEAN, TCS_MANDATORY, "$PLMBOOLE=X", rejected},
    {TYP_SEQ, TCS_MANDATORY, "$ASNHC=TRUE", [] { return (tNode.optFlags & OPTF_ASNHC) != 0; }}, {TYP_CHOICE, TCS_MANDATORY, "$ASNHC=TRUE", rejected},
    {TYP_ANY, TCS_MANDATORY, "$ANY=T:v", [] { return (tNode.optFlags & OPTF_ANY) != 0; }}, {TYP_OPEN, TCS_MANDATORY, "$ANY=T:v", rejected},
    {TYP_NULL, TCS_MANDATORY, "$NEAR=YES", [] { return (tNode.optFlags & OPTF_NEAR) != 0; }}, {TYP_NULL, TCS_HEADER, "$NEAR=YES", rejected},
    {TYP_CHOICE, TCS_MANDATORY, "$EXTENSIONS=skip", [] { return (tNode.optFlags & OPTF_EXTENSIONS) == 0; }}, {TYP_INTEGER, TCS_MANDATORY, "$EXTENSIONS=SKIP", rejected},
    {TYP_SEQ, TCS_MANDATORY, "$EXTENSIONS=1", [] { return (tNode.optFlags & OPTF_EXTENSIONS) != 0; }}, {TYP_SEQ, TCS_MANDATORY, "$EXTENSIONS=2", rejected},
    {TYP_NULL, TCS_MANDATORY, "$SKIP=Error", [] { return tNode.skipOpt == 1 && (tNode.optFlags & OPTF_SKIP) != 0; }}, {TYP_NULL, TCS_MANDATORY, "$SKIP=2", rejected},
    {TYP_NULL, TCS_MANDATORY, "$DEFINITELEN=yes", [] { return tNode.lenForm == 1; }}, {TYP_NULL, TCS_MANDATORY, "$DEFINITELEN=2", rejected},
    {TYP_OCTSTR, TCS_MANDATORY, "$SIZE-LIMIT=99:error", [] { return tNode.sizeLimit == 99 && tNode.sizeLimitSkip == 1; }}, {TYP_OCTSTR, TCS_MANDATORY, "$SIZE-LIMIT=100", rejected},
    {TYP_SEQOF, TCS_MANDATORY, "$SIZE-LIMIT=199:0", [] { return tNode.sizeLimit == 199 && tNode.sizeLimitSkip == 0; }}, {TYP_SEQOF, TCS_MANDATORY, "$SIZE-LIMIT=200", rejected},
    {TYP_OCTSTR, TCS_MANDATORY, "$SIZE-LIMIT=0", rejected}, {TYP_OCTSTR, TCS_MANDATORY, "$SIZE-LIMIT=9:", rejected}, {TYP_OCTSTR, TCS_MANDATORY, "$SIZE-LIMIT=9:no", rejected},
    {TYP_NULL, TCS_HEADER, "$ENTRY=1", [] { return tNode.entryKinds == 2 && tNode.entryFlags == 0x40 + 0x3C && (tNode.optFlags & OPTF_ENTRY) != 0; }},
    {TYP_NULL, TCS_HEADER, "$ENTRY=pdu:name", [] { return tNode.entryKinds == 4; }}, {TYP_NULL, TCS_HEADER, "$ENTRY=8", rejected}, {TYP_NULL, TCS_MANDATORY, "$ENTRY=1", rejected},
    {TYP_NULL, TCS_MANDATORY, "$CPREF=", [] { return true; }}, {TYP_NULL, TCS_OPTIONAL, "$FCONV=HL", [] { return true; }}, {TYP_NULL, TCS_HEADER, "$CPREF=x", rejected},
    {TYP_NULL, TCS_HEADER, "$TNAME=x", [] { return true; }}, {TYP_NULL, TCS_HEADER, "$VSSUFF=x", [] { return true; }}, {TYP_NULL, TCS_MANDATORY, "$TNAME=x", rejected},
    {TYP_NULL, TCS_HEADER, "$CLNAME=x", [] { return true; }}, {TYP_NULL, TCS_HEADER, "$OSPREF=x", [] { return true; }}, {TYP_NULL, TCS_HEADER, "$VNAME=x", rejected},
    {TYP_NULL, TCS_HEADER, "$TCONV=q", rejected}, {TYP_INTEGER, TCS_MANDATORY, "$INT=", rejected}, {TYP_INTEGER, TCS_MANDATORY, "$INT", rejected}, {TYP_NULL, TCS_MANDATORY, "$XY=1", rejected},
};
// clang-format on

TEST_F(LocalOptions, AreAcceptedByTheTypesAndRolesTheyApplyTo) {
    a.options.defLen = 2;
    a.options.segStrLim = 100;
    a.options.segListLim = 200;
    std::vector<std::string_view> unseen;
    for (const LocOption& row : locOptions()) unseen.push_back(row.name);
    for (const LocalCase& row : localCases) {
        SCOPED_TRACE(testing::Message() << row.text << " at type " << int{row.code});
        std::erase_if(unseen, [&](std::string_view name) {
            return std::string_view(row.text).substr(1).starts_with(name);
        });
        const TNodeNr nr = node(row.code, row.status);
        const uint32_t left = patch(nr, {{row.text}});
        const bool valid = row.holds != nullptr;
        EXPECT_EQ(left, valid ? 0U : bit(TED_OPTION));
        EXPECT_EQ((tNode.optFlags & bit(TED_OPTION)) != 0, valid);
        EXPECT_TRUE(!valid || row.holds());
        EXPECT_EQ(tNode.tedFirst, tNode.tedLast);
        readRec(&a, TedNr{tNode.tedLast});
        EXPECT_EQ(tedRec.tedKind, valid ? TED_OPTION : TED_REJECTED);
    }
    EXPECT_TRUE(unseen.empty());
}

TEST_F(LocalOptions, LimitsOfTheModuleDecideAboutSizeLimitAndDefinitelen) {
    a.options.segStrLim = 0;
    EXPECT_EQ(patch(node(TYP_OCTSTR), {{"$SIZE-LIMIT=2147483647"}}), 0U);
    EXPECT_NE(patch(node(TYP_OCTSTR), {{"$SIZE-LIMIT=2147483648"}}), 0U);
    EXPECT_EQ(patch(node(TYP_OCTSTR), {{"$SIZE-LIMIT=5:error"}, {"$SIZE-LIMIT=6"}}), 0U);
    EXPECT_EQ(tNode.sizeLimit, 6U);
    EXPECT_EQ(tNode.sizeLimitSkip, 0); // the last one says all
    for (uint8_t global = 0; global <= 3; ++global) {
        a.options.defLen = global;
        EXPECT_EQ(patch(node(TYP_OCTSTR), {{"$DEFINITELEN=definite"}}) == 0, global >= 2)
            << int{global};
    }
}

TEST(AnyOption, NamesATypeAndAValue) {
    std::string_view type, value;
    EXPECT_TRUE(parseAnyOption("My-Type:my-value", type, value));
    EXPECT_EQ(type, "My-Type");
    EXPECT_EQ(value, "my-value");
    for (const char* text :
         {"", "T", "T:", ":v", "t:v", "T:V", "T:v:w", "T:v ", "T-:v", "T--x:v", "1T:v", "T_x:v"})
        EXPECT_FALSE(parseAnyOption(text, type, value)) << text;
}

} // namespace
} // namespace orvo
