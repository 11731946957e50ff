# Running programs with piped standard streams
set -euo pipefail

echo '$ brindle run -- /bin/sh -c "echo to stdout; echo to stderr >&2; exit 3"'
status=0
"$BRINDLE" run -- /bin/sh -c 'echo to stdout; echo to stderr >&2; exit 3' 2>&1 || status=$?
echo "exit status: $status"

echo '$ brindle run --stdin demo.d/50-run.sh -- wc -l'
"$BRINDLE" run --stdin demo.d/50-run.sh -- wc -l

echo '$ brindle run --cwd demo.d -- ls'
"$BRINDLE" run --cwd demo.d -- ls | head -n 3

echo '$ brindle run -- "words with blanks" stay one argument each'
"$BRINDLE" run -- printf '[%s] ' "one word" two "three words" && echo

echo '$ brindle run --detach -- sleep 1   (prints the process id)'
"$BRINDLE" run --detach -- sleep 1
