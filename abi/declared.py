#!/usr/bin/env python3
"""Compares the list of exported symbols with the declarations in the headers.

    abi/declared.py CLANG

Every member that an exported class declares must be exported, on ELF systems and on Windows, unless it
is deleted or always inline: all variants of constructors and destructors, and the vtable of a class that
has one. The same holds for exported functions, and for template instances that the headers declare
extern. Classes with virtual functions, fixed strings and versions must declare their own copying and
assignment, and with virtual functions their destructor: implicitly declared members are inline and
compiled into callers.

clang parses the headers and mangles the names.
"""

import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
NAMESPACES = ("API", "SDI", "ODM")
C_INTERFACE = "surveydata_"
MEMBERS = ("CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl")
VALUES = ("FixedStringC", "VersionC")


def declarations(clang):
    """Yields the declarations of each namespace and of the C interface. clang prints consecutive JSON
    objects."""
    command = [clang, "-std=c++20", "-fsyntax-only", "-x", "c++", f"-I{ROOT}", "-Xclang",
               "-ast-dump=json", ROOT / "surveydata/surveydata.h", "-Xclang"]
    for prefix in [f"{namespace}::" for namespace in NAMESPACES] + [C_INTERFACE]:
        text = subprocess.run(command + [f"-ast-dump-filter={prefix}"], check=True,
                              capture_output=True, text=True).stdout
        decoder = json.JSONDecoder()
        at = 0
        while at < len(text):
            node, at = decoder.raw_decode(text, at)
            yield node
            while at < len(text) and text[at].isspace():
                at += 1


def inner(node, *kinds):
    return [child for child in node.get("inner", []) if child["kind"] in kinds]


def variants(member, is_abstract):
    """The symbols of a member. Constructors and destructors have several variants."""
    name = member["mangledName"]
    if member["kind"] == "CXXConstructorDecl":
        uses = ("C2",) if is_abstract else ("C1", "C2")
        return [re.sub(r"C1(?=E|I)", use, name, count=1) for use in uses]
    if member["kind"] == "CXXDestructorDecl":
        uses = ["D1", "D2"] + (["D0"] if is_virtual(member) else [])
        return [name.replace("D1Ev", use + "Ev") for use in uses]
    return [name]


def is_virtual(member):
    return member.get("virtual", False) or bool(inner(member, "OverrideAttr"))


def needs_export(member):
    """Whether a declared member must be exported."""
    if "mangledName" not in member or member.get("isImplicit"):
        return False
    if member.get("explicitlyDeleted") or member.get("explicitlyDefaulted") == "deleted":
        return False
    if member.get("pure"):
        return False
    return not inner(member, "AlwaysInlineAttr")


def of_class(node, required, faults):
    data = node["definitionData"]
    is_polymorphic = data.get("isPolymorphic", False)
    is_abstract = data.get("isAbstract", False)
    for member in inner(node, *MEMBERS):
        if not needs_export(member):
            continue
        required.update(variants(member, is_abstract))
        is_defined = inner(member, "CompoundStmt") or "explicitlyDefaulted" in member
        if is_defined and node["name"] not in VALUES:
            faults.append(f"{node['name']} defines {member['name']} in its header")
    for template in inner(node, "FunctionTemplateDecl"):
        for instance in inner(template, *MEMBERS):
            if inner(instance, "VisibilityAttr"):
                required.update(variants(instance, is_abstract))
    if is_polymorphic or node["name"] in VALUES:
        # Copying that is not declared is deleted because of a base, or implicit.
        is_copied = "CXXConstructorDecl" not in [
            member["kind"] for member in inner(node, *MEMBERS)
            if member.get("isImplicit") and member.get("explicitlyDefaulted") == "deleted"]
        if is_copied and not (data["copyCtor"].get("userDeclared") and
                              data["copyAssign"].get("userDeclared")):
            faults.append(f"{node['name']} does not declare its copying and assignment")
        if is_polymorphic and not data["dtor"].get("userDeclared"):
            faults.append(f"{node['name']} does not declare its destructor")
    if is_polymorphic:
        destructors = inner(node, "CXXDestructorDecl")
        if destructors:
            name = destructors[0]["mangledName"]
            required.add(re.sub(r"^_ZN(.*)D1Ev$", r"_ZTVN\1E", name))


def required_symbols(clang):
    required = set()
    faults = []
    classes = 0
    for node in declarations(clang):
        if node["kind"] in ("CXXRecordDecl", "ClassTemplateSpecializationDecl"):
            if "definitionData" in node and inner(node, "VisibilityAttr"):
                if node["name"] in ("HandleC", "ImplC", "GPSMeasFieldsC"):
                    continue  # bases that are instantiated for each class
                of_class(node, required, faults)
                classes += 1
        elif node["kind"] == "FunctionDecl" and inner(node, "VisibilityAttr"):
            required.add(node["mangledName"])
        elif node["kind"] == "FunctionTemplateDecl":
            required.update(instance["mangledName"] for instance in inner(node, "FunctionDecl")
                            if inner(instance, "VisibilityAttr"))
    return required, faults, classes


def listed():
    """The symbols in the list, for ELF systems and for Windows."""
    elf, windows = set(), set()
    for line in (ROOT / "abi/surveydata.exports").read_text().splitlines():
        if line.startswith("#"):
            continue
        _, platforms, symbol = line.split()
        if platforms in ("both", "elf"):
            elf.add(symbol)
        if platforms in ("both", "windows"):
            windows.add(symbol)
    return elf, windows


def windows_name(symbol):
    """The same symbol on Windows. 64-bit types and sizes, `long` and `unsigned long` on ELF systems, are
    `long long` and `unsigned long long` there, and FILE has another name."""
    result = ""
    if symbol.startswith(C_INTERFACE):
        return symbol
    while symbol:
        # A length with its name, a literal, a substitution, or one letter.
        token = re.match(r"\d+|L[a-z]\d+E|S[0-9A-Z]*_|S[a-z]|.", symbol)[0]
        if token.isdigit():
            token = symbol[:len(token) + int(token)]
            result += token.replace("8_IO_FILE", "6_iobuf")
        elif token.startswith("S"):
            result += token
        else:
            result += token.replace("l", "x").replace("m", "y")
        symbol = symbol[len(token):]
    return result


def main():
    required, faults, classes = required_symbols(sys.argv[1])
    elf, windows = listed()
    for symbol in sorted(required - elf):
        faults.append(f"declared, but not in the list: {symbol}")
    for symbol in sorted(required):
        if not {symbol, windows_name(symbol)} & windows:
            faults.append(f"declared, but without a Windows ordinal: {symbol}")
    for fault in faults:
        print(fault)
    print(f"{len(required)} symbols of {classes} classes are declared")
    return 1 if faults or classes < 50 else 0


if __name__ == "__main__":
    sys.exit(main())
