#pragma once

// Pass 5 over types: what is checked of a type and what is written into its record for the back
// ends.

#include <cstdint>
#include <string_view>
#include <vector>

#include "check/p5typ_notes.h"
#include "diag/orvomsg.h"
#include "tree/orvodef.h"
#include "util/flat.h"

namespace orvo {

/// The pseudo tags that leave the tag of a type open: untagged CHOICE, ANY, open type, field
/// reference.
constexpr bool isIndeterminate(int32_t tagNr) {
    return tagNr == typeArr[TYP_CHOICE].tag || tagNr == typeArr[TYP_ANY].tag ||
           tagNr == typeArr[TYP_OPEN].tag || tagNr == typeArr[TYP_FIELDLIST].tag;
}

/// State of the walk of pass 5 over types.
struct P5State {
    uint32_t typeCycles = 0;     // strongly connected components of types that were found
    std::vector<TNodeRef> lists; // list types that were checked
    std::vector<std::pair<TNodeRef, ModuleRec*>> objectSets; // and whom to tell of their faults
    FlatSet<uint64_t> objectSetsNoted;
    std::vector<TNodeRef> ignorableFrom; // types from which on ignorable ones are to be marked
};
extern P5State p5State;

/// Checks the current type record and all it contains, once per record and whoever asks first: what
/// encloses the type and whom its errors are charged to is found from the record. Preserving. True
/// when everything is valid. A type assignment answers for its faults itself: they do not count for
/// those who lead to it, of whom only the first would hear of them.
[[nodiscard]] bool checkTNode();
/// The current type record is a type or set assignment as written, no instance.
[[nodiscard]] bool isTypeDefinition();
/// Whom errors in the current type record are charged to: its module or, inside an instance, who
/// instantiated.
[[nodiscard]] ModuleRec* moduleForTypeErrors();

/// Notes for the records of a module what encloses them, once; what is added later is temporary and
/// stands for the type it refers to.
void noteEnclosing(ModuleRec* module);
/// The current type record is a component, alternative, element or field.
[[nodiscard]] bool isEnclosed();
/// Makes the innermost structure around the current type record current; false, and nothing is
/// read, when nothing encloses it.
[[nodiscard]] bool innerEnclStru();
/// The same for the outermost structure.
[[nodiscard]] bool outerEnclStru();

/// Asks for what decoders may ignore to be marked, from the current type record on, when pass 5 is
/// through and no size limit changes any more.
void checkIgnorable();
/// Marks it.
void markIgnorables();
/// Sets the flags of the list types that were checked which follow from their elements, when pass 5
/// is through and the representation of all is chosen.
void markListElements();

// ---- p5typ_tag ----------------------------------------------------------------------------------
/// The tag of the current type record as seen from outside: the first one on the way through
/// references, selection types and fields of classes and objects, else the universal tag of the
/// kind reached. Preserving.
SeenTag getNextTag();
/// Checks the tags of the current type record and decides the mode of the innermost one; `nextTag`
/// is what that one is applied to. Preserving.
[[nodiscard]] bool checkTag(ModuleRec* module, SeenTag nextTag);
/// The number that a tag record gives, a defined value resolved; badTagNr when it is no valid
/// number.
int32_t tagNumberOf(ModuleRec* module, const TagRec& tag);

// ---- p5typ_named --------------------------------------------------------------------------------
/// Numbers the enumeration items without a number in the list of the current type record, before
/// anything compares them; returns those for which none was left. Preserving.
std::vector<VNodeNr> numberItems();
/// Checks the named numbers, named bits or numbered items of the current type record; `numberless`
/// is what numberItems returned. Preserving.
void checkNamedList(ModuleRec* module, const std::vector<VNodeNr>& numberless);

// ---- p5typ_rec ----------------------------------------------------------------------------------
/// Marks the current type record when it can be reached from itself and reports recursion without
/// end (Msg::RecursiveTypeReference) against `module`. Preserving.
void markRecursion(ModuleRec* module);

// ---- p5typ_vf -----------------------------------------------------------------------------------
/// Chooses the value field of the current type record (vfKind, sizeOpt) and stores the record.
void setTypeVF();

} // namespace orvo
