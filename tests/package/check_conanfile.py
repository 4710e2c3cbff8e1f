"""Runs the steps of a Conan recipe that do not require Conan, with substitutes for its imports.

check_conanfile.py RECIPE: prints its name, its version, the CMake variables that it sets, and the
patterns that it exports, one per line.
"""

import os
import runpy
import sys
import types


class Recipe:
    """Substitute for conan.ConanFile."""

    recipe_folder = ""
    export_sources_folder = "exported"
    requirements_made = None

    def requires(self, reference, **traits):
        assert "/" in reference and isinstance(traits, dict)
        self.requirements_made.append(reference)


class Toolchain:
    """Substitute for CMakeToolchain."""

    variables = {}

    def __init__(self, recipe):
        self.cache_variables = Toolchain.variables

    def generate(self):
        pass


def load(recipe, path):
    with open(path, encoding="utf-8") as file:
        return file.read()


exported = []


def copy(recipe, pattern, src, dst):
    there = os.path.join(src, pattern.split("*", maxsplit=1)[0])
    assert os.path.exists(there), there + " is exported but does not exist"
    exported.append(pattern)


def stand_in(name, **members):
    module = types.ModuleType(name)
    module.__dict__.update(members)
    sys.modules[name] = module


stand_in("conan", ConanFile=Recipe)
stand_in("conan.tools")
stand_in("conan.tools.build", can_run=None)
stand_in("conan.tools.cmake", CMake=Toolchain, CMakeDeps=Toolchain, CMakeToolchain=Toolchain,
         cmake_layout=None)
stand_in("conan.tools.files", copy=copy, load=load)

path = os.path.abspath(sys.argv[1])
recipe = next(value for value in runpy.run_path(path).values()
              if isinstance(value, type) and issubclass(value, Recipe) and value is not Recipe)()
recipe.recipe_folder = os.path.dirname(path)
recipe.options = types.SimpleNamespace(program=True)
recipe.requirements_made = []
recipe.tested_reference_str = "surveydata/0"
recipe.requirements()
if hasattr(recipe, "set_version"):
    recipe.set_version()
    recipe.export_sources()
    recipe.generate()
    print("name", recipe.name)
    print("version", recipe.version)
    for name in recipe.options.__dict__:
        assert name in type(recipe).options, name
    for variable in Toolchain.variables:
        print("variable", variable)
    for pattern in exported:
        print("exported", pattern)
