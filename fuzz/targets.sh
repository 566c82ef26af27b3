# The fuzz targets and the options every run of them shares (sourced).
targets=(expression model_file bif xmlbif)

# Options of a run of TARGET, given as $1: its dictionary, its input length,
# where to put a failing input, and the limits CI holds it to.
fuzz_options() {
  local max_len=8192
  [ "$1" = expression ] && max_len=4096
  echo "-dict=fuzz/dict/$1.dict -max_len=$max_len -timeout=10 -rss_limit_mb=2048"
}
