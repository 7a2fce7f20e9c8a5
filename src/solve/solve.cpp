// Pass 2: names become record numbers. The number of records does not change meanwhile, apart from
// the symbols that undefined names get.

#include "solve/solve.h"

#include "diag/orvoerr_hello.h"
#include "solve/solve_stx.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "util/text.h"

namespace orvo {

namespace {

/// Resolves the reference of a type or value record in place. `actuals` is its actual parameter
/// mark.
void solveReference(int32_t& refMod, uint32_t& ref, int32_t& actuals, uint32_t line) {
    int32_t name = signedWord(ref);
    chkIfSymbolDef(refMod, name, actuals, line);
    ref = static_cast<uint32_t>(name);
}

} // namespace

void solveExternalSymbols() {
    for (ModRef* ref = cMP->modRefs.modRefFirst; ref != nullptr; ref = ref->next) {
        if (ref->state == 2) loadImpSymbols(*ref);
        if (ref->module == nullptr) continue;
        if (isExporter(ref->module))
            defineImpSymbols(*ref);
        else
            dropTarget(cMP, *ref);
    }
}

void solveSynonymTNodesAndDefinedSyntaxes() {
    const uint32_t end = nextRec<KIND_TNODE>(cMP).nr;
    for (uint32_t nr = 1; nr < end; ++nr) {
        readRec(cMP, TNodeNr{nr});
        if (tNode.typeCode == TYP_SYNONYM && tNode.refMod >= 0 && tNode.ref != 0) {
            solveReference(tNode.refMod, tNode.ref, tNode.syntax, tNode.line);
            writeRec(cMP, TNodeNr{nr});
        } else if (tNode.syntaxList != 0) {
            checkSyntaxDef();
        }
    }
}

void solveSynonymVNodes() {
    const uint32_t end = nextRec<KIND_VNODE>(cMP).nr;
    for (uint32_t nr = 1; nr < end; ++nr) {
        readRec(cMP, VNodeNr{nr});
        if (vNode.valCode != TYP_SYNONYM || vNode.refMod < 0 || vNode.ref == 0) continue;
        solveReference(vNode.refMod, vNode.ref, vNode.deferred, vNode.line);
        writeRec(cMP, VNodeNr{nr});
    }
}

void solveRefs1() {
    if (progressShown())
        printProgress(concat("solving references (pass 2) for ", cMP->options.sourceFileName));
    solveExternalSymbols();
    solveSynonymTNodesAndDefinedSyntaxes();
    solveSynonymVNodes();
}

} // namespace orvo
