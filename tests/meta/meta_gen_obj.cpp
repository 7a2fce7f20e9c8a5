// Classes, objects, object sets, parameterized definitions.

#include <algorithm>
#include <cctype>
#include <utility>

#include "meta_gen.h"

namespace orvo::meta {

std::string className(Gen& gen, int cls) {
    std::string name;
    if (classAt(gen, cls).builtIn != nullptr) name = classAt(gen, cls).builtIn;
    for (const Planned& planned : gen.defs)
        if (planned.plan == Plan::Class && planned.cls == cls) name = planned.name;
    return gen.random.chance(4) ? define(gen, "CLR", "", name) : name;
}

std::string fieldName(Gen& gen, int cls, const char* field) {
    if (classAt(gen, cls).builtIn != nullptr) return std::string("&") + field;
    return std::string("&") + field + std::to_string(cls);
}

const Type* typeOf(Gen& gen, int cls, const Object& object) {
    return object.type != nullptr ? object.type : classAt(gen, cls).defaultType;
}

namespace {

char oneOfText(Gen& gen, const char* from) {
    return oneOf(gen, std::string(from));
}

/// A type whose kind the class fixes.
Type* closedType(Gen& gen, int at, int depth) {
    Type* type = anyType(gen, at, depth, false);
    return actual(gen, type)->kind == Kind::OpenType ? simpleType(gen) : type;
}

bool isOf(const Planned& planned, Plan plan, int cls) {
    return planned.plan == plan && planned.cls == cls;
}

} // namespace

// ---- classes ------------------------------------------------------------------------------------

void planClass(Gen& gen, Class& cls) {
    cls.type = oneOfText(gen, "MMOD");
    cls.value = oneOfText(gen, " MOD");
    cls.variable = cls.type == 'M' ? oneOfText(gen, " O") : ' ';
    cls.vals = oneOfText(gen, " OD");
    cls.syntax = gen.random.chance(50);
}

void buildClass(Gen& gen, int at) {
    const int nr = defAt(gen, at).cls;
    if (classAt(gen, nr).value != ' ') classAt(gen, nr).valueType = closedType(gen, at, 2);
    if (classAt(gen, nr).type == 'D') classAt(gen, nr).defaultType = closedType(gen, at, 1);
    if (!gen.random.chance(60)) return;
    const int other =
        choose(gen, at, [](const Planned& behind) { return behind.plan == Plan::Class; });
    classAt(gen, nr).other = other >= 0 ? defAt(gen, other).cls : nr;
}

std::string classText(Gen& gen, int nr) {
    const Class& cls = classAt(gen, nr);
    std::string fields, syntax;
    const auto add = [&](const char* field, const char* word, const std::string& type, char how,
                         const std::string& value) {
        const std::string name = fieldName(gen, nr, field);
        fields += (fields.empty() ? "" : "\n    , ") + name + (type.empty() ? "" : " ") + type;
        if (how == 'O') fields += " OPTIONAL";
        if (how == 'D') fields += " DEFAULT " + value;
        const std::string entry = std::string(word) + " " + name;
        syntax += how == 'M' ? " " + entry : " [" + entry + "]";
    };
    add("id", "ID", "INTEGER UNIQUE", 'M', "");
    add("Type", "TYPE", "", cls.type,
        cls.defaultType != nullptr ? textOf(gen, cls.defaultType) : "");
    if (cls.value != ' ')
        add("val", "VAL", textOf(gen, cls.valueType), cls.value,
            cls.value == 'D' ? valueOf(gen, cls.valueType, 2) : "");
    if (cls.variable != ' ') add("var", "VAR", fieldName(gen, nr, "Type"), 'O', "");
    if (cls.vals != ' ') add("Vals", "VALS", "INTEGER", cls.vals, "{1..5 | 7}");
    const int object = choose(
        gen, -1, [&cls](const Planned& planned) { return isOf(planned, Plan::Object, cls.other); });
    const bool hasDefault = object >= 0 && gen.random.chance(40);
    if (cls.other >= 0)
        add("obj", "OBJ", className(gen, cls.other), hasDefault ? 'D' : 'O',
            hasDefault ? defAt(gen, object).name : "");
    if (cls.other >= 0) add("Objs", "OBJS", className(gen, cls.other), 'O', "");
    return "CLASS {\n    " + fields + " }" + (cls.syntax ? " WITH SYNTAX {" + syntax + " }" : "");
}

// ---- objects ------------------------------------------------------------------------------------

void buildObject(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    const Class& cls = classAt(gen, planned.cls);
    Object& object = planned.object;
    const int like = choose(gen, at, [&](const Planned& behind) {
        return behind.built && isOf(behind, Plan::Object, planned.cls);
    });
    if (like >= 0 && gen.random.chance(10)) {
        object = defAt(gen, like).object;
        object.alias = object.name;
        object.name = planned.name;
        return;
    }
    object.name = planned.name;
    object.id = cls.builtIn != nullptr ? oidValue(gen) : std::to_string(++gen.ids);
    if (cls.type == 'M' || gen.random.chance(60)) object.type = anyType(gen, at, 0, false);
    object.hasValue = cls.value == 'M' || (cls.value != ' ' && gen.random.chance(50));
    if (cls.vals != ' ' && gen.random.chance(60))
        object.vals = "{" + integerSet(gen, object.valsDomain, true) + "}";
    if (cls.other < 0) return;
    if (gen.random.chance(60))
        object.other = choose(gen, -1, [&](const Planned& candidate) {
            return isOf(candidate, Plan::Object, cls.other);
        });
    if (gen.random.chance(50)) {
        gen.defs.emplace_back();
        object.objs = static_cast<int>(gen.defs.size()) - 1;
        gen.defs.back().plan = Plan::Ready; // without a text it is not written
        gen.defs.back().cls = cls.other;
        buildSet(gen, gen.defs.back(), object.objs);
    }
}

std::string objectText(Gen& gen, int nr, const Object& object) {
    if (!object.alias.empty()) return object.alias;
    const Class& cls = classAt(gen, nr);
    if (cls.builtIn != nullptr) {
        const bool property = cls.builtIn[0] == 'A' && gen.random.chance(50);
        return "{" + textOf(gen, object.type) + " IDENTIFIED BY " + object.id +
               (property ? " HAS PROPERTY {handles-invalid-encodings}}" : "}");
    }
    std::string text;
    const auto set = [&](const char* field, const std::string& setting) {
        const std::string name = fieldName(gen, nr, field);
        std::string word = field;
        std::ranges::transform(word, word.begin(), [](unsigned char ch) {
            return static_cast<char>(std::toupper(ch));
        });
        if (!text.empty()) text += cls.syntax ? "\n    " : "\n    , ";
        text += (cls.syntax ? word : name) + " " + setting;
    };
    const bool outside = std::exchange(gen.inObject, true);
    set("id", object.id);
    if (object.type != nullptr) set("Type", textOf(gen, object.type));
    if (object.hasValue) set("val", valueOf(gen, cls.valueType, 2));
    if (cls.variable == 'O' && object.type != nullptr && gen.random.chance(50))
        set("var", valueOf(gen, object.type, 2));
    if (!object.vals.empty()) set("Vals", object.vals);
    if (object.other >= 0) set("obj", defAt(gen, object.other).name);
    if (object.objs >= 0) set("Objs", setText(gen, defAt(gen, object.objs)));
    gen.inObject = outside;
    return "{\n    " + text + " }";
}

// ---- object sets --------------------------------------------------------------------------------

namespace {

/// An object in braces; its type is simple, which ends values that lead back to their own table.
/// Such a value repeats the type, but another ENUMERATED or INSTANCE OF is another type.
const Object* ownObject(Gen& gen, int cls) {
    Object own;
    const bool isOid = classAt(gen, cls).builtIn != nullptr;
    own.id = isOid ? oidValue(gen) : std::to_string(++gen.ids);
    do own.type = simpleType(gen);
    while (own.type->text.starts_with("ENUM") || own.type->text.starts_with("INSTANCE"));
    own.hasValue = classAt(gen, cls).value == 'M';
    return &gen.objects.emplace_back(own);
}

/// A set by the name of a parameterized one or of a field.
void addSetByName(Gen& gen, Planned& planned, int at) {
    const int cls = planned.cls;
    const int holder = choose(gen, at, [&](const Planned& other) {
        return other.plan == Plan::Object && other.built && other.object.objs >= 0 &&
               classAt(gen, other.cls).other == cls;
    });
    if (holder >= 0 && gen.random.chance(40)) {
        const Planned& object = defAt(gen, holder);
        planned.elements.push_back({-1, nullptr, object.object.objs,
                                    object.name + "." + fieldName(gen, object.cls, "Objs")});
    }
    const int other = choose(gen, at, [&](const Planned& behind) {
        return behind.built && isOf(behind, Plan::ObjectSet, cls);
    });
    if (other >= 0 && gen.random.chance(40))
        planned.elements.push_back({-1, nullptr, other, defAt(gen, other).name});
    const int object =
        choose(gen, -1, [&](const Planned& any) { return isOf(any, Plan::Object, cls); });
    if (object < 0 || !gen.random.chance(20)) return;
    Planned made{Plan::SetOfObject, fresh(gen, "Ps")};
    made.parameterized = true;
    made.cls = cls;
    made.elements = {{object}, {-1, ownObject(gen, cls)}};
    gen.defs.push_back(made);
    planned.elements.push_back({-1, nullptr, static_cast<int>(gen.defs.size()) - 1,
                                made.name + " {" + defAt(gen, object).name + "}"});
}

} // namespace

void buildSet(Gen& gen, Planned& planned, int at) {
    const int count = static_cast<int>(gen.defs.size());
    for (int nr = 0; nr < count; ++nr)
        if (isOf(defAt(gen, nr), Plan::Object, planned.cls) && gen.random.chance(60))
            planned.elements.push_back({nr});
    if (planned.plan == Plan::ObjectSet) addSetByName(gen, planned, at);
    planned.elements.push_back({-1, ownObject(gen, planned.cls)});
    planned.extensible = gen.random.chance(40);
}

std::vector<const Object*> membersOf(Gen& gen, int set) {
    std::vector<const Object*> list;
    for (const Element& element : defAt(gen, set).elements) {
        if (element.own != nullptr) list.push_back(element.own);
        if (element.object >= 0) list.push_back(&defAt(gen, element.object).object);
        if (element.set < 0) continue;
        for (const Object* member : membersOf(gen, element.set)) list.push_back(member);
    }
    return list;
}

std::string setText(Gen& gen, const Planned& planned) {
    std::string text;
    for (const Element& element : planned.elements) {
        text += text.empty() ? "{" : " | ";
        if (element.own != nullptr)
            text += objectText(gen, planned.cls, *element.own);
        else
            text += element.object >= 0 ? defAt(gen, element.object).name : element.text;
    }
    return text + (planned.extensible ? ", ...}" : "}");
}

// ---- parameterized definitions ------------------------------------------------------------------

void buildParameterized(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    Type* type = planned.type = make(gen, Kind::Sequence);
    const auto add = [&](Type* of, char how) {
        type->components.push_back({fresh(gen, "p"), of, how, how == 'D' ? "fv" : ""});
    };
    const auto dummy = [&gen] {
        Type* made = make(gen, Kind::Dummy);
        made->text = "Fx";
        return made;
    };
    switch (planned.form) {
    case Template::OfType:
        add(dummy(), 'M');
        if (gen.random.chance(60)) {
            Type* list = make(gen, Kind::List);
            list->text = "SEQUENCE";
            list->constraint = "(SIZE (0..3))";
            list->domain = {0, 3, {}, {}};
            list->components.push_back({"", dummy()});
            add(list, 'O');
        }
        break;
    case Template::OfNumber: {
        Type* limited = make(gen, gen.random.chance(50) ? Kind::Integer : Kind::Text);
        const bool isInteger = limited->kind == Kind::Integer;
        limited->parameter = 'H';
        limited->domain = {0, high, isInteger ? "" : "A", {}};
        limited->text = isInteger ? "" : "OCTET STRING";
        limited->constraint = isInteger ? "(0..fn)" : "(SIZE (0..fn))";
        add(limited, oneOfText(gen, "MO"));
        break;
    }
    case Template::OfObjectSet: addRow(gen, planned.cls, -2, "Fs", type, false); break;
    case Template::OfObject: {
        Type* open = make(gen, Kind::ObjectType);
        open->cls = planned.cls;
        open->text = "fo";
        add(open, 'O');
        break;
    }
    case Template::OfTypeAndValue: add(dummy(), 'D'); break;
    case Template::OfValueSet: {
        Type* limited = make(gen, Kind::Integer);
        limited->parameter = 'S';
        limited->constraint = "(Fi)";
        add(limited, 'M');
        break;
    }
    }
    if (gen.random.chance(50)) add(anyType(gen, at, 1, true), 'O');
    tagComponents(gen, type);
    for (Component& component : type->components) // instances share the type of a dummy
        if (component.type->kind == Kind::Dummy && !component.type->tag.empty())
            component.type->text = std::exchange(component.type->tag, "") + " Fx";
}

std::string formals(Gen& gen, const Planned& planned) {
    switch (planned.form) {
    case Template::OfType: return "{Fx}";
    case Template::OfNumber: return "{INTEGER : fn}";
    case Template::OfObjectSet: return "{" + className(gen, planned.cls) + " : Fs}";
    case Template::OfObject: return "{" + className(gen, planned.cls) + " : fo}";
    case Template::OfTypeAndValue: return "{Fx, Fx : fv}";
    case Template::OfValueSet: return "{INTEGER : Fi}";
    }
    return "";
}

Type* instance(Gen& gen, int at, int depth, bool soft) {
    const int target = choose(gen, at, [](const Planned& planned) {
        return planned.plan == Plan::Parameterized && planned.built;
    });
    if (target < 0) return nullptr;
    const Planned& planned = defAt(gen, target);
    Type* type = make(gen, Kind::Instance);
    type->def = target;
    std::string actuals;
    switch (planned.form) {
    case Template::OfType: type->actuals.push_back(anyType(gen, at, depth + 1, soft)); break;
    case Template::OfNumber:
        type->actual = gen.random.below(10);
        actuals = number(gen, type->actual);
        break;
    case Template::OfObjectSet:
        type->actual = choose(gen, -1, [&](const Planned& other) {
            return isOf(other, Plan::ObjectSet, planned.cls);
        });
        if (type->actual >= 0 && gen.random.chance(50)) {
            actuals = "{" + defAt(gen, type->actual).name + "}";
            break;
        }
        gen.defs.emplace_back(); // objects in braces
        type->actual = static_cast<int>(gen.defs.size()) - 1;
        gen.defs.back().plan = Plan::Ready;
        gen.defs.back().cls = planned.cls;
        buildSet(gen, gen.defs.back(), at);
        break;
    case Template::OfObject:
        type->actual = choose(gen, -1, [&](const Planned& other) {
            return isOf(other, Plan::Object, planned.cls) &&
                   (classAt(gen, planned.cls).type != 'O' ||
                    (other.built && other.object.type != nullptr));
        });
        if (type->actual < 0) return nullptr;
        actuals = defAt(gen, type->actual).name;
        break;
    case Template::OfTypeAndValue:
        type->actuals.push_back(simpleType(gen));
        actuals = textOf(gen, type->actuals[0]) + ", " + valueOf(gen, type->actuals[0], 0);
        break;
    case Template::OfValueSet:
        type->domain = {0, 50, {}, {}};
        actuals = "{" + integerSet(gen, type->domain, true) + "}";
        break;
    }
    if (!actuals.empty()) type->text = planned.name + " {" + actuals + "}";
    type->target = copy(gen, planned.type, type);
    type->domain = {}; // it was the parameter's
    return type;
}

} // namespace orvo::meta
