"""A recording that is longer than memory, filtered on a cluster.

    cluster.py [--minutes 120] [--taps 511] [--workers 1 2] [--scheduler tcp://host:8786] [--file recording.f32]

The recording is a file of float32 samples, which is made if it is not there; every worker reads the chunks that it
filters, so on a real cluster (--scheduler) all of them see the file. Chunks overlap by the filter's length. A direct
filter gives the bits of one machine, however the stream is cut: the digests of all chunks are compared with those of
one pass from end to end.
"""
import argparse
import hashlib
import os
import time

import dask.array as da
import numpy as np
from dask.distributed import Client, LocalCluster
from scipy import signal

import kels

RATE = 48000
CHUNK = 60 * RATE


def record(path, minutes):
    """A tone in noise, made piece by piece; nothing here holds all of it."""
    noise, phase = kels.NormalNoise(0, 0.1, 1), 0.0
    with open(path, "wb") as file:
        for _ in range(minutes):
            tone, phase = kels.tone(0.5, 440 / RATE, phase % (2 * np.pi), length=CHUNK, dtype=np.float32)
            kels.add(tone, noise(CHUNK), out=tone).tofile(file)


def read(path, start, stop):
    return np.fromfile(path, np.float32, stop - start, offset=4 * start)


def filtered(path, taps, block_info=None):
    """A chunk, filtered: read with the samples before it that the filter remembers, and silence before the first."""
    start, stop = block_info[None]["array-location"][0]
    before = min(start, taps.size - 1)
    return direct(read(path, start - before, stop), taps)[before:]


def direct(x, taps):
    return kels.fir_direct(x, taps, np.zeros(2 * taps.size, np.float32), 0)[0]


def digest(x):
    """32 bytes that stand for a chunk."""
    return np.frombuffer(hashlib.blake2b(x, digest_size=32).digest(), np.uint8)


def on_one_machine(path, chunks, taps):
    ring, index, digests = np.zeros(2 * taps.size, np.float32), 0, []
    for i in range(chunks):
        y, index = kels.fir_direct(read(path, i * CHUNK, (i + 1) * CHUNK), taps, ring, index)
        digests.append(digest(y))
    return np.concatenate(digests)


def on_cluster(client, path, chunks, taps):
    recording = da.map_blocks(filtered, path, taps, chunks=((CHUNK,) * chunks,), dtype=np.float32,
                              meta=np.empty(0, np.float32))
    digests = recording.map_blocks(digest, chunks=((32,) * chunks,), dtype=np.uint8, meta=np.empty(0, np.uint8))
    return client.compute(digests, sync=True)


def measure(client, path, chunks, taps, wanted):
    start = time.perf_counter()
    found = on_cluster(client, path, chunks, taps)
    seconds = time.perf_counter() - start
    workers = len(client.scheduler_info()["workers"])
    samples = chunks * CHUNK
    print(f"{workers} workers: {samples / seconds / 1e6:7.1f} million samples/s, {samples / RATE / seconds:8.0f} x real time, "
          f"{'the same bits' if np.array_equal(found, wanted) else 'OTHER BITS'}", flush=True)
    return np.array_equal(found, wanted)


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--minutes", type=int, default=120)
    options.add_argument("--taps", type=int, default=511)
    options.add_argument("--workers", type=int, nargs="*", default=[1, 2])
    options.add_argument("--scheduler", help="address of a running cluster")
    options.add_argument("--file", default="recording.f32")
    chosen = options.parse_args()

    path = os.path.abspath(chosen.file)
    chunks = chosen.minutes
    if not os.path.exists(path) or os.path.getsize(path) != 4 * chunks * CHUNK:
        record(path, chunks)
    taps = signal.firwin(chosen.taps, [300, 3400], pass_zero=False, fs=RATE).astype(np.float32)

    start = time.perf_counter()
    wanted = on_one_machine(path, chunks, taps)
    seconds = time.perf_counter() - start
    print(f"{chunks} minutes, {chosen.taps} taps; no cluster: {chunks * CHUNK / seconds / 1e6:.1f} million samples/s", flush=True)

    same = True
    if chosen.scheduler:
        with Client(chosen.scheduler) as client:
            same = measure(client, path, chunks, taps, wanted)
    else:
        for workers in chosen.workers:
            with LocalCluster(n_workers=workers, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster) as client:
                same = measure(client, path, chunks, taps, wanted) and same
    return 0 if same else 1


if __name__ == "__main__":
    raise SystemExit(main())
