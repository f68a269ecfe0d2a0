#!/usr/bin/env bash
# many_books.sh BIN RECIPES: runs the recipes of docs/many-books.md on this machine. Two "hosts" of GNU parallel, and the
# tasks of an array job one after another, must give the same results as a single run, byte for byte.
set -euo pipefail
bin=$1
recipes=$2
command -v parallel >/dev/null || { echo "GNU parallel is not installed"; exit 77; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/bin" "$work/library/a b" "$work/library/damaged"
cd "$work"

# Every host is this machine.
cat >bin/ssh <<EOF
#!/bin/sh
while [ "\${1#-}" != "\$1" ]; do
    case \$1 in -o | -S | -l | -p | -i) shift ;; esac
    shift
done
echo "\$1" >>"$work/hosts"
shift
[ "\$1" = -- ] && shift
cd / && exec sh -c "\$*"
EOF
chmod +x bin/ssh
ln -s "$bin/vmk" bin/vmk
# GNU parallel reads the name of the shell from the environment.
export PATH="$work/bin:$PATH" HOME="$work" PARALLEL_HOME="$work" SHELL=/bin/sh
mkdir -p "$work/.parallel"
touch "$work/.parallel/will-cite"

# More than two jobs of 500 paths.
book='<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0"><body/></FictionBook>'
for i in $(seq 1400); do echo "$book" >"library/$i.fb2"; done
printf '<a>' >"library/a b/не книга.fb2"
printf 'no archive' >library/damaged/x.zip
printf '<b/>' >$'library/a b/line\nend.fb2'
(cd library && zip -q damaged/y.zip 1.fb2 2.fb2)

# recipe NAME: the block after its mark.
recipe() {
    awk -v mark="<!-- recipe: $1 -->" '$0 == mark { found = 1; next } found && /^    / { print substr($0, 5); any = 1; next }
        found && any { exit }' "$recipes"
}

vmk validate library >single.txt 2>single.err || [ $? -eq 2 ]
[ "$(wc -l <single.txt)" -eq 1404 ] || { echo "the single run has $(wc -l <single.txt) results"; exit 1; }

recipe parallel >parallel.sh
grep -q 'parallel --pipe' parallel.sh
sh parallel.sh 2>parallel.err || true # the number of jobs with faults
cmp single.txt results.txt
cmp single.err parallel.err
for host in node1 node2; do
    grep -qx "$host" hosts || { echo "no job ran on $host"; exit 1; }
done
rm results.txt

recipe list >list.sh
recipe slurm >slurm.sh
recipe join >join.sh
sh list.sh
export SLURM_CPUS_PER_TASK=2
for SLURM_ARRAY_TASK_ID in $(seq 0 99); do
    export SLURM_ARRAY_TASK_ID
    sh slurm.sh 2>/dev/null || true
done
sh join.sh
# A result file has the lines about what cannot be read too.
grep -v '^vmk: ' results.txt | cmp single.txt -
grep '^vmk: ' results.txt | cmp single.err -

echo "the results of two hosts and of 100 tasks are those of a single run"
