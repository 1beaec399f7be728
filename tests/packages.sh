#!/usr/bin/env bash
# Builds the Debian packages, without the tests of the project, and tries them: what lintian says, how they are hardened,
# the binary interface; and in a root in which there is nothing else of ours, what a person does who installs them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

DEB_BUILD_OPTIONS=nocheck ./package.sh
install_packages "${PACKAGE_CHECK_PACKAGES[@]}"
packages=$PWD/build/packages

echo "== lintian"
# What is overridden is shown too, with the reason why it is.
lintian --allow-root --show-overrides "$packages"/vig_*.changes | tee "$packages/lintian.log"
! grep '^[EW]:' "$packages/lintian.log" || exit 1

echo "== hardening, in what is installed"
for package in "$packages"/*.deb; do
    dpkg-deb --extract "$package" "$packages/installed"
done
files=("$packages"/installed/usr/lib/*/libvig*.so.?.*.* "$packages/installed/usr/bin/vig")
tests/hardening.sh --fortified "${files[@]}"
for file in "${files[@]}"; do
    ! readelf --dynamic "$file" | grep -E 'R(UN)?PATH' || exit 1
done

echo "== the binary interface"
tests/binary_interface.sh

mkdir "$packages/try"
cp "$packages"/lib*_*.deb "$packages"/vig-tools_*.deb examples/memory-budget.json examples/trace.jsonl "$packages/try"
cat >"$packages/try/client.cpp" <<'END'
#include <fstream>
#include <iostream>
#include <iterator>

#include "rulesengine/FiniteStateMachine.h"
#include "vig/VIGManager.h"

int main() {
    std::ifstream file("memory-budget.json");
    const std::string document{std::istreambuf_iterator<char>(file), {}};
    const auto configs = Brenta::OS::VIG::VIGManager().parseResponse(document);
    const auto machine = configs.at(0)->getConfigPayload()->getFiniteStateMachine();
    machine->start();
    std::cout << "in state " << machine->getCurrentState()->getName() << '\n';
}
END
cat >"$packages/try/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.16)
project(client LANGUAGES CXX)
find_package(vig 1.0 CONFIG REQUIRED)
add_executable(client client.cpp)
target_link_libraries(client PRIVATE vig::vig)
END
cat >"$packages/try/try.sh" <<'END'
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
# How CMake is to build is said outside, of what is there.
unset "${!CMAKE_@}"

# everything: but what apt and dpkg keep for themselves, and what is of this run.
everything() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /try -o -path /tmp -o -path /var/log -o -path /var/cache \
        -o -path /var/lib/apt -o -path '/var/lib/dpkg/*-old' \) -prune -o -print | sort
}

cd /try
everything >before
apt-get install -qq -y --no-install-recommends ./*.deb >/dev/null

vig run memory-budget.json trace.jsonl | grep 'trigger  0'
vig graph memory-budget.json | grep digraph
man vig | grep 'vig run RULES'
# The loader says by its status that it has found something.
bash -c '. /usr/share/bash-completion/bash_completion
    _completion_loader vig
    COMP_WORDS=(vig gra) COMP_CWORD=1
    _vig
    printf "%s\n" "${COMPREPLY[@]}"' | grep '^graph$'
g++ -std=c++20 -Wall -Werror client.cpp $(pkg-config --cflags --libs vig) -o client
./client | grep "in state start"
cmake -S . -B built >/dev/null
cmake --build built >/dev/null
built/client | grep "in state start"

apt-get purge -qq -y --autoremove libvig1 libvig-dev vig-tools >/dev/null
everything >after
diff before after
echo "nothing is left"
END

echo "== installed, used and removed in a root of its own"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
if ! "${sudo[@]}" unshare --mount true; then
    echo "Nothing may be mounted here: the packages are not installed." >&2
    exit 0
fi
# The root is made of what this machine gets its packages from.
sources=() status=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
    [ ! -s "$file" ] || sources+=("$file")
done
# shellcheck disable=SC1091,SC2016
"${sudo[@]}" mmdebstrap --quiet --variant=minbase --include=bash-completion,cmake,g++,make,man-db,pkg-config --skip=cleanup/apt \
    --customize-hook="touch '$work/made'" --customize-hook="copy-in '$packages/try' /" \
    --customize-hook='chroot "$1" bash /try/try.sh' \
    "$(. /etc/os-release && echo "$VERSION_CODENAME")" /dev/null "${sources[@]}" || status=$?
if [ ! -e "$work/made" ]; then
    echo "No root can be made here: the packages are not installed." >&2
    exit 0
fi
exit "$status"
