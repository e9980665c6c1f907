#!/bin/sh
# Converts stores of growing size with velmora-convert and reads the same stores with readpst and pffexport,
# one after the other on this machine, and prints a table in Markdown.
#
#   bench/run_benchmark.sh [--sizes 10,100,1024] [--runs N] [--work FOLDER] [--small] [--cold]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cmake -S "$root" -B "$root/build/release" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
targets=$(cmake --build "$root/build/release" --target help | sed -n 's/^\(velmora-[a-z-]*\): phony$/\1/p')
for target in velmora-make-store velmora-convert; do
  if echo "$targets" | grep -qx "$target"; then
    cmake --build "$root/build/release" --target "$target" >&2
  fi
done
exec python3 "$root/bench/benchmark.py" --build "$root/build/release" "$@"
