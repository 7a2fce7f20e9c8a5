#include "stxreader.h"

// The built-in module ISO8824 has no tree file, yet files refer to its type records: to the fields
// of TYPE-IDENTIFIER and ABSTRACT-SYNTAX, and to the components of EXTERNAL, EMBEDDED PDV,
// CHARACTER STRING and INSTANCE OF values. Its text never changes and neither do its numbers,
// but that there are two forms of it, so the records that matter are made here: names, types,
// components, tags. Class field types stand as what they denote.

namespace stx {
namespace {

struct Row {
    const char* name; // "-" in front: a component or value field, stored negative
    uint8_t typeCode, compStatus, ref, next;
    int8_t tagClass; // -1: untagged
    uint8_t tagNr;
};

// clang-format off
constexpr Row rows[] = {
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 1
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 2
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 3
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 4
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 5
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 6
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 7
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 8
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 9
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 10
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 11
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 12
    {"EMBEDDED PDV", TYP_SYNONYM, TCS_HEADER, 100, 15, -1, 0},  // 13
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 14
    {"NumericString", TYP_SYNONYM, TCS_HEADER, 66, 16, -1, 0},  // 15
    {"PrintableString", TYP_SYNONYM, TCS_HEADER, 67, 17, -1, 0},  // 16
    {"TeletexString", TYP_SYNONYM, TCS_HEADER, 68, 18, -1, 0},  // 17
    {"VideotexString", TYP_SYNONYM, TCS_HEADER, 70, 19, -1, 0},  // 18
    {"VisibleString", TYP_SYNONYM, TCS_HEADER, 71, 20, -1, 0},  // 19
    {"IA5String", TYP_SYNONYM, TCS_HEADER, 73, 21, -1, 0},  // 20
    {"GraphicString", TYP_SYNONYM, TCS_HEADER, 74, 22, -1, 0},  // 21
    {"GeneralString", TYP_SYNONYM, TCS_HEADER, 75, 23, -1, 0},  // 22
    {"BMPString", TYP_SYNONYM, TCS_HEADER, 76, 25, -1, 0},  // 23
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 24
    {"CHARACTER STRING", TYP_SYNONYM, TCS_HEADER, 84, 26, -1, 0},  // 25
    {"GeneralizedTime", TYP_SYNONYM, TCS_HEADER, 65, 27, -1, 0},  // 26
    {"UTCTime", TYP_SYNONYM, TCS_HEADER, 64, 28, -1, 0},  // 27
    {"EXTERNAL", TYP_SYNONYM, TCS_HEADER, 43, 29, -1, 0},  // 28
    {"EXTERNAL", TYP_SYNONYM, TCS_HEADER, 52, 30, -1, 0},  // 29
    {"ObjectDescriptor", TYP_SYNONYM, TCS_HEADER, 42, 31, -1, 0},  // 30
    {"InstanceOfType", TYP_SYNONYM, TCS_HEADER, 116, 38, -1, 0},  // 31
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 32
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 33
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 34
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 35
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 36
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 37
    {"TYPE_IDENTIFIER", TYP_SYNONYM, TCS_HEADER, 77, 39, -1, 0},  // 38
    {"ABSTRACT_SYNTAX", TYP_SYNONYM, TCS_HEADER, 80, 42, -1, 0},  // 39
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 40
    {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0},  // 41
    {"__ObjectDescriptor", TYP_SYNONYM, TCS_HEADER, 74, 43, TAG_UNIVERSAL, 7},  // 42
    {"__EXTERNAL_1990", TYP_SEQ, TCS_HEADER, 44, 52, TAG_UNIVERSAL, 8},  // 43
    {"-direct_reference", TYP_OBJID, TCS_OPTIONAL, 0, 45, -1, 0},  // 44
    {"-indirect_reference", TYP_INTEGER, TCS_OPTIONAL, 0, 46, -1, 0},  // 45
    {"-data_value_descriptor", TYP_SYNONYM, TCS_OPTIONAL, 42, 47, -1, 0},  // 46
    {"-encoding", TYP_CHOICE, TCS_MANDATORY, 48, 0, -1, 0},  // 47
    {"-single_ASN1_type", TYP_OPEN, TCS_CHOICE, 0, 50, TAG_CONTEXT, 0},  // 48
    {"", TYP_SYNONYM, TCS_MANDATORY, 80, 0, -1, 0},  // 49
    {"-octet_aligned", TYP_OCTSTR, TCS_CHOICE, 0, 51, TAG_CONTEXT, 1},  // 50
    {"-arbitrary", TYP_BITSTR, TCS_CHOICE, 0, 0, TAG_CONTEXT, 2},  // 51
    {"__EXTERNAL_1994", TYP_SEQ, TCS_HEADER, 53, 64, TAG_UNIVERSAL, 8},  // 52
    {"-identification", TYP_CHOICE, TCS_MANDATORY, 54, 59, TAG_CONTEXT, 0},  // 53
    {"-syntax", TYP_OBJID, TCS_CHOICE, 0, 55, TAG_CONTEXT, 1},  // 54
    {"-presentation_context_id", TYP_INTEGER, TCS_CHOICE, 0, 56, TAG_CONTEXT, 2},  // 55
    {"-context_negotiation", TYP_SEQ, TCS_CHOICE, 57, 0, TAG_CONTEXT, 3},  // 56
    {"-presentation_context_id", TYP_INTEGER, TCS_MANDATORY, 0, 58, TAG_CONTEXT, 0},  // 57
    {"-transfer_syntax", TYP_OBJID, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 1},  // 58
    {"-data_value_descriptor", TYP_SYNONYM, TCS_OPTIONAL, 42, 60, TAG_CONTEXT, 1},  // 59
    {"-data_value", TYP_CHOICE, TCS_MANDATORY, 61, 0, TAG_CONTEXT, 2},  // 60
    {"-notation", TYP_OPEN, TCS_CHOICE, 0, 63, TAG_CONTEXT, 0},  // 61
    {"", TYP_SYNONYM, TCS_MANDATORY, 80, 0, -1, 0},  // 62
    {"-encoded", TYP_BITSTR, TCS_CHOICE, 0, 0, TAG_CONTEXT, 1},  // 63
    {"__UTCTime", TYP_SYNONYM, TCS_HEADER, 71, 65, TAG_UNIVERSAL, 23},  // 64
    {"__GeneralizedTime", TYP_SYNONYM, TCS_HEADER, 71, 66, TAG_UNIVERSAL, 24},  // 65
    {"__NumericString", TYP_SYNONYM, TCS_HEADER, 67, 67, TAG_UNIVERSAL, 18},  // 66
    {"__PrintableString", TYP_UNISTR, TCS_HEADER, 0, 68, TAG_UNIVERSAL, 19},  // 67
    {"__TeletexString", TYP_UNISTR, TCS_HEADER, 0, 69, TAG_UNIVERSAL, 20},  // 68
    {"T61String", TYP_SYNONYM, TCS_HEADER, 68, 70, -1, 0},  // 69
    {"__VideotexString", TYP_UNISTR, TCS_HEADER, 0, 71, TAG_UNIVERSAL, 21},  // 70
    {"__VisibleString", TYP_UNISTR, TCS_HEADER, 0, 72, TAG_UNIVERSAL, 26},  // 71
    {"ISO646String", TYP_SYNONYM, TCS_HEADER, 71, 73, -1, 0},  // 72
    {"__IA5String", TYP_UNISTR, TCS_HEADER, 0, 74, TAG_UNIVERSAL, 22},  // 73
    {"__GraphicString", TYP_UNISTR, TCS_HEADER, 0, 75, TAG_UNIVERSAL, 25},  // 74
    {"__GeneralString", TYP_UNISTR, TCS_HEADER, 0, 76, TAG_UNIVERSAL, 27},  // 75
    {"__BMPString", TYP_UNISTR, TCS_HEADER, 0, 77, TAG_UNIVERSAL, 30},  // 76
    {"__TYPE_IDENTIFIER", TYP_CLASS, TCS_HEADER, 78, 80, -1, 0},  // 77
    {"-id", TYP_OBJID, TCS_MANDATORY, 0, 79, -1, 0},  // 78
    {"Type", TYP_OPEN, TCS_MANDATORY, 0, 0, -1, 0},  // 79
    {"__ABSTRACT_SYNTAX", TYP_CLASS, TCS_HEADER, 81, 84, -1, 0},  // 80
    {"-id", TYP_OBJID, TCS_MANDATORY, 0, 82, -1, 0},  // 81
    {"Type", TYP_OPEN, TCS_MANDATORY, 0, 83, -1, 0},  // 82
    {"-property", TYP_BITSTR, TCS_OPTIONAL, 0, 0, -1, 0},  // 83
    {"__CHARACTER_STRING", TYP_SEQ, TCS_HEADER, 85, 100, TAG_UNIVERSAL, 29},  // 84
    {"-identification", TYP_CHOICE, TCS_MANDATORY, 86, 96, TAG_CONTEXT, 0},  // 85
    {"-syntaxes", TYP_SEQ, TCS_CHOICE, 87, 89, TAG_CONTEXT, 0},  // 86
    {"-abstract", TYP_OBJID, TCS_MANDATORY, 0, 88, TAG_CONTEXT, 0},  // 87
    {"-transfer", TYP_OBJID, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 0},  // 88
    {"-syntax", TYP_OBJID, TCS_CHOICE, 0, 90, TAG_CONTEXT, 1},  // 89
    {"-presentation_context_id", TYP_INTEGER, TCS_CHOICE, 0, 91, TAG_CONTEXT, 2},  // 90
    {"-context_negotiation", TYP_SEQ, TCS_CHOICE, 92, 94, TAG_CONTEXT, 3},  // 91
    {"-presentation_context_id", TYP_INTEGER, TCS_MANDATORY, 0, 93, TAG_CONTEXT, 0},  // 92
    {"-transfer_syntax", TYP_OBJID, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 1},  // 93
    {"-transfer_syntax", TYP_OBJID, TCS_CHOICE, 0, 95, TAG_CONTEXT, 4},  // 94
    {"-fixed", TYP_NULL, TCS_CHOICE, 0, 0, TAG_CONTEXT, 5},  // 95
    {"-data_value", TYP_CHOICE, TCS_MANDATORY, 97, 0, TAG_CONTEXT, 2},  // 96
    {"-notation", TYP_OPEN, TCS_CHOICE, 0, 99, TAG_CONTEXT, 0},  // 97
    {"", TYP_SYNONYM, TCS_MANDATORY, 80, 0, -1, 0},  // 98
    {"-encoded", TYP_OCTSTR, TCS_CHOICE, 0, 0, TAG_CONTEXT, 1},  // 99
    {"__EMBEDDED_PDV", TYP_SEQ, TCS_HEADER, 101, 116, TAG_UNIVERSAL, 11},  // 100
    {"-identification", TYP_CHOICE, TCS_MANDATORY, 102, 112, TAG_CONTEXT, 0},  // 101
    {"-syntaxes", TYP_SEQ, TCS_CHOICE, 103, 105, TAG_CONTEXT, 0},  // 102
    {"-abstract", TYP_OBJID, TCS_MANDATORY, 0, 104, TAG_CONTEXT, 0},  // 103
    {"-transfer", TYP_OBJID, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 0},  // 104
    {"-syntax", TYP_OBJID, TCS_CHOICE, 0, 106, TAG_CONTEXT, 1},  // 105
    {"-presentation_context_id", TYP_INTEGER, TCS_CHOICE, 0, 107, TAG_CONTEXT, 2},  // 106
    {"-context_negotiation", TYP_SEQ, TCS_CHOICE, 108, 110, TAG_CONTEXT, 3},  // 107
    {"-presentation_context_id", TYP_INTEGER, TCS_MANDATORY, 0, 109, TAG_CONTEXT, 0},  // 108
    {"-transfer_syntax", TYP_OBJID, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 1},  // 109
    {"-transfer_syntax", TYP_OBJID, TCS_CHOICE, 0, 111, TAG_CONTEXT, 4},  // 110
    {"-fixed", TYP_NULL, TCS_CHOICE, 0, 0, TAG_CONTEXT, 5},  // 111
    {"-data_value", TYP_CHOICE, TCS_MANDATORY, 113, 0, TAG_CONTEXT, 2},  // 112
    {"-notation", TYP_OPEN, TCS_CHOICE, 0, 115, TAG_CONTEXT, 0},  // 113
    {"", TYP_SYNONYM, TCS_MANDATORY, 80, 0, -1, 0},  // 114
    {"-encoded", TYP_BITSTR, TCS_CHOICE, 0, 0, TAG_CONTEXT, 1},  // 115
    {"__InstanceOfType", TYP_SEQ, TCS_HEADER, 117, 0, TAG_UNIVERSAL, 8},  // 116
    {"-type_id", TYP_OBJID, TCS_MANDATORY, 0, 119, -1, 0},  // 117
    {"", TYP_SYNONYM, TCS_MANDATORY, 77, 0, -1, 0},  // 118
    {"-value", TYP_OPEN, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 0},  // 119
    {"", TYP_SYNONYM, TCS_MANDATORY, 77, 0, -1, 0},  // 120
};
// clang-format on

constexpr uint32_t firstHead = 13;

// A run with a module of today's notation: nine more kinds stand in front of the definitions, whose
// numbers move, and what the later kinds are made of stands behind them.
constexpr uint32_t kinds = 41, laterKinds = 50;
constexpr Row laterKind = {"UTF8String", TYP_SYNONYM, TCS_HEADER, 130, 51, -1, 0}; // 42
constexpr Row laterRows[] = {
    {"__UTF8String", TYP_UNISTR, TCS_HEADER, 0, 131, TAG_UNIVERSAL, 12},              // 130
    {"REAL_COMPONENTS", TYP_SEQ, TCS_HEADER, 132, 135, -1, 0},                        // 131
    {"-mantissa", TYP_INTEGER, TCS_MANDATORY, 0, 133, -1, 0},                         // 132
    {"-base", TYP_INTEGER, TCS_MANDATORY, 0, 134, -1, 0},                             // 133
    {"-exponent", TYP_INTEGER, TCS_MANDATORY, 0, 0, -1, 0},                           // 134
    {"PRESENTATION", TYP_CHOICE, TCS_HEADER, 136, 146, -1, 0},                        // 135
    {"-syntaxes", TYP_SEQ, TCS_CHOICE, 137, 139, TAG_CONTEXT, 0},                     // 136
    {"-abstract", TYP_OBJID, TCS_MANDATORY, 0, 138, TAG_CONTEXT, 0},                  // 137
    {"-transfer", TYP_OBJID, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 1},                    // 138
    {"-syntax", TYP_OBJID, TCS_CHOICE, 0, 140, TAG_CONTEXT, 1},                       // 139
    {"-presentation_context_id", TYP_INTEGER, TCS_CHOICE, 0, 141, TAG_CONTEXT, 2},    // 140
    {"-context_negotiation", TYP_SEQ, TCS_CHOICE, 142, 144, TAG_CONTEXT, 3},          // 141
    {"-presentation_context_id", TYP_INTEGER, TCS_MANDATORY, 0, 143, TAG_CONTEXT, 0}, // 142
    {"-transfer_syntax", TYP_OBJID, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 1},             // 143
    {"-transfer_syntax", TYP_OBJID, TCS_CHOICE, 0, 145, TAG_CONTEXT, 4},              // 144
    {"-fixed", TYP_NULL, TCS_CHOICE, 0, 0, TAG_CONTEXT, 5},                           // 145
    {"DATA_COMPONENTS", TYP_SEQ, TCS_HEADER, 147, 150, -1, 0},                        // 146
    {"-identification", TYP_SYNONYM, TCS_MANDATORY, 135, 148, TAG_CONTEXT, 0},        // 147
    {"-data_value_descriptor", TYP_SYNONYM, TCS_OPTIONAL, 51, 149, TAG_CONTEXT, 1},   // 148
    {"-data_value", TYP_OCTSTR, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 2},                 // 149
    {"STRING_COMPONENTS", TYP_SEQ, TCS_HEADER, 151, 0, -1, 0},                        // 150
    {"-identification", TYP_SYNONYM, TCS_MANDATORY, 135, 152, TAG_CONTEXT, 0},        // 151
    {"-data_value_descriptor", TYP_SYNONYM, TCS_OPTIONAL, 51, 153, TAG_CONTEXT, 1},   // 152
    {"-string_value", TYP_OCTSTR, TCS_MANDATORY, 0, 0, TAG_CONTEXT, 2},               // 153
};

std::vector<Row> rowsOf(bool later) {
    std::vector<Row> all(std::begin(rows), std::end(rows));
    if (!later) return all;
    const auto moved = [](uint8_t nr) {
        return static_cast<uint8_t>(nr > kinds ? nr + (laterKinds - kinds) : nr);
    };
    for (Row& row : all) {
        row.ref = moved(row.ref);
        row.next = moved(row.next);
    }
    all[TYP_ABSTR_STX - 1].next = kinds + 1; // the last head of a kind
    for (Row& row : all)                     // the last definition
        if (row.compStatus == TCS_HEADER && row.next == 0) row.next = laterKind.ref;
    all.insert(all.begin() + kinds, laterKinds - kinds, {"", TYP_NONE, TCS_MANDATORY, 0, 0, -1, 0});
    all[kinds] = laterKind;
    all.insert(all.end(), std::begin(laterRows), std::end(laterRows));
    return all;
}

void addWord(std::vector<uint8_t>& out, size_t at, int64_t word) {
    for (size_t byte = 0; byte < 4; ++byte)
        out[at + byte] = static_cast<uint8_t>(static_cast<uint64_t>(word) >> 8 * byte);
}

/// A type record; adds its tag and its name to their lists.
std::vector<uint8_t> typeRecord(const Row& row, std::vector<uint8_t>& tags,
                                std::vector<std::string>& names) {
    std::vector<uint8_t> rec(recordSize[TNODE]);
    const std::string_view name = row.name;
    const bool small = name.starts_with('-');
    if (!name.empty()) {
        names.emplace_back(small ? name.substr(1) : name);
        const auto nr = static_cast<int64_t>(names.size());
        addWord(rec, 0, small ? -nr : nr);
    }
    addWord(rec, 12, row.compStatus);
    addWord(rec, 20, row.next);
    rec[50] = row.typeCode;
    rec[60] = rec[61] = 255;
    addWord(rec, 76, row.typeCode == TYP_SYNONYM ? REF_OWN : 0);
    addWord(rec, 80, row.ref);
    addWord(rec, 100, INT32_MIN); // MIN..MAX, high words first
    addWord(rec, 108, INT32_MAX);
    addWord(rec, 112, -1);
    if (row.tagClass < 0) return rec;
    const bool untagged = row.typeCode == TYP_CHOICE || row.typeCode == TYP_OPEN;
    const size_t at = tags.size();
    tags.resize(at + recordSize[TAG]);
    addWord(tags, at, row.tagClass);
    addWord(tags, at + 4, untagged ? TAGMODE_EXPLICIT : TAGMODE_IMPLICIT);
    addWord(tags, at + 8, row.tagNr);
    addWord(rec, 28, static_cast<int64_t>(tags.size() / recordSize[TAG]));
    return rec;
}

} // namespace

std::vector<uint8_t> builtinTree(bool later) {
    const std::vector<Row> all = rowsOf(later);
    std::vector<uint8_t> out(recordSize[MNODE]);
    std::vector<uint8_t> tags;
    std::vector<std::string> names = {"ISO8824"};
    for (const Row& row : all) {
        const std::vector<uint8_t> rec = typeRecord(row, tags, names);
        out.insert(out.end(), rec.begin(), rec.end());
    }
    out.insert(out.end(), tags.begin(), tags.end());
    for (const std::string& name : names) {
        out.push_back(static_cast<uint8_t>(name.size() + 1));
        out.push_back(0);
        out.insert(out.end(), name.begin(), name.end());
        out.push_back(0);
    }
    addWord(out, 12, 1);
    addWord(out, 20, firstHead);
    addWord(out, 36, 1);
    addWord(out, 40, static_cast<int64_t>(all.size()));
    addWord(out, 48, static_cast<int64_t>(tags.size() / recordSize[TAG]));
    addWord(out, 64, static_cast<int64_t>(names.size()));
    return out;
}

} // namespace stx
