// Types: their kinds, tags, option comments, component lists.

#include <algorithm>

#include "meta_gen.h"

namespace orvo::meta {

std::string oidValue(Gen& gen) {
    static const char* const beginnings[] = {"1 2 ", "iso member-body(2) 752 ",
                                             "itu-t recommendation x ", "joint-iso-itu-t 5 ",
                                             "0 4 0 127 1 0 0 1 2 3 4 5 6 7 8 9 10 11 12 "};
    std::string text = oneOf(gen, beginnings);
    if (gen.random.chance(30)) text = define(gen, "va", "OBJECT IDENTIFIER", oidValue(gen)) + " ";
    if (gen.random.chance(20)) text += number(gen, gen.random.below(12), false) + " ";
    return "{" + text + std::to_string(++gen.ids) + "}";
}

namespace {

Type* fixedType(Gen& gen, std::string text, std::vector<std::string> values) {
    Type* type = make(gen, Kind::Fixed);
    type->text = std::move(text);
    type->domain.only = std::move(values);
    return type;
}

Type* otherType(Gen& gen) {
    static const std::string pdv = "{identification syntax : {1 2 3}, data-value encoded : '01'B}";
    static const std::pair<const char*, std::vector<std::string>> types[] = {
        {"BOOLEAN", {"TRUE", "FALSE"}},
        {"BOOLEAN", {"TRUE", "FALSE"}},
        {"NULL", {"NULL"}},
        {"REAL", {"0", "PLUS-INFINITY", "{mantissa 5, base 10, exponent -1}"}},
        {"REAL (0..{mantissa 1, base 2, exponent 4})", {"0", "{mantissa 15, base 10, exponent 0}"}},
        {"UTCTime", {"\"9912312359Z\"", "\"000101000000+0100\""}},
        {"GeneralizedTime", {"\"1999123123\"", "\"20000101000000.5Z\""}},
        {"ObjectDescriptor", {"\"abc\"", "\"\""}},
        {"EXTERNAL", {pdv}},
        {"EMBEDDED PDV", {pdv}},
        {"CHARACTER STRING", {"{identification fixed : NULL, data-value encoded : 'A5'H}"}},
        {"INSTANCE OF TYPE-IDENTIFIER", {"{type-id {1 2 3}, value INTEGER : 5}"}}};
    static const std::pair<const char*, std::vector<std::string>> newTypes[] = {
        {"REAL (-0.5..1.5E1)", {"0.25", "-5.0E-1", "{mantissa 15, base 10, exponent -1}"}},
        {"INTEGER (0..18446744073709551615)", {"0", "18446744073709551615"}},
        {"DATE (\"2000-01-01\"..\"2000-12-31\")", {"\"2000-02-29\"", "\"2000-12-31\""}},
        {"TIME-OF-DAY", {"\"24:00:00\"", "\"10:20:30\""}},
        {"DURATION", {"\"P1Y2M\"", "\"PT1.5S\""}},
        {"TIME (SETTINGS \"Basic=Date Date=YW\")", {"\"2000-W01\""}},
        {"EMBEDDED PDV", {"{identification syntax : {1 2 3}, data-value 'A5'H}"}},
        {"CHARACTER STRING", {"{identification fixed : NULL, string-value 'A5'H}"}},
        {"OID-IRI", {"\"/ISO/a\"", "\"/2/999\""}},
        {"RELATIVE-OID", {"{3 4}", "{5}"}},
        {"OCTET STRING (CONTAINING INTEGER (0..9))", {"CONTAINING 5", "'0101'H"}},
        {"BIT STRING (CONTAINING SEQUENCE {q BOOLEAN})", {"CONTAINING {q TRUE}", "'01'B"}},
        {"INTEGER (1..3 | 5..9 EXCEPT 7 ^ 7..8)", {"2", "8"}},
        {"INTEGER (1 | 5, ..., 7 | 9)", {"1", "7"}}};
    if (gen.isNew && gen.random.chance(50)) {
        const auto& [text, values] = oneOf(gen, newTypes);
        return fixedType(gen, text, values);
    }
    const auto& [text, values] = oneOf(gen, types);
    if (gen.isNew && values.front().find("encoded : ") != std::string::npos)
        return simpleType(gen); // the associated types are others there
    return fixedType(gen, text, values);
}

Type* enumeration(Gen& gen) {
    std::string text = "ENUMERATED {";
    std::vector<std::string> items;
    const int count = 2 + gen.random.below(3), marker = gen.random.below(8);
    for (int nr = 0; nr < count; ++nr) {
        items.push_back(fresh(gen, "e"));
        text += (nr > 0 ? ", " : "") + items.back();
        if (gen.random.chance(25))
            text += "(" + number(gen, 20 + gen.random.below(9) + 10 * nr, false) + ")";
        if (marker == nr) text += ", ...";
    }
    return fixedType(gen, text + "}", items);
}

Type* namedBits(Gen& gen) {
    const std::string first = fresh(gen, "b"), other = fresh(gen, "b");
    return fixedType(gen,
                     "BIT STRING {" + first + "(" + number(gen, gen.random.below(4), false) +
                         "), " + other + "(" + std::to_string(4 + gen.random.below(4)) + ")}",
                     {"{" + first + "}", "{" + other + ", " + first + "}", "{}", "'11'B"});
}

Type* integer(Gen& gen) {
    Type* type = make(gen, Kind::Integer);
    if (gen.random.chance(25)) {
        for (int left = 2; left > 0; --left)
            type->names.push_back({fresh(gen, "n"), gen.random.below(20) + 30 * left});
    } else if (gen.random.chance(60)) {
        type->constraint = "(" + integerSet(gen, type->domain, false) + ")";
    }
    return type;
}

Type* stringType(Gen& gen) {
    static const std::pair<const char*, const char*> texts[] = {
        {"BIT STRING", "01"},    {"OCTET STRING", "A"},        {"OCTET STRING", "A"},
        {"IA5String", "abc12"},  {"PrintableString", "abc12"}, {"VisibleString", "abc12"},
        {"BMPString", "abc12"},  {"UniversalString", "abc12"}, {"TeletexString", "abc12"},
        {"NumericString", "12 "}};
    Type* type = make(gen, Kind::Text);
    const auto& [text, letters] = oneOf(gen, texts);
    type->text = text;
    type->domain.letters = letters;
    if (gen.isNew && type->domain.letters == "abc12" && gen.random.chance(30))
        type->text = "UTF8String";
    if (gen.random.chance(50)) type->constraint = "(" + sizes(gen, type->domain) + ")";
    if (type->text == "NumericString" && gen.random.chance(50)) {
        type->constraint = "(FROM (\"0\"..\"8\" | \" \"))";
        type->domain = {low, high, letters, {}};
    } else if (type->domain.letters == "abc12" && gen.random.chance(25)) {
        const bool hasRange = type->text != "TeletexString";
        type->constraint += hasRange ? "(FROM (\"a\"..\"c\" | \"12\"))" : "(FROM (\"abc12 \"))";
    }
    return type;
}

} // namespace

Type* simpleType(Gen& gen) {
    switch (gen.random.below(9)) {
    case 0:
    case 1: return integer(gen);
    case 2: return enumeration(gen);
    case 3: return namedBits(gen);
    case 4:
    case 5: return stringType(gen);
    case 6: return fixedType(gen, "OBJECT IDENTIFIER", {oidValue(gen), oidValue(gen)});
    default: return otherType(gen);
    }
}

// ---- tags and options ---------------------------------------------------------------------------

namespace {

std::string nextTag(Gen& gen) {
    const std::string nr = std::to_string(++gen.tags);
    return "[" + (gen.random.chance(10) ? define(gen, "va", "INTEGER", nr) : nr) + "]";
}

} // namespace

void tagComponents(Gen& gen, Type* type) {
    bool plain = type->kind == Kind::Sequence && type->marker < 0, includes = false;
    for (const Component& component : type->components) {
        plain = plain && component.presence == 'M' && !component.included;
        includes = includes || component.included;
    }
    const bool isAutomatic = gen.tagging == "AUTOMATIC";
    if (isAutomatic ? includes || gen.random.chance(85) : plain && gen.random.chance(50)) return;
    for (Component& component : type->components) {
        if (component.included) continue;
        component.type->tag = nextTag(gen);
        if (gen.random.chance(20)) component.type->tag += " EXPLICIT";
    }
}

void addOption(Gen& gen, Type* type, bool head) {
    if (!gen.options || !gen.random.chance(head ? 25 : 12)) return;
    std::vector<std::string> list{"BEO=x", "BEO=y"};
    const auto add = [&list](std::initializer_list<const char*> more) {
        list.insert(list.end(), more.begin(), more.end());
    };
    if (head)
        add({"ENTRY", "ENTRY=PDU", "TPREF=x_"});
    else
        add({"SKIP", "SKIP=IGNORE", "SKIP=ERROR", "PTR", "ASNH", "NEAR=YES"});
    switch (type->kind) {
    case Kind::Fixed:
        if (type->text == "BOOLEAN") add({"PLMBOOLE=YES"});
        if (type->text.starts_with("REAL")) add({"REAL=64", "REAL=32"});
        if (type->text.starts_with("ENUM")) add({"INT=8", "INT=16"});
        break;
    case Kind::Integer: add({"INT=8", "INT=U16", "INT=64"}); break;
    case Kind::Text: add({"N=16", "SEG", "DYN", "FRAME"}); break;
    case Kind::List: add({"N=16", "SEG", "DYN", "DYNARR", "FRAME"}); break;
    case Kind::Sequence:
    case Kind::Set: add({"COMPMASK=16", "ASNHC=YES", "ASNHC", "EXTENSIONS=SAVE"}); break;
    case Kind::Choice: add({"CHOICE=16", "EXTENSIONS=SAVE"}); break;
    default: break;
    }
    if ((type->kind == Kind::Text || type->kind == Kind::List) && type->constraint.empty())
        add({"SIZE-LIMIT=9", "SIZE-LIMIT=9:ERROR"});
    type->option = " --$" + oneOf(gen, list) + "--";
}

// ---- types that lead to others ------------------------------------------------------------------

namespace {

Type* reference(Gen& gen, int at, bool soft) {
    const int target = choose(gen, soft ? -1 : at, [](const Planned& planned) {
        return planned.plan == Plan::Type || planned.plan == Plan::ValueSet;
    });
    if (target < 0) return nullptr;
    Type* type = make(gen, Kind::Reference);
    type->def = target;
    if (target > at && gen.random.chance(45)) constrain(gen, type, 0);
    return type;
}

Type* selection(Gen& gen, int at, bool soft) {
    const int target = choose(gen, at, [&gen](const Planned& planned) {
        return planned.plan == Plan::Type && planned.built &&
               actual(gen, planned.type)->kind == Kind::Choice;
    });
    if (target < 0) return nullptr;
    Type* type = make(gen, Kind::Selection);
    type->def = target;
    const Type* choice = actual(gen, defAt(gen, target).type);
    if (soft) type->pick = gen.random.below(static_cast<int>(choice->components.size()));
    return type;
}

Type* objectType(Gen& gen, int at, bool soft) {
    const auto hasType = [&gen](const Planned& planned) {
        if (planned.plan != Plan::Object) return false;
        const Class& cls = classAt(gen, planned.cls);
        if (planned.built) return typeOf(gen, planned.cls, planned.object) != nullptr;
        return cls.type != 'O';
    };
    int target = choose(gen, soft ? -1 : at, hasType);
    if (target < 0) return nullptr;
    Type* type = make(gen, Kind::ObjectType);
    type->text = defAt(gen, target).name;
    for (int other = defAt(gen, target).object.other;
         defAt(gen, target).built && other > target && hasType(defAt(gen, other)) &&
         gen.random.chance(60);
         other = defAt(gen, target).object.other) {
        type->text += "." + fieldName(gen, defAt(gen, target).cls, "obj");
        target = other;
    }
    type->def = target;
    type->cls = defAt(gen, target).cls;
    return type;
}

Type* classField(Gen& gen, int at) {
    const int cls =
        choose(gen, at, [](const Planned& planned) { return planned.plan == Plan::Class; });
    if (cls < 0) return nullptr;
    Type* type = make(gen, gen.random.chance(30) ? Kind::OpenType : Kind::FieldType);
    type->cls = defAt(gen, cls).cls;
    type->isValueField = classAt(gen, type->cls).valueType != nullptr && gen.random.chance(60);
    return type;
}

Type* list(Gen& gen, int at, int depth, bool soft) {
    Type* type = make(gen, Kind::List);
    type->text = gen.random.chance(70) ? "SEQUENCE" : "SET";
    const bool back = soft || gen.random.chance(50);
    if (back || gen.random.chance(60)) type->constraint = "(" + sizes(gen, type->domain) + ")";
    if (back && type->domain.lo != 0) { // only a list that may be empty may lead back
        type->domain = {0, 3, {}, {}};
        type->constraint = gen.random.chance(50) ? "(SIZE (0..3))" : "(SIZE (0..3, ...))";
    }
    const std::string name = gen.isNew && gen.random.chance(30) ? fresh(gen, "l") : "";
    type->components.push_back({name, anyType(gen, at, depth + 1, back)});
    return type;
}

} // namespace

// ---- component lists ----------------------------------------------------------------------------

void addRow(Gen& gen, int cls, int set, const std::string& setText, Type* to, bool isNested) {
    Component id{fresh(gen, "i"), make(gen, Kind::FieldType)};
    Component open{fresh(gen, "o"), make(gen, Kind::OpenType)};
    id.type->row = open.type->row = ++gen.rowCount;
    id.type->cls = open.type->cls = cls;
    id.type->set = open.type->set = set;
    id.type->constraint = "({" + setText + "})";
    // "@" alone begins at the outermost structure of the text, "@." at the innermost
    std::string path = isNested || gen.random.chance(30) ? "@." : "@";
    if (gen.random.chance(25)) {
        Component header{fresh(gen, "h"), make(gen, Kind::Sequence)};
        path += header.id + ".";
        header.type->components.push_back(id);
        to->components.push_back(header);
    } else {
        to->components.push_back(id);
    }
    open.type->constraint = "({" + setText + "}{" + path + id.id + "})";
    if (classAt(gen, cls).type == 'O' || gen.random.chance(50)) open.presence = 'O';
    to->components.push_back(open);
}

namespace {

/// COMPONENTS OF a type behind, or of the structure that encloses this one.
void include(Gen& gen, int at, bool soft, Type* into) {
    int target = choose(gen, at, [&](const Planned& planned) {
        if (planned.plan != Plan::Type || !planned.built) return false;
        for (const Type* on = planned.type; on != nullptr; on = step(gen, on))
            if (on->kind == Kind::FieldType) return false; // refused for what it is
        const Type* end = actual(gen, planned.type);
        if (gen.structures > 0 || defAt(gen, at).plan != Plan::Type) // "@" would begin outside
            for (const Component& component : allComponents(gen, end))
                if (component.type->constraint.find("}{@i") != std::string::npos ||
                    component.type->constraint.find("}{@h") != std::string::npos)
                    return false;
        return end->kind == into->kind;
    });
    const bool encloses = soft && gen.structures == 1 && gen.outermost == into->kind;
    if (encloses && !gen.includes && defAt(gen, at).plan == Plan::Type && gen.random.chance(50))
        target = at;
    gen.includesSelf = gen.includesSelf || target == at;
    if (target < 0) return;
    if (gen.structures == 0) gen.includes = true;
    Component included{"", make(gen, Kind::Reference), 'M', "", true};
    included.type->def = target;
    into->components.push_back(included);
}

void addAny(Gen& gen, int at, Type* to) {
    Component id{fresh(gen, "c"), make(gen, Kind::Integer)};
    Component any{fresh(gen, "c"), make(gen, Kind::Any)};
    any.type->text = id.id;
    if (gen.random.chance(40)) any.presence = 'O';
    if (gen.options && gen.random.chance(60)) {
        const std::string entry = define(gen, "En", "", "INTEGER --$ENTRY--", at);
        any.type->option =
            " --$ANY=" + entry + ":" + define(gen, "va", "INTEGER", number(gen, 7), at) + "--";
    }
    to->components.push_back(id);
    to->components.push_back(any);
}

/// A second marker, an exception, groups of every structure and their versions.
void addToday(Gen& gen, Type* type) {
    const int count = static_cast<int>(type->components.size());
    type->group = -1;
    if (gen.random.chance(50))
        type->second = type->kind == Kind::Choice
                           ? count
                           : type->marker + gen.random.below(count + 1 - type->marker);
    const int additions = endOfAdditions(type) - type->marker;
    if (additions > 0 && gen.random.chance(60))
        type->group = type->marker + gen.random.below(additions);
    if (gen.random.chance(50)) type->version = "2: ";
    if (gen.random.chance(30)) type->exception = " ! 5";
}

Type* structure(Gen& gen, int at, int depth, bool soft) {
    const int pick = gen.random.below(10);
    Type* type = make(gen, pick < 5 ? Kind::Sequence : pick < 7 ? Kind::Set : Kind::Choice);
    const bool choice = type->kind == Kind::Choice;
    if (!choice && gen.random.chance(20)) include(gen, at, soft, type);
    if (depth == 0) gen.outermost = type->kind;
    gen.structures += 1;
    for (int left = 1 + gen.random.below(4) + (choice ? 1 : 0), first = left; left > 0; --left) {
        Component component{fresh(gen, "c")};
        if (!choice) component.presence = "MMOD"[gen.random.below(4)];
        if (choice && left == first)
            component.type = simpleType(gen);
        else
            component.type = anyType(gen, at, depth + 1, choice || component.presence != 'M');
        type->components.push_back(component);
    }
    gen.structures -= 1;
    if (type->kind == Kind::Sequence && gen.random.chance(12)) addAny(gen, at, type);
    if (type->kind == Kind::Sequence && gen.random.chance(25)) {
        const int set =
            choose(gen, -1, [](const Planned& planned) { return planned.plan == Plan::ObjectSet; });
        // in a value the outermost structure is that of a type assignment
        const bool isNested = depth > 0 || gen.includesSelf || defAt(gen, at).plan != Plan::Type;
        if (set >= 0) addRow(gen, defAt(gen, set).cls, set, defAt(gen, set).name, type, isNested);
    }
    const int count = static_cast<int>(type->components.size());
    if (gen.random.chance(20)) type->marker = 1 + gen.random.below(count - (choice ? 1 : 0));
    if (type->kind == Kind::Sequence && type->marker >= 0 && type->marker < count &&
        gen.random.chance(60))
        type->group = type->marker + gen.random.below(count - type->marker);
    if (gen.isNew && type->marker >= 0) addToday(gen, type);
    tagComponents(gen, type);
    return type;
}

} // namespace

Type* anyType(Gen& gen, int at, int depth, bool soft) {
    Type* type = nullptr;
    switch (gen.random.below(depth > 2 ? 6 : 12)) {
    case 0:
    case 1: break;
    case 2:
    case 3: type = reference(gen, at, soft); break;
    case 4: type = selection(gen, at, soft); break;
    case 5: type = objectType(gen, at, soft); break;
    case 6:
    case 7: type = structure(gen, at, depth, soft); break;
    case 8: type = list(gen, at, depth, soft); break;
    case 9: type = instance(gen, at, depth, soft); break;
    case 10: type = classField(gen, at); break;
    default: break;
    }
    if (type == nullptr) type = simpleType(gen);
    if (depth > 0 && type->option.empty()) addOption(gen, type, false);
    return type;
}

} // namespace orvo::meta
