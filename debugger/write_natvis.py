# Writes the visualizer file for Visual Studio to $natvis, from the debug information in $types. Run
# by gdb.

import re
from xml.sax.saxutils import escape, quoteattr

import gdb

HEAD = """\
<?xml version="1.0" encoding="utf-8"?>
<!-- Shows the library's objects in Visual Studio. Written by the target renew_natvis. -->
<AutoVisualizer xmlns="http://schemas.microsoft.com/vstudio/debugger/natvis/2010">
  <Type Name="API::FixedStringC&lt;*&gt;">
    <DisplayString>{data_,[length_]su}</DisplayString>
    <StringView>data_,[length_]su</StringView>
  </Type>
  <Type Name="API::VersionC">
    <DisplayString>{word_ &gt;&gt; 26}.{(word_ &gt;&gt; 19) &amp; 127}.{word_ &amp; 4095}, kind {(word_ &gt;&gt; 16) &amp; 7}, variant {(word_ &gt;&gt; 12) &amp; 15}</DisplayString>
  </Type>
"""
TAIL = "</AutoVisualizer>\n"
SUMMARY = 4  # number of fields in the summary line


def classes():
    """The classes in the namespaces ODM and SDI, by name."""
    for namespace in ("ODM", "SDI"):
        listed = gdb.execute("info types -q ^%s::" % namespace, to_string=True)
        for name in re.findall(r"^\d+:\t(%s::\w+);$" % namespace, listed, re.MULTILINE):
            if gdb.lookup_type(name).strip_typedefs().code == gdb.TYPE_CODE_STRUCT:
                yield gdb.lookup_type(name)


def bases(class_type):
    return [field.type for field in class_type.fields() if field.is_base_class]


def derives_from(class_type, name):
    return class_type.name == name or any(derives_from(base, name) for base in bases(class_type))


def implementation_read_by(public):
    if public.name.startswith("API::HandleC<"):
        return public.template_argument(0).name
    for base in bases(public):
        if derives_from(base, "API::BaseC") and base.name != "API::BaseC":
            return implementation_read_by(base)
    return public.name[:-1] + "ImplC"


def fields_of(class_type):
    for field in class_type.fields():
        if field.is_base_class:
            if field.type.name != "API::ImplObjectC":
                yield from fields_of(field.type)
        elif hasattr(field, "bitpos") and not field.artificial:
            field_type = field.type.strip_typedefs()
            if field_type.code != gdb.TYPE_CODE_STRUCT or field_type.fields():
                yield field.name, field_type


def describe_public(class_type):
    impl = "*(%s*)impl_" % implementation_read_by(class_type)
    return [
        '  <DisplayString Condition="impl_ == 0">no implementation</DisplayString>',
        "  <DisplayString>{%s}</DisplayString>" % impl,
        "  <Expand>",
        '    <ExpandedItem Condition="impl_ != 0">%s</ExpandedItem>' % impl,
        '    <Item Name="[implementation]">impl_</Item>',
        "  </Expand>"]


def describe_implementation(class_type):
    fields = list(fields_of(class_type))

    def expression(field):
        name, field_type = field
        is_text = (field_type.code == gdb.TYPE_CODE_ARRAY
                   and field_type.target().strip_typedefs().name == "char16_t")
        return name + ",su" if is_text else name

    summary = ["%s={%s}" % (field[0], expression(field)) for field in fields[:SUMMARY]]
    if len(fields) > SUMMARY:
        summary.append("...")
    lines = ["  <DisplayString>{{ %s }}</DisplayString>" % " ".join(summary), "  <Expand>"]
    for field in fields:
        lines.append("    <Item Name=%s>%s</Item>" % (quoteattr(field[0]), escape(expression(field))))
    lines += ['    <Item Name="[owner]">owner_</Item>', "  </Expand>"]
    return lines


def write(path):
    with open(path, "w", encoding="utf-8", newline="\n") as out:
        out.write(HEAD)
        for class_type in classes():
            if derives_from(class_type, "API::BaseC"):
                lines = describe_public(class_type)
            elif derives_from(class_type, "API::ImplObjectC"):
                lines = describe_implementation(class_type)
            else:
                continue
            out.write("  <Type Name=%s>\n" % quoteattr(class_type.name))
            out.writelines("  %s\n" % line for line in lines)
            out.write("  </Type>\n")
        out.write(TAIL)


gdb.execute("file " + gdb.convenience_variable("types").string())
write(gdb.convenience_variable("natvis").string())
