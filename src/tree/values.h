#pragma once

// Constructors of value records in the current module (see tree/types.h).

#include <cstdint>

#include "tree/orvodef.h"
#include "tree/types.h"

namespace orvo {

/// A new VNode, an ordinary value of TYP_NONE. With a context its line and instance number come
/// from there.
VNodeNr addValArc(const InstContext* context, uint32_t line);
/// The head VNode of a value assignment, at the end of the module's chain. Flags as in
/// addTypeHeadArc.
VNodeNr addValHeadArc(int32_t name, uint32_t flags, TNodeNr govType, uint32_t line);
/// The DEFAULT value of a component, at the end of the module's chain of such values.
VNodeNr addValDefArc(TNodeNr govType, uint32_t line);
/// Sets the value code of the current VNode; a structured value's first component is the VNode that
/// comes next.
void setValNode(uint8_t code);

} // namespace orvo
