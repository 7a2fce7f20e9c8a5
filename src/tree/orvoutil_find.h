#pragma once

// Look-ups of components, settings and assignments, walks from a reference to what it designates,
// and predicates over the current type and value records. All work on the buffers tNode and vNode;
// what reads a record leaves it there unless it says "preserving".

#include <cstdint>
#include <string_view>
#include <vector>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "util/flat.h"

namespace orvo {

// ---- look-ups -----------------------------------------------------------------------------------
// Names are texts, since a look-up may cross modules; a stored name counts by its magnitude. A miss
// leaves the buffer on the last record examined.

/// The first component value or setting of that name on the chain of values.
[[nodiscard]] bool findValueCompById(ModuleRec* module, VNodeNr first, std::string_view name);
/// The value or type assignment of that name.
[[nodiscard]] bool findValueById(ModuleRec* module, std::string_view name);
[[nodiscard]] bool findTypeById(ModuleRec* module, std::string_view name);

/// The first component, alternative or field of that name. COMPONENTS OF entries are searched in
/// place, without the additions of the included type, and so are the components of extension
/// addition groups. `position` is the place in that flattened list, from 1, extension
/// markers of the list itself counted; 0 when there is none.
[[nodiscard]] bool findTypeCompById(ModuleRec* module, TNodeNr first, std::string_view name,
                                    uint32_t* position = nullptr);
/// The component at a place of the flattened list; on a miss `position` is what is left to count.
[[nodiscard]] bool findByInd(ModuleRec* module, TNodeNr first, uint32_t& position);
[[nodiscard]] bool findTypeCompByInd(ModuleRec* module, TNodeNr first, uint32_t position);

/// The component that is a certain record, in the same flattened list. `position` is its place; on
/// a miss the whole length, and the buffer holds some record of the list.
[[nodiscard]] bool findTypeCompByNr(ModuleRec* module, TNodeNr first, TNodeRef component,
                                    uint32_t& position);
/// The first value of the chain that a type governs. A miss leaves the buffer on some record of the
/// chain.
[[nodiscard]] bool findValueCompByGov(ModuleRec* module, VNodeNr first, TNodeRef governor);

/// An entry of a flattened list: a component and its place, or, when `repeated` is set, the first
/// component of a list that was included before, whose components take the places from `place` on.
struct FlatEntry {
    uint32_t place = 0;
    TNodeRef component;
    bool repeated = false;
    std::string_view name = {}; // empty for an extension marker
    int32_t compStatus = 0;     // TCS_*
    TNodeNr group = {};         // the extension addition group that it stands in
};
/// The flattened list. It stays what it is until the next call, and as long as the module when all
/// of the list is solved.
const std::vector<FlatEntry>& flatComponents(ModuleRec* module, TNodeNr first);

/// Follows a walk over a list: the root of it ends at the first extension marker and goes on behind
/// a second one, if the notation of its module knows that.
class RootOfList {
  public:
    explicit RootOfList(ModuleRec* module) : goesOn_(newNotation(module)) {}
    /// The walk has come to a marker.
    void passMarker() { ++markers_; }
    /// What follows is no addition.
    [[nodiscard]] bool isRoot() const { return markers_ == 0 || (goesOn_ && markers_ > 1); }

  private:
    bool goesOn_;
    uint32_t markers_ = 0;
};

/// What COMPONENTS OF brings in of a list: the components of its root, what the list includes
/// itself in place.
struct IncludedList {
    uint32_t places = 0;   // components, saturating
    bool optional = false; // one of them may be absent
    bool mandatory = false;
    bool hasMarker = false; // the list has an extension marker
    TNodeRef base;          // the list itself; the base of the list that all comes from when there
                            // is only one that brings something in, and no component beside it
};
using OpenLists = FlatSet<NodeRef, NodeRefHash>; // first components
/// Sums up what the current COMPONENTS OF entry brings in. An inclusion that leads back into one of
/// the lists that are being built, `open`, ends there and adds nothing. The entry is read away.
IncludedList includedList(const OpenLists& open = {});

/// For the current value, a setting of an object whose settings begin at `firstSetting`: reads the
/// type that governs it, references followed. False when there is none. The value is preserved.
[[nodiscard]] bool readGovTNodeForFieldVNode(ModuleRec* object, VNodeNr firstSetting);

/// Reads the type record of the current value, a type or set setting. False when it has none.
[[nodiscard]] bool readTypeSetting();
/// The same for the setting `setting`, which is read first; false when there is none.
[[nodiscard]] bool readTypeSetting(VNodeRef setting);

/// To be called when the module's record counters were put back: forgets what the look-ups and
/// walks noted about records that no longer exist.
void forgetTakenBack(ModuleRec* module);

// ---- walks --------------------------------------------------------------------------------------

/// From the current type through type references, selection types and information from objects (and
/// class field types when asked for) to the type they stand for. An unresolved reference, or a
/// cycle that is not yet broken, ends the walk there.
void skipTypes(bool classFieldTypes);
/// The same; the first reference on the way that instantiates a parameterized type outside any
/// instance is noted in `instance`, unless it holds a record already.
void skipTypesCatchInst(bool classFieldTypes, NodeContext* instance);
/// From the current value through value references (and fields of objects when asked for) to the
/// value they stand for.
void skipValues(bool fields);
/// Takes one step of such a walk; false, and nothing is read, when the current type is no reference
/// or an unresolved one.
bool followTypeRef(bool classFieldTypes);
/// Steps after which a walk that notes no places gives up: a chain that is not yet solved may be a
/// cycle, and the links of one that ends are definitions, of which no module has that many.
inline constexpr size_t maxLinks = 1000000;
/// Reads what the last entry of the current type's field name chain designates: a type, or the type
/// of a value setting. False, and nothing is read, when the chain is empty or not solved.
bool skipFieldList();

/// The module of a reference that stands in a record of `module`; null for the special values.
ModuleRec* refModule(ModuleRec* module, int32_t refMod);

// ---- predicates over the current type -----------------------------------------------------------

/// CLASS, TYPE-IDENTIFIER or ABSTRACT-SYNTAX.
constexpr bool isClassCode(uint8_t code) {
    return is(code, TypeClass::Class);
}
/// The node stands for a set.
inline bool isSetTNode() {
    return (tNode.nodeFlags & NF_SET) != 0;
}
/// A value set; a set of objects. Preserving.
[[nodiscard]] bool isValueSetTNode();
[[nodiscard]] bool isObjSetTNode();
/// Neither a set nor a class; a class. Preserving.
[[nodiscard]] bool isTypeTNode();
[[nodiscard]] bool isClassTNode();
/// A value field of a class; a value set field.
inline bool isValFieldTNode() {
    return tNode.name < 0;
}
inline bool isValSetFieldTNode() {
    return tNode.name > 0 && isSetTNode();
}
/// A field whose type another field of the same object names.
inline bool isVariabTypeFieldTNode() {
    return (tNode.nodeFlags & NF_VARIABLE) != 0;
}
inline bool isVariabTypeTNode() {
    return isVariabTypeFieldTNode();
}
/// A reference with actual parameters; one that stands outside any instance.
[[nodiscard]] inline bool isInstantiated(const TNode& node) {
    return node.syntax != 0 && node.typeCode != TYP_SELECTION && node.typeCode != TYP_ANY &&
           node.typeCode != TYP_FIELDLIST;
}
[[nodiscard]] inline bool isInstantiatedTNode() {
    return isInstantiated(tNode);
}
[[nodiscard]] bool isTopLevelInstantiatedTNode();
/// An object class field type that is open. Preserving.
[[nodiscard]] bool isOpenObjClassFieldTypeTNode();
/// An object class field type. The first reads the class (true) or some record on the way (false).
[[nodiscard]] bool isObjClFldTyp();
[[nodiscard]] bool isObjClassFieldTypeTNode();
/// Reads the class of an object class field type; fatal 13 when the current type is none.
void getClassOfObjClassFieldTypeTNode();

// ---- predicates over the current value ----------------------------------------------------------

/// An object; an object set; neither. All are preserving.
[[nodiscard]] bool isObjVNode();
/// The current value is a number of INTEGER: an item of an enumeration, which is a number as well
/// once it is numbered, is none.
[[nodiscard]] bool isIntegerVNode();
[[nodiscard]] bool isObjSetVNode();
[[nodiscard]] bool isValueVNode();
[[nodiscard]] bool isValueSetVNode();

} // namespace orvo
