#!/usr/bin/env bash
# The README's installation, checked: a virtual environment over Debian's
# Python packages, pip without a package index, then the example script run
# as a user would, with no VEL_LIBRARY: the package must find the library
# recorded when it was installed, and libvel_io.so beside it.
#   install.sh LIBRARY WORK_DIR
set -euo pipefail
library="$(realpath "$1")"
work="$2"
repository="$(cd "$(dirname "$0")/../.." && pwd)"
rm -rf "$work"
mkdir -p "$work"
cp -r "$repository/python" "$work/python"  # pip builds inside the source directory
/usr/bin/python3 -m venv --system-site-packages "$work/.venv"
VEL_LIBRARY="$library" "$work/.venv/bin/pip" install -q --no-build-isolation --no-index "$work/python"
cd "$work"
output="$(env -u VEL_LIBRARY -u PYTHONPATH "$work/.venv/bin/python" "$repository/examples/python/weather.py" --output-dir "$work/plots")"
grep -q "^P(Season | Temp = 15): {'winter': 0.0826, 'summer': 0.9174}$" <<<"$output" ||
  { echo "unexpected output of the example:" >&2; echo "$output" >&2; exit 1; }
for picture in temp_summer.png temp_table.png; do
  [ "$(head -c 4 "$work/plots/$picture" | od -An -c | tr -d ' ')" = "211PNG" ] ||
    { echo "$picture is not a PNG picture" >&2; exit 1; }
done
echo "installed package: the example ran from the virtual environment"
