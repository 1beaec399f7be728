# shellcheck shell=bash
# Sourced by what runs the smallest service of README.md.

# service_of_the_page FOLDER: writes there rules.json as README.md has it, and as `expected` what the service says of it.
# shellcheck disable=SC2016
service_of_the_page() {
    sed -n '/^```json rules.json/,/^```$/ { //d; p }' README.md >"$1/rules.json"
    sed -n '/^\$ health_service_on_host/,/^```$/ { //d; p }' README.md >"$1/expected"
    [ -s "$1/rules.json" ] || return 1
    [ -s "$1/expected" ]
}
