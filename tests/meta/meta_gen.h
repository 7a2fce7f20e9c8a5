#pragma once

// What the generator knows of the definitions that it makes. They are planned by kind first and
// built from the last to the first. A definition may name any other; what would make a type
// infinite (a mandatory component, the target of a reference, what COMPONENTS OF includes) lies
// behind it in the plan. Values come last, when every type is known. Names are unique in the whole
// project, tag numbers too.

#include <deque>
#include <limits>
#include <map>

#include "meta_model.h"

namespace orvo::meta {

constexpr int64_t low = std::numeric_limits<int64_t>::min();
constexpr int64_t high = std::numeric_limits<int64_t>::max();

enum class Kind {
    Fixed, // notation and values are given: `text`, `domain.only`
    Integer,
    Text, // bit, octet and character strings
    Sequence,
    Set,
    Choice,
    List,       // `text` OF the only component
    Reference,  // to the type or value set `def`
    Narrowed,   // `target` with less values; only what WITH COMPONENT(S) says of a part
    Selection,  // alternative `pick` of the CHOICE `def`
    ObjectType, // &Type of the object `def`
    FieldType,  // CLASS.&id or CLASS.&val
    OpenType,   // CLASS.&Type
    Any,        // DEFINED BY `text`
    Instance,   // of the parameterized `def`, written `text`
    Dummy,      // formal parameter `pick`
};

/// Values that are surely in a type; it may have more.
struct Domain {
    int64_t lo = low, hi = high;        // of values, of sizes
    std::string letters = {};           // of an alphabet
    std::vector<std::string> only = {}; // some values in full
};

struct Type;
struct Component { // or alternative; of lists the element has no name
    std::string id = {};
    Type* type = nullptr;
    char presence = 'M';    // M(andatory), O(ptional), D(efault)
    std::string value = {}; // of DEFAULT
    bool included = false;  // COMPONENTS OF
    bool absent = false;
};
struct Inner { // an entry of WITH COMPONENTS
    std::string id = {};
    char presence = ' '; // P(resent), A(bsent)
    Type* type = nullptr;
};

struct Type {
    Kind kind = Kind::Fixed;
    std::string tag = {}, text = {}, constraint = {}, option = {};
    Domain domain = {};
    std::vector<Component> components = {};
    int marker = -1, group = -1;              // the component behind "..." and behind "[["
    int second = -1;                          // the component behind the second "..."
    std::string exception = {}, version = {}; // behind the first "..." and behind "[["
    std::vector<std::pair<std::string, int64_t>> names = {}; // of INTEGER
    int def = -1, pick = 0;
    int via = -1; // definition of a type in the constraint, with no other values
    Type* target = nullptr;
    std::vector<Inner> inner = {};
    bool full = false;               // WITH COMPONENTS without "..."
    int cls = -1;                    // of &id, &val, &Type
    bool isValueField = false;       // &val
    int set = -1;                    // object set of the table, or -2: a parameter
    int row = 0;                     // types of one table row share it
    std::vector<Type*> actuals = {}; // what an instance is made with: types,
    int actual = 0;                  // or a definition, or a number
    char parameter = ' ';            // what comes from the actual: H(ighest value), S(et of values)
};

struct Object {
    std::string name = {};                      // of the definition; "" = written in a set
    std::string id = {}, alias = {}, vals = {}; // `vals` of a value set field
    Type* type = nullptr;
    bool hasValue = false;
    int other = -1, objs = -1; // definitions of the object and the set in such fields
    Domain valsDomain = {};
};
struct Element { // of an object set: one of the three
    int object = -1;
    const Object* own = nullptr;
    int set = -1;
    std::string text = {}; // how the set is written
};
struct Class {
    const char* builtIn = nullptr;
    char type = 'M', value = ' ', variable = ' ', vals = ' ';
    Type* valueType = nullptr;
    Type* defaultType = nullptr;
    int other = -1; // class of an object field and an object set field
    bool syntax = false;
};

enum class Plan {
    Type,
    Number,
    ValueSet,
    Class,
    Object,
    ObjectSet,
    Parameterized,
    SetOfObject,
    Ready
};
enum class Template { OfType, OfNumber, OfObjectSet, OfObject, OfTypeAndValue, OfValueSet };

struct Planned {
    Plan plan = Plan::Type;
    std::string name = {}, text = {};
    bool parameterized = false;
    int glue = -1;        // the definition that needs this one in its module
    Type* type = nullptr; // of a type, value set, parameterized type
    bool built = false;
    int cls = -1; // of objects, of sets, of a parameter; of a class its number
    Object object = {};
    std::vector<Element> elements = {};
    bool extensible = false;
    int64_t number = 0;
    Template form = Template::OfType;
};

struct Gen {
    Random random;
    std::string tagging = {};
    bool isNew = false;
    std::deque<Type> types = {};
    std::deque<Object> objects = {}; // those written in sets
    std::deque<Planned> defs = {};
    std::vector<Class> classes = {};
    int names = 0, tags = 100, rowCount = 0, ids = 0;
    std::map<int, const Object*> rows = {}; // the object chosen for a row
    bool options = false;                   // option comments may stand here
    bool inObject = false; // a value of another object here might lead back to this one
    int structures = 0;    // that enclose the one being built
    Kind outermost = Kind::Fixed;
    bool includes = false, includesSelf = false; // COMPONENTS OF: in it; of it within
};

inline Planned& defAt(Gen& gen, int nr) {
    return gen.defs[static_cast<size_t>(nr)];
}
inline Class& classAt(Gen& gen, int nr) {
    return gen.classes[static_cast<size_t>(nr)];
}
template <typename List> auto& oneOf(Gen& gen, List&& list) {
    return list[static_cast<size_t>(gen.random.below(static_cast<int>(std::size(list))))];
}
/// A definition behind `from` (or anywhere, with -1) that satisfies the condition; -1 = none.
template <typename Fn> int choose(Gen& gen, int from, Fn&& suits) {
    std::vector<int> list;
    for (int at = from + 1; at < static_cast<int>(gen.defs.size()); ++at)
        if (suits(defAt(gen, at))) list.push_back(at);
    return list.empty() ? -1 : oneOf(gen, list);
}

std::string fresh(Gen& gen, const char* stem);
/// A new definition; a governor of "" leaves it out, "{...}" in front of it are parameters.
std::string define(Gen& gen, const char* stem, const std::string& governor, const std::string& text,
                   int glue = -1);
Type* make(Gen& gen, Kind kind);

// meta_gen_type
Type* simpleType(Gen& gen);
/// A type that may stand in the definition `at`. Soft: it may lead back without being infinite.
Type* anyType(Gen& gen, int at, int depth, bool soft);
std::string oidValue(Gen& gen);
/// Components that belong to one row of a table.
void addRow(Gen& gen, int cls, int set, const std::string& setText, Type* to, bool isNested);
void tagComponents(Gen& gen, Type* type);
void addOption(Gen& gen, Type* type, bool head);

// meta_gen_con
/// One step towards the type that defines the notation; null at the end.
Type* step(Gen& gen, const Type* type);
const Type* actual(Gen& gen, const Type* type);
/// The type at the end with what WITH COMPONENT(S) on the way says about its parts.
const Type* effective(Gen& gen, const Type* type);
void narrow(Domain& domain, const Domain& by);
Domain domainOf(Gen& gen, const Type* type);
/// The component behind the additions of a structure.
inline int endOfAdditions(const Type* type) {
    return type->second >= 0 ? type->second : static_cast<int>(type->components.size());
}
/// Components of the structure with those that COMPONENTS OF includes.
std::vector<Component> allComponents(Gen& gen, const Type* type);
/// A copy for an instance of a parameterized definition.
Type* copy(Gen& gen, const Type* from, const Type* instance);
bool isStructure(Kind kind);
std::string number(Gen& gen, int64_t value, bool withParameters = true);
/// The text of a set of integers within the domain, which becomes what is surely in the set.
std::string integerSet(Gen& gen, Domain& domain, bool isSize);
std::string sizes(Gen& gen, Domain& domain);
/// Gives a type that leads to another one a constraint, where there is a suitable one.
void constrain(Gen& gen, Type* type, int depth);

// meta_gen_value
std::string textOf(Gen& gen, const Type* type);
std::string valueOf(Gen& gen, const Type* type, int depth, Domain domain = {});

// meta_gen_obj
std::string className(Gen& gen, int cls);
std::string fieldName(Gen& gen, int cls, const char* field);
const Type* typeOf(Gen& gen, int cls, const Object& object);
std::vector<const Object*> membersOf(Gen& gen, int set);
void planClass(Gen& gen, Class& cls);
void buildClass(Gen& gen, int at);
void buildObject(Gen& gen, int at);
void buildSet(Gen& gen, Planned& planned, int at);
std::string objectText(Gen& gen, int cls, const Object& object);
std::string classText(Gen& gen, int cls);
std::string setText(Gen& gen, const Planned& planned);
void buildParameterized(Gen& gen, int at);
std::string formals(Gen& gen, const Planned& planned);
Type* instance(Gen& gen, int at, int depth, bool soft);

} // namespace orvo::meta
