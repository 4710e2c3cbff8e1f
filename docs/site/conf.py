"""Sphinx settings for the site, whose sources `collect.py` collects."""

import ast
import inspect
import json
import re
from pathlib import Path
from typing import Any

from docutils import nodes
from sphinx.application import Sphinx
from sphinx.transforms.post_transforms import SphinxPostTransform

import surveydata

project = "surveydata"
author = "the authors of surveydata"
version = release = surveydata.__version__
html_title = f"surveydata {version}"
root_doc = "index"

extensions = ["myst_parser", "sphinx.ext.autodoc", "sphinx_design"]
myst_enable_extensions = ["attrs_block", "attrs_inline", "colon_fence", "deflist"]
# The same anchors as GitHub, so that links work both on the site and in the repository.
myst_heading_anchors = 4
highlight_language = "none"

autodoc_member_order = "bysource"
autodoc_typehints = "signature"
# Only the names of these modules are needed.
autodoc_mock_imports = ["dask", "fsspec", "pandas", "pyarrow", "pyspark"]
# Docstrings name Python objects and parameters in backquotes.
default_role = "py:obj"
python_use_unqualified_type_names = True
python_maximum_signature_line_length = 88
add_module_names = False

html_theme = "furo"
html_static_path = ["_static"]
html_css_files = ["site.css"]
html_copy_source = False
html_show_copyright = False
html_show_sphinx = False
html_theme_options = {
    "navigation_with_keys": True,
    "light_css_variables": {"color-brand-primary": "#0b5c8f", "color-brand-content": "#0b5c8f"},
    "dark_css_variables": {"color-brand-primary": "#7cc4f2", "color-brand-content": "#7cc4f2"},
}


class LinkNames(SphinxPostTransform):
    """Turns names in backquotes into links.

    C++ and C names link to doxygen's pages, commands to the manual, Python names to the Python
    reference.
    """

    default_priority = 400

    def run(self, **_: object) -> None:
        """Turns the names in the document into links."""
        docname = self.env.docname
        objects = self.env.get_domain("py").objects
        up = "../" * docname.count("/")
        for literal in list(self.document.findall(nodes.literal)):
            if isinstance(literal.parent, nodes.reference) or self.is_in_title(literal):
                continue
            text = literal.astext()
            target = self.config.names_of_site.get(re.sub(r"\(.*\)$", "", text))
            command = re.match(r"surveydata( [a-z]+)+", text)
            if target is None and command and docname != "program":
                words = command[0].split()
                while words and target is None:
                    target = self.config.names_of_site.get(" ".join(words)) if words[1:] else None
                    words.pop()
            name = re.sub(r"\(.*$", "", text)
            if target is not None:
                uri = up + target
            elif name.startswith("surveydata.") and name in objects:
                entry = objects[name]
                page = self.app.builder.get_relative_uri(docname, entry.docname)
                uri = f"{page}#{entry.node_id}"
            else:
                continue
            link = nodes.reference("", "", internal=True, refuri=uri)
            literal.replace_self(link)
            link += literal

    @staticmethod
    def is_in_title(node: nodes.Node) -> bool:
        """Whether the node is in a title. Titles get no links: the navigation repeats them."""
        while node is not None:
            if isinstance(node, nodes.title):
                return True
            node = node.parent
        return False


def _of_stub() -> tuple[dict[str, str], dict[str, str]]:
    """Constructors and property types of the extension module, from its stub."""
    stub = Path(surveydata.__file__).with_name("_core.pyi").read_text(encoding="utf-8")
    constructors, types = {}, {}
    for one in ast.parse(stub).body:
        for function in one.body if isinstance(one, ast.ClassDef) else ():
            if not isinstance(function, ast.FunctionDef):
                continue
            if function.name == "__init__":
                del function.args.args[0]
                constructors[f"surveydata.{one.name}"] = f"({ast.unparse(function.args)})"
            elif any(getattr(mark, "id", "") == "property" for mark in function.decorator_list):
                types[f"surveydata.{one.name}.{function.name}"] = ast.unparse(function.returns)
    return constructors, types


constructors_of_stub, types_of_stub = _of_stub()
for _name, _arguments in constructors_of_stub.items():
    _scope: dict[str, Any] = {}
    exec(f"from __future__ import annotations\ndef constructor{_arguments}: ...", _scope)
    if _class := getattr(surveydata, _name.split(".")[1], None):
        _class.__signature__ = inspect.signature(_scope["constructor"])


def to_rst(_app: Sphinx, _what: str, name: str, _obj: Any, _options: Any, lines: list[str]) -> None:
    """Docstrings are plain text with names in backquotes and indented code."""
    made = re.compile(r"Alias for field number|\(self\) -> ")
    text = "\n".join(line for line in lines if not made.match(line))
    parts = re.split(r"(\n\n(?: {4}.*\n)+)", text.replace("*", r"\*"))
    for i, part in enumerate(parts):
        if part.startswith("\n\n    "):
            parts[i] = "\n\n.. code-block:: python\n" + part[1:].replace(r"\*", "*")
    if name in types_of_stub:
        parts.insert(0, f"``{types_of_stub[name]}`` ")
    lines[:] = "".join(parts).splitlines()


def setup(app: Sphinx) -> None:
    """Registers the links."""
    app.connect("autodoc-process-docstring", to_rst)
    app.add_config_value("names_of_site", {}, "env", [dict])
    app.add_post_transform(LinkNames)


names_of_site = json.loads((Path(__file__).parent / "names.json").read_text(encoding="utf-8"))
