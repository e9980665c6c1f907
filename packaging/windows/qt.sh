#!/usr/bin/env bash
# Makes what the wizard for Windows links of Qt, from Debian's source package, in the folder that is named; another call
# with the same folder makes nothing. Static, and without all that the wizard does not use.
#
#   packaging/windows/qt.sh build/windows-qt
#
# It takes about 25 minutes of processor time. The tools that a build runs (moc, rcc, uic) are this machine's, of the same
# version.
set -euo pipefail
self=$(realpath "${BASH_SOURCE[0]}")
folder=$(mkdir -p "$1" && cd "$1" && pwd)
# shellcheck source=packaging/windows/sources.sh
source "${self%/*}/sources.sh"

wanted=$(sha256sum <"$self")
[ "$(cat "$folder/made-by" 2>/dev/null)" != "$wanted" ] || exit 0

rm -rf "${folder:?}"/*
work=$folder/work
mkdir "$work"
trap 'rm -rf "$work"' EXIT
unpack_sources "$work" qt6-base

# Tablets: Debian's package comes without the headers that they take.
options=()
for feature in tabletevent sql network dbus xml testlib concurrent printsupport vulkan zstd icu glib direct2d directwrite \
  jpeg system_zlib pkg_config; do
  options+=("-DFEATURE_$feature=OFF")
done
mkdir "$work/build"
cd "$work/build"
quietly "$work/log" cmake -G Ninja ../qt6-base "-DCMAKE_TOOLCHAIN_FILE=${self%/*}/toolchain.cmake" \
  "-DCMAKE_INSTALL_PREFIX=$folder" -DCMAKE_BUILD_TYPE=MinSizeRel -DBUILD_SHARED_LIBS=OFF \
  -DQT_HOST_PATH=/usr "-DQT_HOST_PATH_CMAKE_DIR=/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/cmake" \
  -DQT_QMAKE_TARGET_MKSPEC=win32-g++ -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DQT_BUILD_TOOLS_BY_DEFAULT=OFF \
  -DINPUT_opengl=no "${options[@]}"
quietly "$work/log" cmake --build .
quietly "$work/log" cmake --install .

echo "$wanted" >"$folder/made-by"
