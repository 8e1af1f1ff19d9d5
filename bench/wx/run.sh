#!/bin/sh
# Runs the window benchmarks on a virtual display: bench/wx/run.sh BUILD_DIR [benchmark flags]
build=${1:-build}; shift
exec xvfb-run -a -s "-screen 0 1024x768x24" "$build/bench/vanto_wx_bench" "$@"
