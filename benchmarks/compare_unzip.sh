#!/usr/bin/env bash
# Unpacks two archives with vx::Unzipper, unzip and bsdtar in turn, and prints the medians of the
# times, and the longest of all stalls and cancels. The last column is the longest stall of an
# application that did nothing for as long, in turn with the others: no stall can be shorter than
# what the machine itself makes a program wait.
#
# Usage: compare_unzip.sh <bench_unzip> [<folder> [<runs>]]
# <folder> takes archives and results, 2 GB of them, and is removed at the end; by default it is a
# new one in TMPDIR. A memory file system leaves the disk out of it. Needs python3, zip, unzip and
# bsdtar.
set -euo pipefail

bench=$(realpath "$1")
folder=${2:-$(mktemp -d)}
runs=${3:-9}
mkdir -p "$folder"
cd "$folder"
trap 'cd / && rm -rf "$folder"' EXIT
export QT_QPA_PLATFORM=offscreen

make_archives() {
    python3 - <<'PYTHON'
import os, random
random.seed(1)
words = [bytes(random.choices(range(97, 123), k=random.randint(3, 9))) for _ in range(2000)]

def text(size):
    return b" ".join(random.choices(words, k=size // 7 + 1))[:size]

# One megabyte in five does not compress.
with open("big.bin", "wb") as big:
    for i in range(500):
        big.write(random.randbytes(1 << 20) if i % 5 == 0 else text(1 << 20))
for i in range(10000):
    os.makedirs("many/d%03d" % (i // 50), exist_ok=True)
    with open("many/d%03d/f%05d.txt" % (i // 50, i), "wb") as small:
        small.write(text(random.choice([200, 1000, 4000, 10000, 30000])))
PYTHON
    zip -q big.zip big.bin
    zip -qr many.zip many
    rm -rf big.bin many
}

# Runs a command and appends the seconds it took to a file.
timed() {
    local results=$1 begin end
    shift
    begin=$(date +%s%N)
    "$@"
    end=$(date +%s%N)
    echo $(((end - begin) / 1000)) | sed 's/\(.*\)\(......\)$/\1.\2/; s/^\./0./' >>"$results"
}

median() { sort -n "$1" | awk '{ value[NR] = $1 } END { print value[int((NR + 1) / 2)] }'; }

compare() {
    local archive=$1 run
    rm -f ./*.seconds stalls cancels idles
    for ((run = 0; run < runs; ++run)); do
        rm -rf out && mkdir out
        timed unzip.seconds unzip -q "$archive" -d out
        rm -rf out && mkdir out
        timed bsdtar.seconds bsdtar -xf "$archive" -C out
        rm -rf out && mkdir out
        # From the job's construction to its report: the application runs already.
        "$bench" "$archive" out >last
        cut -d' ' -f1 last >>ours.seconds
        cut -d' ' -f2 last >>stalls
        "$bench" --idle "$(cut -d' ' -f1 last)" >>idles
        rm -rf out && mkdir out
        "$bench" --cancel "$archive" out >>cancels
    done
    rm -rf out
    awk -v name="$archive" -v unzip="$(median unzip.seconds)" -v bsdtar="$(median bsdtar.seconds)" \
        -v ours="$(median ours.seconds)" -v stall="$(sort -n stalls | tail -1)" \
        -v stop="$(sort -n cancels | tail -1)" -v idle="$(sort -n idles | tail -1)" 'BEGIN {
            peer = unzip < bsdtar ? unzip : bsdtar
            printf "| %s | %.2f s | %.2f s | %.2f s | %.2f | %.1f ms | %.1f ms | %.1f ms |\n",
                   name, unzip, bsdtar, ours, peer / ours, stall, stop, idle }'
}

make_archives
echo "| Archive | unzip | bsdtar | Unzipper | times the faster | longest stall | longest cancel | idle stall |"
echo "|---|---|---|---|---|---|---|---|"
compare big.zip
compare many.zip
