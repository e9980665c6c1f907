#!/usr/bin/env bash
# Makes the libraries that the Windows build links and that no package has, from Debian's source packages, in the folder
# that is named; another call with the same folder makes nothing. Static all, so that the program is one file.
#
#   packaging/windows/libraries.sh build/windows-libraries
#
# libdeflate and libmd as they are; of ICU what converts text and its properties (`common`), and of its data what the
# converters need; libraries that are headers alone as links to Debian's, so that no other header of this machine is seen.
set -euo pipefail
self=$(realpath "${BASH_SOURCE[0]}")
folder=$(mkdir -p "$1" && cd "$1" && pwd)
host=x86_64-w64-mingw32
# shellcheck source=packaging/windows/sources.sh
source "${self%/*}/sources.sh"

wanted=$(sha256sum <"$self")
[ "$(cat "$folder/made-by" 2>/dev/null)" != "$wanted" ] || exit 0

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
rm -rf "${folder:?}"/*
mkdir -p "$folder/include" "$folder/lib/pkgconfig"

unpack_sources "$work" libdeflate libmd icu

launcher=()
command -v ccache >/dev/null && launcher=(ccache)
flags=(-O2 -ffunction-sections -fdata-sections -Wa,-muse-unaligned-vector-move)

# compile NAME COMPILER OPTION... -- SOURCE...: the archive lib/libNAME.a of those sources.
compile() {
  local name=$1 compiler=$2 options=()
  shift 2
  while [ "$1" != -- ]; do options+=("$1"); shift; done
  shift
  mkdir "$work/$name-objects"
  printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} sh -c '
    source=$1; shift
    exec "$@" -c "$source" -o "$0/$(echo "$source" | tr / _).o"' "$work/$name-objects" {} \
    "${launcher[@]}" "$host-$compiler" "${flags[@]}" "${options[@]}"
  "$host-ar" rcs "$folder/lib/lib$name.a" "$work/$name-objects"/*.o
}

cd "$work/libdeflate"
compile deflate gcc-posix -I. -- lib/*.c lib/x86/*.c
cp libdeflate.h "$folder/include"

cd "$work/libmd"
quietly "$work/log" ./configure --host="$host" CC="$host-gcc-posix" CFLAGS="${flags[*]}" --disable-shared \
  --prefix="$folder"
quietly "$work/log" make -C include install
quietly "$work/log" make -C src install

cd "$work/icu/source"
compile icuuc g++-posix -std=gnu++17 -w -Icommon -DU_COMMON_IMPLEMENTATION -DU_STATIC_IMPLEMENTATION -- common/*.cpp
cp -r common/unicode "$folder/include"

# The program finds its data by this name: packed under another one, only the pages that need no table would be there.
data=icudt$(sed -n 's/^#define U_ICU_VERSION_MAJOR_NUM \([0-9]*\).*/\1/p' common/unicode/uvernum.h)
mkdir "$work/data"
/usr/sbin/icupkg -l "data/in/${data}l.dat" | grep -E '\.cnv$|^cnvalias\.icu$' >"$work/data/converters.txt"
/usr/sbin/icupkg -x "$work/data/converters.txt" -d "$work/data" "data/in/${data}l.dat"
(cd "$work/data" && /usr/sbin/icupkg -tl -s . -a converters.txt new "$work/${data}l.dat")
/usr/sbin/genccode -q -a gcc-mingw64 -e "$data" -d "$work" "$work/${data}l.dat"
"$host-gcc-posix" -c "$work/${data}l_dat.S" -o "$work/data.o"
"$host-ar" rcs "$folder/lib/libicudata.a" "$work/data.o"

for name in fmt CLI nlohmann tl; do ln -s "/usr/include/$name" "$folder/include/$name"; done

echo "$wanted" >"$folder/made-by"
