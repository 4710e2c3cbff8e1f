"""The data of the tests, and the settings of Hypothesis: the same cases every time."""

import threading
from collections.abc import Callable
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


@pytest.fixture
def steps_beside() -> Callable[[Callable[[], object]], int]:
    """How many steps this thread makes while another one does some work."""

    def count(work: Callable[[], object]) -> int:
        started, finished = threading.Event(), threading.Event()

        def run() -> None:
            started.set()
            try:
                work()
            finally:
                finished.set()

        thread = threading.Thread(target=run)
        thread.start()
        started.wait()
        steps = 0
        while not finished.is_set():  # needs the interpreter's lock, which `work` must release
            steps += 1
        thread.join()
        return steps

    return count
