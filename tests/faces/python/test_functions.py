"""Functions: that the right one is found for the types of the arguments, and what is refused."""
import re
import threading
import warnings
from concurrent.futures import ThreadPoolExecutor

import kels
import numpy as np
import pytest

f4, f8, i2 = np.float32, np.float64, np.int16


def test_results_have_the_type_of_the_arrays():
    for dtype in (f4, f8, np.complex64, np.complex128):
        a = np.ones(3, dtype)
        assert all(ours(a, a).dtype == dtype for ours in (kels.add, kels.sub, kels.mul, kels.div))
    assert kels.add(np.array([200], np.uint8), np.array([100], np.uint8))[0] == 255


def test_constants_stand_where_one_writes_them():
    x = np.array([10, 20], f4)
    assert kels.sub(x, 1).tolist() == [9, 19]
    assert kels.sub(1, x).tolist() == [-9, -19]
    assert kels.mul(np.array([1 + 1j], np.complex64), 2j)[0] == -2 + 2j
    assert kels.shift_left(np.array([3], i2), 2)[0] == 12
    with pytest.raises(OverflowError):
        kels.add(np.array([1], i2), 70000)
    with pytest.raises(TypeError):
        kels.add(np.array([1], i2), 1.5)


def test_scale_and_dtype():
    a = np.array([100, 3], i2)
    assert kels.add(a, a, scale=3).tolist() == [25, 1]
    assert kels.add(a, a, dtype=f4).dtype == f4
    x = np.array([2.5, 3.5], f4)
    assert kels.convert(x, kels.round_to_nearest, dtype=i2, scale=-1).tolist() == [5, 7]
    big = np.array([1e30], f4)
    assert kels.dot_prod(big, big) == np.inf
    assert kels.dot_prod(big, big, dtype=f8) == float(big[0]) ** 2
    assert kels.sum(np.array([30000, 30000], i2)) == 32767
    assert kels.sum(np.array([30000, 30000], i2), dtype=np.int32) == 60000
    assert kels.dot_prod(np.array([300], i2), np.array([300], i2)) == 90000
    assert kels.dot_prod(np.array([300], i2), np.array([300], i2), scale=2) == 22500
    with pytest.raises(TypeError, match="kelsAdd_32f"):
        kels.add(x, x.astype(f8))


def test_out_and_in_place(rng):
    x, y = rng.standard_normal((2, 100)).astype(f4)
    was = x.copy()
    out = np.empty(100, f4)
    assert kels.add(x, y, out=out) is out
    assert kels.sub(x, y, out=x) is x
    np.testing.assert_array_equal(x, was - y)
    kels.sub(was, x, out=x)  # over its second source
    np.testing.assert_allclose(x, y, atol=1e-6)
    line = rng.standard_normal(101).astype(f4)
    wanted = line[:-1] + y
    kels.add(line[:-1], y, out=line[1:])  # over a part of its source
    np.testing.assert_array_equal(line[1:], wanted)
    even = kels.max_every(was, y)  # in C in place alone
    np.testing.assert_array_equal(even, np.maximum(was, y))
    assert not np.shares_memory(even, was)
    np.testing.assert_array_equal(kels.flip(was, out=was.copy()), was[::-1])


def test_strides_and_read_only_arrays(rng):
    x = rng.standard_normal(200).astype(f4)
    np.testing.assert_array_equal(kels.abs(x[::2]), np.abs(x[::2]))
    np.testing.assert_array_equal(kels.add(x[::-1], x), x[::-1] + x)
    fixed = x.copy()
    fixed.flags.writeable = False
    np.testing.assert_array_equal(kels.abs(fixed), np.abs(x))
    for error, wrong, out in ((ValueError, x, fixed), (ValueError, x[:100], np.empty(200, f4)[::2]),
                              (TypeError, x, np.empty(200, f8)), (TypeError, x.reshape(2, 100), None),
                              (TypeError, x.astype(">f4"), None)):
        with pytest.raises(error):
            kels.abs(wrong, out=out)


def test_errors_and_warnings():
    x = np.ones(3, f4)
    out = np.full(3, 7, f4)
    with pytest.raises(kels.Error) as caught:
        kels.add(x, np.ones(2, f4), out=out)
    assert caught.value.status == -6 and "size" in str(caught.value)
    assert out.tolist() == [7, 7, 7]
    for wrong in (lambda: kels.add(x[:0], x[:0]), lambda: kels.div(x, 0)):
        with pytest.raises(kels.Error):
            wrong()
    with pytest.warns(kels.Warning, match="Zero"):
        assert kels.div(x, x - 1)[0] == np.inf
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(kels.Warning):
            kels.ln(np.zeros(1, f4))
    with pytest.raises(TypeError):
        kels.abs(x, bogus=1)


def test_values_and_shapes():
    x = np.array([3, 9, 4], f4)
    assert kels.max_indx(x) == (9, 1)
    assert kels.norm_l2(np.array([3, 4], f4)) == 5
    assert kels.conv(np.ones(2, f4), x).tolist() == [3, 12, 13, 4]
    assert kels.auto_corr(x).tolist() == [106, 63, 12]
    assert kels.auto_corr(x, length=2).tolist() == [106, 63]
    low, high = kels.wt_haar_fwd(x)
    assert low.tolist() == [6, 4] and high.tolist() == [3]
    assert kels.wt_haar_inv(low, high).tolist() == x.tolist()
    kept, phase = kels.sample_down(np.arange(8, dtype=f4), 3, 1)
    assert kept.tolist() == [1, 4, 7] and phase == 2
    tone, phase = kels.tone(2, 0.25, 0, length=5, dtype=f8)
    np.testing.assert_allclose(tone, [2, 0, -2, 0, 2], atol=1e-6)
    assert phase == pytest.approx(np.pi / 2)
    with pytest.raises(TypeError, match="length="):
        kels.vector_ramp(0, 1, dtype=f4)
    assert kels.vector_ramp(1, 2, length=3, dtype=i2).tolist() == [1, 3, 5]
    near, index = kels.find_nearest(np.array([7, 1], np.uint16), np.array([0, 5, 9], np.uint16))
    assert near.tolist() == [5, 0] and index.tolist() == [1, 0]
    ring = np.zeros(4, f4)
    y, index = kels.fir_direct(np.array([1, 0, 0], f4), np.array([2, 3], f4), ring, 0)
    assert y.tolist() == [2, 3, 0] and index == 1
    assert kels.filter_median(np.array([1, 9, 2, 8], f4), 3).tolist() == [1, 2, 8, 8]


def test_integer_complex_samples():
    z = np.array([(1, 2), (3, 4)], kels.complex16s)
    assert kels.add(z, z)["im"].tolist() == [4, 8]
    assert kels.mul(z, (0, 1))["re"].tolist() == [-2, -4]
    assert kels.sum(z)["re"] == 4
    assert kels.real(z).tolist() == [1, 3]
    assert kels.set(3 - 4j, out=np.zeros(2, kels.complex16s))["im"].tolist() == [-4, -4]
    for wrong in (0.5j, complex(np.inf, 0), complex(0, np.nan)):
        with pytest.raises(TypeError):
            kels.mul(z, wrong)


def test_every_function_tells_what_it_does():
    for name in kels._core.functions:
        text = getattr(kels, name).__doc__
        assert text.startswith(name + "(") and "In C: kels" in text
    text = kels.add.__doc__
    assert "Sum of two vectors" in text and "kelStatusBadSize" in text and "add(src1, src2, out=None, scale=0)" in text


def test_other_threads_run_during_a_call():
    x = np.ones(1 << 20, f8)
    stop, ticks = threading.Event(), [0]

    def count():
        while not stop.is_set():
            ticks[0] += 1

    thread = threading.Thread(target=count)
    thread.start()
    before = ticks[0]
    for _ in range(20):
        kels.sqrt(x)
    stop.set()
    thread.join()
    assert ticks[0] > before

    data = np.random.default_rng(1).standard_normal((4, 100000))
    with ThreadPoolExecutor(4) as pool:
        results = list(pool.map(lambda x: [kels.norm_l1(x) for _ in range(20)], data))
    np.testing.assert_allclose(results, np.repeat(np.abs(data).sum(axis=1)[:, None], 20, axis=1))


def test_raw_functions():
    from kels import raw
    assert len(raw.FUNCTIONS) == 1404
    for name in raw.__dir__():
        getattr(raw, name)
    x = np.ones(4, f4)
    assert raw.kelsMulC_32f_I(2.5, x, x.size) == 0
    assert x.tolist() == [2.5] * 4
    with pytest.raises(Exception, match="float64"):
        raw.kelsMulC_32f_I(2.5, np.ones(4), 4)
    z = np.ones(2, np.complex64)
    assert raw.kelsMulC_32fc_I(raw.Kel32fc(0, 1), z, 2) == 0
    assert z.tolist() == [1j, 1j]
    assert raw.kelsAbs_32f_I(None, 4) == raw.kelStatusNullPtr
    assert raw.kelGetStatusString(0).startswith(b"No error")
    assert raw.kelsGetLibVersion().contents.major == 2


def arrays_of(kind, rng, count):
    """Positive samples, that every function has a result for, of a C type."""
    dtype = kels.raw._DTYPES[kind]
    if dtype.kind == "f":
        return (rng.random(count) + 0.5).astype(dtype)
    if dtype.kind == "c":
        return (rng.random(count) + 0.5 + 1j * rng.random(count)).astype(dtype)
    parts = rng.integers(1, 100, 2 * count)
    if dtype.names:
        z = np.empty(count, dtype)
        z["re"], z["im"] = parts[:count], parts[count:]
        return z
    return parts[:count].astype(dtype)


def element_wise():
    """(operation, C name, types of the arrays, the last of which is written, whether it has a scale factor)"""
    for operation, called in kels._core.functions.items():
        for name in called.__doc__.split("In C: ")[1].split():
            parameters = " ".join(kels.raw.FUNCTIONS[name][1])
            found = re.fullmatch(r"((?:const Kel\w+\* ){1,2})(Kel\w+)\* int( int)?", parameters)
            of_one_length = operation not in ("conj_ccs", "wt_haar_inv")
            if found and of_one_length and "_I" not in name and bool(found[3]) == name.endswith("_Sfs"):
                yield operation, name, re.findall(r"Kel\w+", found[1]), found[2], bool(found[3])


def test_the_function_of_the_types_is_the_one_that_is_called(rng):
    seen = 0
    for operation, name, sources, result, scaled in element_wise():
        given = [arrays_of(kind, rng, 20) for kind in sources]
        out, wanted = arrays_of(result, rng, 20), arrays_of(result, rng, 20)
        factor = [2] if scaled else []
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            in_order = given[::-1] if operation in ("sub", "div") else given
            getattr(kels, operation)(*in_order, out=out, **({"scale": 2} if scaled else {}))
        assert getattr(kels.raw, name)(*given, wanted, 20, *factor) >= 0
        assert out.tobytes() == wanted.tobytes(), name
        seen += 1
    assert seen > 150
