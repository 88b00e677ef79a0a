"""`pip install .` builds the Python module, and the library too where none is installed."""
import re
from pathlib import Path

from skbuild import setup

types = Path(__file__).with_name("include").joinpath("kels/types.h").read_text()

setup(
    name="kels",
    version=".".join(re.findall(r"define KELS_VERSION_\w+\s+(\d+)", types)),
    description="Signal-processing primitives on NumPy arrays",
    license="MIT",
    python_requires=">=3.9",
    install_requires=["numpy"],
    packages=["kels"],
    package_dir={"": "python"},
    cmake_source_dir="python",
    cmake_install_dir="python/kels",
)
