#!/bin/bash
# Installs a build into a fresh prefix and runs the installed programs.
set -eu
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >/dev/null

"$prefix/bin/orvo" -VERSION | grep -qx 'Compiler for Abstract Syntax Notation One Version 2.13 February 2002'
for page in orvo stxdump kavrimol; do
    [ -f "$prefix/share/man/man1/$page.1" ] || { echo "no manual page of $page"; exit 1; }
    [ -x "$prefix/bin/$page" ] || { echo "no program $page"; exit 1; }
done
[ -f "$prefix/share/bash-completion/completions/orvo" ]
[ -f "$prefix/share/doc/orvo/syntax-tree.md" ]
[ -f "$prefix/share/orvo/stx/stxreader.h" ]

cd "$prefix"
printf 'Hello DEFINITIONS ::= BEGIN Greeting ::= IA5String (SIZE (1..40)) END\n' >hello.asn
bin/orvo -V=1 hello.asn >/dev/null
bin/stxdump --type Greeting hello.stx | grep -q IA5String
