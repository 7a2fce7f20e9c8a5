// The notation of types, and values of them.

#include <algorithm>

#include "meta_gen.h"

namespace orvo::meta {

// ---- types --------------------------------------------------------------------------------------

namespace {

std::string componentText(Gen& gen, const Component& component) {
    if (component.included) return "COMPONENTS OF " + textOf(gen, component.type);
    std::string text = component.id + " " + textOf(gen, component.type);
    if (component.presence == 'O') text += " OPTIONAL";
    if (component.presence == 'D') text += " DEFAULT " + component.value;
    return text;
}

/// Every component stands on a line of its own: there faults are planted.
std::string componentsText(Gen& gen, const Type* type) {
    std::string text = "{\n    ";
    const auto add = [&text](const std::string& entry) {
        text += (text.size() > 6 ? "\n    , " : "") + entry;
    };
    const int count = static_cast<int>(type->components.size());
    for (int at = 0; at <= count; ++at) {
        if (type->marker == at) add("..." + type->exception);
        if (type->second == at) add("...");
        if (at == count) break;
        std::string entry = componentText(gen, type->components[static_cast<size_t>(at)]);
        const int last = endOfAdditions(type) - 1;
        if (type->group == at) entry.insert(0, "[[ " + type->version);
        if (type->group >= 0 && at == last) entry += " ]]";
        if (type->group >= 0 && at > type->group && at <= last)
            text += "\n    , " + entry;
        else
            add(entry);
    }
    return text + " }";
}

/// "name " in front of the element of a list, its type and its values.
std::string nameOfElement(const Type* list) {
    const std::string& name = list->components[0].id;
    return name.empty() ? name : name + " ";
}

std::string namesText(const Type* type) {
    std::string text;
    for (const auto& [name, number] : type->names)
        text += (text.empty() ? " {" : ", ") + name + "(" + std::to_string(number) + ")";
    return text.empty() ? "" : text + "}";
}

} // namespace

std::string textOf(Gen& gen, const Type* type) {
    const std::string constraint =
        (type->constraint.empty() ? "" : " " + type->constraint) + type->option;
    const auto notation = [&]() -> std::string {
        switch (type->kind) {
        case Kind::Integer: return "INTEGER" + namesText(type);
        case Kind::Sequence: return "SEQUENCE " + componentsText(gen, type);
        case Kind::Set: return "SET " + componentsText(gen, type);
        case Kind::Choice: return "CHOICE " + componentsText(gen, type);
        case Kind::Reference: return defAt(gen, type->def).name;
        case Kind::Narrowed: return textOf(gen, type->target);
        case Kind::Selection: {
            const Planned& choice = defAt(gen, type->def);
            return actual(gen, choice.type)->components[static_cast<size_t>(type->pick)].id +
                   " < " + choice.name;
        }
        case Kind::ObjectType: return type->text + "." + fieldName(gen, type->cls, "Type");
        case Kind::FieldType:
            return className(gen, type->cls) + "." +
                   fieldName(gen, type->cls, type->isValueField ? "val" : "id");
        case Kind::OpenType:
            return className(gen, type->cls) + "." + fieldName(gen, type->cls, "Type");
        case Kind::Any: return "ANY DEFINED BY " + type->text;
        case Kind::Instance: { // DEFAULT values and objects in an actual parameter are found late
            if (!type->text.empty()) return type->text;
            const std::string text = type->actuals.empty() ? setText(gen, defAt(gen, type->actual))
                                                           : textOf(gen, type->actuals[0]);
            return defAt(gen, type->def).name + " {" + text + "}";
        }
        default: return type->text;
        }
    };
    const std::string tag = type->tag.empty() ? "" : type->tag + " ";
    if (type->kind == Kind::List)
        return tag + type->text + constraint + " OF " + nameOfElement(type) +
               textOf(gen, type->components[0].type);
    return tag + notation() + constraint;
}

// ---- values -------------------------------------------------------------------------------------

namespace {

std::string integerValue(Gen& gen, const Type* type, const Domain& domain) {
    const auto fits = [&](int64_t number) { return number >= domain.lo && number <= domain.hi; };
    if (!type->names.empty() && gen.random.chance(40)) {
        const auto& [name, number] = oneOf(gen, type->names);
        if (fits(number)) return name;
    }
    if (gen.random.chance(15)) {
        const int at = choose(gen, -1, [&](const Planned& planned) {
            return planned.plan == Plan::Object && !classAt(gen, planned.cls).builtIn &&
                   fits(std::atoi(planned.object.id.c_str()));
        });
        if (at >= 0) return defAt(gen, at).name + "." + fieldName(gen, defAt(gen, at).cls, "id");
    }
    if (gen.random.chance(30)) {
        const int at = choose(gen, -1, [&](const Planned& planned) {
            return planned.plan == Plan::Number && fits(planned.number);
        });
        if (at >= 0) return defAt(gen, at).name;
    }
    const int64_t start = domain.lo > low ? domain.lo : std::min<int64_t>(domain.hi, -50);
    const int64_t end = domain.hi < high ? domain.hi : std::max<int64_t>(start, 0) + 100000;
    return number(gen, gen.random.between(start, end));
}

/// Letters of the alphabet, as many as the domain admits.
std::string letters(Gen& gen, const Domain& domain) {
    const int64_t least = std::max<int64_t>(domain.lo, 0);
    const int64_t most = std::min<int64_t>(domain.hi, least + 4);
    std::string text;
    for (int64_t size = gen.random.between(least, most); size > 0; --size)
        text += oneOf(gen, domain.letters);
    return text;
}

void chooseRow(Gen& gen, const Type* type, int depth) {
    if (type->set < 0 || gen.rows.contains(type->row)) return;
    const std::vector<const Object*> members = membersOf(gen, type->set);
    gen.rows[type->row] = depth > 2 ? members.back() : oneOf(gen, members);
}

std::string anyValue(Gen& gen, int depth) {
    const int at =
        choose(gen, -1, [](const Planned& planned) { return planned.plan == Plan::Type; });
    if (at < 0 || depth > 3 || gen.random.chance(50)) return "INTEGER : 5";
    return defAt(gen, at).name + " : " + valueOf(gen, defAt(gen, at).type, depth + 1);
}

std::string openValue(Gen& gen, const Type* type, int depth) {
    if (type->set < 0) return anyValue(gen, depth);
    chooseRow(gen, type, depth);
    const Object& row = *gen.rows[type->row];
    const Type* open = typeOf(gen, type->cls, row);
    return (row.name.empty() ? textOf(gen, open)
                             : row.name + "." + fieldName(gen, type->cls, "Type")) +
           " : " + valueOf(gen, open, depth + 1);
}

std::string structureValue(Gen& gen, const Type* type, int depth) {
    const auto outside = gen.rows;
    const std::vector<Component> components = allComponents(gen, type);
    for (const Component& component : components) { // a row of this value's own
        if (component.type->kind != Kind::OpenType) continue;
        gen.rows.erase(component.type->row);
        chooseRow(gen, component.type, depth);
    }
    std::string text;
    for (const Component& component : components) {
        bool leave = component.presence != 'M' && (depth > 3 || gen.random.chance(50));
        if (component.type->kind == Kind::OpenType && component.type->set >= 0)
            leave = leave ||
                    typeOf(gen, component.type->cls, *gen.rows[component.type->row]) == nullptr;
        if (leave || component.absent) continue;
        text += (text.empty() ? "" : ", ") + component.id + " " +
                valueOf(gen, component.type, depth + 1);
    }
    gen.rows = outside;
    return "{" + text + "}";
}

std::string choiceValue(Gen& gen, const Type* type, int depth) {
    std::vector<Component> list = type->components;
    std::erase_if(list, [](const Component& component) { return component.absent; });
    const Component chosen = depth > 3 ? list.front() : oneOf(gen, list);
    const std::string value = valueOf(gen, chosen.type, depth + 1);
    if (gen.random.chance(15)) return "{" + chosen.id + " " + value + "}";
    return chosen.id + " : " + value;
}

std::string listValue(Gen& gen, const Type* type, int depth, const Domain& domain) {
    const int64_t least = std::max<int64_t>(domain.lo, 0);
    const int64_t most = depth > 3 ? least : std::min<int64_t>(domain.hi, least + 2);
    std::string text;
    for (int64_t size = gen.random.between(least, most); size > 0; --size)
        text += (text.empty() ? "" : ", ") + nameOfElement(type) +
                valueOf(gen, type->components[0].type, depth + 1);
    return "{" + text + "}";
}

/// A value by its name, in front of which stands its type's.
std::string valueByName(Gen& gen, const Type* type, int depth) {
    if (type->kind == Kind::FieldType && type->isValueField && !gen.inObject &&
        gen.random.chance(30)) {
        const int at = choose(gen, -1, [type](const Planned& planned) {
            return planned.plan == Plan::Object && planned.cls == type->cls &&
                   planned.object.hasValue;
        });
        if (at >= 0) return defAt(gen, at).name + "." + fieldName(gen, type->cls, "val");
    }
    const bool isType =
        type->kind == Kind::Reference && type->def >= 0 && defAt(gen, type->def).plan == Plan::Type;
    if (!isType || depth > 4 || !gen.random.chance(15)) return "";
    // of the constrained type: the value is there to be found by several who ask
    const std::string text = valueOf(gen, defAt(gen, type->def).type, depth, domainOf(gen, type));
    const std::string governor = defAt(gen, type->def).name;
    if (gen.random.chance(75)) return define(gen, "va", governor, text);
    return define(gen, "pv", "{" + governor + " : fv} " + governor, "fv") + " {" + text + "}";
}

} // namespace

std::string valueOf(Gen& gen, const Type* type, int depth, Domain domain) {
    const bool isFree = domain.lo == low && domain.hi == high && domain.only.empty() &&
                        domain.letters.empty() && type->inner.empty() && type->via < 0;
    if (isFree) {
        const std::string name = valueByName(gen, type, depth);
        if (!name.empty()) return name;
    }
    narrow(domain, domainOf(gen, type));
    const Type* end = effective(gen, type);
    if (!domain.only.empty()) return oneOf(gen, domain.only);
    switch (end->kind) {
    case Kind::Integer: return integerValue(gen, end, domain);
    case Kind::Text: {
        std::string text = letters(gen, domain);
        if (domain.letters == "01") return "'" + text + "'B";
        if (domain.letters != "A") return "\"" + text + "\"";
        for (size_t at = text.size(); at > 0; --at) text.insert(at, "5");
        return "'" + text + "'H";
    }
    case Kind::Sequence:
    case Kind::Set: return structureValue(gen, end, depth);
    case Kind::Choice: return choiceValue(gen, end, depth);
    case Kind::List: return listValue(gen, end, depth, domain);
    case Kind::FieldType:
        if (end->set >= 0) {
            chooseRow(gen, end, depth);
            return gen.rows[end->row]->id;
        }
        return classAt(gen, end->cls).builtIn != nullptr ? "{1 2 9}" : "9";
    case Kind::OpenType: return openValue(gen, end, depth);
    case Kind::Any: return anyValue(gen, depth);
    default: return "?";
    }
}

} // namespace orvo::meta
