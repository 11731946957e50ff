# Application start-up (folders, languages, translators) and the action log
set -euo pipefail

echo '$ brindle info        (excerpt)'
"$BRINDLE" info | grep -E '^(version|folder (root|lang|temp|database):|language|preferences)'

echo '$ brindle info -lang fr        (the library French catalogue is installed)'
"$BRINDLE" info -lang fr | grep -E '^(language|preferences|translator)' | sed 's|: .*/|: .../|'

logdir=$(mktemp -d)
trap 'rm -rf "$logdir"' EXIT
echo '$ brindle log LOGDIR/edit "Open scene.xml" "Render frames 1-24"'
"$BRINDLE" log "$logdir/edit" "Open scene.xml" "Render frames 1-24" | sed "s|$logdir|LOGDIR|"
echo '$ brindle log --scope Export LOGDIR/export -- sh -c "echo exporting"'
"$BRINDLE" log --scope Export "$logdir/export" -- sh -c 'echo exporting' | sed "s|$logdir|LOGDIR|"
for log in "$logdir"/*/*.log; do
  echo "--- $(basename "$log" | sed -E 's/_[^_]+_[^_]+\.log$/_HOST_USER.log/')"
  cat "$log"
done
