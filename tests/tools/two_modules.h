#pragma once

// Two modules as the compiler would write them, made by hand.

#include <algorithm>
#include <memory>
#include <utility>

#include "support/run.h"
#include "support/tree_bytes.h"

namespace orvo::test {

inline constexpr TimeStamp stamp = {213, 213, 20260728, 101112};

/// N: U ::= [5] IMPLICIT SEQUENCE { x BOOLEAN, ..., y INTEGER (1..10) }, with automatic tags.
inline TreeBytes moduleN() {
    TreeBytes file;
    MNode& self = file.modules[0];
    self.modTimeStamp = stamp;
    self.modName = file.text("N");
    self.firstTypeAss = 1;
    TNode& u = file.type("U", TYP_SEQ, TCS_HEADER);
    u.ref = 2, u.tags = 1, u.vfKind = 24, u.sizeOpt = 6;
    u.checkFlags = CF_AUTOMATIC_TAGS | CF_EXTENSIBLE | CF_MANDATORY;
    file.type("x", TYP_BOOLEAN).next = 3;
    file.type("", TYP_EXTENSION_MARKER).next = 4;
    TNode& y = file.type("y", TYP_INTEGER);
    y.constraint = 1;
    y.lowerBound = i64of(1), y.upperBound = i64of(10);
    file.tags = {{TAG_CONTEXT, TAGMODE_IMPLICIT, 5, 0}};
    file.subs = {{0, SUB_RANGE, SUBF_LOWER | SUBF_UPPER, {}, 1, 4, 1, 0, 0, 1, 2}};
    file.value("", TYP_INTEGER).val.number = i64of(1);
    file.value("", TYP_INTEGER).val.number = i64of(10);
    return file;
}

/// M: T ::= SEQUENCE { u [0] N.U OPTIONAL, l SEQUENCE OF N.U }
inline TreeBytes moduleM() {
    TreeBytes file;
    file.modules.resize(2);
    MNode& self = file.modules[0];
    self.modTimeStamp = stamp;
    self.modName = file.text("M");
    self.firstTypeAss = 1;
    MNode& other = file.modules[1];
    other.modTimeStamp = stamp;
    other.modName = file.text("N");
    other.stxName = file.text("n");
    file.type("T", TYP_SEQ, TCS_HEADER).ref = 2;
    TNode& u = file.type("u", TYP_SYNONYM, TCS_OPTIONAL);
    u.refMod = 2, u.ref = 1, u.next = 3, u.tags = 1;
    file.type("l", TYP_SEQOF).ref = 4;
    TNode& element = file.type("", TYP_SYNONYM, TCS_MULTIPLE);
    element.refMod = 2, element.ref = 1;
    file.tags = {{TAG_CONTEXT, TAGMODE_EXPLICIT, 0, 0}};
    return file;
}

/// Both files as of one run: what M says of N is so.
inline RunResult runWith(TreeBytes m, TreeBytes n) {
    n.bytes(); // settles its counts
    if (m.modules.size() > 1) {
        const MNode& self = n.modules[0];
        MNode& other = m.modules[1];
        std::ranges::copy(self.recCount, other.recCount);
        other.firstTypeAss = self.firstTypeAss, other.firstValAss = self.firstValAss;
    }
    RunResult run;
    run.dir = std::make_shared<TempDir>();
    for (auto& [name, file] : {std::pair("m.stx", &m), std::pair("n.stx", &n)}) {
        const std::vector<uint8_t> bytes = file->bytes();
        run.dir->write({name, {bytes.begin(), bytes.end()}});
    }
    return run;
}

} // namespace orvo::test
