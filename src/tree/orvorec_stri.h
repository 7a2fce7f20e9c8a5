#pragma once

// String caches: per module and character width the numbers of its texts, and for the whole run one
// shared copy of every text. The functions on texts that everybody uses stand in tree/orvorec.h.

#include <cstddef>
#include <string_view>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "util/aa.h"

namespace orvo {

/// The module's table from text to string number for kind KIND_STRI8, KIND_STRI16 or KIND_STRI32,
/// made on first use. Fatal 13 for another kind, fatal 5 when there is no memory for it.
AaContext* setupStriCaches(ModuleRec* module, RecKind kind);
/// The shared copy of a NUL-terminated text of `length` characters of the kind's width; `hash` is
/// that of the caches.
const void* allocateUniqStri(const void* text, size_t length, uint64_t hash, RecKind kind);

} // namespace orvo
