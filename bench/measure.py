#!/usr/bin/env python3
"""measure.py NAME COMMAND...: runs a command three times, its output thrown away, and prints the
least CPU time and the most memory that it took."""
import os
import subprocess
import sys

RUNS = 3

name, command = sys.argv[1], sys.argv[2:]
seconds, kibibytes = [], []
for _ in range(RUNS):
    with subprocess.Popen(command, stdout=subprocess.DEVNULL) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode > 1:
        sys.exit(f"{command[0]}: status {process.returncode}")
    seconds.append(usage.ru_utime + usage.ru_stime)
    kibibytes.append(usage.ru_maxrss)
print(f"{name:<40} {min(seconds):8.2f} s {max(kibibytes) // 1024:8} MB", flush=True)
