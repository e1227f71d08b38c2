# Clean Debian systems in folders of their own, for scripts that source this. Root only; debootstrap has to be there.
# The first tree of a release is kept as a tar file in build/chroots, so that later ones need seconds.

# The mirror of the trees; the machine's own apt isn't asked.
debian_mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}

# Makes a folder the minimal system of a release, up to date.
make_tree() { # RELEASE FOLDER
    local base=build/chroots/$1.tar
    if [ ! -e "$base" ]; then
        mkdir -p build/chroots
        rm -rf "build/chroots/$1"
        debootstrap --variant=minbase "$1" "build/chroots/$1" "$debian_mirror" >"build/chroots/$1.log"
        tar --create --file "$base.part" --one-file-system --numeric-owner --directory "build/chroots/$1" .
        mv "$base.part" "$base"
        rm -rf "build/chroots/$1"
    fi
    rm -rf "$2"
    mkdir -p "$2"
    tar --extract --file "$base" --numeric-owner --preserve-permissions --directory "$2"
    cp /etc/resolv.conf "$2/etc/resolv.conf"
    in_tree "$2" apt-get -qq update
    in_tree "$2" apt-get -qq --yes dist-upgrade >/dev/null
}

# Runs a command of this machine while a tree has the kernel's file systems. The mounts belong to the command and end
# with it, and so does every process that it leaves behind.
with_tree() { # FOLDER COMMAND ...
    unshare --mount --pid --fork --kill-child --mount-proc sh -e -c '
        tree=$1
        shift
        mount -t proc proc "$tree/proc"
        mount --rbind /dev "$tree/dev"
        exec "$@"' with_tree "$@"
}

# Runs a command inside a tree, with nothing of this machine's environment but the variables that it sets itself.
in_tree() { # FOLDER COMMAND ...
    local tree
    tree=$(realpath "$1")
    shift
    with_tree "$tree" chroot "$tree" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}
