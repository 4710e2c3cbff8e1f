# gdb printers for the objects of the library: pairs by the fields of their implementation, fixed
# strings as text, versions as numbers. `print /r` bypasses them.
#
# A stripped library has no debug information, and its callers only declare its classes: gdb shows
# them as incomplete. So `attach` loads types.o, which describes them, from the folder of this file.

import os

import gdb
import gdb.printing

NAMESPACES = ("API::", "SDI::", "ODM::")
description = None  # the file that describes the classes


class Garbage(Exception):
    """The memory does not contain an object of the expected class."""


def word(address, offset=0):
    """The pointer at `address` + `offset` pointers."""
    pointer = gdb.lookup_type("void").pointer()
    at = int(address) + offset * pointer.sizeof
    return int(gdb.Value(at).cast(pointer.pointer()).dereference())


# Classes.


def library_type(name):
    """The class as types.o describes it, or else as the program does; None if it is unknown.

    A program compiled with older headers may describe an implementation with other fields."""
    for objfile in gdb.objfiles():
        if objfile.filename == description:
            symbol = objfile.lookup_static_symbol(name, gdb.SYMBOL_STRUCT_DOMAIN)
            if symbol is not None:
                return symbol.type.strip_typedefs()
    try:
        return gdb.lookup_type(name).strip_typedefs()
    except gdb.error:
        return None


def bases(class_type):
    return [field.type for field in class_type.fields() if field.is_base_class]


def derives_from(class_type, name):
    """Whether a class is `name` or derives from it."""
    class_type = class_type.strip_typedefs()
    if class_type.name == name:
        return True
    if class_type.code != gdb.TYPE_CODE_STRUCT:
        return False
    return any(derives_from(base, name) for base in bases(class_type))


def is_ours(class_type):
    return class_type.name is not None and class_type.name.startswith(NAMESPACES)


def is_public(class_type):
    return derives_from(class_type, "API::BaseC")


def is_implementation(class_type):
    return derives_from(class_type, "API::ImplObjectC")


def implementation_read_by(public):
    """The name of the implementation class that a public class reads; None for `API::BaseC`."""
    if public.name.startswith("API::HandleC<"):
        return public.template_argument(0).name
    for base in bases(public):
        name = implementation_read_by(base)
        if name is not None:
            return name
    name = public.name[:-1] + "ImplC"
    return name if library_type(name) is not None else None


# Classes of objects, found through their vtables, without symbols.

demangled = {}


def class_name(type_info):
    mangled = gdb.Value(word(type_info, 1)).cast(gdb.lookup_type("char").pointer()).string("ascii")
    mangled = mangled.lstrip("*")
    if not mangled:
        raise Garbage
    if mangled not in demangled:
        text = gdb.execute("demangle -l c++ -- _ZTS" + mangled, to_string=True).strip()
        text = text.replace("typeinfo name for ", "", 1)
        demangled[mangled] = text
    return demangled[mangled]


def base_infos(type_info):
    """The type information of the bases; the class of `type_info` determines its layout."""
    kind = class_name(word(word(type_info), -1))
    if kind.endswith("::__si_class_type_info"):
        return [word(type_info, 2)]
    if kind.endswith("::__vmi_class_type_info"):
        uint = gdb.lookup_type("unsigned int")
        pointer = gdb.lookup_type("void").pointer()
        counts = gdb.Value(type_info + 2 * pointer.sizeof).cast(uint.pointer())
        first = type_info + 2 * pointer.sizeof + 2 * uint.sizeof
        return [word(first, 2 * i) for i in range(min(int(counts[1]), 16))]
    if kind.endswith("::__class_type_info"):
        return []
    raise Garbage


def known_class(type_info, root):
    """The nearest class of the library that derives from `root`."""
    name = class_name(type_info)
    if name.startswith(NAMESPACES):
        known = library_type(name)
        if known is not None and derives_from(known, root):
            return known
    for base in base_infos(type_info):
        known = known_class(base, root)
        if known is not None:
            return known
    return None


def identify(address, root):
    """The class name of the object at `address`, and its nearest class of the library."""
    try:
        type_info = word(word(address), -1)
        name = class_name(type_info)
        known = known_class(type_info, root)
    except (gdb.error, UnicodeError, RecursionError):
        raise Garbage
    if known is None:
        raise Garbage
    return name, known


def linked(value, root):
    """The pointer of a public object or an implementation to the other side."""
    base = library_type(root)
    if value.address is not None:
        value = value.address.cast(base.pointer()).dereference()
    else:
        value = value.cast(base)
    return int(value["impl_" if root == "API::BaseC" else "owner_"])


def links_back(address, root, to):
    """Whether the object at `address`, of a class derived from `root`, points to `to`."""
    try:
        pointer = gdb.Value(address).cast(library_type(root).pointer())
        return linked(pointer.dereference(), root) == to
    except gdb.error:
        return False


# Fields.


def text_of(units):
    """An array of `char16_t` up to its terminator."""
    low, high = units.type.range()
    length = 0
    while length <= high - low and int(units[low + length]) != 0:
        length += 1
    return units.address.cast(units.type.target().pointer()).lazy_string(length=length)


def shown(value):
    """A field in readable form."""
    value_type = value.type.strip_typedefs()
    if value_type.code == gdb.TYPE_CODE_ARRAY:
        if value_type.target().strip_typedefs().name == "char16_t" and value.address is not None:
            return text_of(value)
    elif value_type.code == gdb.TYPE_CODE_INT:
        if value_type.sizeof == 1:  # a number, not a character
            return value.cast(gdb.lookup_type("int"))
    elif (value_type.name or "").startswith("std::array<"):
        return value[value_type.fields()[0]]
    elif (value_type.name or "").startswith("std::unique_ptr<") and value.address is not None:
        owned = value_type.template_argument(0)
        if is_ours(owned) and is_public(owned):
            address = word(value.address)
            if address == 0:
                return "none"
            return gdb.Value(address).cast(owned.pointer()).dereference()
    return value


def is_empty(field_type):
    field_type = field_type.strip_typedefs()
    return field_type.code == gdb.TYPE_CODE_STRUCT and not field_type.fields()


def fields_of(value):
    """The fields by name, those of the bases first, without the link to the other side."""
    if value.type.strip_typedefs().name in ("API::BaseC", "API::ImplObjectC"):
        return
    for field in value.type.strip_typedefs().fields():
        if field.is_base_class:
            yield from fields_of(value[field])
        elif hasattr(field, "bitpos") and not field.artificial and not is_empty(field.type):
            yield field.name, shown(value[field])


class Record:
    """A struct by its fields, in readable form."""

    def __init__(self, value, hidden=()):
        self.value = value
        self.hidden = hidden

    def children(self):
        return ((name, field) for name, field in fields_of(self.value) if name not in self.hidden)


class ListBlock(Record):
    """Entries after the count are unused."""

    def children(self):
        entries = self.value["entries"]
        used = min(int(self.value["count"]), entries.type.range()[1] + 1)
        yield "head", self.value["head"]
        yield "count", shown(self.value["count"])
        for i in range(used):
            yield "entries[%d]" % i, entries[i]


class Implementation:
    def __init__(self, value):
        self.value = value
        self.note = ""
        static = value.type.unqualified().strip_typedefs()
        self.name = static.name
        if value.address is None:
            return
        try:
            _, known = identify(value.address, "API::ImplObjectC")
            if not derives_from(known, self.name):
                raise Garbage
        except Garbage:
            self.note = ", destroyed or not yet made"
            self.value = None
            return
        self.name = known.name
        self.value = value.address.cast(known.pointer()).dereference()
        owner = linked(self.value, "API::ImplObjectC")
        if owner != 0 and not links_back(owner, "API::BaseC", int(value.address)):
            self.note = ", whose owner has no link to it"

    def to_string(self):
        return self.name + self.note

    def children(self):
        return fields_of(self.value) if self.value is not None else iter(())


class Public:
    def __init__(self, value):
        self.implementation = None
        self.note = ""
        static = value.type.unqualified().strip_typedefs()
        self.name = static.name
        known = static
        address = value.address
        try:
            if address is not None:
                _, known = identify(address, "API::BaseC")
                if not derives_from(known, self.name):
                    raise Garbage
        except Garbage:
            self.note = ", destroyed or not yet made"
            return
        self.name = known.name
        impl = linked(value, "API::BaseC")
        if impl == 0:
            self.note = " without an implementation"
            return
        try:
            name, impl_type = identify(impl, "API::ImplObjectC")
        except Garbage:
            self.note = " with a link to an invalid implementation"
            return
        self.implementation = gdb.Value(impl).cast(impl_type.pointer()).dereference()
        wanted = implementation_read_by(known)
        if wanted is not None and not derives_from(impl_type, wanted):
            self.note = " with a foreign implementation, " + name
        elif name != wanted:
            self.note = " with the implementation " + name
        if address is not None and not links_back(impl, "API::ImplObjectC", int(address)):
            self.note += ", whose implementation has another owner"

    def to_string(self):
        return self.name + self.note

    def children(self):
        return fields_of(self.implementation) if self.implementation is not None else iter(())


class FixedString:
    def __init__(self, value):
        self.value = value
        self.capacity = int(value.type.strip_typedefs().template_argument(0))
        self.length = int(value["length_"])
        units = value["data_"]
        self.is_valid = self.length <= self.capacity and int(units[self.length]) == 0

    def to_string(self):
        if not self.is_valid:
            return "invalid text, length %d of %d" % (self.length, self.capacity)
        units = self.value["data_"]
        if units.address is None:
            codes = [int(units[i]) for i in range(self.length)]
            data = b"".join(code.to_bytes(2, "little") for code in codes)
            return data.decode("utf-16-le", "replace")
        unit = units.type.target().pointer()
        return units.address.cast(unit).lazy_string(length=self.length)

    def display_hint(self):
        return "string" if self.is_valid else None


class Version:
    def __init__(self, value):
        self.word = int(value["word_"])

    def to_string(self):
        bits = self.word
        kind = (bits >> 16) & 7
        letter = {2: "S", 3: "B", 4: "D", 5: "A"}.get(kind, "R")
        return "%d.%02d.%03d, kind %d (%s), variant %d" % (
            bits >> 26, (bits >> 19) & 127, bits & 4095, kind, letter, (bits >> 12) & 15)


RECORDS = {
    "GMAT::SphereAreaC": lambda value: Record(
        value, ("reserved1_", "reserved2_", "reserved3_", "reserved4_")),
    "SDI::GPSCounterPair": Record,
    "SDI::GPSExtraTime": Record,
    "SDI::GPSListBlock": ListBlock,
}


class Printers(gdb.printing.PrettyPrinter):
    def __call__(self, value):
        value_type = value.type.unqualified().strip_typedefs()
        if value_type.code != gdb.TYPE_CODE_STRUCT or value_type.name is None:
            return None
        if value_type.name in RECORDS:
            return RECORDS[value_type.name](value)
        if not is_ours(value_type):
            return None
        if value_type.name == "API::VersionC":
            return Version(value)
        if value_type.name.startswith("API::FixedStringC<"):
            return FixedString(value)
        if is_public(value_type):
            return Public(value)
        if is_implementation(value_type):
            return Implementation(value)
        return None


# Loading.


def attach(objfile, folder):
    """Registers the printers for the library `objfile`, whose classes types.o in `folder` describes."""
    global description
    gdb.printing.register_pretty_printer(objfile, Printers("surveydata"), replace=True)
    description = os.path.join(folder, "types.o")
    if any(loaded.filename == description for loaded in gdb.objfiles()):
        return
    if not os.path.exists(description):
        gdb.write("surveydata: %s is missing, so most objects are incomplete\n" % description)
        return
    quoted = description.replace("\\", "\\\\").replace('"', '\\"')
    gdb.execute('add-symbol-file "%s"' % quoted, from_tty=False, to_string=True)
