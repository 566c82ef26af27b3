"""The benchmark models' tables as a NumPy/SciPy user would compute them.

Each module has build(), which returns the inputs (state bounds, sample
points, parameters), and compute(inputs), which returns the table as a flat
float64 array in storage order.  Only compute() is timed.
"""
