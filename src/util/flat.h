#pragma once

// Hash tables without a node for each entry: entries move when a table grows, so no reference to
// one may be kept while entries are added. 30 % of the time of the tables of the standard library.

#include <string_view>
#include <tsl/robin_map.h>
#include <tsl/robin_set.h>

namespace orvo {

template <typename Key, typename Value, typename Hash = std::hash<Key>> using FlatMap =
    tsl::robin_map<Key, Value, Hash>;
template <typename Key, typename Hash = std::hash<Key>> using FlatSet = tsl::robin_set<Key, Hash>;

} // namespace orvo
