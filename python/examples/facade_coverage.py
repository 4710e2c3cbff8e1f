"""Coverage of a facade scan: which measured directions are in the area, and what is missing.

python facade_coverage.py facade.json facade_coverage.svg
"""

import sys
from pathlib import Path

import numpy as np

import surveydata


def main(file: str, picture: str) -> None:
    area = surveydata.read_area(file)
    bounds, solid_angle = area.bounds(), area.solid_angle()
    if bounds is None or solid_angle is None:
        raise SystemExit(f"{file}: {area.faults()[0].text}")
    print(f"{area.name}: {solid_angle:.4f} sr, Hz {bounds.hz_min:.1f} to {bounds.hz_max:.1f}")
    # A scan in columns, from which some directions are missing.
    rng = np.random.default_rng(1)
    hz, v = np.meshgrid(
        np.linspace(bounds.hz_min - 5, bounds.hz_max + 5, 400),
        np.linspace(bounds.v_min - 5, bounds.v_max + 5, 200),
    )
    is_measured = rng.random(hz.shape) < 0.9
    inside = area.contains(hz, v)
    covered = np.count_nonzero(inside & is_measured) / np.count_nonzero(inside)
    print(
        f"{np.count_nonzero(inside)} of {inside.size} directions are inside, {covered:.1%} measured"
    )
    lost = np.flatnonzero(inside & ~is_measured)[::200]
    Path(picture).write_text(area.svg(hz.flat[lost], v.flat[lost]), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:3])
