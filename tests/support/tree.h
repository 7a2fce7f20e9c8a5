#pragma once

// Facts of the tree files that a run left behind, as texts that read well in EXPECT_EQ.
//
//     const TreeFacts tree(compile({{"m.asn", "M DEFINITIONS ::= BEGIN ... END\n"}}), "m");
//     EXPECT_EQ(tree.tags("S.a"), "[1] IMPLICIT");
//
// A path is the name of a type assignment, followed by names of components: "S.a.b". "*" is the
// element of a list, "@2" the second entry of a structure (an extension marker, a group). Where a
// component is a reference, the path goes on in the type referred to, in whichever module. A path
// that leads nowhere is a failure of the test, and its facts are "(none)".

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "stx/stxreader.h"
#include "support/run.h"

namespace orvo::test {

class TreeFacts {
  public:
    /// Opens PREFIX.stx of the run; a file that is missing or damaged is a failure of the test.
    TreeFacts(const RunResult& run, const std::string& prefix);

    /// The reader, for facts without a helper here. An empty tree when the file could not be read.
    const stx::Tree& tree() const { return *tree_; }
    stx::Trees& trees() const { return *trees_; }
    stx::TypeRef type(std::string_view path) const;
    stx::ValueRef value(std::string_view name) const;
    stx::TNode node(std::string_view path) const { return type(path).node(); }

    /// Names of the type (value) assignments in order: "S T U".
    std::string types() const;
    std::string values() const;
    /// "SEQUENCE", "INTEGER", or for a reference the name that it refers to: "T", "N.T".
    std::string kind(std::string_view path) const;
    /// The type that a reference comes to in the end: "SEQUENCE".
    std::string actualKind(std::string_view path) const;
    /// The tag records: "[1] IMPLICIT [APPLICATION 2] EXPLICIT".
    std::string tags(std::string_view path) const;
    /// The tags of an encoding: "[1] [UNIVERSAL 16]"; of an open end "[1] ...".
    std::string finalTags(std::string_view path) const;
    /// The stored bounds: "1..10", "MIN..MAX".
    std::string bounds(std::string_view path) const;
    /// The value field: "(8, 8)" for vfKind 8 and sizeOpt 8.
    std::string valueField(std::string_view path) const;
    /// checkFlags by name: "OPTIONALS MANDATORY".
    std::string flags(std::string_view path) const;
    /// optFlags by name: "EXTENSIONS".
    std::string optFlags(std::string_view path) const;
    /// The constraint in ASN.1 notation: "(1..10 | 20)".
    std::string constraint(std::string_view path) const;
    /// "", "OPTIONAL", "DEFAULT 5", "COMPONENTS OF".
    std::string presence(std::string_view path) const;
    /// Entries of a structure (of what a reference comes to) as they stand: "a b ... [[ c ]]".
    std::string components(std::string_view path) const;
    /// Named numbers, bits or enumeration items: "a(0) b(1) ...".
    std::string named(std::string_view path) const;
    /// Texts of the option comments: "$N=8 $SEG".
    std::string options(std::string_view path) const;
    /// A value assignment in ASN.1 notation: "{a 1, b TRUE}".
    std::string valueText(std::string_view name) const;

  private:
    std::shared_ptr<TempDir> dir_; // keeps the files for references to other modules
    std::shared_ptr<stx::Trees> trees_;
    const stx::Tree* tree_;
};

} // namespace orvo::test
