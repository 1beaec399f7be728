#!/usr/bin/env bash
# Ports the library to a copy of the minimal platform, outside of the tree, shared and static, and takes something away
# from it: fails unless scripts/check_platform.sh is content with the whole, and names what is missing.
set -euo pipefail

root=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
other="$work/an other platform"
cp -r "$root/examples/minimal_platform" "$other"
failed=0

# expect WHAT PATTERN: that what the check says of the platform matches.
expect() {
    local said
    said=$("$root/scripts/check_platform.sh" "$other" 2>&1 || true)
    # shellcheck disable=SC2053
    [[ $said == $2 ]] || { printf '%s:\n%s\n' "$1" "$said"; failed=1; }
}

# without WHAT FILE SCRIPT PATTERN: the same of a platform that sed has changed, which is put right again.
without() {
    cp -p "$other/$2" "$work/whole"
    sed -i -E "$3" "$other/$2"
    if cmp -s "$other/$2" "$work/whole"; then echo "nothing is taken away: $3"; failed=1; fi
    expect "$1" "$4"
    cp "$work/whole" "$other/$2"
}

whole=$'*\nok  *\nok  *\nok  *\nok  *\nok    a trigger\n*'
expect 'shared' "$whole"
without 'static' CMakeLists.txt 's/SHARED/STATIC/' "$whole"
without 'a target of another name' CMakeLists.txt 's/vig_platform/platform/g' '*FAIL  configures*No target vig_platform*'
# shellcheck disable=SC2016
without 'no definition' MinimalPlatform.cpp 's/DeviceConfig::isDeviceConfigAvailable/unusedAvailable/' \
    '*FAIL  builds*undefined reference*isDeviceConfigAvailable*| `bool isDeviceConfigAvailable()` |*'
without 'another signature' include/deviceconfig/DeviceConfig.h 's/const std::string& ns, std::initializer_list<std::string> names/std::string_view ns/' \
    '*FAIL  builds*error: *getProperties*| `Properties getProperties(*'
without 'no type' include/utils/StrongPointer.h 's/sp = /pointer = /' '*FAIL  builds*error: *sp*'
without 'no service is found' MinimalPlatform.cpp 's|ITrigger/default|ITrigger/other|' '*ok    a delivery*FAIL  a trigger*'
rm "$other/SeamDriver.cpp"
expect 'no driver' '*There is no SeamDriver.cpp in *'
exit "$failed"
