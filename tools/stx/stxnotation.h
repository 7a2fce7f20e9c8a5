#pragma once

// Values as whole texts in ASN.1 notation, as a compiler would read them again.

#include <functional>
#include <string>

#include "stxnumber.h"
#include "stxreader.h"

namespace stx {

/// A stored name in its ASN.1 spelling: with "-" for "_".
std::string asn1Name(std::string_view stored);

/// What stands where a value refers to another one: its name ("N.v" of another module), or that
/// value itself. Items of enumerations and named bits are names either way.
enum class Naming : uint8_t { ByName, Followed };

struct ValueStyle {
    Naming naming = Naming::ByName;
    /// Writes a type where a value holds one: before the colon of an open type, in a setting of an
    /// object; with `set` what stands between the braces of a value or object set. Without it types
    /// that have no name are written as their kind alone.
    std::function<std::string(TypeRef type, bool set)> type;
};

/// The value in ASN.1 notation, whole: `""` for a quote within a string; characters that a string
/// in quotes cannot hold as tuples or quadruples, `{"a", {0,0,32,172}}`; bytes of the 8-bit kinds
/// as in the source (as UTF-8 in modules of STANDARD-VERSION=2021, else as they are); objects as
/// `{&id 1, &Type INTEGER}`. An error when something is out of reach or not parsed, when parts nest
/// deeper than 500 levels, and when the text has more than 16 million characters, as one that is
/// followed through values of values can have.
Result<std::string> valueText(Trees& trees, ValueRef value, const ValueStyle& style);

} // namespace stx
