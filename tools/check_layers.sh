#!/bin/bash
# check_layers.sh BUILD: holds the files of src/ to the layers that CMakeLists.txt lists. Fails when
# - a file stands in no layer, or in two,
# - a file includes one of a higher layer, or one that no layer lists,
# - an object of the build takes a symbol from a higher layer,
# - the program is linked otherwise than from each layer's library once, the highest first,
# - the picture in docs/design.md shows other layers.
[ -d "$1" ] || { echo "usage: check_layers.sh BUILD" >&2; exit 2; }
build=$(realpath "$1")
cd "$(dirname "$0")/.." || exit 2
set -o pipefail
bad=0
fail() { echo "$1"; bad=1; }
# What is listed ($2) and what is there ($3) shall be the same.
compare() {
    local differences
    differences=$(diff <(echo "$2") <(echo "$3") | sed -n 's/^< /    missing: /p; s/^> /    not listed: /p')
    [ -z "$differences" ] || fail "$1"$'\n'"$differences"
}

# Lines "rank layer unit", the lowest layer first.
units=$(awk '
    { sub(/#.*/, "") }
    sub(/^orvo_layer\(/, "") { ++rank; layer = $1; sub(/^[a-z]+/, ""); open = 1 }
    open { last = sub(/\).*/, ""); for (i = 1; i <= NF; ++i) print rank, layer, $i; open = !last }
' CMakeLists.txt)
layers=$(cut -d' ' -f1,2 <<<"$units" | uniq)

# Lines "rank layer file".
files=$(while read -r rank layer unit; do
    for file in "$unit" "$unit.h" "$unit.cpp"; do
        [ ! -f "src/$file" ] || echo "$rank $layer $file"
    done
done <<<"$units")
compare "Every file of src/ shall stand in one layer." \
    "$(cut -d' ' -f3 <<<"$files" | sort)" "$(find src -type f -printf '%P\n' | sort)"

# Lines "file quote include". In angle brackets stand headers of the system, or else files of src/.
includes=$(find src -type f -exec grep -HE '^[ \t]*#[ \t]*include' {} + |
    sed 's|^src/||; s/:[^"<]*\(["<]\)\([^">]*\).*/ \1 \2/')
awk '
    NR == FNR { rank[$3] = $1; layer[$3] = $2; next }
    !($1 in rank) { next }
    !($3 in rank) {
        if ($2 == "<") next
        print "src/" $1 " includes " $3 ", which no layer lists."
        bad = 1
        next
    }
    rank[$3] > rank[$1] {
        print "src/" $1 " (" layer[$1] ") includes " $3 " (" layer[$3] ")."
        bad = 1
    }
    END { exit bad }
' <(echo "$files") <(echo "$includes") || bad=1

# Lines "rank layer object type symbol" of what the objects define and take.
symbols=$(cd "$build" && while read -r rank layer; do
    objects=(liborvo_$layer.a)
    [ "$layer" != program ] || objects=(CMakeFiles/orvo.dir/src/driver/*.o)
    for object in $([ "$layer" = program ] && echo "${objects[@]##*/}" || ar t "${objects[@]}"); do
        echo "$rank $layer ${object%.o} . ." # it may be empty
    done
    # Operators new and delete are the language's, wherever they are defined.
    nm -gPA "${objects[@]}" 2>/dev/null | grep -vE ': _Z(n|d)[wal]' |
        sed "s/^[^ ]*[[/]\([^][/ ]*\)\.o\]*: \([^ ]*\) \(.\).*/$rank $layer \1 \3 \2/" || exit 1
done <<<"$layers") || fail "Not all layers are built."
compare "The objects of a layer shall be those of its units." \
    "$(sed -n 's|[^ ]*/\(.*\.cpp\)$|\1|p' <<<"$files" | sort)" \
    "$(cut -d' ' -f1-3 <<<"$symbols" | sort -u)"
# Of several definitions of a symbol the lowest counts; what is taken weakly is taken all the same.
awk '
    $4 ~ /[Uwv]/ { taken[++takers] = $0; next }
    !($5 in rank) || $1 < rank[$5] { rank[$5] = $1; giver[$5] = $3 " (" $2 ")" }
    END {
        for (i = 1; i <= takers; ++i) {
            split(taken[i], part)
            if (!(part[5] in rank) || rank[part[5]] <= part[1]) continue
            print part[3] " (" part[2] ") takes " part[5] " from " giver[part[5]] "."
            bad = 1
        }
        exit bad
    }
' <<<"$symbols" | c++filt || bad=1

compare "The program shall be linked from each layer once, the highest first." \
    "$(tac <<<"$layers" | sed '/ program$/d; s/.* \(.*\)/liborvo_\1.a/')" \
    "$(sed -n '/^build orvo: /,/^$/s/^ *LINK_[FL][^ ]* = //p' "$build/build.ninja" | xargs -n1 |
        grep -E '\.a$|group')"

# The picture: rows "| layer | what it is", then rows "| | folder/ units", the highest layer on top.
drawn=$(awk -F'|' '
    !/^    \|/ { next }
    { gsub(/ /, "", $2) }
    $2 != "" { layer = $2; next }
    { n = split($3, word, " "); for (i = 2; i <= n; ++i) print layer, word[1] word[i] }
' docs/design.md)
compare "docs/design.md shall show the layers as they are." \
    "$(while read -r layer; do grep "^$layer " <<<"$units"; done < <(tac <<<"$layers") |
        cut -d' ' -f2-)" "$drawn"
exit $bad
