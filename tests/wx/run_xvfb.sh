#!/bin/sh
# Runs a window test program on a virtual display of its own. Without
# xvfb-run the tests cannot run here: exit 77, which CTest counts as skipped.
command -v xvfb-run >/dev/null 2>&1 || { echo "xvfb-run is not installed: window tests skipped" >&2; exit 77; }
exec xvfb-run -a -s "-screen 0 1024x768x24" "$@"
