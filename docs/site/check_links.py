"""Checks the pages of the site, including those of doxygen.

Every target of a link, with its anchor, and every loaded file must exist, and pages must load
nothing from other sites. Each page must have one heading of the first level. The reference of
Python must have every public name.

check_links.py FOLDER
"""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

from sphinx.util.inventory import InventoryFile

import surveydata

# The attribute of these elements names a file that is loaded.
LOADED = {"img": "src", "script": "src", "iframe": "src", "source": "src", "object": "data"}


class Page(HTMLParser):
    """The links, the loaded files and the anchors of a page."""

    def __init__(self, path: Path) -> None:
        super().__init__()
        self.links: list[str] = []
        self.loaded: list[str] = []
        self.anchors: set[str] = set()
        self.headings = 0
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        """Collects the link, the file and the anchor of the element."""
        values = {name: value or "" for name, value in attrs}
        self.headings += tag == "h1"
        self.anchors |= {values[name] for name in ("id", "name") if name in values}
        if tag in ("a", "area") and "href" in values:
            self.links.append(values["href"])
        if tag in LOADED and LOADED[tag] in values:
            self.loaded.append(values[LOADED[tag]])
        if tag == "link" and values.get("rel") in ("stylesheet", "icon", "preload"):
            self.loaded.append(values.get("href", ""))


def faults_of(pages: dict[Path, Page], root: Path) -> tuple[list[str], int]:
    """The faults, and the number of links that were followed."""
    faults = []
    followed = 0
    for path, page in pages.items():
        here = path.relative_to(root)
        for url in page.links + page.loaded:
            parts = urlsplit(url)
            if parts.scheme or parts.netloc:
                if url in page.loaded and parts.scheme not in ("data", "javascript"):
                    faults.append(f"{here} loads {url}")
                continue
            if not parts.path and parts.fragment in ("", "top"):
                continue
            followed += 1
            target = (path.parent / unquote(parts.path)).resolve() if parts.path else path
            if not target.is_file():
                faults.append(f"{here}: {url} does not exist")
            elif target in pages and unquote(parts.fragment) not in {"", *pages[target].anchors}:
                faults.append(f"{here}: {url} has no such anchor")
    return faults, followed


def main(folder: str) -> None:
    """Exits with 1 if there is a fault."""
    root = Path(folder).resolve()
    pages = {path: Page(path) for path in sorted(root.rglob("*.html"))}
    faults, followed = faults_of(pages, root)
    of_doxygen = root / "doxygen"
    for path, page in pages.items():
        is_ours = of_doxygen not in path.parents and path.name != "search.html"
        if is_ours and page.headings != 1:
            faults.append(f"{path.relative_to(root)} has {page.headings} main headings")
    inventory = InventoryFile.loads((root / "objects.inv").read_bytes(), uri="").data
    names = {name for kind in inventory if kind.startswith("py:") for name in inventory[kind]}
    for name in {*surveydata.__all__} - {"__version__"}:
        if f"surveydata.{name}" not in names:
            faults.append(f"the reference of Python does not have {name}")
    ours = [page for path, page in pages.items() if of_doxygen not in path.parents]
    linked = sum("doxygen/" in url for page in ours for url in page.links)
    print(
        f"{len(pages)} pages, {followed} links, {linked} to doxygen's pages, {len(faults)} faults"
    )
    print("\n".join(faults))
    sys.exit(bool(faults) or not followed or not linked)


if __name__ == "__main__":
    main(*sys.argv[1:])
