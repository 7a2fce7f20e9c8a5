#include <gtest/gtest.h>

#include "support/tree.h"
#include "tools/two_modules.h"

namespace orvo::test {
namespace {

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
