# Sourced by ./dev and its scripts: the Debian packages that a build needs, and how missing ones are installed.

packages=(
  g++ binutils cmake ninja-build ccache pkg-config
  libboost-program-options-dev libboost-filesystem-dev libboost-system-dev
  libfmt-dev libsafec-dev libexpat1-dev nettle-dev libcli11-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libxml2-utils python3 groff-base zsh
)

as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
  done
  [ "${#missing[@]}" -eq 0 ] && return 0
  echo "Installing: ${missing[*]}"
  as_root apt-get update -qq
  # Another installation, such as the daily upgrade of a fresh machine, is waited for.
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600 install -y -qq \
    --no-install-recommends "${missing[@]}" >/dev/null
}

# The mirror of the machine's own Debian release.
debian_mirror() {
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
    awk -v release="$(. /etc/os-release && echo "$VERSION_CODENAME")" '$2 == release && $3 == "main" { print $1; exit }'
}
