#!/usr/bin/env bash
# Builds the library for arm64 on another machine, and runs its tests and the smallest service, which finds it where it is
# installed, under an emulator of that processor.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh
# shellcheck source=tests/docs/service.sh
. tests/docs/service.sh

install_packages "${BUILD_PACKAGES[@]}" "${ARM64_TOOL_PACKAGES[@]}"
if ! (unpack_packages arm64 "${ARM64_PACKAGES[@]}"); then
    echo "This machine gets no packages of arm64: nothing is tried." >&2
    exit 0
fi
emulator=(qemu-aarch64 -L "$PWD/build/arm64-root")
# The longest come first. The unloading is left out, since it counts the threads, which the emulator ends a little later.
tests=(parsers actions manager robustness rulesengine platform loading lookup)
build_preset arm64 -DVIG_TESTS=ON vig "${tests[@]/%/_test}"
# These try very many texts, which takes minutes there and is the same on any processor.
export GTEST_FILTER='-UnreadableJson.IsWhatTheReaderWouldThrowAtInEvery*:HostileText.*Survived:HostileText.LargeTexts*:HostileText.ADocument*'
printf '%s\n' "${tests[@]}" | xargs -I{} -P 2 "${emulator[@]}" build/arm64/tests/{}_test --gtest_brief=1

for component in library development; do
    cmake --install build/arm64 --prefix build/arm64-installed --component "$component" >/dev/null
done
cmake -G Ninja -S examples/health_service -B build/arm64-service --toolchain "$PWD/cmake/arm64.cmake" \
    -Dvig_DIR="$PWD/build/arm64-installed/lib/cmake/vig" >/dev/null
cmake --build build/arm64-service >/dev/null
service=$PWD/build/arm64-service/health_service_on_host
readelf -h "$service" | grep -q AArch64
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
service_of_the_page "$folder"
(cd "$folder" && "${emulator[@]}" "$service" 2>/dev/null) | diff "$folder/expected" -
echo "ok: the smallest service on arm64"
