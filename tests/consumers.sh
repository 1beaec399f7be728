#!/usr/bin/env bash
# Installs the library as README.md says, and has programs outside of the tree use it once the tree is gone: by CMake, by
# make with pkg-config and as part of their own build, each with g++ and with clang++, and again once it was moved. Folders
# have spaces in their names.
# shellcheck disable=SC2016
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=tests/docs/service.sh
. tests/docs/service.sh

install_packages "${BUILD_PACKAGES[@]}" "${CLIENT_PACKAGES[@]}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
umask 077
tree="$work/the tree"
mkdir "$tree" "$work/client"
git ls-files -z | xargs -0 cp --parents -t "$tree"
# These are the commands of the page: which install, and which use what is installed.
block() { awk -v wanted="$1" '/^```/ { inside = $0 == "```sh" && ++count == wanted; next } inside { printf "%s%s", and, $0; and = " && " }' README.md; }
to_install=$(block 1)
to_use=$(block 2)
[[ $to_install == *"--prefix /usr/local"* ]] || give_up "README.md installs in another way than this script knows"
service_of_the_page "$work/client"
cp -r --parents examples/health_service "$work/client"
cd "$work/client"
mkdir -p device/korvel_vig
cp rules.json device/korvel_vig/vig_response
export VIG_DEVICE_CONFIG=device

prefix="$work/first place"
(cd "$tree" && eval "${to_install//\/usr\/local/\"\$prefix\"}") >install.log 2>&1 || { tail -n 30 install.log; exit 1; }
grep -q '^CMAKE_BUILD_TYPE:.*=Release$' "$tree/build/library/CMakeCache.txt" || give_up "the library is not optimised"
rm -r "$tree/build"
source="$work/its source"
mv "$tree" "$source"

[ "$(ls "$prefix/include")" = vig ] || give_up "these are beside include/vig: $(ls "$prefix/include")"
! grep -rlF "$tree" "$prefix" || give_up "these name the folder in which they were built"
while read -r library; do
    paths=$(readelf -d "$library" | sed -nE 's/.*(RUNPATH|RPATH).*\[(.*)\]/\2/p')
    [[ $paths == "" || $paths == '$ORIGIN' ]] || give_up "$library looks for libraries in $paths"
done < <(find "$prefix" -name '*.so.*' -type f)

# runs FOLDER WHAT: that the clients there do what they must, on a host and where nobody receives triggers.
runs() {
    "$1/health_service_on_host" 2>log | diff expected - || { cat log; give_up "$2"; }
    "$1/health_service" 2>log | diff <(head -n 1 expected) - || { cat log; give_up "$2"; }
    grep -q 'triggerService is null!' log || give_up "$2: nothing tells that nobody receives triggers"
    echo "ok: $2"
}

# by_cmake FOLDER OPTION...
by_cmake() {
    { cmake -S examples/health_service -B "$1" "${@:2}" && cmake --build "$1" --parallel 2; } >log 2>&1 || { cat log; give_up "$1"; }
}

# by_make COMPILER
by_make() {
    make -B -C examples/health_service CXX="$1" health_service health_service_on_host >log 2>&1 || { cat log; give_up "$1"; }
    LD_LIBRARY_PATH=$prefix/lib runs examples/health_service "$1, with make and pkg-config"
}

export CMAKE_PREFIX_PATH=$prefix PKG_CONFIG_PATH=$prefix/lib/pkgconfig
for compiler in clang++ g++; do
    by_make "$compiler"
    by_cmake "$compiler" -DCMAKE_CXX_COMPILER="$compiler"
    runs "$compiler" "$compiler, with CMake"
done
mv "$prefix" "$work/second place"
prefix="$work/second place"
LD_LIBRARY_PATH=$prefix/lib runs examples/health_service "the programs of make, once the library was moved"
export CMAKE_PREFIX_PATH=$prefix PKG_CONFIG_PATH=$prefix/lib/pkgconfig
rm examples/health_service/health_service
eval "$to_use" >log 2>&1 || { cat log; give_up "the commands of README.md"; }
runs build/health_service "the commands of README.md, where the library was moved to"
LD_LIBRARY_PATH=$prefix/lib runs examples/health_service "the same with make"

unset CMAKE_PREFIX_PATH
for compiler in clang++ g++; do
    by_cmake "added $compiler" -DCMAKE_CXX_COMPILER="$compiler" -DVIG_SOURCE="$source"
    runs "added $compiler" "$compiler, with the source added to its build"
done
! grep -rq --include=flags.make --include=build.ninja -e -Werror added* || give_up "warnings fail the builds of others"

# This is the same service as for a device, on the smallest platform, which has no rules.
cat >fetch.cmake <<'CMAKE'
include(FetchContent)
FetchContent_Declare(vig SOURCE_DIR ${FETCHED} OVERRIDE_FIND_PACKAGE)
CMAKE
by_cmake fetched -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_PROJECT_INCLUDE="$PWD/fetch.cmake" -DFETCHED="$source" \
    -DVIG_PLATFORM_DIR="$source/examples/minimal_platform" -DVIG_INSTALL=ON
fetched/health_service | diff - <(echo "configurations received: 0")
echo "ok: clang++, with the source fetched, on another platform"
cmake --install fetched --prefix "$work/device" >log
installed=$(cd "$work/device" && echo include/* include/vig/* lib/*.so.1 lib/pkgconfig/*)
[ "$installed" = "include/vig include/vig/os include/vig/rulesengine include/vig/vig lib/libvig.so.1 lib/pkgconfig/vig.pc" ] ||
    give_up "on another platform this is installed: $installed"
