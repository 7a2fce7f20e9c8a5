#include "meta_try.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>

#include "meta_dump.h"
#include "meta_run.h"

namespace orvo::meta {

namespace {

using Bytes = std::vector<char>;

/// Definitions that make records of all kinds, and of all sorts of the same kind.
const Project everything = {
    "IMPLICIT",
    {{"num", "num INTEGER ::= 3"},
     {"T", "T ::= [APPLICATION 1] SEQUENCE --$FRAME-- { a [num] U OPTIONAL, b [1] INTEGER { x(1) } "
           "(1..5 | 9) DEFAULT 9, ..., [[ c [2] BOOLEAN ]] }"},
     {"U",
      "U ::= CHOICE { d ENUMERATED { e, f(4) }, g IA5String (FROM (\"a\"..\"z\"))(SIZE (1..9)) "
      "--$SIZE-LIMIT=8-- }"},
     {"C", "C ::= CLASS { &id INTEGER UNIQUE, &T, &o OBJECT IDENTIFIER OPTIONAL } "
           "WITH SYNTAX { &id TAKES &T [AT &o] }"},
     {"S", "S C ::= { { 1 TAKES T AT { 1 2 num } } | { 2 TAKES REAL }, ... }"},
     {"V", "V ::= SEQUENCE { i C.&id ({S}), v C.&T ({S}{@i}), k [5] g < U, l [6] SEQUENCE OF T }"},
     {"P", "P{T} ::= SET { t [0] T, u [1] UniversalString DEFAULT \"ab\" }", true},
     {"Q", "Q ::= P{BMPString}"},
     {"w", "w BMPString ::= \"xy\" --$VNAME=one--"},
     {"r", "r REAL ::= { mantissa 5, base 10, exponent 2 }"},
     {"A", "A ::= SEQUENCE { i INTEGER, a ANY DEFINED BY i }"},
     {"z", "z A ::= { i 1, a IA5String : \"text\" }"}}};

/// What the dump leaves out on purpose: lines, the ends of option lists, spare bytes of options,
/// and of module nodes what finds things in the file and tells one run from another.
bool isLeftOut(stx::Kind kind, std::string_view field) {
    if (kind == stx::MNODE) return field != "automaticTags" && field != "modWords";
    return field == "line" || field == "tedLast" || (kind == stx::TED && field == "unused1");
}

bool writeFile(const std::string& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bool(file);
}

/// The dump of a tree; one that a reader refuses has no lines but the reason.
Dump dumpOf(const std::string& path) {
    stx::Trees trees;
    Dump dump;
    std::string error;
    if (!addDump(dump, trees, path, error)) dump = {{"(refused)", {error}}};
    return dump;
}

/// Some change of the field in some record of its kind is seen.
bool isSeen(const stx::Tree& tree, stx::Kind kind, const stx::Field& field, const Bytes& original,
            const Dump& expected, const std::string& path) {
    const uint8_t* const start = tree.bytes(stx::MNODE, 1).data();
    for (uint32_t nr = 1; nr <= tree.count(kind); ++nr) {
        const auto at = static_cast<size_t>(tree.bytes(kind, nr).data() - start) + field.offset;
        Bytes changed = original;
        changed[at] = static_cast<char>(changed[at] ^ 1);
        if (writeFile(path, changed) && dumpOf(path) != expected) return true;
    }
    return false;
}

} // namespace

bool tryComparison() {
    const TreeFolder folder(everything);
    const std::string path = folder.path + "/ma.stx";
    std::ifstream file(path, std::ios::binary);
    const Bytes original{std::istreambuf_iterator<char>(file), {}};
    stx::Tree tree;
    std::string error;
    if (!tree.open(path, error)) {
        std::printf("no tree to try: %s\n", error.c_str());
        return false;
    }
    const Dump expected = dumpOf(path);
    bool ok = true;
    for (int kind = 0; kind < stx::STRI8; ++kind) {
        const auto sort = static_cast<stx::Kind>(kind);
        if (tree.count(sort) == 0) {
            std::printf("no %s to try\n", stx::kindNames[kind]);
            ok = false;
        }
        for (const stx::Field& field : stx::fieldsOf(sort)) {
            if (isLeftOut(sort, field.name) || isSeen(tree, sort, field, original, expected, path))
                continue;
            std::printf("%s.%s: a change is not seen\n", stx::kindNames[kind], field.name);
            ok = false;
        }
    }
    for (const stx::Kind kind : {stx::STRI8, stx::STRI16, stx::STRI32}) {
        bool seen = false;
        for (uint32_t nr = 1; nr <= tree.count(kind) && !seen; ++nr) {
            if (tree.bytes(kind, nr).empty()) continue;
            Bytes changed = original;
            const auto at =
                static_cast<size_t>(tree.bytes(kind, nr).data() - tree.bytes(stx::MNODE, 1).data());
            changed[at] = static_cast<char>(changed[at] ^ 1);
            seen = writeFile(path, changed) && dumpOf(path) != expected;
        }
        if (!seen) std::printf("%s: a change is not seen\n", stx::kindNames[kind]);
        ok &= seen;
    }
    return ok;
}

} // namespace orvo::meta
