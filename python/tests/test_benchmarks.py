import importlib.util
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import surveydata as sd

BENCHMARKS = Path(__file__).resolve().parents[1] / "benchmarks"


@pytest.mark.parametrize("name", ["valley_drive", "desert_highway"])
def test_the_peer_fills_the_same_columns(data: Path, name: str) -> None:
    spec = importlib.util.spec_from_file_location("peer", BENCHMARKS / "struct_decoder.py")
    assert spec is not None
    assert spec.loader is not None
    peer = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(peer)
    content = (data / f"{name}.rec").read_bytes()
    table = sd.read_records(content, sd.FIXED_WIDTH)
    columns = peer.read_columns(content)
    assert list(columns) == list(sd.FIXED_WIDTH)
    can_be_absent = {info.name: info.can_be_absent for info in sd.columns()}
    for column, (values, valid) in columns.items():
        expected, expected_valid = table.column(column)
        if expected_valid is None:
            expected_valid = np.ones(len(table), bool)
        if can_be_absent[column]:
            assert valid.tolist() == expected_valid.tolist(), column
        assert values.dtype == expected.dtype
        assert values[expected_valid] == pytest.approx(expected[expected_valid], rel=1e-15), column


def test_the_benchmark_runs() -> None:
    done = subprocess.run(
        [sys.executable, BENCHMARKS / "benchmark.py", "--megabytes", "1", "--runs", "1"],
        check=True,
        capture_output=True,
        text=True,
    )
    assert "valley_drive" in done.stdout
    assert "two threads" in done.stdout
