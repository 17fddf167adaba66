"""Builds a wheel, with the CMake project in the folder above. `scripts/package wheel` does it in a folder of its own."""

import pathlib
import re

from skbuild import setup

PROJECT = (pathlib.Path(__file__).resolve().parent.parent / "CMakeLists.txt").read_text(encoding="utf-8")

setup(
    name="vxfileio",
    version=re.search(r"^  VERSION ([0-9.]+)$", PROJECT, re.MULTILINE)[1],
    description="Reads and writes the files of a cell screening instrument",
    packages=["vxfileio"],
    package_data={"vxfileio": ["py.typed", "*.pyi"]},
    python_requires=">=3.11",
    install_requires=["numpy"],
    extras_require={"tables": ["pandas"], "pictures": ["matplotlib"], "datasets": ["xarray"]},
    cmake_source_dir="..",
    cmake_args=["-DVXFILEIO_BUILD_PYTHON=ON", "-DVXFILEIO_BUILD_CAPI=OFF", "-DBUILD_TESTING=OFF"],
    cmake_install_target="install_python",
)
