import numpy
import kels

mean = kels.FIR(numpy.full(4, 0.25, numpy.float32))  # the mean of four samples
samples = numpy.array([0, 0, 1, 1, 1, 1, 1, 1], numpy.float32)
print(*mean(samples), kels.text(0))
