# Compares the visualizer file for Visual Studio, $natvis, with the classes in $types. It must equal
# $written, which was just generated from the classes, and its types and the expressions in them
# must exist. Writes the faults to $faults. Run by gdb.

import re
import xml.etree.ElementTree as ElementTree

import gdb

SCHEMA = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"


def variable(name):
    return gdb.convenience_variable(name).string()


def expressions(element):
    """The expressions in an element, without format specifiers."""
    text = element.text or ""
    if element.tag == SCHEMA + "DisplayString":
        text = text.replace("{{", "").replace("}}", "")
        yield from (found.split(",")[0] for found in re.findall(r"\{([^}]*)\}", text))
    elif element.tag in (SCHEMA + "Item", SCHEMA + "ExpandedItem", SCHEMA + "StringView"):
        yield text.split(",")[0]
    if "Condition" in element.attrib:
        yield element.attrib["Condition"]
    for child in element:
        yield from expressions(child)


def check(natvis):
    """The faults, one per line, and the expressions of each type."""
    faults = []
    evaluated = {}
    try:
        capacity = "<16>"
        gdb.lookup_type("API::FixedStringC" + capacity)
    except gdb.error:
        capacity = "<(unsigned short)16>"  # as clang writes it
    for described in ElementTree.parse(natvis).getroot():
        name = described.attrib["Name"].replace("<*>", capacity)
        evaluated[name] = set()
        for expression in expressions(described):
            # Names that begin with a lower-case letter are fields, others are classes.
            in_object = re.sub(r"(?<![\w:])([a-z]\w*)", r"((%s*)0)->\1" % name, expression)
            evaluated[name].add(expression)
            try:
                gdb.parse_and_eval("sizeof(%s)" % in_object)
            except gdb.error as error:
                faults.append("%s: %s: %s" % (name, expression, error))
    return faults, evaluated


def main():
    gdb.execute("file " + variable("types"))
    gdb.execute("set language c++")
    faults, evaluated = check(variable("natvis"))
    for name, field in (("ODM::PositionC", "quality_"), ("SDI::GPSMeasDataImplC", "setMask_"),
                        ("SDI::ScanDomeAreaImplC", "type_"), ("API::VersionC", "word_ >> 26")):
        if field not in evaluated.get(name, ()):
            faults.append("%s: %s is not shown" % (name, field))
    with open(variable("natvis"), "rb") as committed, open(variable("written"), "rb") as written:
        if committed.read() != written.read():
            faults.append("%s is out of date: build the target renew_natvis" % variable("natvis"))
    with open(variable("faults"), "w", encoding="utf-8") as out:
        out.writelines(fault + "\n" for fault in faults)


main()
