# A cluster of one node, run as the present user: Debian's munged, slurmctld and slurmd on the
# loopback, with all that they write in the folder $cluster. Nothing of the system's is touched.
# To be sourced; start_cluster, then end_cluster in any case.

daemons=()
node=''  # slurmd

free_ports() {  # the first of two neighbours that nothing listens on
    local port=$((20000 + RANDOM % 20000)) used
    used=$(cat /proc/net/tcp /proc/net/tcp6 2> /dev/null)
    while grep -q "$(printf ':%04X\|:%04X' "$port" $((port + 1)))" <<< "$used"; do
        port=$((port + 2))
    done
    echo "$port"
}

write_configuration() {
    local port host
    port=$(free_ports)
    host=$(hostname -s)
    cat > "$cluster/slurm.conf" << CONF
ClusterName=check
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=$port
SlurmdPort=$((port + 1))
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket=$cluster/munge.socket,cred_expire=5
StateSaveLocation=$cluster/state
SlurmdSpoolDir=$cluster/spool
SlurmctldPidFile=$cluster/slurmctld.pid
SlurmdPidFile=$cluster/slurmd.pid
SlurmctldLogFile=$cluster/slurmctld.log
SlurmdLogFile=$cluster/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
MpiDefault=none
AccountingStorageType=accounting_storage/none
JobAcctGatherType=jobacct_gather/none
JobCompType=jobcomp/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU_Memory
SchedulerParameters=bf_interval=1,sched_interval=2,batch_sched_delay=0
ReturnToService=2
BatchStartTimeout=2
KillWait=2
NodeName=check NodeHostname=$host NodeAddr=127.0.0.1 CPUs=$(nproc) RealMemory=$1
DefMemPerCPU=$(($1 / $(nproc)))
PartitionName=all Nodes=check Default=YES State=UP MaxTime=60
CONF
}

# Waits until a command works, SECONDS at most.
wait_for() {
    local end=$((SECONDS + $1))
    shift
    until "$@" > /dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.2
    done
}

node_is_idle() { [ "$(sinfo -h -o %T)" = idle ]; }
no_jobs() { [ -z "$(squeue -h)" ]; }

start_cluster() {  # MEGABYTES of the node
    mkdir "$cluster/state" "$cluster/spool"
    (umask 077 && head -c 1024 /dev/urandom > "$cluster/munge.key")
    write_configuration "$1"
    export SLURM_CONF=$cluster/slurm.conf
    PATH=$PATH:/usr/sbin
    munged --foreground --key-file="$cluster/munge.key" --socket="$cluster/munge.socket" \
        --pid-file="$cluster/munged.pid" --seed-file="$cluster/munged.seed" \
        --log-file="$cluster/munged.log" 2> "$cluster/munged.err" &
    daemons+=($!)
    wait_for 20 test -S "$cluster/munge.socket" || return 1
    slurmctld -D > "$cluster/slurmctld.out" 2>&1 &
    daemons+=($!)
    start_node
    wait_for 60 node_is_idle
}

start_node() {
    slurmd -D -N check > "$cluster/slurmd.out" 2>&1 &
    node=$!
}

# As when the power fails: slurmd, what it has started for jobs, and the jobs.
kill_node() {
    local environ process
    kill -KILL "$node"
    for environ in /proc/[0-9]*/environ; do
        process=${environ%/environ} process=${process#/proc/}
        grep -q -z -x "SLURM_CONF=$SLURM_CONF" "$environ" 2> /dev/null || continue
        if [ "$(cat "/proc/$process/comm")" = slurmstepd ] || grep -q -z '^SLURM_JOB_ID=' "$environ"; then
            kill -KILL "$process"
        fi
    done 2> /dev/null
    wait "$node" 2> /dev/null
}

# Has a node that came back say what runs on it. A job that began shortly before is not missed at once.
node_is_missed() {
    scontrol reconfigure
    sleep 1
    grep -q 'requeue.*due to node failure' "$cluster/slurmctld.log"
}

# Jobs first: what they run hangs on no daemon.
end_cluster() {
    local daemon
    if [ -S "$cluster/munge.socket" ]; then
        timeout 10 scancel -u "$(id -un)" 2> /dev/null
        timeout 30 bash -c 'while [ -n "$(squeue -h 2> /dev/null)" ]; do sleep 0.5; done'
    fi
    daemons+=(${node:+"$node"})
    for daemon in "${daemons[@]}"; do
        kill "$daemon" 2> /dev/null
    done
    for daemon in "${daemons[@]}"; do
        wait_for 10 bash -c "! kill -0 $daemon" || kill -KILL "$daemon"
    done
    daemons=()
}
