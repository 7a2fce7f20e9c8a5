#pragma once

// Object identifier values of module identifiers, and references to values (X.680 (07/2002) clauses
// 12, 13 and 31); what all rules share that make value records.

#include <cstdint>
#include <optional>
#include <string_view>

#include "lex/orvotok.h"
#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// A new VNode with the line of the current token, none when the module has a syntax error.
VNodeNr newValueNode();
/// A new VNode of type OBJECT IDENTIFIER; its type is a new TNode.
VNodeNr newObjectIdNode();
/// Makes a VNode current and pending. False when the module has a syntax error: nothing is current
/// and nothing is to be stored then.
bool atValue(VNodeNr node);
/// Makes a reference without a module that names a formal parameter of the assignment being parsed
/// a reference to it; others stay as they are.
void resolveDummy(int32_t& moduleRef, int32_t& name);
/// Attaches the option comments before the current token, if there are any, to a VNode, which is
/// current afterwards.
void takeValueOptions(VNodeNr node);
/// Gives the current token another code and value.
void rewriteToken(int32_t code, I64 value);

/// Fills the current value node and creates its components: `{` Component {Component} `}`.
void MGR13ObjectIdValue();
/// Makes the current value node a reference: [moduleid `.`] valueid.
void MGR42DefinedValue();

/// The arc of a well-known name, spelled as names are stored (`_` for `-`): the low word is the
/// arc, the high word minus its level (-5 root arc, -6 under itu-t, -7 under iso, -8 a letter). A
/// single letter is one only as the third component (counted from 1); anywhere else it is an
/// ordinary reference.
[[nodiscard]] std::optional<I64> namedObjIdArc(std::string_view name, uint32_t component);

/// Settles the role of a valueid that is the component-th (from 1) of an object identifier value:
/// before a `(` it becomes a componentid, a well-known name becomes a number token with level and
/// arc. `module` is that whose strings the token carries. Other tokens stay as they are.
void convertObjIdComp(ModuleRec* module, Token& token, int32_t followingCode, uint32_t component);

} // namespace orvo
