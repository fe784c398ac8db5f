#!/usr/bin/env bash
# Compares what a shared library shows with what its headers promise: a name that is missing shows only when a host
# needs it, one too many only when it is changed.
#   check-exports.sh LIBRARY INCLUDE-FOLDER ARCHIVE…    (the archives: what the library was made of)
set -euo pipefail
library=$1
headers=$2
shift 2

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# "::" after a type, "(" after a function: kelvara::UIImage::  kelvara::chip::makeTlv(
find "$headers" -name '*.h' -print0 | xargs -0 awk '
    FNR == 1 { space = "" }
    /^namespace kelvara[a-z:]* \{/ { space = $2 "::" }
    /^(class|struct) / && !/;$/ {
        sub(/KELVARA_EXPORT /, "")
        print space $2 "::"
    }
    /^[^ #\/}].*[a-zA-Z]\(/ && !/inline|template|^(class|struct|using|Q_|#)/ {
        sub(/\(.*/, "")
        sub(/.*[ &*]/, "")
        print space $0 "("
    }' | sort -u >"$scratch/promised"

names() { # nm's letters; the library's own version is no name
    sed -nE "/^[0-9a-f]+ A /d; s/\\[abi:[a-z0-9]+\\]//g; s/^[0-9a-f]+ [$1] (.*)/\1/p" | sort -u
}
nm -DC --without-symbol-versions --defined-only "$library" | names A-Z >"$scratch/shown"
nm -C --defined-only "$@" 2>/dev/null | names TDRB | grep '^kelvara::' >"$scratch/made"
for list in promised shown made; do
    [ -s "$scratch/$list" ] || { echo "Nothing is $list: the check itself does not work." >&2; exit 2; }
done

# Which of the given names begin with something promised, or with none of it.
among_promised() { # yes|no, file
    awk -v want="$1" 'NR == FNR { promised[$0]; next }
        {
            name = $0
            sub(/^(typeinfo|typeinfo name|vtable|VTT) for /, "", name)
            sub(/^(non-virtual|virtual) thunk to /, "", name)
            found = 0
            if (name !~ /\(/) # the type itself
                found = (name "::") in promised
            for (i = 1; !found && i <= length(name) && substr(name, i - 1, 1) != "("; ++i) {
                if (substr(name, i, 2) == "::")
                    found = (substr(name, 1, i + 1)) in promised
                else if (substr(name, i, 1) == "(")
                    found = (substr(name, 1, i)) in promised
            }
            if (found == (want == "yes"))
                print
        }' "$scratch/promised" "$2"
}

# Qt's macro hides this one itself.
comm -13 "$scratch/shown" "$scratch/made" | grep -v '::qt_static_metacall(' >"$scratch/kept"
among_promised yes "$scratch/kept" >"$scratch/missing"
among_promised no "$scratch/shown" >"$scratch/surplus"
status=0
if [ -s "$scratch/missing" ]; then
    echo "Installed headers declare what $(basename "$library") does not show (KELVARA_EXPORT is missing):" >&2
    cat "$scratch/missing" >&2
    status=1
fi
if [ -s "$scratch/surplus" ]; then
    echo "$(basename "$library") shows what no installed header declares (cmake/PublicHeaders.cmake):" >&2
    cat "$scratch/surplus" >&2
    status=1
fi
[ $status -ne 0 ] || echo "$(basename "$library"): $(wc -l <"$scratch/shown") names, all declared in installed headers"
exit $status
