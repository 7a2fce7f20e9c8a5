#pragma once

// Naming and entry records: how back ends form the names of generated items, and which types are
// top-level. Also the records that modules keep of the modules they name, and option records.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

// ---- referenced modules -------------------------------------------------------------------------

/// A new entry at the end of a list of referenced modules, entered into the list's indices as far
/// as name, target and number (0 = none) are given. An index keeps the first entry of a key.
ModRef* createPicRec(ModRefList& list, std::string_view name, ModuleRec* target = nullptr,
                     uint32_t number = 0);
/// Forgets all entries but the first `keep` ones, in the indices too (a trial parse taken back).
void dropPicRecs(ModRefList& list, size_t keep);

// ---- option records -----------------------------------------------------------------------------

/// Longest text of an option, which may hold a path; what is longer is cut and rejected.
inline constexpr size_t maxOptionLength = 1024;

/// Converts the name of an option - from the second character to the first "=" - to upper case.
void optionToUpper(std::string& text);
/// Stores an option text, lead-in character included, as a record of the current module and extends
/// the range. Its name is converted to upper case unless the option is rejected. The records of one
/// range must be added without others of the kind in between.
TedNr addTedRec(OptRange& range, uint8_t kind, std::string_view text);
/// Text of the option record in the buffer without its lead-in character.
std::string_view tedText(ModuleRec* module);
/// Calls fn(number) for every option record of the range. An empty range has none; first 0 counts
/// as 1.
template <typename Fn> void forEachTedRec(OptRange range, Fn&& fn) {
    if (range.first < 0) return;
    for (int64_t nr = range.first == 0 ? 1 : range.first; nr <= range.last; ++nr)
        fn(TedNr{static_cast<uint32_t>(nr)});
}

// ---- naming options -----------------------------------------------------------------------------

/// A naming prefix and the kind of item it names; "VS" stands before "V" as the first match wins.
struct NameOptPref {
    std::string_view prefix;
    FixKind kind;
};
inline constexpr NameOptPref nameOptPref[] = {
    {"VS", FIX_VALUE_SET}, {"OS", FIX_OBJECT_SET}, {"CL", FIX_CLASS},
    {"T", FIX_TYPE},       {"V", FIX_VALUE},       {"O", FIX_OBJECT},
    {"C", FIX_COMPONENT},  {"F", FIX_FIELD},       {"V", FIX_VALUE2}};

/// The four parts of a naming option, by their first letter: conversion, prefix, name, suffix.
inline constexpr std::string_view nameSubOptions[] = {"CONV=", "PREF=", "NAME=", "SUFF="};

/// The row of nameOptPref whose prefix, followed by one of the four parts, begins the text; else
/// none.
const NameOptPref* findNameOption(std::string_view text);

/// Tells whether the text is a valid naming option such as "TPREF=x_" or "TPREF=Abc:x_".
/// `suboption` gets the place of its CONV=, PREF=, NAME= or SUFF=.
[[nodiscard]] bool parseNamingOption(std::string_view text, size_t& suboption);
/// Tells whether the text is a valid ENTRY value: digits 0..7, SDU or PDU, then an optional ":" and
/// name.
[[nodiscard]] bool parseEntryOption(std::string_view value, std::string_view& entryValue,
                                    std::string_view& rest);
/// Splits "Ident:rest". False when the value has a ":" that is not the end of an identifier.
/// Without a ":" the identifier is empty and the rest is the whole value.
[[nodiscard]] bool splitFixOptionIntoParts(std::string_view value, std::string_view& ident,
                                           std::string_view& rest);

/// Parses and stores one naming option ("TPREF=") or "ENTRY=" with its value. Without a list, as
/// for option comments of nodes, it is validated only. False = invalid, nothing is stored.
[[nodiscard]] bool getFixOpt(FixList* list, std::string_view optionName, std::string_view value);
/// Sets the part of a naming record that the suboption names.
void updateNamingOption(FixRec& record, std::string_view suboption, std::string_view value);
void updateEntryOption(FixRec& record, std::string_view entryValue, std::string_view rest);

// ---- look-up ------------------------------------------------------------------------------------

/// Number of leading characters in which the names agree; "-" and "_" are equal.
size_t compareNames(std::string_view a, std::string_view b);
/// The per-identifier record of a name, or none.
const FixRec* findGlbFixRecByName(const FixList& list, std::string_view name);
/// The ENTRY record that applies to a type: its own, else the module-wide one when it has a value,
/// else none.
const FixRec* findFixRecByEntryTypeName(const FixList& list, std::string_view name);
/// The naming records of a kind (1..9).
FixList& fixRecForKind(OptionBlock& block, FixKind kind);
const FixList& fixRecForKind(const OptionBlock& block, FixKind kind);

// ---- the name of an item ------------------------------------------------------------------------

/// Name and option records of the node in the buffer that the kind applies to (TNode or VNode). The
/// range is empty unless the node accepted option comments of kind 3.
void getTedRecAndCompIdByKind(FixKind kind, OptRange& range, std::string_view& ident);
/// The naming in force for the node in the buffer: module-wide, overridden by that of its
/// identifier, overridden by its own option comments. All empty for a node without a name.
void getFixRec(FixRec& out, FixKind kind);
/// Clears a record and enters an identifier of which at most `limit` characters count.
void initFixRec(FixRec& record, std::string_view ident, uint32_t limit);
/// Overrides the texts of `to` with those of `from` that are given.
void copyFixRec(FixRec& to, const FixRec& from);

/// Appends prefix, name and suffix, converted.
void pFixRec(std::string& buffer, const FixRec& record);
/// Appends `before`, the composed name (the identifier when the record renames nothing) and
/// `after`.
void printFixRec(std::string& buffer, std::string_view before, const FixRec& record,
                 std::string_view after);
/// Length of the name that printFixRec composes.
size_t countFixRec(const FixRec& record);
/// True when the composed names differ.
bool compareFixRec(const FixRec& a, const FixRec& b);

} // namespace orvo
