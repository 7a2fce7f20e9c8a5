// Invariants: the strings of a module and width are numbered from 1 to nextRecNr - 1 without gaps,
// and each stands in the chain of its bucket, the highest number first, so that the last strings
// are at the heads and easily taken back. All slots and the unique sets point to the same shared
// copies, which live in blocks that are only freed with the whole store.

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "diag/orvoerr_fatal.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"
#include "tree/orvorec_page.h"
#include "tree/orvoutil_mem.h"
#include "util/aa.h"

namespace orvo {

char tempChar[4] = {};
char16_t tempChar16[4] = {};
char32_t tempChar32[4] = {};

/// Buckets, a power of two: the string with the highest number of each. By kind - KIND_STRI8.
struct StriCacheRec {
    std::vector<uint32_t> heads[3];
};

namespace {

/// Shared copies: the low half of their hash, then the characters with a terminator. The key and
/// value of an entry are the address of the characters.
struct StriState {
    AaTable hashtable, hashtable16, hashtable32;
    std::vector<EBlock<std::byte>> blocks;
    size_t blockLeft = 0;
    // texts with a terminator, for the look-up
    std::string text8;
    std::u16string text16;
    std::u32string text32;
};
StriState striState;

constexpr size_t blockSize = 65536;
constexpr size_t fewestBuckets = 16;

uint32_t widthFlags(RecKind kind) {
    constexpr uint32_t widths[] = {0, AA_CHARWIDTH16, AA_CHARWIDTH32};
    return AA_KEY_REF | AA_VAL_REF | AA_WIDE_HASH | widths[kind - KIND_STRI8];
}

/// The set of shared copies of a width, made on first use.
AaContext* uniqueSet(RecKind kind) {
    AaTable* const tables[] = {&striState.hashtable, &striState.hashtable16,
                               &striState.hashtable32};
    AaTable& table = *tables[kind - KIND_STRI8];
    if (!table) table.reset(aaCreateContext(widthFlags(kind), 0));
    if (!table) fatalError(Fatal::NoSpace);
    return table.get();
}

/// Zero-filled memory for one copy, aligned for any character.
std::byte* allocateCopy(size_t size) {
    StriState& state = striState;
    size = (size + alignof(char32_t) - 1) / alignof(char32_t) * alignof(char32_t);
    if (size > blockSize / 4) { // long ones alone, in front of the block that is being filled
        EBlock<std::byte> own(static_cast<std::byte*>(ezalloc(size)));
        std::byte* copy = own.get();
        state.blocks.insert(state.blocks.empty() ? state.blocks.end() : state.blocks.end() - 1,
                            std::move(own));
        return copy;
    }
    if (size > state.blockLeft) {
        state.blocks.emplace_back(static_cast<std::byte*>(ezalloc(blockSize)));
        state.blockLeft = blockSize;
    }
    std::byte* copy = state.blocks.back().get() + (blockSize - state.blockLeft);
    state.blockLeft -= size;
    return copy;
}

/// The shared copy of a NUL-terminated text of `length` characters.
const void* allocateUniqStri(const void* text, size_t length, uint64_t hash, RecKind kind) {
    AaContext* unique = uniqueSet(kind);
    if (const AaEntry* entry = aaSearchHash(unique, text, hash); entry != nullptr)
        return entry->key;
    const auto halfHash = static_cast<uint32_t>(hash);
    std::byte* copy = allocateCopy(sizeof halfHash + (length + 1) * recSize[kind]);
    std::memcpy(copy, &halfHash, sizeof halfHash);
    copy += sizeof halfHash;
    std::memcpy(copy, text, length * recSize[kind]);
    if (!aaInsert(unique, copy, aaPointer(copy), hash)) fatalError(Fatal::NoSpace);
    return copy;
}

// ---- the index of a module ----------------------------------------------------------------------

std::vector<uint32_t>& headsOf(ModuleRec* module, RecKind kind) {
    if (!module->striCache) module->striCache = makeOwned<StriCacheRec>();
    return module->striCache->heads[kind - KIND_STRI8];
}

StriSlot& slotAt(ModuleRec* module, RecKind kind, uint32_t nr) {
    return *static_cast<StriSlot*>(pageForWriting(module, kind, nr));
}

uint32_t hashOfCopy(const void* copy) {
    return static_cast<const uint32_t*>(copy)[-1];
}

/// Number of the text with that hash; 0 = none.
uint32_t findNr(const ModuleRec* module, RecKind kind, const void* text, size_t length,
                uint64_t hash) {
    if (!module->striCache) return 0;
    const std::vector<uint32_t>& heads = module->striCache->heads[kind - KIND_STRI8];
    if (heads.empty()) return 0;
    uint32_t nr = heads[hash & (heads.size() - 1)];
    while (nr != 0) {
        const auto& slot = *static_cast<const StriSlot*>(pageForReading(module, kind, nr));
        if (slot.length == length && std::memcmp(slot.text, text, length * recSize[kind]) == 0)
            break;
        nr = slot.next;
    }
    return nr;
}

void enterNr(std::vector<uint32_t>& heads, StriSlot& slot, uint32_t nr) {
    uint32_t& head = heads[hashOfCopy(slot.text) & (heads.size() - 1)];
    slot.next = std::exchange(head, nr);
}

/// Makes room for the string `next`: there are never fewer buckets than strings.
void widenHeads(ModuleRec* module, RecKind kind, uint32_t next) {
    std::vector<uint32_t>& heads = headsOf(module, kind);
    if (next <= heads.size()) return;
    heads.assign(std::max(heads.size() * 2, fewestBuckets), 0);
    for (uint32_t nr = 1; nr < next; ++nr) enterNr(heads, slotAt(module, kind, nr), nr);
}

/// `text` is NUL-terminated and of `length` characters.
uint32_t putStriInternal(ModuleRec* module, const void* text, size_t length, RecKind kind) {
    if (length > std::numeric_limits<uint32_t>::max()) fatalError(Fatal::WriteRecord);
    const uint64_t hash = aaCalcHash(uniqueSet(kind), text);
    if (const uint32_t known = findNr(module, kind, text, length, hash); known != 0) return known;
    const uint32_t nr = module->nextRecNr[kind];
    widenHeads(module, kind, nr);
    StriSlot& slot = slotAt(module, kind, nr);
    slot.text = allocateUniqStri(text, length, hash, kind);
    slot.length = static_cast<uint32_t>(length);
    enterNr(headsOf(module, kind), slot, nr);
    module->nextRecNr[kind] = nr + 1;
    recState.currTPtr[kind] = module;
    return nr;
}

/// Puts a text up to its first NUL; `scratch` gives it a terminator.
template <typename Char> uint32_t putText(ModuleRec* module, std::basic_string_view<Char> text,
                                          std::basic_string<Char>& scratch, RecKind kind) {
    if (module == nullptr || text.data() == nullptr) fatalError(Fatal::WriteRecord);
    touchModule(module);
    scratch.assign(text.substr(0, text.find(Char{})));
    return putStriInternal(module, scratch.c_str(), scratch.size(), kind);
}

template <typename Char> std::basic_string_view<Char> getText(ModuleRec* module, int64_t nr,
                                                              const Char* scratch, RecKind kind) {
    if (nr < 0) nr = -nr;
    if (nr == scratchStri) return {scratch, 1};
    const void* slot =
        nr <= maxRecNr ? pageForReading(module, kind, static_cast<uint32_t>(nr)) : nullptr;
    if (slot == nullptr) fatalError(Fatal::ReadRecord);
    const auto& stri = *static_cast<const StriSlot*>(slot);
    return {static_cast<const Char*>(stri.text), stri.length};
}

/// Strings are put without gaps, so the first slot that is empty ends them.
void dropKindFrom(ModuleRec* module, RecKind kind, uint32_t next) {
    if (next == 0 || !module->striCache) return;
    uint32_t end = next;
    while (pageForReading(module, kind, end) != nullptr) ++end;
    std::vector<uint32_t>& heads = headsOf(module, kind);
    while (end > next) {
        const StriSlot& slot = slotAt(module, kind, --end);
        uint32_t& head = heads[hashOfCopy(slot.text) & (heads.size() - 1)];
        assert(head == end);
        head = slot.next;
        erasePage(module, kind, end);
    }
    module->nextRecNr[kind] = std::min(module->nextRecNr[kind], next);
}

} // namespace

StriNr putStri(ModuleRec* module, std::string_view text) {
    return {putText(module, text, striState.text8, KIND_STRI8)};
}
Stri16Nr putStri16(ModuleRec* module, std::u16string_view text) {
    return {putText(module, text, striState.text16, KIND_STRI16)};
}
Stri32Nr putStri32(ModuleRec* module, std::u32string_view text) {
    return {putText(module, text, striState.text32, KIND_STRI32)};
}

std::string_view getStri(ModuleRec* module, int64_t nr) {
    return getText(module, nr, tempChar, KIND_STRI8);
}
std::u16string_view getStri16(ModuleRec* module, int64_t nr) {
    return getText(module, nr, tempChar16, KIND_STRI16);
}
std::u32string_view getStri32(ModuleRec* module, int64_t nr) {
    return getText(module, nr, tempChar32, KIND_STRI32);
}

StriNr findStri(const ModuleRec* module, std::string_view text) {
    if (module == nullptr) return {};
    std::string& scratch = striState.text8;
    scratch.assign(text.substr(0, text.find('\0')));
    const uint64_t hash = aaCalcHash(uniqueSet(KIND_STRI8), scratch.c_str());
    return {findNr(module, KIND_STRI8, scratch.data(), scratch.size(), hash)};
}

void dropStriFrom(ModuleRec* module, uint32_t next8, uint32_t next16, uint32_t next32) {
    dropKindFrom(module, KIND_STRI8, next8);
    dropKindFrom(module, KIND_STRI16, next16);
    dropKindFrom(module, KIND_STRI32, next32);
}

void resetStrings() {
    striState = {};
    std::fill(std::begin(tempChar), std::end(tempChar), '\0');
    std::fill(std::begin(tempChar16), std::end(tempChar16), u'\0');
    std::fill(std::begin(tempChar32), std::end(tempChar32), U'\0');
}

} // namespace orvo
