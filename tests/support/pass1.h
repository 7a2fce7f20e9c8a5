#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tree/orvorec.h"

namespace orvo {

/// Pass 1 of one module, read from a file as sources are, and the records it left behind in a form
/// that a test can spell out.
///
/// A type: its tags as [C5/i] (class U A C P, number or @name, mode i e ?), its code without TYP_,
/// what it refers to in parentheses (M2.T: reference 2; #1: formal parameter 1), actual parameters
/// in angles, named values and members in braces, its constraint after "::". Members: name, "?" for
/// OPTIONAL, "=" and the text of a default, the type; "...", "[[ ]]" and "COMPOF" as written.
/// Deferred texts: their tokens, a type parsed inside as "#" and the type in parentheses.
class Pass1Test : public testing::Test {
  protected:
    Pass1Test();
    ~Pass1Test() override;

    /// Parses a whole source.
    void parseSource(const std::string& text);
    /// Parses `M DEFINITIONS <header> ::= BEGIN`, the body on line 2, and END.
    void parseBody(const std::string& body, const std::string& header = "");
    /// The diagnostics, one a line: "2: text of the message" (of a syntax error without the
    /// context).
    [[nodiscard]] std::string errors() const;

    /// The assignment of a name.
    [[nodiscard]] TNodeNr head(std::string_view name) const;
    [[nodiscard]] VNodeNr valueHead(std::string_view name) const;
    [[nodiscard]] TNode typeAt(TNodeNr nr) const;
    [[nodiscard]] VNode valueAt(VNodeNr nr) const;
    [[nodiscard]] std::string describe(TNodeNr nr) const;
    [[nodiscard]] std::string describe(VNodeNr nr) const;
    /// Shape of the type that a body with the single assignment `T ::= <type>` defines.
    std::string typeOf(const std::string& type, const std::string& header = "");

    ModuleRec* module = nullptr;

  private:
    void reset();
};

} // namespace orvo
