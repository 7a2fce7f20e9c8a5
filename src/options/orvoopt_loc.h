#pragma once

// Option comments of types and values.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "lex/orvotok.h"
#include "tree/orvodef.h"

namespace orvo {

/// Attaches the option comments of a range to a TNode of the current module, which is left in the
/// buffer as the pending record. Its type code and role must be set. `kindsSeen` gets the kinds
/// that were not consumed (bit k for kind k), the range is reset to first -1, last 0.
void patchOpts(TNodeNr node, uint32_t& kindsSeen, OptRange& range);
/// The same for a VNode; only kinds 2 and 3 can be consumed. The kinds rejected are set in
/// `rejectedKinds`.
void patchValOpts(VNodeNr node, uint32_t& rejectedKinds, OptRange& range);

/// Validates every comment of the range for the TNode in the buffer. Accepted ones set the bit of
/// their kind in optFlags, rejected ones set it in `rejected` and get kind 0.
void checkLocalTypeOptions(uint32_t& rejected, OptRange& range);
/// One comment without its lead-in character.
[[nodiscard]] bool localTypeOptionOK(uint8_t kind, std::string_view text);

/// Marks the TNode in the buffer as an entry: digits 0..7, SDU or PDU; a name part behind ":" is
/// passed over.
void evalEntryOption(std::string_view value);
[[nodiscard]] bool definitelenOK(std::string_view value);
[[nodiscard]] bool skipOK(std::string_view value);
[[nodiscard]] bool sizeLimitOK(std::string_view value);
[[nodiscard]] bool nearOK(std::string_view value);
[[nodiscard]] bool extensionsOK(std::string_view value);
void setSkipOption();

/// The value of an ANY= option: "Type-Name:value-name", a type reference, ":" and a value
/// reference.
[[nodiscard]] bool parseAnyOption(std::string_view value, std::string_view& typeName,
                                  std::string_view& valueName);

/// A row of the table of local options with a value.
struct LocOption {
    std::string_view name; // upper case, with its "="
    bool (*applies)();     // to the TNode in the buffer
    bool (*check)(std::string_view value);
    std::string_view types; // what it applies to, for people
    std::string_view values;
    std::string_view help;
};
std::span<const LocOption> locOptions();

} // namespace orvo
