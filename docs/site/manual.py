"""The program's manual as Markdown, from its manual page, which is generated from the commands."""

import re
import textwrap

# The roff escapes that the manual page uses; any other is an error.
_SPECIAL = {"\\e": "\\", "\\-": "-", "\\(aq": "'", "\\(dq": '"', "\\&": "", "\\ ": "\xa0"}


def _plain(text: str) -> str:
    """The text without font changes and escapes."""

    def character(match: re.Match[str]) -> str:
        escape = match[0]
        if escape.startswith("\\["):
            return chr(int(escape[3:-1], 16))
        if escape.startswith("\\f"):
            return ""
        return _SPECIAL[escape]

    return re.sub(r"\\(\[u[0-9A-F]+\]|\(..|f.|.)", character, text)


def _marked(text: str) -> str:
    """The text as Markdown: bold is what the user types, italic is what the user replaces."""
    parts = re.split(r"\\f([BIR])", text)
    out = _escaped(_plain(parts[0]))
    for font, part in zip(parts[1::2], parts[2::2], strict=True):
        plain = _plain(part)
        out += {"B": f"`{plain}`", "I": f"*{_escaped(plain)}*", "R": _escaped(plain)}[font]
    return out


def _escaped(text: str) -> str:
    return re.sub(r"([\\`*_<>\[\]|#{}$])", r"\\\1", text)


def anchor(heading: str) -> str:
    """The anchor that the site gives a heading."""
    return re.sub(r"[^a-z0-9_ -]", "", heading.lower()).replace(" ", "-")


def commands(page: str) -> list[str]:
    """The commands in order: "surveydata record", "surveydata record list", ..."""
    return [_plain(name) for name in re.findall(r"^\.SS (.*)$", page, re.MULTILINE)]


def _synopses(page: str) -> dict[str, str]:
    section = re.search(r"^\.SH SYNOPSIS\n(.*?)^\.SH ", page, re.MULTILINE | re.DOTALL)
    if not section:
        raise ValueError("the manual page has no synopsis")
    calls = [line for line in section[1].splitlines() if line != ".br"]
    return {_plain(line.split("\\fR")[0]): _wrapped(_plain(line)) for line in calls}


def _wrapped(call: str) -> str:
    lines = textwrap.wrap(call, 84, subsequent_indent="    ", break_on_hyphens=False)
    return "\n".join(lines).replace("\xa0", " ")


def to_markdown(page: str) -> str:
    """The manual: a table of the commands, each command, then the other sections."""
    names = commands(page)
    synopses = _synopses(page)
    first_lines: dict[str, str] = {}
    title = ""
    out: list[str] = []
    skipped = False
    is_form = False
    lines = iter(page.splitlines())
    for line in lines:
        request, _, text = line.partition(" ")
        if line.startswith(('.\\"', ".TH")):
            continue
        if request == ".SH":
            skipped = text in ("NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS")
            if text == "COMMANDS":
                out.append("@commands@\n")
            elif not skipped:
                out.append(f"## {text.capitalize()}\n")
            continue
        if request == ".SS":
            title = _plain(text)
            skipped = False
            level = "###" if title in synopses else "##"  # a command, or a group of commands
            out.append(f"\n{level} {title}\n")
            if title in synopses:
                out.append(f"```text\n{synopses[title]}\n```\n")
            continue
        if skipped:
            continue
        if request == ".EX":
            is_form = True
            out.append("\n```sh" if title and not out[-1].startswith("## ") else "\n```text")
        elif request == ".EE":
            is_form = False
            out.append("```\n")
        elif is_form:
            out.append(re.sub("^  ", "", _plain(line)))
        elif request == ".TP":
            out.append("\n" + _marked(next(lines)))
            out.append(": " + _marked(next(lines)))
        elif request == ".PP":
            out.append("")
        elif line.startswith("."):
            raise ValueError(f"the manual page has an unknown request: {line}")
        else:
            if title:
                first_lines.setdefault(title, "")
                if not first_lines[title].endswith((".", ":")):
                    first_lines[title] = f"{first_lines[title]} {_marked(line)}".strip()
            out.append(_marked(line))
    table = ["## Commands\n", "| command | |", "|---|---|"]
    for name in names:
        if name in synopses:
            sentence = re.split(r"(?<=[a-z)])[.:;](?: |$)", first_lines[name])[0]
            table.append(f"| [`{name}`](#{anchor(name)}) | {sentence} |")
    return "\n".join(out).replace("@commands@", "\n".join(table)) + "\n"
