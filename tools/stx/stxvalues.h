#pragma once

// Values of a tree as values of the language: numbers, bits, bytes, texts, arcs, lists, structures.
// Every function follows references to other values, into other files too, and says in the error of
// its result why there is no such value: of another kind, in a file out of reach, in a circle, not
// parsed (inside a parameterized definition).

#include <string>
#include <vector>

#include "stxnumber.h"
#include "stxreader.h"

namespace stx {

/// The value that a chain of references ends in.
Result<ValueRef> valueBehind(Trees& trees, ValueRef value);

/// INTEGER, ENUMERATED (the number of the item), named numbers and bits.
Result<Integer> integerOf(Trees& trees, ValueRef value);
Result<bool> boolOf(Trees& trees, ValueRef value);

/// The first bit is 0x80 of the first byte; bits behind the last one are 0.
struct Bits {
    std::vector<uint8_t> bytes;
    uint64_t count = 0;
    friend bool operator==(const Bits&, const Bits&) = default;
};
/// BIT STRING in any notation: '01'B, 'A5'H, named bits (as long as the highest needs). A value
/// that is given by what it contains (VF_CONTENTS) has no bits: an error.
Result<Bits> bitsOf(Trees& trees, ValueRef value);
/// OCTET STRING: '01'B is filled up with 0 (X.680 (02/2021) 23.4), an odd digit of 'A'H too.
Result<std::vector<uint8_t>> bytesOf(Trees& trees, ValueRef value);

/// Character strings, times, OID-IRI as UTF-8, lists such as {a, "b", {0,13}} in one piece. The
/// bytes of the 8-bit kinds (TeletexString, GraphicString and the like) are taken as the characters
/// of these codes (Latin-1): the tree does not hold what their escapes select. U+0000 is a byte 0.
/// A code that is no character (above 0x10FFFF, a surrogate) becomes U+FFFD.
Result<std::string> stringOf(Trees& trees, ValueRef value);
/// The same as codes, nothing replaced.
Result<std::u32string> charactersOf(Trees& trees, ValueRef value);

/// The arcs of OBJECT IDENTIFIER and RELATIVE-OID, references to others put in.
Result<std::vector<Integer>> oidOf(Trees& trees, ValueRef value);

struct Real {
    enum class Kind : uint8_t { Finite, PlusInfinity, MinusInfinity, NotANumber, MinusZero };
    Kind kind = Kind::Finite;
    Integer mantissa; // times base to the power exponent; 0 for zero
    int32_t base = 10, exponent = 0;
    friend bool operator==(const Real&, const Real&) = default;
};
Result<Real> realOf(Trees& trees, ValueRef value);

/// A part of a structured value: the name of the component, alternative or field as it is stored
/// ("" in lists), and its value, which may be a reference.
struct Member {
    std::string_view name;
    ValueRef value;
};
/// The elements of SEQUENCE OF and SET OF.
Result<std::vector<ValueRef>> elementsOf(Trees& trees, ValueRef value);
/// The components given for SEQUENCE, SET and the like in the order of the text; of a CHOICE the
/// one alternative.
Result<std::vector<Member>> membersOf(Trees& trees, ValueRef value);
/// The value behind the colon of a value of an open type or ANY, and its type.
struct OpenValue {
    TypeRef type;
    ValueRef value;
};
Result<OpenValue> openValueOf(Trees& trees, ValueRef value);

} // namespace stx
