#!/usr/bin/python3
"""End-to-end runs of zarvi-cli against the same work done with numpy, scipy, h5py and
tifffile, timed in one run on the same files, each printed as a ratio with its target.

Every measurement is the median of REPEATS runs (default 3), each on a fresh copy of its
input, so the page cache treats both sides alike. The Python pipelines are vectorised
and read and write with h5py the datasets zarvi-cli reads and writes.

usage: bench/python/compare_with_python.py BUILD_DIR [--repeats N] [--stack-mb MB]
"""

import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import h5py
import numpy as np
import tifffile
from scipy import signal

SERIES = "DataAcquisition/FiberPhotometry/Signals/Series1"
EVENTS = "DataAcquisition/FiberPhotometry/Events/Series1"
RATE = 1000.0
# Shortens every recording for a quick check of the script itself.
SCALE = 1.0


def median_seconds(repeats, prepare, action):
    times = []
    for _ in range(repeats):
        prepare()
        # The fresh copy goes to disk first, so that its writing-back does not fall into
        # the timed run of either side.
        os.sync()
        start = time.perf_counter()
        action()
        times.append(time.perf_counter() - start)
    return statistics.median(times)


def run(command):
    done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)} failed:\n{done.stderr}")


def replace_dataset(group, name, values):
    """Replaces a dataset by values, keeping its attributes and the file's layout rules
    (rank 1 unlimited, chunks of min(n, 65536))."""
    old = group[name]
    attributes = dict(old.attrs)
    del group[name]
    shape = values.shape
    chunks = (min(shape[0], 65536),) + shape[1:]
    maxshape = (None,) + shape[1:]
    created = group.create_dataset(name, data=values, chunks=chunks, maxshape=maxshape)
    for key, value in attributes.items():
        created.attrs[key] = value


def make_recording(cli, path, seconds, events):
    """The demo recording with its photometry pair replaced by `seconds` at 1 kHz and its
    stimulus events by `events` onsets spread over the recording."""
    run([cli, "demo", path])
    n = int(seconds * RATE)
    t = np.arange(n) / RATE
    rng = np.random.default_rng(7)
    drift = 0.2 * np.exp(-t / 1800.0)
    iso = 1.0 + drift + 0.01 * rng.standard_normal(n)
    bio = 1.5 + 1.3 * drift + 0.05 * np.sin(2 * np.pi * 0.1 * t) + 0.02 * rng.standard_normal(n)
    with h5py.File(path, "r+") as f:
        for name, values in (("Isosbestic", iso), ("Biosensor", bio)):
            replace_dataset(f[f"{SERIES}/{name}"], "Signal", values)
            replace_dataset(f[f"{SERIES}/{name}"], "Time", t)
        group = f[EVENTS]
        name = "Stimulus" if "Stimulus" in group else next(iter(group))
        onsets = np.linspace(10.0, seconds - 20.0, events).reshape(-1, 1)
        replace_dataset(group, name, onsets)
    compacted = path + ".compact"
    run(["h5repack", path, compacted]) if shutil.which("h5repack") else shutil.copy(path, compacted)
    os.replace(compacted, path)
    return name


def ratio_line(label, ours, theirs, target, faster):
    """faster: the target is how many times faster zarvi must be; else a ceiling on ours / theirs."""
    if faster:
        value = theirs / ours
        met = value >= target
        print(f"  {label:<58} {ours:7.3f} s vs {theirs:7.3f} s  {value:5.2f}x faster  target >= {target}x: "
              f"{'met' if met else 'missed'}")
    else:
        value = ours / theirs
        met = value <= target
        print(f"  {label:<58} {ours:7.3f} s vs {theirs:7.3f} s  ratio {value:5.2f}  target <= {target}: "
              f"{'met' if met else 'missed'}")


def bench_filter(cli, work, repeats):
    print("Filter, 3.6e7 samples (10 h at 1 kHz), low-pass 10 Hz order 10, zero phase")
    source = os.path.join(work, "long.orvel")
    make_recording(cli, source, 36000.0 * SCALE, 10)
    target = os.path.join(work, "filter.orvel")
    raw = os.path.join(work, "raw.bin")
    path = f"{SERIES}/Biosensor/Signal"
    with h5py.File(source, "r") as f:
        input_bytes = f[path].nbytes + f[f"{SERIES}/Biosensor/Time"].nbytes
    with open(raw, "wb") as out:
        out.write(os.urandom(1 << 20) * (input_bytes >> 20))

    def fresh():
        shutil.copy(source, target)
        subprocess.run(["cat", source], stdout=subprocess.DEVNULL)

    params = json.dumps({"FilterType": "LowPass", "LowCutoffFrequency": 10.0})
    ours = median_seconds(repeats, fresh, lambda: run(
        [cli, "run", target, "--operation", "Filter", "--params", params, "--data", path]))
    copy = median_seconds(repeats, lambda: subprocess.run(["cat", raw], stdout=subprocess.DEVNULL),
                          lambda: shutil.copyfile(raw, raw + ".copy"))
    sos = signal.butter(10, 10.0, fs=RATE, output="sos")

    def python_filter():
        with h5py.File(target, "r+") as f:
            values = f[path][:]
            times = f[f"{SERIES}/Biosensor/Time"][:]
            filtered = signal.sosfiltfilt(sos, values)
            group = f.create_group("DataProcessed/FiberPhotometry/Signals/Series1/PythonFiltered/Biosensor")
            group.create_dataset("Signal", data=filtered, chunks=(65536,), maxshape=(None,))
            group.create_dataset("Time", data=times, chunks=(65536,), maxshape=(None,))

    theirs = median_seconds(repeats, fresh, python_filter)
    ratio_line("zarvi-cli run Filter vs cp of the input's bytes", ours, copy, 3.0, False)
    ratio_line("zarvi-cli run Filter vs h5py + sosfiltfilt + h5py", ours, theirs, 3.0, True)
    os.remove(raw)
    return source


def bench_kernel(build, source):
    print("Filter kernel alone, 3.6e7 samples, against scipy sosfiltfilt")
    program = os.path.join(build, "bench", "signal", "bench_signal_kernels")
    if not os.access(program, os.X_OK):
        print(f"  skipped: {program} is not built (configure with -DZARVI_BUILD_BENCH=ON)")
        return
    out = subprocess.run([program, "--benchmark_filter=ZeroPhaseLowPassOrder10/36000000",
                          "--benchmark_format=json", "--benchmark_repetitions=3"],
                         capture_output=True, text=True, check=True)
    runs = [b for b in json.loads(out.stdout)["benchmarks"] if b.get("run_type") == "iteration"]
    ours = statistics.median(b["real_time"] / 1000.0 for b in runs)
    with h5py.File(source, "r") as f:
        values = f[f"{SERIES}/Biosensor/Signal"][:]
    sos = signal.butter(10, 10.0, fs=RATE, output="sos")
    theirs = median_seconds(3, lambda: None, lambda: signal.sosfiltfilt(sos, values))
    ratio_line("ZeroPhaseFilter::apply vs scipy sosfiltfilt", ours, theirs, 2.0, True)


def bench_delta_f(cli, work, repeats):
    print("Photometry deltaF/F, 1 h at 1 kHz: 10 Hz low-pass, z-score, line fit")
    source = os.path.join(work, "hour.orvel")
    make_recording(cli, source, 3600.0 * SCALE, 1000)
    target = os.path.join(work, "dff.orvel")

    def fresh():
        shutil.copy(source, target)

    params = json.dumps({"IsosbesticName": "Isosbestic", "BiosensorName": "Biosensor",
                         "SmoothMethod": "Low-pass Butterworth Filter", "SmoothFrequency(Hz)": 10,
                         "StandardizeMethod": "Standard Z Score", "ResidualThreshold": 0.5})
    ours = median_seconds(repeats, fresh, lambda: run(
        [cli, "run", target, "--operation", "Photometry deltaF/F", "--params", params, "--data",
         f"{SERIES}/Isosbestic/Signal", f"{SERIES}/Biosensor/Signal"]))
    sos = signal.butter(10, 10.0, fs=RATE, output="sos")

    def python_delta_f():
        with h5py.File(target, "r+") as f:
            iso = f[f"{SERIES}/Isosbestic/Signal"][:]
            bio = f[f"{SERIES}/Biosensor/Signal"][:]
            times = f[f"{SERIES}/Biosensor/Time"][:]
            iso = signal.sosfiltfilt(sos, iso)
            bio = signal.sosfiltfilt(sos, bio)
            iso = (iso - iso.mean()) / iso.std()
            bio = (bio - bio.mean()) / bio.std()
            slope, intercept = np.polyfit(iso, bio, 1)
            delta = bio - (slope * iso + intercept)
            group = f.create_group("DataProcessed/FiberPhotometry/Signals/Series1/PythonDeltaF/Biosensor")
            group.create_dataset("Signal", data=delta, chunks=(65536,), maxshape=(None,))
            group.create_dataset("Time", data=times, chunks=(65536,), maxshape=(None,))

    theirs = median_seconds(repeats, fresh, python_delta_f)
    ratio_line("zarvi-cli run deltaF/F vs numpy/scipy with polyfit", ours, theirs, 3.0, True)
    return source


def bench_perievents(cli, work, source, repeats):
    print("Perievents, 1 h at 1 kHz, 1000 events, -5 .. +10 s, z-score, three windows")
    target = os.path.join(work, "peri.orvel")
    with h5py.File(source, "r") as f:
        event = next(iter(f[EVENTS]))

    def fresh():
        shutil.copy(source, target)

    windows = [[-5.0, 0.0], [0.0, 2.0], [2.0, 10.0]]
    params = json.dumps({"EventPath": EVENTS, "Event": event, "PerieventTimeFrame": [-5, 10],
                         "StatisticTimeFrames": [v for w in windows for v in w],
                         "TimeFramesNames": ["Baseline", "Response", "Late"], "Statistics": ["AUC"],
                         "NormalizeWindow": [-5, 0], "NormalizeMethod": "Standard Z-Score"})
    ours = median_seconds(repeats, fresh, lambda: run(
        [cli, "run", target, "--operation", "Perievents", "--params", params, "--data",
         f"{SERIES}/Biosensor/Signal"]))

    def python_perievents():
        with h5py.File(target, "r+") as f:
            values = f[f"{SERIES}/Biosensor/Signal"][:]
            times = f[f"{SERIES}/Biosensor/Time"][:]
            onsets = f[f"{EVENTS}/{event}"][:, 0]
            first = np.searchsorted(times, onsets - 5.0)
            offsets = np.arange(int(15 * RATE) + 1)
            matrix = values[first[:, None] + offsets[None, :]]
            axis = (offsets / RATE) - 5.0
            base = matrix[:, : int(5 * RATE)]
            matrix = (matrix - base.mean(axis=1, keepdims=True)) / base.std(axis=1, keepdims=True)
            stats = []
            for low, high in windows:
                columns = (axis >= low) & (axis <= high)
                # The area normalised to one second, as the operation's AUC is.
                stats.append(np.trapz(matrix[:, columns], dx=1.0 / RATE, axis=1) / (high - low))
            group = f.create_group("DataAnalyzed/FiberPhotometry/Signals/Series1/PythonPerievents/Biosensor")
            group.create_dataset("Perievents", data=matrix)
            group.create_dataset("Time", data=axis)
            group.create_dataset("AUC", data=np.stack(stats, axis=1))

    theirs = median_seconds(repeats, fresh, python_perievents)
    ratio_line("zarvi-cli run Perievents vs vectorised numpy + h5py", ours, theirs, 3.0, True)


def peak_kb(command):
    """Runs a command under /usr/bin/time and returns its peak resident memory in KB."""
    done = subprocess.run(["/usr/bin/time", "-f", "%M"] + command, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)} failed:\n{done.stderr}")
    return int(done.stderr.strip().splitlines()[-1])


def bench_tiff_export(cli, work, repeats, stack_mb):
    width = height = 600
    frames = max(1, int(stack_mb * 1e6 / (width * height * 2)))
    print(f"TIFF export, {frames} frames of {width} x {height}, 16-bit ({frames * width * height * 2 / 1e6:.0f} MB)")
    stack = os.path.join(work, "stack.tif")
    rng = np.random.default_rng(3)
    frame = rng.integers(0, 4096, size=(height, width), dtype=np.uint16)
    with tifffile.TiffWriter(stack) as tif:
        for k in range(frames):
            tif.write(frame + k, contiguous=True)
    data = os.path.join(work, "stack.orvel")
    run([cli, "convert", "--tiff", stack, "--rate", "20", "--device", "Miniscope", "--sensor", "Bench",
         "--into", data])
    with h5py.File(data, "r") as f:
        found = []
        f.visititems(lambda name, obj: found.append(name) if name.endswith("ImageStack") else None)
    image_path = found[0]
    out = os.path.join(work, "export.tif")
    clean = lambda: os.path.exists(out) and os.remove(out)
    time_tool = os.access("/usr/bin/time", os.X_OK)
    export = [cli, "export", data, "--data", image_path, "--to", out]
    ours = median_seconds(repeats, clean, lambda: run(export))

    def python_export():
        with h5py.File(data, "r") as f, tifffile.TiffWriter(out, bigtiff=False) as tif:
            # Frames are the last axis, one chunk each ([height, width, frames]).
            images = f[image_path]
            for k in range(images.shape[2]):
                tif.write(images[:, :, k], contiguous=True)

    theirs = median_seconds(repeats, clean, python_export)
    ratio_line("zarvi-cli export to TIFF vs h5py + tifffile", ours, theirs, 1.5, True)
    if time_tool:
        clean()
        print(f"  peak memory of zarvi-cli export: {peak_kb(export) / 1024:.0f} MB (target < 200 MB)")
        print(f"  peak memory of zarvi-cli convert: "
              f"{peak_kb([cli, 'convert', '--tiff', stack, '--rate', '20', '--device', 'Miniscope', '--sensor', 'Bench', '--into', data + '2']) / 1024:.0f} MB (target < 200 MB)")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--repeats", type=int, default=3)
    parser.add_argument("--stack-mb", type=float, default=2000.0)
    parser.add_argument("--only", choices=["filter", "kernel", "deltaf", "perievents", "tiff"], nargs="*")
    parser.add_argument("--scale", type=float, default=1.0, help="shorten the recordings (quick check)")
    args = parser.parse_args()
    global SCALE
    SCALE = args.scale
    cli = os.path.join(args.build, "cli", "zarvi-cli")
    if not os.access(cli, os.X_OK):
        sys.exit(f"missing {cli}; build zarvi-cli first")
    chosen = set(args.only or ["filter", "kernel", "deltaf", "perievents", "tiff"])
    with tempfile.TemporaryDirectory(prefix="zarvi-python-bench.") as work:
        long_source = None
        if "filter" in chosen or "kernel" in chosen:
            long_source = bench_filter(cli, work, args.repeats) if "filter" in chosen else None
            if "kernel" in chosen:
                if long_source is None:
                    long_source = os.path.join(work, "long.orvel")
                    make_recording(cli, long_source, 36000.0 * SCALE, 10)
                bench_kernel(args.build, long_source)
            os.remove(long_source)
        hour = None
        if "deltaf" in chosen:
            hour = bench_delta_f(cli, work, args.repeats)
        if "perievents" in chosen:
            if hour is None:
                hour = os.path.join(work, "hour.orvel")
                make_recording(cli, hour, 3600.0 * SCALE, 1000)
            bench_perievents(cli, work, hour, args.repeats)
        if "tiff" in chosen:
            bench_tiff_export(cli, work, args.repeats, args.stack_mb)


if __name__ == "__main__":
    main()
