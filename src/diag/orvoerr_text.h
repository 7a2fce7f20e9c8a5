#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "diag/orvomsg.h"

namespace orvo {

/// The listing form of a diagnostic, line feed included; `textStart` receives the position behind
/// the prefix, where the message begins.
std::string printError(const ErrRec& record, size_t& textStart);

/// What printError puts behind the prefix.
std::string messageText(const ErrRec& record);

} // namespace orvo
