#!/bin/bash
# No two types of one name: one_definition.sh PROJECT_FOLDER
# The linker takes the first of two inline functions of the same name; where their types differ in
# size, the other one's callers write out of bounds. Types in unnamed namespaces are of one file.
set -euo pipefail

cd "$1"
# The layout of the sources puts what stands in a namespace at the start of its line.
repeated=$(find audio_engine host measures -name '*.h' -print0 -o -name '*.cc' -print0 | sort -z |
  xargs -0 awk '
    FNR == 1 { depth = 0 }
    /^namespace( [A-Za-z_0-9:]+)? \{$/ { space[++depth] = $2 == "{" ? "unnamed" : $2; next }
    /^\}  \/\/ namespace/ { --depth; next }
    /^(class|struct|union|enum|enum class)( ENGINE_API)? [A-Za-z_0-9]+( final)?( : .*)?( \{.*)?$/ {
      name = ""
      for (i = 1; i <= depth; ++i) name = name space[i] "::"
      if (name ~ /unnamed/) next
      line = $0
      sub(/^(class|struct|union|enum class|enum)( ENGINE_API)? /, "", line)
      sub(/[^A-Za-z_0-9].*/, "", line)
      if (line == "") next
      print name line " " FILENAME ":" FNR
    }' |
  awk '{ if (++count[$1] > 1) print $1 ": " first[$1] " and " $2; else first[$1] = $2 }')
if [[ -n $repeated ]]; then
  echo "$repeated" >&2
  exit 1
fi
