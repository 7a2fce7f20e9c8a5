#pragma once

// The record store: numbered records per module and kind, and one current record per kind in a
// global buffer. readRec copies a stored record into the buffer of its kind, writeRec copies it
// back; a record just created lives only in the buffer until it is written (the pending record of
// its kind).

#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/orvorec_page.h"
#include "tree/orvoutil_mem.h"

namespace orvo {

// The current records. Code that reads another record of a kind while it needs the current one
// copies what it needs into locals or holds a KeepRec.
extern MNode mNode;
extern TNode tNode;
extern VNode vNode;
extern TagRec tagRec;
extern SubRec subRec;
extern TedRec tedRec;
extern SNode sNode;
extern STabRec sTabRec;
extern InstRec instRec;
extern DNode dNode;
extern ANode aNode;

struct RecPlace {
    ModuleRec* module = nullptr;
    uint32_t nr = 0;
};
struct RecState {
    RecPlace writePend[kindCount];       // of what the buffer holds and the store lacks; 0 = none
    uint32_t pendingKinds = 0;           // a bit for each kind that has one
    RecPlace recJustRead[kindCount];     // what the buffer holds
    ModuleRec* currTPtr[kindCount] = {}; // module of the record in the buffer
    Pool pages;                          // of all modules
};
extern RecState recState;

/// Storage of a record for writing, created as needed. Fatal 10 without a module, for a bad kind
/// and for a number outside 1..maxRecNr.
void* findWPos(ModuleRec* module, RecKind kind, uint32_t nr);
/// Storage of an existing record. Fatal 9 when there is none.
const void* findRPos(ModuleRec* module, RecKind kind, uint32_t nr);
/// Tells whether a record of the kind was ever written at that number.
bool recExists(const ModuleRec* module, RecKind kind, uint32_t nr);

/// The record just written, read or created is what the buffer holds.
inline void bufferHolds(RecKind kind, ModuleRec* module, uint32_t nr) {
    recState.recJustRead[kind] = {module, nr};
    recState.currTPtr[kind] = module;
}
/// A buffer that is left for another record holds what the store holds: a change that nobody wrote
/// would be lost.
#ifdef NDEBUG
inline void checkLeft(RecKind) {}
#else
void checkLeft(RecKind kind);
#endif
/// What the buffer of the kind holds shall be written there.
inline void setPending(RecKind kind, ModuleRec* module, uint32_t nr) {
    recState.writePend[kind] = {module, nr};
    recState.pendingKinds |= 1U << kind;
}
inline void setWritten(RecKind kind) {
    recState.writePend[kind].nr = 0;
    recState.pendingKinds &= ~(1U << kind);
}
inline bool isPending(RecKind kind) {
    return (recState.pendingKinds >> kind & 1) != 0;
}
/// The buffer of a kind.
template <RecKind K> auto& bufferRec() {
    if constexpr (K == KIND_MNODE)
        return mNode;
    else if constexpr (K == KIND_TNODE)
        return tNode;
    else if constexpr (K == KIND_VNODE)
        return vNode;
    else if constexpr (K == KIND_TAG)
        return tagRec;
    else if constexpr (K == KIND_SUB)
        return subRec;
    else if constexpr (K == KIND_TED)
        return tedRec;
    else if constexpr (K == KIND_SNODE)
        return sNode;
    else if constexpr (K == KIND_STAB)
        return sTabRec;
    else if constexpr (K == KIND_INST)
        return instRec;
    else if constexpr (K == KIND_DNODE)
        return dNode;
    else
        return aNode;
}

/// readRec and writeRec by kind number; the typed forms below are what callers use. A debug
/// build asserts that a buffer which is left for another record holds what the store holds.
void readRecKind(ModuleRec* module, RecKind kind, uint32_t nr);
void writeRecKind(ModuleRec* module, RecKind kind, uint32_t nr);
/// The next number of the current module.
uint32_t takeRecNr(RecKind kind);

/// Copies the buffer into the store; nothing of the kind is pending afterwards.
template <RecKind K> void writeRec(ModuleRec* module, RecNr<K> nr) {
    void* stored = slotForWriting(module, K, recSize[K], nr.nr);
    if (stored == nullptr) {
        writeRecKind(module, K, nr.nr);
        return;
    }
    std::memcpy(stored, &bufferRec<K>(), recSize[K]);
    bufferHolds(K, module, nr.nr);
    setWritten(K);
}
/// readRec of a record that is not in the buffer.
template <RecKind K> void fillBuffer(ModuleRec* module, RecNr<K> nr) {
    const void* stored = storedSlot(module, K, recSize[K], nr.nr);
    if (stored == nullptr) {
        readRecKind(module, K, nr.nr);
        return;
    }
    checkLeft(K);
    if (isPending(K)) writeRec(recState.writePend[K].module, RecNr<K>{recState.writePend[K].nr});
    bufferHolds(K, module, nr.nr);
    std::memcpy(&bufferRec<K>(), stored, recSize[K]);
}
/// Makes the record the buffer's contents. Reading the one that is there already, which half of the
/// calls ask for, copies nothing.
template <RecKind K> inline void readRec(ModuleRec* module, RecNr<K> nr) {
    const RecPlace& just = recState.recJustRead[K];
    if (just.nr != nr.nr || just.module != module || nr.nr == 0) fillBuffer(module, nr);
}
template <RecKind K> inline void readRec(RecRef<K> ref) {
    readRec(ref.module, ref.nr);
}
/// The record as it is now, where it is, without making it current; null when there is none. Valid
/// until the next record of the kind is read or made.
template <RecKind K> const auto* peekRec(ModuleRec* module, RecNr<K> nr) {
    using Rec = std::remove_reference_t<decltype(bufferRec<K>())>;
    const RecPlace& just = recState.recJustRead[K];
    if (just.module == module && just.nr == nr.nr && nr.nr != 0)
        return const_cast<const Rec*>(&bufferRec<K>());
    return reinterpret_cast<const Rec*>(storedSlot(module, K, recSize[K], nr.nr));
}
template <RecKind K> void writeRec(RecRef<K> ref) {
    writeRec(ref.module, ref.nr);
}

/// A new record at a number of the current module that was reserved for it.
template <RecKind K> void newRecAt(RecNr<K> nr) {
    checkLeft(K);
    if (isPending(K)) writeRec(recState.writePend[K].module, RecNr<K>{recState.writePend[K].nr});
    setPending(K, cMP, nr.nr);
    bufferHolds(K, cMP, nr.nr);
    std::memset(static_cast<void*>(&bufferRec<K>()), 0, recSize[K]);
}
/// A new record of the current module: writes the pending one of the kind, takes the next number,
/// makes it the pending and just-read record, clears the buffer. Memory or numbers that run out are
/// fatal 5/10.
template <RecKind K> RecNr<K> newRec() {
    const RecNr<K> nr{takeRecNr(K)};
    newRecAt(nr);
    return nr;
}
/// Number the next record of the kind will get in the module.
template <RecKind K> RecNr<K> nextRec(const ModuleRec* module) {
    return {module->nextRecNr[K]};
}

/// Makes the record the pending one of its kind: reads it unless it is pending already.
template <RecKind K> void makePending(ModuleRec* module, RecNr<K> nr) {
    readRec(module, nr);
    setPending(K, module, nr.nr);
}

/// A record of the kind is pending.
template <RecKind K> bool hasPending() {
    return isPending(K);
}

/// The record in the buffer, with its module; number 0 when the buffer holds none.
inline RecPlace currentPlace(RecKind kind) {
    return recState.recJustRead[kind];
}
template <RecKind K> RecRef<K> currentRec() {
    return {currentPlace(K).module, RecNr<K>{currentPlace(K).nr}};
}
/// The module of the current type, value, constraint record.
inline ModuleRec* typeModule() {
    return recState.currTPtr[KIND_TNODE];
}
inline ModuleRec* valueModule() {
    return recState.currTPtr[KIND_VNODE];
}
inline ModuleRec* subModule() {
    return recState.currTPtr[KIND_SUB];
}
/// Key of a record for an index over the records of all modules.
inline uint64_t keyOf(const ModuleRec* module, uint32_t nr) {
    return uint64_t{module->handle} << 32 | nr;
}
template <RecKind K> uint64_t keyOf(const RecRef<K>& ref) {
    return keyOf(ref.module, ref.nr.nr);
}
/// Stores a changed buffer at once, wherever it came from.
template <RecKind K> void writeCurrent() {
    writeRec(currentRec<K>());
}

/// Writes the pending record of a kind; with a negative kind of every kind in increasing order.
void flushRecs(int kind);
/// The buffers hold no record any more of the module that lies behind its counters: its number will
/// be handed out again.
void forgetBuffersBehind(const ModuleRec* module);
/// Makes `module` the current module; the pending records of the old one are written first.
void changeCMP(ModuleRec* module);
/// Points the per-kind cursors at the current module: nothing read, nothing pending (start of a
/// pass).
void initAnyPassVars();

/// Trial parses note the counters of a module before it is changed for the first time since they
/// began (solve/solve_cur). Whoever changes counters, module references or strings of a module
/// other than the current one calls touchModule first; changeCMP and putStri do.
struct TrialState {
    uint64_t current = 0; // number of the innermost trial; 0 = none
    void (*note)(ModuleRec*) = nullptr;
};
extern TrialState trialState;
inline void touchModule(ModuleRec* module) {
    if (module->touchedIn != trialState.current) trialState.note(module);
}

// ---- guards -------------------------------------------------------------------------------------

struct NodeContext {
    ModuleRec* module = nullptr;
    uint32_t nr = 0;
};
/// Notes the current record of a kind, and reads it back when there was one.
void saveNodeContext(RecKind kind, NodeContext& context);
void restoreNodeContext(RecKind kind, const NodeContext& context);

/// Reads the current record of a kind back when the scope ends.
template <RecKind K> class KeepRec {
  public:
    KeepRec() : kept_(currentRec<K>()) {}
    KeepRec(const KeepRec&) = delete;
    KeepRec& operator=(const KeepRec&) = delete;
    ~KeepRec() {
        if (kept_.module != nullptr && kept_.nr) readRec(kept_);
    }

  private:
    RecRef<K> kept_;
};

/// Makes a module current and puts the former one back when the scope ends (both through
/// changeCMP).
class CurrentModule {
  public:
    explicit CurrentModule(ModuleRec* module) : saved_(cMP) {
        if (module != saved_) changeCMP(module);
    }
    CurrentModule(const CurrentModule&) = delete;
    CurrentModule& operator=(const CurrentModule&) = delete;
    ~CurrentModule() {
        if (cMP != saved_) changeCMP(saved_);
    }

  private:
    ModuleRec* saved_;
};

// ---- walks --------------------------------------------------------------------------------------

/// What the current record of a kind names as the next in its list; none at the end, and where a
/// negative word marks the end of a group.
template <RecKind K> RecNr<K> nextInChain();
template <> inline TNodeNr nextInChain<KIND_TNODE>() {
    return {tNode.next};
}
template <> inline VNodeNr nextInChain<KIND_VNODE>() {
    return {vNode.next};
}
template <> inline TagNr nextInChain<KIND_TAG>() {
    return {tagRec.next};
}
template <> inline SubNr nextInChain<KIND_SUB>() {
    return {subRec.next};
}
template <> inline SNodeNr nextInChain<KIND_SNODE>() {
    return {sNode.next > 0 ? magnitude(sNode.next) : 0};
}

/// The records of a list in a module, for a range-for loop: each is current when the body begins,
/// and the body may read others. A list that is longer than the module has records is cut: a broken
/// one must not be endless.
template <RecKind K> class Chain {
  public:
    struct End {};
    class Iterator {
      public:
        Iterator(ModuleRec* module, RecNr<K> first)
            : module_(module), nr_(first), left_(module != nullptr ? nextRec<K>(module).nr : 1) {
            enter();
        }
        RecNr<K> operator*() const { return nr_; }
        Iterator& operator++() {
            nr_ = --left_ != 0 ? next_ : RecNr<K>{};
            enter();
            return *this;
        }
        bool operator!=(End) const { return bool(nr_); }

      private:
        void enter() {
            if (!nr_) return;
            readRec(module_, nr_);
            next_ = nextInChain<K>();
        }

        ModuleRec* module_;
        RecNr<K> nr_, next_;
        uint32_t left_;
    };

    Chain(ModuleRec* module, RecNr<K> first) : module_(module), first_(first) {}
    Iterator begin() const { return {module_, first_}; }
    End end() const { return {}; }

  private:
    ModuleRec* module_;
    RecNr<K> first_;
};
template <RecKind K> Chain<K> chain(ModuleRec* module, RecNr<K> first) {
    return {module, first};
}
template <RecKind K> Chain<K> chain(RecRef<K> first) {
    return {first.module, first.nr};
}

/// Walks a TNode chain of a module from `first` along `next`: reads each record and calls fn(); the
/// TNode that was in the buffer before is read back afterwards. A chain that is longer than the
/// module has records ends the walk.
template <typename Fn> void forEachTNodeByMod(ModuleRec* module, TNodeNr first, Fn&& fn) {
    const KeepRec<KIND_TNODE> keep;
    for ([[maybe_unused]] const TNodeNr nr : chain(module, first)) fn();
}
/// Calls fn for each component from `first` on, those of extension addition groups in place of the
/// group; a result of false ends the walk. The component is the current type record.
template <typename Fn> bool forEachComponent(ModuleRec* module, TNodeNr first, Fn&& fn) {
    for ([[maybe_unused]] const TNodeNr nr : chain(module, first)) {
        const bool goOn = tNode.typeCode == TYP_EXTADDGRP
                              ? forEachComponent(module, TNodeNr{tNode.ref}, fn)
                              : fn();
        if (!goOn) return false;
    }
    return true;
}

// ---- strings (tree/orvorec_stri) ----------------------------------------------------------------

/// String number of a text in the module's cache of 8-, 16- or 32-bit characters, added when new.
/// Texts end at their first NUL. Numbers run 1, 2, 3 ... per module and width. Without a module or
/// with a null data() fatal 10.
StriNr putStri(ModuleRec* module, std::string_view text);
Stri16Nr putStri16(ModuleRec* module, std::u16string_view text);
Stri32Nr putStri32(ModuleRec* module, std::u32string_view text);
/// The text of a number; a negated number is taken by its magnitude. NUL-terminated, and the same
/// address for equal texts of all modules; lives for the whole run. scratchStri gives the scratch
/// character. Fatal 9 when there is no such string.
std::string_view getStri(ModuleRec* module, int64_t nr);
inline std::string_view getStri(ModuleRec* module, StriNr nr) {
    return getStri(module, int64_t{nr.nr});
}
std::u16string_view getStri16(ModuleRec* module, int64_t nr);
std::u32string_view getStri32(ModuleRec* module, int64_t nr);
/// Number of a text that the module's 8-bit cache already holds, else none; adds nothing.
StriNr findStri(const ModuleRec* module, std::string_view text);
/// Forgets the strings of a module with numbers from the given ones on and puts its counters back
/// there (a trial parse taken back).
void dropStriFrom(ModuleRec* module, uint32_t next8, uint32_t next16, uint32_t next32);

/// The scratch characters that scratchStri designates; the second unit is always 0.
extern char tempChar[4];
extern char16_t tempChar16[4];
extern char32_t tempChar32[4];

/// Forgets every module, record and string of the run (tests, fuzzing).
void resetStore();

} // namespace orvo
