# Data: JSON layout, timecodes and CRC-64
set -u
echo '$ brindle json scene.json'
"$BRINDLE" json scene.json
echo
echo '$ brindle json data-broken.json   # a bare word where a value belongs'
"$BRINDLE" json data-broken.json 2>&1 || echo "(exit status $?)"
echo
echo '$ brindle timecode 01:00:00.05            # 24 fps by default'
"$BRINDLE" timecode 01:00:00.05
echo '$ brindle timecode 00:01:00.00 --fps 29.97 # no drop-frame correction'
"$BRINDLE" timecode 00:01:00.00 --fps 29.97
echo '$ brindle timecode 00:00:02.03 --fps 25'
"$BRINDLE" timecode 00:00:02.03 --fps 25
echo
echo '$ brindle crc64 scene.json data-broken.json'
"$BRINDLE" crc64 scene.json data-broken.json
