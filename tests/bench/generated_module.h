#pragma once

#include <string>

namespace orvo {

/// A module of at least `size` bytes, made of assignments as protocol modules have them, comments
/// included. Every name is new, so symbol table and strings grow with the text.
inline std::string generatedModule(size_t size) {
    std::string text = "Generated DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n";
    for (size_t i = 0; text.size() < size; ++i) {
        const std::string n = std::to_string(i), previous = std::to_string(i == 0 ? 0 : i - 1);
        text += "\n-- message " + n +
                " and what it is made of --\n"
                "Message-" +
                n +
                " ::= SEQUENCE {\n"
                "    messageIdentifier-" +
                n + "  INTEGER (0..maxMessage-" + n +
                "),\n"
                "    priority               ENUMERATED { low, normal, high, ... } DEFAULT normal,\n"
                "    payload                OCTET STRING (SIZE (1..65535)),\n"
                "    alternatives           CHOICE {\n"
                "        none               NULL,\n"
                "        text               IA5String (SIZE (0..255)) (FROM (\"a\"..\"z\" | "
                "\"0\"..\"9\")),\n"
                "        earlier            Message-" +
                previous +
                "\n"
                "    } OPTIONAL,   -- absent in replies\n"
                "    elements               SEQUENCE (SIZE (1..16)) OF Element-" +
                n +
                ",\n"
                "    ...\n"
                "}\n"
                "Element-" +
                n +
                " ::= BIT STRING { first(0), second(1), third(2) } (SIZE (3))\n"
                "maxMessage-" +
                n +
                " INTEGER ::= 65535\n"
                "id-message-" +
                n + " OBJECT IDENTIFIER ::= { iso member-body(2) 752 " + n + " }\n";
    }
    return text + "\nEND\n";
}

} // namespace orvo
