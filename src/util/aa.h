#pragma once

// Associative arrays: hash tables from keys to values whose bucket array grows and shrinks by
// powers of two. Keys are NUL-terminated strings of 8-, 16- or 32-bit characters or blocks of a
// fixed length.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace orvo {

/// Creation flags. One AA_KEY and one AA_VAL specifier are required.
enum AaFlags : uint32_t {
    AA_KEY_COPY = 1,      // keys are copied into the table
    AA_VAL_COPY = 2,      // values are strings copied into the table
    AA_KEY_REF = 4,       // keys are referenced
    AA_VAL_REF = 8,       // values are stored unchanged
    AA_NO_REPLACE = 16,   // putting an existing key leaves its value unchanged
    AA_CASEINSIG = 32,    // 8-bit string keys compare without regard to case
    AA_CHARWIDTH16 = 64,  // keys and copied values are strings of 16-bit characters
    AA_CHARWIDTH32 = 128, // keys and copied values are strings of 32-bit characters
    AA_WIDE_HASH = 256,   // 64-bit hash and no limit of the bucket array: for very many entries
};

/// A value: a number, or a pointer as an integer (a copied string: the address of the copy).
using AaValue = uintptr_t;
inline const void* aaAddress(AaValue value) {
    return std::bit_cast<const void*>(value);
}
inline AaValue aaPointer(const void* pointer) {
    return reinterpret_cast<AaValue>(pointer);
}

struct AaEntry {
    AaEntry* next = nullptr; // of the chain
    const void* key = nullptr;
    AaValue value = 0;
    uint64_t hash = 0; // whole hash of the key, 16 bits without AA_WIDE_HASH
    uint8_t owned = 0; // bit 0 the key, bit 1 the value
};

/// Entries are allocated together: a table of many stays dense, and one of few stays small.
struct AaChunk {
    AaChunk* next;
    size_t size; // entries
    AaEntry* entries;
};

struct AaContext {
    AaEntry** buckets = nullptr;
    size_t listSize = 0;          // buckets, a power of two from 64 on
    size_t scanPos = 0;           // bucket of the scan entry
    AaEntry* scanEntry = nullptr; // what aaScanNext gives next
    bool scanning = false;        // resizing is held back
    uint32_t flags = 0;
    size_t keyLength = 0; // 0 = string keys
    size_t count = 0;
    AaChunk* chunks = nullptr; // the one being filled first
    size_t chunkUsed = 0;      // entries of that one that were handed out
    AaEntry* freeEntries = nullptr;
    size_t lowThreshold = 0, highThreshold = 0; // 0 = never shrinks, never grows
};

/// A new table, or null with a message on standard error when the flags contradict one another;
/// null also when memory runs out. `keyLength` is the length of the keys in bytes, 0 for strings.
[[nodiscard]] AaContext* aaCreateContext(uint32_t flags, size_t keyLength);
/// Frees the table with the keys and values it owns; null is ignored.
void aaDestroyContext(AaContext* table);

/// 0: a new entry; 1: the key existed, its value was replaced (or kept with AA_NO_REPLACE); -1:
/// memory ran out and nothing changed.
int aaPut(AaContext* table, const void* key, AaValue value);
/// The value of a key, 0 when it is absent.
AaValue aaGet(const AaContext* table, const void* key);
/// The entry of a key or null; also the key's hash and bucket.
AaEntry* aaSearch(const AaContext* table, const void* key, uint64_t& hashOut, size_t& bucketOut);
/// 0: removed; -1: absent. A running scan goes on behind the removed entry.
int aaDelete(AaContext* table, const void* key);
/// Hash of a key as the table computes it; the same in all tables of the same key flags.
uint64_t aaCalcHash(const AaContext* table, const void* key);

// The steps of look-up and entry for who searches several tables for one key.

/// The entry of a key whose hash is known, or null.
AaEntry* aaSearchHash(const AaContext* table, const void* key, uint64_t hash);
/// Makes the entry of a key that is known to be absent; false when memory ran out.
[[nodiscard]] bool aaInsert(AaContext* table, const void* key, AaValue value, uint64_t hash);

/// Starts a scan over all entries, at that of `startKey` when it is not null and present.
void aaScanBegin(AaContext* table, const void* startKey);
/// Key of the next entry and its value; null at the end.
const void* aaScanNext(AaContext* table, AaValue& valueOut);
/// Ends the scan and makes up for the resizing that it held back.
void aaScanEnd(AaContext* table);

size_t aaGetNumEntries(const AaContext* table);
/// Prints the entries on standard output, keys and copied values as text (debugging).
void aaDumpTable(const AaContext* table);

struct AaDestroyer {
    void operator()(AaContext* table) const { aaDestroyContext(table); }
};
using AaTable = std::unique_ptr<AaContext, AaDestroyer>;

} // namespace orvo
