// Invariants: the strings of a module and width are numbered from 1 to nextRecNr - 1 without gaps.
// Equal texts of all modules share one copy, which a hash table finds and the slots point to. The
// copy knows its number in one module, its first; every other module that has it finds the number
// in an index of its own. So a run over one module looks each text up once.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>

#include "diag/orvoerr_fatal.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"
#include "tree/orvorec_page.h"
#include "tree/orvoutil_mem.h"
#include "util/flat.h"

namespace orvo {

char tempChar[4] = {};
char16_t tempChar16[4] = {};
char32_t tempChar32[4] = {};

/// The characters lie behind it, with a terminator.
struct StriCopy {
    const ModuleRec* owner; // the module whose number it knows
    uint32_t nr;            // there; 0 = taken back
    uint32_t hash;
    size_t size; // bytes without the terminator

    [[nodiscard]] const void* text() const { return this + 1; }
    [[nodiscard]] std::string_view bytes() const {
        return {static_cast<const char*>(text()), size};
    }
};

/// Numbers of the strings whose copies another module owns. By kind - KIND_STRI8.
struct StriCacheRec {
    FlatMap<const StriCopy*, uint32_t> numbers[3];
};

namespace {

struct CopyHash {
    size_t operator()(const StriCopy* copy) const { return copy->hash; }
};
struct SameText {
    using is_transparent = void;
    bool operator()(const StriCopy* a, const StriCopy* b) const { return a == b; }
    bool operator()(std::string_view text, const StriCopy* copy) const {
        return text == copy->bytes();
    }
    bool operator()(const StriCopy* copy, std::string_view text) const {
        return text == copy->bytes();
    }
};
using CopySet = tsl::robin_set<StriCopy*, CopyHash, SameText, std::allocator<StriCopy*>, true>;

struct StriState {
    CopySet copies[3]; // by kind - KIND_STRI8
    Pool pool;
};
StriState striState;

int widthOf(RecKind kind) {
    return kind - KIND_STRI8;
}

uint32_t hashOf(std::string_view bytes) {
    const size_t hash = std::hash<std::string_view>()(bytes);
    return static_cast<uint32_t>(uint64_t{hash} >> 32 ^ hash);
}

StriCopy* makeCopy(std::string_view bytes, uint32_t hash, RecKind kind) {
    void* place = striState.pool.take(sizeof(StriCopy) + bytes.size() + recSize[kind]);
    auto* copy = new (place) StriCopy{nullptr, 0, hash, bytes.size()};
    std::memcpy(copy + 1, bytes.data(), bytes.size());
    striState.copies[widthOf(kind)].insert(copy);
    return copy;
}

/// Number of the string in the module; 0 = none.
uint32_t numberIn(const ModuleRec* module, RecKind kind, const StriCopy* copy) {
    if (copy->owner == module) return copy->nr;
    if (!module->striCache) return 0;
    const auto& numbers = module->striCache->numbers[widthOf(kind)];
    const auto found = numbers.find(copy);
    return found == numbers.end() ? 0 : found->second;
}

void noteNumber(ModuleRec* module, RecKind kind, StriCopy* copy, uint32_t nr) {
    if (copy->owner == nullptr) copy->owner = module;
    if (copy->owner == module) {
        copy->nr = nr;
        return;
    }
    if (!module->striCache) module->striCache = makeOwned<StriCacheRec>();
    module->striCache->numbers[widthOf(kind)][copy] = nr;
}

void forgetNumber(ModuleRec* module, RecKind kind, StriCopy* copy) {
    if (copy->owner == module)
        copy->nr = 0;
    else
        module->striCache->numbers[widthOf(kind)].erase(copy);
}

StriSlot& slotAt(ModuleRec* module, RecKind kind, uint32_t nr) {
    return *static_cast<StriSlot*>(pageForWriting(module, kind, nr));
}

StriCopy* findCopy(std::string_view bytes, uint32_t hash, RecKind kind) {
    const CopySet& copies = striState.copies[widthOf(kind)];
    const auto found = copies.find(bytes, hash);
    return found == copies.end() ? nullptr : *found;
}

uint32_t putBytes(ModuleRec* module, std::string_view bytes, RecKind kind) {
    if (bytes.size() / recSize[kind] > std::numeric_limits<uint32_t>::max())
        fatalError(Fatal::WriteRecord);
    const uint32_t hash = hashOf(bytes);
    StriCopy* copy = findCopy(bytes, hash, kind);
    if (copy == nullptr)
        copy = makeCopy(bytes, hash, kind);
    else if (const uint32_t known = numberIn(module, kind, copy); known != 0)
        return known;
    const uint32_t nr = module->nextRecNr[kind];
    slotAt(module, kind, nr).copy = copy;
    noteNumber(module, kind, copy, nr);
    module->nextRecNr[kind] = nr + 1;
    recState.currTPtr[kind] = module;
    return nr;
}

template <typename Char> std::string_view bytesOf(std::basic_string_view<Char> text) {
    text = text.substr(0, text.find(Char{}));
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Char)};
}

/// Puts a text up to its first NUL.
template <typename Char>
uint32_t putText(ModuleRec* module, std::basic_string_view<Char> text, RecKind kind) {
    if (module == nullptr || text.data() == nullptr) fatalError(Fatal::WriteRecord);
    touchModule(module);
    return putBytes(module, bytesOf(text), kind);
}

template <typename Char> std::basic_string_view<Char> getText(ModuleRec* module, int64_t nr,
                                                              const Char* scratch, RecKind kind) {
    if (nr < 0) nr = -nr;
    if (nr == scratchStri) return {scratch, 1};
    const void* slot = nr <= maxRecNr
                           ? storedSlot(module, kind, sizeof(StriSlot), static_cast<uint32_t>(nr))
                           : nullptr;
    if (slot == nullptr) fatalError(Fatal::ReadRecord);
    const StriCopy& copy = *static_cast<const StriSlot*>(slot)->copy;
    return {static_cast<const Char*>(copy.text()), copy.size / sizeof(Char)};
}

/// Strings are put without gaps, so the first slot that is empty ends them.
void dropKindFrom(ModuleRec* module, RecKind kind, uint32_t next) {
    if (next == 0) return;
    for (uint32_t nr = next; void* slot = pageForReading(module, kind, nr); ++nr) {
        forgetNumber(module, kind, static_cast<StriSlot*>(slot)->copy);
        erasePage(module, kind, nr);
    }
    module->nextRecNr[kind] = std::min(module->nextRecNr[kind], next);
}

} // namespace

StriNr putStri(ModuleRec* module, std::string_view text) {
    return {putText(module, text, KIND_STRI8)};
}
Stri16Nr putStri16(ModuleRec* module, std::u16string_view text) {
    return {putText(module, text, KIND_STRI16)};
}
Stri32Nr putStri32(ModuleRec* module, std::u32string_view text) {
    return {putText(module, text, KIND_STRI32)};
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
    const std::string_view bytes = bytesOf(text);
    const StriCopy* copy = findCopy(bytes, hashOf(bytes), KIND_STRI8);
    return {copy == nullptr ? 0 : numberIn(module, KIND_STRI8, copy)};
}

void dropStriFrom(ModuleRec* module, uint32_t next8, uint32_t next16, uint32_t next32) {
    dropKindFrom(module, KIND_STRI8, next8);
    dropKindFrom(module, KIND_STRI16, next16);
    dropKindFrom(module, KIND_STRI32, next32);
}

const void* textOf(const StriCopy* copy) {
    return copy->text();
}

void resetStrings() {
    striState = {};
    std::fill(std::begin(tempChar), std::end(tempChar), '\0');
    std::fill(std::begin(tempChar16), std::end(tempChar16), u'\0');
    std::fill(std::begin(tempChar32), std::end(tempChar32), U'\0');
}

} // namespace orvo
