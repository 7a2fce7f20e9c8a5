#include <gtest/gtest.h>

#include "support/tree.h"
#include "support/tree_bytes.h"

namespace orvo::test {
namespace {

constexpr TimeStamp stamp = {213, 213, 20260728, 101112};

/// N: U ::= [5] IMPLICIT SEQUENCE { x BOOLEAN, ..., y INTEGER (1..10) }, with automatic tags.
TreeBytes moduleN() {
    TreeBytes file;
    MNode& self = file.modules[0];
    self.modTimeStamp = stamp;
    self.modName = file.text("N");
    self.firstTypeAss = 1;
    TNode& u = file.type("U", TYP_SEQ, TCS_HEADER);
    u.ref = 2, u.tags = 1, u.vfKind = 24, u.sizeOpt = 6;
    u.checkFlags = CF_AUTOMATIC_TAGS | CF_EXTENSIBLE | CF_MANDATORY;
    file.type("x", TYP_BOOLEAN).next = 3;
    file.type("", TYP_EXTENSION_MARKER).next = 4;
    TNode& y = file.type("y", TYP_INTEGER);
    y.constraint = 1;
    y.lowerBound = i64of(1), y.upperBound = i64of(10);
    file.tags = {{TAG_CONTEXT, TAGMODE_IMPLICIT, 5, 0}};
    file.subs = {{0, SUB_RANGE, SUBF_LOWER | SUBF_UPPER, {}, 1, 4, 1, 0, 0, 1, 2}};
    file.value("", TYP_INTEGER).val.number = i64of(1);
    file.value("", TYP_INTEGER).val.number = i64of(10);
    return file;
}

/// M: T ::= SEQUENCE { u [0] N.U OPTIONAL, l SEQUENCE OF N.U }
TreeBytes moduleM() {
    TreeBytes file;
    file.modules.resize(2);
    MNode& self = file.modules[0];
    self.modTimeStamp = stamp;
    self.modName = file.text("M");
    self.firstTypeAss = 1;
    MNode& other = file.modules[1];
    other.modTimeStamp = stamp;
    other.modName = file.text("N");
    other.stxName = file.text("n");
    other.recCount[KIND_TNODE] = 4;
    file.type("T", TYP_SEQ, TCS_HEADER).ref = 2;
    TNode& u = file.type("u", TYP_SYNONYM, TCS_OPTIONAL);
    u.refMod = 2, u.ref = 1, u.next = 3, u.tags = 1;
    file.type("l", TYP_SEQOF).ref = 4;
    TNode& element = file.type("", TYP_SYNONYM, TCS_MULTIPLE);
    element.refMod = 2, element.ref = 1;
    file.tags = {{TAG_CONTEXT, TAGMODE_EXPLICIT, 0, 0}};
    return file;
}

RunResult runWith(TreeBytes m, TreeBytes n) {
    RunResult run;
    run.dir = std::make_shared<TempDir>();
    for (auto& [name, file] : {std::pair("m.stx", &m), std::pair("n.stx", &n)}) {
        const std::vector<uint8_t> bytes = file->bytes();
        run.dir->write({name, {bytes.begin(), bytes.end()}});
    }
    return run;
}

TEST(TreeFacts, PathsLeadThroughReferencesIntoOtherModules) {
    const TreeFacts tree(runWith(moduleM(), moduleN()), "m");
    EXPECT_EQ(tree.types(), "T");
    EXPECT_EQ(tree.components("T"), "u l");
    EXPECT_EQ(tree.presence("T.u"), "OPTIONAL");
    EXPECT_EQ(tree.kind("T.u"), "N.U");
    EXPECT_EQ(tree.actualKind("T.l.*"), "SEQUENCE");
    EXPECT_EQ(tree.constraint("T.l.*.y"), "(1..10)");
    EXPECT_EQ(tree.bounds("T.u.y"), "1..10");
    EXPECT_EQ(tree.kind("T.u.@2"), "TYP_EXTENSION_MARKER");
}

TEST(TreeFacts, TagsAreThoseWrittenAndThoseOfAnEncoding) {
    const TreeFacts tree(runWith(moduleM(), moduleN()), "m");
    EXPECT_EQ(tree.tags("T.u"), "[0] EXPLICIT");
    EXPECT_EQ(tree.finalTags("T.u"), "[0] [5]");
    EXPECT_EQ(tree.finalTags("T.l"), "[UNIVERSAL 16]");
    EXPECT_EQ(tree.finalTags("T.u.y"), "[1]");
    EXPECT_EQ(TreeFacts(runWith(moduleM(), moduleN()), "n").flags("U"),
              "MANDATORY EXTENSIBLE AUTOMATIC_TAGS");
}

TEST(TreeFacts, FilesOfAnotherRunAreNotFollowed) {
    TreeBytes n = moduleN();
    n.modules[0].modTimeStamp.time = 101113;
    const RunResult run = runWith(moduleM(), n);
    const TreeFacts tree(run, "m");
    const std::string dir = run.dir->path().string();
    EXPECT_EQ(tree.actualKind("T.u"), dir + "/n.stx: is of another run than " + dir + "/m.stx");
    n.modules[0].modTimeStamp = stamp;
    n.modules[0].modName = n.text("X");
    EXPECT_EQ(TreeFacts(runWith(moduleM(), n), "m").actualKind("T.u").substr(dir.size()),
              "/n.stx: holds module X, not N");
}

} // namespace
} // namespace orvo::test
