// A module node says all that a reader of the tree file must know to follow references into another
// module: its name, the prefix that names its own tree file, and where its chains begin. The texts
// are strings of the referring module, so writing the nodes adds strings to it; the string count of
// the module's own node is settled last.

#include "driver/orvo_pass4.h"

#include "diag/orvoerr_hello.h"
#include "options/orvovar.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr MNodeNr ownNode{1};

/// String number of a name; 0 for a missing one.
uint32_t nameNr(std::string_view name) {
    return name.empty() ? 0 : putStri(cMP, name).nr;
}

/// What the node tells about the module it stands for.
void describeTarget(const ModuleRec& target, const ModRef* ref) {
    mNode.modTimeStamp = target.timeStamp;
    if (ref != nullptr) mNode.stxName = nameNr(target.generationPrefix);
    mNode.firstTypeAss = target.firstTypeHead.nr;
    mNode.firstValAss = target.firstValueHead.nr;
    mNode.firstDefVal = target.firstDefVal.nr;
    for (int kind = 0; kind < fileKindCount; ++kind)
        mNode.recCount[kind] = target.nextRecNr[kind] - 1;
    const unsigned refState = ref != nullptr ? ref->state : 0;
    mNode.exportsState = target.exportsState;
    mNode.selection = ref != nullptr ? ref->selection : 0;
    mNode.importsState = static_cast<uint8_t>(target.importsState | refState << 4);
    mNode.automaticTags = target.automaticTags ? 1 : 0;
    const OptionBlock& own = cMP->options;
    mNode.srcDir = own.sourceDirKnown ? putStri(cMP, own.sourceDir).nr : 0;
    mNode.srcFile = nameNr(own.sourceFileName);
    packModWords(target.options, mNode.modWords);
}

/// The node of a reference, or of the module itself when there is no reference.
void writeModuleNode(const ModRef* ref) {
    mNode = {};
    mNode.modName = nameNr(ref != nullptr ? ref->name : cMP->moduleName);
    mNode.modOid = ref != nullptr ? ref->value.nr : cMP->objIdValueNr.nr;
    const ModuleRec* target = ref != nullptr ? ref->module : cMP;
    if (target != nullptr) describeTarget(*target, ref);
    writeRec(cMP, ref != nullptr ? MNodeNr{ref->number} : ownNode);
}

} // namespace

void passFour() {
    if (progressShown())
        printProgress(
            concat("building module references (pass 4) for ", cMP->options.sourceFileName));
    writeModuleNode(nullptr);
    for (const ModRef* ref = cMP->modRefs.modRefFirst; ref != nullptr; ref = ref->next)
        writeModuleNode(ref);
    readRec(cMP, ownNode);
    mNode.recCount[KIND_STRI8] = cMP->nextRecNr[KIND_STRI8] - 1;
    writeRec(cMP, ownNode);
}

} // namespace orvo
