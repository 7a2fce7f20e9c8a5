#pragma once

// Pass 5 over types: what is checked of a type and what is written into its record for the back
// ends.

#include <cstdint>
#include <string_view>

#include "check/p5typ_notes.h"
#include "diag/orvomsg.h"
#include "tree/orvodef.h"
#include "tree/orvoutil.h"

namespace orvo {

/// The pseudo tags that leave the tag of a type open: untagged CHOICE, ANY, open type, field
/// reference.
constexpr bool isIndeterminate(int32_t tagNr) {
    return tagNr == typeArr[TYP_CHOICE].tag || tagNr == typeArr[TYP_ANY].tag ||
           tagNr == typeArr[TYP_OPEN].tag || tagNr == typeArr[TYP_FIELDLIST].tag;
}

/// State of the walk of pass 5 over types.
struct P5State {
    SeenTag nextTag; // of the type just checked, what a tag in front of it is applied to
    NodeList struTypeStack{NODES_TYPE}; // structured types that enclose the node under check
    uint32_t typeCycles = 0;            // strongly connected components of types that were found
};
extern P5State p5State;

/// Checks the current type record and all it contains, once per record; errors are charged to
/// `module`. `isReference`: the node is a reference; `ignorable` asks for ignorable marking. The
/// record is current again afterwards and p5State.nextTag its tag as seen from outside. True when
/// everything is valid.
[[nodiscard]] bool checkTNode(ModuleRec* module, bool isReference, bool ignorable);

// ---- p5typ_tag
/// The tag of the current type record as seen from outside: the first one on the way through
/// references, selection types and fields of classes and objects, else the universal tag of the
/// kind reached. Preserving.
SeenTag getNextTag();
/// Checks the tags of the current type record against p5State.nextTag and decides the mode of the
/// innermost one. Preserving.
[[nodiscard]] bool checkTag(ModuleRec* module);
/// The number that a tag record gives, a defined value resolved; badTagNr when it is no valid
/// number.
int32_t tagNumberOf(ModuleRec* module, const TagRec& tag);

// ---- p5typ_named
/// Checks the named numbers, named bits or enumeration items of the current type record; numbers
/// the items without one. Preserving.
void checkNamedList(ModuleRec* module);

// ---- p5typ_rec
/// Marks the current type record when it can be reached from itself and reports recursion without
/// end (Msg::RecursiveTypeReference) against `module`. Preserving.
void markRecursion(ModuleRec* module);

// ---- p5typ_ign
/// Marks what may be ignored by decoders, from the current type record on. Preserving.
void checkIgnorable();

// ---- p5typ_vf
/// Chooses the value field of the current type record (vfKind, sizeOpt) and stores the record.
void setTypeVF();

} // namespace orvo
