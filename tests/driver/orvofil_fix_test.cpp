#include "driver/orvofil_fix.h"

#include "support/store.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

class Naming : public StoreTest {
  protected:
    /// Sets a module-wide naming option such as "TPREF=x".
    void global(std::string_view option) {
        const size_t equals = option.find('=') + 1;
        FixList& list = fixRecForKind(a.options, findNameOption(option)->kind);
        ASSERT_TRUE(getFixOpt(&list, option.substr(0, equals), option.substr(equals))) << option;
    }
    /// A component with option comments, left in the buffer.
    void component(std::string_view name, std::initializer_list<std::string_view> comments = {}) {
        addTypeArc(nullptr, 1);
        tNode.name = static_cast<int32_t>(putStri(&a, name).nr);
        OptRange range;
        for (const std::string_view comment : comments) addTedRec(range, TED_OPTION, comment);
        if (comments.size() == 0) return;
        tNode.optFlags |= 1U << TED_OPTION;
        tNode.tedFirst = static_cast<uint32_t>(range.first);
        tNode.tedLast = static_cast<uint32_t>(range.last);
    }
    static std::string nameOf(FixKind kind) {
        FixRec record;
        getFixRec(record, kind);
        std::string name;
        printFixRec(name, "", record, "");
        EXPECT_EQ(countFixRec(record), name.size());
        return name;
    }
};

TEST_F(Naming, ConversionSplitsWordsAndChangesCase) {
    constexpr struct {
        const char* conversion;
        const char* ident;
        const char* name;
    } rows[] = {
        {"HL", "fooBar", "foo_bar"}, {"U", "fooBar", "FOOBAR"},   {"L", "fooBar", "foobar"},
        {"hu", "fooBar", "FOO_BAR"}, {"HL", "aB2C", "a_b2_c"},    {"HL", "fooBARbaz", "foo_barbaz"},
        {"", "my-type", "my-type"},  {"U", "my-type", "MY_TYPE"}, {"HL", "my_Type", "my_type"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ident);
        a.options.naming[FIX_COMPONENT].head.fixConv = row.conversion;
        component(row.ident);
        EXPECT_EQ(nameOf(FIX_COMPONENT), row.name);
    }
}

TEST_F(Naming, IdentifierOverridesModuleAndCommentOverridesIdentifier) {
    global("CPREF=all_");
    global("CPREF=my-Comp:own_");
    global("CNAME=my-Comp:renamed");
    component("other");
    EXPECT_EQ(nameOf(FIX_COMPONENT), "all_other");
    component("my_Comp");
    EXPECT_EQ(nameOf(FIX_COMPONENT), "own_renamed");
    component("my_Comp2");
    EXPECT_EQ(nameOf(FIX_COMPONENT), "all_my_Comp2");
    component("my_Comp", {"$CNAME=here", "$TNAME=no", "$CCONV=U", "$CSUFF=my-Comp:_s"});
    EXPECT_EQ(nameOf(FIX_COMPONENT), "OWN_HERE_S");
    component("other", {"$CPREF="});
    EXPECT_EQ(nameOf(FIX_COMPONENT), "other");
    tNode.optFlags = 0; // comments that were not accepted say nothing
    EXPECT_EQ(nameOf(FIX_COMPONENT), "all_other");
}

} // namespace
} // namespace orvo
