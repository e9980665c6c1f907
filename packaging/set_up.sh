# Sourced by ./convert and ./check: what a fresh Debian 12 needs beside itself.
# shellcheck shell=bash

# To build the command line.
build_packages=(
  g++ cmake ninja-build pkg-config
  zlib1g-dev libdeflate-dev libicu-dev libexpected-dev libfmt-dev nlohmann-json3-dev libcli11-dev libmd-dev
)

# To build the wizard as well.
wizard_packages=(qt6-base-dev qt6-svg-dev)

# To build and run the tests.
test_packages=(
  ccache libgtest-dev libgmock-dev libbenchmark-dev python3
  pst-utils pff-tools strace time
  dpkg-dev mandoc bash-completion zsh desktop-file-utils appstream shared-mime-info libxml2-utils lintian
  xvfb openbox xdotool x11-utils
)

# To build for Windows, and to run that here. Libraries that no package has are made from source packages.
windows_packages=(
  g++-mingw-w64-x86-64-posix libz-mingw-w64-dev icu-devtools dpkg-dev make librsvg2-bin nsis
  ccache googletest python3 wine64
)

# To see the wizard for Windows here.
windows_wizard_packages=(xvfb openbox xdotool imagemagick)

# need PACKAGE...: installs those that are missing; asks for nothing when all are there.
need() {
  local missing=() package
  for package in "$@"; do
    if ! dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed; then
      missing+=("$package")
    fi
  done
  [ "${#missing[@]}" -gt 0 ] || return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "These packages are missing, and there is no sudo to install them with: ${missing[*]}" >&2
      return 1
    }
    as_root=(sudo)
  fi
  echo "Installing: ${missing[*]}" >&2
  "${as_root[@]}" apt-get update -q >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
}
