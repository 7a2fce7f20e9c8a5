// What the comparison of trees sees: one field changed by hand in each kind of record.

#include "meta_dump.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "support/run.h"

namespace orvo::test {
namespace {

using namespace stx;

const SourceFile moduleM{"m.asn", R"(M DEFINITIONS IMPLICIT TAGS ::= BEGIN
IMPORTS Other, other FROM N;
Seq ::= [APPLICATION 1] SEQUENCE {
    a [0] INTEGER { one(1), two(2) } (1..10 | 20, ..., 30 ! 5) --$INT=U8 $BEO=x--,
    b [number] EXPLICIT BIT STRING { x(0) } DEFAULT { x },
    c [3] Other OPTIONAL, d [4] SEQUENCE (SIZE (0..3)) --$SIZE-LIMIT=2-- OF Seq, ...,
    [[ e [5] IA5String (SIZE (2))(FROM ("a".."c")) ]] } --$ENTRY--
Inner ::= Seq (WITH COMPONENTS { ..., a (one) , c ABSENT })
Choice ::= CHOICE { real [0] REAL (0<..<{mantissa 1, base 2, exponent 0}), enum [1] ENUMERATED { p, q(5), ... } --$SKIP=ERROR--,
    text [2] BMPString, wide [3] UniversalString (ALL EXCEPT "u"), oid OBJECT IDENTIFIER }
Any ::= SEQUENCE { id INTEGER, any ANY DEFINED BY id, of INSTANCE OF TYPE-IDENTIFIER OPTIONAL }
CLS ::= CLASS { &id INTEGER UNIQUE, &Type OPTIONAL, &value &Type OPTIONAL, &Set INTEGER DEFAULT {1} }
    WITH SYNTAX { ID &id [TYPE &Type [VALUE &value]], [VALUES &Set] }
object CLS ::= { ID 1 TYPE Choice VALUE text : "b", VALUES {1..5 | 7} }
Objects CLS ::= { object | { ID 2 TYPE NULL, }, ... }
Table ::= SET { id [0] CLS.&id ({Objects}), type [1] CLS.&Type ({Objects}{@id}) }
Select ::= [1] enum < Choice
FromObject ::= object.&Type
Pair {Type, INTEGER : max} ::= SEQUENCE { first [0] Type, second [1] INTEGER (0..max) }
Instance ::= Pair { BOOLEAN, 7 }
Values INTEGER ::= { 1 | (5 ^ 5) | other }
number INTEGER ::= 2 --$VPREF=v_--
seq Seq ::= { a two, b '1'B, d {}, e "ab" }
choice Choice ::= wide : "u4"
real Choice ::= real : { mantissa 5, base 10, exponent -1 }
oid OBJECT IDENTIFIER ::= { iso member-body(2) number 5 }
table Table ::= { id 2, type NULL : NULL }
true BOOLEAN ::= TRUE
END
)"};
const SourceFile moduleN{"n.asn", "N DEFINITIONS ::= BEGIN\n"
                                  "Other ::= INTEGER (0..9)\nother INTEGER ::= 9\nEND\n"};

// Fields that are not compared, or only in part.
constexpr struct {
    Kind kind;
    const char *field, *why;
} leftOut[] = {
    {MNODE, "modTimeStamp", "the run"},
    {MNODE, "modName", "given by the arrangement"},
    {MNODE, "stxName", "given by the arrangement"},
    {MNODE, "firstDefVal", "DEFAULT values are compared where they belong"},
    {MNODE, "modOid", "modules of arrangements have none"},
    {MNODE, "exportsState", "modules of arrangements export all"},
    {MNODE, "importsState", "given by the arrangement"},
    {MNODE, "selection", "given by the arrangement"},
    {MNODE, "srcDir", "the run"},
    {MNODE, "srcFile", "given by the arrangement"},
    {TNODE, "line", "given by the order"},
    {VNODE, "line", "given by the order"},
    {SUB, "line", "given by the order"},
    {SNODE, "line", "given by the order"},
    {TNODE, "actParRec", "the number of an instance; that there is one is compared"},
    {VNODE, "actParRec", "the number of an instance; that there is one is compared"},
    {VNODE, "val", "of an object identifier the number of a text that is not in the file"},
    {VNODE, "next", "of DEFAULT values, which are compared where they belong"},
    {TNODE, "tedFirst", "without tedLast it says nothing"},
    {VNODE, "tedFirst", "without tedLast it says nothing"},
    {TED, "unused1", "no use"},
};

class Changes : public testing::Test {
  protected:
    const RunResult run = compile({moduleM, moduleN});
    const std::string path = (run.dir->path() / "m.stx").string(), bytes = run.tree("m");
    meta::Dump before;
    meta::Shown shown;
    Tree tree; // of m.stx
    int compared = 0;

    std::string dump(meta::Dump& into, meta::Shown* what) const {
        Trees trees;
        std::string error;
        return meta::addDump(into, trees, path, error, what) ? "" : error;
    }
    void SetUp() override {
        ASSERT_EQ(run.status, 0) << run.diagnostics("m");
        ASSERT_EQ(dump(before, &shown), "");
        std::string error;
        ASSERT_TRUE(tree.open(path, error)) << error;
    }
    /// Changes bits of one byte of the file: it must be refused, or the difference be seen.
    bool isSeen(size_t at, int bits) {
        std::string changed = bytes;
        changed[at] = static_cast<char>(changed[at] ^ bits);
        std::ofstream(path, std::ios::binary) << changed;
        meta::Dump after;
        if (!dump(after, nullptr).empty()) return true;
        ++compared;
        return after != before;
    }
    /// Some of the records that are compared, first those where the field holds something.
    std::vector<size_t> placesOf(Kind kind, size_t offset, size_t width) const {
        std::vector<size_t> places, empty;
        for (const auto& [of, nr] : shown) {
            if (of != kind || nr > tree.count(kind))
                continue; // strings of no use have high numbers
            const auto at =
                static_cast<size_t>(tree.bytes(kind, nr).data() - tree.bytes(MNODE, 1).data()) +
                offset;
            const bool isZero = bytes.find_first_not_of('\0', at) >= at + width;
            (isZero ? empty : places).push_back(at);
        }
        if (places.size() > 8) places.resize(8);
        places.insert(places.end(), empty.begin(),
                      empty.begin() + std::min<long>(2, std::ssize(empty)));
        return places;
    }
};

TEST_F(Changes, OfAnyFieldAreSeen) {
    for (const Kind kind : {MNODE, TNODE, VNODE, TAG, SUB, TED, SNODE})
        for (const Field& field : fieldsOf(kind)) {
            SCOPED_TRACE(std::string(kindNames[kind]) + "." + field.name);
            const bool isLeftOut = std::ranges::any_of(leftOut, [&](const auto& row) {
                return row.kind == kind && std::string_view(row.field) == field.name;
            });
            bool isMissed = false;
            compared = 0;
            for (const size_t at : placesOf(kind, field.offset, field.width))
                for (const size_t word : {0U, 1U, 2U}) { // of a field of several words
                    const size_t byte =
                        field.width > 4 ? std::min(4 * word, field.width - size_t{1}) : 0;
                    const bool is = isSeen(at + byte, 1 << (word * 3));
                    const bool isExcused = isLeftOut && (field.form != Form::Value || word == 1);
                    EXPECT_TRUE(is || isExcused) << "at " << at;
                    isMissed = isMissed || !is;
                }
            EXPECT_EQ(isMissed, isLeftOut);
            EXPECT_TRUE(compared > 0 || kind == MNODE) << "every change was refused";
        }
}

TEST_F(Changes, OfStringsAreSeen) {
    for (const Kind kind : {STRI8, STRI16, STRI32}) {
        const auto places = placesOf(kind, 0, 1);
        EXPECT_FALSE(places.empty()) << kindNames[kind];
        for (const size_t at : places) EXPECT_TRUE(isSeen(at, 1)) << at;
    }
}

} // namespace
} // namespace orvo::test
