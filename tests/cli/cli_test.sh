#!/bin/sh
# The command line on the bundled sample project, as a user types it:
# outputs, exit codes and refusals, and the database file it keeps.
set -u
pipespec="$1"
sample="$(cd "$(dirname "$0")/../.." && pwd)/data/sample/project.json"

# Every database lives in a directory of its own, never in the user's.
tmp=$(mktemp -d)
trap 'chmod -R u+w "$tmp"; rm -rf "$tmp"' EXIT
XDG_DATA_HOME="$tmp/data"
export XDG_DATA_HOME
. "$(dirname "$0")/expect.sh"

# What a file holds and when it was last written: a run that changes nothing
# leaves both.
checksum() {
    cksum < "$1"
    stat -c %y "$1"
}

# The first run makes the user's database from the sample project; later runs open it.
expect 0 "first use" -- "$pipespec" info
contains "first use" "made the database $XDG_DATA_HOME/pipespec/sample.pspec from the sample project"
contains "first use" "Current project PLANT"
contains "first use" "PLANT:@20|PIPECLASSES|PC-A1-DIN  0 elements"
[ -f "$XDG_DATA_HOME/pipespec/sample.pspec" ] || fail "first use: no database file in the data directory"
expect 0 "second use" -- "$pipespec" info --json
lacks "second use" "made the database"
contains "second use" '"format": "database file"'
contains "second use" '"name": "BASE"'

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
expect 2 "a language that is no name" -- "$pipespec" info --lang ../en
expect 2 "an empty database name" -- "$pipespec" info --db ''
expect 2 "a stray word" -- "$pipespec" info stray
contains "a stray word" "'info' takes no words besides its options: 'stray'"
expect 0 "check help" -- "$pipespec" check --help
contains "check help" "--class"
expect 0 "validate help" -- "$pipespec" validate --help
contains "validate help" "--db FILE"

expect 0 "check" -- "$pipespec" check --class PC-A1-DIN
contains "check" "may become an element:  BASE:@40|CAT|FLANGES|FL-WN-PN16"
contains "check" "BASE:@40|CAT|STRUCTURE|ST-SHOE is structure element"
contains "check" "BASE:@40|CAT|BOLTING|BO-HEX#GD.VFCD not set"
expect 0 "check by path" -- "$pipespec" check --class "@20|PIPECLASSES|PC-B2-E3D"
contains "check by path" "BASE:@40|CAT|VALVES|VA-BALL has got no VSTD"
expect 0 "check structure class" -- "$pipespec" check --class PC-S3-STRUCT --json
contains "check structure class" '"component": "BASE:@40|CAT|STRUCTURE|ST-SHOE",'
lacks "check structure class" "is structure element"
expect 0 "validate" -- "$pipespec" validate --class PC-A1-DIN --json
contains "validate" '"valid": true'
expect 0 "validate in words" -- "$pipespec" validate --class PC-A1-DIN
contains "validate in words" "may become an element:  BASE:@40|CAT|VALVES|CHECK|VA-CHECK-PN40-DN600"
contains "validate in words" " may become an element, 4 refused."

expect 0 "add" -- "$pipespec" add --dry-run --class PC-A1-DIN FL-WN-PN16 TE-EQ
contains "add" "made PLANT:@20|PIPECLASSES|PC-A1-DIN|001  from BASE:@40|CAT|BASE|FL-WN"
contains "add" "made PLANT:@20|PIPECLASSES|PC-A1-DIN|002  from BASE:@40|CAT|FITTINGS|TE-EQ"
contains "add" "nominal diameter DN 15 to DN 300"
contains "add" "not saved: --dry-run"
expect 1 "add a duplicate, answered no" -- "$pipespec" add --dry-run --class PC-A1-DIN FL-WN-PN16 FL-WN-PN40 --duplicates no
contains "add a duplicate, answered no" "not made from BASE:@40|CAT|FLANGES|FL-WN-PN40"
contains "add a duplicate, answered no" "[answer 7]"
expect 0 "add a duplicate, answered yes" -- "$pipespec" add --dry-run --class PC-A1-DIN FL-WN-PN16 FL-WN-PN40 --duplicates yes --json
contains "add a duplicate, answered yes" '"name": "002"'
contains "add a duplicate, answered yes" '"answer": 6'
expect 1 "add a refused component" -- "$pipespec" add --dry-run --class PC-A1-DIN ST-SHOE --trace
contains "add a refused component" "is structure element"
contains "add a refused component" "leave: not valid"
expect 2 "add an unknown component" -- "$pipespec" add --dry-run --class PC-A1-DIN FL-WN-PN16 NO-SUCH-PART
expect 2 "add without components" -- "$pipespec" add --dry-run --class PC-A1-DIN
expect 1 "messages in German" -- "$pipespec" add --dry-run --class PC-A1-DIN FL-WN-PN16 FL-WN-PN40 --lang de
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

# A class for the outside design system: the tube doubled into a shop and a
# field element, the flange's gasket as companion, bolting by its code without
# a chapter card, each with its selector leaf, shop value and questions.
expect 0 "add to a PDMS class" -- sh -c "'$pipespec' add --dry-run --class PC-B2-E3D TU-SMLS FL-WN-PN16 BO-STUD < /dev/null"
contains "add to a PDMS class" "made PLANT:@20|PIPECLASSES|PC-B2-E3D|001  from BASE:@40|CAT|TUBES|TU-SMLS"
contains "add to a PDMS class" "made PLANT:@20|PIPECLASSES|PC-B2-E3D|002  from BASE:@40|CAT|TUBES|TU-SMLS"
contains "add to a PDMS class" "selector PLANT:@20|PIPECLASSES|PC-B2-E3D|SelectorRoot|TUBE|SHOP:TRUE, shop TRUE"
contains "add to a PDMS class" "SHOP:TRUE, shop FALS"
contains "add to a PDMS class" "question PDMS.SHOP = TRUE"
contains "add to a PDMS class" "Selectors chain after selector FLAN with question FTYPE is ambiguous."
contains "add to a PDMS class" "question PIPE.FTYPE = WN"
contains "add to a PDMS class" "made PLANT:@20|PIPECLASSES|PC-B2-E3D|004  from BASE:@40|CAT|GASKETS|GA-PN16"
contains "add to a PDMS class" "selector PLANT:@20|PIPECLASSES|PC-B2-E3D|SelectorRoot|BOLT"
contains "add to a PDMS class" "Chapter card E3D not found"
lacks "add to a PDMS class" "error "
expect 0 "add to a PDMS class, chosen" -- "$pipespec" add --dry-run --class PC-B2-E3D FL-WN-PN16 --choose BL --json
contains "add to a PDMS class, chosen" '"selector": "PLANT:@20|PIPECLASSES|PC-B2-E3D|SelectorRoot|FLAN|FTYPE:BL"'
contains "add to a PDMS class, chosen" '"asked": 1'
expect 1 "add to a PDMS class, cancelled" -- "$pipespec" add --dry-run --class PC-B2-E3D FL-WN-PN16 --choose cancel
contains "add to a PDMS class, cancelled" "not made from BASE:@40|CAT|FLANGES|FL-WN-PN16"
# A sized catalogue component answers the tree's questions itself, and a
# flange brings the gasket of its joint.
expect 0 "add a sized flange to a PDMS class" -- "$pipespec" add --dry-run --class PC-B2-E3D FL-SO-PN40-DN150 --choose cancel
contains "add a sized flange to a PDMS class" "selector PLANT:@20|PIPECLASSES|PC-B2-E3D|SelectorRoot|FLAN|FTYPE:SO"
contains "add a sized flange to a PDMS class" "from BASE:@40|CAT|GASKETS|FLAT|GA-FLAT-PN40-DN150"
expect 0 "questions of a sized valve" -- "$pipespec" questions --class PC-A1-DIN VA-BALL-PN16-DN50 --choose cancel
contains "questions of a sized valve" "PIPE.FTYPE = BALL"

# add keeps its elements in the database file, which the next run reads.
db="$tmp/project.pspec"
expect 0 "add to a new database" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 TE-EQ --db "$db"
contains "add to a new database" "made the database $db from the sample project"
contains "add to a new database" "Saved to $db"
expect 0 "reopened" -- "$pipespec" info --db "$db"
contains "reopened" "PLANT:@20|PIPECLASSES|PC-A1-DIN  2 elements"
lacks "reopened" "made the database"
expect 1 "added again: a duplicate" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 --db "$db"
contains "added again: a duplicate" "not made from BASE:@40|CAT|FLANGES|FL-WN-PN16"
before=$(checksum "$db")
expect 0 "a dry run" -- "$pipespec" add --dry-run --class PC-A1-DIN FL-WN-PN40 --duplicates yes --db "$db"
contains "a dry run" "made PLANT:@20|PIPECLASSES|PC-A1-DIN|003"
[ "$(checksum "$db")" = "$before" ] || fail "a dry run changed the database file"
expect 0 "save without changes" -- "$pipespec" save --db "$db"
contains "save without changes" "0 objects written"

expect 0 "export" -- "$pipespec" export --class PC-A1-DIN --db "$db" --json
contains "export" '"pipeClass": "PLANT:@20|PIPECLASSES|PC-A1-DIN"'
contains "export" '"element": "PLANT:@20|PIPECLASSES|PC-A1-DIN|002"'
contains "export" '"cdevice": "BASE:@40|CAT|FITTINGS|TE-EQ"'
contains "export" '"lower": "DN 15"'
contains "export" '"name": "GD.VFCD"'
contains "export" '"question": "SEL.PN"'
expect 0 "search" -- "$pipespec" search --class PC-A1-DIN --fcode 10300 --nd 100 --db "$db"
contains "search" "PLANT:@20|PIPECLASSES|PC-A1-DIN|002"
contains "search" "1 components of PLANT:@20|PIPECLASSES|PC-A1-DIN with function code 10300 for DN 100"
expect 0 "search finds nothing" -- "$pipespec" search --class PC-A1-DIN --fcode 10300 --nd 900 --db "$db" --json
contains "search finds nothing" '"components": []'
expect 2 "search without a diameter" -- "$pipespec" search --class PC-A1-DIN --fcode 10300 --db "$db"
expect 0 "export of a class without a tree" -- "$pipespec" export --class PC-S3-STRUCT --db "$db"
contains "export of a class without a tree" '"selectors": null'

# Each run that saves is a step that a later run can undo and redo.
steps="$tmp/steps.pspec"
expect 0 "add before undo" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 TE-EQ --db "$steps"
expect 0 "undo" -- "$pipespec" undo --db "$steps"
contains "undo" "the last step is undone; 0 to undo, 1 to redo"
expect 0 "after undo" -- "$pipespec" info --db "$steps"
contains "after undo" "PLANT:@20|PIPECLASSES|PC-A1-DIN  0 elements"
before=$(checksum "$steps")
expect 1 "nothing left to undo" -- "$pipespec" undo --db "$steps"
contains "nothing left to undo" "Nothing to undo in $steps"
[ "$(checksum "$steps")" = "$before" ] || fail "undo with nothing to undo changed the file"
expect 0 "redo" -- "$pipespec" redo --db "$steps" --json
contains "redo" '"redone": true'
expect 0 "after redo" -- "$pipespec" info --db "$steps"
contains "after redo" "PLANT:@20|PIPECLASSES|PC-A1-DIN  2 elements"
expect 1 "nothing left to redo" -- "$pipespec" redo --db "$steps"
expect 0 "undo before a new change" -- "$pipespec" undo --db "$steps"
expect 0 "a new change" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN40 --db "$steps"
expect 1 "a new change drops the redo" -- "$pipespec" redo --db "$steps"
contains "a new change drops the redo" "Nothing to redo"
chmod a-w "$steps"
before=$(checksum "$steps")
expect 3 "undo on a write-protected file" -- "$pipespec" undo --db "$steps"
[ "$(checksum "$steps")" = "$before" ] || fail "undo changed a write-protected file"
chmod u+w "$steps"
expect 3 "undo on a JSON project" -- "$pipespec" undo --db "$sample"
contains "undo on a JSON project" "nothing is undone"

# A run that read the file before another one saved is refused when it comes
# to save, and the other's save stays.
shared="$tmp/shared.pspec"
expect 0 "a shared file" -- "$pipespec" info --db "$shared"
mkfifo "$tmp/answer"
"$pipespec" add --class PC-B2-E3D FL-WN-PN16 --choose ask --db "$shared" < "$tmp/answer" > "$tmp/asking" 2>&1 &
asking=$!
exec 7> "$tmp/answer"
waited=0
until grep -q "Answer" "$tmp/asking" || [ "$waited" -ge 200 ]; do
    sleep 0.1
    waited=$((waited + 1))
done
expect 0 "a run that saves meanwhile" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 --db "$shared"
echo 1 >&7
exec 7>&-
wait "$asking"
got=$?
out=$(cat "$tmp/asking")
[ "$got" -eq 3 ] || fail "the run that was asking: exit $got, expected 3; output: $out"
contains "the run that was asking" "was changed by someone else since this session read it; nothing is saved"
expect 0 "after both runs" -- "$pipespec" info --db "$shared"
contains "after both runs" "PC-A1-DIN  1 elements"
contains "after both runs" "PC-B2-E3D  0 elements"

# A JSON project is read, never written; save --as makes a database file of it.
before=$(checksum "$sample")
expect 0 "add to a JSON project" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 --db "$sample"
contains "add to a JSON project" "not saved: $sample is a JSON project, which the command line only reads"
expect 1 "save a JSON project" -- "$pipespec" save --db "$sample"
expect 0 "save a JSON project as a database" -- "$pipespec" save --db "$sample" --as "$tmp/converted.pspec"
expect 0 "the converted database" -- "$pipespec" info --db "$tmp/converted.pspec"
contains "the converted database" "PLANT:@20|PIPECLASSES|PC-A1-DIN  0 elements"
expect 3 "save over an existing file" -- "$pipespec" save --db "$sample" --as "$tmp/converted.pspec"
expect 2 "save as JSON" -- "$pipespec" save --db "$db" --as "$tmp/out.json"
[ "$(checksum "$sample")" = "$before" ] || fail "the JSON project was changed"

# Files that are not ours, and files that may not be written, stay as they are.
printf 'a shopping list\n' > "$tmp/foreign.pspec"
before=$(checksum "$tmp/foreign.pspec")
expect 3 "a foreign file" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN16 --db "$tmp/foreign.pspec"
[ "$(checksum "$tmp/foreign.pspec")" = "$before" ] || fail "a foreign file was changed"
expect 3 "a missing folder" -- "$pipespec" info --db "$tmp/no/such/folder.pspec"
mkfifo "$tmp/pipe.pspec"
expect 3 "a pipe" -- timeout 10 "$pipespec" info --db "$tmp/pipe.pspec"
contains "a pipe" "is not a regular file"
odd="$tmp/$(printf 'odd\377').pspec"
expect 0 "a file name that is not UTF-8" -- "$pipespec" add --json --class PC-A1-DIN FL-WN-PN16 --db "$odd"
contains "a file name that is not UTF-8" '"saved": true'
cp "$db" "$tmp/protected.pspec"
chmod a-w "$tmp/protected.pspec"
before=$(checksum "$tmp/protected.pspec")
expect 3 "a write-protected file" -- "$pipespec" add --class PC-A1-DIN FL-WN-PN40 --db "$tmp/protected.pspec"
contains "a write-protected file" "is write-protected; nothing is changed"
expect 0 "a write-protected file is read" -- "$pipespec" info --db "$tmp/protected.pspec"
contains "a write-protected file is read" "PC-A1-DIN  2 elements"
[ "$(checksum "$tmp/protected.pspec")" = "$before" ] || fail "a write-protected file was changed"

finish "command-line"
