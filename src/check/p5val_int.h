#pragma once

// What the units of the value checks share among themselves. Functions that check take the value as
// a CheckedValue and the type from the current type record; they leave the current type, value and
// constraint records as they found them.

#include <cstdint>
#include <map>
#include <string_view>
#include <tuple>

#include "check/p5val.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"

namespace orvo {

/// A value with its references followed. A character of a string and the size of a value are values
/// without a record.
struct CheckedValue {
    ModuleRec* module = nullptr; // of `rec`
    VNodeNr nr;                  // its number; none for a temporary value
    VNode rec = {};
    uint32_t line = 0;        // of the record that findings stand at
    bool isReference = false; // that record refers to `rec`
    bool isVariable = false;  // it is a value whose type is given beside it
    uint64_t id = 0;          // tells values apart
};
/// The value that a record stands for.
CheckedValue checkedValue(VNodeRef at);
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

/// State of the walk over a value.
struct P5ValState {
    NodeList struValueStack{NODES_VALUE}; // structured values that enclose the one under check
    bool inPermittedAlphabet = false;     // the value is a character
    bool outerWithComps = false;          // a type nearer to the value has a WITH COMPONENTS
    bool sorrySaid = false;
    uint32_t nesting = 0; // of value checks
    uint64_t temporaries = 0;
    // Verdicts of the outermost check: a value against a contained type or an inner constraint.
    // Values and types that refer twice to the next level meet the same pair again and again.
    // The line counts: each reference to a value is reported where it stands.
    std::map<std::tuple<uint64_t, ModuleRec*, uint32_t, uint32_t>, bool> verdicts;
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
/// Checks the value of a record against its governing type, once per record.
[[nodiscard]] bool checkRecord(const ValueErrors& errors, VNodeRef at, bool constrain);
/// Who an error in the current value is charged to: inside an instance who instantiated.
ModuleRec* moduleForErrors(ModuleRec* caller);
/// The constraint, one of a type, is or contains WITH COMPONENTS.
[[nodiscard]] bool hasWithComps(SubRef sub);

// ---- p5val_stru
/// The current type has components, the value is one of its kind.
[[nodiscard]] bool checkValWithComps(const ValueErrors& errors, const CheckedValue& value);
/// Makes the definition that the built-in module has for a kind the current type; false when there
/// is none.
bool readBuiltinType(uint8_t kind);

// ---- p5val_form
[[nodiscard]] bool checkEnumVal(const ValueErrors& errors, const CheckedValue& value);
[[nodiscard]] bool checkBitStriVal(const ValueErrors& errors, const CheckedValue& value);
[[nodiscard]] bool checkOpenTypeVal(const ValueErrors& errors, const CheckedValue& value);
/// NumericString and PrintableString: their characters.
[[nodiscard]] bool checkCharacters(const ValueErrors& errors, const CheckedValue& value);

// ---- p5val_time
[[nodiscard]] bool checkTimeVal(const ValueErrors& errors, const CheckedValue& value);

// ---- p5val_oid
[[nodiscard]] bool checkObjIdVal(const ValueErrors& errors, const CheckedValue& value);

// ---- p5val_con
/// A verdict that was reached before in this check, or the one that `decide` reaches now.
template <typename Fn> bool rememberedVerdict(const CheckedValue& value, ModuleRec* module,
                                              uint32_t nr, bool report, Fn&& decide) {
    const auto key = std::tuple(value.id, module, nr, report ? value.line + 1 : 0);
    const auto [note, isNew] = p5ValState.verdicts.try_emplace(key, false);
    if (!isNew) return note->second;
    const bool ok = decide();
    p5ValState.verdicts[key] = ok;
    return ok;
}

// ---- p5val_tab
/// The current constraint is a table constraint.
[[nodiscard]] bool valTableConstr(const ValueErrors& errors, const CheckedValue& value);

} // namespace orvo
