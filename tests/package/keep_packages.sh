#!/bin/bash
# What a build has fetched for the page need not come over the network again for another build of the
# same sources: keep_packages.sh BUILD_FOLDER OTHER_BUILD_FOLDER
set -euo pipefail

rm -rf "$2/page"
[[ -e $1/page/node_modules.stamp ]] || exit 0
mkdir -p "$2/page"
cp -a "$1/page/node_modules" "$1/page/node_modules.stamp" "$2/page"
