#pragma once

// Endpoints: the lower and upper bound that constraints leave to the values of INTEGER, ENUMERATED
// and REAL types and to the sizes of strings and lists.

#include <cstdint>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"

namespace orvo {

/// An endpoint as a value record with its kind in valCode (INTEGER for sizes and enumerations), and
/// whether it is included: SUBF_LOWER or SUBF_UPPER, or 0 (excluded, or infinite).
struct EndValue { // of a value record what counts as an endpoint
    ValUnion val = {};
    uint32_t ref = 0; // of a string that is a list
    uint8_t valCode = 0;
    bool isInfinite = false; // no number: MIN or MAX
    EndValue() = default;
    EndValue(const VNode& value) // NOLINT(google-explicit-constructor): it is one
        : val(value.val), ref(value.ref), valCode(value.valCode) {}
    [[nodiscard]] VNode asValue() const {
        VNode value = {};
        value.val = val;
        value.ref = ref;
        value.valCode = valCode;
        return value;
    }
};
struct Endpoint {
    EndValue value = {};
    uint8_t flags = 0;
    ModuleRec* module = nullptr; // whose strings the value refers to
};

/// Sets an endpoint to minus or plus infinity of a kind: MIN or MAX, for REAL the special values.
/// The flags become 0.
void setInfinity(Endpoint& end, bool plus, uint8_t kind);
[[nodiscard]] bool testInfinity(const Endpoint& end, bool plus, uint8_t kind);

/// The lower or upper endpoint of the current type, that of a reference with the constraints of
/// every type on the way. False (and valCode noEndpoint) when its kind has none. Preserving.
[[nodiscard]] bool getEndpoint(Endpoint& end, bool upper);
/// The endpoint that the current constraint record, of kind range, gives to values of the type it
/// constrains; MIN and MAX are those of the type, for character strings the first and the last
/// character. A bound outside the parent's range gives the parent's endpoint on that side. False
/// (and valCode noEndpoint) when it gives none: the bound is no value of the type's kind.
/// Preserving.
[[nodiscard]] bool getRangeEndpoint(Endpoint& end, bool upper);
/// The current constraint record is a range, or a series one of whose members contains one.
/// Preserving.
[[nodiscard]] bool isRangeInSub();
/// -1, 0 or 1 by value: kind INTEGER or REAL; 0 for any other kind.
[[nodiscard]] int compareNumber(const Endpoint& a, const Endpoint& b, uint8_t kind);
/// Smallest or largest value of the current ENUMERATED type's numbered items; false when an item
/// has no number yet. Preserving.
[[nodiscard]] bool getEnumEndpoint(Endpoint& end, bool upper);
/// The size endpoint of the current type, a string or list, when a SIZE constraint bounds it on
/// that side. Preserving.
[[nodiscard]] bool getSizeEndpoint(Endpoint& end, bool upper);

/// The members of a series of constraints are checked one after another, each against the type as
/// the ones before it leave it: what is asked about the constraint then ends behind `last`. The
/// check of another type or value sees every series whole.
struct SeriesView {
    SubRef last;
};
extern SeriesView seriesView;
/// The operand behind the current constraint record; none behind the last one that counts.
SubNr nextOperand();
/// Calls fn(operand) with each operand from the first on that counts, itself the current constraint
/// record, until it returns false.
template <typename Fn> void forEachOperand(SubRef first, Fn&& fn) {
    uint32_t left = first ? nextRec<KIND_SUB>(first.module).nr : 0;
    for (SubNr nr = first.nr; nr && left != 0; --left) {
        readRec(first.module, nr);
        const SubNr next = nextOperand();
        if (!fn(SubRef{first.module, nr})) return;
        nr = next;
    }
}

/// Notes the endpoints of the current type as its constraint gives them now, a series that ends
/// behind some member; `extendNotedEndpoints` takes the next member in. So a long series is not
/// walked anew for each member that is checked against the ones before it. Preserving.
void noteEndpoints();
void extendNotedEndpoints(SubRef member);
/// What was noted of a type holds no more.
void forgetEndpoints(TNodeRef type);

/// Stores the bounds of the current type in its record, of one of today's notation how to read them
/// too. Fatal 13 when they cannot be obtained.
void setTNodeEndpoints();

} // namespace orvo
