"""An archive of files: figures of each and a picture of the worst, in constant memory.

python archive.py drives/ worst.svg
"""

import sys
from collections import defaultdict
from pathlib import Path

import numpy as np

import surveydata


def main(folder: str, picture: str) -> None:
    rows: dict[str, int] = defaultdict(int)
    sums: dict[str, float] = defaultdict(float)
    for part in surveydata.iter_batches(folder, ["pdop"]):
        ((source, _),) = part.sources  # a batch has rows of one file
        pdop = np.ma.compressed(part["pdop"])
        rows[str(source)] += pdop.size
        sums[str(source)] += float(pdop.sum())
    means = {source: sums[source] / count for source, count in rows.items() if count}
    for source in sorted(means, key=lambda source: -means[source]):
        print(f"{means[source]:6.2f}  {rows[source]:>6} measurements  {Path(source).name}")
    worst = max(means, key=lambda source: means[source])
    Path(picture).write_text(surveydata.read_records(worst).svg(), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:3])
