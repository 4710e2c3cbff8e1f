# Loaded by gdb with the library, or manually (`source`) afterwards. Loads the printers from a
# folder next to the library.

import os

import gdb


def surveydata_attach(objfile):
    folder = os.path.join(os.path.dirname(os.path.realpath(objfile.filename)), "surveydata")
    path = os.path.join(folder, "printers.py")
    with open(path, encoding="utf-8") as source:
        module = {"__name__": "surveydata"}  # gdb runs all scripts in one namespace
        exec(compile(source.read(), path, "exec"), module)
    module["attach"](objfile, folder)


if gdb.current_objfile() is not None:
    surveydata_attach(gdb.current_objfile())
else:
    for loaded in gdb.objfiles():
        if os.path.basename(loaded.filename or "").startswith("libsurveydata.so"):
            surveydata_attach(loaded)
