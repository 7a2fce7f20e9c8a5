#pragma once

// The dumper: a syntax tree file as text, as JSON, as a summary, or one definition of it as a tree.

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "stx/stxconstraint.h"
#include "stx/stxreader.h"

namespace stxdump {

/// Where output goes: to a stream in pieces, or, without one, into `text` as a whole.
struct Sink {
    std::FILE* stream = nullptr;
    std::string text;
    bool failed = false;

    void add(std::string_view piece) {
        text += piece;
        if (stream != nullptr && text.size() >= 65536) flush();
    }
    void flush();
};

/// The program: 0 done, 1 a file is damaged, a name unknown or the output cannot be written, 2
/// usage.
int run(const std::vector<std::string>& arguments, Sink& out, Sink& err);

/// Every record, a field per line; `all`: also the fields that say "none".
void dumpText(const stx::Tree& tree, bool all, Sink& out);
/// Every record with every field as one JSON document, valid UTF-8 whatever the strings hold.
void dumpJson(const stx::Tree& tree, Sink& out);
/// Counts, modules, types with tags and bounds, values.
void dumpSummary(stx::Trees& trees, const stx::Tree& tree, Sink& out);
/// A type or value assignment with all that it is made of. False: a file that belongs to it is
/// damaged or of another run; `error` names it.
[[nodiscard]] bool dumpType(stx::Trees& trees, stx::TypeRef type, Sink& out, std::string& error);
void dumpValue(stx::Trees& trees, stx::ValueRef value, Sink& out);

// ---- shared by the forms ------------------------------------------------------------------------

/// Names and texts are shown as far as this wherever a record mentions them: one that a damaged
/// file mentions everywhere would make gigabytes. Strings themselves are shown whole.
inline constexpr size_t longestMention = 4000;
inline std::string_view cut(std::string_view text) {
    return text.substr(0, longestMention);
}
/// Name of a record: of a type, value or module; "" without one.
std::string_view recordName(const stx::Tree& tree, stx::Kind kind, uint32_t nr);
/// "version 2.13, 28.07.2026 10:11.12"
std::string stampText(const stx::TimeStamp& stamp);
/// What a reference leads to: "N.U = SEQUENCE"; of another type the type.
std::string kindText(stx::Trees& trees, stx::TypeRef type);
/// The type is an object class in the end, so that tags and bounds mean nothing.
bool isClass(stx::Trees& trees, stx::TypeRef type);
std::string tagsText(const stx::FinalTags& tags);

} // namespace stxdump
