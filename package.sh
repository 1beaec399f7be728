#!/usr/bin/env bash
# Installs what is missing, and builds the Debian packages libvig1, libvig-dev and vig-tools, which are put into
# build/packages. The tests are run as well; DEB_BUILD_OPTIONS=nocheck leaves them out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
# shellcheck source=scripts/build.sh
. scripts/build.sh

# debian_changelog: CHANGELOG.md, of which only releases count, as Debian writes it.
debian_changelog() {
    local maintainer
    maintainer=$(sed -n 's/^Maintainer: //p' debian/control)
    awk -v maintainer="$maintainer" '
        function end_release() { if (date != "") print "\n -- " maintainer "  " date }
        /^## \[[0-9]/ {
            end_release()
            gsub(/[][]/, "", $2)
            command = "LC_ALL=C date --utc --rfc-email --date=" $4
            command | getline date
            close(command)
            print (seen++ ? "\n" : "") "vig (" $2 ") unstable; urgency=medium\n"
            next
        }
        /^## / || /^\[/ { end_release(); date = "" }
        date == "" { next }
        /^### / { print "  [ " $2 " ]" }
        /^- / { print "  * " substr($0, 3) }
        /^  / { print "  " $0 }
        END { end_release() }' CHANGELOG.md
}

profile=()
packages=("${BUILD_PACKAGES[@]}" "${PACKAGING_PACKAGES[@]}")
if [[ " ${DEB_BUILD_OPTIONS:-} " == *" nocheck "* ]]; then
    profile=(--build-profiles=nocheck)
else
    packages+=("${TEST_PACKAGES[@]}")
fi
install_packages "${packages[@]}"
require_build_folder

# A copy is built, so that the tree stays as it is.
rm -rf build/packages
mkdir -p build/packages/source
tar --create --exclude=./build --exclude=./.git . | tar --extract --directory build/packages/source
cd build/packages/source
debian_changelog >debian/changelog
echo "Building packages (some minutes); log in build/packages/build.log" >&2
logged packages/build.log dpkg-buildpackage --unsigned-source --unsigned-changes --build=binary "${profile[@]}" ||
    give_up "$(build_advice "$PROJECT/build/packages/build.log")"
ls "$PROJECT"/build/packages/*.deb
