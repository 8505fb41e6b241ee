# SPDX-License-Identifier: GPL-3.0-or-later
# Functions of the set-up steps; read with `source`.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

say() { printf '%s\n' "$*"; }

# Runs a command as root: by sudo where that is needed.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Where libraries live that are built once per machine.
deps_dir() { printf '%s\n' "${XDG_CACHE_HOME:-$HOME/.cache}/kestrune/deps"; }

# install_packages NAME...: installs what is missing of these Debian packages.
install_packages() {
    local missing=() name
    for name in "$@"; do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" != installed ]; then
            missing+=("$name")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    say "setup: installing ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# fetch_source_package NAME DIR: unpacks the Debian source package NAME into DIR/NAME. The machine's own
# package sources serve, with source packages switched on for this call alone.
fetch_source_package() {
    local name=$1 dir=$2 lists
    lists=$(mktemp -d)
    mkdir -p "$lists/parts" "$lists/state/partial" "$dir"
    local file
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -e "$file" ] && sed 's/^Types:.*/Types: deb-src/' "$file" >"$lists/parts/$(basename "$file")"
    done
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -e "$file" ] && sed -n 's/^deb \(.*\)/deb-src \1/p' "$file" >"$lists/parts/$(basename "$file" .list).list"
    done
    cat >"$lists/apt.conf" <<EOF
Dir::Etc::SourceList "/dev/null";
Dir::Etc::SourceParts "$lists/parts";
Dir::State::Lists "$lists/state";
APT::Sandbox::User "root";
EOF
    (
        cd "$lists"
        APT_CONFIG="$lists/apt.conf" apt-get update -qq
        APT_CONFIG="$lists/apt.conf" apt-get source -qq --download-only "$name" >/dev/null
        rm -rf "${dir:?}/$name"
        dpkg-source --no-check -x ./*.dsc "$dir/$name" >/dev/null
    )
    rm -rf "$lists"
}

# build_windows_library NAME VERSION SOURCE-DIR CMAKE-OPTION...: cross-builds a CMake project into
# deps/windows-NAME-VERSION; the folder appears only when all of it is there.
build_windows_library() {
    local target source=$3 scratch
    target="$(deps_dir)/windows-$1-$2"
    shift 3
    scratch=$(mktemp -d)
    cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/MinGW.cmake" \
        -DCMAKE_INSTALL_PREFIX="$target" -DBUILD_SHARED_LIBS=OFF "$@" >"$scratch/log" 2>&1 &&
        cmake --build "$scratch/build" >>"$scratch/log" 2>&1 &&
        DESTDIR="$scratch/install" cmake --install "$scratch/build" >>"$scratch/log" 2>&1 || {
        tail -40 "$scratch/log" >&2
        return 1
    }
    mkdir -p "$(dirname "$target")"
    rm -rf "$target"
    mv "$scratch/install$target" "$target"
    rm -rf "$scratch"
}
