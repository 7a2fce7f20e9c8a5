#pragma once

// What the units of the value checks share among themselves. Functions that check take the value as
// a CheckedValue and the type from the current type record; they leave the current type, value and
// constraint records as they found them.
//
// A value is checked by itself where its record stands, with all that it holds, and checked again
// wherever it is used: behind a reference, against the parent of a constraint, against the column
// of a table. Uses leave alone what the value holds, so that its own check finds and reports it,
// whoever comes first.

#include <compare>
#include <cstdint>
#include <map>
#include <string_view>

#include "check/p5val.h"
#include "tree/orvorec.h"

namespace orvo {

/// The value that a record stands for, references followed, with what its checks depend on beside
/// the type. A character of a string and the size of a value are values without a record.
struct CheckedValue {
    ModuleRec* module = nullptr; // of `rec`
    VNodeNr nr;                  // its number; none for a temporary value
    VNode rec = {};
    uint64_t id = 0;          // tells values apart
    VNodeRef at;              // the record that stands for it; none for a temporary value
    VNodeRef told;            // the record that findings stand at: `at`, or the reference that led
    uint32_t line = 0;        // to the value which holds `at`; and its line
    bool isReference = false; // `at` refers to `rec`
    bool isVariable = false;  // it is a value whose type is given beside it
    bool isOwn = false;       // what it holds is checked with it
    bool isCharacter = false; // of a string that is checked against an alphabet
    bool isOutermost = false; // component relations of what it holds go no further

    // A type nearer to the value on the chain under check has a WITH COMPONENTS.
    bool isRestricted = false;
    const CheckedValue* enclosing = nullptr; // the structured value that holds `at`
};
CheckedValue checkedValue(VNodeRef at);
/// A component or element of a value.
CheckedValue partAt(const CheckedValue& whole, VNodeNr nr);
/// A temporary value of a kind that stands for a part of another.
CheckedValue partOf(const CheckedValue& whole, uint8_t kind);

/// Who is told what is found.
struct ValueErrors {
    ModuleRec* module;
    bool report;
};
void reportValue(const ValueErrors& errors, const CheckedValue& value, Msg code,
                 std::string_view detail = {});
/// The same without being asked for messages twice: false.
[[nodiscard]] bool failValue(const ValueErrors& errors, const CheckedValue& value, Msg code,
                             std::string_view detail = {});

/// What a verdict depends on, and where findings stand, 0 for the verdict as such.
struct VerdictKey {
    uint64_t place = 0; // the record that stands for the value
    uint64_t enclosing = 0;
    uint64_t against = 0; // a contained type, or an inner constraint
    bool isInner = false;
    bool isReference = false;
    uint64_t seriesEnd = 0; // how much of a series counts
    uint64_t told = 0;
    friend auto operator<=>(const VerdictKey&, const VerdictKey&) = default;
};

/// State of the walk over a value.
struct P5ValState {
    bool sorrySaid = false;
    uint32_t nesting = 0; // of value checks
    uint64_t temporaries = 0;
    // Verdicts of the outermost check: a value against a contained type or an inner constraint.
    // Values and types that refer twice to the next level meet the same pair again and again.
    std::map<VerdictKey, bool> verdicts;
};
extern P5ValState p5ValState;

/// Counts nested checks; the verdicts are forgotten when the outermost ends. Ends the run when the
/// stack is nearly used up.
class ValueNesting {
  public:
    ValueNesting();
    ValueNesting(const ValueNesting&) = delete;
    ValueNesting& operator=(const ValueNesting&) = delete;
    ~ValueNesting();
};

/// Checks a value against the current type; `constrain`: also against its constraints.
[[nodiscard]] bool checkAgainstType(const ValueErrors& errors, const CheckedValue& value,
                                    bool constrain);
/// Checks a value against the current constraint record of the current type.
[[nodiscard]] bool checkAgainstSub(const ValueErrors& errors, const CheckedValue& value);
/// The type that governs the value is compatible with `type`.
[[nodiscard]] bool isGovernedBy(const CheckedValue& value, TNodeRef type);
/// What a value holds is to be checked with it.
bool checksParts(const ValueErrors& errors, const CheckedValue& value);
/// Checks the value of a record against its governing type, once per record; `enclosing` holds it.
[[nodiscard]] bool checkRecord(const ValueErrors& errors, VNodeRef at, bool constrain,
                               const CheckedValue* enclosing = nullptr);
/// Who an error in the current value is charged to: inside an instance who instantiated.
ModuleRec* moduleForErrors(ModuleRec* caller);
/// The constraint, one of a type, is or contains WITH COMPONENTS.
[[nodiscard]] bool hasWithComps(SubRef sub);

// ---- p5val_stru ---------------------------------------------------------------------------------
/// The current type has components, the value is one of its kind.
[[nodiscard]] bool checkValWithComps(const ValueErrors& errors, const CheckedValue& value);
/// Makes the definition that the built-in module has for a kind the current type; false when there
/// is none.
bool readBuiltinType(uint8_t kind);

// ---- p5val_form ---------------------------------------------------------------------------------
[[nodiscard]] bool checkEnumVal(const ValueErrors& errors, const CheckedValue& value);
[[nodiscard]] bool checkBitStriVal(const ValueErrors& errors, const CheckedValue& value);
/// A string that is given by what it contains: that is checked with it.
[[nodiscard]] bool checkContents(const ValueErrors& errors, const CheckedValue& value);
[[nodiscard]] bool checkOpenTypeVal(const ValueErrors& errors, const CheckedValue& value);
/// NumericString and PrintableString: their characters.
[[nodiscard]] bool checkCharacters(const ValueErrors& errors, const CheckedValue& value);
/// Characters that references bring in from strings of other kinds.
[[nodiscard]] bool checkWidth(const ValueErrors& errors, const CheckedValue& value);
/// GeneralizedTime and UTCTime.
[[nodiscard]] bool checkTimeVal(const ValueErrors& errors, const CheckedValue& value);
/// TIME and the types defined by it.
[[nodiscard]] bool checkTimeForm(const ValueErrors& errors, const CheckedValue& value);
/// The labels of OID-IRI and RELATIVE-OID-IRI.
[[nodiscard]] bool checkIri(const ValueErrors& errors, const CheckedValue& value);

// ---- p5val_real ---------------------------------------------------------------------------------
/// A REAL value has the mantissa, base and exponent that the entries of a WITH COMPONENTS ask for.
[[nodiscard]] bool realMeetsEntries(const CheckedValue& value, SubRef first);

// ---- p5val_oid ----------------------------------------------------------------------------------
[[nodiscard]] bool checkObjIdVal(const ValueErrors& errors, const CheckedValue& value);

// ---- p5val_tab ----------------------------------------------------------------------------------
/// The current constraint is a table constraint.
[[nodiscard]] bool valTableConstr(const ValueErrors& errors, const CheckedValue& value);
/// The value of an open type is one of the type in the constraint.
[[nodiscard]] bool valOpenType(const ValueErrors& errors, const CheckedValue& value);

} // namespace orvo
