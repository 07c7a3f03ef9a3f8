#!/bin/bash
# Which facilities each routine of the bench uses, by itself or by functions of the bench that it calls:
# routine_uses.sh OBJDUMP FACILITIES OBJECTS OUTPUT
# FACILITIES holds a line "facility function" for each function of the engine's interface, OBJECTS the
# names of the bench's objects. Writes the initializers of a list of {"routine", "facility"}.
set -euo pipefail

objdump=$1 facilities=$2 list=$3
mapfile -t objects <"$list"

# "user used" for each reference of a function, or of a table of virtual functions, to a symbol. What a
# function has been split into counts as a part of it.
references() {
  "$objdump" -dr --no-show-raw-insn "${objects[@]}" | awk '
    function whole(name) { sub(/\.(cold|part|isra|constprop|lto_priv).*/, "", name); return name }
    function refer(name) {
      sub(/[-+]0x[0-9a-f]+$/, "", name)
      sub(/^\.(text|data)[a-z._]*\./, "", name)
      if (user != "" && name != "" && whole(name) != user) print user, whole(name)
    }
    # An operand is a place in the object itself, unless a relocation follows that puts another one
    # there.
    $2 ~ /^R_/ { operand = ""; refer($3); next }
    { refer(operand); operand = "" }
    /^[0-9a-f]+ <.*>:$/ { user = whole(substr($2, 2, length($2) - 3)); next }
    match($0, /<[^>]*>$/) { operand = substr($0, RSTART + 1, RLENGTH - 2) }'
  "$objdump" -r "${objects[@]}" | awk '
    /^RELOCATION RECORDS FOR/ {
      user = $4
      gsub(/\[|\]|:/, "", user)
      user = match(user, /_ZTV/) ? substr(user, RSTART) : ""
    }
    user != "" && $2 ~ /^R_/ { sub(/[-+]0x[0-9a-f]+$/, "", $3); print user, $3 }'
}

references | sort -u | awk '
  NR == FNR { facility[$2] = $1; next }
  { used[$1] = used[$1] " " $2 }
  # What is declared as a function outside of namespaces is a routine, or what nobody asks for.
  function visit(name, root,   names, count, i) {
    if ((root, name) in seen) return
    seen[root, name] = 1
    if (name in facility) { found[facility[name]] = 1; return }
    count = split(used[name], names, " ")
    for (i = 1; i <= count; ++i) visit(names[i], root)
  }
  END {
    for (symbol in used) {
      if (!match(symbol, /^_Z[0-9]+/)) continue
      split("", found)
      visit(symbol, symbol)
      length_of_name = substr(symbol, 3, RLENGTH - 2)
      for (each in found)
        printf "    {\"%s\", \"%s\"},\n", substr(symbol, RLENGTH + 1, length_of_name), each
    }
  }' "$facilities" - | sort >"$4"
