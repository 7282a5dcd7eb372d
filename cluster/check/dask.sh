# shellcheck shell=bash disable=SC2154
# A Dask scheduler and workers on the loopback address; sourced by run.

dask_pids=()

# dask_start FOLDER: a scheduler and two workers, and waits until both are there.
dask_start() {
  local folder=$1 i
  mkdir -p "$folder"
  scheduler_file=$folder/scheduler.json
  dask-scheduler --host 127.0.0.1 --port 0 --no-dashboard --dashboard-address 127.0.0.1:0 \
    --scheduler-file "$scheduler_file" \
    >"$folder/scheduler.log" 2>&1 &
  dask_pids=($!)
  for ((i = 0; i < 300; i++)); do [ ! -s "$scheduler_file" ] || break; sleep 0.2; done
  dask_worker "$folder" 1
  dask_worker "$folder" 2
  dask_workers 2
}

# dask_worker FOLDER NAME: one more worker; its id is the last of dask_pids.
dask_worker() {
  dask-worker --scheduler-file "$scheduler_file" --host 127.0.0.1 --nthreads 1 --no-nanny \
    --no-dashboard --dashboard-address 127.0.0.1:0 --name "$2" \
    --local-directory "$1/space" >"$1/worker$2.log" 2>&1 &
  dask_pids+=($!)
}

# dask_workers N: waits until there are N.
dask_workers() {
  /usr/bin/python3 -c '
import sys
from distributed import Client
with Client(scheduler_file=sys.argv[1], timeout=60) as client:
    client.wait_for_workers(int(sys.argv[2]), timeout=60)' "$scheduler_file" "$1"
}

dask_stop() {
  local i
  for ((i = ${#dask_pids[@]} - 1; i >= 0; i--)); do stop "${dask_pids[i]}"; done
  dask_pids=()
}
