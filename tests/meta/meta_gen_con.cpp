// What a type comes to, and constraints that leave it values.

#include <algorithm>
#include <utility>

#include "meta_gen.h"

namespace orvo::meta {

bool isStructure(Kind kind) {
    return kind == Kind::Sequence || kind == Kind::Set || kind == Kind::Choice;
}

Type* copy(Gen& gen, const Type* from, const Type* instance) {
    if (from->kind == Kind::Dummy) return instance->actuals[static_cast<size_t>(from->pick)];
    Type* to = make(gen, from->kind);
    *to = *from;
    for (Component& component : to->components)
        component.type = copy(gen, component.type, instance);
    if (to->parameter == 'H') to->domain.hi = instance->actual;
    if (to->parameter == 'S') to->domain = instance->domain;
    if (to->set == -2) to->set = instance->actual;
    if (to->kind == Kind::ObjectType && to->def < 0) to->def = instance->actual;
    return to;
}

Type* step(Gen& gen, const Type* type) {
    switch (type->kind) {
    case Kind::Reference: return defAt(gen, type->via >= 0 ? type->via : type->def).type;
    case Kind::Instance:
    case Kind::Narrowed: return type->target;
    case Kind::Selection:
        return actual(gen, defAt(gen, type->def).type)
            ->components[static_cast<size_t>(type->pick)]
            .type;
    case Kind::ObjectType:
        if (!defAt(gen, type->def).built) return nullptr;
        return const_cast<Type*>(typeOf(gen, type->cls, defAt(gen, type->def).object));
    case Kind::FieldType: return type->isValueField ? classAt(gen, type->cls).valueType : nullptr;
    default: return nullptr;
    }
}

const Type* actual(Gen& gen, const Type* type) {
    while (Type* next = step(gen, type)) type = next;
    return type;
}

void narrow(Domain& domain, const Domain& by) {
    domain.lo = std::max(domain.lo, by.lo);
    domain.hi = std::min(domain.hi, by.hi);
    if (domain.letters.empty()) domain.letters = by.letters;
    if (domain.only.empty()) domain.only = by.only;
}

Domain domainOf(Gen& gen, const Type* type) {
    Domain domain;
    for (const Type* at = type; at != nullptr; at = step(gen, at)) narrow(domain, at->domain);
    return domain;
}

std::vector<Component> allComponents(Gen& gen, const Type* type) {
    std::vector<Component> list;
    for (const Component& component : type->components) {
        if (!component.included) {
            list.push_back(component);
            continue;
        }
        Type root = *actual(gen, component.type);
        if (root.marker >= 0)
            root.components.erase(root.components.begin() + root.marker,
                                  root.components.begin() + endOfAdditions(&root));
        // what leads back into the list that is being built adds nothing
        std::erase_if(root.components, [&](const Component& inside) {
            return inside.included && inside.type->def == component.type->def;
        });
        for (const Component& inside : allComponents(gen, &root)) list.push_back(inside);
    }
    return list;
}

const Type* effective(Gen& gen, const Type* type) {
    const Type* next = step(gen, type);
    if (next == nullptr) return type;
    const Type* base = effective(gen, next);
    if (type->inner.empty()) return base;
    Type* result = make(gen, base->kind);
    *result = *base;
    result->components = allComponents(gen, base);
    for (Component& component : result->components) {
        const auto inner = std::ranges::find(type->inner, component.id, &Inner::id);
        if (inner == type->inner.end()) {
            if (type->full && component.presence != 'M') component.absent = true;
            continue;
        }
        if (inner->presence == 'A') component.absent = true;
        if (inner->presence == 'P') component.presence = 'M';
        component.type = inner->type;
    }
    return result;
}

// ---- sets of integers ---------------------------------------------------------------------------

std::string number(Gen& gen, int64_t value, bool withParameters) {
    if (gen.random.chance(30)) {
        const int at = choose(gen, -1, [value](const Planned& planned) {
            return planned.plan == Plan::Number && planned.number == value;
        });
        if (at >= 0) return defAt(gen, at).name;
    }
    const std::string text = std::to_string(value);
    if (gen.random.chance(4)) return define(gen, "va", "INTEGER", text);
    if (withParameters && gen.random.chance(3))
        return define(gen, "pv", "{INTEGER : fn} INTEGER", "fn") + " {" + text + "}";
    return text;
}

namespace {

/// A range, a number or the name of a set within the domain.
std::string integers(Gen& gen, Domain& domain, bool isSize) {
    const int64_t from = domain.lo == low ? gen.random.between(-20, 20) : domain.lo;
    const int64_t to = domain.hi == high ? from + gen.random.between(0, 60) : domain.hi;
    const int named = choose(gen, -1, [&](const Planned& planned) {
        if (planned.plan == Plan::Number) return planned.number >= from && planned.number <= to;
        if (isSize || !planned.built) return false;
        Domain common = planned.object.valsDomain; // of a value set field
        if (planned.plan == Plan::Object && planned.object.vals.empty()) return false;
        if (planned.plan == Plan::Type || planned.plan == Plan::ValueSet) {
            if (actual(gen, planned.type)->kind != Kind::Integer) return false;
            common = domainOf(gen, planned.type);
        } else if (planned.plan != Plan::Object) {
            return false;
        }
        narrow(common, domain);
        return common.lo <= common.hi;
    });
    if (named >= 0 && gen.random.chance(40)) {
        const Planned& planned = defAt(gen, named);
        if (planned.plan == Plan::Number) {
            domain.lo = planned.number;
            domain.hi = gen.random.between(domain.lo, to);
        } else {
            const bool field = planned.plan == Plan::Object;
            narrow(domain, field ? planned.object.valsDomain : domainOf(gen, planned.type));
            return (gen.random.chance(20) ? "INCLUDES " : "") + planned.name +
                   (field ? "." + fieldName(gen, planned.cls, "Vals") : "");
        }
    } else {
        domain.lo = gen.random.between(from, to);
        domain.hi = gen.random.between(domain.lo, to);
    }
    if (!isSize && gen.random.chance(5))
        return define(gen, "Pv", "{INTEGER : fn} INTEGER", "{fn.." + number(gen, domain.hi) + "}") +
               " {" + number(gen, domain.lo) + "}";
    if (domain.lo == domain.hi) return number(gen, domain.lo);
    return number(gen, domain.lo) + ".." + number(gen, domain.hi);
}

} // namespace

std::string integerSet(Gen& gen, Domain& domain, bool isSize) {
    const Domain before = domain;
    const std::string text = integers(gen, domain, isSize);
    const bool isSome = domain.hi > domain.lo && domain.lo > low && domain.hi < high;
    switch (gen.random.below(isSize ? 6 : 9)) {
    case 0:
        if (before.hi < high) return text + " | " + number(gen, before.hi);
        return text + " | " + number(gen, isSome ? domain.hi : 5);
    case 1: return text + ", ...";
    case 2:
        if (!isSome) break;
        return text + " EXCEPT " + number(gen, domain.hi--);
    case 3: {
        if (!isSome) break;
        const std::string from = number(gen, domain.lo), to = number(gen, --domain.hi);
        return "(" + text + ") ^ " + from + ".." + to;
    }
    case 6:
        if (!isSome || domain.lo <= before.lo) break;
        return "ALL EXCEPT " + number(gen, domain.lo++);
    case 7: {
        if (!isSome) break;
        const std::string from = number(gen, domain.lo), to = number(gen, domain.hi);
        return text + ")(" + from + ".." + to;
    }
    default: break;
    }
    return text;
}

std::string sizes(Gen& gen, Domain& domain) {
    Domain wanted{std::max<int64_t>(domain.lo, 0), std::min<int64_t>(domain.hi, 9), {}, {}};
    const std::string text = integerSet(gen, wanted, true);
    narrow(domain, wanted);
    return "SIZE (" + text + ")";
}

// ---- constraints of what leads to another type --------------------------------------------------

namespace {

/// A type that leads to the same definition, hence has no other values.
bool containSubtype(Gen& gen, Type* type) {
    type->via = choose(gen, type->def, [&](const Planned& planned) {
        if (planned.plan != Plan::Type || !planned.built) return false;
        for (const Type* at = planned.type; at != nullptr; at = step(gen, at))
            if (at->kind == Kind::Reference && (at->def == type->def || at->via == type->def))
                return true;
        return false;
    });
    if (type->via < 0) return false;
    type->constraint = "(" + defAt(gen, type->via).name + ")";
    return true;
}

void constrainValues(Gen& gen, Type* type, std::vector<std::string> values) {
    if (values.empty()) return;
    const auto at = gen.random.below(static_cast<int>(values.size()));
    const std::string chosen = values[static_cast<size_t>(at)];
    values.erase(values.begin() + at);
    if (!values.empty() && gen.random.chance(30)) {
        type->constraint = "(ALL EXCEPT " + chosen + ")";
        type->domain.only = values;
        return;
    }
    type->domain.only = {chosen};
    type->constraint = "(" + chosen;
    if (!values.empty() && gen.random.chance(50)) {
        type->domain.only.push_back(values.front());
        type->constraint += " | " + values.front();
    }
    type->constraint += gen.random.chance(15) ? ", ...)" : ")";
}

void constrainComponents(Gen& gen, Type* type, const Type* base, int depth) {
    bool canBeFull = base->kind != Kind::Choice, first = true;
    std::string text;
    for (const Component& component : allComponents(gen, base)) {
        const bool isFirst = std::exchange(first, false);
        Inner inner{component.id, ' ', make(gen, Kind::Narrowed)};
        inner.type->target = component.type;
        if (component.presence != 'D' && !component.absent && gen.random.chance(60))
            constrain(gen, inner.type, depth + 1);
        if (inner.type->constraint.empty()) inner.type = component.type;
        const Kind kind = component.type->kind;
        const bool isPart = kind == Kind::FieldType || kind == Kind::OpenType || kind == Kind::Any;
        if (component.presence == 'O' && !component.absent && !isPart)
            inner.presence = " AP"[gen.random.below(3)];
        if (component.absent || (base->kind == Kind::Choice && !isFirst && gen.random.chance(30)))
            inner.presence = 'A';
        // a component that leads back may have no finite value
        if (inner.presence == 'P' && kind >= Kind::List) inner.presence = ' ';
        std::string entry = component.id;
        if (inner.type != component.type) entry += " " + inner.type->constraint;
        if (inner.presence == 'A') entry += " ABSENT";
        if (inner.presence == 'P') entry += " PRESENT";
        const bool isBare = entry == component.id;
        if (isBare && (base->kind == Kind::Choice || gen.random.chance(70))) {
            canBeFull = canBeFull && component.presence != 'M';
            continue;
        }
        type->inner.push_back(inner);
        text += (text.empty() ? "" : ", ") + entry;
    }
    if (type->inner.empty()) return;
    type->full = canBeFull && gen.random.chance(60);
    type->constraint = "(WITH COMPONENTS {" + std::string(type->full ? "" : "..., ") + text + "})";
}

} // namespace

void constrain(Gen& gen, Type* type, int depth) {
    for (const Type* at = type; at != nullptr; at = step(gen, at)) // tables only are parsed there
        if (at->kind == Kind::FieldType || at->kind == Kind::OpenType) return;
    const Type* base = effective(gen, type);
    const Domain before = domainOf(gen, type);
    if (depth > 3 || base->text.starts_with("INSTANCE")) return;
    if (base->text.find("CONTAINING") != base->text.npos) return; // no value begins with it there
    if (type->kind == Kind::Reference && gen.random.chance(30) && containSubtype(gen, type)) return;
    if (isStructure(base->kind)) return constrainComponents(gen, type, base, depth);
    if (!before.only.empty()) return constrainValues(gen, type, before.only);
    Domain domain{before.lo, before.hi, {}, {}};
    switch (base->kind) {
    case Kind::Integer:
        do {
            type->domain = domain;
            type->constraint = "(" + integerSet(gen, type->domain, false) + ")";
        } while (depth > 0 && type->constraint.find(")(") != std::string::npos); // no series there
        return;
    case Kind::Text:
        if (gen.random.chance(30)) return constrainValues(gen, type, {valueOf(gen, type, 0)});
        if (before.letters.size() > 2 && gen.random.chance(40)) {
            type->domain.letters = before.letters.substr(0, 2);
            type->constraint = "(FROM (\"" + type->domain.letters + "\"))";
            return;
        }
        break;
    case Kind::List:
        if (gen.random.chance(40)) {
            Inner inner{base->components[0].id, ' ', make(gen, Kind::Narrowed)};
            inner.type->target = base->components[0].type;
            constrain(gen, inner.type, depth + 1);
            if (inner.type->constraint.empty()) return;
            type->inner.push_back(inner);
            type->constraint = "(WITH COMPONENT " + inner.type->constraint + ")";
            return;
        }
        break;
    default: return;
    }
    type->domain = domain;
    if (base->kind == Kind::List && before.lo <= 0) { // its elements may lead back
        type->domain.hi = gen.random.between(0, std::min<int64_t>(before.hi, 3));
        type->constraint = "(SIZE (0.." + number(gen, type->domain.hi) + "))";
        return;
    }
    type->constraint = "(" + sizes(gen, type->domain) + ")";
}

} // namespace orvo::meta
