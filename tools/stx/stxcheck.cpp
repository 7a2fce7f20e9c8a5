#include "stxreader.h"

// What a file must satisfy beyond its layout: codes that decide the meaning of other fields are
// known, every link leads to a record that exists, no list and no tree of records leads back into
// itself, and no two share a part: a file where every level shares the one below would be small and
// take for ever to walk.

namespace stx {
namespace {

/// Numbers of strings that the compiler adds while it writes no more: above the count, below this.
constexpr uint32_t lastStringNr = 0x7FFFFFFA;

std::string where(Kind kind, uint32_t nr, const char* field) {
    return std::string(kindNames[kind]) + ' ' + std::to_string(nr) + ", field " + field + ": ";
}

/// Depth first along at most two links per record, without recursion. Gives a record that leads
/// back to itself, 0 = there is none.
template <typename Successors> uint32_t findCycle(uint32_t count, Successors successors) {
    enum : uint8_t { New, Open, Done };
    struct Step {
        uint32_t nr;
        uint8_t taken;
    };
    std::vector<uint8_t> state(size_t{count} + 1, New);
    std::vector<Step> path;
    for (uint32_t start = 1; start <= count; ++start) {
        if (state[start] != New) continue;
        path.push_back({start, 0});
        state[start] = Open;
        while (!path.empty()) {
            Step& step = path.back();
            if (step.taken == 2) {
                state[step.nr] = Done;
                path.pop_back();
                continue;
            }
            const uint32_t to = successors(step.nr, step.taken++);
            if (to == 0 || to > count || state[to] == Done) continue;
            if (state[to] == Open) return to;
            state[to] = Open;
            path.push_back({to, 0});
        }
    }
    return 0;
}

} // namespace

bool Tree::checkRecords(std::string& error) const {
    for (const Kind kind : {MNODE, TNODE, VNODE, TAG, SUB, TED, SNODE})
        for (uint32_t nr = 1; nr <= counts_[kind]; ++nr)
            if (!checkRecord(kind, nr, error)) return false;
    return true;
}

bool Tree::checkRecord(Kind kind, uint32_t nr, std::string& error) const {
    for (const Field& field : fieldsOf(kind)) {
        int64_t value = 0;
        if (field.sense == Sense::Code && number(kind, nr, field, value) &&
            codeName(field.names(), value).empty()) {
            error = where(kind, nr, field.name) + std::to_string(value) + " is not a known code";
            return false;
        }
        if ((field.sense == Sense::Link || field.sense == Sense::String) &&
            !checkLink(kind, nr, field, error))
            return false;
    }
    return true;
}

bool Tree::checkLink(Kind kind, uint32_t nr, const Field& field, std::string& error) const {
    int64_t value = 0;
    if (!field.names().empty() && number(kind, nr, field, value) && value < 0 &&
        codeName(field.names(), value).empty()) {
        error = where(kind, nr, field.name) + std::to_string(value) + " is not a known code";
        return false;
    }
    const Link link = linkOf(kind, nr, field);
    if (link.target == Target::String) {
        if (link.nr <= counts_[link.kind] || (link.optional && link.nr <= lastStringNr))
            return true;
    } else if (link.target == Target::Record) {
        if (link.module == 0 || link.module > counts_[MNODE]) {
            error = where(kind, nr, field.name) + "module reference " +
                    std::to_string(static_cast<int32_t>(link.module)) + " is out of range (1.." +
                    std::to_string(counts_[MNODE]) + ')';
            return false;
        }
        // of another module the count is known only when its record was complete
        const uint32_t count =
            link.module == 1 ? counts_[link.kind] : mNode(link.module).recCount[link.kind];
        if (link.nr <= count || (link.module != 1 && count == 0)) {
            if (kind != SNODE || field.leads != Leads::Syntax || sNode(nr).next >= 0 ||
                sNode(link.nr).token == TOK_LBRACKET)
                return true;
            error = where(kind, nr, field.name) + std::to_string(sNode(nr).next) +
                    " does not lead back to an optional group";
            return false;
        }
    } else {
        return true;
    }
    error = where(kind, nr, field.name) + std::to_string(link.nr) + " is out of range (" +
            kindNames[link.kind] + " 1.." +
            std::to_string(link.module == 1 ? counts_[link.kind]
                                            : mNode(link.module).recCount[link.kind]) +
            ')';
    return false;
}

bool Tree::checkLists(std::string& error) const {
    struct Walk {
        Kind kind;
        const char* text; // of the second link
    };
    constexpr Walk walks[] = {
        {TNODE, "ref"}, {VNODE, "ref"}, {TAG, ""}, {SUB, "left"}, {SNODE, "value"}};
    for (const Walk& walk : walks) {
        const Field down = fieldNamed(walk.kind, walk.text);
        const Field next = fieldNamed(walk.kind, "next");
        const uint32_t bad = findCycle(counts_[walk.kind], [&](uint32_t nr, int which) -> uint32_t {
            if (which == 0) {
                int64_t to = 0;
                return number(walk.kind, nr, next, to) && to > 0 ? static_cast<uint32_t>(to) : 0;
            }
            if (down.name == nullptr || !owns(walk.kind, nr)) return 0;
            const Link link = linkOf(walk.kind, nr, down);
            const bool inside =
                link.target == Target::Record && link.kind == walk.kind && link.module == 1;
            return inside ? link.nr : 0;
        });
        if (bad == 0) continue;
        error = std::string(kindNames[walk.kind]) + ' ' + std::to_string(bad) + ", field next" +
                (down.name != nullptr ? std::string(" or ") + down.name : "") +
                ": the list leads back to its own beginning";
        return false;
    }
    return true;
}

namespace {

/// The field leads to what the record is made of, or to what follows it in a list.
bool isPart(Kind kind, const Field& field) {
    switch (field.leads) {
    case Leads::Type:
    case Leads::Value:
    case Leads::Tag:
    case Leads::Constraint:
    case Leads::Syntax:
    case Leads::TypeRef:
    case Leads::Actuals:
    case Leads::ValueRef:
    case Leads::ValueActuals:
    case Leads::TagNumber:
    case Leads::LeftOperand:
    case Leads::RightOperand:
    case Leads::SyntaxValue: break;
    default: return kind == MNODE && field.leads != Leads::Module && field.sense == Sense::Link;
    }
    return true;
}

} // namespace

bool Tree::checkOwners(std::string& error) const {
    // A DEFAULT value is an entry of the list of all and part of its component. A class that is
    // an instance has the WITH SYNTAX list of its definition.
    std::array<std::vector<bool>, kindCount> owned, defaults;
    for (int kind = 0; kind < kindCount; ++kind)
        for (auto* marks : {&owned, &defaults})
            (*marks)[static_cast<size_t>(kind)].resize(size_t{counts_[static_cast<size_t>(kind)]} +
                                                       1);
    for (const Kind kind : {MNODE, TNODE, VNODE, TAG, SUB, SNODE})
        for (const Field& field : fieldsOf(kind)) {
            const std::string_view name = field.name;
            if (!isPart(kind, field) || name == "syntaxList") continue;
            auto& marks = name == "defaultVal" ? defaults : owned;
            for (uint32_t nr = 1; nr <= counts_[kind]; ++nr) {
                const bool second = name == "ref" || name == "value";
                if (second && !owns(kind, nr)) continue;
                const Link link = linkOf(kind, nr, field);
                if (link.target != Target::Record || link.module != 1) continue;
                if (kind == VNODE && link.kind == TNODE && name == "ref") continue; // may be named
                if (kind == SNODE && name == "next" && sNode(nr).next < 0) continue;
                if (!marks[link.kind][link.nr]) {
                    marks[link.kind][link.nr] = true;
                    continue;
                }
                error = where(kind, nr, field.name) + kindNames[link.kind] + ' ' +
                        std::to_string(link.nr) + " is part of another record already";
                return false;
            }
        }
    return true;
}

/// The second link leads to parts of the record itself, not to a definition elsewhere.
bool Tree::owns(Kind kind, uint32_t nr) const {
    if (kind == TNODE) {
        const uint8_t code = tNode(nr).typeCode;
        return code < typeCount && typeTable[code].structured;
    }
    if (kind == VNODE) {
        const uint8_t code = vNode(nr).valCode;
        return code != TYP_SYNONYM && code != TYP_FIELDLIST;
    }
    return kind != SNODE || sNode(nr).token == TOK_LBRACKET;
}

} // namespace stx
