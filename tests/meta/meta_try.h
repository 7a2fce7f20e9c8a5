#pragma once

namespace orvo::meta {

/// Tries the comparison of trees: changes each field of each kind of record by hand, in a tree that
/// has all kinds, and prints the fields of which no change was seen. True when there are none, but
/// for those that are left out on purpose.
[[nodiscard]] bool tryComparison();

} // namespace orvo::meta
