#!/bin/bash
# The linker maps the names of files for fopen, fopen64 and stat. The unit and the engine call nothing
# else that takes one: file_names.sh NM LIST_OF_OBJECTS
set -euo pipefail

nm=$1 list=$2
mapfile -t objects <"$list"
called=$("$nm" -A --undefined-only --format=posix "${objects[@]}" | awk '{ print $1, $2 }')
# Without these the check below could not fail.
grep -q ' fopen$' <<<"$called" && grep -q ' stat$' <<<"$called" || {
  echo "no calls of fopen and stat in $list" >&2
  exit 1
}
names='open|openat|creat|freopen|lstat|fstatat|statx|access|faccessat|euidaccess|eaccess|readlink'
names+='|realpath|canonicalize_file_name|opendir|scandir|nftw|ftw|glob|mkdir|mkdirat|mkfifo|rmdir'
names+='|remove|rename|renameat|unlink|unlinkat|link|symlink|truncate|chmod|chown|utime|utimes'
names+='|chdir|sf_open|sf_wchar_open|op_open_file|op_test_file|mpg123_open|ov_fopen'
if grep -E " ($names)(64)?\$| _ZN?St10filesystem| _ZNSt13basic_filebuf| _ZNSt14basic_[io]fstream" \
  <<<"$called" >&2; then
  echo "  ^ these names are not mapped" >&2
  exit 1
fi
