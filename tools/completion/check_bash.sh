#!/bin/bash
# check_bash.sh SCRIPT: what the completion script for bash offers at the end of some lines.
source "$1" || exit 1
failed=0
expect() { # LINE WORD...
    COMP_LINE=$1 COMP_POINT=${#1}
    shift
    _orvo
    [ "${COMPREPLY[*]}" = "$*" ] && return
    echo "orvo completion of \"$COMP_LINE\": \"${COMPREPLY[*]}\" instead of \"$*\""
    failed=1
}
mkdir -p "${TMPDIR:-/tmp}/orvo-completion.$$/dir" && cd "${TMPDIR:-/tmp}/orvo-completion.$$" || exit 1
trap 'rm -rf "$PWD"' EXIT
touch x.asn x.txt
expect 'orvo -TAGU' -TAGUSAGE=
expect 'orvo -tagu' -TAGUSAGE=
expect 'orvo x -TAGUSAGE=' IGNORE WARNING ERROR
expect 'orvo -tagusage=w' WARNING
expect 'orvo -INT=u' U8 U16 U32 U64
expect 'orvo -COD=none:c' combined
expect 'orvo -STANDARD-VERSION=' 1990 1994 2021
expect 'orvo -LENIENT=y' YES
expect 'orvo -NAMELEN='
expect 'orvo -A=d' dir/
expect 'orvo x' x.asn
expect 'orvo +x.t' +x.txt
exit $failed
