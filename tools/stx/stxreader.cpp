#include "stxfields.h"

#include <cstdio>
#include <filesystem>
#include <new>
#include <system_error>

// The file is read whole and laid out once: `start_` of a kind is where its first record lies,
// strings have an index of their own because their lengths differ. Records are decoded byte by byte
// whenever one is asked for, so that neither the host's byte order nor its alignment matters.

namespace stx {
namespace {

struct File {
    std::FILE* handle;
    ~File() {
        if (handle != nullptr) std::fclose(handle);
    }
};

/// The whole file; more than 4 GiB cannot be a tree.
bool readFile(const std::string& path, std::vector<uint8_t>& bytes, std::string& error) {
    std::error_code failed;
    if (!std::filesystem::is_regular_file(path, failed)) {
        error = path +
                (std::filesystem::exists(path, failed) ? ": not a regular file" : ": no such file");
        return false;
    }
    const File file{std::fopen(path.c_str(), "rb")};
    if (file.handle == nullptr) {
        error = path + ": cannot be opened";
        return false;
    }
    const uintmax_t size = std::filesystem::file_size(path, failed);
    if (failed || size > UINT32_MAX) {
        error = path + ": too large for a syntax tree file";
        return false;
    }
    bytes.resize(static_cast<size_t>(size));
    const size_t got = std::fread(bytes.data(), 1, bytes.size(), file.handle);
    if (got != bytes.size() || std::fgetc(file.handle) != EOF) {
        error = path + ": cannot be read";
        return false;
    }
    return true;
}

std::string recordName(Kind kind, uint64_t nr) {
    return std::string(kindNames[kind]) + ' ' + std::to_string(nr);
}

} // namespace

bool Tree::open(const std::string& path, std::string& error) {
    std::vector<uint8_t> bytes;
    *this = Tree();
    return readFile(path, bytes, error) && parse(path, std::move(bytes), error);
}

bool Tree::parse(const std::string& name, std::vector<uint8_t> bytes, std::string& error) {
    *this = Tree();
    path_ = name;
    bytes_ = std::move(bytes);
    if (layOut(error) && checkRecords(error) && checkLists(error) && checkOwners(error))
        return true;
    error = name + ": " + error;
    *this = Tree();
    return false;
}

bool Tree::layOut(std::string& error) {
    if (bytes_.size() < recordSize[MNODE]) {
        error = "cut: mNode 1 takes 112 bytes, the file has " + std::to_string(bytes_.size());
        return false;
    }
    const layout::Bytes<layout::mNodeFields> self(bytes_.data());
    for (size_t kind = 0; kind < counts_.size(); ++kind)
        counts_[kind] = u32At(self.at<"recCount">() + 4 * kind);
    if (counts_[MNODE] == 0) {
        error = "mNode 1, field recCount: the count of mNode records is 0";
        return false;
    }
    uint64_t at = 0;
    for (const Kind kind : {MNODE, TNODE, VNODE, TAG, SUB, TED, SNODE}) {
        start_[kind] = at;
        const uint64_t end = at + uint64_t{counts_[kind]} * recordSize[kind];
        if (end > bytes_.size()) {
            const uint64_t whole = (bytes_.size() - at) / recordSize[kind];
            error = "cut: of " + std::to_string(counts_[kind]) + ' ' + kindNames[kind] +
                    " records only " + std::to_string(whole) + " are there, " +
                    recordName(kind, whole + 1) + " is missing or incomplete";
            return false;
        }
        at = end;
    }
    for (const Kind kind : {STRI8, STRI16, STRI32})
        if (!layOutStrings(kind, at, error)) return false;
    if (at == bytes_.size()) return true;
    error = "too long: " + std::to_string(bytes_.size() - at) + " bytes follow the last record";
    return false;
}

bool Tree::layOutStrings(Kind kind, uint64_t& at, std::string& error) {
    const uint32_t unit = recordSize[kind];
    start_[kind] = at;
    std::vector<uint64_t>& index = stringAt_[static_cast<size_t>(kind) - STRI8];
    if (counts_[kind] > (bytes_.size() - at) / (2 + unit)) { // before any memory is taken for them
        error = "cut: " + std::to_string(counts_[kind]) + ' ' + kindNames[kind] +
                " records do not fit into the " + std::to_string(bytes_.size() - at) +
                " bytes that are left";
        return false;
    }
    index.reserve(counts_[kind]);
    for (uint32_t nr = 1; nr <= counts_[kind]; ++nr) {
        const uint64_t left = bytes_.size() - at;
        const uint64_t chars = left < 2 ? 0 : u16At(&bytes_[at]);
        if (left < 2 || 2 + chars * unit > left) {
            error = "cut: " + recordName(kind, nr) + " is missing or incomplete";
            return false;
        }
        if (chars == 0) {
            error = recordName(kind, nr) + ", length: 0, the terminator is not counted";
            return false;
        }
        index.push_back(at);
        at += 2 + chars * unit;
        for (uint32_t byte = 1; byte <= unit; ++byte)
            if (bytes_[at - byte] != 0) {
                error = recordName(kind, nr) + ", characters: the string is not terminated";
                return false;
            }
    }
    return true;
}

std::span<const uint8_t> Tree::bytes(Kind kind, uint32_t nr) const {
    if (nr == 0 || nr > counts_[kind]) return {};
    if (kind < STRI8)
        return {&bytes_[start_[kind] + uint64_t{nr - 1} * recordSize[kind]], recordSize[kind]};
    const uint64_t at = stringAt_[static_cast<size_t>(kind) - STRI8][nr - 1];
    return {&bytes_[at + 2], size_t{u16At(&bytes_[at])} * recordSize[kind]};
}

MNode Tree::mNode(uint32_t nr) const {
    MNode node;
    const std::span<const uint8_t> rec = bytes(MNODE, nr);
    if (rec.empty()) return node;
    const layout::Bytes<layout::mNodeFields> in(rec.data());
    const uint8_t* stamp = in.at<"modTimeStamp">();
    node.modTimeStamp = {static_cast<uint16_t>(u16At(stamp)),
                         static_cast<uint16_t>(u16At(stamp + 2)), i32At(stamp + 4),
                         i32At(stamp + 8)};
    node.modName = in.get<"modName">();
    node.stxName = in.get<"stxName">();
    node.firstTypeAss = in.get<"firstTypeAss">();
    node.firstValAss = in.get<"firstValAss">();
    node.firstDefVal = in.get<"firstDefVal">();
    node.modOid = in.get<"modOid">();
    for (size_t kind = 0; kind < 10; ++kind)
        node.recCount[kind] = u32At(in.at<"recCount">() + 4 * kind);
    node.exportsState = in.get<"exportsState">();
    node.importsState = in.get<"importsState">();
    node.automaticTags = in.get<"automaticTags">();
    node.selection = in.get<"selection">();
    node.srcDir = in.get<"srcDir">();
    node.srcFile = in.get<"srcFile">();
    for (size_t word = 0; word < 6; ++word)
        node.modWords[word] = u32At(in.at<"modWords">() + 4 * word);
    return node;
}

TNode Tree::tNode(uint32_t nr) const {
    TNode node;
    const std::span<const uint8_t> rec = bytes(TNODE, nr);
    if (rec.empty()) return node;
    const layout::Bytes<layout::tNodeFields> in(rec.data());
    node.name = in.get<"name">();
    node.actParRec = in.get<"actParRec">();
    node.line = in.get<"line">();
    node.compStatus = in.get<"compStatus">();
    node.defaultVal = in.get<"defaultVal">();
    node.next = in.get<"next">();
    node.constraint = in.get<"constraint">();
    node.tags = in.get<"tags">();
    node.optFlags = in.get<"optFlags">();
    node.nodeFlags = in.get<"nodeFlags">();
    node.tedFirst = in.get<"tedFirst">();
    node.tedLast = in.get<"tedLast">();
    node.checkState = in.get<"checkState">();
    node.typeCode = in.get<"typeCode">();
    node.vfKind = in.get<"vfKind">();
    node.sizeOpt = in.get<"sizeOpt">();
    node.boundForms = in.get<"boundForms">();
    node.checkFlags = in.get<"checkFlags">();
    node.entryFlags = in.get<"entryFlags">();
    node.entryKinds = in.get<"entryKinds">();
    node.lenForm = in.get<"lenForm">();
    node.skipOpt = in.get<"skipOpt">();
    node.sizeLimit = in.get<"sizeLimit">();
    node.sizeLimitSkip = in.get<"sizeLimitSkip">();
    node.fieldSize = in.get<"fieldSize">();
    node.refMod = in.get<"refMod">();
    node.ref = in.get<"ref">();
    node.namedVals = in.get<"namedVals">();
    node.syntaxList = in.get<"syntaxList">();
    node.formals = in.get<"formals">();
    node.syntax = in.get<"syntax">();
    node.lowerBound = in.get<"lowerBound">();
    node.upperBound = in.get<"upperBound">();
    return node;
}

VNode Tree::vNode(uint32_t nr) const {
    VNode node;
    const std::span<const uint8_t> rec = bytes(VNODE, nr);
    if (rec.empty()) return node;
    const layout::Bytes<layout::vNodeFields> in(rec.data());
    node.name = in.get<"name">();
    node.valStatus = in.get<"valStatus">();
    node.vflags = in.get<"vflags">();
    node.actParRec = in.get<"actParRec">();
    node.line = in.get<"line">();
    node.govType = in.get<"govType">();
    node.govTypeMod = in.get<"govTypeMod">();
    node.next = in.get<"next">();
    node.checkState = in.get<"checkState">();
    node.valCode = in.get<"valCode">();
    node.refMod = in.get<"refMod">();
    node.ref = in.get<"ref">();
    node.tedFirst = in.get<"tedFirst">();
    node.tedLast = in.get<"tedLast">();
    const uint8_t* val = in.at<"val">();
    node.boole = val[0] != 0;
    node.number = i64At(val);
    node.exact = u32At(val + 8);
    node.base = i16At(val + 8);
    node.exponent = i16At(val + 10);
    node.striLen = static_cast<uint16_t>(u16At(val));
    node.stri = u32At(val + 4);
    node.formals = in.get<"formals">();
    node.deferred = in.get<"deferred">();
    return node;
}

TagRec Tree::tagRec(uint32_t nr) const {
    const std::span<const uint8_t> rec = bytes(TAG, nr);
    if (rec.empty()) return {};
    const layout::Bytes<layout::tagRecFields> in(rec.data());
    return {in.get<"tagClass">(), in.get<"tagMode">(), in.get<"tagNr">(), in.get<"next">()};
}

SubRec Tree::subRec(uint32_t nr) const {
    const std::span<const uint8_t> rec = bytes(SUB, nr);
    if (rec.empty()) return {};
    const layout::Bytes<layout::subRecFields> in(rec.data());
    return {in.get<"name">(),   in.get<"subKind">(), in.get<"subFlags">(), in.get<"typeMod">(),
            in.get<"typeNr">(), in.get<"line">(),    in.get<"next">(),     in.get<"third">(),
            in.get<"left">(),   in.get<"right">()};
}

TedRec Tree::tedRec(uint32_t nr) const {
    const std::span<const uint8_t> rec = bytes(TED, nr);
    if (rec.empty()) return {};
    const layout::Bytes<layout::tedRecFields> in(rec.data());
    return {in.get<"tedKind">(), in.get<"text">()};
}

SNode Tree::sNode(uint32_t nr) const {
    const std::span<const uint8_t> rec = bytes(SNODE, nr);
    if (rec.empty()) return {};
    const layout::Bytes<layout::sNodeFields> in(rec.data());
    return {in.get<"token">(), in.get<"module">(), in.get<"value">(), in.get<"line">(),
            in.get<"next">()};
}

bool Tree::hasText(int64_t nr) const {
    return nr != 0 && (nr < 0 ? -nr : nr) <= counts_[STRI8];
}

std::string_view Tree::text(int64_t nr) const {
    if (!hasText(nr)) return {};
    const std::span<const uint8_t> rec = bytes(STRI8, static_cast<uint32_t>(nr < 0 ? -nr : nr));
    return {reinterpret_cast<const char*>(rec.data()), rec.size() - 1};
}

std::u16string Tree::text16(int64_t nr) const {
    std::u16string text;
    if (nr < 0) nr = -nr;
    if (nr > counts_[STRI16]) return text;
    const std::span<const uint8_t> rec = bytes(STRI16, static_cast<uint32_t>(nr));
    for (size_t at = 0; at + 2 < rec.size(); at += 2)
        text += static_cast<char16_t>(u16At(&rec[at]));
    return text;
}

std::u32string Tree::text32(int64_t nr) const {
    std::u32string text;
    if (nr < 0) nr = -nr;
    if (nr > counts_[STRI32]) return text;
    const std::span<const uint8_t> rec = bytes(STRI32, static_cast<uint32_t>(nr));
    for (size_t at = 0; at + 4 < rec.size(); at += 4)
        text += static_cast<char32_t>(u32At(&rec[at]));
    return text;
}

bool Tree::number(Kind kind, uint32_t nr, const Field& field, int64_t& value) const {
    const std::span<const uint8_t> rec = bytes(kind, nr);
    if (rec.size() < size_t{field.offset} + field.width) return false;
    const uint8_t* p = rec.data() + field.offset;
    switch (field.form) {
    case Form::Unsigned:
        value = field.width == 1 ? p[0] : field.width == 2 ? u16At(p) : u32At(p);
        return true;
    case Form::Signed: value = field.width == 2 ? i16At(p) : i32At(p); return true;
    case Form::Wide: value = i64At(p); return true;
    case Form::Words:
    case Form::Stamp:
    case Form::Value:
    case Form::Unused: break;
    }
    return false;
}

std::string_view codeName(std::span<const CodeName> names, int64_t code) {
    for (const CodeName& row : names)
        if (row.code == code) return row.name;
    return {};
}

std::string bitNames(std::span<const CodeName> names, int64_t bits) {
    std::string text;
    for (const CodeName& row : names) {
        if ((bits & row.code) == 0) continue;
        if (!text.empty()) text += ' ';
        text += row.name;
        bits &= ~row.code;
    }
    if (bits == 0) return text;
    char digits[20];
    size_t at = sizeof digits;
    for (auto left = static_cast<uint64_t>(bits); left != 0; left >>= 4)
        digits[--at] = "0123456789ABCDEF"[left & 15];
    if (!text.empty()) text += ' ';
    return text + "0x" + std::string(digits + at, sizeof digits - at);
}

} // namespace stx
