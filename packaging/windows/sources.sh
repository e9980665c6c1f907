# Sourced by the scripts that make libraries for Windows.
# shellcheck shell=bash

# unpack_sources FOLDER PACKAGE...: Debian's sources of these packages, each as FOLDER/PACKAGE. They are found by lists of
# their own: those of the machine stay as they are.
unpack_sources() {
  local folder=$1 mirror package apt
  shift
  mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' |
    awk '$2 == "bookworm" && $3 == "main" { print $1; exit }')
  mkdir -p "$folder/lists/partial" "$folder/archives"
  echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] ${mirror:?no source of packages of this release is known} bookworm main" \
    >"$folder/sources.list"
  apt=(apt-get -q -o "Dir::Etc::SourceList=$folder/sources.list" -o Dir::Etc::SourceParts=/dev/null
    -o "Dir::State::Lists=$folder/lists" -o APT::Sandbox::User=root)
  quietly "$folder/log" "${apt[@]}" update
  (cd "$folder/archives" && quietly "$folder/log" "${apt[@]}" source --download-only "$@")
  for package in "$@"; do
    (cd "$folder" && dpkg-source --no-check -q -x "archives/$package"_*.dsc "$package")
  done
}

# quietly LOG COMMAND...: shows what the command says only where it fails.
quietly() {
  local log=$1
  shift
  "$@" >"$log" 2>&1 || { cat "$log" >&2; return 1; }
}
