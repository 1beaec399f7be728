# shellcheck shell=bash
# Sourced by the scripts: installs from Debian what the project needs. This is the one place that names packages.

# shellcheck source=scripts/steps.sh
. "$(dirname "${BASH_SOURCE[0]}")/steps.sh"

# What builds and runs the library and the tool.
readonly BUILD_PACKAGES=(
    cmake g++ libcli11-dev libfmt-dev libjsoncpp-dev libsimdjson-dev libzstd-dev ninja-build zlib1g-dev
)
# What the tests need besides.
# shellcheck disable=SC2034
readonly TEST_PACKAGES=(groff-base libgmock-dev python3-cram python3-fastjsonschema)
# What draws, for the tests of pictures.
# shellcheck disable=SC2034
readonly PICTURE_PACKAGES=(fonts-dejavu-core graphviz)
# What checks the types of the replay page's program, and tries pages in a browser.
# shellcheck disable=SC2034
readonly PAGE_PACKAGES=(chromium chromium-driver node-typescript python3-selenium)
# What the benchmark measures with, and against.
# shellcheck disable=SC2034
readonly BENCH_PACKAGES=(
    binutils jq libbenchmark-dev libluajit-5.1-dev libmuparser-dev pkg-config valgrind
)
# What fuzzes.
# shellcheck disable=SC2034
readonly FUZZ_PACKAGES=(clang libclang-rt-14-dev)
# What counts the lines and branches that the tests reach.
# shellcheck disable=SC2034
readonly COVERAGE_PACKAGES=(gcovr)
# What makes the many small builds of the mutation test fast.
# shellcheck disable=SC2034
readonly MUTATION_PACKAGES=(ccache lld)
# What makes the Debian packages; debian/control names again what they are built with.
# shellcheck disable=SC2034
readonly PACKAGING_PACKAGES=(build-essential debhelper)
# What tries them.
# shellcheck disable=SC2034
readonly PACKAGE_CHECK_PACKAGES=(abigail-tools binutils lintian mmdebstrap)
# What clients of the library are built with, besides CMake and g++.
# shellcheck disable=SC2034
readonly CLIENT_PACKAGES=(clang make pkg-config)
# What builds for arm64 on another machine and runs that there, and what is unpacked of that architecture.
# shellcheck disable=SC2034
readonly ARM64_TOOL_PACKAGES=(g++-aarch64-linux-gnu qemu-user)
# shellcheck disable=SC2034
readonly ARM64_PACKAGES=(
    libcli11-dev libfmt-dev libgmock-dev libjsoncpp-dev libsimdjson-dev libzstd-dev zlib1g-dev
)
# What the slower checks need besides.
readonly CHECK_PACKAGES=(
    clang clang-format clang-tidy doxygen libc++-14-dev libc++abi-14-dev libclang-rt-14-dev shellcheck zsh
)
# What answers a second time what the tool decides.
# shellcheck disable=SC2034
readonly JUDGE_PACKAGES=(python3 python3-z3)
# What spreads a replay over many processes, and draws what came of it.
# shellcheck disable=SC2034
readonly FLEET_PACKAGES=(python3-cryptography python3-distributed python3-matplotlib util-linux)
# What explores the model of the manager.
# shellcheck disable=SC2034
readonly MODEL_PACKAGES=(gcc libc6-dev spin)

# missing_packages PACKAGE...: those that are not installed for this machine's own architecture, a line each.
missing_packages() {
    # Names every architecture of a package, and fails if one of them is unknown.
    { dpkg-query -W -f='${Package} ${Architecture} ${db:Status-Status}\n' "$@" 2>/dev/null || true; } |
        awk -v native="$(dpkg --print-architecture)" -v wanted="$*" '
            $3 == "installed" && ($2 == native || $2 == "all") { there[$1] = 1 }
            END { count = split(wanted, names, " "); for (i = 1; i <= count; ++i) if (!(names[i] in there)) print names[i] }'
}

# install_packages PACKAGE...: does nothing, and asks for no rights, when all are there.
install_packages() {
    local missing sudo=() command log=$PROJECT/build/packages.log
    mapfile -t missing < <(missing_packages "$@")
    [ "${#missing[@]}" -gt 0 ] || return 0
    require_build_folder
    command="apt-get update && apt-get install --no-install-recommends ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        sudo=(sudo)
        [ -n "$(command -v sudo)" ] || give_up "There is no sudo: as root, run '$command', and then this again."
    fi
    echo "Installing ${missing[*]}, and what they need (a minute or two); log in build/packages.log" >&2
    # What is installed is for all users, whatever this one keeps from them.
    # shellcheck disable=SC2016
    logged packages.log "${sudo[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive sh -c '
        umask 022
        apt-get update
        exec apt-get install -y --no-install-recommends "$@"' sh "${missing[@]}" || give_up "$(install_advice "$log" "$command")"
}

# unpack_packages ARCHITECTURE PACKAGE...: these of that architecture, and what they need, in build/ARCHITECTURE-root. They
# are not installed: no rights are needed, and the packages of this machine stay as they are.
unpack_packages() {
    local root=$PROJECT/build/$1-root log=$PROJECT/build/packages.log
    [ "$(cat "$root/unpacked" 2>/dev/null)" != "$*" ] || return 0
    require_build_folder
    echo "Unpacking packages of $1 in build/$1-root; log in build/packages.log" >&2
    rm -rf "$root"
    # shellcheck disable=SC2016
    logged packages.log env LC_ALL=C sh -euc '
        root=$1 architecture=$2
        shift 2
        mkdir -p "$root/apt/lists/partial" "$root/apt/archives/partial"
        : >"$root/apt/status"
        apt() {
            apt-get -o APT::Architecture="$architecture" -o APT::Architectures::="$architecture" -o Dir::State="$root/apt" \
                -o Dir::State::status="$root/apt/status" -o Dir::Cache="$root/apt" "$@"
        }
        apt update
        apt install -y --no-install-recommends --download-only "$@"
        for package in "$root"/apt/archives/*.deb; do
            dpkg-deb -x "$package" "$root"
        done
        rm -r "$root/apt"' sh "$root" "$@" || give_up "$(install_advice "$log" "apt-get update")"
    echo "$*" >"$root/unpacked"
}

# install_advice LOG COMMAND: what to do about packages that could not be installed.
install_advice() {
    if grep -qE '^sudo: |may not run sudo|not in the sudoers' "$1"; then
        echo "There is no sudo for $(id -un): as root, run '$2', and then this again."
    elif disk_advice "$1"; then # which also keeps apt from what it fetches
        :
    elif grep -qE 'resolving|Could not connect|Failed to fetch|Unable to (connect|locate)' "$1"; then
        echo "No packages: see that there is a network and that /etc/apt names the sources of Debian 12, and run this again."
    else
        echo "Packages could not be installed: mend what $1 ends with, and run this again."
    fi
}
