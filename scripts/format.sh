#!/bin/sh
# Formats every C++ file of the tree with the committed .clang-format.
set -eu
cd "$(dirname "$0")/.."
git ls-files -- 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h' |
  xargs -r clang-format -i
