"""Collects the sources of the site in a folder.

They are the documents, and pages generated from the program, from doxygen's reference and from
the examples, which are run.

collect.py FOLDER TOOLS DOXYGEN: FOLDER is replaced; TOOLS contains the program and its manual page,
DOXYGEN the output of doxygen.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import textwrap
from pathlib import Path

import manual
from reference import Reference

ROOT = Path(__file__).resolve().parents[2]
SITE = ROOT / "docs" / "site"

# The input files and the arguments of each Python example; the last argument may be a picture.
PYTHON_EXAMPLES = {
    "drive_quality": (["valley_drive.rec"], "drive_quality.svg"),
    "facade_coverage": (["facade.json"], "facade_coverage.svg"),
    "repair": (["damaged.rec", "repaired.rec"], None),
    "archive": (["drives"], "archive.svg"),
}


def with_links_of_site(text: str, document: Path, pages: set[str]) -> str:
    """The document with links that work on the site.

    Links to examples become links to their pages, and links to other files of the repository become
    plain text. A link without a target is an error.
    """

    def changed(match: re.Match[str]) -> str:
        mark, label, target = match[1], match[2], match[3]
        path, hash_, fragment = target.partition("#")
        if not path or re.match("[a-z]+:", path):
            return match[0]
        place = Path(os.path.normpath(document.parent / path))
        if not (ROOT / place).exists():
            raise SystemExit(f"{document}: the link {target} has no target")
        if str(place) in pages or mark == "!":
            return match[0]
        if f"{place}.md" in pages:
            return f"[{label}]({path}.md{hash_}{fragment})"
        return label

    parts = re.split(r"(^```.*?^```$)", text, flags=re.MULTILINE | re.DOTALL)
    link = re.compile(r"(!?)\[([^\]]*)\]\(([^)\s]+)\)")
    return "".join(part if part.startswith("```") else link.sub(changed, part) for part in parts)


def run_python_example(name: str) -> tuple[str, str | None]:
    """The output of an example, and the picture that it draws."""
    arguments, picture = PYTHON_EXAMPLES[name]
    data = ROOT / "tests" / "data"
    with tempfile.TemporaryDirectory() as folder:
        place = Path(folder)
        (place / "drives").mkdir()
        for file in ("valley_drive.rec", "desert_highway.rec"):
            shutil.copy(data / file, place / "drives")
        shutil.copy(data / "valley_drive.rec", place)
        shutil.copy(data / "areas" / "facade.json", place)
        damaged = bytearray((data / "desert_highway.rec").read_bytes()[:6000])
        damaged[1000] ^= 1
        (place / "damaged.rec").write_bytes(damaged)
        done = subprocess.run(
            [
                sys.executable,
                "-P",
                ROOT / "python" / "examples" / f"{name}.py",
                *arguments,
                *([picture] if picture else []),
            ],
            cwd=place,
            check=True,
            stdout=subprocess.PIPE,
            text=True,
        )
        return done.stdout, (place / picture).read_text(encoding="utf-8") if picture else None


def examples() -> dict[str, str]:
    """The pages of the examples, and their pictures."""
    pages = {}
    for source in sorted((ROOT / "examples").iterdir()):
        language = {".cpp": "cpp", ".c": "c", ".py": "python"}.get(source.suffix)
        if language:
            expected = source.with_suffix(".expected").read_text(encoding="utf-8")
            pages[f"examples/{source.name}.md"] = (
                f"# {source.name}\n\n```{language}\n{source.read_text(encoding='utf-8')}```\n\n"
                f"## Output\n\n```text\n{expected}```\n"
            )
    sources = sorted((ROOT / "python" / "examples").glob("*.py"))
    if {source.stem for source in sources} != set(PYTHON_EXAMPLES):
        raise SystemExit("collect.py: the list of Python examples does not match the folder")
    for source in sources:
        output, picture = run_python_example(source.stem)
        call = " ".join([*PYTHON_EXAMPLES[source.stem][0], PYTHON_EXAMPLES[source.stem][1] or ""])
        page = (
            f"# {source.name}\n\n```python\n{source.read_text(encoding='utf-8')}```\n\n"
            f"## Output\n\n`python {source.name} {call.strip()}`\n\n```text\n{output}```\n"
        )
        if picture:
            name = f"{source.stem}.svg"
            pages[f"python/examples/{name}"] = picture
            page += f"\n![The picture that {source.name} draws]({name})\n"
        pages[f"python/examples/{source.name}.md"] = page
    return pages


def with_output(page: str, tools: Path) -> str:
    """The page with the output of the commands in its console blocks.

    Each block of C++ or Python must be an excerpt of code that runs as a test.
    """
    documents = ("README.md", "docs/python.md")
    tested = {
        "cpp": [path.read_text(encoding="utf-8") for path in (ROOT / "examples").glob("*.cpp")],
        "python": [(ROOT / name).read_text(encoding="utf-8") for name in documents],
    }

    def changed(match: re.Match[str]) -> str:
        kind, block = match[1], match[2]
        if kind in tested and not any(f"\n{block}" in text for text in tested[kind]):
            raise SystemExit(f"collect.py: no test runs\n{block}")
        if kind != "console":
            return f"```{kind}\n{textwrap.dedent(block)}```"
        out = ""
        for command in re.findall(r"^\$ ((?:.*\\\n)*.*\n)", block, re.MULTILINE):
            with tempfile.TemporaryDirectory() as folder:
                for file in ("valley_drive.rec", "desert_highway.rec", "areas/facade.json"):
                    shutil.copy(ROOT / "tests" / "data" / file, folder)
                done = subprocess.run(
                    ["bash", "-o", "pipefail", "-c", command],
                    cwd=folder,
                    env={**os.environ, "PATH": f"{tools}:{os.environ['PATH']}"},
                    stdout=subprocess.PIPE,
                    text=True,
                )
                if done.returncode > 1 or not done.stdout:
                    raise SystemExit(f"collect.py: {command}exits with {done.returncode}")
            out += f"$ {command}{done.stdout}"
        return f"```console\n{out}```"

    return re.sub(r"^```(\w+)\n(.*?)^```$", changed, page, flags=re.MULTILINE | re.DOTALL)


def main(folder: str, tools: str, doxygen: str) -> None:
    """Replaces the folder."""
    out = Path(folder)
    shutil.rmtree(out, ignore_errors=True)
    reference = Reference(Path(doxygen), "doxygen/")
    man = (Path(tools) / "surveydata.1").read_text(encoding="utf-8")

    pages = examples()
    written = {"cpp.md": reference.cpp_overview(), "c.md": reference.c_overview()}
    written["program.md"] = manual.to_markdown(man)
    for page in sorted((SITE / "pages").rglob("*.md")):
        name = str(page.relative_to(SITE / "pages"))
        text = with_output(page.read_text(encoding="utf-8"), Path(tools).resolve())
        pages[name] = text + written.pop(name, "")
    if written:
        raise SystemExit(f"collect.py: docs/site/pages lacks {', '.join(written)}")
    documents = [Path(name) for name in ("README.md", "CHANGELOG.md", "CONTRIBUTING.md")]
    documents += [path.relative_to(ROOT) for path in (ROOT / "docs").glob("*.md")]
    documents.append(Path("docs/pictures/README.md"))
    all_pages = {*pages, *map(str, documents)}
    for document in documents:
        text = (ROOT / document).read_text(encoding="utf-8")
        pages[str(document)] = with_links_of_site(text, document, all_pages)
    # The first page has the name of the project.
    pages["README.md"] = pages["README.md"].replace("# surveydata\n", "# Overview\n", 1)

    for name, text in pages.items():
        (out / name).parent.mkdir(parents=True, exist_ok=True)
        (out / name).write_text(text, encoding="utf-8")
    for picture in (ROOT / "docs" / "pictures").iterdir():
        if picture.suffix in (".svg", ".png"):
            shutil.copy(picture, out / "docs" / "pictures")
    shutil.copytree(SITE / "static", out / "_static")
    shutil.copy(SITE / "conf.py", out)
    names = reference.names()
    names |= {one: f"program.html#{manual.anchor(one)}" for one in manual.commands(man)}
    (out / "names.json").write_text(json.dumps(names, indent=0), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
