"""Types that several modules share."""

import os
from typing import Any, Union

import numpy as np

Path = Union[str, bytes, os.PathLike]


def sample_type(scaled: bool) -> np.dtype[Any]:
    """Returns the type of samples: `float64` in physical units, or `uint16` as in the file."""
    return np.dtype(np.float64 if scaled else np.uint16)
