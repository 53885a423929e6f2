#!/usr/bin/env bash
# Gives a chamber fleet its own addresses: a network namespace holding a veth
# pair (both ends inside) whose first end carries COUNT addresses of one /16
# subnet, 10.100.0.1, 10.100.0.2, ... Needs root (or CAP_SYS_ADMIN).
#
#   scripts/fleet-netns.sh up COUNT          make the namespace (anew) with COUNT addresses
#   scripts/fleet-netns.sh run COUNT CMD...  make it unless it is there, then run CMD inside
#   scripts/fleet-netns.sh exec CMD...       run CMD inside the namespace that is there
#   scripts/fleet-netns.sh cleanup           remove the namespace and everything in it
#
# Environment: FLEET_NETNS names the namespace (default chamber-fleet),
# FLEET_PREFIX the first two bytes of the subnet (default 10.100).
#
# Example, 250 TLX chambers of type 9 on 10.100.0.1 ... 10.100.0.250:
#   scripts/fleet-netns.sh run 250 build/bin/chamber-simulator -n250 -i10.100.0.1
set -euo pipefail

name=${FLEET_NETNS:-chamber-fleet}
prefix=${FLEET_PREFIX:-10.100}

usage() {
    sed -n '2,16p' "$0" | sed 's/^# \{0,1\}//'
    exit 2
}

exists() {
    ip netns list | awk '{print $1}' | grep -qx -- "$name"
}

up() {
    local count=$1
    [[ $count =~ ^[0-9]+$ ]] && ((count >= 1 && count <= 65534)) || { echo "COUNT must be 1 to 65534" >&2; exit 2; }
    exists && ip netns delete "$name"
    ip netns add "$name"
    {
        echo "link set lo up"
        echo "link add fleet0 type veth peer name fleet1"
        echo "link set fleet0 up"
        echo "link set fleet1 up"
        for ((i = 1; i <= count; i++)); do
            echo "address add $prefix.$((i >> 8)).$((i & 255))/16 dev fleet0"
        done
    } | ip -n "$name" -batch -
    echo "namespace $name: $count addresses, $prefix.0.1 to $prefix.$((count >> 8)).$((count & 255)) on fleet0"
}

case ${1:-} in
up)
    [[ $# -eq 2 ]] || usage
    up "$2"
    ;;
run)
    [[ $# -ge 3 ]] || usage
    exists || up "$2" >&2
    shift 2
    exec ip netns exec "$name" "$@"
    ;;
exec)
    [[ $# -ge 2 ]] || usage
    exists || { echo "no namespace $name: use 'up' first" >&2; exit 1; }
    shift
    exec ip netns exec "$name" "$@"
    ;;
cleanup)
    exists && ip netns delete "$name"
    echo "namespace $name removed"
    ;;
*)
    usage
    ;;
esac
