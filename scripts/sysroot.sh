# Sourced after packages.sh: a sysroot of the target, and the machine's ability to run the target's programs.

# Whatever a build links.
mapfile -t sysroot_packages < <(printf '%s\n' libc6-dev libstdc++6 "${packages[@]}" | grep -e '-dev$' -e '^libstdc')
cross_packages=(crossbuild-essential-armhf qemu-user-static mmdebstrap)

# Sets VELA_SYSROOT to the directory of the sysroot, which is made when there is none, or one of other packages.
prepare_sysroot() {
  install_missing "${cross_packages[@]}"
  VELA_SYSROOT=${XDG_CACHE_HOME:-$HOME/.cache}/vela-kiro/sysroot-armhf
  export VELA_SYSROOT
  [ "$(cat "$VELA_SYSROOT/.packages" 2>/dev/null)" != "${sysroot_packages[*]}" ] || return 0
  echo "Making the sysroot $VELA_SYSROOT" >&2
  mkdir -p "${VELA_SYSROOT%/*}"
  sdk/make-sysroot "$VELA_SYSROOT" "${sysroot_packages[@]}" >&2
}

# Lets the kernel run programs of the target by the emulator. Not for good: it is gone with the next start of the machine.
register_emulator() {
  local formats=/proc/sys/fs/binfmt_misc
  [ ! -e "$formats/qemu-arm" ] || return 0
  { [ -e "$formats/register" ] || as_root mount -t binfmt_misc binfmt_misc "$formats"; } &&
    as_root tee "$formats/register" </usr/lib/binfmt.d/qemu-arm.conf >/dev/null || {
    echo "This kernel does not let programs be run by an emulator (binfmt_misc): what starts processes of the target" \
      "cannot be tried here. ./dev cross --build works without." >&2
    return 1
  }
}
