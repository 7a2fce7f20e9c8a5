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

/// Lower and upper endpoint, as far as they are given.
struct EndpointPair {
    Endpoint ends[2];
    bool given[2] = {};
};
/// Narrows the endpoints of a series by those of a further member. A number outside of what the
/// members before it leave changes nothing on its side.
void narrowByMember(EndpointPair& series, const EndpointPair& member, uint8_t kind, bool ofSize);

} // namespace orvo
