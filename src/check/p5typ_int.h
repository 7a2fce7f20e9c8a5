#pragma once

// What the units of the walk over types share among themselves. All functions work on the current
// type record and leave it current.

#include <span>

#include "check/p5typ.h"
#include "util/flat.h"

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
/// Where the extension of a list begins and ends, as places in its entries; what later versions add
/// stands at the end.
struct Extension {
    static constexpr size_t none = ~size_t{0};
    size_t begin = none;
    size_t end = none;
    bool hasSecondRoot = false; // entries follow

    /// The list goes on with a marker, its entries so far are `count`.
    void passMarker(size_t count) {
        size_t& place = begin == none ? begin : end;
        if (place == none) place = count;
    }
    void finish(size_t count) {
        if (begin != none) passMarker(count);
        hasSecondRoot = begin != none && end < count;
    }
};
/// Compares the tags of the entries of a structure with those of earlier entries. In today's
/// notation additions, which may be absent, lie between the two roots of a SEQUENCE.
class TagComparison {
  public:
    TagComparison(uint8_t kind, bool today)
        : sequence_(kind == TYP_SEQ), today_(today), kind_(kind) {}
    /// Goes past the markers in front of the entry at `place` of the current structure; true unless
    /// what is added there later could be taken for an addition to something in front.
    [[nodiscard]] bool passMarkers(ModuleRec* module, const Extension& extension, size_t place);
    /// Checks the next entry of the current structure; true when its tag is distinct. `isLast`: no
    /// entry follows.
    [[nodiscard]] bool distinctCompTag(ModuleRec* module, const CompEntry& entry, bool isLast);

  private:
    using Places = FlatMap<uint64_t, uint32_t>; // tag -> nearest earlier entry with it
    const SeenTag* tagIn(const Places& earlier, const CompEntry& entry) const;
    const SeenTag* tagInDynaList(const CompEntry& entry) const;
    void rememberTags(const CompEntry& entry, Places& tags) const;
    void remember(const CompEntry& entry);
    static void forget(Places& tags);

    bool sequence_;
    bool today_;
    uint8_t kind_;
    uint32_t count_ = 0; // entries so far
    Places earlier_;     // that the next entry could be mistaken for
    bool inExtension_ = false;
    bool hasSecondRoot_ = false;
    Places endOfRoot_; // of a SEQUENCE: what may stand in front of its extension
    Places additions_;
};

} // namespace orvo
