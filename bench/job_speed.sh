#!/usr/bin/env bash
# Measures whole jobs, each run as its own process as a shop runs it, against their floor: the
# time to read the drawing and to write a file of the program's size. Three jobs: the punch
# example with 100,000 and with 1,000,000 generated hits, and the laser example with 100,000
# generated entities (outlines of lines and arcs reached by rapid moves). One line a job:
# records, wall time, floor, their ratio and the peak memory of the run. Each job runs RUNS
# times (3 unless set), each time on a fresh copy of its drawing, and so is each floor: the
# wall time and the floor are the medians, the peak memory the largest. The targets (a run
# within 5 times its floor, peak memory below 20 MB and the same at 100,000 and 1,000,000 hits)
# are reported, not asserted: the script ends non-zero only when a run fails.
#
#   bench/job_speed.sh            # TMPDIR chooses where the installations and drawings go
#   RUNS=1 bench/job_speed.sh     # one run of each, for a quick look
set -euo pipefail
cd "$(dirname "$0")/.."

# /usr/bin/time (the `time` package) gives the peak memory of a process.
if [ ! -x /usr/bin/time ]; then
  echo "Installing: time"
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq time >/dev/null
fi

# The build of scripts/test.sh; made when missing, brought up to date otherwise.
if [ ! -f build/build.ninja ]; then
  scripts/setup-deps.sh
  cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVANEX_TESTS=ON >/dev/null
fi
cmake --build build -j "$(nproc)" --target torvanex >/dev/null
exe="$PWD/build/torvanex"

temp=$(mktemp -d "${TMPDIR:-/tmp}/torvanex-speed.XXXXXX")
trap 'rm -rf "$temp"' EXIT
failed=0

now_ns() { date +%s%N; }
runs=${RUNS:-3}
[ "$runs" -ge 1 ] 2>/dev/null || runs=1
# The median of the numbers given.
median() { printf '%s\n' "$@" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

printf '%-7s %10s %9s %9s %7s %8s\n' job records "wall s" "floor s" ratio "peak MB"

# measure NAME EXAMPLE KIND RECORDS
measure() {
  local name=$1 example=$2 kind=$3 records=$4
  local drawing="$temp/$kind-$records.drw" dir="$temp/$name-$records"
  # The drawing, a run's copy of it, the pass's working file and the floor's copy, with room
  # for the program.
  local needed_kb=$(( (records + 1) * 518 / 1024 * 4 + 200 * 1024 ))
  local free_kb
  free_kb=$(df -Pk "$temp" | awk 'NR == 2 { print $4 }')
  if [ "$free_kb" -lt "$needed_kb" ]; then
    printf '%-7s %10s   skipped: needs about %d MB in %s, %d MB free\n' "$name" "$records" \
      $(( needed_kb / 1024 )) "$temp" $(( free_kb / 1024 ))
    return
  fi

  "$exe" demo --example "$example" "$dir" >/dev/null
  "$exe" drawing generate --kind "$kind" --records "$records" -o "$drawing"

  local walls=() floors=() peak_kb=0 program_size=0 start end status run peak
  for ((run = 1; run <= runs; run++)); do
    # The passes rewrite the drawing in place: every run starts from a fresh copy.
    cp "$drawing" "$dir/work/Progmain.drw"
    status=0
    start=$(now_ns)
    /usr/bin/time -f '%M' -o "$temp/peak" "$exe" run "$dir/work" 2>"$temp/stderr" || status=$?
    end=$(now_ns)
    if [ "$status" -ne 0 ]; then
      printf '%-7s %10s   the run failed with status %d:\n' "$name" "$records" "$status"
      sed 's/^/    /' "$temp/stderr"
      failed=1
      rm -rf "$dir" "$drawing"
      return
    fi
    walls+=($(( end - start )))
    peak=$(tail -n 1 "$temp/peak")
    [ "$peak" -gt "$peak_kb" ] && peak_kb=$peak
    program_size=$(stat -c %s "$dir/work/Progmain.prg")
  done
  rm -rf "$dir"

  # The floor: reading a copy of the drawing that no run has touched, and writing as many
  # bytes as the program has.
  for ((run = 1; run <= runs; run++)); do
    cp "$drawing" "$temp/floor.drw"
    start=$(now_ns)
    cat "$temp/floor.drw" >/dev/null
    head -c "$program_size" /dev/zero >"$temp/floor.prg"
    end=$(now_ns)
    floors+=($(( end - start )))
    rm -f "$temp/floor.drw" "$temp/floor.prg"
  done
  rm -f "$drawing"
  local wall floor
  wall=$(median "${walls[@]}")
  floor=$(median "${floors[@]}")

  awk -v name="$name" -v records="$records" -v wall="$wall" -v floor="$floor" -v peak="$peak_kb" 'BEGIN {
    printf "%-7s %10d %9.3f %9.3f %7.1f %8.1f\n", name, records, wall / 1e9, floor / 1e9,
      (floor > 0 ? wall / floor : 0), peak / 1024 }'
}

measure punch punch punch 100000
measure punch punch punch 1000000
measure laser laser laser 100000

echo "targets: wall within 5 times the floor; peak below 20 MB and the same at 100,000 and 1,000,000 hits"
exit "$failed"
