#pragma once

// What the constraints of a type come to: the values, sizes, characters and items that are left
// along the whole chain of references, as sets of numbers.

#include <string>
#include <vector>

#include "stxnumber.h"
#include "stxreader.h"

namespace stx {

/// Which constraints count: those that the packed encoding rules see (X.691 (02/2021) 10.3), or
/// all of them.
enum class View : uint8_t { Per, Full };

/// A set of values (or sizes, or character codes) that a type is constrained to.
///
/// - `Per`: EXCEPT and what follows is passed over; a constraint that is not visible is as if it
///   were not there, but takes a union that it is part of with it. Not visible are table, relation,
///   user-defined, contents, pattern and inner constraints, single values of strings, an extensible
///   alphabet, and everything about types that are neither INTEGER nor of a size nor strings of a
///   known multiplier.
/// - `Full`: exact in INTEGER and ENUMERATED, in sizes and in alphabets. Single values of strings
///   count with their length and their characters; EXCEPT of one takes nothing away. Patterns,
///   inner and other constraints, which say nothing of sizes and characters, count as everything.
/// - A type that is constrained in series keeps of each parent the root only, and is extensible
///   when its last constraint is (X.680 (02/2021) 50.8); of a contained subtype only the root
///   counts.
/// - References are followed to values in other files, and through actual parameters.
struct Effective {
    Ranges root;              // of the extension root; empty: nothing is left
    Ranges whole;             // with the extension additions that are written
    bool extensible = false;  // the constraint has a "..." that holds here
    bool constrained = false; // the root is less than the type has without constraints
    friend bool operator==(const Effective&, const Effective&) = default;
};

/// The values of an INTEGER. An error for other types, as with the ones below; for a parameterized
/// definition and where text is not parsed; for a file out of reach; where working the sets out
/// would take more work than a file of the size can need.
Result<Effective> effectiveBounds(Trees& trees, TypeRef type, View view = View::Per);
/// The sizes of BIT STRING, OCTET STRING, SEQUENCE OF, SET OF and of character strings, in bits,
/// octets, elements, characters: 0..MAX without constraint.
Result<Effective> effectiveSize(Trees& trees, TypeRef type, View view = View::Per);
/// The characters of a character string by their codes. Without constraint those of the kind; of
/// kinds whose registers change (TeletexString, GraphicString and the like) 0..255.
Result<Effective> effectiveAlphabet(Trees& trees, TypeRef type, View view = View::Per);

/// An item of an enumeration.
struct Item {
    std::string_view name; // as stored
    Integer number;
    ValueRef value;
};
/// The items that the constraints leave. No constraint of an enumeration is visible to PER.
struct Items {
    std::vector<Item> root;      // in ascending order of the numbers: PER's index
    std::vector<Item> additions; // in the order of the text
    bool extensible = false;     // `Full`: not any more when a constraint without "..." follows
};
Result<Items> effectiveItems(Trees& trees, TypeRef type, View view = View::Per);

/// "1..10": the least and the greatest value, size or number of an item that all constraints
/// leave, additions included; "" for types that have none, and where it cannot be found out.
std::string effectiveText(Trees& trees, TypeRef type);

} // namespace stx
