# What the tasks of tarnwick-slurm do. It puts before this where and what: program, batch, folder
# (where the batch runs), work, run (folder of scripts, logs and marks), summary, stages, parts,
# given (options), threads, memory (nothing: what the task was given), scans.

cgroup_limit() {  # in bytes, the least along the way; nothing where there is none
    local line path value least=
    while read -r line; do
        [[ $line == 0::/* ]] || continue
        path=${line#0::}
        while :; do
            value=$(cat "/sys/fs/cgroup${path%/}/memory.max" 2> /dev/null)
            [[ $value =~ ^[0-9]+$ ]] && [ "$value" -lt "${least:-9000000000000000000}" ] &&
                least=$value
            [ -n "${path%/}" ] || break
            path=${path%/*}
        done
    done < /proc/self/cgroup
    echo "$least"
}

half_of_machine() {  # in MB
    local key value limit total=0
    while read -r key value _; do
        [ "$key" != MemTotal: ] || total=$((value / 1024))
    done < /proc/meminfo
    limit=$(cgroup_limit)
    [ -z "$limit" ] || [ $((limit / 1048576)) -ge "$total" ] || total=$((limit / 1048576))
    echo $((total / 2))
}

# The processors of this task, and somewhat less than its memory. Where Slurm does not share out
# memory, a task takes as much of the half of the machine as it has of its processors.
take_limits() {
    local cpus=${SLURM_CPUS_PER_TASK:-${SLURM_CPUS_ON_NODE:-1}} size
    if [ "${SLURM_MEM_PER_NODE:-0}" -gt 0 ]; then
        size=$SLURM_MEM_PER_NODE
    elif [ "${SLURM_MEM_PER_CPU:-0}" -gt 0 ]; then
        size=$((SLURM_MEM_PER_CPU * ${SLURM_CPUS_ON_NODE:-1}))
    else
        size=$(half_of_machine)
        [ -n "${TASKS_AT_ONCE-}" ] || size=$((size * cpus / $(nproc --all)))
    fi
    size=$((size * 9 / 10 / ${TASKS_AT_ONCE:-1}))
    threads=${threads:-$cpus}
    memory=${memory:-$((size > 0 ? size : 1))M}
}

# The work folder and the options of a scan, by index; without scans those of the one run.
choose_scan() {
    local name
    kept=$work scan_options=()
    if [ ${#scans[@]} -gt 0 ]; then
        name=${scans[$1]//[%]/%25}
        kept=$work/scan-${name//\//%2F}
        with_scan "${scans[$1]}"
    fi
}

run_batch() {
    take_limits
    cd "$folder" || return 1
    mkdir -p "$kept" || return 1
    "$program" --work "$kept" --threads "$threads" --memory "$memory" "${given[@]}" \
        "${scan_options[@]}" "$@" "$batch"
}

# Ends where a part of this stage and scan is missing: one task does not make up for many.
want_parts() {
    local task
    [ "$1" -gt 0 ] || return 0
    for ((task = $2 * parts + 1; task <= ($2 + 1) * parts; ++task)); do
        if [ ! -e "$run/stage-$1-$task.done" ]; then
            echo "Nothing is done here: a part before is missing, see $run/stage-$1-$task.log"
            exit 1
        fi
    done
}

make_part() {  # STAGE TASK
    local code part=$((($2 - 1) % parts + 1)) scan=$((($2 - 1) / parts))
    want_parts $(($1 - 1)) "$scan"
    choose_scan "$scan"
    run_batch --part "$part/$parts"
    code=$?
    [ "$code" -ne 75 ] || code=0  # the part was there already
    [ "$code" -ne 0 ] || : > "$run/stage-$1-$2.done"
    return "$code"
}

close_run() {
    want_parts "$stages" 0
    choose_scan 0
    run_batch && : > "$run/closing.done"
}

close_scan() {  # TASK
    want_parts "$stages" $(($1 - 1))
    choose_scan $(($1 - 1))
    run_batch --summary "$run/scan-$1.csv" && : > "$run/scan-$1.done"
}

quoted_cell() {
    case $1 in
        *[,\"]*) printf '"%s"' "${1//\"/\"\"}" ;;
        *) printf '%s' "$1" ;;
    esac
}

# One table of all, with the columns of the widest; a scan that came to no row has one here.
join_tables() {
    local task table line commas header=scan,outcome
    for table in "$run"/scan-*.csv; do
        [ -s "$table" ] && IFS= read -r line < "$table" || continue
        [ ${#line} -le ${#header} ] || header=$line
    done
    printf '%s\n' "$header"
    for ((task = 1; task <= ${#scans[@]}; ++task)); do
        table=$run/scan-$task.csv
        if [ -s "$table" ]; then
            { IFS= read -r line && commas=${line//[!,]/} && IFS= read -r line; } < "$table"
        else
            line=$(quoted_cell "${scans[task - 1]}"),failed commas=,
        fi
        line+=${header//[!,]/}
        printf '%s\n' "${line:0:${#line}-${#commas}}"
    done
}

join_scans() {
    local task failed=0
    join_tables > "$summary.$$" && mv -f "$summary.$$" "$summary" || return 1
    for ((task = 1; task <= ${#scans[@]}; ++task)); do
        if [ ! -e "$run/scan-$task.done" ]; then
            echo "failed: ${scans[task - 1]}, see $run/scan-$task.log"
            failed=$((failed + 1))
        fi
    done
    echo "${#scans[@]} scans, $failed failed: $summary"
    [ "$failed" -eq 0 ] && : > "$run/summary.done"
}

case $1 in
    part) make_part "$2" "${3:-$SLURM_ARRAY_TASK_ID}" ;;
    scan) close_scan "${2:-$SLURM_ARRAY_TASK_ID}" ;;
    close) close_run ;;
    join) join_scans ;;
esac
