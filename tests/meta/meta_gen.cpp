// The plan of a project, and its definitions in order.

#include "meta_gen.h"

namespace orvo::meta {

std::string fresh(Gen& gen, const char* stem) {
    return stem + std::to_string(++gen.names);
}

Type* make(Gen& gen, Kind kind) {
    gen.types.emplace_back();
    gen.types.back().kind = kind;
    return &gen.types.back();
}

std::string define(Gen& gen, const char* stem, const std::string& governor, const std::string& text,
                   int glue) {
    Planned planned{Plan::Ready, fresh(gen, stem)};
    planned.text = planned.name + " " + governor + " ::= " + text;
    planned.parameterized = governor.starts_with("{");
    planned.glue = glue;
    gen.defs.push_back(planned);
    return planned.name;
}

namespace {

void planAll(Gen& gen) {
    for (const char* name : {"TYPE-IDENTIFIER", "ABSTRACT-SYNTAX"}) {
        gen.classes.emplace_back();
        gen.classes.back().builtIn = name;
    }
    const int count = 6 + gen.random.below(14);
    for (int at = 0; at < count; ++at) {
        Plan plan = Plan::Type;
        const int pick = gen.random.below(20);
        const bool late = at > count / 2;
        if (late && pick < 4) plan = Plan::Class;
        if (late && pick > 15) plan = Plan::ValueSet;
        if (!late && pick > 5 && pick < 13) plan = Plan::Object;
        if (!late && pick > 12 && pick < 15) plan = Plan::ObjectSet;
        if (!late && pick > 14 && pick < 17) plan = Plan::Parameterized;
        gen.defs.push_back({plan});
        if (plan != Plan::Class) continue;
        gen.defs.back().cls = static_cast<int>(gen.classes.size());
        gen.classes.emplace_back();
        planClass(gen, gen.classes.back());
    }
    for (int left = 3; left > 0; --left) {
        gen.defs.push_back({Plan::Number});
        gen.defs.back().number = gen.random.below(12);
    }
    static const char* const stems[] = {"Ty", "va", "Vs", "CLS", "ob", "Os", "Pa"};
    for (Planned& planned : gen.defs) {
        planned.name = fresh(gen, stems[static_cast<int>(planned.plan)]);
        planned.form = static_cast<Template>(gen.random.below(6));
        planned.parameterized = planned.plan == Plan::Parameterized;
        if (planned.plan != Plan::Class)
            planned.cls = gen.random.below(static_cast<int>(gen.classes.size()));
    }
}

void build(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    gen.options = planned.plan == Plan::Type;
    gen.structures = 0;
    gen.outermost = Kind::Fixed;
    gen.includes = gen.includesSelf = false;
    switch (planned.plan) {
    case Plan::Type:
        planned.type = anyType(gen, at, 0, false);
        if (gen.random.chance(10) && planned.type->tag.empty())
            planned.type->tag = "[APPLICATION " + std::to_string(++gen.tags) + "]";
        if (planned.type->option.empty()) addOption(gen, planned.type, true);
        break;
    case Plan::ValueSet:
        planned.type = make(gen, Kind::Integer);
        planned.text =
            planned.name + " INTEGER ::= {" + integerSet(gen, planned.type->domain, true) + "}";
        break;
    case Plan::Class: buildClass(gen, at); break;
    case Plan::Object: buildObject(gen, at); break;
    case Plan::ObjectSet: buildSet(gen, planned, at); break;
    case Plan::Parameterized: buildParameterized(gen, at); break;
    case Plan::Number:
    case Plan::SetOfObject:
    case Plan::Ready: break;
    }
    planned.built = true;
}

void fillDefaults(Gen& gen) {
    for (size_t at = 0; at < gen.types.size(); ++at)
        for (size_t nr = 0; nr < gen.types[at].components.size(); ++nr) {
            const Component component = gen.types[at].components[nr];
            if (component.presence != 'D' || !component.value.empty()) continue;
            gen.types[at].components[nr].value = valueOf(gen, component.type, 1);
        }
}

std::string textOfDefinition(Gen& gen, int at) {
    const Planned& planned = defAt(gen, at);
    const std::string& name = planned.name;
    switch (planned.plan) {
    case Plan::Type: return name + " ::= " + textOf(gen, planned.type);
    case Plan::Class: return name + " ::= " + classText(gen, planned.cls);
    case Plan::Object:
        return name + " " + className(gen, planned.cls) +
               " ::= " + objectText(gen, planned.cls, planned.object);
    case Plan::ObjectSet:
        return name + " " + className(gen, planned.cls) + " ::= " + setText(gen, planned);
    case Plan::SetOfObject: {
        const std::string governor = className(gen, planned.cls);
        return name + " {" + governor + " : fo} " + governor + " ::= {fo | " +
               objectText(gen, planned.cls, *planned.elements[1].own) + "}";
    }
    case Plan::Parameterized:
        return name + " " + formals(gen, planned) + " ::= " + textOf(gen, planned.type);
    case Plan::Number: {
        const int from = choose(gen, at, [&](const Planned& other) {
            return other.plan == Plan::Number && other.number == planned.number;
        });
        return name + " INTEGER ::= " +
               (from >= 0 ? defAt(gen, from).name : std::to_string(planned.number));
    }
    case Plan::ValueSet:
    case Plan::Ready: break;
    }
    return planned.text;
}

} // namespace

Project generate(uint64_t seed, bool isNew) {
    Gen gen{Random{seed}};
    gen.isNew = isNew;
    static const char* const taggings[] = {"AUTOMATIC", "EXPLICIT", "IMPLICIT"};
    gen.tagging = oneOf(gen, taggings);
    planAll(gen);
    const int count = static_cast<int>(gen.defs.size());
    // sets come last, but before values are looked for, as these choose among the objects
    for (const bool sets : {false, true})
        for (int at = count; at-- > 0;)
            if ((defAt(gen, at).plan == Plan::ObjectSet) == sets) build(gen, at);
    gen.options = false;
    fillDefaults(gen);
    for (int at = 0; at < static_cast<int>(gen.defs.size()); ++at) // on the way there come more
        defAt(gen, at).text = textOfDefinition(gen, at);
    for (int left = 2 + gen.random.below(4); left > 0; --left) {
        const int at =
            choose(gen, -1, [](const Planned& planned) { return planned.plan == Plan::Type; });
        if (at < 0) break;
        define(gen, "va", defAt(gen, at).name, valueOf(gen, defAt(gen, at).type, 0));
    }
    Project project{gen.tagging, {}, isNew};
    for (const Planned& planned : gen.defs)
        if (!planned.text.empty()) // hidden sets have none
            project.definitions.push_back({planned.name, planned.text, planned.parameterized,
                                           planned.glue >= 0 ? defAt(gen, planned.glue).name : ""});
    return project;
}

} // namespace orvo::meta
