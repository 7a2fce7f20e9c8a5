// Object identifier values (X.680 (07/2002) clause 31).

#include "parser/parser_oid.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_val.h"
#include "solve/solve_val_int.h"
#include "tree/orvorec.h"
#include "tree/values.h"

namespace orvo {

namespace {

/// A number, or a well-known name that was turned into one: its level becomes the role of the
/// record.
void parseNumberObjIdComp(const Token& token) {
    setValNode(TYP_INTEGER);
    vNode.val.number = token.value;
    if (token.value.high >= 0) return;
    vNode.valStatus = static_cast<int32_t>(magnitude(token.value.high));
    vNode.val.number.high = 0;
}

/// `identifier (number or reference)`; the cursor stands on the identifier.
bool parseIdentifierObjIdComp(const Token& token, Cause& cause) {
    vNode.name = token.stri();
    if (!advance() || !advance()) return false;
    if (curCode() == TOK_NUMBER) {
        setValNode(TYP_INTEGER);
        vNode.val.number = curToken().value;
    } else if (!definedValueFollows() || parseDefinedValue(false, cause) != Msg::None) {
        cause.set(Msg::DefinedValueSyntax);
        return false;
    }
    if (advance() && curCode() == TOK_RPAREN) return true;
    cause.set(tokenExpected(TOK_RPAREN));
    return false;
}

/// The component at the cursor, the position-th of the value, into the current value record.
bool parseObjIdComp(uint32_t position, Cause& cause) {
    Token token = curToken();
    convertObjIdComp(cMP, token, nextCode(), position);
    if (token.code == TOK_NUMBER) {
        parseNumberObjIdComp(token);
        return true;
    }
    if (token.code == TOK_COMPONENTID) return parseIdentifierObjIdComp(token, cause);
    if (!definedValueFollows()) return false;
    if (parseDefinedValue(false, cause) == Msg::None) return true;
    cause.set(Msg::DefinedValueSyntax);
    return false;
}

} // namespace

bool parseObjIdValue(Cause& cause) {
    if (curCode() != TOK_LBRACE) return false;
    ValueList components;
    uint32_t position = 0;
    while (advance() && curCode() != TOK_RBRACE) {
        components.append(curToken().line);
        if (!parseObjIdComp(++position, cause)) return false;
    }
    return position != 0 && curCode() == TOK_RBRACE;
}

} // namespace orvo
