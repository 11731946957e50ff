# Natural sort of shot and frame file names, frame numbers as timecode
set -euo pipefail
echo "\$ brindle natsort shots.txt | head -12"
"$BRINDLE" natsort shots.txt | head -12
echo
echo "\$ brindle natsort --tuple shots.txt | head -8   (extensions first, lower case before upper case)"
"$BRINDLE" natsort --tuple shots.txt | head -8
echo
for args in "1" "1500" "1500 --force-hours" "86400" "2999 --fps 25" "35 --format feet" "35 --format frames"; do
  echo "\$ brindle frame $args  ->  $("$BRINDLE" frame $args)"
done
echo
echo "\$ brindle frame -3   (refused, exit 2)"
"$BRINDLE" frame -3 2>&1 || echo "exit status $?"
