// Invariants: type nodes 1 to 41 of the built-in module (to 50 when a module of the run is written
// in the notation of today) have the numbers of the type kinds; the assignments of its text follow.
// What defines a kind has a hidden name there, which no source can write, and the node of the kind
// is a synonym of it. All of the module is on line 1.

#include "parser/iso8824.h"

#include "diag/orvoerr_fatal.h"
#include "lex/lex.h"
#include "parser/iso8824_text.h"
#include "parser/parser.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"
#include "tree/types_compat.h"

namespace orvo {

Iso8824State iso8824State;

namespace {

/// Kinds of types whose nodes come first; without notation of today those of the older editions.
uint32_t firstAssignment() {
    return newNotation() ? std::size(typeArr) : TYP_NONE + 1U;
}
constexpr uint32_t textLine = 1;

/// The kinds that the text defines. Each goes to the front of the chain of type assignments, which
/// so ends up in ascending order.
constexpr TypeCode definedKinds[] = {
    TYP_UTF8STR,       TYP_ABSTR_STX,     TYP_TYPE_ID, TYP_INSTANCE_OF, TYP_OBJDESCR,
    TYP_EXTERNAL_1994, TYP_EXTERNAL_1990, TYP_UTCTIME, TYP_GENTIME,     TYP_CHASTR,
    TYP_BMPSTR,        TYP_GENSTR,        TYP_GRASTR,  TYP_IA5STR,      TYP_VISSTR,
    TYP_VIDSTR,        TYP_TELSTR,        TYP_PRISTR,  TYP_NUMSTR,      TYP_EMB_PDV};

int32_t typeName(std::string_view name) {
    return static_cast<int32_t>(putStri(cMP, name).nr);
}

/// The assignment of a name in the text; fatal when there is none.
TNodeNr definitionOf(std::string_view name) {
    const StriNr stri = findStri(cMP, name);
    for (const TNodeNr node : chain(cMP, TNodeNr{stri ? firstAssignment() : 0}))
        if (nameStri(tNode.name) == stri) return node;
    fatalError(Fatal::Internal, "Invalid ISO8824 module");
}

/// Gives the current TNode, a definition of the text, its hidden name. A character string type that
/// refers to UniversalString becomes primitive.
void hideDefinition(TNodeNr definition, int32_t hidden) {
    makePending(cMP, definition);
    tNode.name = hidden;
    const StriNr base = findStri(cMP, "UniversalString");
    if (tNode.typeCode == TYP_SYNONYM && tNode.refMod == REF_UNRESOLVED && tNode.ref == base.nr) {
        tNode.typeCode = TYP_UNISTR;
        tNode.ref = 0;
    }
    writeRec(cMP, definition);
}

} // namespace

void makeIso8824ModuleString() {
    iso8824State.iso8824Module.clear();
    for (const char* piece : moduleLines()) iso8824State.iso8824Module += piece;
    if (newNotation())
        for (const char* piece : laterLines()) iso8824State.iso8824Module += piece;
    iso8824State.iso8824Module += "END ";
}

void parseISO8824() {
    for (uint32_t kind = 1; kind < firstAssignment(); ++kind) addTypeArc(nullptr, textLine);
    makeIso8824ModuleString();
    char program[] = "orvo", module[] = "iso8824";
    char* argV[] = {program, module, nullptr};
    setInput(iso8824State.iso8824Module);
    parse(2, argV);
    flushRecs(-1);
    setInput({});
    if (cMP->parseState != PARSE_OK) return; // the caller reports what was recorded
    for (const TypeCode kind : definedKinds)
        if (kind < firstAssignment()) addSynonym(kind);
    if (!newNotation()) return;
    iso8824State.realComponents = definitionOf("REAL_COMPONENTS");
    iso8824State.dataComponents = definitionOf("DATA_COMPONENTS");
    iso8824State.stringComponents = definitionOf("STRING_COMPONENTS");
}

namespace {

/// What is different in the notation of today; none for other kinds.
TNodeNr laterAssociatedType(uint8_t kind) {
    switch (kind) {
    case TYP_REAL: return iso8824State.realComponents;
    case TYP_EXTERNAL_1994:
    case TYP_EMB_PDV: return iso8824State.dataComponents;
    case TYP_CHASTR: return iso8824State.stringComponents;
    default: return {};
    }
}

} // namespace

bool readAssociatedType(const ModuleRec* module, uint8_t kind) {
    TNodeNr type = newNotation(module) ? laterAssociatedType(kind) : TNodeNr{};
    if (!type && (is(kind, TypeClass::Associated) || kind == TYP_INSTANCE_OF)) type = TNodeNr{kind};
    if (!type || run.iso8824MP == nullptr) return false;
    readRec(run.iso8824MP, type);
    skipTypes(true);
    return true;
}

void addSynonym(TypeCode kind) {
    const std::string hiddenName = hiddenTypeName(kind);
    const TNodeNr definition = definitionOf(std::string_view(hiddenName).substr(2));
    const int32_t hidden = typeName(hiddenName);
    hideDefinition(definition, hidden);
    makePending(cMP, TNodeNr{kind});
    tNode.name = typeName(asnTypeName("", kind, false, ""));
    tNode.compStatus = TCS_HEADER;
    tNode.typeCode = TYP_SYNONYM;
    tNode.refMod = REF_OWN;
    tNode.ref = static_cast<uint32_t>(hidden);
    tNode.next = cMP->firstTypeHead.nr;
    cMP->firstTypeHead = TNodeNr{kind};
    const STabNr symbol = updateSymbTab(hidden, 0, textLine);
    setSymbolNode(cMP->symTab, symbol, static_cast<int32_t>(definition.nr));
}

} // namespace orvo
