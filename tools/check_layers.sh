#!/bin/bash
# Fails when a file under src/ includes a file of a higher layer. The layer of a unit goes by the first
# pattern that its path matches.
cd "$(dirname "$0")/.." || exit 1

layer_of() {
    case $1 in
    util/* | lex/orvotok.h | lex/tokens.def | lex/i64.* | diag/orvomsg.* | diag/messages.def) echo 0 ;;
    diag/orvoerr_fatal.* | diag/fatal.def | tree/orvodef.h | tree/orvomod.* | tree/*.def) echo 0 ;;
    tree/orvoutil_mem.*) echo 0 ;;
    diag/orvozov_types.*) echo 3 ;;
    diag/*) echo 1 ;;
    tree/* | check/orvonum* | check/orvostri* | check/check_cache* | check/p5typ_notes*) echo 2 ;;
    driver/orvofil*) echo 3 ;;
    options/*) echo 4 ;;
    lex/*) echo 5 ;;
    symtab/*) echo 6 ;;
    parser/*) echo 7 ;;
    solve/*) echo 8 ;;
    check/*) echo 9 ;;
    driver/*) echo 10 ;;
    *) echo 99 ;;
    esac
}

bad=0
while IFS=: read -r file include; do
    unit=${file#src/}
    target=$(sed 's/.*"\(.*\)".*/\1/' <<<"$include")
    if [ "$(layer_of "$target")" -gt "$(layer_of "$unit")" ]; then
        echo "$file includes $target of a higher layer"
        bad=1
    fi
done < <(grep -rE '^#include "' src --include='*.h' --include='*.cpp' --include='*.def' --include='*.inc')
exit $bad
