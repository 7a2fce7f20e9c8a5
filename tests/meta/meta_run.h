#pragma once

// Arrangements of a project as modules, and what the compiler says about each.

#include <map>
#include <string>
#include <vector>

#include "meta_dump.h"
#include "meta_model.h"

namespace orvo::meta {

struct Arrangement {
    std::string name;
    std::vector<std::vector<int>> modules; // definitions of each, in order
    int root = 0;                          // the module that is named first
};
struct Outcome {
    int status = 0; // of the process; 100 and more: it did not end by itself
    Dump findings;  // of each definition, in order, as lines of the listing
    Dump dump;
    std::string trouble; // a tree that cannot be read, a finding outside definitions
};
struct Difference {
    std::string with;  // name of the arrangement that differs from the first one
    std::string where; // definition, path
    std::string first, other;
};

std::vector<Arrangement> arrangementsOf(const Project& project, Random& random);
/// The modules of an arrangement: file names and texts, the root first.
std::vector<std::pair<std::string, std::string>> modulesOf(const Project& project,
                                                           const Arrangement& arrangement);
Outcome compile(const Project& project, const Arrangement& arrangement);
/// What was found at the line of the fault.
std::vector<std::string> foundAtFault(const Project& project, const Outcome& outcome);
/// Where the outcome differs from that of the first arrangement, at most a few places. Of a faulty
/// project only what is found at the fault is compared: who asks for what is wrong and was checked
/// before hears nothing of it, so that what follows from a fault depends on the order.
std::vector<Difference> differences(const Project& project, const Outcome& first,
                                    const Arrangement& arrangement, const Outcome& other);

} // namespace orvo::meta
