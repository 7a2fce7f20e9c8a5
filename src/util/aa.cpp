// Invariants: an entry stands in bucket hash & (listSize - 1); count is the number of entries;
// nothing is resized while a scan runs, so the scan position stays meaningful. Everything that can
// run out of memory is allocated before the table is touched. New entries stand at the head of
// their chain, and resizing keeps the order within a chain.

#include "util/aa.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdio>
#include <cstring>
#include <new>

#include "util/ascii.h"

namespace orvo {
namespace {

constexpr size_t minListSize = 64;
constexpr size_t maxListSize = 65536; // all that a 16-bit hash can tell apart
constexpr uint8_t ownsKey = 1, ownsValue = 2;
constexpr size_t firstChunk = 16, largestChunk = 1024; // entries

/// Table of the CRC-16-CCITT (polynomial 0x1021, most significant bit first).
constexpr std::array<uint16_t, 256> makeCrcTable() {
    std::array<uint16_t, 256> table = {};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        uint32_t crc = byte << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? (crc << 1) ^ 0x1021 : crc << 1;
        table[byte] = static_cast<uint16_t>(crc);
    }
    return table;
}
constexpr std::array<uint16_t, 256> crcTable = makeCrcTable();
static_assert(crcTable[1] == 0x1021 && crcTable[2] == 0x2042 && crcTable[3] == 0x3063);

struct NarrowHash {
    uint64_t hash = 0xFFFF;
    void add(uint8_t byte) { hash = (hash >> 8) ^ crcTable[(byte ^ hash) & 0xFF]; }
    [[nodiscard]] uint64_t result() const { return hash; }
};
/// FNV-1a. Its low bits know nothing of the high ones, so the result folds the two halves together.
struct WideHash {
    uint64_t hash = 14695981039346656037U;
    void add(uint8_t byte) { hash = (hash ^ byte) * 1099511628211U; }
    [[nodiscard]] uint64_t result() const { return hash ^ (hash >> 32); }
};

uint8_t upper(uint8_t byte) {
    return byte >= 'a' && byte <= 'z' ? static_cast<uint8_t>(byte - ('a' - 'A')) : byte;
}

/// Feeds a string character by character, each from its lowest byte on, so that the hash is the
/// same on every host.
template <typename Char, typename Hash>
void hashString(const void* key, bool ignoreCase, Hash& hash) {
    for (const auto* at = static_cast<const Char*>(key); *at != 0; ++at) {
        auto unit = static_cast<uint32_t>(*at);
        if (ignoreCase) unit = upper(static_cast<uint8_t>(unit));
        for (size_t byte = 0; byte < sizeof(Char); ++byte, unit >>= 8)
            hash.add(static_cast<uint8_t>(unit));
    }
}

template <typename Hash> uint64_t hashKey(const AaContext* table, const void* key) {
    Hash hash;
    if (table->keyLength != 0) {
        const auto* bytes = static_cast<const uint8_t*>(key);
        for (size_t i = 0; i < table->keyLength; ++i) hash.add(bytes[i]);
    } else if ((table->flags & AA_CHARWIDTH16) != 0) {
        hashString<uint16_t>(key, false, hash);
    } else if ((table->flags & AA_CHARWIDTH32) != 0) {
        hashString<uint32_t>(key, false, hash);
    } else {
        hashString<uint8_t>(key, (table->flags & AA_CASEINSIG) != 0, hash);
    }
    return hash.result();
}

template <typename Char> bool sameString(const void* a, const void* b) {
    const auto* left = static_cast<const Char*>(a);
    const auto* right = static_cast<const Char*>(b);
    while (*left == *right && *left != 0) ++left, ++right;
    return *left == *right;
}

bool sameIgnoringCase(const void* a, const void* b) {
    const auto* left = static_cast<const uint8_t*>(a);
    const auto* right = static_cast<const uint8_t*>(b);
    while (upper(*left) == upper(*right) && *left != 0) ++left, ++right;
    return upper(*left) == upper(*right);
}

bool sameKey(const AaContext* table, const void* a, const void* b) {
    if (a == b) return true;
    if (table->keyLength != 0) return std::memcmp(a, b, table->keyLength) == 0;
    if ((table->flags & AA_CHARWIDTH16) != 0) return sameString<uint16_t>(a, b);
    if ((table->flags & AA_CHARWIDTH32) != 0) return sameString<uint32_t>(a, b);
    if ((table->flags & AA_CASEINSIG) != 0) return sameIgnoringCase(a, b);
    return std::strcmp(static_cast<const char*>(a), static_cast<const char*>(b)) == 0;
}

template <typename Char> size_t stringBytes(const void* text) {
    const auto* end = static_cast<const Char*>(text);
    while (*end != 0) ++end;
    return static_cast<size_t>(end + 1 - static_cast<const Char*>(text)) * sizeof(Char);
}

/// Size of a string of the table's width, terminator included.
size_t stringSize(const AaContext* table, const void* text) {
    if ((table->flags & AA_CHARWIDTH16) != 0) return stringBytes<uint16_t>(text);
    if ((table->flags & AA_CHARWIDTH32) != 0) return stringBytes<uint32_t>(text);
    return stringBytes<uint8_t>(text);
}

void* copyBlock(const void* source, size_t size) {
    void* copy = ::operator new(size, std::nothrow);
    if (copy != nullptr) std::memcpy(copy, source, size);
    return copy;
}
void freeBlock(const void* block) {
    ::operator delete(const_cast<void*>(block));
}
void freeValue(AaValue value) {
    freeBlock(aaAddress(value));
}

void freeOwned(const AaEntry* entry) {
    if ((entry->owned & ownsKey) != 0) freeBlock(entry->key);
    if ((entry->owned & ownsValue) != 0) freeValue(entry->value);
}

bool addChunk(AaContext* table) {
    const size_t size =
        table->chunks == nullptr ? firstChunk : std::min(table->chunks->size * 2, largestChunk);
    auto* chunk = new (std::nothrow) AaChunk{table->chunks, size, new (std::nothrow) AaEntry[size]};
    if (chunk == nullptr) return false;
    if (chunk->entries == nullptr) {
        delete chunk;
        return false;
    }
    table->chunks = chunk;
    table->chunkUsed = 0;
    return true;
}

/// An empty entry; null when memory ran out.
AaEntry* allocateEntry(AaContext* table) {
    if (AaEntry* entry = table->freeEntries; entry != nullptr) {
        table->freeEntries = entry->next;
        return entry;
    }
    const bool full = table->chunks == nullptr || table->chunkUsed == table->chunks->size;
    if (full && !addChunk(table)) return nullptr;
    return &table->chunks->entries[table->chunkUsed++];
}

/// Frees what an entry owns and keeps the entry for the next key.
void freeEntry(AaContext* table, AaEntry* entry) {
    freeOwned(entry);
    *entry = {};
    entry->next = table->freeEntries;
    table->freeEntries = entry;
}

/// Loads of 20 and 90 per cent; the gap keeps a table from growing and shrinking in turn.
void CalculateHashThresholds(AaContext* table) {
    const bool limited = (table->flags & AA_WIDE_HASH) == 0;
    table->lowThreshold = table->listSize > minListSize
                              ? table->listSize / 10 * 2 + table->listSize % 10 * 2 / 10
                              : 0;
    table->highThreshold = limited && table->listSize >= maxListSize
                               ? 0
                               : table->listSize / 10 * 9 + table->listSize % 10 * 9 / 10;
}

/// Doubles the bucket array; false when that is not possible, which only costs speed.
bool IncreaseHashSize(AaContext* table) {
    const size_t oldSize = table->listSize;
    if (table->scanning || table->highThreshold == 0) return false;
    auto** wider = new (std::nothrow) AaEntry* [oldSize * 2] {};
    if (wider == nullptr) return false;
    for (size_t i = 0; i < oldSize; ++i) {
        AaEntry** low = &wider[i];
        AaEntry** high = &wider[i + oldSize];
        for (AaEntry* entry = table->buckets[i]; entry != nullptr; entry = entry->next) {
            AaEntry**& tail = (entry->hash & oldSize) != 0 ? high : low;
            *tail = entry;
            tail = &entry->next;
        }
        *low = nullptr;
        *high = nullptr;
    }
    delete[] table->buckets;
    table->buckets = wider;
    table->listSize = oldSize * 2;
    CalculateHashThresholds(table);
    return true;
}

/// Halves the bucket array: each chain of the upper half goes behind that of its partner.
bool DecreaseHashSize(AaContext* table) {
    if (table->scanning || table->listSize <= minListSize) return false;
    const size_t newSize = table->listSize / 2;
    auto** narrower = new (std::nothrow) AaEntry* [newSize] {};
    if (narrower == nullptr) return false;
    for (size_t i = 0; i < newSize; ++i) {
        narrower[i] = table->buckets[i];
        AaEntry** tail = &narrower[i];
        while (*tail != nullptr) tail = &(*tail)->next;
        *tail = table->buckets[i + newSize];
    }
    delete[] table->buckets;
    table->buckets = narrower;
    table->listSize = newSize;
    CalculateHashThresholds(table);
    return true;
}

bool mustGrow(const AaContext* table) {
    return table->highThreshold != 0 && table->count >= table->highThreshold;
}
bool mustShrink(const AaContext* table) {
    return table->lowThreshold != 0 && table->count <= table->lowThreshold;
}

/// Complains about contradicting flags; false when there can be no table. A fixed key length only
/// makes AA_CASEINSIG pointless.
bool checkFlags(uint32_t& flags, size_t keyLength) {
    const auto refuse = [](const char* reason) {
        std::fputs(reason, stderr);
        return false;
    };
    const bool wide = (flags & (AA_CHARWIDTH16 | AA_CHARWIDTH32)) != 0;
    if (keyLength != 0 && (flags & AA_CASEINSIG) != 0) {
        refuse("aaCreateContext: fixed length of keys used, flag AA_CASEINSIG ignored\n");
        flags &= ~uint32_t{AA_CASEINSIG};
    }
    if (keyLength != 0 && wide)
        return refuse("aaCreateContext: 16 or 32 bit characters may only be used with arbitrary "
                      "length keys\n");
    if (wide && (flags & AA_CASEINSIG) != 0)
        return refuse("aaCreateContext: case-insignificant comparison for 16 or 32 bit char "
                      "strings not implemented\n");
    if ((flags & AA_CHARWIDTH16) != 0 && (flags & AA_CHARWIDTH32) != 0)
        return refuse("aaCreateContext: cannot specify both AA_CHARWIDTH16 and AA_CHARWIDTH32\n");
    if ((flags & (AA_KEY_COPY | AA_KEY_REF)) == 0)
        return refuse("aaCreateContext: No AA_KEY specifier\n");
    if ((flags & (AA_VAL_COPY | AA_VAL_REF)) == 0)
        return refuse("aaCreateContext: No AA_VAL specifier\n");
    return true;
}

/// Makes `value` what the table is to store; false when memory ran out.
bool ownValue(const AaContext* table, AaValue& value, uint8_t& owned) {
    if ((table->flags & AA_VAL_COPY) == 0 || value == 0) return true;
    const void* text = aaAddress(value);
    const void* copy = copyBlock(text, stringSize(table, text));
    value = aaPointer(copy);
    owned |= ownsValue;
    return copy != nullptr;
}

/// An entry with its own copies as the flags ask for, or null when memory ran out.
AaEntry* newEntry(AaContext* table, const void* key, AaValue value, uint64_t hash) {
    AaEntry* entry = allocateEntry(table);
    if (entry == nullptr) return nullptr;
    *entry = {nullptr, key, value, hash, 0};
    if ((table->flags & AA_KEY_COPY) != 0) {
        entry->key =
            copyBlock(key, table->keyLength != 0 ? table->keyLength : stringSize(table, key));
        entry->owned |= ownsKey;
    }
    const bool ok = entry->key != nullptr && ownValue(table, entry->value, entry->owned);
    if (ok) return entry;
    freeEntry(table, entry);
    return nullptr;
}

void firstFrom(AaContext* table, size_t bucket) {
    while (bucket < table->listSize && table->buckets[bucket] == nullptr) ++bucket;
    table->scanPos = bucket;
    table->scanEntry = bucket < table->listSize ? table->buckets[bucket] : nullptr;
}

} // namespace

AaContext* aaCreateContext(uint32_t flags, size_t keyLength) {
    if (!checkFlags(flags, keyLength)) return nullptr;
    auto* table = new (std::nothrow) AaContext;
    if (table == nullptr) return nullptr;
    table->buckets = new (std::nothrow) AaEntry* [minListSize] {};
    if (table->buckets == nullptr) {
        delete table;
        return nullptr;
    }
    table->listSize = minListSize;
    table->flags = flags;
    table->keyLength = keyLength;
    CalculateHashThresholds(table);
    return table;
}

void aaDestroyContext(AaContext* table) {
    if (table == nullptr) return;
    while (table->chunks != nullptr) {
        AaChunk* chunk = table->chunks;
        for (size_t i = 0; i < chunk->size; ++i) freeOwned(&chunk->entries[i]);
        table->chunks = chunk->next;
        delete[] chunk->entries;
        delete chunk;
    }
    delete[] table->buckets;
    delete table;
}

uint64_t aaCalcHash(const AaContext* table, const void* key) {
    return (table->flags & AA_WIDE_HASH) != 0 ? hashKey<WideHash>(table, key)
                                              : hashKey<NarrowHash>(table, key);
}

AaEntry* aaSearchHash(const AaContext* table, const void* key, uint64_t hash) {
    AaEntry* entry = table->buckets[hash & (table->listSize - 1)];
    while (entry != nullptr && (entry->hash != hash || !sameKey(table, entry->key, key)))
        entry = entry->next;
    return entry;
}

AaEntry* aaSearch(const AaContext* table, const void* key, uint64_t& hashOut, size_t& bucketOut) {
    hashOut = aaCalcHash(table, key);
    bucketOut = hashOut & (table->listSize - 1);
    return aaSearchHash(table, key, hashOut);
}

bool aaInsert(AaContext* table, const void* key, AaValue value, uint64_t hash) {
    AaEntry* entry = newEntry(table, key, value, hash);
    if (entry == nullptr) return false;
    AaEntry*& bucket = table->buckets[hash & (table->listSize - 1)];
    entry->next = bucket;
    bucket = entry;
    ++table->count;
    if (mustGrow(table)) IncreaseHashSize(table);
    return true;
}

int aaPut(AaContext* table, const void* key, AaValue value) {
    const uint64_t hash = aaCalcHash(table, key);
    AaEntry* entry = aaSearchHash(table, key, hash);
    if (entry == nullptr) return aaInsert(table, key, value, hash) ? 0 : -1;
    if ((table->flags & AA_NO_REPLACE) != 0) return 1;
    uint8_t owned = 0;
    if (!ownValue(table, value, owned)) return -1;
    if ((entry->owned & ownsValue) != 0) freeValue(entry->value);
    entry->value = value;
    entry->owned = static_cast<uint8_t>((entry->owned & ownsKey) | owned);
    return 1;
}

AaValue aaGet(const AaContext* table, const void* key) {
    const AaEntry* entry = aaSearchHash(table, key, aaCalcHash(table, key));
    return entry != nullptr ? entry->value : 0;
}

int aaDelete(AaContext* table, const void* key) {
    uint64_t hash = 0;
    size_t bucket = 0;
    AaEntry* entry = aaSearch(table, key, hash, bucket);
    if (entry == nullptr) return -1;
    if (entry == table->scanEntry) { // the scan goes on behind the entry that leaves
        AaValue unused = 0;
        aaScanNext(table, unused);
    }
    AaEntry** link = &table->buckets[bucket];
    while (*link != entry) link = &(*link)->next;
    *link = entry->next;
    freeEntry(table, entry);
    --table->count;
    if (mustShrink(table)) DecreaseHashSize(table);
    return 0;
}

void aaScanBegin(AaContext* table, const void* startKey) {
    table->scanning = true;
    uint64_t hash = 0;
    AaEntry* start =
        startKey != nullptr ? aaSearch(table, startKey, hash, table->scanPos) : nullptr;
    if (start != nullptr)
        table->scanEntry = start;
    else
        firstFrom(table, 0);
}

const void* aaScanNext(AaContext* table, AaValue& valueOut) {
    AaEntry* entry = table->scanEntry;
    if (entry == nullptr) return nullptr;
    valueOut = entry->value;
    if (entry->next != nullptr)
        table->scanEntry = entry->next;
    else
        firstFrom(table, table->scanPos + 1);
    return entry->key;
}

void aaScanEnd(AaContext* table) {
    table->scanning = false;
    table->scanEntry = nullptr;
    while (mustGrow(table) && IncreaseHashSize(table)) {
    }
    while (mustShrink(table) && DecreaseHashSize(table)) {
    }
}

size_t aaGetNumEntries(const AaContext* table) {
    return table->count;
}

void aaDumpTable(const AaContext* table) {
    std::printf("Dumping table, ListSize = %ld\n", static_cast<long>(table->listSize));
    const bool narrowText =
        table->keyLength == 0 && (table->flags & (AA_CHARWIDTH16 | AA_CHARWIDTH32)) == 0;
    const bool textValue = narrowText && (table->flags & AA_VAL_COPY) != 0;
    for (size_t i = 0; i < table->listSize; ++i) {
        for (const AaEntry* entry = table->buckets[i]; entry != nullptr; entry = entry->next) {
            const uint64_t hash = aaCalcHash(table, entry->key);
            std::printf("%3d: %s, entry->Hash=%llx, calc=%llx, value=", static_cast<int>(i),
                        narrowText ? static_cast<const char*>(entry->key) : "(block)",
                        static_cast<unsigned long long>(entry->hash),
                        static_cast<unsigned long long>(hash));
            if (textValue && entry->value != 0)
                std::fputs(static_cast<const char*>(aaAddress(entry->value)), stdout);
            else
                std::printf("%llx", static_cast<unsigned long long>(entry->value));
            std::puts((hash & (table->listSize - 1)) != i ? "   BAD HASH!" : "");
        }
    }
    std::printf("%d objects\n", static_cast<int>(table->count));
}

} // namespace orvo
