#pragma once

// A random legal module as definitions that refer to one another by name.

#include <cstdint>
#include <string>
#include <vector>

namespace orvo::meta {

struct Definition {
    std::string name;
    std::string text; // whole, several lines
    bool parameterized = false;
    std::string glue = {}; // the definition that it must share a module with
};

struct Project {
    std::string tagging; // "EXPLICIT", "IMPLICIT", "AUTOMATIC"
    std::vector<Definition> definitions;
    bool isNew = false; // of the notation of 2021
    bool isFaulty = false;
    std::string faulty = {}, mark = {}; // the definition that is, a piece of the line that is
};

/// A source of numbers that is the same on every host.
struct Random {
    uint64_t state;
    uint64_t next() {
        uint64_t word = state += 0x9e3779b97f4a7c15U;
        word = (word ^ (word >> 30)) * 0xbf58476d1ce4e5b9U;
        word = (word ^ (word >> 27)) * 0x94d049bb133111ebU;
        return word ^ (word >> 31);
    }
    int below(int limit) {
        return limit <= 0 ? 0 : static_cast<int>(next() % static_cast<uint64_t>(limit));
    }
    int64_t between(int64_t low, int64_t high) {
        return low + static_cast<int64_t>(next() % static_cast<uint64_t>(high - low + 1));
    }
    bool chance(int percent) { return below(100) < percent; }
};

Project generate(uint64_t seed, bool isNew);
/// Plants one fault in a definition; at times none that can be named, only something is missing.
void plantFault(Project& project, Random& random);

/// Identifiers of a text that are no field names and not in strings.
std::vector<std::string> wordsOf(const std::string& text);

} // namespace orvo::meta
