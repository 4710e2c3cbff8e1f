"""The data of the tests, and the settings of Hypothesis: the same cases every time."""

from pathlib import Path

import hypothesis
import pytest

hypothesis.settings.register_profile(
    "fixed", database=None, derandomize=True, deadline=None, max_examples=150
)
# For builds with sanitizers, which are slow: `--hypothesis-profile=few`.
hypothesis.settings.register_profile(
    "few", parent=hypothesis.settings.get_profile("fixed"), max_examples=15
)
hypothesis.settings.load_profile("fixed")


@pytest.fixture(scope="session")
def data() -> Path:
    return Path(__file__).resolve().parents[2] / "tests" / "data"
