#pragma once

// Information objects: which set a component is constrained by and which other component selects
// from it, the objects of a set, the settings of an object.

#include <string>
#include <vector>

#include "stxnumber.h"
#include "stxreader.h"

namespace stx {

/// A component relation (X.682 (02/2021) 10.7): the component whose value selects the object.
struct RelationPath {
    /// 0: the path starts at the outermost structure; 1: at the structure that holds the component
    /// which is constrained; each more one structure further out.
    uint32_t level = 0;
    struct Step {
        std::string_view name; // of a component as stored; of an element of a list its number
        TypeRef component;     // none where the tree holds the name only
    };
    std::vector<Step> steps;
};
struct Table {
    TypeRef set; // none: the type has no table constraint
    std::vector<RelationPath> relations;
};
/// The table constraint of a type, along its references the first one.
Result<Table> tableOf(Trees& trees, TypeRef type);

struct ObjectSet {
    TypeRef classType; // the governing class
    /// Each object once, at the end of its references: those of the root in the order of the text,
    /// then the additions.
    std::vector<ValueRef> objects;
    uint32_t rootCount = 0;
    /// There is a "...", here or in a set that this one is made of: more may come.
    bool extensible = false;
};
/// The objects of a set: an assignment, an actual parameter, what `tableOf` gives. Unions,
/// intersections, EXCEPT, other sets, fields of objects, parameters are worked out.
Result<ObjectSet> objectsOf(Trees& trees, TypeRef set);

enum class FieldKind : uint8_t { Type, Value, ValueSet, Object, ObjectSet };
/// A field of an object.
struct Setting {
    std::string_view name; // as stored, without "&"
    TypeRef field;         // of the class
    FieldKind kind = FieldKind::Type;
    enum class Origin : uint8_t { Given, Default, Absent } origin = Origin::Absent;
    TypeRef type;   // of Type; of ValueSet and ObjectSet the type that is the set
    ValueRef value; // of Value and Object, references not followed
};
/// An entry of WITH SYNTAX.
struct SyntaxEntry {
    enum class Kind : uint8_t { Word, Comma, Field, Optional } kind = Kind::Word;
    std::string text;               // the word; the name of the field as stored, without "&"
    std::vector<SyntaxEntry> group; // of Optional: what stands in its brackets
};
struct Settings {
    TypeRef classType;
    std::vector<Setting> fields;     // all of the class, in its order
    std::vector<SyntaxEntry> syntax; // WITH SYNTAX of the class; empty: it has none
};
/// The fields of an object, references to it followed, DEFAULTs of its class filled in.
Result<Settings> settings(Trees& trees, ValueRef object);

/// The fields of a class, and its WITH SYNTAX.
Result<std::vector<Setting>> fieldsOfClass(Trees& trees, TypeRef classType);
Result<std::vector<SyntaxEntry>> syntaxOfClass(Trees& trees, TypeRef classType);

} // namespace stx
