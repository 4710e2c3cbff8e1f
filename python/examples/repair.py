"""A damaged file and its repair: what is lost, and a copy with everything that is intact.

python repair.py damaged.rec repaired.rec
"""

import sys
from pathlib import Path

import surveydata


def main(damaged: str, repaired: str) -> None:
    damage = surveydata.find_damage(damaged)
    print(f"{len(damage.offset)} findings in {damaged}")
    for offset, size, kind in zip(damage.offset, damage.size, damage.kind, strict=True):
        print(f"  {offset:>8}  {size:>6} bytes  {kind}")
    content = Path(damaged).read_bytes()
    table = surveydata.read_records(content, ["offset", "size"])
    records = b"".join(
        content[begin : begin + size]
        for begin, size in zip(table["offset"], table["size"], strict=True)
    )
    Path(repaired).unlink(missing_ok=True)
    surveydata.append(repaired, records)
    left = surveydata.find_damage(repaired)
    print(f"{len(table)} measurements are in {repaired}, with {len(left.offset)} findings")


if __name__ == "__main__":
    main(*sys.argv[1:3])
