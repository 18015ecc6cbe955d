#!/bin/sh
# The installation: the build tree installed into a fresh prefix and then
# moved, whose command line runs from its own bin/ on the data installed in
# share/pipespec beside it, and on nothing of the sources or the build tree.
set -u
cmake="$1"
build="$2"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
XDG_DATA_HOME="$tmp/data"
export XDG_DATA_HOME
. "$(dirname "$0")/expect.sh"

expect 0 "install" -- "$cmake" --install "$build" --prefix "$tmp/installed"
mv "$tmp/installed" "$tmp/moved"
prefix="$tmp/moved"
installed="bin/pipespec share/pipespec/nametable.json share/pipespec/lang/en.json share/pipespec/sample/project.json
           share/icons/hicolor/scalable/apps/pipespec.svg"
[ -x "$build/bin/pipespec-designer" ] && installed="$installed bin/pipespec-designer share/applications/pipespec-designer.desktop"
for file in $installed; do
    [ -f "$prefix/$file" ] || fail "not installed: $file"
done

expect 0 "the installed sample" -- "$prefix/bin/pipespec" validate --class PC-A1-DIN
contains "the installed sample" "made the database $XDG_DATA_HOME/pipespec/sample.pspec from the sample project"
contains "the installed sample" "may become an element:  BASE:@40|CAT|FLANGES|FL-WN-PN16"
ln -s "$prefix/bin/pipespec" "$tmp/linked"
expect 0 "a link to the program" -- "$tmp/linked" info --lang en --db "$prefix/share/pipespec/sample/project.json"
contains "a link to the program" "Current project PLANT"

# The language tables are those of the installation: one taken away is gone.
rm "$prefix/share/pipespec/lang/en.json"
expect 2 "a language removed from the installation" -- "$prefix/bin/pipespec" info --lang en
contains "a language removed from the installation" "no messages in language 'en' (de)"

finish "installation"
