# 4x4 matrices: inverse, determinant and 2D parameters
set -euo pipefail
echo '$ brindle matrix camera.txt'
"$BRINDLE" matrix camera.txt
echo
echo '$ echo <perspective projection> | brindle matrix'
echo '1 0 0 0   0 1 0 0   0 0 -1.2 -2.2   0 0 -1 0' | "$BRINDLE" matrix
echo
echo '$ brindle matrix 1 2 3 4  2 4 6 8  0 0 1 0  0 0 0 1'
"$BRINDLE" matrix 1 2 3 4  2 4 6 8  0 0 1 0  0 0 0 1
