#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <random>

#include "lex/orvotok.h"
#include "stx/stxcomponents.h"
#include "stx/stxconstraint.h"
#include "stx/stxnotation.h"
#include "stx/stxreader.h"
#include "stx/stxvalues.h"
#include "support/tree_bytes.h"

namespace {

using orvo::TreeBytes;

constexpr stx::Kind recordKinds[] = {stx::MNODE, stx::TNODE, stx::VNODE, stx::TAG,
                                     stx::SUB,   stx::TED,   stx::SNODE};

/// The error of reading the bytes, "" when they are sound.
std::string errorOf(std::vector<uint8_t> bytes) {
    stx::Tree tree;
    std::string error;
    return tree.parse("x", std::move(bytes), error) ? "" : error;
}

/// A module with every sort of link in use:
/// S ::= [1] SEQUENCE { a T (SIZE (1..n)) DEFAULT v, ... !n, [[ b INTEGER { one(1) } ]] }
/// T ::= OCTET STRING; C ::= CLASS { &id INTEGER } WITH SYNTAX { [ID &id] }; n INTEGER ::= 5
TreeBytes sample() {
    TreeBytes file;
    file.text("");
    orvo::MNode& self = file.modules[0];
    self.modTimeStamp = {213, 213, 20260728, 101112};
    self.modName = file.text("M");
    self.srcDir = file.text("");
    self.srcFile = file.text("m.asn");
    orvo::TNode& s = file.type("S", orvo::TYP_SEQ, orvo::TCS_HEADER);
    s.ref = 2, s.next = 6, s.tags = 1, s.fieldSize = 3, s.line = 3;
    s.tedFirst = s.tedLast = 1;
    s.checkFlags = orvo::CF_OPTIONALS | orvo::CF_EXTENSIBLE;
    orvo::TNode& a = file.type("a", orvo::TYP_SYNONYM, orvo::TCS_OPTIONAL);
    a.refMod = 1, a.ref = 6, a.next = 3, a.constraint = 1, a.defaultVal = 2;
    orvo::TNode& marker = file.type("", orvo::TYP_EXTENSION_MARKER);
    marker.next = 4, marker.constraint = 4;
    file.type("", orvo::TYP_EXTADDGRP, orvo::TCS_EXTADDGRP).ref = 5;
    file.type("b", orvo::TYP_INTEGER).namedVals = 3;
    file.type("T", orvo::TYP_OCTSTR, orvo::TCS_HEADER).next = 7;
    orvo::TNode& cls = file.type("C", orvo::TYP_CLASS, orvo::TCS_HEADER);
    cls.ref = 8, cls.syntaxList = 1;
    file.type("id", orvo::TYP_INTEGER).formals = 9; // no sound file has formals there; a link it is
    file.type("", orvo::TYP_NONE, orvo::TCS_FORMAL);

    orvo::VNode& n = file.value("n", orvo::TYP_INTEGER, orvo::VST_HEADER);
    n.val.number = orvo::i64of(5), n.govType = 5, n.govTypeMod = 1;
    orvo::VNode& v = file.value("", orvo::TYP_OCTSTR, orvo::VST_DEFAULT);
    v.val.str = {2, 0, file.text("AB"), 0};
    v.govType = 6, v.govTypeMod = 1;
    orvo::VNode& one = file.value("one", orvo::TYP_INTEGER, orvo::VST_NAMED_NUMBER);
    one.val.number = orvo::i64of(1);
    orvo::VNode& ref = file.value("", orvo::TYP_SYNONYM);
    ref.refMod = 1, ref.ref = 1;
    file.value("", orvo::TYP_EXTENSION_MARKER, orvo::VST_NAMED_NUMBER).ref = 13;
    for (uint32_t nr = 6; nr <= 13; ++nr) file.value("", orvo::TYP_INTEGER); // parts of others

    file.tags = {{orvo::TAG_CONTEXT, orvo::TAGMODE_IMPLICIT, 1, 2},
                 {orvo::TAG_APPLICATION, orvo::TAGMODE_EXPLICIT, -6, 0}};
    file.subs.resize(5);
    file.subs[3] = {0, orvo::SUB_EXCEPTION, 0, {}, 1, 5, 4, 0, 7, 0, 0};
    file.subs[4] = {0, orvo::SUB_CONTENTS, 0, {}, 1, 5, 4, 0, 0, 8, 9};
    file.subs[0] = {0, orvo::SUB_SIZE, 0, {}, 1, 2, 4, 0, 0, 2, 0};
    file.subs[1] = {0, orvo::SUB_UNION, 0, {}, 1, 5, 4, 0, 0, 3, 0};
    file.subs[2] = {
        0, orvo::SUB_RANGE, orvo::SUBF_LOWER | orvo::SUBF_EXCEPTION, {}, 1, 5, 4, 0, 10, 11, 12};
    file.options = {{orvo::TED_OPTION, {}, file.text("$N=8")}};
    file.syntax = {{orvo::TOK_LBRACKET, {}, 0, 2, 9, 0},
                   {orvo::TOK_TYPEID, {}, 0, static_cast<int32_t>(file.text("ID")), 9, 3},
                   {orvo::TOK_VALUEFIELDID, {}, 1, 8, 9, -1}};
    self.firstTypeAss = 1, self.firstValAss = 1, self.firstDefVal = 2, self.modOid = 4;
    file.strings16 = {u"\u20ac"};
    file.strings32 = {U"\U0001F600x"};
    return file;
}

TEST(StxReader, LayoutsAndNamesAreThoseOfTheCompiler) {
    for (const stx::Kind kind : recordKinds) {
        const std::span<const orvo::Field> written =
            orvo::fieldsOf(static_cast<orvo::RecKind>(kind));
        const std::span<const stx::Field> read = stx::fieldsOf(kind);
        ASSERT_EQ(read.size(), written.size()) << stx::kindNames[kind];
        for (size_t at = 0; at < read.size(); ++at) {
            EXPECT_STREQ(read[at].name, written[at].name);
            EXPECT_EQ(read[at].offset, written[at].offset) << read[at].name;
            EXPECT_EQ(read[at].width, written[at].size) << read[at].name;
        }
    }
    for (const orvo::TypeRow& row : orvo::typeArr) {
        EXPECT_STREQ(stx::typeTable[row.code].name, row.name);
        EXPECT_STREQ(stx::typeTable[row.code].asnName, row.asnName == nullptr ? "" : row.asnName);
        EXPECT_EQ(stx::typeTable[row.code].tag, row.tag) << row.name;
        EXPECT_EQ(stx::typeTable[row.code].structured, orvo::isStructured(row.code)) << row.name;
        const auto in = [&](orvo::TypeClass property) { return orvo::is(row.code, property); };
        EXPECT_EQ(stx::typeTable[row.code].stringValue,
                  in(orvo::TypeClass::Bits) || in(orvo::TypeClass::Text) ||
                      row.code == orvo::TYP_OBJID || row.code >= orvo::TYP_RELOID)
            << row.name;
        EXPECT_EQ(stx::typeTable[row.code].bounded, in(orvo::TypeClass::Sized) ||
                                                        row.code == orvo::TYP_INTEGER ||
                                                        row.code == orvo::TYP_ENUM)
            << row.name;
    }
    EXPECT_EQ(stx::codeName(stx::tokenNames, orvo::TOK_VALUEFIELDID), "TOK_VALUEFIELDID");
}

TEST(StxReader, EveryTruncationIsDiagnosed) {
    const std::vector<uint8_t> whole = sample().bytes();
    ASSERT_EQ(errorOf(whole), "");
    for (size_t size = 0; size < whole.size(); ++size) {
        const std::string error = errorOf({whole.begin(), whole.begin() + static_cast<long>(size)});
        EXPECT_NE(error.find("cut: "), std::string::npos) << size << ": " << error;
    }
    std::vector<uint8_t> longer = whole;
    longer.push_back(0);
    EXPECT_EQ(errorOf(longer), "x: too long: 1 bytes follow the last record");
}

// clang-format off
TEST(StxReader, DamagedRecordsAreDiagnosed) {
    constexpr const char* circle = "the list leads back to its own beginning";
    const struct {
        void (*damage)(TreeBytes&);
        const char *start, *end;
    } cases[] = {
        {[](TreeBytes& f) { f.types[6].next = 1; }, "tNode ", circle},
        {[](TreeBytes& f) { f.types[3].ref = 1; }, "tNode ", circle},
        {[](TreeBytes& f) { f.values[2].next = 3; }, "vNode 3, ", circle},
        {[](TreeBytes& f) { f.tags[1].next = 1; }, "tagRec 1, ", circle},
        {[](TreeBytes& f) { f.subs[1].left = 1; }, "subRec ", circle},
        {[](TreeBytes& f) { f.values[4].ref = 5; }, "vNode 5, ", circle},
        {[](TreeBytes& f) { f.values[4].ref = 14; }, "vNode 5, field ref: ", "14 is out of range (vNode 1..13)"},
        {[](TreeBytes& f) { f.values[0].val.integer.text = 15; }, "vNode 1, field val: ", "15 is out of range (string 1..14)"},
        {[](TreeBytes& f) { f.types[2].constraint = 6; }, "tNode 3, field constraint: ", "6 is out of range (subRec 1..5)"},
        {[](TreeBytes& f) { f.subs[3].third = 14; }, "subRec 4, field third: ", "14 is out of range (vNode 1..13)"},
        {[](TreeBytes& f) { f.subs[4].left = 14; }, "subRec 5, field left: ", "14 is out of range (vNode 1..13)"},
        {[](TreeBytes& f) { f.subs[4].right = 14; }, "subRec 5, field right: ", "14 is out of range (vNode 1..13)"},
        {[](TreeBytes& f) { f.subs[4].subKind = orvo::SUB_PATTERN; f.subs[4].left = 14; },
         "subRec 5, field left: ", "14 is out of range (vNode 1..13)"},
        {[](TreeBytes& f) { f.syntax[0].value = 1; }, "sNode 1, ", circle},
        {[](TreeBytes& f) { f.types[0].typeCode = 51; }, "tNode 1, field typeCode: ", "51 is not a known code"},
        {[](TreeBytes& f) { f.types[1].compStatus = 8; }, "tNode 2, field compStatus: ", "8 is not a known code"},
        {[](TreeBytes& f) { f.types[1].refMod = 2; }, "tNode 2, field refMod: ", "2 is out of range (mNode 1..1)"},
        {[](TreeBytes& f) { f.types[1].name = 500; }, "tNode 2, field name: ", "500 is out of range (string 1..14)"},
        {[](TreeBytes& f) { f.types[4].constraint = 1; }, "tNode 5, field constraint: ",
         "subRec 1 is part of another record already"},
        {[](TreeBytes& f) { f.subs[2].left = 2; }, "subRec 3, field left: ",
         "vNode 2 is part of another record already"},
        {[](TreeBytes& f) { f.syntax[2].next = -2; }, "sNode 3, field next: ", "-2 does not lead back to an optional group"},
    };
    for (const auto& row : cases) {
        TreeBytes file = sample();
        row.damage(file);
        const std::string error = errorOf(file.bytes());
        EXPECT_TRUE(error.starts_with(std::string("x: ") + row.start) && error.ends_with(row.end)) << error;
    }
    // clang-format on
    std::vector<uint8_t> bytes = sample().bytes();
    bytes.back() = 1;
    EXPECT_EQ(errorOf(bytes), "x: string32 1, characters: the string is not terminated");
}

/// Everything that walks, on every record; returns so that nothing is optimised away.
size_t walkAll(const stx::Tree& tree) {
    stx::Trees trees;
    std::string error;
    size_t size = stx::valueAssignments(tree).size();
    for (uint32_t nr = 1; nr <= tree.count(stx::TNODE); ++nr) {
        const stx::TypeRef type{&tree, nr};
        stx::skipTypes(trees, type, true, error);
        size +=
            stx::allComponents(trees, type, error).size() + stx::tagListText(trees, type).size() +
            stx::finalTags(trees, type, 1, error).tags.size() + stx::typeText(trees, type).size() +
            stx::options(tree, stx::TNODE, nr).size() + stx::namedValues(tree, nr).size() +
            stx::markerText(trees, tree, stx::TNODE, nr).size();
    }
    for (uint32_t nr = 1; nr <= tree.count(stx::VNODE); ++nr) {
        size += stx::valueText(trees, {&tree, nr}).size();
        stx::skipValues(trees, {&tree, nr}, error);
    }
    for (uint32_t nr = 1; nr <= tree.count(stx::SUB); ++nr)
        size += stx::constraintText(trees, tree, nr).size() + stx::relations(tree, nr).size();
    return size;
}

TEST(StxReader, DamagedBytesEndInAnErrorOrInASoundTree) {
    const std::vector<uint8_t> whole = sample().bytes();
    std::mt19937 random(20260728);
    int sound = 0;
    for (int round = 0; round < 20000; ++round) {
        std::vector<uint8_t> bytes = whole;
        for (auto flips = 1 + random() % 3; flips > 0; --flips) {
            const size_t at = random() % bytes.size();
            bytes[at] = static_cast<uint8_t>(random() % 2 == 0 ? random() % 12 : random());
        }
        stx::Tree tree;
        std::string error;
        if (!tree.parse("x", bytes, error)) {
            EXPECT_TRUE(error.starts_with("x: ")) << error;
            continue;
        }
        ++sound;
        walkAll(tree);
    }
    EXPECT_GT(sound, 1000);
}

/// S ::= SEQUENCE { a NULL, ... !7, [[ 2: b NULL ]], c NULL, ..., d UTF8String (PATTERN "\u00e9") }
/// T ::= SEQUENCE { x NULL, ..., [[ COMPONENTS OF S ]], ..., e DATE }, both with automatic tags
/// O ::= OCTET STRING (CONTAINING S ENCODED BY {n(0) 2}) (ENCODED BY {n 2}), and a relation
/// {@..a.b,@c}
TreeBytes laterSample() {
    TreeBytes file;
    file.modules[0].modName = file.text("M");
    orvo::TNode& s = file.type("S", orvo::TYP_SEQ, orvo::TCS_HEADER);
    s.ref = 2, s.next = 9, s.checkFlags = orvo::CF_AUTOMATIC_TAGS;
    file.type("a", orvo::TYP_NULL).next = 3;
    orvo::TNode& marker = file.type("", orvo::TYP_EXTENSION_MARKER);
    marker.next = 4, marker.constraint = 1;
    orvo::TNode& group = file.type("", orvo::TYP_EXTADDGRP, orvo::TCS_EXTADDGRP);
    group.ref = 5, group.next = 6, group.sizeLimit = 2;
    file.type("b", orvo::TYP_NULL);
    file.type("c", orvo::TYP_NULL).next = 7;
    file.type("", orvo::TYP_EXTENSION_MARKER).next = 8;
    file.type("d", orvo::TYP_UTF8STR).constraint = 2;
    orvo::TNode& t = file.type("T", orvo::TYP_SEQ, orvo::TCS_HEADER);
    t.ref = 10, t.next = 16, t.checkFlags = orvo::CF_AUTOMATIC_TAGS;
    file.type("x", orvo::TYP_NULL).next = 11;
    file.type("", orvo::TYP_EXTENSION_MARKER).next = 12;
    orvo::TNode& other = file.type("", orvo::TYP_EXTADDGRP, orvo::TCS_EXTADDGRP);
    other.ref = 13, other.next = 14;
    orvo::TNode& whole = file.type("", orvo::TYP_SYNONYM, orvo::TCS_COMPOF);
    whole.refMod = 1, whole.ref = 1;
    file.type("", orvo::TYP_EXTENSION_MARKER).next = 15;
    file.type("e", orvo::TYP_DATE);
    file.type("O", orvo::TYP_OCTSTR, orvo::TCS_HEADER).constraint = 3;
    file.modules[0].firstTypeAss = 1;

    file.value("", orvo::TYP_INTEGER).val.number = orvo::i64of(7);
    file.value("", orvo::TYP_UTF8STR).val.str = {1, 0, file.text("\xc3\xa9\xff"), 0};
    orvo::VNode& holder = file.value("", orvo::TYP_OPEN);
    holder.refMod = 1, holder.ref = 1;
    file.value("", orvo::TYP_RELOID).ref = 5;
    file.value("n", orvo::TYP_INTEGER).next = 6;
    file.value("", orvo::TYP_INTEGER).val.number = orvo::i64of(2);
    orvo::VNode& list = file.value("", orvo::TYP_SEQOF);
    list.ref = 5;
    // a value of each user's own, with its parts
    const auto copy = [&file](const auto& self, uint32_t nr) -> uint32_t {
        if (nr == 0) return 0;
        orvo::VNode node = file.values[nr - 1];
        node.next = self(self, node.next);
        if (node.valCode == orvo::TYP_RELOID) node.ref = self(self, node.ref);
        file.values.push_back(node);
        return static_cast<uint32_t>(file.values.size());
    };
    file.values[6].ref = copy(copy, 5);
    const auto again = [&](uint32_t nr) { return copy(copy, nr); };

    file.subs.resize(7);
    file.subs[0] = {0, orvo::SUB_EXCEPTION, 0, {}, 0, 0, 1, 0, 1, 0, 0};
    file.subs[1] = {0, orvo::SUB_PATTERN, 0, {}, 0, 0, 1, 0, 0, 2, 0};
    file.subs[2] = {0, orvo::SUB_SERIAL, 0, {}, 0, 0, 1, 0, 0, 4, 0};
    file.subs[3] = {0, orvo::SUB_CONTENTS, 0, {}, 0, 0, 1, 5, 0, 3, 4};
    file.subs[4] = {0, orvo::SUB_CONTENTS, 0, {}, 0, 0, 1, 0, 0, 0, again(4)};
    file.subs[5] = {0, orvo::SUB_TABLE, 0, {}, 0, 0, 1, 0, 0, again(3), 1};
    file.subs[6] = {0, orvo::SUB_SETTINGS, orvo::SUBF_EXCEPTION, {}, 0, 0, 1, 0, again(1), again(2),
                    0};
    const auto name = [&](const char* text) { return static_cast<int32_t>(file.text(text)); };
    file.syntax = {{orvo::TOK_AT, {}, 0, 0, 1, 2},
                   {orvo::TOK_DOT, {}, 0, 0, 1, 3},
                   {orvo::TOK_DOT, {}, 0, 0, 1, 4},
                   {orvo::TOK_VALUEID, {}, 0, name("a"), 1, 5},
                   {orvo::TOK_VALUEID, {}, 0, name("b"), 1, 6},
                   {orvo::TOK_AT, {}, 0, 0, 1, 7},
                   {orvo::TOK_VALUEID, {}, 0, name("c"), 1, 0}};
    return file;
}

/// "a 0, b 2+ [[ 2:": components with their automatic tags, "+" for additions, and their groups.
std::string listed(stx::Trees& trees, stx::TypeRef type) {
    std::string all, error;
    for (const stx::Component& entry : stx::allComponents(trees, type, error)) {
        all += (all.empty() ? "" : ", ") + std::string(type.tree->text(entry.type.node().name)) +
               ' ' + std::to_string(entry.automaticTag) + (entry.extension ? "+" : "");
        if (entry.group) all += ' ' + stx::groupText(entry.group.node());
    }
    return all + error;
}

TEST(StxReader, NotationOfTodayIsWalkedAndWritten) {
    stx::Tree tree;
    std::string error;
    ASSERT_TRUE(tree.parse("x", laterSample().bytes(), error)) << error;
    stx::Trees trees;
    EXPECT_EQ(listed(trees, {&tree, 1}), "a 0, b 2+ [[ 2:, c 3+, d 1");
    EXPECT_EQ(listed(trees, {&tree, 9}), "x 0, a 2+ [[, d 3+ [[, e 1");
    EXPECT_EQ(stx::markerText(trees, tree, stx::TNODE, 3), "... !7");
    EXPECT_EQ(stx::markerText(trees, tree, stx::TNODE, 7), "...");
    constexpr const char* texts[] = {
        "()",
        "(PATTERN \"\\u00e9\\xff\")",
        "(CONTAINING SEQUENCE ENCODED BY {n(0) 2})(ENCODED BY {n(0) 2})",
        "(CONTAINING SEQUENCE ENCODED BY {n(0) 2})",
        "(ENCODED BY {n(0) 2})",
        "(SEQUENCE {@..a.b,@c})",
        "(SETTINGS \"\\u00e9\\xff\" !7)"};
    for (uint32_t nr = 2; nr <= tree.count(stx::SUB); ++nr)
        EXPECT_EQ(stx::constraintText(trees, tree, nr), texts[nr - 1]);
    EXPECT_EQ(stx::valueText(trees, {&tree, 7}), "{n 0, 2}");
    walkAll(tree);
}

/// Every level uses the one below twice, by references, which are no parts.
TEST(StxReader, DoublingEndsSoon) {
    constexpr uint32_t levels = 60;
    TreeBytes file;
    file.modules[0].modName = file.text("M");
    file.modules[0].firstTypeAss = file.modules[0].firstValAss = 1;
    const auto reference = [&](orvo::TNode& node, uint32_t to) {
        node.typeCode = orvo::TYP_SYNONYM, node.refMod = 1, node.ref = to;
    };
    // S1 ::= SEQUENCE { a NULL }; Sn ::= SEQUENCE { COMPONENTS OF Sn-1, COMPONENTS OF Sn-1 }
    for (uint32_t nr = 1; nr <= levels; ++nr) {
        const uint32_t head = 3 * nr - 2;
        orvo::TNode& type = file.type("S", orvo::TYP_SEQ, orvo::TCS_HEADER);
        type.ref = head + 1, type.next = head + 3;
        for (uint32_t entry = 1; entry <= 2; ++entry) {
            orvo::TNode& part =
                file.type("a", orvo::TYP_NULL, nr == 1 ? orvo::TCS_MANDATORY : orvo::TCS_COMPOF);
            if (nr > 1) reference(part, head - 3);
            part.next = entry == 1 ? head + 2 : 0;
        }
    }
    // I1 ::= INTEGER (1); In ::= INTEGER (In-1 | In-1); objects v1 ::= {}, vn ::= {vn-1, vn-1}
    const uint32_t ints = 3 * levels, uses = 4 * levels;
    for (uint32_t nr = 1; nr <= levels; ++nr) {
        orvo::TNode& type = file.type("I", orvo::TYP_INTEGER, orvo::TCS_HEADER);
        type.next = nr == levels ? 0 : ints + nr + 1,
        type.constraint = static_cast<int>(3 * nr - 2);
        file.subs.push_back({0, orvo::SUB_UNION, 0, {}, 1, ints + nr, 1, 0, 0, 3 * nr - 1, 0});
        for (uint32_t use = 0; use < 2; ++use)
            file.subs.push_back({0,
                                 orvo::SUB_CONTAINED_SUBTYPE,
                                 0,
                                 {},
                                 1,
                                 ints + nr,
                                 1,
                                 use == 0 ? 3 * nr : 0,
                                 0,
                                 3 * levels + 2 * nr - 1 + use,
                                 0});
    }
    for (uint32_t nr = 1; nr <= 2 * levels; ++nr)
        reference(file.type("", orvo::TYP_SYNONYM), ints + (nr <= 2 ? 1 : (nr - 1) / 2));
    for (uint32_t nr = 1; nr <= levels; ++nr) { // the names of the values differ from no name
        orvo::VNode& value = file.value("v", orvo::TYP_IA5STR, orvo::VST_HEADER);
        value.ref = nr == 1 ? 0 : levels + 2 * nr - 1, value.next = nr == levels ? 0 : nr + 1;
    }
    for (uint32_t nr = 1; nr <= 2 * levels; ++nr) {
        orvo::VNode& value = file.value("", orvo::TYP_SYNONYM);
        value.refMod = 1, value.ref = nr <= 2 ? 1 : (nr - 1) / 2;
        value.next = nr % 2 == 1 ? levels + nr + 1 : 0;
    }
    for (uint32_t nr = 1; nr <= 2 * levels; ++nr) {
        orvo::VNode& holder = file.value("", orvo::TYP_OPEN);
        holder.refMod = 1, holder.ref = uses + nr;
    }
    file.types[ints].constraint = 0; // I1 ::= INTEGER
    stx::Tree tree;
    std::string error;
    ASSERT_TRUE(tree.parse("x", file.bytes(), error)) << error;
    stx::Trees trees;
    const stx::TypeRef top{&tree, 3 * levels - 2}, last{&tree, ints + levels};
    EXPECT_EQ(stx::structureOf(trees, top).error, "x: tNode 178 has too many components");
    EXPECT_EQ(stx::effectiveBounds(trees, last).error, "");
    EXPECT_EQ(stx::effectiveBounds(trees, last)->root, stx::allIntegers());
    const stx::ValueRef value{&tree, levels};
    EXPECT_NE(stx::stringOf(trees, value).error.find("has too many parts"), std::string::npos);
    const auto text = stx::valueText(trees, value, {stx::Naming::Followed, nullptr});
    EXPECT_NE(text.error, "");
    walkAll(tree);
}

} // namespace
