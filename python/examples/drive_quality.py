"""Quality of a drive: how good the fixes are, when they are poor, and a picture.

python drive_quality.py valley_drive.rec drive_quality.svg
"""

import sys
from pathlib import Path

import numpy as np

import surveydata


def main(source: str, picture: str) -> None:
    table = surveydata.read_records(source)
    pdop = table["pdop"]
    print(f"{len(table)} measurements, {np.ma.count(pdop)} with a PDOP")
    for share in (50, 95):
        print(f"PDOP of {share} %: {np.percentile(np.ma.compressed(pdop), share):.2f} or less")
    poor = table.filter(np.ma.filled(pdop > 6, fill_value=False))
    print(f"{len(poor)} above 6:")
    for time, name, value in zip(poor["time_gps"], poor["name"], poor["pdop"], strict=True):
        print(f"  {time}  {value:4.1f}  {name}")
    Path(picture).write_text(table.svg(), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:3])
