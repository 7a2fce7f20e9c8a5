#include "stxcodes.h"

// Names of the codes of the file. A code that a table does not know is printed as its number alone.

namespace stx {

// clang-format off
const TypeRow typeTable[typeCount] = {
    {"TYP_BOOLEAN", "BOOLEAN", 1, false, false, false, false},  // 0
    {"TYP_INTEGER", "INTEGER", 2, false, false, false, true},  // 1
    {"TYP_ENUM", "ENUMERATED", 10, false, false, false, true},  // 2
    {"TYP_REAL", "REAL", 9, false, false, false, false},  // 3
    {"TYP_BITSTR", "BIT STRING", 3, false, true, true, true},  // 4
    {"TYP_OCTSTR", "OCTET STRING", 4, false, true, true, true},  // 5
    {"TYP_NULL", "NULL", 5, false, false, false, false},  // 6
    {"TYP_SEQ", "SEQUENCE", 16, true, false, true, false},  // 7
    {"TYP_SEQOF", "SEQUENCE OF", 16, true, false, true, true},  // 8
    {"TYP_SET", "SET", 17, true, false, true, false},  // 9
    {"TYP_SETOF", "SET OF", 17, true, false, true, true},  // 10
    {"TYP_CHOICE", "CHOICE", -2, true, false, true, false},  // 11
    {"TYP_ANY", "ANY", -3, false, false, true, false},  // 12
    {"TYP_EMB_PDV", "EMBEDDED PDV", 11, false, false, true, false},  // 13
    {"TYP_OBJID", "OBJECT IDENTIFIER", 6, false, true, true, false},  // 14
    {"TYP_NUMSTR", "NumericString", 18, false, true, true, true},  // 15
    {"TYP_PRISTR", "PrintableString", 19, false, true, true, true},  // 16
    {"TYP_TELSTR", "TeletexString", 20, false, true, true, true},  // 17
    {"TYP_VIDSTR", "VideotexString", 21, false, true, true, true},  // 18
    {"TYP_VISSTR", "VisibleString", 26, false, true, true, true},  // 19
    {"TYP_IA5STR", "IA5String", 22, false, true, true, true},  // 20
    {"TYP_GRASTR", "GraphicString", 25, false, true, true, true},  // 21
    {"TYP_GENSTR", "GeneralString", 27, false, true, true, true},  // 22
    {"TYP_BMPSTR", "BMPString", 30, false, true, true, true},  // 23
    {"TYP_UNISTR", "UniversalString", 28, false, true, true, true},  // 24
    {"TYP_CHASTR", "CHARACTER STRING", 29, false, false, true, false},  // 25
    {"TYP_GENTIME", "GeneralizedTime", 24, false, true, true, false},  // 26
    {"TYP_UTCTIME", "UTCTime", 23, false, true, true, false},  // 27
    {"TYP_EXTERNAL", "EXTERNAL", 8, false, false, true, false},  // 28
    {"TYP_EXTERNAL", "EXTERNAL", 8, false, false, true, false},  // 29
    {"TYP_OBJDESCR", "ObjectDescriptor", 7, false, true, true, true},  // 30
    {"TYP_INSTANCE_OF", "InstanceOfType", 8, true, false, true, false},  // 31
    {"TYP_SYNONYM", "", -4, false, false, false, false},  // 32
    {"TYP_EXTENSION_MARKER", "", -5, false, false, false, false},  // 33
    {"TYP_SELECTION", "Selection type", -9, true, false, false, false},  // 34
    {"TYP_FIELDLIST", "", -8, false, false, false, false},  // 35
    {"TYP_OPEN", "Open type", -7, false, false, false, false},  // 36
    {"TYP_CLASS", "CLASS", -6, true, false, true, false},  // 37
    {"TYP_TYPE_ID", "TYPE-IDENTIFIER", -6, false, false, true, false},  // 38
    {"TYP_ABSTR_STX", "ABSTRACT-SYNTAX", -6, false, false, true, false},  // 39
    {"TYP_EXTADDGRP", "", -10, true, false, false, false},  // 40
    {"TYP_NONE", "", -11, false, false, false, false},  // 41
    {"TYP_UTF8STR", "UTF8String", 12, false, true, true, true},  // 42
    {"TYP_RELOID", "RELATIVE-OID", 13, false, true, true, false},  // 43
    {"TYP_OIDIRI", "OID-IRI", 35, false, true, false, false},  // 44
    {"TYP_RELOIDIRI", "RELATIVE-OID-IRI", 36, false, true, false, false},  // 45
    {"TYP_TIME", "TIME", 14, false, true, false, false},  // 46
    {"TYP_DATE", "DATE", 31, false, true, false, false},  // 47
    {"TYP_TIMEOFDAY", "TIME-OF-DAY", 32, false, true, false, false},  // 48
    {"TYP_DATETIME", "DATE-TIME", 33, false, true, false, false},  // 49
    {"TYP_DURATION", "DURATION", 34, false, true, false, false},  // 50
};

namespace {

constexpr CodeName typeRows[] = {
    {0, "TYP_BOOLEAN"},
    {1, "TYP_INTEGER"},
    {2, "TYP_ENUM"},
    {3, "TYP_REAL"},
    {4, "TYP_BITSTR"},
    {5, "TYP_OCTSTR"},
    {6, "TYP_NULL"},
    {7, "TYP_SEQ"},
    {8, "TYP_SEQOF"},
    {9, "TYP_SET"},
    {10, "TYP_SETOF"},
    {11, "TYP_CHOICE"},
    {12, "TYP_ANY"},
    {13, "TYP_EMB_PDV"},
    {14, "TYP_OBJID"},
    {15, "TYP_NUMSTR"},
    {16, "TYP_PRISTR"},
    {17, "TYP_TELSTR"},
    {18, "TYP_VIDSTR"},
    {19, "TYP_VISSTR"},
    {20, "TYP_IA5STR"},
    {21, "TYP_GRASTR"},
    {22, "TYP_GENSTR"},
    {23, "TYP_BMPSTR"},
    {24, "TYP_UNISTR"},
    {25, "TYP_CHASTR"},
    {26, "TYP_GENTIME"},
    {27, "TYP_UTCTIME"},
    {28, "TYP_EXTERNAL"},
    {29, "TYP_EXTERNAL"},
    {30, "TYP_OBJDESCR"},
    {31, "TYP_INSTANCE_OF"},
    {32, "TYP_SYNONYM"},
    {33, "TYP_EXTENSION_MARKER"},
    {34, "TYP_SELECTION"},
    {35, "TYP_FIELDLIST"},
    {36, "TYP_OPEN"},
    {37, "TYP_CLASS"},
    {38, "TYP_TYPE_ID"},
    {39, "TYP_ABSTR_STX"},
    {40, "TYP_EXTADDGRP"},
    {41, "TYP_NONE"},
    {42, "TYP_UTF8STR"},
    {43, "TYP_RELOID"},
    {44, "TYP_OIDIRI"},
    {45, "TYP_RELOIDIRI"},
    {46, "TYP_TIME"},
    {47, "TYP_DATE"},
    {48, "TYP_TIMEOFDAY"},
    {49, "TYP_DATETIME"},
    {50, "TYP_DURATION"},
};
constexpr CodeName compStatusRows[] = {
    {0, "TCS_MANDATORY"},
    {1, "TCS_OPTIONAL"},
    {2, "TCS_COMPOF"},
    {3, "TCS_CHOICE"},
    {4, "TCS_MULTIPLE"},
    {5, "TCS_HEADER"},
    {6, "TCS_FORMAL"},
    {7, "TCS_EXTADDGRP"},
    {-1, "TCS_OPTIONAL (negated)"},
    {-2, "TCS_COMPOF (negated)"},
    {-3, "TCS_CHOICE (negated)"},
    {-4, "TCS_MULTIPLE (negated)"},
    {-5, "TCS_HEADER (negated)"},
    {-6, "TCS_FORMAL (negated)"},
    {-7, "TCS_EXTADDGRP (negated)"},
};
constexpr CodeName subKindRows[] = {
    {1, "SUB_UNION"},
    {2, "SUB_INTERSECTION"},
    {3, "SUB_SERIAL"},
    {4, "SUB_EXCEPT"},
    {5, "SUB_ALL_EXCEPT"},
    {10, "SUB_RANGE"},
    {11, "SUB_PERMITTED_ALPHABET"},
    {12, "SUB_SIZE"},
    {13, "SUB_SINGLE_VALUE"},
    {14, "SUB_CONTAINED_SUBTYPE"},
    {15, "SUB_WITH_COMPONENT"},
    {16, "SUB_WITH_COMPONENTS"},
    {17, "SUB_TABLE"},
    {19, "SUB_USER_DEFINED"},
    {20, "SUB_EXCEPTION"},
    {21, "SUB_OPEN_TYPE"},
    {22, "SUB_EXTENSION_MARKER"},
    {24, "SUB_CONTENTS"},
    {25, "SUB_PATTERN"},
    {26, "SUB_SETTINGS"},
};
constexpr CodeName subFlagRows[] = {
    {1, "EXCEPTION"},
    {2, "FULL"},
    {4, "PRESENT"},
    {8, "ABSENT"},
    {16, "OPTIONAL"},
    {32, "LOWER"},
    {64, "UPPER"},
};
constexpr CodeName tagClassRows[] = {
    {0, "UNIVERSAL"},
    {1, "APPLICATION"},
    {2, "CONTEXT"},
    {3, "PRIVATE"},
};
constexpr CodeName tagModeRows[] = {
    {0, "IMPLICIT"},
    {1, "EXPLICIT"},
    {2, "OPEN"},
};
constexpr CodeName refModRows[] = {
    {0, "none"},
    {1, "OWN"},
    {-1, "FORMAL"},
    {-2, "OBJECT"},
    {-12, "DEFERRED"},
};
constexpr CodeName valStatusRows[] = {
    {0, "VST_NAMED_NUMBER"},
    {1, "VST_NAMED_BIT"},
    {2, "VST_HEADER"},
    {3, "VST_DEFAULT"},
    {4, "VST_ACTUAL"},
    {5, "VST_ROOT_ARC"},
    {6, "VST_ITU_ARC"},
    {7, "VST_ISO_ARC"},
    {8, "VST_LETTER_ARC"},
    {100, "VST_PLAIN"},
};
constexpr CodeName valueFlagRows[] = {
    {1, "ASSIGNMENT"},
    {2, "SET"},
    {4, "TED2"},
    {8, "TED3"},
    {16, "VARIABLE"},
    {32, "CONTENTS"},
};
constexpr CodeName nodeFlagRows[] = {
    {2, "ASSIGNMENT"},
    {8, "SET"},
    {32, "VARIABLE"},
    {64, "IGNORABLE_CHECKED"},
    {128, "DUMMY"},
};
constexpr CodeName checkFlagRows[] = {
    {0x0001, "OPTIONALS"},
    {0x0002, "LIST_OF_LISTS"},
    {0x0004, "LIST_OF_REPR_LISTS"},
    {0x0008, "INDETERMINATE_TAG"},
    {0x0010, "UNIQUE"},
    {0x0020, "RECURSIVE"},
    {0x0040, "MANDATORY"},
    {0x0080, "EXTENSIBLE"},
    {0x0100, "AUTOMATIC_TAGS"},
    {0x0800, "IGNORABLE"},
};
constexpr CodeName checkStateRows[] = {
    {0, "NEW"},
    {1, "SOLVED"},
    {2, "RUNNING"},
    {3, "DONE"},
};
constexpr CodeName optFlagRows[] = {
    {1 << 1, "CODE"},
    {1 << 2, "BEO"},
    {1 << 3, "OPTION"},
    {1 << 4, "ENTRY"},
    {1 << 5, "SKIP"},
    {1 << 6, "ASNH"},
    {1 << 7, "PTR"},
    {1 << 8, "ASNHC"},
    {1 << 10, "FRAME"},
    {1 << 11, "SEG"},
    {1 << 12, "DYN"},
    {1 << 13, "DYNARR"},
    {1 << 14, "PLMBOOLE"},
    {1 << 15, "NEAR"},
    {1 << 16, "ANY"},
    {1 << 17, "EXTENSIONS"},
};
constexpr CodeName tedKindRows[] = {
    {0, "REJECTED"},
    {1, "CODE"},
    {2, "BEO"},
    {3, "OPTION"},
    {4, "ENTRY"},
    {5, "SKIP"},
    {6, "ASNH"},
    {7, "PTR"},
    {8, "ASNHC"},
    {10, "FRAME"},
    {11, "SEG"},
    {12, "DYN"},
    {13, "DYNARR"},
};
constexpr CodeName vfKindRows[] = {
    {0, "none"},
    {1, "BOOLEAN"},
    {2, "UNSIGNED_8"},
    {3, "UNSIGNED_16"},
    {4, "UNSIGNED_32"},
    {5, "UNSIGNED_64"},
    {6, "SIGNED_8"},
    {7, "SIGNED_16"},
    {8, "SIGNED_32"},
    {9, "SIGNED_64"},
    {10, "REAL_32"},
    {11, "REAL_64"},
    {12, "REAL_128"},
    {13, "STRING"},
    {14, "STRING_LEN8"},
    {15, "STRING_LEN16"},
    {16, "STRING_LEN32"},
    {17, "DYNAMIC_STRING"},
    {18, "DYNAMIC_STRING_LEN8"},
    {19, "DYNAMIC_STRING_LEN16"},
    {20, "DYNAMIC_STRING_LEN32"},
    {21, "SEGMENTED"},
    {22, "FRAME"},
    {23, "NULL"},
    {24, "STRUCTURE"},
    {25, "ANY"},
    {26, "EMBEDDED_PDV"},
    {27, "OBJECT_IDENTIFIER"},
    {28, "TIME"},
    {29, "EXTERNAL_1990"},
    {30, "EXTERNAL_1994"},
    {31, "OPEN_TYPE"},
    {32, "DYNAMIC_BMP"},
    {33, "DYNAMIC_BMP_LEN8"},
    {34, "DYNAMIC_BMP_LEN16"},
    {35, "DYNAMIC_BMP_LEN32"},
};
constexpr CodeName sizeRows[] = {
    {0, "none"},
    {2, "U8"},
    {3, "U16"},
    {4, "U32"},
    {5, "U64"},
    {6, "8"},
    {7, "16"},
    {8, "32"},
    {9, "64"},
    {10, "REAL_32"},
    {11, "REAL_64"},
    {12, "REAL_128"},
};
constexpr CodeName tokenRows[] = {
    {0, "TOK_EOF"},
    {10, "TOK_BAD"},
    {11, "TOK_ABSENT"},
    {12, "TOK_ALL"},
    {13, "TOK_ANY"},
    {14, "TOK_APPLICATION"},
    {15, "TOK_AUTOMATIC"},
    {16, "TOK_BEGIN"},
    {17, "TOK_BIT"},
    {18, "TOK_BOOLEAN"},
    {19, "TOK_BY"},
    {20, "TOK_CHARACTER"},
    {21, "TOK_CHOICE"},
    {22, "TOK_CLASS"},
    {23, "TOK_COMPONENT"},
    {24, "TOK_COMPONENTS"},
    {25, "TOK_CONSTRAINED"},
    {26, "TOK_CONTAINING"},
    {27, "TOK_DEFAULT"},
    {28, "TOK_DEFINED"},
    {29, "TOK_DEFINITIONS"},
    {30, "TOK_EMBEDDED"},
    {31, "TOK_END"},
    {32, "TOK_ENUMERATED"},
    {33, "TOK_EXCEPT"},
    {34, "TOK_EXPLICIT"},
    {35, "TOK_EXPORTS"},
    {36, "TOK_EXTENSIBILITY"},
    {37, "TOK_FALSE"},
    {38, "TOK_FROM"},
    {39, "TOK_IDENTIFIER"},
    {40, "TOK_IMPLICIT"},
    {41, "TOK_IMPLIED"},
    {42, "TOK_IMPORTS"},
    {43, "TOK_INCLUDES"},
    {44, "TOK_INSTANCE"},
    {45, "TOK_INTEGER"},
    {46, "TOK_INTERSECTION"},
    {47, "TOK_MAX"},
    {48, "TOK_MIN"},
    {49, "TOK_MINUS_INFINITY"},
    {50, "TOK_NULL"},
    {51, "TOK_OBJECT"},
    {52, "TOK_OCTET"},
    {53, "TOK_OF"},
    {54, "TOK_OPTIONAL"},
    {55, "TOK_PDV"},
    {56, "TOK_PLUS_INFINITY"},
    {57, "TOK_PRESENT"},
    {58, "TOK_PRIVATE"},
    {59, "TOK_REAL"},
    {60, "TOK_SEQUENCE"},
    {61, "TOK_SET"},
    {62, "TOK_SIZE"},
    {63, "TOK_STRING"},
    {64, "TOK_SYNTAX"},
    {65, "TOK_TAGS"},
    {66, "TOK_TRUE"},
    {67, "TOK_UNION"},
    {68, "TOK_UNIQUE"},
    {69, "TOK_UNIVERSAL"},
    {70, "TOK_WITH"},
    {90, "TOK_ASSIGN"},
    {91, "TOK_COMMA"},
    {92, "TOK_DOT"},
    {93, "TOK_LESS"},
    {94, "TOK_LPAREN"},
    {95, "TOK_RPAREN"},
    {96, "TOK_LBRACE"},
    {97, "TOK_RBRACE"},
    {98, "TOK_LBRACKET"},
    {99, "TOK_RBRACKET"},
    {100, "TOK_BAR"},
    {101, "TOK_MINUS"},
    {102, "TOK_COLON"},
    {103, "TOK_SEMICOLON"},
    {104, "TOK_EXCLAMATION"},
    {105, "TOK_AT"},
    {106, "TOK_ASTERISK"},
    {107, "TOK_RANGE"},
    {108, "TOK_ELLIPSIS"},
    {109, "TOK_CARET"},
    {110, "TOK_LVERSION"},
    {111, "TOK_RVERSION"},
    {120, "TOK_NUMBER"},
    {121, "TOK_VALUEID"},
    {122, "TOK_TYPEID"},
    {123, "TOK_BSTRING"},
    {124, "TOK_HSTRING"},
    {125, "TOK_CSTRING"},
    {126, "TOK_TYPEFIELDID"},
    {127, "TOK_VALUEFIELDID"},
    {128, "TOK_COMPONENTID"},
    {129, "TOK_MODULEID"},
    {130, "TOK_MARKER"},
    {131, "TOK_ABSTRACT_SYNTAX"},
    {132, "TOK_BMPSTRING"},
    {133, "TOK_EXTERNAL"},
    {134, "TOK_GENERALSTRING"},
    {135, "TOK_GENERALIZEDTIME"},
    {136, "TOK_GRAPHICSTRING"},
    {137, "TOK_IA5STRING"},
    {138, "TOK_ISO646STRING"},
    {139, "TOK_NUMERICSTRING"},
    {140, "TOK_OBJECTDESCRIPTOR"},
    {141, "TOK_PRINTABLESTRING"},
    {142, "TOK_T61STRING"},
    {143, "TOK_TYPE_IDENTIFIER"},
    {144, "TOK_TELETEXSTRING"},
    {145, "TOK_UTCTIME"},
    {146, "TOK_UNIVERSALSTRING"},
    {147, "TOK_VIDEOTEXSTRING"},
    {148, "TOK_VISIBLESTRING"},
    {149, "TOK_REALNUMBER"},
    {150, "TOK_DATE"},
    {151, "TOK_DATE_TIME"},
    {152, "TOK_DURATION"},
    {153, "TOK_ENCODED"},
    {154, "TOK_ENCODING_CONTROL"},
    {155, "TOK_INSTRUCTIONS"},
    {156, "TOK_NOT_A_NUMBER"},
    {157, "TOK_OID_IRI"},
    {158, "TOK_PATTERN"},
    {159, "TOK_RELATIVE_OID"},
    {160, "TOK_RELATIVE_OID_IRI"},
    {161, "TOK_SETTINGS"},
    {162, "TOK_TIME"},
    {163, "TOK_TIME_OF_DAY"},
    {164, "TOK_UTF8STRING"},
};
constexpr CodeName entryFlagRows[] = {
    {4, "ENCF"},
    {8, "DECF"},
    {16, "ASKF"},
    {32, "PRIF"},
    {64, "ENTRY"},
};
constexpr CodeName exportsRows[] = {
    {0, "all"},
    {1, "nothing"},
    {2, "list"},
};
constexpr CodeName importsRows[] = {
    {0, "none"},
    {1, "nothing"},
    {2, "list"},
    {16, "by external reference, none"},
    {17, "by external reference, nothing"},
    {18, "by external reference, list"},
    {32, "by IMPORTS, none"},
    {33, "by IMPORTS, nothing"},
    {34, "by IMPORTS, list"},
};
constexpr CodeName selectionRows[] = {
    {0, "none"},
    {1, "SUCCESSORS"},
    {2, "DESCENDANTS"},
};
constexpr CodeName formRows[] = {
    {0, "INDEFINITE"},
    {1, "DEFINITE"},
    {255, "not given"},
};
constexpr CodeName skipRows[] = {
    {0, "IGNORE"},
    {1, "ERROR"},
    {255, "not given"},
};
constexpr CodeName moduleOptionRows[] = {
    {1 << 0, "TYP"},
    {1 << 1, "DEF"},
    {1 << 2, "TAB"},
    {1 << 3, "TABF"},
    {1 << 4, "TDEFS"},
    {1 << 5, "CDEFS"},
    {1 << 6, "TABO"},
    {1 << 7, "ANSI-C"},
    {1 << 8, "PUSHPATH"},
    {1 << 9, "REENTRANT"},
    {1 << 10, "PLMBOOLE"},
    {1 << 11, "NEAR"},
    {1 << 12, "ALTTAB"},
    {1 << 13, "ASNHC"},
    {1 << 14, "OPTVARS"},
    {1 << 15, "OMIT-SKIPPED-FIELDS"},
    {1 << 16, "MEMORY"},
    {1 << 17, "ZEROHOME"},
    {1 << 18, "EXTENSIONS"},
    {1 << 19, "XREF"},
    {1 << 20, "LIST"},
    {1 << 21, "ALLOW"},
    {1 << 22, "LENIENT"},
};
constexpr CodeName standardRows[] = {
    {1, "1990"},
    {2, "2021"},
};
constexpr CodeName cGenerationRows[] = {
    {1, "OLD"},
    {2, "REAL"},
    {4, "COMMONTIME"},
    {8, "EXTERNAL"},
    {16, "SIGNED-CONTROL-MEMBER"},
    {32, "ANY-FUNCTIONS"},
};
// clang-format on

} // namespace

const std::span<const CodeName> typeNames{typeRows}, compStatusNames{compStatusRows},
    subKindNames{subKindRows}, subFlagNames{subFlagRows}, tagClassNames{tagClassRows},
    tagModeNames{tagModeRows}, refModNames{refModRows}, valStatusNames{valStatusRows},
    valueFlagNames{valueFlagRows}, nodeFlagNames{nodeFlagRows}, checkFlagNames{checkFlagRows},
    checkStateNames{checkStateRows}, optFlagNames{optFlagRows}, tedKindNames{tedKindRows},
    vfKindNames{vfKindRows}, sizeNames{sizeRows}, tokenNames{tokenRows},
    entryFlagNames{entryFlagRows}, exportsNames{exportsRows}, importsNames{importsRows},
    selectionNames{selectionRows}, formNames{formRows}, skipNames{skipRows},
    moduleOptionNames{moduleOptionRows}, cGenerationNames{cGenerationRows},
    standardNames{standardRows};

} // namespace stx
