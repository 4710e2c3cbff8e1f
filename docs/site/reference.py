"""Overviews of doxygen's pages, and the URLs of the documented names."""

import re
import xml.etree.ElementTree as ElementTree
from pathlib import Path

# The folders of the public headers, in reading order for newcomers, with their contents.
SUBSYSTEMS = {
    "gnss": "GNSS measurements, record files",
    "scanning": "Scan areas and scans",
    "geodetic": "Coordinates and their quality",
    "total_station": "Total-station records",
    "imaging": "Camera orientations",
    "object_model": "The base of all records",
    "platform": "The instrument platform",
}


def _text(element: ElementTree.Element | None) -> str:
    if element is None:
        return ""
    text = " ".join("".join(element.itertext()).split())
    text = re.sub(":$", ".", text)
    return re.sub(r"([\\`*_<>\[\]|])", r"\\\1", text)


class Reference:
    """The output of doxygen in `folder`: HTML, XML and tag file."""

    def __init__(self, folder: Path, url: str) -> None:
        self.xml = folder / "xml"
        self.url = url
        self.compounds = ElementTree.parse(folder / "tags.xml").getroot().findall("compound")

    def names(self) -> dict[str, str]:
        """The URLs of classes, their members, functions and the declarations of the C interface.

        A name without its namespace is included if it is unique.
        """
        found: dict[str, set[str]] = {}

        def add(name: str, url: str) -> None:
            found.setdefault(name, set()).add(url)

        for compound in self.compounds:
            kind, name = compound.get("kind"), compound.findtext("name", "")
            page = compound.findtext("filename", "")
            page = page if page.endswith(".html") else page + ".html"
            if kind not in ("class", "struct", "namespace", "file") or "<" in name:
                continue
            if kind in ("class", "struct"):
                add(name, page)
                if "::" in name:
                    add(name.split("::")[-1], page)
            for member in compound.findall("member"):
                url = f"{member.findtext('anchorfile')}#{member.findtext('anchor')}"
                own = member.findtext("name", "")
                if kind == "file":
                    if own.lower().startswith("surveydata_"):
                        add(own, url)
                else:
                    add(f"{name}::{own}", url)
                    if name.count("::"):
                        add(f"{name.split('::', 1)[1]}::{own}", url)
                    if kind == "namespace":
                        add(own, url)
        # Overloads share the URL of the first one.
        return {
            name: self.url + min(urls)
            for name, urls in found.items()
            if len({url.split("#")[0] for url in urls}) == 1
        }

    def _brief(self, refid: str) -> str:
        root = ElementTree.parse(self.xml / f"{refid}.xml").getroot()
        return _text(root.find("compounddef/briefdescription"))

    def cpp_overview(self) -> str:
        """Tables of the public classes, by subsystem."""
        out = []
        files = [one for one in self.compounds if one.get("kind") == "file"]
        for subsystem, title in SUBSYSTEMS.items():
            rows = []
            for file in files:
                if not file.findtext("path", "").endswith(f"/surveydata/{subsystem}/"):
                    continue
                for one in file.findall("class"):
                    name = one.text or ""
                    is_public = not re.search(r"<|ODM::|Impl[A-Z]*C$", name)
                    if not is_public or name.count("::") != 1:
                        continue
                    refid = next(
                        other.findtext("filename", "").removesuffix(".html")
                        for other in self.compounds
                        if other.findtext("name") == name
                    )
                    link = f"[`{name}`]({self.url}{refid}.html){{.external}}"
                    rows.append(f"| {link} | {self._brief(refid)} |")
            if not rows:
                raise ValueError(f"the reference has no class of {subsystem}")
            out += [f"## {title}\n", "| class | |", "|---|---|", *rows, ""]
        return "\n".join(out)

    def c_overview(self) -> str:
        """A table of the functions of the C interface, in the order of its header."""
        page = "c__interface_2surveydata_8h"
        root = ElementTree.parse(self.xml / f"{page}.xml").getroot()
        rows = []
        for member in root.iter("memberdef"):
            if member.get("kind") == "function":
                anchor = (member.get("id") or "").removeprefix(page + "_1")
                rows.append(
                    f"| [`{member.findtext('name')}`]({self.url}{page}.html#{anchor}){{.external}} "
                    f"| {_text(member.find('briefdescription'))} |"
                )
        if not rows:
            raise ValueError("the reference has no function of the C interface")
        return "\n".join(["| function | |", "|---|---|", *rows, ""])
