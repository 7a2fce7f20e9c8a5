#include "support/pass1.h"

namespace orvo {
namespace {

class TypeOptions : public Pass1Test {
  protected:
    /// Members of a list that have an option comment of kind 3, by name.
    std::string marked(TNodeNr first) {
        std::string names;
        for (TNodeNr nr = first; nr; nr = TNodeNr{typeAt(nr).next})
            if ((typeAt(nr).optFlags & 1U << TED_OPTION) != 0)
                names += std::string(getStri(module, typeAt(nr).name)) + " ";
        return names;
    }
    bool isMarked(TNodeNr nr) { return (typeAt(nr).optFlags & 1U << TED_OPTION) != 0; }
};

TEST_F(TypeOptions, BelongToTheTypeBeforeThem) {
    parseBody("T ::= SEQUENCE { a INTEGER (0..5) --$INT=16--, b BOOLEAN, c INTEGER --$INT=16\n}"
              " --$COMPMASK=16\n"
              "U ::= SEQUENCE --$N=16-- OF INTEGER\n"
              "V ::= SEQUENCE OF INTEGER --$INT=16\n"
              "W ::= CHOICE { d NULL }");
    EXPECT_EQ(errors(), "");
    EXPECT_TRUE(isMarked(head("T")));
    EXPECT_EQ(marked(TNodeNr{typeAt(head("T")).ref}), "a c ");
    EXPECT_TRUE(isMarked(head("U")));
    EXPECT_FALSE(isMarked(TNodeNr{typeAt(head("U")).ref}));
    EXPECT_FALSE(isMarked(head("V")));
    EXPECT_TRUE(isMarked(TNodeNr{typeAt(head("V")).ref}));
    EXPECT_EQ(typeAt(head("W")).tedFirst, 0U);
}

TEST_F(TypeOptions, BelongToItemsValuesSetsAndClasses) {
    parseBody("T ::= ENUMERATED { a --$VNAME=x--, b }\n"
              "v T ::= a --$VNAME=y\n"
              "C ::= CLASS { &Type, &val INTEGER --$INT=16-- } --$COMPMASK=16\n"
              "S T ::= { a } --$VSNAME=z\n");
    EXPECT_EQ(errors(), "");
    const VNodeNr first{typeAt(head("T")).namedVals};
    EXPECT_EQ(valueAt(first).vflags & VF_TED3, VF_TED3);
    EXPECT_EQ(valueAt(VNodeNr{first.nr + 1}).vflags & VF_TED3, 0);
    EXPECT_EQ(valueAt(valueHead("v")).vflags & VF_TED3, VF_TED3);
    EXPECT_TRUE(isMarked(head("C")));
    EXPECT_EQ(marked(TNodeNr{typeAt(head("C")).ref}), "val ");
    EXPECT_TRUE(isMarked(head("S")));
}

TEST_F(TypeOptions, AreIgnoredInsideDeferredNotationAndWhereNoRuleTakesThem) {
    parseBody("T ::= SEQUENCE OF\n--$INT=16\nINTEGER\n"
              "U ::= T (WITH COMPONENT (INTEGER --$INT=16--\n))\n"
              "v INTEGER --$INT=16--\n::= 5");
    EXPECT_EQ(errors(), "4: $Option(s) ignored\n6: $Option(s) ignored\n8: $Option(s) ignored\n");
}

} // namespace
} // namespace orvo
