"""compare.py DSMAKE RECORDS RUNS: times all jobs in turn, RUNS times round, in the folder that
holds the data, and prints medians beside their targets. Exit status 1 when one is missed."""
import os
import statistics
import subprocess
import sys
import time

SCHEMA = "FirstName,Simple;Surname,SimpleNC;CardNum,CCNUMBER"
PROFILES = ("ascii", "mixed", "unique", "dupkey", "same")
SQL = """.mode tabs
BEGIN;
CREATE TABLE record (first TEXT, surname TEXT, card TEXT);
.import ascii.tsv record
CREATE INDEX by_surname ON record (surname);
COMMIT;
"""
# With fewer records the start of a process is most of the time.
JUDGED_FROM = 1_000_000
# job, the one it is compared with, the highest ratio of elapsed times
TARGETS = (
    ("ascii", "cdb", 0.27),
    ("ascii", "sort", 0.5),
    ("ascii", "sqlite3", 0.12),
    ("mixed", "ascii", 2.2),
    ("dupkey", "unique", 2.0),
    ("same", "unique", 2.0),
)


def jobs(dsmake):
    """The commands, each writing to the file "out"."""
    with open("load.sql", "w", encoding="ascii") as script:
        script.write(SQL)
    found = {
        profile: [dsmake, "-k", "Surname", "-s", SCHEMA, "-i", f"{profile}.tsv", "-o", "out"]
        for profile in PROFILES
    }
    found["sort"] = ["sort", "-o", "out", "ascii.tsv"]
    found["sqlite3"] = ["sqlite3", "-init", "load.sql", "out", ""]
    found["cdb"] = ["cdb", "-c", "-m", "-t", "out.tmp", "out", "ascii-by-key.tsv"]
    return found


def run(command):
    """Seconds, seconds of processor time, and the peak of resident memory in KiB. /usr/bin/time
    starts the command, since a child of this process would be charged with Python's own memory."""
    if os.path.exists("out"):
        os.remove("out")
    start = time.perf_counter()
    subprocess.run(
        ["/usr/bin/time", "-f", "%U %S %M", "-o", "used", *command],
        check=True,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        env={**os.environ, "LC_ALL": "C"},
    )
    seconds = time.perf_counter() - start
    if os.path.getsize("out") == 0:
        sys.exit(f"{command[0]} wrote nothing")
    with open("used", encoding="ascii") as used:
        user, system, peak = used.read().split()
        return seconds, float(user) + float(system), int(peak)


def main():
    dsmake, records, rounds = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    commands = jobs(dsmake)
    seconds = {name: [] for name in commands}
    processor = {name: [] for name in commands}
    peaks = {name: 0 for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            taken, used, peak = run(command)
            seconds[name].append(taken)
            processor[name].append(used)
            peaks[name] = max(peaks[name], peak)
    os.remove("out")
    os.remove("used")

    limit = (16 * records + (16 << 20)) // 1024
    missed = 0
    median = {name: statistics.median(taken) for name, taken in seconds.items()}
    cpu = {name: statistics.median(used) for name, used in processor.items()}
    print(f"{records} records, {rounds} runs each; medians")
    print(f"{'job':8} {'seconds':>8} {'range':>15} {'processor':>9} {'records/s':>11} {'peak KiB':>9}")
    for name, taken in seconds.items():
        print(
            f"{name:8} {median[name]:8.3f} {min(taken):7.3f}-{max(taken):7.3f}"
            f" {cpu[name]:9.2f} {records / median[name]:11.0f} {peaks[name]:9}"
        )
    print()
    is_judged = records >= JUDGED_FROM

    def judge(is_missed):
        nonlocal missed
        missed += is_judged and is_missed
        return "not judged" if not is_judged else "MISSED" if is_missed else "held"

    for job, other, target in TARGETS:
        ratio = median[job] / median[other]
        verdict = judge(ratio > target)
        print(
            f"{job:6} / {other:7} {ratio:5.2f}  target {target:4.2f}  {verdict:10}"
            f"  (processor time {cpu[job] / cpu[other]:4.2f})"
        )
    for name in PROFILES:
        verdict = judge(peaks[name] > limit)
        print(f"memory {name:8} {peaks[name]:7} KiB  limit {limit} KiB  {verdict}")
    sys.exit(1 if missed else 0)


main()
