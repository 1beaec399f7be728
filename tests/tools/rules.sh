# shellcheck shell=bash
# Sourced by the transcripts: writes rule documents in few words.

# operand TERM: "name()" is a function, "=text" a constant, and all else an attribute.
operand() {
    case $1 in
        =*) printf '{"type":"constant","value":"%s"}' "${1#=}" ;;
        *'()') printf '{"type":"function","value":"%s"}' "${1%()}" ;;
        *) printf '{"type":"envvar","value":"%s"}' "$1" ;;
    esac
}

# filters CONDITION...: a list of filters such as "integer vmRssKB > =10".
filters() {
    local type left op right all=()
    while read -r type left op right; do
        all+=("{\"operator\":\"$op\",\"value_type\":\"$type\",\"operand1\":$(operand "$left"),\"operand2\":$(operand "$right")}")
    done < <([ $# -eq 0 ] || printf '%s\n' "$@")
    joined "${all[@]}"
}

# actions NAME...: a list of actions.
actions() {
    local name all=()
    for name in "$@"; do
        all+=("{\"name\":\"$name\"}")
    done
    joined "${all[@]}"
}

# transition FROM TO EVENT [FILTERS [ACTIONS]]
transition() {
    printf '{"from_state":"%s","to_state":"%s","event":"%s","filters":%s,"actions":%s}' "$1" "$2" "$3" "${4:-[]}" "${5:-[]}"
}

# config ID TRANSITION...
config() {
    printf '{"id":%s,"payload":{"id":1,"data":{"transitions":%s}}}' "$1" "$(joined "${@:2}")"
}

# document CONFIG...
document() {
    printf '{"configs":%s}\n' "$(joined "$@")"
}

# document_of TRANSITION...: of one configuration, with the id 7.
document_of() {
    document "$(config 7 "$@")"
}

# joined ELEMENT...: a JSON list.
joined() {
    local IFS=,
    printf '[%s]' "$*"
}

# machines: a document of the machines in the input, a line each, of transitions "FROM TO EVENT | FILTER & … | ACTION"
# with ";" between.
machines() {
    local line each way conditions action transitions parts all=()
    while IFS= read -r line; do
        transitions=()
        while IFS='|' read -r way conditions action; do
            IFS='&' read -ra parts <<<"$conditions"
            [ -n "${conditions// /}" ] || parts=()
            read -ra each <<<"$way"
            # shellcheck disable=SC2086 # The name of the action stands between spaces.
            transitions+=("$(transition "${each[@]}" "$(filters "${parts[@]}")" "$(actions $action)")")
        done <<<"${line//;/$'\n'}"
        all+=("$(config ${#all[@]} "${transitions[@]}")")
    done
    document "${all[@]}"
}
