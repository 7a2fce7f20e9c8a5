// Invariants: a module's cache of a width and its string slots say the same, with numbers from 1 to
// nextRecNr - 1; all slots, the caches' keys and the unique sets point to the same shared copies,
// which live in blocks that are only freed with the whole store.

#include "tree/orvorec_stri.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "diag/orvoerr_fatal.h"
#include "tree/orvorec.h"
#include "tree/orvorec_page.h"
#include "tree/orvoutil_mem.h"

namespace orvo {

char tempChar[4] = {};
char16_t tempChar16[4] = {};
char32_t tempChar32[4] = {};

struct StriCacheRec {
    AaTable tables[3]; // by kind - KIND_STRI8
};

namespace {

/// Shared copies of one width: the length, then the characters. The key and value of an entry are
/// the address of the characters.
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

bool isStriKind(RecKind kind) {
    return kind >= KIND_STRI8 && kind <= KIND_STRI32;
}

uint32_t widthFlags(RecKind kind) {
    constexpr uint32_t widths[] = {0, AA_CHARWIDTH16, AA_CHARWIDTH32};
    return AA_KEY_REF | AA_VAL_REF | AA_WIDE_HASH | widths[kind - KIND_STRI8];
}

AaContext* makeTable(AaTable& table, RecKind kind) {
    if (!table) table.reset(aaCreateContext(widthFlags(kind), 0));
    if (!table) fatalError(Fatal::NoSpace);
    return table.get();
}

void insertChecked(AaContext* table, const void* key, AaValue value, uint64_t hash) {
    if (!aaInsert(table, key, value, hash)) fatalError(Fatal::NoSpace);
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

/// `text` is NUL-terminated and of `length` characters.
uint32_t putStriInternal(ModuleRec* module, const void* text, size_t length, RecKind kind) {
    AaContext* cache = setupStriCaches(module, kind);
    const uint64_t hash = aaCalcHash(cache, text); // that of the set of unique copies, too
    if (const AaEntry* entry = aaSearchHash(cache, text, hash); entry != nullptr)
        return static_cast<uint32_t>(entry->value);
    const void* copy = allocateUniqStri(text, length, hash, kind);
    const uint32_t nr = module->nextRecNr[kind];
    *static_cast<StriSlot*>(pageForWriting(module, kind, nr)) = {copy, length};
    module->nextRecNr[kind] = nr + 1;
    recState.currTPtr[kind] = module;
    insertChecked(cache, copy, nr, hash);
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
    if (next == 0 || !module->striCache || !module->striCache->tables[kind - KIND_STRI8]) return;
    AaContext* cache = module->striCache->tables[kind - KIND_STRI8].get();
    for (uint32_t nr = next;; ++nr) {
        const void* slot = pageForReading(module, kind, nr);
        if (slot == nullptr) break;
        aaDelete(cache, static_cast<const StriSlot*>(slot)->text);
        erasePage(module, kind, nr);
    }
    module->nextRecNr[kind] = std::min(module->nextRecNr[kind], next);
}

} // namespace

AaContext* setupStriCaches(ModuleRec* module, RecKind kind) {
    if (!isStriKind(kind)) fatalError(Fatal::Internal);
    if (!module->striCache) module->striCache = makeOwned<StriCacheRec>();
    return makeTable(module->striCache->tables[kind - KIND_STRI8], kind);
}

const void* allocateUniqStri(const void* text, size_t length, uint64_t hash, RecKind kind) {
    if (!isStriKind(kind)) fatalError(Fatal::Internal);
    AaTable* const tables[] = {&striState.hashtable, &striState.hashtable16,
                               &striState.hashtable32};
    AaContext* unique = makeTable(*tables[kind - KIND_STRI8], kind);
    if (const AaEntry* entry = aaSearchHash(unique, text, hash); entry != nullptr)
        return entry->key;
    std::byte* copy = allocateCopy((length + 1) * recSize[kind]);
    std::memcpy(copy, text, length * recSize[kind]);
    insertChecked(unique, copy, aaPointer(copy), hash);
    return copy;
}

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
    if (module == nullptr || !module->striCache || !module->striCache->tables[0]) return {};
    striState.text8.assign(text.substr(0, text.find('\0')));
    return {
        static_cast<uint32_t>(aaGet(module->striCache->tables[0].get(), striState.text8.c_str()))};
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
