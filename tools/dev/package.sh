# shellcheck shell=bash disable=SC2034,SC2154  # ./dev has the rest
# ./dev package.

# Whether a program is hardened as the release kinds are meant to be, by what its file tells.
is_hardened() { # PROGRAM
    local told line missing=()
    told=$(readelf --wide --file-header --program-headers --dynamic --dyn-syms "$1")
    for line in 'Type: +DYN' 'FLAGS_1.* PIE' 'GNU_RELRO' 'FLAGS_1.* NOW' '__stack_chk_fail' '[a-z]_chk(@| |$)'; do
        grep -qE -- "$line" <<<"$told" || missing+=("$line")
    done
    ! grep -qE 'GNU_STACK.* RWE' <<<"$told" || missing+=('a stack that is not executed')
    # Only where the compiler can: every place that is jumped to is marked.
    if grep -q 'NORVANE_HAS_fcf_protection:INTERNAL=1' build/release/CMakeCache.txt; then
        (($(objdump --disassemble --no-show-raw-insn "$1" | grep -c endbr64) > 100)) || missing+=('marked jumps')
    fi
    ((${#missing[@]} == 0)) || say "Not hardened, $1 lacks:" "${missing[@]}"
    ((${#missing[@]} == 0))
}

# Whether the desktop and Debian take what is in a package.
is_well_formed() { # PACKAGE
    local tree=build/package/tree share complaints
    share=$tree/usr/share
    dpkg-deb --extract "$1" "$tree"
    is_hardened "$tree/usr/bin/norvane" || return
    desktop-file-validate "$share/applications/norvane.desktop" || return
    appstream-util validate-relax --nonet "$share/metainfo/norvane.metainfo.xml" || return
    # It finds more, but insists on a free licence for the file, and none is chosen.
    complaints=$(appstreamcli validate-tree --no-net "$tree" | grep '^ *E:' | grep -v ' metadata-license-invalid ' || true)
    [[ -z $complaints ]] || say "$complaints"
    [[ -z $complaints ]] || return
    lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$1"
}

# Prints where this machine gets the suite's packages from, as apt knows it, and the keys for that, if they are
# named: each on a line.
# shellcheck disable=SC2016  # apt fills in the names
mirror_of() { # SUITE
    local mirror='' entry=''
    {
        read -r mirror || true
        read -r entry || true
    } < <(apt-get indextargets --format '$(REPO_URI)'$'\n''$(SOURCESENTRY)' \
        'Identifier: Packages' "Codename: $1" 'Component: main' | head -n 2)
    [[ -n $mirror ]] || fail "apt on this machine has no sources of $1."
    printf '%s\n' "$mirror"
    grep -oiE 'signed-by[:=] *[^] ]+' "${entry%:*}" | sed -E 's/^[^:=]*[:=] *//' | grep '^/' | head -n 1 || true
}

# Installs the package in a small Debian of its own that has what the package depends on and no more, shows the
# program there, and removes it. Fails if that leaves anything in the root which was not there before.
# shellcheck disable=SC2016  # what is in quotes is for the shells inside
try_package() ( # PACKAGE
    package=$1 root=build/package/root mirror='' keyring=''
    ((EUID == 0)) || fail "--try makes a root of its own, and only root can."
    {
        read -r mirror || exit
        read -r keyring || true
    } < <(mirror_of bookworm)
    [[ -n $mirror ]] || exit 1
    # What is mounted inside is seen by the command alone, and goes with it.
    trap 'rm -rf --one-file-system "$root"' EXIT
    unshare --mount debootstrap --variant=minbase ${keyring:+"--keyring=$keyring"} bookworm "$root" "$mirror" \
        >build/package/debootstrap.log 2>&1 || fail "No root: $(tail -n 5 build/package/debootstrap.log)"
    # Each shell gives way to the next command, so that the last one has the process's number.
    inside=(unshare --mount sh -euc '
        root=$1
        shift
        mount -t proc proc "$root/proc"
        for folder in /sys /dev /tmp; do mount --rbind "$folder" "$root$folder"; done
        exec chroot "$root" "$@"' sh "$root" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8)
    files() { # what there is, less what is kept about packages
        find "$root" -xdev \( -path "$root/var/lib/dpkg" -o -path "$root/var/log" \) -prune -o -printf '/%P %y %l\n' | sort
    }

    "${inside[@]}" apt-get satisfy --no-install-recommends -y "$(dpkg-deb --field "$package" Depends)" \
        >build/package/apt.log 2>&1 || fail "Its dependencies cannot be had: $(tail -n 5 build/package/apt.log)"
    files >build/package/before.txt
    cp "$package" "$root/norvane.deb"
    "${inside[@]}" apt-get install --no-install-recommends -y /norvane.deb >>build/package/apt.log 2>&1 ||
        fail "It cannot be installed: $(tail -n 5 build/package/apt.log)"
    rm "$root/norvane.deb"
    files >build/package/with.txt

    launcher=("${inside[@]}")
    TMPDIR=/tmp show_on_virtual_display /usr/bin/norvane build/package/screenshot.png

    "${inside[@]}" apt-get purge -y norvane >>build/package/apt.log 2>&1 ||
        fail "It cannot be removed: $(tail -n 5 build/package/apt.log)"
    files >build/package/after.txt
    say "Installed, shown and removed: $(comm -13 build/package/{before,with}.txt | wc -l) files and folders came and went."
    diff build/package/{before,after}.txt || fail "That is what it left behind (>) or took away (<)."
    ! find "$root/var/lib/dpkg" -name 'norvane*' | grep . || fail "dpkg still has these files of it."
)

# Makes the Debian package and has it judged. --try also installs, runs and removes it in a root of its own.
cmd_package() { # [--try]
    [[ $# == 0 || $* == --try ]] || fail "usage: ./dev package [--try]"
    install_missing "${package_packages[@]}"
    cmd_build
    rm -rf --one-file-system build/package
    cpack --config build/release/CPackConfig.cmake -B "$PWD/build/package"
    local package
    package=$(find "$PWD/build/package" -maxdepth 1 -name '*.deb')
    is_well_formed "$package" || fail "The package is not as it should be."
    if (($#)); then
        install_missing "${test_packages[@]}" "${try_packages[@]}"
        try_package "$package"
    fi
    printf '%s\n' "$package"
}
