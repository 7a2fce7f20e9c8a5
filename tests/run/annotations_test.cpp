// What the tree says of types whose components, tags and sizes come from the rules of today's
// notation, each derived from the clause.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

const Frame frame = {.options = edition, .defaults = "AUTOMATIC TAGS "};

/// "a[0] b[1]": the components with their tags as they are encoded, an addition behind a `+`.
std::string tagsOfComponents(const TreeFacts& tree) {
    std::string text;
    std::string error;
    const stx::TypeRef type = stx::skipTypes(tree.trees(), tree.type("T"), true, error);
    for (const stx::Component& entry : stx::allComponents(tree.trees(), type, error)) {
        if (!text.empty()) text += ' ';
        if (entry.extension) text += '+';
        text += entry.type.tree->text(entry.type.node().name);
        const stx::FinalTags final =
            stx::finalTags(tree.trees(), entry.type, entry.automaticTag, error);
        for (const stx::Tag& tag : final.tags) text += stx::tagText(tag);
        if (final.open) text += '*';
    }
    return error.empty() ? text : error;
}

const char* const rootLists = R"(
T ::= SEQUENCE { a INTEGER, ..., b NULL, ..., c NULL } --= a[0] +b[2] c[1] -- 25.3: the root a, c first
T ::= SEQUENCE { ..., b NULL, ... } --= +b[0] -- no root
T ::= SEQUENCE { a NULL, ..., ..., c NULL } --= a[0] c[1] -- no addition
T ::= SET { a NULL, ..., [[ b NULL, d NULL ]], ..., c NULL } --= a[0] +b[2] +d[3] c[1] -- 27.3: as in SEQUENCE; the members of a group in order
T ::= SEQUENCE { a [5] INTEGER, ..., b BOOLEAN, ..., c NULL } --= a[5] +b[UNIVERSAL 1] c[UNIVERSAL 5] -- 25.3: a tag in a root list, no automatic tags
T ::= SEQUENCE { a INTEGER, ..., b NULL, ..., COMPONENTS OF U } U ::= SEQUENCE { x INTEGER, ..., y NULL, ..., z NULL } --= a[0] +b[3] x[1] z[2] -- 25.5: both roots of U, which count as roots of T
T ::= SEQUENCE { COMPONENTS OF U, ..., b NULL, ..., c NULL } U ::= SEQUENCE { x [7] INTEGER, ..., y NULL, ..., z [8] NULL } --= x[0] z[1] +b[3] c[2] -- 25.8: decided before the expansion; 31.2.7: in place of [7] and [8]
T ::= SEQUENCE { a CHOICE { x NULL }, ..., ..., b INTEGER } --= a[0]* b[1] -- 31.2.7 c: the tag of a CHOICE is explicit
T ::= SEQUENCE { a INTEGER OPTIONAL, ..., b NULL OPTIONAL, ..., c NULL DEFAULT NULL } --= a[0] +b[2] c[1] -- what may be absent counts as well
T ::= SEQUENCE { a SEQUENCE OF U, ... ! 3, b U, c U, ..., d U, e U } U ::= [9] NULL --= a[0] +b[3] +c[4] d[1] e[2] -- the tag of U is replaced: 31.2.7, IMPLICIT
)";

TEST(Annotations, TwoRootLists) {
    expectRows(rootLists, frame, tagsOfComponents);
}

const char* const choiceGroups = R"(
T ::= CHOICE { a NULL, ..., [[ b INTEGER ]], ... } --= a[0] +b[1] -- 29.2: alternatives in order
T ::= CHOICE { a NULL, ..., [[ 2: b NULL, c NULL ]], [[ 3: d NULL ]] } --= a[0] +b[1] +c[2] +d[3] -- brackets do not count
T ::= CHOICE { a NULL, ..., b NULL, [[ c NULL, d NULL ]], e NULL } --= a[0] +b[1] +c[2] +d[3] +e[4] -- alone and grouped
T ::= CHOICE { a NULL, ..., [[ b CHOICE { x NULL } ]] } --= a[0] +b[1]* -- explicit
T ::= CHOICE { a [0] NULL, ..., [[ b [1] NULL ]] } --= a[0] +b[1] -- tags as written
T ::= CHOICE { a NULL, b NULL, ..., [[ c NULL, d NULL ]], ... } --= a[0] b[1] +c[2] +d[3] -- two in the root
T ::= CHOICE { a INTEGER, ... ! 5, [[ b NULL ]] } --= a[0] +b[1] -- behind an exception
T ::= SEQUENCE { p CHOICE { a NULL, ..., [[ b NULL ]] }, ..., [[ q NULL ]] } --= p[0]* +q[1] -- a CHOICE within
T ::= CHOICE { a NULL, ..., [[ 4: b NULL ]], c NULL, [[ 7: d NULL ]] } --= a[0] +b[1] +c[2] +d[3] -- version numbers do not count
T ::= CHOICE { a A, ..., [[ b B ]] } A ::= CHOICE { x NULL, ..., [[ y NULL ]] } B ::= [5] INTEGER --= a[0]* +b[1] -- explicit before A, in place of [5] before B
)";

TEST(Annotations, GroupsInChoice) {
    expectRows(choiceGroups, frame, tagsOfComponents);
}

/// "1..5 (constraint)": the size that the tree states.
std::string sizeAndConstraint(const TreeFacts& tree) {
    return tree.bounds("T") + ' ' + tree.constraint("T");
}

const char* const alphabets = R"(
T ::= IA5String (FROM ("a".."z")) --= 0..MAX (FROM ("a".."z")) -- no size
T ::= IA5String (SIZE (1..5) ^ FROM ("ab")) --= 1..5 (SIZE (1..5) ^ FROM ("ab")) -- an intersection has the size of either
T ::= IA5String (FROM ("a") | SIZE (3)) --= 0..MAX (FROM ("a") | SIZE (3)) -- a string of any length may be all of a
T ::= BMPString (SIZE (1..2) | FROM ("a")) (SIZE (0..7)) --= 0..7 (SIZE (1..2) | FROM ("a"))(SIZE (0..7)) -- the first member bounds nothing
T ::= UTF8String (FROM ({0,0,1,0}..{0,1,0,255})) (SIZE (2, ..., 4)) --= 2..4 (FROM ("\u0100".."\U000100ff"))(SIZE (2, ... | 4)) -- additions count
T ::= IA5String (SIZE (1..3) | "abcdefg") --= 0..MAX (SIZE (1..3) | "abcdefg") -- a value is none of the sizes that are given
T ::= IA5String (SIZE (7) | B) B ::= IA5String (SIZE (1..5)) (FROM ("a")) --= 1..7 (SIZE (7) | B) -- the size of a contained subtype
T ::= IA5String (B) B ::= IA5String (SIZE (1..5)) (FROM ("a")) --= 1..5 (B) -- the same
T ::= NumericString (SIZE (N | 8)) (FROM ("0".."9")) N ::= INTEGER (2..3) --= 2..8 (SIZE (N | 8))(FROM ("0".."9")) -- contained in SIZE
T ::= VisibleString (FROM ("a".."z" EXCEPT "q")) (SIZE (1..9) EXCEPT SIZE (9)) --= 1..9 (FROM ("a".."z" EXCEPT "q"))(SIZE (1..9) EXCEPT SIZE (9)) -- EXCEPT: its left operand
)";

TEST(Annotations, AlphabetsAndSizes) {
    expectRows(alphabets, frame, sizeAndConstraint);
}

const char* const dummies = R"(
T ::= P {INTEGER} P {X} ::= SEQUENCE { a X, b NULL } --= a[0][UNIVERSAL 2] b[1] -- 31.2.7 c: an automatic tag is explicit in front of a dummy reference
T ::= P {INTEGER} P {X} ::= SEQUENCE { a [5] X, b [6] NULL } --= a[5][UNIVERSAL 2] b[6] -- so is one without keyword
T ::= P {INTEGER} P {X} ::= SEQUENCE { a [5] EXPLICIT X, b [6] IMPLICIT NULL } --= a[5][UNIVERSAL 2] b[6] -- keywords hold
T ::= P {[7] INTEGER} P {X} ::= SEQUENCE { a [5] X } --= a[5][7] -- the tag of the actual parameter behind it, implicit by the default
T ::= Q {INTEGER} Q {Y} ::= P {Y} P {X} ::= SEQUENCE { a X } --= a[0][UNIVERSAL 2] -- handed on
T ::= Q {INTEGER} Q {Y} ::= SEQUENCE { a P {Y} } P {X} ::= SEQUENCE { a X } --= a[0] -- an instance is no dummy reference
T ::= P {CHOICE { x NULL }} P {X} ::= SEQUENCE { a X } --= a[0]* -- a CHOICE, explicit in any case
T ::= P {INTEGER} P {X} ::= CHOICE { a X, b SEQUENCE OF X, ..., [[ c X ]] } --= a[0][UNIVERSAL 2] b[1] +c[2][UNIVERSAL 2] -- alternatives; a list of it is none
T ::= P {INTEGER} P {X} ::= SEQUENCE { a [5] [6] X } --= a[5][UNIVERSAL 2] -- [6] is explicit, [5] in front of it implicit
T ::= P {I} P {X} ::= SEQUENCE { a X, ..., b I, ..., c X } I ::= INTEGER --= a[0][UNIVERSAL 2] +b[2] c[1][UNIVERSAL 2] -- the same type by its name is implicit
)";

TEST(Annotations, DummyReferences) {
    expectRows(dummies, frame, tagsOfComponents);
}

/// The constraint of a type, or the members of its series.
std::vector<uint32_t> members(const stx::Tree& tree, uint32_t type) {
    const uint32_t root = stx::constraintOf(tree, type);
    if (root == 0) return {};
    return tree.subRec(root).subKind == stx::SUB_SERIAL ? stx::operands(tree, root)
                                                        : std::vector<uint32_t>{root};
}

/// The sizes from the outermost string to the type that is contained last: "1..4 > INTEGER 0..9".
std::string contents(const TreeFacts& tree) {
    std::string text;
    std::string error;
    stx::TypeRef at = tree.type("T");
    for (;;) {
        at = stx::skipTypes(tree.trees(), at, true, error);
        const uint8_t kind = at.node().typeCode;
        const bool isString = kind == stx::TYP_OCTSTR || kind == stx::TYP_BITSTR;
        if (!isString) text += stx::asnName(kind);
        if (kind == stx::TYP_INTEGER) text += ' ';
        if (isString || kind == stx::TYP_INTEGER) text += stx::boundsText(at.node());
        uint32_t type = 0;
        for (const uint32_t sub : members(*at.tree, at.nr))
            if (at.tree->subRec(sub).subKind == stx::SUB_CONTENTS) type = at.tree->subRec(sub).left;
        if (type == 0) return error.empty() ? text : error;
        const stx::VNode setting = at.tree->vNode(type);
        at = {at.tree, setting.ref};
        text += " > ";
    }
}

const char* const contentsRows = R"(
T ::= OCTET STRING (CONTAINING INTEGER (0..9)) --= 0..MAX > INTEGER 0..9
T ::= BIT STRING (CONTAINING BOOLEAN) --= 0..MAX > BOOLEAN
T ::= OCTET STRING (SIZE (2..4)) (CONTAINING INTEGER (-1..1)) --= 2..4 > INTEGER -1..1 -- the size is that of the string
T ::= OCTET STRING (CONTAINING INTEGER) (SIZE (3)) --= 3..3 > INTEGER MIN..MAX -- in any order
T ::= OCTET STRING (CONTAINING OCTET STRING (SIZE (1..7)) (CONTAINING INTEGER (5))) --= 0..MAX > 1..7 > INTEGER 5..5 -- nested
T ::= OCTET STRING (CONTAINING BIT STRING (SIZE (8)) (CONTAINING OCTET STRING (CONTAINING NULL))) --= 0..MAX > 8..8 > 0..MAX > NULL -- nested twice
T ::= OCTET STRING (CONTAINING INTEGER (1..2) ENCODED BY { 2 1 1 }) --= 0..MAX > INTEGER 1..2
T ::= OCTET STRING (ENCODED BY { 2 1 1 }) (SIZE (9)) --= 9..9 -- no type
T ::= OCTET STRING (SIZE (2..5)) (SIZE (1..3)) (CONTAINING INTEGER (7)) --= 2..3 > INTEGER 7..7 -- both sizes hold
T ::= P {INTEGER (4..5)} P {X} ::= OCTET STRING (CONTAINING X) --= 0..MAX > INTEGER 4..5 -- the actual parameter
)";

TEST(Annotations, Contents) {
    expectRows(contentsRows, frame, contents);
}

} // namespace
} // namespace orvo::test
