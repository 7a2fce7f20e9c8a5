// Endpoints of constraints. A union has the outermost endpoint of its operands, an intersection and
// a series the innermost; an operand without endpoint is passed over. Of two endpoints with the
// same value a union takes the included one, an intersection the excluded one.

#include "check/orvonum_end_sub.h"

#include "check/check_cache.h"
#include "check/orvostri.h"
#include "diag/orvoerr_fatal.h"
#include "tree/orvoutil_find.h"
#include "util/stack.h"

namespace orvo {

namespace {

/// What is asked of a constraint and of its operands.
struct Request {
    bool upper;
    uint8_t kind;
    bool ofSize; // the constraint is one of a string or list: SIZE alone counts
    bool inSize; // it stands inside SIZE: contained subtypes do not count
};

bool subEndpoint(const Request& request, SubRef sub, Endpoint& end);

bool isNumber(uint8_t kind) {
    return kind == TYP_INTEGER || kind == TYP_REAL;
}

uint8_t includedFlag(bool upper) {
    return upper ? SUBF_UPPER : SUBF_LOWER;
}

/// Replaces `end` by the endpoint that lies further out (wide) or further in.
void choose(Endpoint& end, const Endpoint& other, bool wide, bool upper, uint8_t kind) {
    int order = compareNumber(other, end, kind);
    if (order == 0)
        order = (end.flags != 0 ? 1 : 0) - (other.flags != 0 ? 1 : 0);
    else if (upper)
        order = -order;
    if (wide ? order < 0 : order > 0) end = other;
}

/// What has no endpoint sets no bound to a union, except to older notation.
bool isUnbounded(SubRef sub) {
    readRec(sub);
    return newNotation(sub.module) && subRec.subKind != SUB_EXTENSION_MARKER;
}

/// Walks the operands of the current operator record.
bool operandsEndpoint(const Request& request, SubRef first, bool wide, Endpoint& end) {
    bool given = false;
    forEachOperand(first, [&](SubRef sub) {
        Endpoint operand;
        if (!subEndpoint(request, sub, operand)) {
            if (!wide || !isUnbounded(sub)) return true;
            given = false;
            return false;
        }
        if (given)
            choose(end, operand, wide, request.upper, request.kind);
        else
            end = operand;
        given = true;
        return true;
    });
    if (!given) setInfinity(end, request.upper, request.kind);
    return true;
}

/// The value lies between two endpoints, as far as they are given and finite.
bool isWithin(const Endpoint& value, const EndpointPair& bounds, uint8_t kind) {
    for (const bool upper : {false, true}) {
        const Endpoint& bound = bounds.ends[upper];
        if (!bounds.given[upper] || testInfinity(bound, upper, kind)) continue;
        int order = compareNumber(value, bound, kind);
        if (upper) order = -order;
        if (order < 0 || (order == 0 && bound.flags == 0)) return false;
    }
    return true;
}

/// The members of a series, one after the other.
bool seriesEndpoint(const Request& request, SubRef first, Endpoint& end) {
    EndpointPair series;
    forEachOperand(first, [&](SubRef sub) {
        EndpointPair member;
        Request asked = request;
        for (const bool upper : {false, true}) {
            asked.upper = upper;
            member.given[upper] = subEndpoint(asked, sub, member.ends[upper]);
        }
        narrowByMember(series, member, request.kind, request.ofSize);
        return true;
    });
    end = series.ends[request.upper];
    if (!series.given[request.upper]) setInfinity(end, request.upper, request.kind);
    return true;
}

bool singleValueEndpoint(const Request& request, VNodeRef value, Endpoint& end) {
    if (!value) return false;
    readRec(value);
    skipValues(true);
    if (vNode.valCode != request.kind) return false;
    end = {vNode, includedFlag(request.upper), valueModule()};
    return true;
}

bool containedEndpoint(const Request& request, VNodeRef setting, Endpoint& end) {
    const KeepRec<KIND_TNODE> keep;
    if (!readTypeSetting(setting)) return false;
    return getEndpoint(end, request.upper) && end.value.valCode == request.kind;
}

bool containedSize(const Request& request, VNodeRef setting, Endpoint& end) {
    const KeepRec<KIND_TNODE> keep;
    return readTypeSetting(setting) && getSizeEndpoint(end, request.upper);
}

bool subEndpoint(const Request& request, SubRef sub, Endpoint& end) {
    if (stackIsLow()) fatalError(Fatal::NoSpace, "Constraints are nested too deeply.");
    readRec(sub);
    const SubRef operand{sub.module, SubNr{subRec.left}};
    const VNodeRef value{sub.module, VNodeNr{subRec.left}};
    switch (subRec.subKind) {
    case SUB_UNION: return operandsEndpoint(request, operand, true, end);
    case SUB_INTERSECTION: return operandsEndpoint(request, operand, false, end);
    case SUB_SERIAL: return seriesEndpoint(request, operand, end);
    case SUB_EXCEPT: // older notation: none
        return newNotation(sub.module) && operand && subEndpoint(request, operand, end);
    case SUB_SIZE: {
        const Request inner{request.upper, TYP_INTEGER, false, true};
        return request.ofSize && operand && subEndpoint(inner, operand, end);
    }
    case SUB_RANGE: return !request.ofSize && getRangeEndpoint(end, request.upper);
    case SUB_SINGLE_VALUE: return !request.ofSize && singleValueEndpoint(request, value, end);
    case SUB_CONTAINED_SUBTYPE:
        if (!newNotation(sub.module) && (request.ofSize || request.inSize)) return false;
        return request.ofSize ? containedSize(request, value, end)
                              : containedEndpoint(request, value, end);
    default: return false;
    }
}

// ---- ranges -------------------------------------------------------------------------------------

bool hasRangeEndpoints(uint8_t kind) {
    switch (kind) {
    case TYP_INTEGER:
    case TYP_REAL:
    case TYP_NUMSTR:
    case TYP_PRISTR:
    case TYP_VISSTR:
    case TYP_IA5STR:
    case TYP_BMPSTR:
    case TYP_UNISTR:
    case TYP_UTF8STR: return true;
    default: return false;
    }
}

/// The first or the last character of a string kind, as a string of one.
void setStringInfinity(Endpoint& end, bool plus, uint8_t kind, ModuleRec* module) {
    end = {};
    end.module = module;
    end.value.valCode = kind;
    end.value.val.str.striLen = 1;
    uint32_t& stri = end.value.val.str.stri;
    // The first character is NUL, which no text of the cache holds: it stands behind an empty one.
    switch (kind) {
    case TYP_BMPSTR: stri = putStri16(module, plus ? u"\xFFFF" : u"").nr; break;
    case TYP_UNISTR: stri = putStri32(module, plus ? U"\U0010FFFF" : U"").nr; break;
    case TYP_UTF8STR: stri = putStri(module, plus ? "\xF4\x8F\xBF\xBF" : "").nr; break;
    default: stri = putStri(module, plus ? "\xFF" : "").nr; break;
    }
}

/// The current type, or the one behind it on its chain of references, that is the first with a
/// range in its constraint; none when there is none. The types on the way are noted, but not those
/// that lead to a type under check, whose constraint may count in part.
TNodeRef firstWithRange() {
    std::vector<TNodeRef> passed;
    TNodeRef found;
    size_t left = maxLinks;
    do {
        const TNodeRef type = currentRec<KIND_TNODE>();
        const auto& notes = checkCacheOf(type.module).rangeParents;
        if (const auto note = notes.find(type.nr.nr); note != notes.end()) {
            found = note->second;
            break;
        }
        if (tNode.checkState == static_cast<int16_t>(CHECK_DONE))
            passed.push_back(type);
        else
            passed.clear();
        if (tNode.constraint > 0) {
            readRec(type.module, SubNr{magnitude(tNode.constraint)});
            if (isRangeInSub()) found = type;
        }
    } while (!found && --left != 0 && followTypeRef(true));
    for (const TNodeRef& type : passed) checkCacheOf(type.module).rangeParents[type.nr.nr] = found;
    return found;
}

/// The type that gives the parent range to the current type: none when that is no reference.
bool readRangeParent() {
    if (!followTypeRef(true)) return false;
    const TNodeRef parent = firstWithRange();
    if (!parent) return false;
    readRec(parent);
    return true;
}

/// An explicit endpoint lies inside the parent's range. The current type is the constrained one.
bool isInsideParent(const Endpoint& value, uint8_t kind) {
    if (!isNumber(kind) || !readRangeParent()) return true;
    EndpointPair parent;
    for (const bool upper : {false, true})
        parent.given[upper] = getEndpoint(parent.ends[upper], upper);
    return isWithin(value, parent, kind);
}

/// MIN or MAX of the current type.
bool implicitRangeEndpoint(Endpoint& end, bool upper, uint8_t kind, ModuleRec* module) {
    if (!isNumber(kind)) {
        setStringInfinity(end, upper, kind, module);
    } else if (!readRangeParent() || !getEndpoint(end, upper)) {
        setInfinity(end, upper, kind);
    }
    return true;
}

/// An endpoint as written; one outside the parent's range leaves the parent's endpoint on that
/// side.
bool explicitRangeEndpoint(Endpoint& end, bool upper, VNodeRef value, uint8_t flags, uint8_t kind) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    readRec(value);
    skipValues(true);
    if (kind == TYP_INTEGER ? !isIntegerVNode()
                            : !sharesCharacters(value.module, vNode.valCode, kind))
        return false;
    end = {vNode, flags, valueModule()};
    if (isInsideParent(end, kind)) return true;
    readRec(type);
    return implicitRangeEndpoint(end, upper, kind, value.module);
}

/// Reads the type that the current range record constrains: what the record names, or the current
/// type when that is a reference to it, under which the later members of a series are checked.
bool readConstrainedType(ModuleRec* module) {
    const auto typeMod = static_cast<int32_t>(subRec.typeMod);
    const TNodeRef named{refModule(module, typeMod), TNodeNr{subRec.typeNr}};
    if (named.module == nullptr || !named.nr) return false;
    const bool isReferenceToIt = typeModule() != nullptr && tNode.typeCode == TYP_SYNONYM &&
                                 tNode.ref == named.nr.nr &&
                                 refModule(typeModule(), tNode.refMod) == named.module;
    if (!isReferenceToIt) readRec(named);
    return true;
}

bool rangeEndpoint(Endpoint& end, bool upper) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    ModuleRec* module = subModule();
    const VNodeRef value{module, VNodeNr{upper ? subRec.right : subRec.left}};
    const auto flags = static_cast<uint8_t>(subRec.subFlags & includedFlag(upper));
    if (!readConstrainedType(module)) return false;
    const TNodeRef type = currentRec<KIND_TNODE>();
    skipTypes(true);
    const uint8_t kind = tNode.typeCode;
    if (!hasRangeEndpoints(kind)) return false;
    readRec(type);
    return value ? explicitRangeEndpoint(end, upper, value, flags, kind)
                 : implicitRangeEndpoint(end, upper, kind, module);
}

} // namespace

SeriesView seriesView;

SubNr nextOperand() {
    return currentRec<KIND_SUB>() == seriesView.last ? SubNr() : SubNr{subRec.next};
}

bool getNumberEndpoint(Endpoint& end, bool upper, SubRef sub, uint8_t kind) {
    return subEndpoint({upper, kind, false, false}, sub, end);
}

bool sizeEndpoint(Endpoint& end, bool upper, SubRef sub) {
    return subEndpoint({upper, TYP_INTEGER, true, false}, sub, end);
}

void narrow(Endpoint& end, const Endpoint& other, bool upper, uint8_t kind) {
    choose(end, other, false, upper, kind);
}

void narrowByMember(EndpointPair& series, const EndpointPair& member, uint8_t kind, bool ofSize) {
    const EndpointPair before = series;
    for (const bool upper : {false, true}) {
        const Endpoint& own = member.ends[upper];
        if (!member.given[upper] || (!ofSize && isNumber(kind) && !isWithin(own, before, kind)))
            continue;
        if (series.given[upper])
            narrow(series.ends[upper], own, upper, kind);
        else
            series.ends[upper] = own;
        series.given[upper] = true;
    }
}

bool getRangeEndpoint(Endpoint& end, bool upper) {
    if (rangeEndpoint(end, upper)) return true;
    end = {};
    end.value.valCode = noEndpoint;
    return false;
}

bool isRangeInSub() {
    if (subRec.subKind == SUB_RANGE) return true;
    if (subRec.subKind != SUB_SERIAL) return false;
    const KeepRec<KIND_SUB> keep;
    bool found = false;
    forEachOperand({subModule(), SubNr{subRec.left}}, [&](SubRef) {
        found = isRangeInSub();
        return !found;
    });
    return found;
}

} // namespace orvo
