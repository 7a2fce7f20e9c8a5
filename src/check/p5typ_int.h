#pragma once

// What the units of the walk over types share among themselves. All functions work on the current
// type record and leave it current.

#include <span>
#include <unordered_map>

#include "check/p5typ.h"

namespace orvo {

/// Records an error or warning at the line of the current type record.
void recordTNodeError(ModuleRec* module, ErrClass errClass, Msg code, std::string_view detail = {});
/// The name of the current type record; data() is null when it has none.
std::string_view tNodeName();

// ---- p5typ_comp ---------------------------------------------------------------------------------
/// Structures and classes: components, their identifiers and tags, extension markers.
[[nodiscard]] bool checkStruType(ModuleRec* module);

// ---- p5typ_cls ----------------------------------------------------------------------------------
/// The current record is a field specification of a class: UNIQUE, optionality, links to classes.
[[nodiscard]] bool checkFieldSpec(ModuleRec* module);
[[nodiscard]] bool checkEmbeddedType(ModuleRec* module);
[[nodiscard]] bool checkObjClassFieldType(ModuleRec* module);

// ---- p5typ_any ----------------------------------------------------------------------------------
[[nodiscard]] bool checkAnyType(ModuleRec* module);
/// ANY= options and ENTRY on classes; findings are warnings.
void checkOptions(ModuleRec* module);

/// One entry of a component list, COMPONENTS OF and extension addition groups in place.
struct CompEntry {
    TNodeRef record;       // the component, or the COMPONENTS OF entry that brought it in
    std::string_view name; // empty when there is none
    int32_t compStatus = 0;
    bool isAddition = false;
    SeenTag tag;
    const AlternativeTags* alternatives = nullptr; // of an untagged CHOICE

    [[nodiscard]] std::span<const SeenTag> alternativeTags() const {
        if (alternatives == nullptr) return {};
        return alternatives->tags;
    }
    /// Nothing can be said about the tags of its values: ANY, an open type.
    [[nodiscard]] bool isOpen() const {
        return isIndeterminate(tag.tagNr) && tag.tagNr != typeArr[TYP_CHOICE].tag;
    }
};
/// Compares the tags of the entries of a structure with those of earlier entries.
class TagComparison {
  public:
    explicit TagComparison(uint8_t kind) : sequence_(kind == TYP_SEQ), kind_(kind) {}
    /// Checks the next entry of the current structure; true when its tag is distinct. `isLast`: no
    /// entry follows.
    [[nodiscard]] bool distinctCompTag(ModuleRec* module, const CompEntry& entry, bool isLast);

  private:
    const SeenTag* tagInDynaList(const CompEntry& entry) const;
    void remember(const CompEntry& entry);

    bool sequence_;
    uint8_t kind_;
    uint32_t count_ = 0; // entries so far
    // tag -> place of the nearest earlier entry that has it
    std::unordered_map<uint64_t, uint32_t> earlier_;
};

} // namespace orvo
