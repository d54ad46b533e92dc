#!/bin/sh
# Runs the commands of the documents as they are written, in a clone of the last commit, and fails at the first that fails
# or that it does not know. What needs the installed program, or removes it, is run by try-package.sh. Takes several whole
# builds and test runs; needs Debian 12, like run.sh.
#   check-documents.sh [--list] [DOCUMENT...]   by default all; --list only says what would be run, and by whom
set -eu
cd "$(dirname "$0")/.."
only_list=no
if [ "${1:-}" = --list ]; then
    only_list=yes
    shift
fi
[ "$#" -gt 0 ] || set -- README.md docs/*.md CONTRIBUTING.md
scripts=$PWD/scripts

# who_runs COMMAND: "here", or the script that does; fails for a command that is new.
who_runs() {
    case "$1" in
        ./run.sh | ./test.sh | scripts/install-dependencies.sh | scripts/update-translations.sh | scripts/package.sh) echo here ;;
        "cmake "* | "ctest "* | "CORVANE_TEST_ALL_ROUNDS=1 ctest "* | "DESTDIR="*" cmake "* | "sudo cmake --install "*) echo here ;;
        "git archive "* | "msginit "* | "echo fr >>po/LINGUAS" | "LANG="*" ./run.sh") echo here ;;
        "CORVANE_CMAKE_ARGUMENTS="*" scripts/package.sh "*) echo here ;;
        # For the figures, on a quiet machine.
        "scripts/bench.sh "*) echo bench.sh ;;
        "GTEST_FILTER="*" scripts/reliability.sh "*) echo reliability.sh ;;
        "systemctl --user "* | corvane-import | "corvane-import "* | "gdbus "* | build/example/host-example) echo try-package.sh ;;
        "mkdir -p -m 700 ~/"* | "install -m 600 "* | "sudo apt "* | "scripts/try-package.sh "*) echo try-package.sh ;;
        *) return 1 ;;
    esac
}

for document in "$@"; do
    scripts/commands-of.sh "$document" | while IFS= read -r command; do
        runner=$(who_runs "$command") || { echo "check-documents.sh: nobody runs this of $document: $command" >&2; exit 1; }
        [ "$only_list" = no ] || printf '%s: %s: %s\n' "$document" "$runner" "$command"
    done
done
[ "$only_list" = no ] || exit 0

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' INT TERM
git clone -q . "$work/corvane"
cd "$work/corvane"
# What is to be installed on this machine goes to a folder, and needs nobody's permission there.
export DESTDIR="$work/installed"
mkdir "$work/bin"
printf '#!/bin/sh\nexec "$@"\n' >"$work/bin/sudo"
chmod +x "$work/bin/sudo"

for document in "$@"; do
    "$scripts/commands-of.sh" "$document" >"$work/commands"
    while IFS= read -r command <&3; do
        [ "$(who_runs "$command")" = here ] || continue
        printf '== %s: %s\n' "$document" "$command"
        case "$command" in
            "sudo "*) PATH=$work/bin:$PATH sh -euc "$command" </dev/null ;;
            *) (unset DESTDIR && sh -euc "$command" </dev/null) ;;
        esac
    done 3<"$work/commands"
    # The next document starts from a fresh tree, but need not build anew.
    git checkout -q . && git clean -fdq -e build
done
