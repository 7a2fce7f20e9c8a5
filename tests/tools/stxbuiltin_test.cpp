#include "driver/orvofil.h"
#include "parser/iso8824.h"
#include "stx/stxreader.h"
#include "support/store.h"

namespace orvo {
namespace {

using BuiltInTree = StoreTest;

/// The reader keeps a copy of the built-in module's types; a change of the module's text shows
/// here.
void compareBuiltIn(bool later) {
    run.verbose = VERBOSE_NONE;
    ModuleRec* const module = newModuleRec();
    changeCMP(module);
    module->newNotation = later;
    initAnyPassVars();
    parseISO8824();
    flushRecs(-1);
    stx::Tree tree;
    std::string error;
    ASSERT_TRUE(tree.parse("ISO8824", stx::builtinTree(later), error)) << error;
    EXPECT_EQ(tree.count(stx::TNODE) + 1, module->nextRecNr[KIND_TNODE]);
    EXPECT_EQ(tree.mNode(1).firstTypeAss, module->firstTypeHead.nr);
    for (uint32_t nr = 1; nr <= tree.count(stx::TNODE); ++nr) {
        SCOPED_TRACE(nr);
        readRec(module, TNodeNr{nr});
        const TNode built = tNode;
        const stx::TNode read = tree.tNode(nr);
        EXPECT_EQ(tree.text(read.name), built.name == 0 ? "" : getStri(module, built.name));
        EXPECT_EQ(read.name < 0, built.name < 0);
        EXPECT_EQ(read.next, built.next);
        EXPECT_EQ(read.compStatus, built.compStatus);
        EXPECT_EQ(read.tags != 0, built.tags != 0);
        if (built.typeCode == TYP_FIELDLIST) continue; // stands as what it denotes
        EXPECT_EQ(read.typeCode, built.typeCode);
        EXPECT_EQ(read.ref, isStructured(built.typeCode) ? built.ref : read.ref);
    }
}

TEST_F(BuiltInTree, HasTheNumbersNamesAndTypesOfTheCompiler) {
    compareBuiltIn(false);
}
TEST_F(BuiltInTree, HasThoseOfARunWithNotationOfTodayToo) {
    compareBuiltIn(true);
}

} // namespace
} // namespace orvo
