"""The Python face beside NumPy and SciPy: least times of turns that the contenders take."""
import timeit

import kels
import numpy as np
from scipy import fft, signal

TURNS = 15


def contend(title, **contenders):
    """Prints a line for each; all of them do the same work."""
    counts = {name: max(1, int(0.01 / timeit.timeit(call, number=3) * 3)) for name, call in contenders.items()}
    least = dict.fromkeys(contenders, float("inf"))
    for _ in range(TURNS):
        for name, call in contenders.items():
            least[name] = min(least[name], timeit.timeit(call, number=counts[name]) / counts[name])
    ours = next(iter(least.values()))
    print(title)
    for name, seconds in least.items():
        print(f"  {name.replace('_', ' '):24} {seconds * 1e6:10.2f} us  {seconds / ours:6.2f}")


def main():
    rng = np.random.default_rng(1)
    for dtype in (np.float32, np.float64):
        a, b = rng.standard_normal((2, 1024)).astype(dtype)
        d = np.empty_like(a)
        contend(f"1,024 sums of {a.dtype}", kels_out=lambda: kels.add(a, b, out=d), kels_new=lambda: kels.add(a, b),
                numpy_out=lambda: np.add(a, b, out=d), numpy_new=lambda: np.add(a, b))
    for dtype in (np.float32, np.float64):
        x, h = rng.standard_normal(1_000_000).astype(dtype), rng.standard_normal(512).astype(dtype)
        filtering = kels.FIR(h)
        contend(f"FIR, 512 taps, 1,000,000 samples of {x.dtype}", kels=lambda: filtering(x),
                scipy_oaconvolve=lambda: signal.oaconvolve(x, h), scipy_lfilter=lambda: signal.lfilter(h, 1, x))
    for size in (64, 1024, 1 << 16, 1 << 20):
        for dtype in (np.complex64, np.float32):
            x = (rng.standard_normal(size) + 1j * rng.standard_normal(size)).astype(dtype) \
                if dtype == np.complex64 else rng.standard_normal(size).astype(dtype)
            plan = kels.FFT(size)
            pair = (np.fft.fft, fft.fft) if dtype == np.complex64 else (np.fft.rfft, fft.rfft)
            contend(f"FFT, {size} points of {x.dtype}", kels=lambda: plan.forward(x), numpy=lambda: pair[0](x),
                    scipy=lambda: pair[1](x))


if __name__ == "__main__":
    main()
