# shellcheck shell=bash
# Sourced by the scripts: installs from Debian what the project needs. This is the one place that names packages.

# What builds and tests the project.
readonly BUILD_PACKAGES=(
    ca-certificates cmake fonts-dejavu-core g++ graphviz groff-base libcli11-dev libfmt-dev libgmock-dev libgtest-dev
    libjsoncpp-dev libsimdjson-dev libvalijson-dev libzstd-dev locales ninja-build zlib1g-dev
)
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
# What the slower checks need besides.
readonly CHECK_PACKAGES=(clang clang-format clang-tidy libclang-rt-14-dev shellcheck zsh)
# What explores the model of the manager.
# shellcheck disable=SC2034
readonly MODEL_PACKAGES=(gcc libc6-dev spin)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# install_packages PACKAGE...: does nothing, and asks for no rights, when all are there.
install_packages() {
    local package missing=()
    for package in "$@"; do
        if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    if [ "${#missing[@]}" -eq 0 ]; then
        return
    fi
    echo "Installing: ${missing[*]}" >&2
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}
