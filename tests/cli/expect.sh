# What the command-line scripts share: running a command as a user types it
# and looking at what it said. Sourced; counts failures in $failures.
failures=0

fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

# expect CODE DESCRIPTION -- command...; keeps the output in $out.
expect() {
    code="$1"
    what="$2"
    shift 3
    out=$("$@" 2>&1)
    got=$?
    [ "$got" -eq "$code" ] || fail "$what: exit $got, expected $code; output: $out"
}

contains() {
    printf '%s' "$out" | grep -qF -- "$2" || fail "$1: output lacks '$2'; output: $out"
}

lacks() {
    printf '%s' "$out" | grep -qF -- "$2" && fail "$1: output has '$2'; output: $out"
}

# Ends the script: 0 when every check passed.
finish() {
    if [ "$failures" -ne 0 ]; then
        echo "$failures $1 checks failed"
        exit 1
    fi
    echo "$1: all checks passed"
}
