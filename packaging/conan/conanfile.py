"""Builds the source tree that contains this recipe: conan create packaging/conan"""

import os
import re

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load


class SurveydataConan(ConanFile):
    name = "surveydata"
    description = "Data model for the sensor data of a surveying instrument"
    settings = "os", "arch", "compiler", "build_type"
    options = {"program": [True, False]}
    default_options = {"program": False, "boost/*:header_only": True}

    def _tree(self):
        return os.path.normpath(os.path.join(self.recipe_folder, "..", ".."))

    def set_version(self):
        text = load(self, os.path.join(self._tree(), "CMakeLists.txt"))
        self.version = re.search(r"project\(surveydata VERSION ([0-9.]+)", text).group(1)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "CHANGELOG.md", "abi/*", "cmake/*", "debugger/*",
                        "packaging/*", "surveydata/*", "tools/*"):
            copy(self, pattern, src=self._tree(), dst=self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        self.requires("boost/[>=1.74 <2]", transitive_headers=True)
        if self.options.program:
            self.requires("cli11/[>=2.1 <3]")
            self.requires("fmt/[>=9]")
            self.requires("nlohmann_json/[>=3.11 <4]")

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["SURVEYDATA_BUILD_TESTS"] = False
        toolchain.cache_variables["SURVEYDATA_BUILD_EXAMPLES"] = False
        toolchain.cache_variables["SURVEYDATA_BUILD_BENCHMARKS"] = False
        toolchain.cache_variables["SURVEYDATA_BUILD_TOOLS"] = bool(self.options.program)
        toolchain.cache_variables["SURVEYDATA_INSTALL"] = True
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "copyright", src=os.path.join(self.source_folder, "packaging", "debian"),
             dst=os.path.join(self.package_folder, "licenses"))
        CMake(self).install()

    def package_info(self):
        # The library's own package files list the targets.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs.append(os.path.join("lib", "cmake", "surveydata"))
