#pragma once

// Structures and types as encoders and generators of code see them: components in the order of an
// encoding, with their tags and their numbers; types in an order in which they can be declared.

#include <string>
#include <vector>

#include "stxnumber.h"
#include "stxreader.h"

namespace stx {

/// A component or alternative with what an encoding says of it.
struct Part {
    Component component; // COMPONENTS OF expanded
    FinalTags tags;      // outermost first, the automatic one included
    uint32_t place = 0;  // position in the order of the text, from 0
    /// Position in the bit map of presence, from 0: that of the root, or that of the group which
    /// the component stands in (X.691 (02/2021) 19.2); -1: neither OPTIONAL nor DEFAULT, and always
    /// in a CHOICE.
    int32_t optionalBit = -1;
    /// Number among the extension additions, from 0; all members of a group have that of the group
    /// (X.691 (02/2021) 19.7), alternatives of a CHOICE one each; -1: of the root.
    int32_t addition = -1;
    int32_t group = -1; // position in `Structure::groups`, -1: in none
};

/// An extension addition group of SEQUENCE or SET.
struct Group {
    TypeRef node;
    uint32_t version = 0; // `[[ 2: `, 0: none is written
    int32_t addition = 0; // its number among the additions
    uint32_t optionalBits = 0;
};

/// SEQUENCE, SET or CHOICE.
struct Structure {
    /// First those of the root, then the additions in the order of the text. The root of a SEQUENCE
    /// is in the order of the text (behind the additions there may be more of it); of SET and
    /// CHOICE in the canonical order of the tags (X.680 (02/2021) 8.6, X.691 (02/2021) 21.1
    /// and 23.2): the position is the index of an alternative.
    std::vector<Part> parts;
    uint32_t rootCount = 0; // parts of the root
    std::vector<Group> groups;
    uint32_t optionalBits = 0;  // bits of the map of the root
    uint32_t additionCount = 0; // additions, a group as one
    bool extensible = false;    // there is an extension marker
};
/// The structure that the type comes to along its references. An error for other types, for a file
/// out of reach, and where COMPONENTS OF brings in more than a compiler takes.
Result<Structure> structureOf(Trees& trees, TypeRef type);

/// The least tag that a value can begin with: of an untagged CHOICE that of its root alternatives.
/// None for ANY and open types.
struct FirstTag {
    bool known = false;
    Tag tag;
};
Result<FirstTag> firstTagOf(Trees& trees, TypeRef type, int64_t automaticTag = -1);

// ---- all types of modules -----------------------------------------------------------------------

/// The types of a module that code is made for: assignments in the order of the text, without
/// parameterized definitions, classes and sets of objects; then the heads of instances.
std::vector<TypeRef> definedTypes(Trees& trees, const Tree& tree);

struct Declaration {
    TypeRef type;
    /// Types of one number above 0 refer to one another in a circle, or one refers to itself: some
    /// must be declared before they are defined, and held by a pointer.
    uint32_t circle = 0;
};
/// The types in such an order that each stands behind those that it refers to, members of a circle
/// side by side; else in the order given. A type that an open type holds is not referred to.
Result<std::vector<Declaration>> declarationOrder(Trees& trees, const std::vector<TypeRef>& types);

struct PduTypes {
    std::vector<TypeRef> entries;    // with the option ENTRY
    std::vector<TypeRef> unreferred; // the others that no type or object refers to
};
PduTypes pduTypes(Trees& trees, const std::vector<TypeRef>& types);

/// A stored name as an identifier of C and C++: one that is a reserved word gets a "_" behind it.
std::string cName(std::string_view stored);
/// Names of types for one scope, in their order: where types of several modules have the same, that
/// of the module goes in front; what is still the same (instances) gets a number behind.
std::vector<std::string> cNames(const std::vector<TypeRef>& types);
/// Names of components for one structure.
std::vector<std::string> cNames(const Structure& structure);

} // namespace stx
