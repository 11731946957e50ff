# Tokens of a scene description (brindle lex)
set -e
"$BRINDLE" lex scene.txt | head -n 12
echo "..."
csv=$(mktemp)
printf 'shot,frames,fps\n# a comment line\nsh010,120,24\n' > "$csv"
"$BRINDLE" lex --comma "$csv"
rm -f "$csv"
