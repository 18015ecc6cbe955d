#!/bin/sh
# The command line on the bundled sample project, as a user types it:
# outputs, exit codes and refusals.
set -u
pipespec="$1"
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

expect 0 "overview" -- "$pipespec" --help
contains "overview" "check"
contains "overview" "add"
expect 2 "no command" -- "$pipespec"
expect 2 "unknown command" -- "$pipespec" frobnicate
expect 2 "unknown option" -- "$pipespec" check --class PC-A1-DIN --colour
expect 2 "missing --class" -- "$pipespec" check
expect 2 "unknown pipe class" -- "$pipespec" check --class PC-NONE
contains "unknown pipe class" "no pipe class named 'PC-NONE'"
expect 2 "not a pipe class" -- "$pipespec" check --class "BASE:@40|CAT|FLANGES|FL-WN-PN16"
expect 3 "missing database" -- "$pipespec" check --class PC-A1-DIN --db /nonexistent/db.json
contains "missing database" "cannot be read"
expect 2 "unknown language" -- "$pipespec" check --class PC-A1-DIN --lang xx
expect 0 "check help" -- "$pipespec" check --help
contains "check help" "--class"

expect 0 "check" -- "$pipespec" check --class PC-A1-DIN
contains "check" "may become an element:  BASE:@40|CAT|FLANGES|FL-WN-PN16"
contains "check" "BASE:@40|CAT|STRUCTURE|ST-SHOE is structure element"
contains "check" "BASE:@40|CAT|BOLTING|BO-HEX#GD.VFCD not set"
expect 0 "check by path" -- "$pipespec" check --class "@20|PIPECLASSES|PC-B2-E3D"
contains "check by path" "BASE:@40|CAT|VALVES|VA-BALL has got no VSTD"
expect 0 "check structure class" -- "$pipespec" check --class PC-S3-STRUCT --json
contains "check structure class" '"component": "BASE:@40|CAT|STRUCTURE|ST-SHOE",'
lacks "check structure class" "is structure element"

expect 0 "add" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 TE-EQ
contains "add" "made PLANT:@20|PIPECLASSES|PC-A1-DIN|001  from BASE:@40|CAT|BASE|FL-WN"
contains "add" "made PLANT:@20|PIPECLASSES|PC-A1-DIN|002  from BASE:@40|CAT|FITTINGS|TE-EQ"
contains "add" "nominal diameter DN 15 to DN 300"
contains "add" "not saved"
expect 1 "add a duplicate, answered no" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 FL-WN-PN40 --duplicates no
contains "add a duplicate, answered no" "not made from BASE:@40|CAT|FLANGES|FL-WN-PN40"
contains "add a duplicate, answered no" "[answer 7]"
expect 0 "add a duplicate, answered yes" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 FL-WN-PN40 --duplicates yes --json
contains "add a duplicate, answered yes" '"name": "002"'
contains "add a duplicate, answered yes" '"answer": 6'
expect 1 "add a refused component" -- "$pipespec" add --class PC-A1-DIN ST-SHOE --trace
contains "add a refused component" "is structure element"
contains "add a refused component" "leave: not valid"
expect 2 "add an unknown component" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 NO-SUCH-PART
expect 2 "add without components" -- "$pipespec" add --class PC-A1-DIN
expect 1 "messages in German" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 FL-WN-PN40 --lang de
contains "messages in German" "Mindestens ein Rohrklassenelement"

expect 0 "selectors" -- "$pipespec" selectors --class PC-A1-DIN
contains "selectors" "FLAN  answer FLAN  asks SEL.PN"
contains "selectors" "PN:40  answer 40  asks CONN.DN1"
expect 0 "selectors of a class without a tree" -- "$pipespec" selectors --class PC-S3-STRUCT
contains "selectors of a class without a tree" "has no selector tree"
expect 0 "questions answered by the component" -- "$pipespec" questions --class PC-A1-DIN FL-WN-PN16 --choose cancel --json
contains "questions answered by the component" '"question": "SEL.PN"'
contains "questions answered by the component" '"asked": 0'
expect 1 "questions with the choice cancelled" -- "$pipespec" questions --class PC-A1-DIN FL-WN-PN25 --choose cancel
lacks "questions with the choice cancelled" "SEL.PN ="
expect 0 "questions with a chosen selector" -- "$pipespec" questions --class PC-A1-DIN FL-WN-PN25 --choose 40 --json
contains "questions with a chosen selector" '"asked": 1'
expect 0 "questions asked on the terminal" -- sh -c "echo 2 | '$pipespec' questions --class PC-A1-DIN FL-WN-PN25 --choose ask"
contains "questions asked on the terminal" "is ambiguous"
contains "questions asked on the terminal" "2) 40"

if [ "$failures" -ne 0 ]; then
    echo "$failures command-line checks failed"
    exit 1
fi
echo "command line: all checks passed"
