import numpy
import pytest


@pytest.fixture
def rng():
    return numpy.random.default_rng(20)
