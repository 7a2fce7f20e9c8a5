// The tree file is the records of kinds 0 to 9 one behind the other, nothing between them: the
// module's own node comes first and holds the counts by which a reader finds the rest.
//
// Why so: back ends read much and often, the compiler writes once. Records of fixed size that refer
// to one another by number are found by computing, in any order, and are written as the passes left
// them: a number in the file is the number in the store, so nothing is translated. Strings, whose
// size varies, therefore come last. They carry a terminator, which their 16-bit length counts, so
// that a back end can use them where they lie. What is in another module is named through a module
// node of this file: every file is whole by itself, and a back end opens only those it needs.
//
// Every integer is written little-endian and every unused byte as zero, field by field: the file is
// the same on every host, and two runs can be compared.
//
// The counts are those of pass 4. Pass 5 annotates records; the few it makes are for itself. They
// have higher numbers and stay out of the file without anything being numbered anew, unless records
// of the file name texts that were added then: options that were switched off, items of
// enumerations that were numbered beyond 64 bits.

#include "driver/orvofil_stx.h"

#include <bit>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <unordered_set>

#include "diag/orvoerr_fatal.h"
#include "diag/timing.h"
#include "driver/orvofil.h"
#include "tree/orvorec.h"
#include "util/guard.h"
#include "util/outfile.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr size_t chunkSize = 65536;

struct TreeFile {
    std::FILE* file;
    std::string chunk; // bytes not yet handed to the file
};

void flushChunk(TreeFile& tree) {
    if (std::fwrite(tree.chunk.data(), 1, tree.chunk.size(), tree.file) != tree.chunk.size())
        fatalError(Fatal::Write);
    tree.chunk.clear();
}

void putNumber(std::string& out, uint32_t number, size_t bytes) {
    for (; bytes != 0; --bytes, number >>= 8) out += static_cast<char>(number & 0xFF);
}

template <typename Word> void putWord(std::string& out, const char* at) {
    Word word;
    std::memcpy(&word, at, sizeof word);
    putNumber(out, word, sizeof word);
}

void putUnit(std::string& out, const char* at, size_t bytes) {
    if (bytes == 1)
        out += *at;
    else if (bytes == 2)
        putWord<uint16_t>(out, at);
    else
        putWord<uint32_t>(out, at);
}

/// Widths of the units of a field whose units are not all alike; empty for other fields.
constexpr uint8_t timeStampUnits[] = {2, 2, 4, 4};
constexpr uint8_t booleUnits[] = {1, 1, 1, 1, 4, 4};
constexpr uint8_t realUnits[] = {4, 4, 2, 2};
constexpr uint8_t striUnits[] = {2, 2, 4, 4};

std::span<const uint8_t> valueUnits(uint8_t valCode) {
    switch (valCode) {
    case TYP_BOOLEAN: return booleUnits;
    case TYP_REAL: return realUnits;
    case TYP_OBJID:
    case TYP_RELOID: return striUnits; // the arcs, as a string
    default: break;
    }
    const bool isString = is(valCode, TypeClass::Bits) || is(valCode, TypeClass::StringGroup) ||
                          is(valCode, TypeClass::Quoted);
    return isString ? striUnits : std::span<const uint8_t>();
}

std::span<const uint8_t> unitsOf(RecKind kind, const Field& field, const char* record) {
    if (kind == KIND_MNODE && field.offset == offsetof(MNode, modTimeStamp)) return timeStampUnits;
    if (kind == KIND_VNODE && field.offset == offsetof(VNode, val))
        return valueUnits(static_cast<uint8_t>(record[offsetof(VNode, valCode)]));
    return {};
}

/// Field by field, for hosts of the other byte order.
[[maybe_unused]] void putFields(std::string& out, RecKind kind, const char* record) {
    for (const Field& field : fieldsOf(kind)) {
        const char* at = record + field.offset;
        const auto units = unitsOf(kind, field, record);
        for (const uint8_t unit : units) {
            putUnit(out, at, unit);
            at += unit;
        }
        if (!units.empty()) continue;
        for (const char* end = at + field.size; at != end; at += field.word)
            putUnit(out, at, field.word);
    }
}

/// The fields fill a record without gaps, so that it lies in memory as in the file on a host of the
/// file's byte order.
void putRecord(std::string& out, RecKind kind, const char* record) {
    if constexpr (std::endian::native == std::endian::little)
        out.append(record, recSize[kind]);
    else
        putFields(out, kind, record);
}

template <typename Text> void putString(std::string& out, Text text) {
    if (text.size() >= std::numeric_limits<uint16_t>::max()) fatalError(Fatal::WriteRecord);
    putNumber(out, static_cast<uint32_t>(text.size() + 1), 2);
    if constexpr (std::endian::native == std::endian::little) {
        const auto* bytes = reinterpret_cast<const char*>(text.data());
        out.append(bytes, text.size() * sizeof(typename Text::value_type));
    } else {
        for (const auto c : text) {
            using Char = std::make_unsigned_t<std::conditional_t<sizeof(c) == 1, char, uint32_t>>;
            putNumber(out, static_cast<Char>(c), sizeof c);
        }
    }
    putNumber(out, 0, sizeof(typename Text::value_type));
}

/// Takes what pass 5 has added to options and strings into the file.
void countAgain(ModuleRec* module) {
    readRec(module, MNodeNr{1});
    for (const RecKind kind : {KIND_TED, KIND_STRI8})
        mNode.recCount[kind] = module->nextRecNr[kind] - 1;
    writeRec(module, MNodeNr{1});
}

// ---- CLEAN= -------------------------------------------------------------------------------------

uint32_t numberAt(const char* bytes, size_t size) {
    uint32_t number = 0;
    while (size-- > 0) number = number << 8 | static_cast<uint8_t>(bytes[size]);
    return number;
}

/// The name of the module that a file says it is the tree of; empty when it says nothing such.
std::string moduleOfTree(std::FILE* file) {
    char node[recSize[KIND_MNODE]];
    if (std::fread(node, sizeof node, 1, file) != 1) return {};
    const auto countOf = [&node](int kind) {
        return numberAt(node + offsetof(MNode, recCount) + size_t{4} * static_cast<size_t>(kind),
                        4);
    };
    uint64_t at = 0;
    for (int kind = 0; kind < KIND_STRI8; ++kind) at += uint64_t{countOf(kind)} * recSize[kind];
    const uint32_t name = numberAt(node + offsetof(MNode, modName), 4);
    if (name == 0 || name > countOf(KIND_STRI8)) return {};
    if (fseeko(file, static_cast<off_t>(at), SEEK_SET) != 0) return {};
    std::string text;
    for (uint32_t nr = 1; nr <= name; ++nr) {
        char length[2];
        if (std::fread(length, sizeof length, 1, file) != 1) return {};
        text.resize(numberAt(length, sizeof length));
        if (text.empty() || std::fread(text.data(), text.size(), 1, file) != 1) return {};
    }
    text.pop_back(); // the terminator
    return text;
}

std::string treePath(const ModuleRec* module) {
    return concat(run.stxDir, module->generationPrefix, ".stx");
}

void removeEarlierTree(const ModuleRec* module) {
    std::error_code failed; // a link stays: the tree is where it leads
    const std::filesystem::path path = std::filesystem::canonical(treePath(module), failed);
    if (failed || !std::filesystem::is_regular_file(path, failed)) return;
    {
        const File file(openFile(path, "rb"));
        if (file == nullptr || moduleOfTree(file.get()) != module->moduleName) return;
    }
    if (!std::filesystem::remove(path, failed)) fatalError(Fatal::Write, treePath(module));
}

// ---- the file -----------------------------------------------------------------------------------

/// Records of one kind, in number order.
void writeSubTree(TreeFile& tree, ModuleRec* module, RecKind kind) {
    readRec(module, MNodeNr{1});
    const uint32_t count = mNode.recCount[kind];
    for (uint32_t nr = 1; nr <= count; ++nr) {
        switch (kind) {
        case KIND_STRI8: putString(tree.chunk, getStri(module, int64_t{nr})); break;
        case KIND_STRI16: putString(tree.chunk, getStri16(module, nr)); break;
        case KIND_STRI32: putString(tree.chunk, getStri32(module, nr)); break;
        default: putRecord(tree.chunk, kind, static_cast<const char*>(findRPos(module, kind, nr)));
        }
        if (tree.chunk.size() >= chunkSize) flushChunk(tree);
    }
}

} // namespace

void writeTree(ModuleRec* module) {
    const Timed timed(Phase::Tree);
    const std::string path = treePath(module);
    if (module->stringsAdded) countAgain(module);
    TreeFile tree{openFile(path, "wb"), {}};
    if (tree.file == nullptr) fatalError(Fatal::OpenWrite, path);
    for (int kind = 0; kind < fileKindCount; ++kind)
        writeSubTree(tree, module, static_cast<RecKind>(kind));
    flushChunk(tree);
    if (!closeOutput(tree.file)) fatalError(Fatal::Close, "Syntax tree file");
    module->hasTree = true;
}

void removeEarlierTrees() {
    std::unordered_set<std::string> written;
    for (const auto& module : run.modules)
        if (module->hasTree) written.insert(module->generationPrefix);
    for (const auto& module : run.modules) {
        const bool known = !module->moduleName.empty() && !module->generationPrefix.empty();
        if (known && module.get() != run.iso8824MP && !written.contains(module->generationPrefix))
            removeEarlierTree(module.get());
    }
}

} // namespace orvo
