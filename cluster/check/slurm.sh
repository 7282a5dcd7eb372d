# shellcheck shell=bash disable=SC2154
# One node of Slurm on the loopback address, all of it in one folder; sourced by run.

# slurm_start FOLDER: starts munged, slurmctld and slurmd and waits until the node is idle.
slurm_start() {
  local folder=$1 user host ports i
  user=$(id -un) host=$(hostname -s)
  mkdir -p "$folder/state" "$folder/spool"
  chmod 711 "$folder"  # munge wants its socket within reach of everyone
  (umask 077 && head -c 128 /dev/urandom >"$folder/munge.key")
  ports=$(/usr/bin/python3 -c '
import socket
ends = [socket.create_server(("127.0.0.1", 0)) for _ in range(2)]
print(*(end.getsockname()[1] for end in ends))')
  cat >"$folder/slurm.conf" <<CONF
ClusterName=check
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=${ports% *}
SlurmdPort=${ports#* }
SlurmUser=$user
SlurmdUser=$user
AuthType=auth/munge
AuthInfo=socket=$folder/munge.socket,cred_expire=5
CommunicationParameters=NoInAddrAny,NoCtldInAddrAny
SlurmdParameters=config_overrides
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerType=sched/builtin
SchedulerParameters=batch_sched_delay=0,sched_interval=1
ReturnToService=2
KillWait=5
MinJobAge=3600
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd.pid
SlurmctldLogFile=$folder/slurmctld.log
SlurmdLogFile=$folder/slurmd.log
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc)
PartitionName=all Nodes=ALL Default=YES MaxTime=60
CONF
  export SLURM_CONF=$folder/slurm.conf
  munged --foreground --key-file="$folder/munge.key" --socket="$folder/munge.socket" \
    --pid-file="$folder/munged.pid" --log-file="$folder/munged.log" \
    --seed-file="$folder/munge.seed" --num-threads=2 >"$folder/munged.out" 2>&1 &
  munged_pid=$!
  for ((i = 0; i < 100; i++)); do [ ! -S "$folder/munge.socket" ] || break; sleep 0.1; done
  [ -S "$folder/munge.socket" ] || { cat "$folder/munged.out" >&2; fail "munged did not start"; }
  slurmctld -D -c >"$folder/slurmctld.out" 2>&1 &
  slurmctld_pid=$!
  slurmd -D >"$folder/slurmd.out" 2>&1 &
  slurmd_pid=$!
  for ((i = 0; i < 300; i++)); do
    [ "$(sinfo -h -o %T 2>/dev/null)" != idle ] || return 0
    sleep 0.2
  done
  cat "$folder"/slurmctld.log "$folder"/slurmd.log >&2
  fail "Slurm did not become ready"
}

# slurm_stop: the jobs first, then what slurm_start started, by its ids.
slurm_stop() {
  local i pid
  [ -n "${munged_pid:-}" ] || return 0
  if [ -n "${slurmctld_pid:-}" ]; then
    scancel --quiet --user="$(id -un)" 2>/dev/null || true
    for ((i = 0; i < 150; i++)); do
      [ -n "$(squeue -h 2>/dev/null)" ] || break
      sleep 0.2
    done
  fi
  for pid in ${slurmd_pid:-} ${slurmctld_pid:-} $munged_pid; do stop "$pid"; done
  munged_pid="" slurmctld_pid="" slurmd_pid=""
}

# slurm_submit TASKS OUT: a job array over the lines of the file; prints its id.
slurm_submit() {
  sbatch --parsable --array="1-$(wc -l <"$1")" --output="$work/slurm/log/%x-%A_%a.log" \
    "$cluster/slurm/cuts.sbatch" "$1" "$2"
}

# slurm_wait JOB: until no task of the job is left in the queue.
slurm_wait() {
  local i
  for ((i = 0; i < 3000; i++)); do
    [ -n "$(squeue -h -j "$1" 2>/dev/null)" ] || return 0
    sleep 0.2
  done
  fail "job $1 did not end in ten minutes"
}

# slurm_exits JOB: task=status:signal of each task, in order.
slurm_exits() {
  scontrol show job "$1" | awk '{ for (i = 1; i <= NF; i++) {
      if ($i ~ /^ArrayTaskId=/) id = substr($i, 13)
      if ($i ~ /^ExitCode=/) print id "=" substr($i, 10) } }' | sort -n | xargs
}

# slurm_kill TASK: SIGKILL to every process of a running task, so that none can clean up.
slurm_kill() {
  local job pids
  job=$(squeue -h -j "$1" -o %A)
  pids=$(scontrol listpids "$job" | awk 'NR > 1 && $1 > 0 { print $1 }')
  [ -n "$pids" ] || fail "task $1 has no processes"
  # shellcheck disable=SC2086
  kill -KILL $pids
}
