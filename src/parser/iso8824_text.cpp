// Joined as they stand the pieces are one line of text: every piece ends in a blank, but those that
// end at a bar or an opening parenthesis of an alphabet. UniversalString is not defined: it is the
// primitive base that addSynonym puts under the character string types.

#include "parser/iso8824_text.h"

#include <iterator>

namespace orvo {
namespace {

// clang-format off
constexpr const char* lines[] = {
    "--$ALLOW-- ",
    "ISO8824 DEFINITIONS IMPLICIT TAGS ::= ",
    "BEGIN ",
    "IMPORTS; ",
    "ObjectDescriptor ::= [UNIVERSAL 7] IMPLICIT GraphicString ",
    "EXTERNAL-1990 ::= [UNIVERSAL 8] IMPLICIT SEQUENCE { ",
        "direct-reference OBJECT IDENTIFIER OPTIONAL, ",
        "indirect-reference INTEGER OPTIONAL, ",
        "data-value-descriptor ObjectDescriptor OPTIONAL, ",
        "encoding CHOICE { ",
            "single-ASN1-type [0] ABSTRACT-SYNTAX.&Type, ",
            "octet-aligned [1] OCTET STRING, ",
            "arbitrary [2] BIT STRING ",
        "} ",
    "} ",
    "EXTERNAL-1994 ::= [UNIVERSAL 8] IMPLICIT SEQUENCE { ",
        "identification [0] CHOICE { ",
            "syntax [1] OBJECT IDENTIFIER, ",
            "presentation-context-id [2] INTEGER, ",
            "context-negotiation [3] SEQUENCE { ",
                "presentation-context-id [0] INTEGER, ",
                "transfer-syntax [1] OBJECT IDENTIFIER ",
            "} ",
        "}, ",
        "data-value-descriptor [1] ObjectDescriptor OPTIONAL, ",
        "data-value [2] CHOICE { ",
            "notation [0] ABSTRACT-SYNTAX.&Type, ",
            "encoded [1] BIT STRING ",
        "} ",
    "} ",
    "UTCTime ::= [UNIVERSAL 23] IMPLICIT VisibleString ",
    "GeneralizedTime ::= [UNIVERSAL 24] IMPLICIT VisibleString ",
    "NumericString ::= [UNIVERSAL 18] IMPLICIT PrintableString (FROM (",
        "\"0\"|\"1\"|\"2\"|", "\"3\"|\"4\"|\"5\"|", "\"6\"|\"7\"|\"8\"|", "\"9\"|\" \")) ",
    "PrintableString ::= [UNIVERSAL 19] IMPLICIT UniversalString (FROM (",
        "\"A\"|\"B\"|\"C\"|", "\"D\"|\"E\"|\"F\"|", "\"G\"|\"H\"|\"I\"|", "\"J\"|\"K\"|\"L\"|",
        "\"M\"|\"N\"|\"O\"|", "\"P\"|\"Q\"|\"R\"|", "\"S\"|\"T\"|\"U\"|", "\"V\"|\"W\"|\"X\"|",
        "\"Y\"|\"Z\"|\"a\"|", "\"b\"|\"c\"|\"d\"|", "\"e\"|\"f\"|\"g\"|", "\"h\"|\"i\"|\"j\"|",
        "\"k\"|\"l\"|\"m\"|", "\"n\"|\"o\"|\"p\"|", "\"q\"|\"r\"|\"s\"|", "\"t\"|\"u\"|\"v\"|",
        "\"w\"|\"x\"|\"y\"|", "\"z\"|\"0\"|\"1\"|", "\"2\"|\"3\"|\"4\"|", "\"5\"|\"6\"|\"7\"|",
        "\"8\"|\"9\"|\" \"|", "\"'\"|\"(\"|\")\"|", "\"+\"|\",\"|\"-\"|", "\".\"|\"/\"|\":\"|",
        "\"=\"|\"?\")) ",
    "TeletexString ::= [UNIVERSAL 20] IMPLICIT UniversalString ",
    "T61String ::= TeletexString ",
    "VideotexString ::= [UNIVERSAL 21] IMPLICIT UniversalString ",
    "VisibleString ::= [UNIVERSAL 26] IMPLICIT UniversalString ",
    "ISO646String ::= VisibleString ",
    "IA5String ::= [UNIVERSAL 22] IMPLICIT UniversalString ",
    "GraphicString ::= [UNIVERSAL 25] IMPLICIT UniversalString ",
    "GeneralString ::= [UNIVERSAL 27] IMPLICIT UniversalString ",
    "BMPString ::= [UNIVERSAL 30] IMPLICIT UniversalString ",
    "TYPE-IDENTIFIER ::= CLASS { ",
        "&id OBJECT IDENTIFIER UNIQUE, ",
        "&Type ",
    "} ",
    "WITH SYNTAX { ",
        "&Type IDENTIFIED BY &id ",
    "} ",
    "ABSTRACT-SYNTAX ::= CLASS { ",
        "&id OBJECT IDENTIFIER, ",
        "&Type, ",
        "&property BIT STRING {handles-invalid-encodings(0)} DEFAULT {} ",
    "} ",
    "WITH SYNTAX { ",
        "&Type IDENTIFIED BY &id ",
        "[HAS PROPERTY &property] ",
    "} ",
    "CHARACTER-STRING ::= [UNIVERSAL 29] IMPLICIT SEQUENCE { ",
        "identification [0] CHOICE { ",
            "syntaxes [0] SEQUENCE { ",
                "abstract [0] OBJECT IDENTIFIER, ",
                "transfer [0] OBJECT IDENTIFIER ",
            "}, ",
            "syntax [1] OBJECT IDENTIFIER, ",
            "presentation-context-id [2] INTEGER, ",
            "context-negotiation [3] SEQUENCE { ",
                "presentation-context-id [0] INTEGER, ",
                "transfer-syntax [1] OBJECT IDENTIFIER ",
            "}, ",
            "transfer-syntax [4] OBJECT IDENTIFIER, ",
            "fixed [5] NULL ",
        "}, ",
        "data-value [2] CHOICE { ",
            "notation [0] ABSTRACT-SYNTAX.&Type, ",
            "encoded [1] OCTET STRING ",
        "} ",
    "} ",
    "EMBEDDED-PDV ::= [UNIVERSAL 11] IMPLICIT SEQUENCE { ",
        "identification [0] CHOICE { ",
            "syntaxes [0] SEQUENCE { ",
                "abstract [0] OBJECT IDENTIFIER, ",
                "transfer [0] OBJECT IDENTIFIER ",
            "}, ",
            "syntax [1] OBJECT IDENTIFIER, ",
            "presentation-context-id [2] INTEGER, ",
            "context-negotiation [3] SEQUENCE { ",
                "presentation-context-id [0] INTEGER, ",
                "transfer-syntax [1] OBJECT IDENTIFIER ",
            "}, ",
            "transfer-syntax [4] OBJECT IDENTIFIER, ",
            "fixed [5] NULL ",
        "}, ",
        "data-value [2] CHOICE { ",
            "notation [0] ABSTRACT-SYNTAX.&Type, ",
            "encoded [1] BIT STRING ",
        "} ",
    "} ",
    "InstanceOfType ::= [UNIVERSAL 8] IMPLICIT SEQUENCE { ",
        "type-id TYPE-IDENTIFIER.&id, ",
        "value [0] TYPE-IDENTIFIER.&Type ",
    "} ",
    "",
};
constexpr const char* later[] = {
    "UTF8String ::= [UNIVERSAL 12] IMPLICIT UniversalString ",
    "REAL-COMPONENTS ::= SEQUENCE { ",
        "mantissa INTEGER, ",
        "base INTEGER (2|10), ",
        "exponent INTEGER ",
    "} ",
};
// clang-format on
static_assert(std::size(lines) == 132 + 1);

} // namespace

std::span<const char* const> moduleLines() {
    return {lines, std::size(lines) - 1};
}

std::span<const char* const> laterLines() {
    return later;
}

} // namespace orvo
