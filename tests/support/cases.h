#pragma once

// Tables of small modules and of what the compiler finds in them.
//
// A text carries its findings behind the lines that they stand at: "--!" in front, ";" between,
// "W" in front of a warning, "L" of an error of the notation. What a tree says of a row stands
// behind "--=". What has neither is the legal neighbour.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/run.h"
#include "support/tree.h"

namespace orvo::test {

/// A diagnostic; "W" in front of the text makes it a warning, "L" an error of the notation.
struct Finding {
    int line;
    std::string text;
};

/// The lines that a listing has for them.
std::string listed(const std::vector<Finding>& findings);
std::string listed(int line, const std::string& text);

/// The lines of a table, without the empty ones around it.
std::vector<std::string> linesOf(const std::string& text);
/// What stands behind a mark like " --! ", which is cut off; the empty text when there is none.
std::string takeBehind(std::string& line, const char* mark);
/// "text ; 3: text": findings of the line, or of the one in front of them.
std::vector<Finding> findingsIn(const std::string& marks, int line);

/// Notation of X.680 to X.683 (02/2021).
inline const std::vector<std::string> edition = {"-STANDARD-VERSION=2021"};
inline const std::vector<std::string> lenient = {"-STANDARD-VERSION=2021", "-LENIENT=yes"};

/// What the modules of a table have in common: "M DEFINITIONS defaults::= BEGIN head" is line 1.
struct Frame {
    std::vector<std::string> options = {};
    std::string defaults = {}; // "AUTOMATIC TAGS " and the like
    std::string head = {};
    std::string before = {};             // in front of every row
    std::string last = {};               // a finding behind those of every row that has any
    std::vector<SourceFile> others = {}; // modules beside it
};

inline const Frame automatic = {.defaults = "AUTOMATIC TAGS "};

/// Each line is a module of its own and stands on line 2, "\\n" in it ends a line; "3: " in front
/// of a finding names another line. A fact stands behind "--=", a comment behind that.
using FactOf = std::function<std::string(const TreeFacts&)>;
void expectRows(const std::string& rows, const Frame& frame = {}, const FactOf& factOf = {});

/// The lines, from line 2 on, are one module.
RunResult expectMarked(const std::string& body, const Frame& frame = {});
/// The same with the definitions, one a line, in many orders.
void expectMarkedInAnyOrder(const std::string& body);

/// Places and their facts in "T: fact ; U.a: fact", on as many lines as they take.
std::vector<std::pair<std::string, std::string>> factsIn(const std::string& text);
void expectFacts(const std::string& facts,
                 const std::function<std::string(const std::string&)>& factOf);

/// Facts that TreeFacts tells, by its names for them: "kind U: T ; bounds U.a: 0..5".
void expectFacts(const TreeFacts& tree, const std::string& facts);

/// Facts of types, which are defined in one module: "INTEGER (5): 5..5 ; NULL: ".
void expectTypes(const std::string& types, const Frame& frame,
                 const std::function<std::string(const TreeFacts&, const std::string&)>& factOf);

/// Module M with automatic tags, whose body begins on line 2.
SourceFile moduleM(const std::string& body);
std::string diagnosticsOf(const std::string& body);

/// The text with "\\n" made line ends.
std::string withLines(std::string text);

/// Compiles a module M; the body begins on line 2. `defaults`: "IMPLICIT TAGS " and the like.
RunResult compileBody(const std::string& body, std::vector<std::string> options = {},
                      const std::string& defaults = "");

/// A text with its counters "#" and "@" made `number` and the one before.
std::string numbered(std::string text, int number);

} // namespace orvo::test
