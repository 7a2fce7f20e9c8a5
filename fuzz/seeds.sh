#!/bin/bash
# Makes what fuzzing starts from: fuzz/seeds.sh ORVO OUT. In OUT a folder of inputs for each target,
# from examples/ and fuzz/seeds/, and tokens.dict, from the token table.
set -e
root=$(cd "$(dirname "$0")/.." && pwd)
orvo=$(realpath "$1")
mkdir -p "$2"
out=$(realpath "$2")
rm -rf "$out"/{modules,options,trees,kavrimol}
mkdir -p "$out"/{modules,options,trees,kavrimol}

# join LEAD FILE...: the files as one input
join() {
    printf %s "$1"
    cat "$2"
    for file in "${@:3}"; do
        printf '\n=====\n'
        cat "$file"
    done
}

for project in "$root"/examples/*/ "$root"/fuzz/seeds/*.asn; do
    name=$(basename "$(dirname "$project")")-$(basename "$project" .asn)
    mapfile -t files < <(find "$project" -name '*.asn' | sort)
    [ ${#files[@]} -gt 0 ] || continue
    for flags in 0 5 7 V; do # 1994; 2021, going on; lenient; 1990, going on, strict, all allowed
        join $flags "${files[@]}" >"$out/modules/$name-$flags"
    done
    join 0 "${files[@]}" >"$out/kavrimol/$name-0"
    join 1 "${files[@]}" >"$out/kavrimol/$name-1"
done

# The option files and arguments of the examples, for a module of their own.
for project in "$root"/examples/*/; do
    name=$(basename "$project")
    cat "$project"/*.opt >"$out/opt" 2>/dev/null || : >"$out/opt"
    printf '%s\n' +o m -KEEP-GOING=YES >"$out/arguments"
    join "" "$out/arguments" "$out/opt" >"$out/options/$name"
done
# Every option, as documented.
sed -n 's/^| `\([A-Z-]*=*\)` |.*| `\(-[^`]*\)` |$/\2/p' "$root/docs/options.md" |
    grep -v '^-VERSION$' >"$out/opt"
printf '%s\n' +o m n.asn >"$out/arguments"
join "" "$out/arguments" "$out/opt" >"$out/options/documented"
rm "$out/opt" "$out/arguments"

# Trees of the examples, each with the others of its run.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for project in "$root"/examples/*/; do
    rm -rf "$work"/* && mkdir "$work/stx"
    (cd "$project" && find . -name '*.asn' -exec "$orvo" -V=1 -KEEP-GOING=YES "-L=$work/" "-S=$work/stx/" {} + >/dev/null 2>&1) || :
    for tree in "$work"/stx/*.stx; do
        [ -e "$tree" ] || continue
        for mode in 0 2 4 5 ';'; do # ';': as 3, of files that are not checked too
            {
                printf %s "$mode"
                printf '%s\n' "$(basename "$tree")"
                cat "$tree"
                for other in "$work"/stx/*.stx; do
                    [ "$other" = "$tree" ] && continue
                    printf '\n=====\n%s\n' "$(basename "$other")"
                    cat "$other"
                done
            } >"$out/trees/$(basename "$project")-$(basename "$tree" .stx)-$mode"
        done
    done
done

# Spellings of tokens, hyphens as they are written.
sed -n 's/^TOKEN([0-9]*, [A-Z0-9_]*, "\([^" ][^"]*\)")$/\1/p' "$root/src/lex/tokens.def" | tr _ - |
    grep -v -e '^(' -e End-Of-File | sed 's/\\/\\\\/g; s/.*/"&"/' >"$out/tokens.dict"
