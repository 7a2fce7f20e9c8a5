#pragma once

// Endpoints that a constraint gives, for the endpoints of types.

#include "check/orvonum_end.h"

namespace orvo {

/// The endpoint that a constraint gives to values of a kind, INTEGER or REAL; false when it gives
/// none.
bool getNumberEndpoint(Endpoint& end, bool upper, SubRef sub, uint8_t kind);
/// The endpoint that the SIZE constraints in a constraint give to sizes.
bool sizeEndpoint(Endpoint& end, bool upper, SubRef sub);
/// Makes `end` the inner one of the two endpoints.
void narrow(Endpoint& end, const Endpoint& other, bool upper, uint8_t kind);

} // namespace orvo
