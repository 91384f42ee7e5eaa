#!/usr/bin/env python3
"""scan_corpus.py [--scheduler ADDRESS] DATASET FOLDER: scans a folder of texts on many machines.

Prints a line of JSON for each find, in the order of the names, as 'dsscan --json DATASET FOLDER'
does, with the same exit status. The work is done by the workers of a dask.distributed scheduler, or
of a cluster on this machine when none is named. Each worker sees the data set and the folder under
the same names, and finds the Python module dsmake (PYTHONPATH) and the library. Texts of a worker
that is lost are scanned by another one.
"""
import argparse
import collections
import json
import os
import sys
import threading
import time

import dsmake
from dask.distributed import Client, LocalCluster, get_worker

BATCH_TEXTS = 64  # enough that a task's cost does not show
BATCH_BYTES = 16 << 20
BATCHES_AHEAD = 4  # for each thread of a worker: they never wait, and results are not piled up


def texts_in(folder, faults):
    """Names and sizes of the plain files in a folder and below, in the order of their bytes."""
    try:
        entries = sorted(os.scandir(folder), key=lambda entry: entry.name)
    except OSError as fault:
        faults.append((folder, fault.strerror))
        return
    for entry in entries:
        name = folder + (b"" if folder.endswith(b"/") else b"/") + entry.name
        if entry.is_dir(follow_symlinks=False):
            yield from texts_in(name, faults)
        elif entry.is_file(follow_symlinks=False):
            yield name, entry.stat(follow_symlinks=False).st_size


def batches_of(texts):
    batch, size = [], 0
    for name, bytes_in_text in texts:
        batch.append(name)
        size += bytes_in_text
        if len(batch) == BATCH_TEXTS or size >= BATCH_BYTES:
            yield batch
            batch, size = [], 0
    if batch:
        yield batch


def data_set_of(path):
    """The worker's own data set, opened when its first text comes."""
    kept = vars(get_worker())
    with kept.setdefault("dsmake_lock", threading.Lock()):
        if path not in kept:
            kept[path] = dsmake.DataSet(path)
        return kept[path]


def scan_batch(path, names):
    """For each text its lines, and what went wrong."""
    data_set = data_set_of(path)
    results = []
    for name in names:
        lines, fault = [], None
        try:
            with open(name, "rb", buffering=0) as text:
                lines += (line_of(name, find) for find in data_set.scan(text))
        except (OSError, MemoryError, dsmake.Error) as error:
            fault = getattr(error, "strerror", None) or str(error)
        results.append((lines, fault))
    return results


def line_of(name, find):
    told = {"text": os.fsdecode(name), "line": find.line, "place": find.place,
            "length": find.length, "key": find.key, "quote": find.quote, "fields": find.fields,
            "of": find.of, "record": find.record}
    # Bytes that are no UTF-8 are lone surrogates here, and U+FFFD in what is written.
    line = json.dumps(told, ensure_ascii=False, separators=(",", ":"))
    return line.encode("utf-16", "surrogatepass").decode("utf-16", "replace")


def results_in_order(client, path, batches):
    """Names and results; as many batches are under way as keep the workers busy."""
    threads = sum(client.nthreads().values())
    waiting = collections.deque()
    for names in batches:
        waiting.append((names, client.submit(scan_batch, path, names, pure=False)))
        if len(waiting) >= BATCHES_AHEAD * max(threads, 1):
            names, future = waiting.popleft()
            yield from zip(names, future.result())
    while waiting:
        names, future = waiting.popleft()
        yield from zip(names, future.result())


def shown(name):
    text = os.fsdecode(name).encode("unicode_escape").decode()
    return text.replace("\\udc", "\\x")


def tell(name, fault):
    print(f"{shown(name)}: {fault}", file=sys.stderr)


def run(client, arguments):
    faults = []
    texts = batches_of(texts_in(os.fsencode(arguments.folder), faults))
    found = False
    started = told = time.monotonic()
    for count, (name, (lines, fault)) in enumerate(results_in_order(client, arguments.dataset, texts), 1):
        for line in lines:
            print(line)
        found = found or bool(lines)
        if fault is not None:
            faults.append((name, fault))
        now = time.monotonic()
        if sys.stderr.isatty() and now - started > 1 and now - told > 0.2:
            told = now
            print(f"\r\033[K{count} texts", end="", file=sys.stderr, flush=True)
    if told != started:
        print("\r\033[K", end="", file=sys.stderr)
    sys.stdout.flush()
    for name, fault in faults:
        tell(name, fault)
    return 2 if faults else 0 if found else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--scheduler", metavar="ADDRESS")
    parser.add_argument("dataset", metavar="DATASET", type=os.path.abspath)
    parser.add_argument("folder", metavar="FOLDER")
    arguments = parser.parse_args()
    sys.stdout.reconfigure(encoding="utf-8")
    try:
        dsmake.DataSet(arguments.dataset).close()  # a fault is told here, and not by each worker
        with Client(arguments.scheduler or LocalCluster(dashboard_address=None)) as client:
            return run(client, arguments)
    except (OSError, dsmake.Error) as fault:
        print(fault, file=sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main())
