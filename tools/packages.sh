# shellcheck shell=bash
# shellcheck disable=SC2034
# What a Debian 12 needs from its distribution; sourced by every script that builds, packs or tries something.

packages_build=(g++ cmake ninja-build ccache qt6-base-dev librsvg2-bin libqscintilla2-qt6-dev patch)

# Tests run without a display; they need fonts to lay out text, what looks at the form, what print tests read with, and
# the shells that complete what is typed for tmec. Benchmarks are only built, so that they do not fall behind.
packages_test=(libgtest-dev libgmock-dev libbenchmark-dev clang-format clang-tidy shellcheck fonts-dejavu-core
  poppler-utils bash-completion zsh fish)

# The compiler that fuzz targets are built with, and its runtimes.
packages_fuzz=(clang-14 libclang-rt-14-dev llvm-14)

packages_run=(fonts-dejavu-core)

# Only where there is Wayland and nothing that speaks X11.
packages_wayland=(qt6-wayland)

# A display of our own, a window manager for it, and what finds the window and saves the picture.
packages_display=(xvfb openbox xdotool imagemagick)

# A display, a session bus and what reads the screen and presses keys there.
packages_accessibility=(xvfb openbox xdotool x11-utils dbus at-spi2-core python3-pyatspi gir1.2-atspi-2.0)

# What the Windows program is cross-built with.
packages_windows_build=(g++-mingw-w64-x86-64-posix cmake ninja-build ccache qt6-base-dev qt6-base-dev-tools dpkg-dev
  librsvg2-bin imagemagick libgtest-dev libgmock-dev googletest)
packages_windows_pack=(nsis zip)

# What it is tested with: Wine, a display for it, and fonts that look like those of Windows.
packages_windows_test=(wine wine64 xvfb openbox xdotool imagemagick fonts-liberation fonts-wine python3)

# What the Debian package is made and examined with; the second list tries it on a system of its own.
packages_deb=(librsvg2-bin file dpkg-dev gzip lintian appstream desktop-file-utils shared-mime-info)
packages_deb_check=(debootstrap xvfb xdotool)

# apt_get ARGUMENT…: as root, asking nothing, into $log. Waits up to five minutes for another that installs; apt itself
# waits for one of its two locks only.
apt_get() {
  local i
  for ((i = 0; i < 30; i++)); do
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 apt-get -qq -o DPkg::Lock::Timeout=300 "$@" \
      </dev/null >"$log" 2>&1 && return 0
    grep -q '^E: Could not get lock' "$log" || return 1
    sleep 10
  done
  return 1
}

# Installs those of the named packages that are missing; silent when there are none. 1 when that cannot be done.
install_missing() {
  local missing=() package state
  for package in "$@"; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $state == installed ]] || missing+=("$package")
  done
  ((${#missing[@]})) || return 0

  local as_root=()
  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing, and neither root nor sudo is at hand to install them: ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}" >&2
  local log
  log=$(mktemp)
  if ! { apt_get update && apt_get install -y --no-install-recommends "${missing[@]}"; }; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
