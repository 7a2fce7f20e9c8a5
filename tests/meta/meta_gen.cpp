// Definitions are planned by kind first and built from the last to the first. A definition may name
// any other; what would make a type infinite (a mandatory component, the target of a reference,
// what COMPONENTS OF includes) lies behind it in the plan. Values come last, when every type is
// known. Names are unique in the whole project, tag numbers too.

#include <algorithm>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <set>

#include "meta_model.h"

namespace orvo::meta {
namespace {

constexpr int64_t low = std::numeric_limits<int64_t>::min();
constexpr int64_t high = std::numeric_limits<int64_t>::max();

enum class Kind {
    Boolean,
    Integer,
    Enumerated,
    Bits,
    Octets,
    Null,
    Text,
    Oid,
    Sequence,
    Set,
    Choice,
    SequenceOf,
    SetOf,
    Reference,  // to the type or value set `def`
    Narrowed,   // `target` with less values; not written, only made to find values
    Selection,  // alternative `pick` of the CHOICE `def`
    ObjectType, // &Type of the object `def`
    FieldType,  // CLASS.&id or CLASS.&value
    OpenType,   // CLASS.&Type
    Any,        // with `text` the component of DEFINED BY
    Instance,   // of the parameterized `def` with `actuals`
    Dummy,      // formal parameter `pick`
};

struct Type;

struct Inner { // an entry of WITH COMPONENTS
    std::string id = {};
    char presence = ' '; // P(resent), A(bsent), ' '
    int64_t lo = low, hi = high;
};

struct Component {
    std::string id = {};
    Type* type = nullptr;
    char presence = 'M';    // M(andatory), O(ptional), D(efault)
    std::string value = {}; // of DEFAULT
    bool included = false;  // COMPONENTS OF
    bool absent = false;
};

struct Type {
    Kind kind = Kind::Null;
    std::string tag, text; // `text` in front of the constraint where the kind does not give it
    std::string constraint;
    std::vector<Component> components; // of lists the element
    int marker = -1;                   // the extension marker stands before this component
    std::vector<std::pair<std::string, int64_t>> names; // named numbers and bits, items
    int64_t lo = low, hi = high; // what the constraint leaves: of values, of sizes
    std::string letters;         // of an alphabet, "" = all
    int def = -1, pick = 0;
    Type* target = nullptr;
    std::vector<Inner> inner;
    bool full = false;          // WITH COMPONENTS without "..."
    int cls = -1, field = 0;    // field: 0 &id, 1 &value
    int set = -1;               // definition of the object set in the table, or -2 - parameter
    int group = 0;              // types of one table row share it
    std::vector<Type*> actuals; // types
    std::vector<int> numbers;   // for each parameter: a number, or a definition
    bool hiIsParameter = false;
};

struct Object {
    std::string name; // of the definition; "" = written in a set
    std::string id = {};
    Type* type = nullptr;
    std::string value;
    int other = -1; // definition of the object in its object field
};

struct Class {
    bool builtIn = false;
    char type = 'M', value = ' ', variable = ' ', other = ' ', set = ' ', objects = ' ';
    Type* valueType = nullptr;
    Type* defaultType = nullptr;
    std::string defaultValue;
    int otherClass = -1;
    bool syntax = false;
};

enum class Plan { Type, Value, Number, ValueSet, Class, Object, ObjectSet, Parameterized };
enum class Template { OfType, OfNumber, OfObjectSet, OfObject, OfTypeAndValue, OfValueSet };

struct Planned {
    Plan plan = Plan::Type;
    std::string name, text;
    Type* type = nullptr; // of a type, value set, parameterized type
    bool built = false;
    int cls = -1; // of objects and object sets; of a class its number
    Object object;
    std::vector<int> members; // of an object set: definitions of objects
    std::vector<Object> own;  // written in the set
    bool extensible = false;
    int64_t number = 0;
    Template form = Template::OfType;
    int setClass = -1;
};

struct Domain {
    int64_t lo = low, hi = high;
    std::string letters;
};

struct Gen {
    Random random;
    std::string tagging;
    std::deque<Type> types;
    std::vector<Planned> defs;
    std::vector<Class> classes;
    int names = 0, tags = 0, groups = 0, ids = 0;
    std::map<int, const Object*> rows = {}; // the object chosen for a group
    int nesting = 0;                        // of values
    bool hopeless = false; // a value without end, or one that only the type's own name can give
};

bool isAutomatic(const Gen& gen) {
    return gen.tagging == "AUTOMATIC";
}

std::string fresh(Gen& gen, const char* stem) {
    return stem + std::to_string(++gen.names);
}

Type* make(Gen& gen, Kind kind) {
    gen.types.emplace_back();
    gen.types.back().kind = kind;
    return &gen.types.back();
}

Planned& defAt(Gen& gen, int nr) {
    return gen.defs[static_cast<size_t>(nr)];
}
Class& classAt(Gen& gen, int nr) {
    return gen.classes[static_cast<size_t>(nr)];
}
std::string className(Gen& gen, int cls) {
    if (classAt(gen, cls).builtIn) return "TYPE-IDENTIFIER";
    for (const Planned& planned : gen.defs)
        if (planned.plan == Plan::Class && planned.cls == cls) return planned.name;
    return "?";
}
std::string fieldName(Gen& gen, int cls, const char* field) {
    if (classAt(gen, cls).builtIn) return std::string("&") + field;
    return std::string("&") + field + std::to_string(cls);
}

/// A planned definition behind `from` (or anywhere, with -1) that satisfies the condition; -1 =
/// none.
template <typename Fn> int choose(Gen& gen, int from, Fn&& suits) {
    std::vector<int> list;
    for (int at = from + 1; at < static_cast<int>(gen.defs.size()); ++at)
        if (suits(defAt(gen, at))) list.push_back(at);
    if (list.empty()) return -1;
    return list[static_cast<size_t>(gen.random.below(static_cast<int>(list.size())))];
}

// ---- what a type comes to -----------------------------------------------------------------------

Type* instantiate(Gen& gen, const Type* instance);

/// One step towards the type that defines the notation; null at the end.
Type* step(Gen& gen, const Type* type) {
    switch (type->kind) {
    case Kind::Reference: return defAt(gen, type->def).type;
    case Kind::Narrowed: return type->target;
    case Kind::Selection: {
        const Type* choice = defAt(gen, type->def).type;
        return choice->components[static_cast<size_t>(type->pick)].type;
    }
    case Kind::ObjectType: {
        const Planned& object = defAt(gen, type->def);
        return object.object.type != nullptr ? object.object.type
                                             : classAt(gen, object.cls).defaultType;
    }
    case Kind::FieldType: return type->field == 1 ? classAt(gen, type->cls).valueType : nullptr;
    case Kind::Instance: return instantiate(gen, type);
    default: return nullptr;
    }
}

Domain domainOf(Gen& gen, const Type* type) {
    Domain domain;
    for (const Type* at = type; at != nullptr; at = step(gen, at)) {
        domain.lo = std::max(domain.lo, at->lo);
        domain.hi = std::min(domain.hi, at->hi);
        if (!at->letters.empty() && domain.letters.empty()) domain.letters = at->letters;
    }
    return domain;
}

const Type* actual(Gen& gen, const Type* type) {
    while (Type* next = step(gen, type)) type = next;
    return type;
}

bool isStructure(Kind kind) {
    return kind == Kind::Sequence || kind == Kind::Set || kind == Kind::Choice;
}
bool isList(Kind kind) {
    return kind == Kind::SequenceOf || kind == Kind::SetOf;
}
bool isSized(Kind kind) {
    return kind == Kind::Bits || kind == Kind::Octets || kind == Kind::Text || isList(kind);
}

Type* copy(Gen& gen, const Type* from, const Type* instance) {
    if (from->kind == Kind::Dummy) return instance->actuals[static_cast<size_t>(from->pick)];
    Type* to = make(gen, from->kind);
    *to = *from;
    for (Component& component : to->components)
        component.type = copy(gen, component.type, instance);
    if (to->hiIsParameter) to->hi = std::min(to->hi, int64_t{instance->numbers[0]});
    if (to->set <= -2) to->set = instance->numbers[0];
    if (to->kind == Kind::ObjectType && to->def < 0) to->def = instance->numbers[0];
    if (to->kind == Kind::Reference && to->def == -2) {
        to->lo = instance->lo;
        to->hi = instance->hi;
        to->kind = Kind::Integer;
    }
    return to;
}

Type* instantiate(Gen& gen, const Type* instance) {
    if (instance->target == nullptr) {
        Type* made = copy(gen, defAt(gen, instance->def).type, instance);
        const_cast<Type*>(instance)->target = made;
    }
    return instance->target;
}

// ---- notation of types --------------------------------------------------------------------------

std::string textOf(Gen& gen, const Type* type);

std::string componentText(Gen& gen, const Component& component) {
    if (component.included) return "COMPONENTS OF " + textOf(gen, component.type);
    std::string text = component.id + " " + textOf(gen, component.type);
    if (component.presence == 'O') text += " OPTIONAL";
    if (component.presence == 'D') text += " DEFAULT " + component.value;
    return text;
}

std::string listText(Gen& gen, const Type* type) {
    std::string text = "{\n    ";
    bool first = true;
    for (size_t at = 0; at <= type->components.size(); ++at) {
        if (type->marker == static_cast<int>(at)) {
            text += first ? "..." : "\n    , ...";
            first = false;
        }
        if (at == type->components.size()) break;
        if (!first) text += "\n    , ";
        first = false;
        text += componentText(gen, type->components[at]);
    }
    return text + " }";
}

std::string namesText(const Type* type) {
    if (type->names.empty()) return "";
    std::string text = " {";
    bool first = true;
    for (size_t at = 0; at < type->names.size(); ++at) {
        const auto& [name, number] = type->names[at];
        text += (first ? "" : ", ") + name;
        if (number != high) text += "(" + std::to_string(number) + ")";
        first = false;
        if (type->marker == static_cast<int>(at)) text += ", ...";
    }
    return text + "}";
}

std::string textOf(Gen& gen, const Type* type) {
    const std::string tag = type->tag.empty() ? "" : type->tag + " ";
    const std::string constraint = type->constraint.empty() ? "" : " " + type->constraint;
    const auto done = [&](const std::string& text) { return tag + text + constraint; };
    switch (type->kind) {
    case Kind::Boolean: return done("BOOLEAN");
    case Kind::Integer: return done("INTEGER" + namesText(type));
    case Kind::Enumerated: return done("ENUMERATED" + namesText(type));
    case Kind::Bits: return done("BIT STRING" + namesText(type));
    case Kind::Octets: return done("OCTET STRING");
    case Kind::Null: return done("NULL");
    case Kind::Text: return done(type->text);
    case Kind::Oid: return done("OBJECT IDENTIFIER");
    case Kind::Sequence: return done("SEQUENCE " + listText(gen, type));
    case Kind::Set: return done("SET " + listText(gen, type));
    case Kind::Choice: return done("CHOICE " + listText(gen, type));
    case Kind::SequenceOf:
        return tag + "SEQUENCE" + constraint + " OF " + textOf(gen, type->components[0].type);
    case Kind::SetOf:
        return tag + "SET" + constraint + " OF " + textOf(gen, type->components[0].type);
    case Kind::Reference: return done(type->def >= 0 ? defAt(gen, type->def).name : type->text);
    case Kind::Narrowed: return textOf(gen, type->target);
    case Kind::Selection: {
        const Planned& choice = defAt(gen, type->def);
        return done(choice.type->components[static_cast<size_t>(type->pick)].id + " < " +
                    choice.name);
    }
    case Kind::ObjectType:
        return done((type->def >= 0 ? defAt(gen, type->def).name : "fo") + "." +
                    fieldName(gen, type->cls, "Type"));
    case Kind::FieldType:
        return done(className(gen, type->cls) + "." +
                    fieldName(gen, type->cls, type->field == 0 ? "id" : "val"));
    case Kind::OpenType:
        return done(className(gen, type->cls) + "." + fieldName(gen, type->cls, "Type"));
    case Kind::Any: return done(type->text.empty() ? "ANY" : "ANY DEFINED BY " + type->text);
    case Kind::Instance:
        if (defAt(gen, type->def).form == Template::OfType) // its DEFAULT values are found late
            return done(defAt(gen, type->def).name + " {" + textOf(gen, type->actuals[0]) + "}");
        return done(type->text);
    case Kind::Dummy: return done(type->text);
    }
    return "";
}

// ---- values -------------------------------------------------------------------------------------

std::string valueOf(Gen& gen, const Type* type, int depth, Domain domain = {});

/// Counts values in values: a list that may not be empty, of itself, has no end.
class Nested {
  public:
    explicit Nested(Gen& gen) : gen_(gen) { gen_.hopeless |= ++gen_.nesting > 500; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;
    ~Nested() { --gen_.nesting; }

  private:
    Gen& gen_;
};

void narrow(Domain& domain, const Type* type) {
    domain.lo = std::max(domain.lo, type->lo);
    domain.hi = std::min(domain.hi, type->hi);
    if (!type->letters.empty() && domain.letters.empty()) domain.letters = type->letters;
}

/// The structure with what WITH COMPONENTS says about its components.
const Type* withInner(Gen& gen, const Type* structure, const Type* narrowing) {
    Type* result = make(gen, structure->kind);
    *result = *structure;
    for (Component& component : result->components) {
        bool named = false;
        for (const Inner& inner : narrowing->inner) {
            if (inner.id != component.id) continue;
            named = true;
            if (inner.presence == 'A') component.absent = true;
            if (inner.presence == 'P') component.presence = 'M';
            Type* wrapped = make(gen, Kind::Narrowed);
            wrapped->target = component.type;
            wrapped->lo = inner.lo;
            wrapped->hi = inner.hi;
            component.type = wrapped;
        }
        if (!named && narrowing->full && component.presence != 'M') component.absent = true;
    }
    return result;
}

std::string integerValue(Gen& gen, const Type* type, const Domain& domain) {
    if (!type->names.empty() && gen.random.chance(40)) {
        const auto& [name, number] = type->names[static_cast<size_t>(
            gen.random.below(static_cast<int>(type->names.size())))];
        if (number >= domain.lo && number <= domain.hi) return name;
    }
    if (gen.random.chance(30)) {
        const int at = choose(gen, -1, [&](const Planned& planned) {
            return planned.plan == Plan::Number && planned.number >= domain.lo &&
                   planned.number <= domain.hi;
        });
        if (at >= 0) return defAt(gen, at).name;
    }
    const int64_t from = std::max<int64_t>(domain.lo, std::min<int64_t>(domain.hi, -50) - 0);
    const int64_t start = domain.lo > low ? domain.lo : std::min<int64_t>(from, 0);
    const int64_t end = domain.hi < high ? domain.hi : start + 100000;
    return std::to_string(gen.random.between(start, std::max(start, end)));
}

std::string letters(Gen& gen, const Domain& domain) {
    const std::string from = domain.letters.empty() ? "abc123" : domain.letters;
    const int64_t least = std::max<int64_t>(domain.lo, 0);
    const int64_t most = std::min<int64_t>(domain.hi, least + 4);
    std::string text;
    for (int64_t size = gen.random.between(least, most); size > 0; --size)
        text += from[static_cast<size_t>(gen.random.below(static_cast<int>(from.size())))];
    return text;
}

std::vector<const Object*> membersOf(Gen& gen, int set) {
    std::vector<const Object*> list;
    const Planned& planned = defAt(gen, set);
    for (const int member : planned.members) list.push_back(&defAt(gen, member).object);
    for (const Object& own : planned.own) list.push_back(&own);
    return list;
}

void chooseRow(Gen& gen, const Type* type, int depth) {
    if (type->set < 0 || gen.rows.contains(type->group)) return;
    const auto members = membersOf(gen, type->set);
    const int count = static_cast<int>(members.size());
    gen.rows[type->group] =
        members[static_cast<size_t>(depth > 2 ? count - 1 : gen.random.below(count))];
}

const Type* typeOf(Gen& gen, int cls, const Object& object) {
    return object.type != nullptr ? object.type : classAt(gen, cls).defaultType;
}

/// A type before a colon and its value.
std::string openValue(Gen& gen, const Type* type, const std::string& text, int depth) {
    return text + " : " + valueOf(gen, type, depth + 1);
}

std::string anyValue(Gen& gen, int depth) {
    const int at =
        choose(gen, -1, [](const Planned& planned) { return planned.plan == Plan::Type; });
    if (at < 0 || depth > 3 || gen.random.chance(50)) return "INTEGER : 5";
    return openValue(gen, defAt(gen, at).type, defAt(gen, at).name, depth);
}

/// Components of the structure with those that COMPONENTS OF includes.
std::vector<Component> allComponents(Gen& gen, const Type* type) {
    std::vector<Component> list;
    for (size_t at = 0; at < type->components.size(); ++at) {
        const Component& component = type->components[at];
        if (!component.included) {
            list.push_back(component);
            continue;
        }
        const Type* from = actual(gen, component.type);
        Type root = *from;
        if (root.marker >= 0) root.components.resize(static_cast<size_t>(root.marker));
        for (const Component& inside : allComponents(gen, &root)) list.push_back(inside);
    }
    return list;
}

bool isOpen(const Component& component) {
    return component.type->kind == Kind::OpenType && component.type->set >= 0;
}

std::string structureValue(Gen& gen, const Type* type, int depth) {
    std::string text = "{";
    for (const Component& component : allComponents(gen, type)) {
        if (component.absent) continue;
        bool leave = component.presence != 'M' && (depth > 3 || gen.random.chance(50));
        if (component.type->kind == Kind::FieldType || component.type->kind == Kind::OpenType)
            chooseRow(gen, component.type, depth);
        if (isOpen(component) &&
            typeOf(gen, component.type->cls, *gen.rows[component.type->group]) == nullptr)
            leave = true;
        if (leave) continue;
        text += (text.size() > 1 ? ", " : "") + component.id + " " +
                valueOf(gen, component.type, depth + 1);
    }
    return text + "}";
}

std::string choiceValue(Gen& gen, const Type* type, int depth) {
    std::vector<const Component*> list;
    for (const Component& component : type->components)
        if (!component.absent) list.push_back(&component);
    const auto pick = depth > 3 ? 0 : gen.random.below(static_cast<int>(list.size()));
    const Component* chosen = list[static_cast<size_t>(pick)];
    return chosen->id + " : " + valueOf(gen, chosen->type, depth + 1);
}

std::string listValue(Gen& gen, const Type* type, int depth, const Domain& domain) {
    const int64_t least = std::max<int64_t>(domain.lo, 0);
    const int64_t most = depth > 3 ? least : std::min<int64_t>(domain.hi, least + 2);
    std::string text = "{";
    for (int64_t size = gen.random.between(least, most); size > 0; --size)
        text += (text.size() > 1 ? ", " : "") + valueOf(gen, type->components[0].type, depth + 1);
    return text + "}";
}

std::string rowValue(Gen& gen, const Type* type, int depth) {
    if (type->set < 0) return anyValue(gen, depth);
    chooseRow(gen, type, depth);
    const Object& row = *gen.rows[type->group];
    const Type* open = typeOf(gen, type->cls, row);
    if (!row.name.empty()) // the text of the type may still lack DEFAULT values
        return openValue(gen, open, row.name + "." + fieldName(gen, type->cls, "Type"), depth);
    // Items of an enumeration that is written again are others.
    const std::string written = textOf(gen, open);
    gen.hopeless |= written.find("ENUMERATED") != std::string::npos;
    return openValue(gen, open, written, depth);
}

std::string valueOf(Gen& gen, const Type* type, int depth, Domain domain) {
    const Nested nested(gen);
    gen.hopeless |= type == nullptr; // of an object that has no type
    if (gen.hopeless) return "NULL";
    narrow(domain, type);
    if (const Type* next = step(gen, type)) {
        if (!type->inner.empty()) {
            const Type* structure = actual(gen, next);
            if (isStructure(structure->kind))
                return valueOf(gen, withInner(gen, structure, type), depth, domain);
        }
        return valueOf(gen, next, depth, domain);
    }
    switch (type->kind) {
    case Kind::Boolean: return gen.random.chance(50) ? "TRUE" : "FALSE";
    case Kind::Integer: return integerValue(gen, type, domain);
    case Kind::Enumerated:
        return type
            ->names[static_cast<size_t>(gen.random.below(static_cast<int>(type->names.size())))]
            .first;
    case Kind::Bits:
        if (!type->names.empty()) return "{" + type->names[0].first + "}";
        domain.letters = "01";
        return "'" + letters(gen, domain) + "'B";
    case Kind::Octets: {
        domain.letters = "A";
        std::string text;
        for (size_t size = letters(gen, domain).size(); size > 0; --size) text += "A5";
        return "'" + text + "'H";
    }
    case Kind::Null: return "NULL";
    case Kind::Text: return "\"" + letters(gen, domain) + "\"";
    case Kind::Oid: return "{1 2 " + std::to_string(gen.random.below(1000)) + "}";
    case Kind::Sequence:
    case Kind::Set: {
        const auto rows = gen.rows;
        for (const Component& component : allComponents(gen, type)) { // a row of this value's own
            if (component.type->kind != Kind::OpenType) continue;
            gen.rows.erase(component.type->group);
            chooseRow(gen, component.type, depth);
        }
        const std::string text = structureValue(gen, type, depth);
        gen.rows = rows;
        return text;
    }
    case Kind::Choice: return choiceValue(gen, type, depth);
    case Kind::SequenceOf:
    case Kind::SetOf: return listValue(gen, type, depth, domain);
    case Kind::FieldType: {
        if (type->set >= 0) {
            chooseRow(gen, type, depth);
            return gen.rows[type->group]->id;
        }
        return classAt(gen, type->cls).builtIn ? "{1 2 9}" : "9";
    }
    case Kind::OpenType: return rowValue(gen, type, depth);
    case Kind::Any: return anyValue(gen, depth);
    default: return "?";
    }
}

// ---- building types -----------------------------------------------------------------------------

Type* anyType(Gen& gen, int at, int depth, bool soft);

std::string nextTag(Gen& gen) {
    return "[" + std::to_string(++gen.tags) + "]";
}

std::string number(Gen& gen, int64_t value) {
    if (gen.random.chance(40)) {
        const int at = choose(gen, -1, [value](const Planned& planned) {
            return planned.plan == Plan::Number && planned.number == value;
        });
        if (at >= 0) return defAt(gen, at).name;
    }
    return value < 0 ? "-" + std::to_string(-value) : std::to_string(value);
}

/// A part of the domain, as constraint text of ranges; lo and hi are what it leaves.
std::string range(Gen& gen, const Domain& domain, int64_t& lo, int64_t& hi) {
    const int64_t from = domain.lo == low ? gen.random.between(-20, 20) : domain.lo;
    const int64_t to = domain.hi == high ? from + gen.random.between(0, 60) : domain.hi;
    lo = gen.random.between(from, to);
    hi = gen.random.between(lo, to);
    const int named = choose(gen, -1, [&](const Planned& planned) {
        return planned.plan == Plan::Number && planned.number >= from && planned.number <= to;
    });
    if (named >= 0 && gen.random.chance(50)) {
        lo = defAt(gen, named).number;
        hi = gen.random.between(lo, to);
    }
    std::string text = lo == hi ? number(gen, lo) : number(gen, lo) + ".." + number(gen, hi);
    switch (gen.random.below(8)) {
    case 0:
        if (hi < to) text += " | " + number(gen, to);
        break;
    case 1: text += ", ..."; break;
    case 2:
        if (hi > lo) {
            text += " EXCEPT " + number(gen, hi);
            --hi;
        }
        break;
    default: break;
    }
    return text;
}

std::string sizes(Gen& gen, const Domain& domain, int64_t& lo, int64_t& hi, bool fromZero) {
    const Domain wanted{std::max<int64_t>(domain.lo, 0), std::min<int64_t>(domain.hi, 9), ""};
    std::string text = range(gen, wanted, lo, hi);
    if (fromZero && lo != 0) {
        lo = 0;
        hi = 3;
        text = "0..3";
    }
    return "SIZE (" + text + ")";
}

Type* simpleType(Gen& gen) {
    static constexpr Kind kinds[] = {Kind::Boolean,    Kind::Integer, Kind::Integer,
                                     Kind::Enumerated, Kind::Bits,    Kind::Octets,
                                     Kind::Null,       Kind::Text,    Kind::Oid};
    Type* type = make(gen, kinds[gen.random.below(9)]);
    if (type->kind == Kind::Text)
        type->text = gen.random.chance(50) ? "IA5String" : "PrintableString";
    if (type->kind == Kind::Enumerated)
        for (int left = 2 + gen.random.below(2); left > 0; --left)
            type->names.push_back({fresh(gen, "e"), high});
    if (type->kind == Kind::Enumerated && gen.random.chance(25)) type->marker = 0;
    if (type->kind == Kind::Integer && gen.random.chance(25))
        for (int left = 2; left > 0; --left)
            type->names.push_back({fresh(gen, "n"), gen.random.below(20) + 30 * left});
    if (type->kind == Kind::Bits && gen.random.chance(40)) {
        type->names.push_back({fresh(gen, "b"), gen.random.below(4)});
        type->names.push_back({fresh(gen, "b"), 4 + gen.random.below(4)});
    } else if (isSized(type->kind) && gen.random.chance(50)) {
        type->constraint = "(" + sizes(gen, {}, type->lo, type->hi, false) + ")";
    }
    if (type->kind == Kind::Text && gen.random.chance(25)) {
        type->letters = "abc12";
        type->constraint += "(FROM (\"a\"..\"c\" | \"12\"))";
    }
    if (type->kind == Kind::Integer && type->names.empty() && gen.random.chance(60))
        type->constraint = "(" + range(gen, {}, type->lo, type->hi) + ")";
    return type;
}

/// Constrains a reference to a type that is built.
void constrainReference(Gen& gen, Type* type) {
    for (const Type* at = type; at != nullptr; at = step(gen, at))
        if (at->kind == Kind::FieldType || !at->inner.empty()) return;
    const Type* base = actual(gen, type);
    const Domain domain = domainOf(gen, type);
    if (base->kind == Kind::Integer && (base->names.empty() || domain.hi < high)) {
        if (gen.random.chance(25)) {
            const int set = choose(gen, -1, [&](const Planned& planned) {
                return planned.built && planned.plan == Plan::ValueSet &&
                       domainOf(gen, planned.type).lo >= domain.lo &&
                       domainOf(gen, planned.type).hi <= domain.hi;
            });
            if (set >= 0) {
                type->constraint = "(" + defAt(gen, set).name + ")";
                type->lo = domainOf(gen, defAt(gen, set).type).lo;
                type->hi = domainOf(gen, defAt(gen, set).type).hi;
                return;
            }
        }
        type->constraint = "(" + range(gen, domain, type->lo, type->hi) + ")";
        return;
    }
    if (base->kind == Kind::Bits && !base->names.empty()) return;
    if (isSized(base->kind) && gen.random.chance(60)) {
        type->constraint = "(" + sizes(gen, domain, type->lo, type->hi, false) + ")";
        return;
    }
    if (!isStructure(base->kind)) return;
    for (const Component& component : allComponents(gen, base)) {
        Inner inner{component.id};
        std::string text = component.id;
        const bool isRow = component.type->kind == Kind::FieldType ||
                           component.type->kind == Kind::OpenType ||
                           component.type->kind == Kind::Any;
        const bool first = component.id == base->components[0].id;
        if (component.type->kind == Kind::Integer && gen.random.chance(60) &&
            component.presence != 'D') {
            const Domain inside = domainOf(gen, component.type);
            text += " (" + range(gen, inside, inner.lo, inner.hi) + ")";
        }
        if (component.presence == 'O' && !isRow) {
            inner.presence = gen.random.chance(50) ? 'A' : gen.random.chance(50) ? 'P' : ' ';
        } else if (base->kind == Kind::Choice && !first && gen.random.chance(30)) {
            inner.presence = 'A';
        }
        // a component that leads back may have no finite value
        if (inner.presence == 'P' && component.type->kind == Kind::Reference &&
            component.type->def < type->def)
            inner.presence = ' ';
        if (inner.presence == 'A') text += " ABSENT";
        if (inner.presence == 'P') text += " PRESENT";
        if (text == component.id && gen.random.chance(70)) continue;
        if (base->kind == Kind::Choice && text == component.id) continue;
        type->inner.push_back(inner);
        type->constraint += (type->constraint.empty() ? "" : ", ") + text;
    }
    if (type->inner.empty()) return;
    bool canBeFull = base->kind != Kind::Choice;
    for (const Component& component : allComponents(gen, base)) {
        bool named = false;
        for (const Inner& inner : type->inner) named = named || inner.id == component.id;
        if (component.presence == 'M' && !named) canBeFull = false;
    }
    type->full = canBeFull && gen.random.chance(60);
    type->constraint =
        std::string("(WITH COMPONENTS {") + (type->full ? "" : "..., ") + type->constraint + "})";
}

Type* reference(Gen& gen, int at, bool soft) {
    const int target = choose(gen, soft ? -1 : at, [](const Planned& planned) {
        return planned.plan == Plan::Type || planned.plan == Plan::ValueSet;
    });
    if (target < 0) return nullptr;
    Type* type = make(gen, Kind::Reference);
    type->def = target;
    if (target > at && gen.random.chance(35)) constrainReference(gen, type);
    return type;
}

Type* selection(Gen& gen, int at, bool soft) {
    const int target = choose(gen, at, [&gen](const Planned& planned) {
        return planned.plan == Plan::Type && planned.built && planned.type->kind == Kind::Choice;
    });
    if (target < 0) return nullptr;
    Type* type = make(gen, Kind::Selection);
    type->def = target;
    type->pick =
        soft ? gen.random.below(static_cast<int>(defAt(gen, target).type->components.size())) : 0;
    return type;
}

Type* objectType(Gen& gen, int at, bool soft) {
    const int target = choose(gen, soft ? -1 : at, [&](const Planned& planned) {
        if (planned.plan != Plan::Object) return false;
        const Class& cls = classAt(gen, planned.cls);
        if (planned.built) return planned.object.type != nullptr || cls.defaultType != nullptr;
        return cls.type == 'M' || (cls.type == 'D');
    });
    if (target < 0) return nullptr;
    Type* type = make(gen, Kind::ObjectType);
    type->def = target;
    type->cls = defAt(gen, target).cls;
    return type;
}

Type* instance(Gen& gen, int at, int depth, bool soft);

/// A type that may stand at the definition `at`. Soft: nothing follows from it being infinite.
Type* anyType(Gen& gen, int at, int depth, bool soft);

/// Components that belong to one row of a table.
void addRow(Gen& gen, int cls, int set, const std::string& setText, Type* to, int depth) {
    const int group = ++gen.groups;
    Component id{fresh(gen, "i"), make(gen, Kind::FieldType)};
    id.type->cls = cls;
    id.type->set = set;
    id.type->group = group;
    id.type->constraint = "({" + setText + "})";
    // "@" alone begins at the outermost structure of the text, "@." at the innermost
    const std::string from = depth > 0 || gen.random.chance(30) ? "@." : "@";
    std::string path = from + id.id;
    if (gen.random.chance(25)) {
        Component header{fresh(gen, "h"), make(gen, Kind::Sequence)};
        path = from + header.id + "." + id.id;
        header.type->components.push_back(id);
        to->components.push_back(header);
    } else {
        to->components.push_back(id);
    }
    Component open{fresh(gen, "o"), make(gen, Kind::OpenType)};
    open.type->cls = cls;
    open.type->set = set;
    open.type->group = group;
    open.type->constraint = "({" + setText + "}{" + path + "})";
    if (classAt(gen, cls).type == 'O' || gen.random.chance(50)) open.presence = 'O';
    to->components.push_back(open);
}

void tagComponents(Gen& gen, Type* type) {
    bool plain = type->kind == Kind::Sequence && type->marker < 0;
    for (const Component& component : type->components)
        plain = plain && component.presence == 'M' && !component.included;
    const bool includes = !type->components.empty() && type->components[0].included;
    if (isAutomatic(gen) ? includes || gen.random.chance(85) : plain && gen.random.chance(50))
        return;
    for (Component& component : type->components) {
        if (component.included) continue;
        component.type->tag = nextTag(gen);
        if (gen.random.chance(20)) component.type->tag += " EXPLICIT";
    }
}

Type* structure(Gen& gen, int at, int depth) {
    const int pick = gen.random.below(10);
    Type* type = make(gen, pick < 5 ? Kind::Sequence : pick < 7 ? Kind::Set : Kind::Choice);
    const bool choice = type->kind == Kind::Choice;
    const int count = 1 + gen.random.below(4) + (choice ? 1 : 0);
    if (!choice && gen.random.chance(20)) {
        const int target = choose(gen, at, [&](const Planned& planned) {
            return planned.plan == Plan::Type && planned.built && planned.type->kind == type->kind;
        });
        if (target >= 0) {
            Component included{"", make(gen, Kind::Reference), 'M', "", true};
            included.type->def = target;
            type->components.push_back(included);
        }
    }
    for (int nr = 0; nr < count; ++nr) {
        Component component{fresh(gen, "c"), nullptr};
        if (choice) {
            component.type = nr == 0 ? simpleType(gen) : anyType(gen, at, depth + 1, true);
        } else {
            component.presence = "MMOD"[gen.random.below(4)];
            component.type = anyType(gen, at, depth + 1, component.presence != 'M');
        }
        type->components.push_back(component);
    }
    if (type->kind == Kind::Sequence && gen.random.chance(12)) {
        Component id{fresh(gen, "c"), make(gen, Kind::Integer)};
        Component any{fresh(gen, "c"), make(gen, Kind::Any)};
        any.type->text = id.id;
        if (gen.random.chance(40)) any.presence = 'O';
        type->components.push_back(id);
        type->components.push_back(any);
    }
    if (type->kind == Kind::Sequence && gen.random.chance(25)) {
        const int set =
            choose(gen, -1, [](const Planned& planned) { return planned.plan == Plan::ObjectSet; });
        if (set >= 0) addRow(gen, defAt(gen, set).cls, set, defAt(gen, set).name, type, depth);
    }
    tagComponents(gen, type);
    if (gen.random.chance(15)) {
        type->marker = static_cast<int>(type->components.size());
        if (choice) type->marker = std::max(1, type->marker - 1);
    }
    return type;
}

Type* list(Gen& gen, int at, int depth, bool soft) {
    Type* type = make(gen, gen.random.chance(70) ? Kind::SequenceOf : Kind::SetOf);
    const bool back = soft || gen.random.chance(50);
    if (back || gen.random.chance(60))
        type->constraint = "(" + sizes(gen, {}, type->lo, type->hi, back) + ")";
    type->components.push_back({"", anyType(gen, at, depth + 1, back)});
    return type;
}

Type* anyType(Gen& gen, int at, int depth, bool soft) {
    Type* type = nullptr;
    switch (gen.random.below(depth > 2 ? 6 : 12)) {
    case 0:
    case 1: type = simpleType(gen); break;
    case 2:
    case 3: type = reference(gen, at, soft); break;
    case 4: type = selection(gen, at, soft); break;
    case 5: type = objectType(gen, at, soft); break;
    case 6:
    case 7: type = structure(gen, at, depth); break;
    case 8: type = list(gen, at, depth, soft); break;
    case 9: type = instance(gen, at, depth, soft); break;
    case 10: {
        const int cls =
            choose(gen, at, [](const Planned& planned) { return planned.plan == Plan::Class; });
        if (cls < 0) break;
        const int nr = defAt(gen, cls).cls;
        const bool hasValue = classAt(gen, nr).valueType != nullptr;
        type = make(gen, gen.random.chance(30) ? Kind::OpenType : Kind::FieldType);
        type->cls = nr;
        type->field = hasValue && gen.random.chance(60) ? 1 : 0;
        break;
    }
    default: break;
    }
    if (type == nullptr) type = simpleType(gen);
    return type;
}

// ---- classes, objects, sets ---------------------------------------------------------------------

char presence(Gen& gen, const char* from) {
    const std::string list = from;
    return list[static_cast<size_t>(gen.random.below(static_cast<int>(list.size())))];
}

void planClass(Gen& gen, Class& cls) {
    cls.type = presence(gen, "MMOD");
    cls.value = presence(gen, " MOD");
    cls.variable = cls.type == 'M' ? presence(gen, " O") : ' ';
    cls.syntax = gen.random.chance(50);
}

/// A type whose kind the class fixes.
Type* closedType(Gen& gen, int at, int depth) {
    Type* type = anyType(gen, at, depth, false);
    return actual(gen, type)->kind == Kind::OpenType ? simpleType(gen) : type;
}

void buildClass(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    Class& cls = classAt(gen, planned.cls);
    if (cls.value != ' ') cls.valueType = closedType(gen, at, 2);
    if (cls.type == 'D') cls.defaultType = closedType(gen, at, 1);
    const int other =
        choose(gen, at, [](const Planned& behind) { return behind.plan == Plan::Class; });
    if (gen.random.chance(50)) {
        cls.other = 'O';
        cls.otherClass = other >= 0 ? defAt(gen, other).cls : planned.cls;
    }
}

void buildObject(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    Class& cls = classAt(gen, planned.cls);
    Object& object = planned.object;
    object.name = planned.name;
    object.id = cls.builtIn ? "{1 2 " + std::to_string(++gen.ids) + "}" : std::to_string(++gen.ids);
    if (cls.type == 'M' || gen.random.chance(60)) object.type = anyType(gen, at, 0, false);
    if (cls.other == 'O' && gen.random.chance(60))
        object.other = choose(gen, -1, [&](const Planned& candidate) {
            return candidate.plan == Plan::Object && candidate.cls == cls.otherClass;
        });
}

/// The settings of an object; values are found now, when all types are known.
std::string objectText(Gen& gen, int nr, const Object& object) {
    const Class& cls = classAt(gen, nr);
    if (cls.builtIn) return "{" + textOf(gen, object.type) + " IDENTIFIED BY " + object.id + "}";
    std::vector<std::pair<std::string, std::string>> settings;
    settings.push_back({"id", object.id});
    if (object.type != nullptr) settings.push_back({"Type", textOf(gen, object.type)});
    if (cls.value == 'M' || (cls.value != ' ' && gen.random.chance(50)))
        settings.push_back({"val", valueOf(gen, cls.valueType, 2)});
    if (cls.variable == 'O' && object.type != nullptr && gen.random.chance(50))
        settings.push_back({"var", valueOf(gen, object.type, 2)});
    if (object.other >= 0) settings.push_back({"obj", defAt(gen, object.other).name});
    std::string text = "{\n    ";
    bool first = true;
    for (const auto& [field, setting] : settings) {
        if (!first) text += cls.syntax ? "\n    " : "\n    , ";
        first = false;
        std::string word = fieldName(gen, nr, field.c_str());
        if (cls.syntax) {
            word = word.substr(1);
            std::ranges::transform(word, word.begin(), [](unsigned char ch) {
                return static_cast<char>(std::toupper(ch));
            });
            std::erase_if(word, [](char ch) { return ch >= '0' && ch <= '9'; });
        }
        text += word + " " + setting;
    }
    return text + " }";
}

std::string classText(Gen& gen, int nr) {
    Class& cls = classAt(gen, nr);
    struct Row {
        std::string field, word, text;
        bool optional;
    };
    std::vector<Row> rows;
    const auto add = [&](const char* field, const char* word, const std::string& type, char how,
                         const std::string& value) {
        const std::string name = fieldName(gen, nr, field);
        std::string text = name + (type.empty() ? "" : " " + type);
        if (how == 'O') text += " OPTIONAL";
        if (how == 'D') text += " DEFAULT " + value;
        rows.push_back({name, word, text, how == 'O' || how == 'D'});
    };
    add("id", "ID", "INTEGER UNIQUE", 'M', "");
    add("Type", "TYPE", "", cls.type,
        cls.defaultType != nullptr ? textOf(gen, cls.defaultType) : "");
    if (cls.value != ' ') {
        if (cls.value == 'D') cls.defaultValue = valueOf(gen, cls.valueType, 2);
        add("val", "VAL", textOf(gen, cls.valueType), cls.value, cls.defaultValue);
    }
    if (cls.variable != ' ') add("var", "VAR", fieldName(gen, nr, "Type"), 'O', "");
    if (cls.other != ' ') add("obj", "OBJ", className(gen, cls.otherClass), 'O', "");
    std::string text = "CLASS {\n    ";
    for (size_t at = 0; at < rows.size(); ++at) text += (at > 0 ? "\n    , " : "") + rows[at].text;
    text += " }";
    if (!cls.syntax) return text;
    text += " WITH SYNTAX {";
    for (const Row& row : rows)
        text += row.optional ? " [" + row.word + " " + row.field + "]"
                             : " " + row.word + " " + row.field;
    return text + " }";
}

void buildSet(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    for (int nr = 0; nr < static_cast<int>(gen.defs.size()); ++nr)
        if (defAt(gen, nr).plan == Plan::Object && defAt(gen, nr).cls == planned.cls &&
            gen.random.chance(80))
            planned.members.push_back(nr);
    // with one object in the set itself, which ends values that lead back to their own table
    Object own;
    own.id = classAt(gen, planned.cls).builtIn ? "{1 2 " + std::to_string(++gen.ids) + "}"
                                               : std::to_string(++gen.ids);
    own.type = simpleType(gen);
    planned.own.push_back(own);
    planned.extensible = gen.random.chance(40);
}

std::string setText(Gen& gen, const Planned& planned) {
    std::string text = "{";
    for (const int member : planned.members)
        text += (text.size() > 1 ? " | " : "") + defAt(gen, member).name;
    for (const Object& own : planned.own)
        text += (text.size() > 1 ? " | " : "") + objectText(gen, planned.cls, own);
    if (planned.extensible) text += ", ...";
    return text + "}";
}

// ---- parameterized definitions ------------------------------------------------------------------

void buildParameterized(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    Type* type = make(gen, Kind::Sequence);
    planned.type = type;
    const auto dummy = [&gen](const char* text, int pick) {
        Type* made = make(gen, Kind::Dummy);
        made->text = text;
        made->pick = pick;
        return made;
    };
    const auto add = [&](Type* of, char how) {
        type->components.push_back({fresh(gen, "p"), of, how, ""});
    };
    switch (planned.form) {
    case Template::OfType:
        add(dummy("Fx", 0), 'M');
        if (gen.random.chance(60)) {
            Type* listed = make(gen, Kind::SequenceOf);
            listed->constraint = "(SIZE (0..3))";
            listed->lo = 0;
            listed->hi = 3;
            listed->components.push_back({"", dummy("Fx", 0)});
            add(listed, 'O');
        }
        break;
    case Template::OfNumber: {
        Type* limited = make(gen, gen.random.chance(50) ? Kind::Integer : Kind::Octets);
        limited->hiIsParameter = true;
        limited->lo = 0;
        limited->constraint = limited->kind == Kind::Integer ? "(0..fn)" : "(SIZE (0..fn))";
        add(limited, presence(gen, "MO"));
        break;
    }
    case Template::OfObjectSet: addRow(gen, planned.setClass, -2, "Fs", type, 0); break;
    case Template::OfObject: {
        Type* open = make(gen, Kind::ObjectType);
        open->cls = planned.setClass;
        add(open, 'O');
        break;
    }
    case Template::OfTypeAndValue: {
        add(dummy("Fx", 0), 'D');
        type->components.back().value = "fv";
        break;
    }
    case Template::OfValueSet: {
        Type* limited = make(gen, Kind::Reference);
        limited->def = -2;
        limited->text = "INTEGER (Fi)";
        add(limited, 'M');
        break;
    }
    }
    if (gen.random.chance(50)) add(anyType(gen, at, 1, true), 'O');
    tagComponents(gen, type);
    for (Component& component : type->components) // a parameter shares no type
        if (component.type->kind == Kind::Dummy && !component.type->tag.empty())
            component.type->text = component.type->tag + " " + component.type->text,
            component.type->tag.clear();
}

std::string formals(Gen& gen, const Planned& planned) {
    switch (planned.form) {
    case Template::OfType: return "{Fx}";
    case Template::OfNumber: return "{INTEGER : fn}";
    case Template::OfObjectSet: return "{" + className(gen, planned.setClass) + " : Fs}";
    case Template::OfObject: return "{" + className(gen, planned.setClass) + " : fo}";
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
    case Template::OfNumber: {
        const int64_t most = gen.random.between(0, 9);
        type->numbers.push_back(static_cast<int>(most));
        actuals = number(gen, most);
        break;
    }
    case Template::OfObjectSet: {
        const int set = choose(gen, -1, [&](const Planned& other) {
            return other.plan == Plan::ObjectSet && other.cls == planned.setClass;
        });
        if (set < 0) return nullptr;
        type->numbers.push_back(set);
        actuals = "{" + defAt(gen, set).name + "}";
        break;
    }
    case Template::OfObject: {
        const char kind = classAt(gen, planned.setClass).type;
        const int object = choose(gen, -1, [&](const Planned& other) {
            return other.plan == Plan::Object && other.cls == planned.setClass &&
                   (kind != 'O' || (other.built && other.object.type != nullptr));
        });
        if (object < 0) return nullptr;
        type->numbers.push_back(object);
        actuals = defAt(gen, object).name;
        break;
    }
    case Template::OfTypeAndValue:
        type->actuals.push_back(simpleType(gen));
        actuals = textOf(gen, type->actuals[0]) + ", " + valueOf(gen, type->actuals[0], 0);
        break;
    case Template::OfValueSet: {
        actuals = "{" + range(gen, {0, 50, ""}, type->lo, type->hi) + "}";
        type->text = defAt(gen, target).name + " {" + actuals + "}";
        // the bounds belong to the parameter, not to the whole
        Type* made = copy(gen, planned.type, type);
        type->target = made;
        type->lo = low;
        type->hi = high;
        return type;
    }
    }
    type->text = planned.name + " {" + actuals + "}";
    return type;
}

// ---- the whole ----------------------------------------------------------------------------------

void planAll(Gen& gen) {
    gen.classes.push_back({});
    gen.classes[0].builtIn = true;
    const int count = 6 + gen.random.below(14);
    for (int at = 0; at < count; ++at) {
        Planned planned;
        const int pick = gen.random.below(20);
        const bool late = at > count / 2;
        if (late && pick < 4) {
            planned.plan = Plan::Class;
            planned.cls = static_cast<int>(gen.classes.size());
            gen.classes.push_back({});
            planClass(gen, gen.classes.back());
        } else if (pick < 6 || late) {
            planned.plan = late && pick > 15 ? Plan::ValueSet : Plan::Type;
        } else if (pick < 13) {
            planned.plan = Plan::Object;
        } else if (pick < 15) {
            planned.plan = Plan::ObjectSet;
        } else if (pick < 17) {
            planned.plan = Plan::Parameterized;
        }
        gen.defs.push_back(planned);
    }
    for (int left = 3; left > 0; --left) {
        Planned planned;
        planned.plan = Plan::Number;
        planned.number = gen.random.below(12);
        gen.defs.push_back(planned);
    }
    const int classes = static_cast<int>(gen.classes.size());
    for (Planned& planned : gen.defs) {
        if (planned.plan == Plan::Object || planned.plan == Plan::ObjectSet)
            planned.cls = gen.random.below(classes);
        planned.form = static_cast<Template>(gen.random.below(6));
        planned.setClass = gen.random.below(classes);
        switch (planned.plan) {
        case Plan::Type: planned.name = fresh(gen, "Ty"); break;
        case Plan::Value:
        case Plan::Number: planned.name = fresh(gen, "va"); break;
        case Plan::ValueSet: planned.name = fresh(gen, "Vs"); break;
        case Plan::Class: planned.name = fresh(gen, "CLS"); break;
        case Plan::Object: planned.name = fresh(gen, "ob"); break;
        case Plan::ObjectSet: planned.name = fresh(gen, "Os"); break;
        case Plan::Parameterized: planned.name = fresh(gen, "Pa"); break;
        }
    }
}

void build(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    switch (planned.plan) {
    case Plan::Type:
        planned.type = anyType(gen, at, 0, false);
        if (gen.random.chance(10) && planned.type->tag.empty())
            planned.type->tag = "[APPLICATION " + std::to_string(++gen.tags) + "]";
        break;
    case Plan::ValueSet: {
        planned.type = make(gen, Kind::Integer);
        planned.text = planned.name + " INTEGER ::= {" +
                       range(gen, {}, planned.type->lo, planned.type->hi) + "}";
        break;
    }
    case Plan::Class: buildClass(gen, at); break;
    case Plan::Object: buildObject(gen, at); break;
    case Plan::ObjectSet: buildSet(gen, at); break;
    case Plan::Parameterized: buildParameterized(gen, at); break;
    case Plan::Number:
    case Plan::Value: break;
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

void write(Gen& gen, int at) {
    Planned& planned = defAt(gen, at);
    switch (planned.plan) {
    case Plan::Type: planned.text = planned.name + " ::= " + textOf(gen, planned.type); break;
    case Plan::Class: planned.text = planned.name + " ::= " + classText(gen, planned.cls); break;
    case Plan::Object:
        planned.text = planned.name + " " + className(gen, planned.cls) +
                       " ::= " + objectText(gen, planned.cls, planned.object);
        break;
    case Plan::ObjectSet:
        planned.text =
            planned.name + " " + className(gen, planned.cls) + " ::= " + setText(gen, planned);
        break;
    case Plan::Parameterized:
        planned.text =
            planned.name + " " + formals(gen, planned) + " ::= " + textOf(gen, planned.type);
        break;
    case Plan::Number: {
        const int from = choose(gen, at, [&](const Planned& other) {
            return other.plan == Plan::Number && other.number == planned.number;
        });
        planned.text = planned.name + " INTEGER ::= " +
                       (from >= 0 ? defAt(gen, from).name : std::to_string(planned.number));
        break;
    }
    case Plan::ValueSet:
    case Plan::Value: break;
    }
}

} // namespace

Project generate(uint64_t seed) {
    Gen gen{Random{seed}, "", {}, {}, {}};
    static const char* const taggings[] = {"AUTOMATIC", "EXPLICIT", "IMPLICIT"};
    gen.tagging = taggings[gen.random.below(3)];
    planAll(gen);
    const int count = static_cast<int>(gen.defs.size());
    // objects of a set must be known before values are looked for; sets come last
    for (int at = count; at-- > 0;)
        if (defAt(gen, at).plan != Plan::ObjectSet) build(gen, at);
    for (int at = count; at-- > 0;)
        if (defAt(gen, at).plan == Plan::ObjectSet) build(gen, at);
    fillDefaults(gen);
    for (int at = 0; at < count; ++at) write(gen, at);
    Project project;
    project.tagging = gen.tagging;
    for (const Planned& planned : gen.defs)
        project.definitions.push_back(
            {planned.name, planned.text, planned.plan == Plan::Parameterized});
    // values of the types, referring to one another
    for (int left = 2 + gen.random.below(4); left > 0; --left) {
        const int at =
            choose(gen, -1, [](const Planned& planned) { return planned.plan == Plan::Type; });
        if (at < 0) break;
        const std::string name = fresh(gen, "va");
        project.definitions.push_back({name, name + " " + defAt(gen, at).name +
                                                 " ::= " + valueOf(gen, defAt(gen, at).type, 0)});
    }
    if (gen.hopeless) project.definitions.clear();
    return project;
}

} // namespace orvo::meta
