# A Debian 12 with nothing in it, in a scratch folder that goes when the script ends: what scripts/fresh and
# scripts/test-package try things on. Sourced, in the repository, by root; needs the network. Nothing that it mounts is
# seen outside.
#   make_machine      makes it: $machine is its root folder, $scratch the folder for what is written beside it
#   on_machine [NAME=VALUE...] COMMAND...
#                     runs a command there, as root, with processes, devices and mounts of its own, and with
#                     "${machine_environment[@]}" as its variables
# Both say what they do in the name of the script that sources this.

caller=$(basename "$0")
machine_environment=(PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin)
[ "$(id -u)" -eq 0 ] || { echo "$caller: only root makes a new machine" >&2; exit 1; }

make_machine() {
    scripts/setup scripts/packages-fresh.txt
    scratch=$(mktemp -d)
    # It is full of links, and may hold what a mount has left: nothing but this file system is emptied.
    trap 'rm -rf --one-file-system "$scratch"' EXIT
    machine=$scratch/machine
    echo "$caller: making a machine in $machine"
    debootstrap --variant=minbase bookworm "$machine" >"$scratch/log" 2>&1 || { tail -20 "$scratch/log" >&2; exit 1; }
    cp /etc/resolv.conf "$machine/etc/resolv.conf"
    # Its packages come from where this machine's come from.
    rm -rf "$machine"/etc/apt/sources.list*
    local sources
    for sources in /etc/apt/sources.list /etc/apt/sources.list.d; do
        if [ -e "$sources" ]; then cp -r "$sources" "$machine/etc/apt/"; fi
    done
}

on_machine() {
    unshare --mount --pid --fork --kill-child bash -euc '
        machine=$1
        shift
        mount --make-rprivate /
        # A root that is a mount, as that of every machine, so that tests can mount on it.
        mount --bind "$machine" "$machine"
        mount -t proc proc "$machine/proc"
        mount -t sysfs -o ro sysfs "$machine/sys"
        mount -t tmpfs -o mode=755 dev "$machine/dev"
        for device in null zero full random urandom tty; do
            touch "$machine/dev/$device"
            mount --bind "/dev/$device" "$machine/dev/$device"
        done
        mkdir "$machine/dev/pts" "$machine/dev/shm"
        mount -t devpts -o newinstance,ptmxmode=666,mode=620,gid=5 devpts "$machine/dev/pts"
        ln -s pts/ptmx "$machine/dev/ptmx"
        ln -s /proc/self/fd "$machine/dev/fd"
        mount -t tmpfs -o mode=1777 shm "$machine/dev/shm"
        mount -t tmpfs -o mode=1777 tmp "$machine/tmp"
        mount -t tmpfs -o mode=755 run "$machine/run"
        # Not only its folder: who runs in a chroot may have no namespaces of his own.
        cd "$machine"
        pivot_root . .
        umount -l .
        exec chroot . /usr/bin/env -i "$@"
    ' on_machine "$machine" "${machine_environment[@]}" "$@" </dev/null
}
