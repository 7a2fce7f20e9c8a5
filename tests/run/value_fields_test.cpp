#include <gtest/gtest.h>

#include <sstream>

#include "support/cases.h"

namespace orvo::test {
namespace {

/// Compiles types under the options and compares their value fields: "INTEGER: (8, 8) ; ...".
void expectFields(const std::string& options, const std::string& fields) {
    SCOPED_TRACE(options);
    std::istringstream words(options);
    const std::vector<std::string> list{std::istream_iterator<std::string>(words), {}};
    expectTypes(fields, {list}, [](const TreeFacts& tree, const std::string& type) {
        return tree.valueField(type);
    });
}

TEST(ValueFields, OfNumbersFollowTheirRange) {
    expectFields("", R"(
INTEGER: (8, 8) ; INTEGER (0..127): (6, 6) ; INTEGER (-128..0): (6, 6) ; INTEGER (0..255): (7, 7)
INTEGER (0..<128): (6, 6) ; INTEGER (-129<..0): (6, 6) ; INTEGER (-129..0): (7, 7)
INTEGER (0..32768): (8, 8) ; INTEGER (0..2147483648): (9, 9) ; INTEGER (MIN..10): (8, 8)
INTEGER (10..MAX): (8, 8) ; INTEGER (MIN..2147483648): (9, 9) ; INTEGER (5000000000..MAX): (9, 9)
ENUMERATED { a, b }: (6, 6) ; ENUMERATED { a, b(128) }: (7, 7) ; REAL: (11, 11) ; REAL (0): (11, 11)
)");
    expectFields("-INT=U8", R"(
INTEGER (0..255): (2, 2) ; INTEGER (0..256): (3, 3) ; INTEGER (0..65536): (4, 4)
INTEGER (0..4294967295): (4, 4) ; INTEGER (0..4294967296): (5, 5) ; INTEGER (0..MAX): (4, 4)
INTEGER (-1..255): (7, 7) ; INTEGER: (8, 8) ; ENUMERATED { a }: (2, 2)
INTEGER (0..9) --$INT=U16--: (3, 3) ; INTEGER (0..300) --$INT=U32--: (4, 4)
INTEGER (0..9) --$INT=U64--: (5, 5) ; INTEGER (-1..9) --$INT=U64--: (9, 9)
ENUMERATED { a } --$INT=U64--: (4, 4) ; ENUMERATED { a } --$INT=64--: (8, 8)
INTEGER (0..9) --$INT=16--: (7, 7) ; INTEGER (0..9) --$INT=32--: (8, 8)
INTEGER (0..9) --$INT=64--: (9, 9) ; INTEGER (0..9) --$INT=0--: (6, 6)
)");
    expectFields("-REAL=0 -REALLIM={100,10,2}", R"(
REAL: (11, 11)
REAL ({mantissa -1, base 10, exponent 4}..{mantissa 10000, base 2, exponent 0}): (10, 10)
REAL ({mantissa -10001, base 10, exponent 0}..0): (11, 11)
REAL (0..{mantissa 10001, base 10, exponent 0}): (11, 11) ; REAL (0..MAX): (11, 11)
REAL (0) --$REAL=64--: (11, 11) ; REAL (0) --$REAL=128--: (12, 12)
)");
    expectFields("-REAL=128 -C-GENERATION=REAL", R"(
REAL: (11, 11) ; INTEGER: (8, 8)
)");
}

TEST(ValueFields, OfStringsAndListsFollowTheirSize) {
    expectFields("", R"(
OCTET STRING: (20, 8) ; OCTET STRING (SIZE (10)): (13, 0) ; OCTET STRING (SIZE (0..100)): (14, 2)
OCTET STRING (SIZE (0..300)): (15, 3) ; OCTET STRING (SIZE (0..4096)): (15, 3)
OCTET STRING (SIZE (0..4097)): (19, 3) ; OCTET STRING (SIZE (1..MAX)): (20, 4)
OCTET STRING (SIZE (0..16385)): (21, 8) ; OCTET STRING (SIZE (16384)): (17, 0)
BIT STRING (SIZE (0..10)) --$DYN--: (18, 2) ; IA5String (SIZE (0..10)) --$SEG--: (21, 8)
ObjectDescriptor (SIZE (0..10)) --$FRAME--: (22, 8) ; BMPString (SIZE (0..10)): (14, 2)
BMPString: (35, 8) ; BMPString (SIZE (5000)): (32, 0) ; UniversalString (SIZE (0..5000)): (19, 3)
CHARACTER STRING: (24, 0) ; NumericString (FROM ("0")): (20, 8)
OCTET STRING (SIZE (10)) --$N=8--: (14, 2) ; OCTET STRING (SIZE (0..100)) --$N=16--: (15, 3)
OCTET STRING (SIZE (0..300)) --$N=8--: (15, 3) ; OCTET STRING (SIZE (10)) --$N=64--: (16, 4)
SEQUENCE OF NULL: (21, 8) ; SEQUENCE SIZE (3) OF NULL: (24, 0) ; SET SIZE (0..300) OF NULL: (24, 3)
SET SIZE (3) --$N=32-- OF NULL: (24, 4) ; SEQUENCE SIZE (0..9) --$SEG-- OF NULL: (21, 8)
SEQUENCE --$FRAME-- OF NULL: (22, 8)
)");
    expectFields("-N=16", R"(
OCTET STRING (SIZE (10)): (15, 3) ; SEQUENCE OF NULL: (21, 8)
)");
    expectFields("-C-GENERATION=SIGNED-CONTROL-MEMBER", R"(
OCTET STRING (SIZE (10)): (13, 0) ; OCTET STRING (SIZE (0..100)): (14, 6)
OCTET STRING (SIZE (0..200)) --$N=8--: (15, 7) ; OCTET STRING (SIZE (10)) --$N=64--: (16, 8)
)");
    expectFields("-SEGSTRLIM=0 -DYNSTRLIM=0 -SEGLISTLIM=0 -DYNLISTLIM=0 -DYNARRLIM=5", R"(
OCTET STRING: (16, 8) ; BMPString (SIZE (0..20000)): (15, 3) ; SEQUENCE OF NULL: (24, 8)
SEQUENCE SIZE (0..6) OF NULL: (24, 2)
)");
}

TEST(ValueFields, OfStructuresAndOtherKinds) {
    const auto optionals = [](int count) {
        std::string text = "SEQUENCE { c [0] NULL OPTIONAL";
        for (int i = 1; i < count; ++i) text += numbered(", c# [#] NULL OPTIONAL", i);
        return text + " }";
    };
    const auto alternatives = [](int count) {
        std::string text = "CHOICE { c [0] NULL";
        for (int i = 1; i < count; ++i) text += numbered(", c# [#] NULL", i);
        return text + " }";
    };
    const std::string o8 = optionals(8), o9 = optionals(9), o17 = optionals(17);
    const std::string c127 = alternatives(127), c128 = alternatives(128);
    const std::string o8Wide = o8 + " --$COMPMASK=32--", o17Small = o17 + " --$COMPMASK=8--";
    const std::string c2Wide = alternatives(2) + " --$CHOICE=32--";
    expectFields("", R"(
SEQUENCE { a NULL }: (24, 0) ; SEQUENCE { a NULL, ... }: (24, 6) ; SET { a NULL }: (24, 6)
BOOLEAN: (1, 0) ; NULL: (23, 0) ; ANY: (22, 0) ; EMBEDDED PDV: (26, 0) ; OBJECT IDENTIFIER: (27, 0)
UTCTime: (28, 0) ; EXTERNAL: (30, 0) ; INSTANCE OF TYPE-IDENTIFIER: (24, 0)
)" + o8 + ": (24, 6)\n" + o9 +
                         ": (24, 7)\n" + o17 + ": (24, 8)\n" + o8Wide + ": (24, 8)\n" + o17Small +
                         ": (24, 8)\n" + c127 + ": (24, 6)\n" + c128 + ": (24, 7)\n" + c2Wide +
                         ": (24, 8)\n");
    expectFields("-STANDARD-VERSION=1990 -COMPMASK=16 -CHOICE=16", R"(
EXTERNAL: (29, 0) ; SEQUENCE { a NULL }: (24, 7) ; CHOICE { a NULL }: (24, 7)
)" + o8 + ": (24, 7)\n" + o17 + ": (24, 8)\n");
    expectFields("-COMPMASK=32 -CHOICE=32", R"(
SET { a NULL }: (24, 8)
)" + c128 + ": (24, 8)\n");
    expectFields("-C-GENERATION=ANY-FUNCTIONS", R"(
ANY: (25, 0) ; ANY --$FRAME--: (22, 0)
)");
    expectFields("-C-GENERATION=ANY-FUNCTIONS -DEFINITION-CATEGORY=1", R"(
ANY: (22, 0)
)");
}

TEST(ValueFields, OfReferencesAreThoseOfTheType) {
    const TreeFacts tree(expectMarked(R"(
A ::= B (0..5) B ::= INTEGER (0..300)
R ::= SEQUENCE { next R OPTIONAL, any C.&Type, id C.&id, all SEQUENCE SIZE (0..2) OF R }
S ::= R C ::= CLASS { &id INTEGER, &Type }
)"),
                         "m");
    // That of R.next is known only when R has been checked.
    expectFacts("A: (7, 7) ; R: (24, 6) ; R.next: (24, 6) ; R.all.*: (24, 6) ; S: (24, 6)\n"
                "R.any: (24, 0) ; C.Type: (31, 0)",
                [&](const std::string& path) { return tree.valueField(path); });
}

TEST(ValueFields, SizeLimitsAndDirectivesAreWeighed) {
    const RunResult run = expectMarked(R"(
A ::= OCTET STRING (SIZE (10)) --$SIZE-LIMIT=5-- --! W $Option(s) ignored: SIZE-LIMIT used with a fixed size OCTET STRING type.
B ::= OCTET STRING (SIZE (0..100)) --$SIZE-LIMIT=200-- --! W $Option(s) ignored: SIZE-LIMIT=200 is greater than upper endpoint (100)
C ::= SEQUENCE SIZE (10..100) --$SIZE-LIMIT=9-- OF NULL --! W $Option(s) ignored: SIZE-LIMIT=9 is less than lower endpoint (10)
D ::= OCTET STRING (SIZE (0..1000)) --$SIZE-LIMIT=100--
E ::= IA5String --$SIZE-LIMIT=4000:ERROR--
F ::= BIT STRING (SIZE (20000)) --$DYN-- --! W $Option changed to : SEG
G ::= SEQUENCE SIZE (0..5000) --$DYNARR-- OF NULL --! W $Option changed to : DYN
H ::= SEQUENCE SIZE (0..20000) --$DYNARR-- OF NULL --! W $Option changed to : SEG
I ::= SEQUENCE SIZE (0..10) --$DYNARR-- OF NULL J ::= SET SIZE (0..10) OF NULL
K ::= OCTET STRING (SIZE (0..4294967295)) L ::= OCTET STRING (SIZE (4294967296..MAX))
N ::= OCTET STRING (SIZE (0..4294967296)) --! W Unimplemented: 
)",
                                       {{"-DYNARRLIM=9"}});
    EXPECT_NE(run.listing("m").find(
                  "Unimplemented: \n"
                  "     Support for string/sequence-of types with an explicit size constraint\n"
                  "     upper bound larger than MAXUINT32. (4294967295)\n"),
              std::string::npos);
    const TreeFacts tree(run, "m");
    expectFacts("A: (13, 0) OPTION 0 ; B: (14, 2) OPTION 0 ; C: (24, 2) OPTION DYNARR 0\n"
                "D: (14, 2) OPTION 100 ; E: (16, 8) OPTION 4000 ; F: (21, 8) SEG 0\n"
                "G: (21, 8) DYN 0 ; H: (21, 8) SEG 0 ; I: (24, 2) DYNARR 0 ; J: (24, 2) DYNARR 0\n"
                "K: (21, 8) SEG 0 ; L: (20, 4) DYN 0 ; N: (21, 8) SEG 0",
                [&](const std::string& type) {
                    return tree.valueField(type) + " " + tree.optFlags(type) + " " +
                           std::to_string(tree.node(type).sizeLimit);
                });
}

TEST(ValueFields, ImpossibleSizesAreReported) {
    expectMarked(R"(
A ::= OCTET STRING (SIZE (-1..5)) --! Invalid size constraint
B ::= SEQUENCE SIZE (MIN..5) OF NULL
C ::= SET (SIZE (1..5) ^ SIZE (6..7)) OF NULL --! Invalid size constraint
)");
}

} // namespace
} // namespace orvo::test
