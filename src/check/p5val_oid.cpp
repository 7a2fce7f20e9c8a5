// Object identifier values (X.680 (07/2002) clause 31 and annexes A to C) and relative ones, which
// may be parts of either (X.680 (02/2021) clauses 32 and 33). The arcs of a valid
// value are kept in its record, joined by commas, with their number as length: later values that
// begin with this one take them over. An invalid value has the length invalidObjId.

#include <algorithm>
#include <string>

#include "check/orvonum.h"
#include "check/p5val_int.h"
#include "diag/orvoerr.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"
#include "util/text.h"

namespace orvo {

namespace {

constexpr int64_t unknownArc = -1;

/// Forms of a component: a number, a well-known name of a level (VST_ROOT_ARC and up).
constexpr int32_t numberForm = 2;

struct ObjIdArcs {
    bool isRelative = false;
    size_t count = 0; // arcs so far, valid or not
    int64_t first[2] = {unknownArc, unknownArc};
    size_t most = 0;          // arcs that there may be
    std::string text;         // the accepted ones, each with a comma behind it
    size_t entries = 0;       // components as written
    bool prefixAlone = false; // the first one is a whole object identifier
    std::string prefix;       // its name
};

void addArc(ObjIdArcs& arcs, const Integer& number) {
    if (arcs.count >= 1 && arcs.count <= 2) arcs.first[arcs.count - 1] = number.nearest();
    if (arcs.count <= arcs.most && arcs.text.size() <= maxArcsText)
        arcs.text += concat(number.text(), ",");
}

bool isValidFirstObjIdComp(int32_t form, int64_t number) {
    return (form == numberForm || form == VST_ROOT_ARC) && number <= 2;
}
bool isValidSecondObjIdComp(const ObjIdArcs& arcs, int32_t form, int64_t number) {
    switch (arcs.first[0]) {
    case 0: return (form == numberForm || form == VST_ROOT_ARC + 1) && number <= 39;
    case 1: return (form == numberForm || form == VST_ROOT_ARC + 2) && number <= 39;
    default: return form == numberForm;
    }
}
bool isValidNthObjIdComp(int32_t form) {
    return form == numberForm;
}
bool isValidThirdObjIdComp(const ObjIdArcs& arcs, int32_t form, int64_t number) {
    if (arcs.first[0] != 0 || arcs.first[1] != 0) return isValidNthObjIdComp(form);
    return (form == numberForm || form == VST_LETTER_ARC) && number >= 1 && number <= 26;
}

bool isValidObjIdComp(const ObjIdArcs& arcs, int32_t form, int64_t number) {
    if (number < 0) return false;
    if (arcs.isRelative) return true;
    switch (arcs.count) {
    case 1: return isValidFirstObjIdComp(form, number);
    case 2: return isValidSecondObjIdComp(arcs, form, number);
    case 3: return isValidThirdObjIdComp(arcs, form, number);
    default: return isValidNthObjIdComp(form);
    }
}

/// "2nd component"; every number but 1, 2 and 3 counts as a "th".
std::string placeOfComp(size_t count) {
    const char* suffix = count == 1 ? "st" : count == 2 ? "nd" : count == 3 ? "rd" : "th";
    return concat(std::to_string(count), suffix, " component");
}

bool settleObjId(VNodeRef at, ModuleRec* caller);

/// Calls fn(arc) for the arcs of a component that is itself an identifier and valid.
template <typename Fn> void forEachArc(const CheckedValue& component, Fn&& fn) {
    readRec(component.module, component.nr);
    const std::string_view text = getStri(component.module, int64_t{vNode.val.str.stri});
    for (size_t from = 0; from < text.size(); ++from) {
        const size_t end = std::min(text.find(',', from), text.size());
        fn(Integer::of(text.substr(from, end - from)));
        from = end;
    }
}

/// The first component is an object identifier: its arcs are taken over.
bool addPrefix(const ValueErrors& errors, const CheckedValue& component, ObjIdArcs& arcs) {
    arcs.prefixAlone = true;
    arcs.prefix = getStri(component.module, int64_t{component.rec.name});
    if (!settleObjId({component.module, component.nr}, errors.module)) {
        arcs.count = 2;
        return failValue(errors, component, Msg::InvalidObjIdPrefix);
    }
    arcs.count = 0;
    forEachArc(component, [&](const Integer& arc) {
        ++arcs.count;
        addArc(arcs, arc);
    });
    return true;
}

Msg invalidComponent(const ObjIdArcs& arcs) {
    return arcs.isRelative ? Msg::InvalidRelativeOidComponent : Msg::InvalidObjIdComponent;
}

/// A component is a relative object identifier: its arcs count as if they stood in its place.
bool addRelative(const ValueErrors& errors, const CheckedValue& component, ObjIdArcs& arcs) {
    const size_t place = arcs.count;
    bool ok = settleObjId({component.module, component.nr}, errors.module);
    if (ok) {
        --arcs.count;
        forEachArc(component, [&](const Integer& arc) {
            ++arcs.count;
            ok &= isValidObjIdComp(arcs, numberForm, arc.nearest());
            addArc(arcs, arc);
        });
    }
    return ok || failValue(errors, component, invalidComponent(arcs), placeOfComp(place));
}

/// Form of a component record: that of a reference is the form of the number it stands for.
int32_t formOf(const CheckedValue& component) {
    const int32_t status = component.rec.valStatus;
    return status >= VST_ROOT_ARC && status <= VST_LETTER_ARC ? status : numberForm;
}

bool checkObjIdComp(const ValueErrors& errors, const CheckedValue& component, ObjIdArcs& arcs) {
    ++arcs.count;
    if (component.rec.valCode == TYP_OBJID && arcs.entries == 1 && !arcs.isRelative)
        return addPrefix(errors, component, arcs);
    if (component.rec.valCode == TYP_RELOID) return addRelative(errors, component, arcs);
    if (component.rec.valCode == TYP_INTEGER) {
        const Integer number = integerOf(component.module, component.rec.val);
        if (isValidObjIdComp(arcs, formOf(component), number.nearest())) {
            addArc(arcs, number);
            return true;
        }
    }
    return failValue(errors, component, invalidComponent(arcs), placeOfComp(arcs.count));
}

/// Published modules write `{id}` for the object identifier `id`.
bool toleratesBraces(const ValueErrors& errors, const CheckedValue& value, const ObjIdArcs& arcs) {
    if (!isLenient(errors.module)) return false;
    recordOnce(errors.module, Msg::ObjIdInBraces, value.rec.line, arcs.prefix);
    return true;
}

bool isLengthValid(const ValueErrors& errors, const CheckedValue& value, const ObjIdArcs& arcs) {
    std::string text;
    if (arcs.count < 2 && !arcs.isRelative)
        text = "Too few object identifier components.";
    else if (arcs.count > arcs.most)
        text = concat("Limitation: there can be only ", std::to_string(arcs.most),
                      " object identifier components.");
    else if (arcs.text.size() > maxArcsText)
        text = concat("Limitation: object identifier components can have only ",
                      std::to_string(maxArcsText), " digits together.");
    else if (arcs.prefixAlone && arcs.entries == 1 && !toleratesBraces(errors, value, arcs))
        text = "An object identifier prefix without additional components.";
    else
        return true;
    return failValue(errors, value,
                     arcs.isRelative ? Msg::RelativeOidOutOfRange : Msg::ObjIdOutOfRange, text);
}

/// Keeps the arcs, or that there are none.
void storeArcs(VNodeRef at, const ObjIdArcs& arcs, bool ok) {
    const std::string_view text = std::string_view(arcs.text).substr(0, arcs.text.size() - 1);
    const uint32_t stri = ok ? putStri(at.module, text).nr : 0;
    readRec(at);
    vNode.val.str = {};
    vNode.val.str.striLen = ok ? static_cast<uint16_t>(arcs.count) : invalidObjId;
    vNode.val.str.stri = stri;
    writeRec(at);
}

/// Finds the arcs of an object identifier, once, whoever needs them first; what is wrong is
/// reported where they are written. False when there are none.
bool settleObjId(VNodeRef at, ModuleRec* caller) {
    const ValueNesting nesting;
    const KeepRec<KIND_VNODE> keep;
    readRec(at);
    const StriVal known = vNode.val.str;
    if (known.striLen == invalidObjId || known.stri != 0) return known.stri != 0;
    const ValueErrors errors{moduleForErrors(caller), true};
    const CheckedValue value = checkedValue(at);
    ObjIdArcs arcs;
    arcs.isRelative = value.rec.valCode == TYP_RELOID;
    arcs.most = maxArcs(at.module);
    storeArcs(at, arcs, false); // one that begins with itself
    bool ok = true;
    for (const VNodeNr nr : chain(at.module, VNodeNr{value.rec.ref})) {
        ++arcs.entries;
        ok &= checkObjIdComp(errors, checkedValue({at.module, nr}), arcs);
    }
    ok &= isLengthValid(errors, value, arcs);
    storeArcs(at, arcs, ok);
    return ok || failValue(errors, value, invalidValue(value.rec.valCode));
}

} // namespace

bool checkObjIdVal(const ValueErrors& errors, const CheckedValue& value) {
    const uint8_t kind = value.rec.valCode;
    if ((kind != TYP_OBJID && kind != TYP_RELOID) || !value.nr) return true;
    if (settleObjId({value.module, value.nr}, errors.module)) return true;
    return value.isReference && failValue(errors, value, invalidValue(kind));
}

} // namespace orvo
