#include "support/pass1.h"

#include "diag/orvoerr_text.h"
#include "driver/orvofil.h"
#include "parser/parser.h"
#include "symtab/orvosym.h"

namespace orvo {
namespace {

std::string nameOf(int32_t name) {
    return name == 0 ? "" : std::string(getStri(cMP, name));
}

TNode readType(uint32_t nr) {
    readRec(cMP, TNodeNr{nr});
    return tNode;
}
VNode readValue(uint32_t nr) {
    readRec(cMP, VNodeNr{nr});
    return vNode;
}

std::string typeText(uint32_t nr);

std::string tokenText(const Token& token) {
    switch (token.code) {
    case TOK_NUMBER: return std::to_string(i64native(token.value));
    case TOK_MARKER: return "#(" + typeText(token.value.low) + ")";
    case TOK_MODULEID: return "M" + std::to_string(token.stri());
    case TOK_CSTRING: return '"' + nameOf(token.stri()) + '"';
    default: break;
    }
    if (token.code < TOK_VALUEID || token.code > TOK_COMPONENTID)
        return std::string(tokenName(token.code));
    const bool isField = token.code == TOK_TYPEFIELDID || token.code == TOK_VALUEFIELDID;
    return (isField ? "&" : "") + nameOf(token.stri());
}

std::string rangeText(DNodeNr nr) {
    if (!nr) return "";
    readRec(cMP, nr);
    std::string text;
    for (TokNr at{dNode.first}; at; at = TokNr{tokenAt(at).next})
        text += (text.empty() ? "" : " ") + tokenText(tokenAt(at));
    return text;
}

std::string referenceText(int32_t refMod, uint32_t ref, DNodeNr actuals) {
    std::string text = nameOf(signedWord(ref));
    if (refMod == REF_FORMAL) text = "#" + std::to_string(ref);
    if (refMod > REF_UNRESOLVED) text = "M" + std::to_string(refMod) + "." + text;
    if (actuals) text += "<" + rangeText(actuals) + ">";
    return text;
}

std::string valueText(uint32_t nr) {
    const VNode value = readValue(nr);
    if (value.refMod == REF_DEFERRED) return rangeText(deferredText(value));
    switch (value.valCode) {
    case TYP_INTEGER: return std::to_string(i64native(value.val.number));
    case TYP_SYNONYM: return referenceText(value.refMod, value.ref, deferredText(value.deferred));
    case TYP_OPEN: return "type " + typeText(value.ref);
    case TYP_ENUM: return "";
    default: return typeArr[value.valCode].name;
    }
}

std::string namedText(uint32_t first) {
    std::string text;
    for (uint32_t nr = first; nr != 0;) {
        const VNode value = readValue(nr);
        if (!text.empty()) text += ", ";
        if (value.valCode == TYP_EXTENSION_MARKER)
            text += "...";
        else {
            const std::string number = valueText(nr);
            text += nameOf(value.name) + (number.empty() ? "" : "=" + number);
        }
        nr = value.next;
    }
    return "{" + text + "}";
}

std::string tagsText(uint32_t first) {
    std::string text;
    for (uint32_t nr = first; nr != 0;) {
        readRec(cMP, TagNr{nr});
        const TagRec tag = tagRec;
        const std::string number =
            tag.tagNr < 0 ? "@" + valueText(magnitude(tag.tagNr)) : std::to_string(tag.tagNr);
        text += std::string("[") + "UACP"[tag.tagClass] + number + "/" + "ie?"[tag.tagMode] + "] ";
        nr = tag.next;
    }
    return text;
}

std::string fieldsText(int32_t first) {
    std::string text;
    for (int32_t nr = first; nr > 0;) {
        readRec(cMP, SNodeNr{static_cast<uint32_t>(nr)});
        text += ".&" + nameOf(sNode.value);
        nr = sNode.next;
    }
    return text;
}

std::string memberText(uint32_t nr) {
    const TNode node = readType(nr);
    if (node.typeCode == TYP_EXTENSION_MARKER) return "...";
    if (node.compStatus == TCS_COMPOF) return "COMPOF " + typeText(nr);
    std::string text = node.typeCode == TYP_EXTADDGRP ? "" : nameOf(node.name);
    if ((node.nodeFlags & NF_SET) != 0) text += "*";
    if (node.defaultVal != 0)
        text += "=" + valueText(node.defaultVal);
    else if (node.compStatus == TCS_OPTIONAL)
        text += "?";
    return text + (text.empty() ? "" : " ") + typeText(nr);
}

std::string membersText(uint32_t first) {
    std::string text;
    for (uint32_t nr = first; nr != 0; nr = readType(nr).next)
        text += (text.empty() ? "" : ", ") + memberText(nr);
    return text;
}

std::string bodyText(const TNode& node) {
    switch (node.typeCode) {
    case TYP_SYNONYM: return referenceText(node.refMod, node.ref, deferredText(node.syntax));
    case TYP_FIELDLIST:
        return (node.refMod == REF_OBJECT             ? "object " + valueText(node.ref)
                : (node.nodeFlags & NF_VARIABLE) != 0 ? "class"
                                                      : typeText(node.ref)) +
               fieldsText(node.syntax);
    case TYP_SELECTION: return fieldsText(node.syntax).substr(2) + " < " + typeText(node.ref);
    case TYP_ANY: return node.syntax == 0 ? "" : fieldsText(node.syntax).substr(2);
    case TYP_SEQOF:
    case TYP_SETOF:
    case TYP_INSTANCE_OF: return typeText(node.ref);
    default: return "";
    }
}

std::string typeText(uint32_t nr) {
    const TNode node = readType(nr);
    std::string text = tagsText(node.tags);
    if (node.typeCode == TYP_EXTADDGRP) return "[[" + membersText(node.ref) + "]]";
    text += std::string(typeArr[node.typeCode].name).substr(4);
    const std::string body = bodyText(node);
    if (!body.empty()) text += "(" + body + ")";
    const bool hasMembers = node.typeCode == TYP_SEQ || node.typeCode == TYP_SET ||
                            node.typeCode == TYP_CHOICE || node.typeCode == TYP_CLASS;
    if (hasMembers) text += "{" + membersText(node.ref) + "}";
    if (node.namedVals != 0) text += namedText(node.namedVals);
    if (isDeferred(node.constraint)) text += " :: " + rangeText(deferredText(node.constraint));
    return text;
}

} // namespace

Pass1Test::Pass1Test() {
    reset();
}

Pass1Test::~Pass1Test() {
    reset();
    resetStore();
}

void Pass1Test::reset() {
    resetStore();
    resetTokens();
    resetSymbols();
    run.verbose = VERBOSE_NONE;
    module = newModuleRec();
    appendModuleRec(module);
    changeCMP(module);
    module->options.xref = true;
    initAnyPassVars();
}

void Pass1Test::parseSource(const std::string& text) {
    reset();
    module->srcFile = std::tmpfile();
    ASSERT_NE(module->srcFile, nullptr);
    std::fwrite(text.data(), 1, text.size(), module->srcFile);
    std::rewind(module->srcFile);
    char program[] = "orvo";
    char* arguments[] = {program, nullptr};
    parse(1, arguments);
    std::fclose(module->srcFile);
    module->srcFile = nullptr;
    flushRecs(-1);
}

void Pass1Test::parseBody(const std::string& body, const std::string& header) {
    parseSource("M DEFINITIONS " + header + " ::= BEGIN\n" + body + "\nEND\n");
}

std::string Pass1Test::errors() const {
    std::string text;
    for (const ErrRec& record : module->errors) {
        size_t start = 0;
        const std::string whole = printError(record, start);
        text += std::to_string(record.line) + ": " +
                whole.substr(start, whole.find('\n', start) - start) + "\n";
    }
    return text;
}

TNodeNr Pass1Test::head(std::string_view name) const {
    for (TNodeNr nr = module->firstTypeHead; nr; nr = TNodeNr{readType(nr.nr).next})
        if (nameOf(readType(nr.nr).name) == name) return nr;
    ADD_FAILURE() << "no type " << name;
    return {};
}

VNodeNr Pass1Test::valueHead(std::string_view name) const {
    for (VNodeNr nr = module->firstValueHead; nr; nr = VNodeNr{readValue(nr.nr).next})
        if (nameOf(readValue(nr.nr).name) == name) return nr;
    ADD_FAILURE() << "no value " << name;
    return {};
}

TNode Pass1Test::typeAt(TNodeNr nr) const {
    return readType(nr.nr);
}

VNode Pass1Test::valueAt(VNodeNr nr) const {
    return readValue(nr.nr);
}

std::string Pass1Test::describe(TNodeNr nr) const {
    return nr ? typeText(nr.nr) : "";
}

std::string Pass1Test::describe(VNodeNr nr) const {
    return nr ? valueText(nr.nr) : "";
}

std::string Pass1Test::typeOf(const std::string& type, const std::string& header) {
    parseBody("T ::= " + type, header);
    return module->errors.empty() ? describe(head("T")) : errors();
}

} // namespace orvo
