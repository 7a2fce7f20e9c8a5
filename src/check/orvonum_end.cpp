// Endpoints of types. The endpoint of a reference is that of its own constraint within that of the
// type it refers to. What was computed for a type is kept once its checks are done and those of all
// types that it depends on: while they run, a series may count in part. A chain of references is
// walked with a list, not by recursion; contained subtypes recurse.

#include "check/orvonum_end.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <unordered_map>
#include <vector>

#include "check/check_cache.h"
#include "check/orvonum.h"
#include "check/orvonum_end_sub.h"
#include "diag/orvoerr_fatal.h"
#include "tree/orvoutil_find.h"
#include "util/flat.h"

namespace orvo {

namespace {

bool isSizeKind(uint8_t kind) {
    return is(kind, TypeClass::Sized);
}
bool isNumberKind(uint8_t kind) {
    return kind == TYP_INTEGER || kind == TYP_REAL;
}
bool isBounded(uint8_t kind) {
    return isSizeKind(kind) || isNumberKind(kind) || kind == TYP_ENUM;
}

/// Kind of the endpoints of a type of a kind.
uint8_t endpointKind(uint8_t kind) {
    return kind == TYP_REAL ? TYP_REAL : TYP_INTEGER;
}

bool none(Endpoint& end) {
    end = {};
    end.value.valCode = noEndpoint;
    return false;
}

/// The kept endpoint of the current type, null when it is not known, the record has changed, or
/// another part of a series counted.
EndpointNote* noteOf(TNodeRef type) {
    EndpointNote* note = checkCacheOf(type.module).endpoints.find(type.nr.nr);
    if (note == nullptr) return nullptr;
    const bool same = note->constraint == tNode.constraint && note->refMod == tNode.refMod &&
                      note->ref == tNode.ref && note->typeCode == tNode.typeCode;
    return same && (!note->seriesEnd || note->seriesEnd == seriesView.last) ? note : nullptr;
}

void keepEndpoint(TNodeRef type, const Endpoint& end, bool exists, bool upper) {
    EndpointNote* note = noteOf(type);
    if (note == nullptr) {
        note = &checkCacheOf(type.module).endpoints.at(type.nr.nr);
        *note = {};
        note->constraint = tNode.constraint;
        note->refMod = tNode.refMod;
        note->ref = tNode.ref;
        note->typeCode = tNode.typeCode;
    }
    note->known[upper] = true;
    note->exists[upper] = exists;
    note->ends[upper] = end;
}

/// The endpoint that a constraint gives to a type of a kind.
bool endpointOfSub(Endpoint& end, bool upper, uint8_t kind, SubRef sub) {
    return isSizeKind(kind) ? sizeEndpoint(end, upper, sub)
                            : isNumberKind(kind) && getNumberEndpoint(end, upper, sub, kind);
}

/// The endpoint that the current type's own constraint gives.
bool ownEndpoint(Endpoint& end, bool upper, uint8_t kind) {
    if (tNode.constraint <= 0) return false;
    const SubRef sub{typeModule(), SubNr{magnitude(tNode.constraint)}};
    return endpointOfSub(end, upper, kind, sub);
}

/// The endpoint of the current type, which is no reference.
bool baseEndpoint(Endpoint& end, bool upper) {
    const uint8_t kind = tNode.typeCode;
    if (kind == TYP_ENUM) return getEnumEndpoint(end, upper);
    if (!isBounded(kind)) return none(end);
    if (ownEndpoint(end, upper, kind)) return true;
    setInfinity(end, upper, endpointKind(kind));
    if (isNumberKind(kind)) end.flags = upper ? SUBF_UPPER : SUBF_LOWER;
    return true;
}

uint8_t actualKind() {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return tNode.typeCode;
}

uint64_t endpointKey(TNodeRef type, bool upper) {
    return keyOf(type) << 1 | uint64_t{upper};
}
struct KnownEndpoint {
    Endpoint end;
    bool exists = false;
};
/// The endpoints that are being computed: a type that contains itself as a subtype has no endpoint
/// there. What depends on that, or on types under check, holds in this computation alone.
struct EndpointState {
    FlatSet<uint64_t> running;                          // by endpointKey
    std::unordered_map<uint64_t, KnownEndpoint> forNow; // likewise
    std::vector<TNodeRef> links;                        // of the chains, one behind the other
    uint64_t unsettled = 0;                             // such dependencies met so far
};
EndpointState endpointState;

bool isDone() {
    return tNode.checkState == static_cast<int16_t>(CHECK_DONE);
}

/// The endpoint of the current type, if it is known.
bool knownEndpoint(KnownEndpoint& known, bool upper) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const EndpointNote* note = noteOf(type);
    if (note != nullptr && note->known[upper]) {
        known = {note->ends[upper], note->exists[upper]};
        if (!isDone()) ++endpointState.unsettled;
        return true;
    }
    const auto found = endpointState.forNow.find(endpointKey(type, upper));
    if (found == endpointState.forNow.end()) return false;
    known = found->second;
    ++endpointState.unsettled;
    return true;
}

/// Appends the types from the current one along its references to the first whose endpoint is
/// known, or the last, to the links. Returns whether it is known.
bool collectChain(KnownEndpoint& known, bool upper) {
    auto& links = endpointState.links;
    const size_t first = links.size();
    do {
        if (knownEndpoint(known, upper)) return true;
        links.push_back(currentRec<KIND_TNODE>());
    } while (links.size() - first < maxLinks && followTypeRef(true));
    return false;
}

/// Notes an endpoint as being computed while the scope lasts.
class RunningEndpoint {
  public:
    RunningEndpoint(TNodeRef type, bool upper)
        : key_(endpointKey(type, upper)), isNew_(endpointState.running.insert(key_).second) {
        if (!isNew_) ++endpointState.unsettled;
    }
    RunningEndpoint(const RunningEndpoint&) = delete;
    RunningEndpoint& operator=(const RunningEndpoint&) = delete;
    ~RunningEndpoint() {
        if (isNew_) endpointState.running.erase(key_);
        if (endpointState.running.empty()) endpointState.forNow.clear();
    }
    [[nodiscard]] bool isNew() const { return isNew_; }

  private:
    uint64_t key_;
    bool isNew_;
};

/// The endpoint of the current type where nothing has to be computed.
bool givenEndpoint(KnownEndpoint& given, bool upper) {
    const bool isPlain = tNode.constraint == 0 && tNode.typeCode != TYP_ENUM &&
                         !is(tNode.typeCode, TypeClass::Reference);
    if (!isPlain) return knownEndpoint(given, upper);
    given.exists = baseEndpoint(given.end, upper);
    return true;
}

/// Computes the endpoint of the current type; `keepAll` keeps it even though its checks still run.
bool computeEndpoint(Endpoint& end, bool upper, bool keepAll) {
    if (KnownEndpoint given; givenEndpoint(given, upper)) {
        end = given.end;
        return given.exists;
    }
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    const TNodeRef asked = currentRec<KIND_TNODE>();
    const RunningEndpoint running(asked, upper);
    if (!running.isNew()) return false;
    const uint64_t settled = endpointState.unsettled;
    const uint8_t kind = actualKind();
    const size_t first = endpointState.links.size();
    KnownEndpoint known;
    bool isKnown = collectChain(known, upper);
    for (; endpointState.links.size() != first; isKnown = true) {
        const TNodeRef type = endpointState.links.back();
        endpointState.links.pop_back();
        readRec(type);
        if (!isKnown) {
            known.exists = baseEndpoint(known.end, upper);
        } else if (Endpoint own; known.exists && ownEndpoint(own, upper, kind)) {
            narrow(known.end, own, upper, endpointKind(kind));
        }
        readRec(type);
        if (!isDone() && !(keepAll && type == asked)) ++endpointState.unsettled;
        if (endpointState.unsettled == settled)
            keepEndpoint(type, known.end, known.exists, upper);
        else
            endpointState.forNow[endpointKey(type, upper)] = known;
    }
    end = known.end;
    return known.exists;
}

/// The number of an item of an enumeration, the current value: false without one.
bool itemNumber(Endpoint& number, bool upper) {
    const KeepRec<KIND_VNODE> keep;
    skipValues(false);
    if (vNode.valCode != TYP_INTEGER) return false;
    number = {vNode, upper ? SUBF_UPPER : SUBF_LOWER, valueModule()};
    return true;
}

I64 storedBound(const Endpoint& end, uint8_t kind) {
    if (testInfinity(end, false, TYP_INTEGER) && isSizeKind(kind)) return {};
    return end.value.val.number;
}

/// -1 for MIN, 1 for MAX.
int signOfInfinity(const Endpoint& end) {
    if (!end.value.isInfinite) return 0;
    return i64isneg(end.value.val.number) ? -1 : 1;
}

/// How a bound of numbers is read; `bound` becomes what is stored.
unsigned boundForm(const Endpoint& end, I64& bound) {
    if (end.value.isInfinite) return BOUND_PLAIN;
    if (end.value.val.integer.text == 0)
        return i64ismin(bound) || i64ismax(bound) ? BOUND_SIGNED : BOUND_PLAIN;
    if (i64isneg(bound)) return BOUND_BEYOND;
    uint64_t word = UINT64_MAX;
    const bool fits = integerOf(end.module, end.value.val).isUnsigned64(word);
    bound = i64of(static_cast<int64_t>(fits ? word : UINT64_MAX));
    return fits ? BOUND_UNSIGNED : BOUND_BEYOND;
}

} // namespace

void setInfinity(Endpoint& end, bool plus, uint8_t kind) {
    end = {};
    end.value.valCode = kind;
    if (kind == TYP_REAL) {
        makeSpecialRealVal(end.value.val.real, plus ? REAL_PLUS_INFINITY : REAL_MINUS_INFINITY);
    } else {
        end.value.isInfinite = true;
        end.value.val.number = plus ? i64max() : i64min();
    }
}

bool testInfinity(const Endpoint& end, bool plus, uint8_t kind) {
    if (kind != TYP_REAL)
        return end.value.isInfinite && end.value.val.number == (plus ? i64max() : i64min());
    return isSpecialRealVal(end.value.val.real) &&
           getSpecialRealVal(end.value.val.real) ==
               (plus ? REAL_PLUS_INFINITY : REAL_MINUS_INFINITY);
}

int compareNumber(const Endpoint& a, const Endpoint& b, uint8_t kind) {
    switch (kind) {
    case TYP_INTEGER: {
        const int order = signOfInfinity(a) - signOfInfinity(b);
        return order != 0 ? order / std::abs(order)
                          : compareIntegers(a.module, a.value.val, b.module, b.value.val);
    }
    case TYP_REAL: return compareReal(a.value.val.real, b.value.val.real);
    default: return 0;
    }
}

bool getEnumEndpoint(Endpoint& end, bool upper) {
    const KeepRec<KIND_VNODE> keep;
    setInfinity(end, upper, TYP_INTEGER);
    bool first = true;
    for ([[maybe_unused]] const VNodeNr nr : chain(typeModule(), VNodeNr{tNode.namedVals})) {
        if (vNode.valCode == TYP_ENUM) return none(end);
        Endpoint number;
        // A number that does not resolve is reported where the items are checked.
        if (vNode.valCode == TYP_EXTENSION_MARKER || !itemNumber(number, upper)) continue;
        const int order = first ? 0 : compareNumber(number, end, TYP_INTEGER);
        if (first || (upper ? order > 0 : order < 0)) end = number;
        first = false;
    }
    // In older notation the largest number is MAX, though counting may come to it.
    if (upper && !newNotation(typeModule()) && i64ismax(end.value.val.number))
        end.value.isInfinite = true;
    return true;
}

bool getEndpoint(Endpoint& end, bool upper) {
    return computeEndpoint(end, upper, false) || none(end);
}

bool getSizeEndpoint(Endpoint& end, bool upper) {
    if (!isSizeKind(actualKind()) || !getEndpoint(end, upper)) return none(end);
    return end.flags != 0 || !testInfinity(end, upper, TYP_INTEGER);
}

void noteEndpoints() {
    forgetEndpoints(currentRec<KIND_TNODE>());
    Endpoint end;
    for (const bool upper : {false, true}) static_cast<void>(computeEndpoint(end, upper, true));
    if (EndpointNote* note = noteOf(currentRec<KIND_TNODE>())) note->seriesEnd = seriesView.last;
}

void extendNotedEndpoints(SubRef member) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    const TNodeRef type = currentRec<KIND_TNODE>();
    const uint8_t kind = actualKind();
    EndpointPair own;
    for (const bool upper : {false, true}) {
        readRec(type);
        own.given[upper] = endpointOfSub(own.ends[upper], upper, kind, member);
    }
    readRec(type);
    EndpointNote* const note = noteOf(type);
    if (note == nullptr) return;
    EndpointPair series;
    for (const bool upper : {false, true}) {
        series.ends[upper] = note->ends[upper];
        series.given[upper] = note->known[upper] && note->exists[upper];
        own.given[upper] = own.given[upper] && series.given[upper];
    }
    narrowByMember(series, own, endpointKind(kind), isSizeKind(kind));
    for (const bool upper : {false, true}) note->ends[upper] = series.ends[upper];
    if (!seriesView.last) return;
    readRec(seriesView.last);
    if (subRec.next == member.nr.nr) note->seriesEnd.nr = member.nr;
}

void forgetEndpoints(TNodeRef type) {
    checkCacheOf(type.module).endpoints.erase(type.nr.nr);
}

void setTNodeEndpoints() {
    const uint8_t kind = tNode.typeCode;
    I64 lower = i64min();
    I64 upper = i64max();
    unsigned forms = 0;
    if (isBounded(kind) && kind != TYP_REAL) {
        writeCurrent<KIND_TNODE>(); // the record is read again below
        Endpoint ends[2];
        if (!computeEndpoint(ends[0], false, true) || !computeEndpoint(ends[1], true, true))
            fatalError(Fatal::Internal, "Cannot obtain endpoint for a type.");
        lower = storedBound(ends[0], kind);
        upper = storedBound(ends[1], kind);
        if (newNotation(typeModule()) && !isSizeKind(kind))
            forms = boundForm(ends[0], lower) | boundForm(ends[1], upper) << upperBoundShift;
    }
    tNode.boundForms = static_cast<uint8_t>(forms);
    tNode.lowerBound = lower;
    tNode.upperBound = upper;
    writeCurrent<KIND_TNODE>();
}

} // namespace orvo
