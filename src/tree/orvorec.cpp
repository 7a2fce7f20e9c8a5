// Invariants: of every kind at most one record is pending, and it is the one in the buffer; what
// recJustRead names is what the buffer holds, perhaps changed since. A record is "written" from the
// first time its storage was asked for writing. Records never move.

#include "tree/orvorec.h"

#include <bit>
#include <cassert>
#include <cstring>

#include "diag/orvoerr_fatal.h"
#include "tree/orvorec_page.h"

namespace orvo {

MNode mNode;
TNode tNode;
VNode vNode;
TagRec tagRec;
SubRec subRec;
TedRec tedRec;
SNode sNode;
STabRec sTabRec;
InstRec instRec;
DNode dNode;
ANode aNode;

RecState recState;
TrialState trialState;

namespace {

/// The global buffer of a kind; null for the string kinds, which have none.
void* bufferOf(RecKind kind) {
    switch (kind) {
    case KIND_MNODE: return &mNode;
    case KIND_TNODE: return &tNode;
    case KIND_VNODE: return &vNode;
    case KIND_TAG: return &tagRec;
    case KIND_SUB: return &subRec;
    case KIND_TED: return &tedRec;
    case KIND_SNODE: return &sNode;
    case KIND_STAB: return &sTabRec;
    case KIND_INST: return &instRec;
    case KIND_DNODE: return &dNode;
    case KIND_ANODE: return &aNode;
    case KIND_STRI8:
    case KIND_STRI16:
    case KIND_STRI32: break;
    }
    return nullptr;
}

bool isStriKind(RecKind kind) {
    return kind >= KIND_STRI8 && kind <= KIND_STRI32;
}
size_t slotSize(RecKind kind) {
    return isStriKind(kind) ? sizeof(StriSlot) : recSize[kind];
}

RecPage& pageAt(ModuleRec* module, RecKind kind, uint32_t page) {
    auto& pages = module->recDir[kind];
    if (page >= pages.size()) pages.resize(page + size_t{1});
    RecPage*& entry = pages[page];
    if (entry == nullptr)
        entry = new (recState.pages.take(sizeof(RecPage) + pageRecs * slotSize(kind))) RecPage;
    return *entry;
}

} // namespace

#ifndef NDEBUG
void checkLeft(RecKind kind) {
    const RecPlace& left = recState.recJustRead[kind];
    if (isPending(kind)) return; // it is written now
    const void* stored = pageForReading(left.module, kind, left.nr);
    assert(stored == nullptr || std::memcmp(stored, bufferOf(kind), recSize[kind]) == 0);
}
#endif

void* pageForWriting(ModuleRec* module, RecKind kind, uint32_t nr) {
    if (module == nullptr || nr == 0 || nr > maxRecNr || kind >= kindCount)
        fatalError(Fatal::WriteRecord);
    RecPage& page = pageAt(module, kind, (nr - 1) / pageRecs);
    const uint32_t slot = (nr - 1) % pageRecs;
    page.written.set(slot);
    return page.records() + slot * slotSize(kind);
}

void* pageForReading(const ModuleRec* module, RecKind kind, uint32_t nr) {
    return kind < kindCount ? storedSlot(module, kind, slotSize(kind), nr) : nullptr;
}

void erasePage(ModuleRec* module, RecKind kind, uint32_t nr) {
    void* slot = pageForReading(module, kind, nr);
    if (slot == nullptr) return;
    std::memset(slot, 0, slotSize(kind));
    module->recDir[kind][(nr - 1) / pageRecs]->written.reset((nr - 1) % pageRecs);
}

void* findWPos(ModuleRec* module, RecKind kind, uint32_t nr) {
    if (isStriKind(kind)) fatalError(Fatal::WriteRecord); // strings enter through putStri
    return pageForWriting(module, kind, nr);
}

const void* findRPos(ModuleRec* module, RecKind kind, uint32_t nr) {
    const void* slot = pageForReading(module, kind, nr);
    if (slot == nullptr) fatalError(Fatal::ReadRecord);
    return isStriKind(kind) ? textOf(static_cast<const StriSlot*>(slot)->copy) : slot;
}

bool recExists(const ModuleRec* module, RecKind kind, uint32_t nr) {
    return pageForReading(module, kind, nr) != nullptr;
}

void readRecKind(ModuleRec* module, RecKind kind, uint32_t nr) {
    const RecPlace& just = recState.recJustRead[kind];
    if (nr != 0 && just.module == module && just.nr == nr) return;
    void* buffer = bufferOf(kind);
    if (buffer == nullptr) fatalError(Fatal::ReadRecord);
    assert(!run.checking || !module->out); // what is out may be unsolved
    const void* stored = findRPos(module, kind, nr);
    checkLeft(kind);
    flushRecs(kind);
    bufferHolds(kind, module, nr);
    std::memcpy(buffer, stored, recSize[kind]);
}

void writeRecKind(ModuleRec* module, RecKind kind, uint32_t nr) {
    const void* buffer = bufferOf(kind);
    if (buffer == nullptr) fatalError(Fatal::WriteRecord);
    void* stored = slotForWriting(module, kind, recSize[kind], nr);
    std::memcpy(stored != nullptr ? stored : findWPos(module, kind, nr), buffer, recSize[kind]);
    bufferHolds(kind, module, nr);
    setWritten(kind);
}

uint32_t takeRecNr(RecKind kind) {
    const uint32_t nr = cMP == nullptr ? 0 : cMP->nextRecNr[kind];
    if (nr == 0 || nr > maxRecNr) fatalError(Fatal::WriteRecord);
    cMP->nextRecNr[kind] = nr + 1;
    return nr;
}

void forgetBuffersBehind(const ModuleRec* module) {
    for (int kind = 0; kind < kindCount; ++kind) {
        RecPlace& just = recState.recJustRead[kind];
        if (just.module == module && just.nr >= module->nextRecNr[kind]) just.nr = 0;
    }
}

void flushRecs(int kind) {
    uint32_t kinds = recState.pendingKinds;
    if (kind >= 0) kinds &= 1U << kind;
    for (; kinds != 0; kinds &= kinds - 1) {
        const auto next = static_cast<RecKind>(std::countr_zero(kinds));
        const RecPlace pending = recState.writePend[next];
        writeRecKind(pending.module, next, pending.nr);
    }
}

void changeCMP(ModuleRec* module) {
    flushRecs(-1);
    for (RecPlace& pending : recState.writePend) pending.module = module;
    cMP = module;
    if (module != nullptr) touchModule(module);
}

void initAnyPassVars() {
    for (int kind = 0; kind < kindCount; ++kind) {
        recState.writePend[kind] = {cMP, 0};
        recState.pendingKinds = 0;
        recState.recJustRead[kind] = {cMP, 0};
        recState.currTPtr[kind] = cMP;
    }
}

void saveNodeContext(RecKind kind, NodeContext& context) {
    const RecPlace& just = recState.recJustRead[kind];
    context = {just.module, just.nr};
}

void restoreNodeContext(RecKind kind, const NodeContext& context) {
    if (context.module != nullptr && context.nr != 0) readRecKind(context.module, kind, context.nr);
}

void resetStore() {
    cMP = nullptr;
    recState = {};
    trialState = {};
    for (int kind = 0; kind < kindCount; ++kind) {
        void* buffer = bufferOf(static_cast<RecKind>(kind));
        if (buffer != nullptr) std::memset(buffer, 0, recSize[kind]);
    }
    run = Run{};
    resetStrings();
}

} // namespace orvo
