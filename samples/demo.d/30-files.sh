# Paths, signatures, backups and lock files
set -euo pipefail

echo '$ brindle path files/shots/scene.xstage "C:\work\render?.tga" archive.xstage.gz --rel files'
"$BRINDLE" path files/shots/scene.xstage 'C:\work\render?.tga' archive.xstage.gz --rel files

echo
echo '$ brindle sign --check files/shots.md5'
"$BRINDLE" sign --check files/shots.md5

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp files/shots/scene.xstage "$work/"
cd "$work"

echo
echo '$ brindle backup scene.xstage; (edit scene.xstage); brindle sign scene.xstage scene.xstage~'
"$BRINDLE" backup scene.xstage
echo '<!-- edited -->' >> scene.xstage
"$BRINDLE" sign scene.xstage scene.xstage~

echo
echo '$ brindle restore scene.xstage            # refused: the file exists'
"$BRINDLE" restore scene.xstage || echo "(exit status $?)"
echo '$ brindle restore scene.xstage --overwrite'
"$BRINDLE" restore scene.xstage --overwrite
"$BRINDLE" sign scene.xstage

echo
echo '$ brindle lock scene.lock -- brindle lock --nowait scene.lock -- true'
"$BRINDLE" lock scene.lock -- "$BRINDLE" lock --nowait scene.lock -- true || echo "(exit status $?)"
echo '$ brindle lock --shared scene.lock -- brindle lock --shared --nowait scene.lock -- echo both readers hold it'
"$BRINDLE" lock --shared scene.lock -- "$BRINDLE" lock --shared --nowait scene.lock -- echo both readers hold it
