"""Classes, beside NumPy and SciPy."""
from concurrent.futures import ThreadPoolExecutor

import kels
import numpy as np
import pytest
from scipy import fft, signal

f4, f8, i2 = np.float32, np.float64, np.int16


@pytest.mark.parametrize("make, size", [(kels.FFT, 64), (kels.DFT, 60), (kels.DFT, 35), (kels.FFT, 1)])
@pytest.mark.parametrize("dtype, tolerance", [(f4, 1e-5), (f8, 1e-13)])
def test_fourier(rng, make, size, dtype, tolerance):
    x = rng.standard_normal(size).astype(dtype)
    z = (x + 1j * rng.standard_normal(size)).astype(np.result_type(dtype, np.complex64))
    for norm in ("forward", "backward", "ortho"):
        plan = make(size, norm=norm)
        np.testing.assert_allclose(plan.forward(x), np.fft.rfft(x, norm=norm), atol=tolerance * size)
        np.testing.assert_allclose(plan.forward(z), np.fft.fft(z, norm=norm), atol=tolerance * size)
        assert plan.forward(z).dtype == z.dtype
        back = plan.inverse(plan.forward(x), real=True)
        assert back.dtype == dtype
        np.testing.assert_allclose(back, x, atol=tolerance)
        np.testing.assert_allclose(plan.inverse(plan.forward(z)), z, atol=tolerance)


def test_fourier_of_integers_and_what_it_refuses(rng):
    x = rng.integers(-1000, 1000, 64).astype(i2)
    plan = kels.FFT(64, norm=None)
    bins = plan.forward(x, scale=4)
    np.testing.assert_allclose(bins["re"] + 1j * bins["im"], np.fft.rfft(x) / 16, atol=1.5)
    np.testing.assert_allclose(plan.inverse(bins, scale=2), x, atol=8)
    out = np.empty(33, np.complex64)
    assert plan.forward(x.astype(f4), out=out) is out
    for wrong in (lambda: kels.FFT(12), lambda: kels.DFT(0), lambda: plan.forward(np.ones(32, f4))):
        with pytest.raises(kels.Error):
            wrong()
    with pytest.raises(TypeError):
        plan.forward(np.ones(64, np.uint8))
    with pytest.raises(TypeError):
        plan.forward(np.ones(64, f4), scale=1)


def test_dct(rng):
    x = rng.standard_normal(50)
    plan = kels.DCT(50)
    np.testing.assert_allclose(plan.forward(x), fft.dct(x, norm="ortho"), atol=1e-13)
    np.testing.assert_allclose(plan.inverse(plan.forward(x.astype(f4))), x, atol=1e-6)
    assert plan.forward(np.full(50, 100, i2), scale=1)[0] == 354


@pytest.mark.parametrize("taps, samples", [(f8, f8), (f4, f4), (f8, f4), (f4, f8), (f4, np.complex64),
                                           (np.complex128, np.complex128)])
def test_fir(rng, taps, samples):
    h = rng.standard_normal(40).astype(taps)
    x = rng.standard_normal(3000).astype(samples)
    wanted = signal.lfilter(h, 1, x)
    np.testing.assert_allclose(kels.FIR(h)(x), wanted, atol=2e-5)
    stream = kels.FIR(h)
    parts = [stream(part) for part in np.split(x, [1, 17, 300, 301])]
    np.testing.assert_allclose(np.concatenate(parts), wanted, atol=2e-5)
    np.testing.assert_array_equal(stream.delay_line, x[:-41:-1])
    stream.reset()
    np.testing.assert_allclose(stream(x, out=x), wanted, atol=2e-5)


def test_fir_of_integers():
    assert kels.FIR(np.array([0.5, 0.25]))(np.array([1000, 0], i2)).tolist() == [500, 250]
    assert kels.FIR(np.array([1, 2], np.int32), taps_factor=3)(np.array([1, 1], i2), scale=1).tolist() == [4, 12]
    with pytest.raises(TypeError):
        kels.FIR([1.0])(np.ones(3, np.uint8))
    fir = kels.FIR([1.0, 2.0], dtype=f4)
    fir.delay_line = [5, 7]
    assert fir(np.zeros(1, f4))[0] == 10
    with pytest.raises(kels.Error):
        fir.delay_line = [1]
    with pytest.raises(kels.Error):
        kels.FIR([])(np.ones(3))


def test_a_filter_keeps_to_its_type():
    fir, x = kels.FIR(np.ones(3, f4), dtype=f4), np.ones(8, f4)
    for wrong in (np.ones(8), np.ones((2, 4), f4), np.ones(8, np.complex64)):
        with pytest.raises(TypeError):
            fir(wrong)
    for out in (np.ones(8), np.ones((2, 4), f4), 3):
        with pytest.raises(TypeError):
            fir(x, out=out)
    with pytest.raises(kels.Error):
        fir(x, out=np.ones(7, f4))
    with pytest.raises(TypeError):
        kels.FFT(8).forward(x, out=np.ones(5, np.complex128))


def test_fir_that_changes_the_rate(rng):
    h, x = rng.standard_normal(48), rng.standard_normal(300)
    wanted = signal.upfirdn(h, x, 2, 3)[:200]
    resampler = kels.FIRMultirate(h, 2, 3)
    np.testing.assert_allclose(np.concatenate([resampler(x[:99]), resampler(x[99:])]), wanted, atol=1e-12)
    with pytest.raises(kels.Error):
        resampler(x[:100])


@pytest.mark.parametrize("samples", [f4, f8])
def test_iir_and_biquads(rng, samples):
    x = rng.standard_normal(2000).astype(samples)
    b, a = signal.butter(3, 0.2)
    sections = signal.butter(6, 0.2, output="sos")
    for ours, wanted in ((kels.IIR(b, a), signal.lfilter(b, a, x)), (kels.Biquads(sections), signal.sosfilt(sections, x))):
        y = np.concatenate([ours(x[:700]), ours(x[700:])])
        assert y.dtype == samples
        np.testing.assert_allclose(y, wanted, atol=1e-6)
        assert len(ours.delay_line) in (3, 6)
    assert kels.IIR([1, 0.5], [2])(np.array([4.0, 0])).tolist() == [2, 1]
    with pytest.raises(kels.Error):
        kels.IIR([1.0], [0.0])(x)


def test_adaptive_filters():
    x = kels.UniformNoise(-1, 1, 7)(4000)
    lms = kels.LMS(np.zeros(2))
    lms(x, kels.FIR(np.array([0.5, -0.25], f4))(x), 0.1)
    np.testing.assert_allclose(lms.taps, [0.5, -0.25], atol=1e-4)
    ring, index = lms.delay_line
    lms.delay_line = ring, index
    assert len(ring) == 2
    steps = kels.LMSMultirate([3 << 16, 2 << 16], 1, 0, 1 << 15)
    steps.put(10)
    assert steps.one() == 30
    steps.update(1)
    assert steps.taps.tolist() == [(3 << 16) + 10, 2 << 16]
    assert steps.at(1) == 10


def test_filter_bank_median_and_noise(rng):
    bank = kels.FilterBank(([0.5, 0.5], [0.5, -0.5]), ([1, 1], [-1, 1]))
    x = rng.standard_normal(16).astype(f4)
    np.testing.assert_allclose(bank.inverse(*bank.forward(x))[1:], x[:-1], atol=1e-6)
    np.testing.assert_array_equal(kels.Median(5)(x)[2:-2], signal.medfilt(x, 5)[2:-2])
    noise, again = kels.NormalNoise(0, 2, 3), kels.NormalNoise(0, 2, 3)
    whole = noise(100000)
    np.testing.assert_array_equal(whole, np.concatenate([again(10), again(99990)]))
    assert np.std(whole) == pytest.approx(2, rel=0.02)


def test_a_filter_belongs_to_one_thread_at_a_time():
    fir, x = kels.FIR(np.ones(300, f4)), np.ones(2_000_000, f4)
    plan, y = kels.FFT(1 << 16), np.ones(1 << 16, f4)
    with ThreadPoolExecutor(4) as pool:
        calls = [pool.submit(fir, x) for _ in range(15)]
        bins = list(pool.map(lambda _: plan.forward(y)[0], range(4)))
    outcomes = [call.exception() for call in calls]
    assert None in outcomes and all(isinstance(e, (RuntimeError, type(None))) for e in outcomes)
    assert bins == [1 << 16] * 4
