# shellcheck shell=bash
# The distribution's source packages, for the scripts that build what the editor stands on; needs tools/shell.sh.

# The file name of a recorded source package's description: description_of SUMS NAME.
description_of() { sed -n "s/^[0-9a-f]*  \($2_.*\.dsc\)\$/\1/p" "$1"; }

# fetch_sources CACHE SUMS NAME…: fetches the packages NAME, in the versions that SUMS records, into CACHE/download. 1 when
# they cannot be fetched; whoever unpacks them compares them with SUMS first.
fetch_sources() {
  # A source list of our own, so that the system's lists stay as they are.
  local cache=$1 sums=$2 apt=$1/apt options name version versions=()
  shift 2
  mkdir -p "$apt/sources" "$apt/lists/partial" "$apt/archives/partial" "$cache/download"
  cat >"$apt/sources/source.sources" <<'END_OF_LIST'
Types: deb-src
URIs: http://deb.debian.org/debian
Suites: bookworm bookworm-updates
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
END_OF_LIST
  options=(-o "Dir::Etc::sourceparts=$apt/sources" -o Dir::Etc::sourcelist=/dev/null
    -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt" -o "APT::Sandbox::User=$(id -un)")
  # The recorded versions: a newer one is built once somebody has looked at it and recorded its hashes.
  for name in "$@"; do
    version=$(description_of "$sums" "$name")
    version=${version#"$name"_}
    versions+=("$name=${version%.dsc}")
  done
  # apt compares each file with the signed list's checksum.
  quietly "$cache/fetch.log" apt-get "${options[@]}" update &&
    (cd "$cache/download" && quietly "$cache/fetch.log" apt-get "${options[@]}" source --download-only "${versions[@]}")
}
