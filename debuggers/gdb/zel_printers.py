"""Shows the library's strings, lists, maps, indexes, file names and attributes in gdb (README.md tells how to load it).

A printer is made for a value, and asked for its line and, where it has them, its parts. What is inside comes from
zel_memory; what cannot be right there becomes a word about it, never an error of gdb.
"""

import struct

import gdb
import gdb.printing
import zel_memory as memory
from zel_memory import Broken, check, items, read, short_text


def pointer(address, type_name="void"):
    try:
        return gdb.Value(address).cast(gdb.lookup_type(type_name).pointer())
    except gdb.error as fault:  # nothing in the program tells what the class is
        raise Broken(fault)


class Printer:
    kind = None  # the hint that tells gdb how to lay parts out

    def __init__(self, value):
        self.value = value
        self.name = value.type.strip_typedefs().unqualified().name
        self.address = int(value.address) if value.address is not None else 0

    def to_string(self):
        try:
            return self.line()
        except Broken as fault:
            return f"<broken {self.name}: {fault}>"

    def display_hint(self):
        return self.kind


class Parts(Printer):
    """Something that has parts; a fault among them ends them."""

    def children(self):
        try:
            self.line()  # what cannot be counted is not walked
        except Broken:
            return
        try:
            yield from self.parts()
        except Broken as fault:
            if self.kind == "map":
                yield "fault", "..."
            yield "broken", f"<{fault}>"

    def entries(self, pairs):
        for number, (key, value) in enumerate(pairs):
            yield f"key {number}", key
            yield f"value {number}", value


class Text(Printer):
    kind = "string"
    span = staticmethod(memory.string_span)
    character = "char"
    encoding = ""

    def line(self):
        text, length = self.span(self.address)
        if text is None:
            return "<null>"
        if length == 0:
            return ""
        size = gdb.lookup_type(self.character).sizeof
        memory.bytes_at(text, size), memory.bytes_at(text + (length - 1) * size, size)
        return pointer(text, self.character).lazy_string(self.encoding, length)

    def display_hint(self):
        try:
            return None if isinstance(self.line(), str) and self.line() else self.kind
        except Broken:
            return None


class UnicodeText(Text):
    span = staticmethod(memory.unicode_span)
    character = "char32_t"
    encoding = "UTF-32LE"


class FileName(Text):
    span = staticmethod(memory.file_name_span)


class Name(Text):
    @staticmethod
    def span(address):
        return memory.shared_text_span(read(address, memory.COUNTED)[2])


class Path(Printer):
    def line(self):
        return f"TAPPath {memory.path_names(self.address)}"


class Collection(Parts):
    kind = "array"

    def line(self):
        return f"{self.name} of {memory.collection_span(self.address)[1]}"

    def element(self):
        """The type of the elements, and whether they are values behind pointers."""
        owner = self.value.type.strip_typedefs().unqualified()
        while owner.name and not owner.name.startswith(("ZELListVal<", "ZELListPtr<")):
            bases = [field.type for field in owner.fields() if field.is_base_class]
            if owner.name == "ZELRawCollint":
                return gdb.lookup_type("int"), False
            if not bases or owner.name == "ZELRawCollPV":
                return gdb.lookup_type("void").pointer(), False
            owner = bases[0].strip_typedefs()
        return owner.template_argument(0).pointer(), owner.name.startswith("ZELListVal<")

    def parts(self):
        kind, is_behind = self.element()
        elements, size = memory.collection_span(self.address)
        for number, (data,) in enumerate(items(elements, size, "i" if kind.sizeof == 4 else "P"), 1):
            value = gdb.Value(data).cast(kind)
            yield f"[{number}]", value.dereference() if is_behind and data else value


class Index(Parts):
    kind = "map"

    def line(self):
        return f"{self.name} of {memory.index_size(self.address)}"

    def parts(self):
        return self.entries((short_text(key), pointer(value)) for key, value in memory.index_entries(self.address))


class Map(Parts):
    kind = "map"

    def line(self):
        return f"{self.name} of {memory.map_size(self.address)}"

    def parts(self):
        return self.entries((short_text(key), pointer(value)) for key, value in memory.map_entries(self.address))


class FlatIndex(Parts):
    """An index of numbers or of blocks: two arrays and nothing else."""

    kind = "map"

    def layout(self):
        if self.name == "TAIndexI":
            keys, values, count, allocated, *_ = read(self.address, memory.INDEX_ARRAYS)
            return keys, "i", None, values, memory.sizes(count, allocated)
        keys, values, count, allocated, *_, width = read(self.address, memory.INDEX_OF_BLOCKS)
        check(0 <= width <= memory.LONGEST_TEXT, f"keys of {width} numbers")
        return keys, "P", width, values, memory.sizes(count, allocated)

    def line(self):
        return f"{self.name} of {self.layout()[-1]}"

    def parts(self):
        keys, layout, width, values, count = self.layout()
        return self.entries((key if width is None else self.block(key, width), pointer(value))
                            for (key,), (value,) in zip(items(keys, count, layout), items(values, count, "P")))

    @staticmethod
    def block(key, width):
        numbers = struct.unpack(f"{width}i", memory.bytes_at(key, 4 * width))
        return " ".join(map(str, numbers))


class Attribute(Parts):
    names = ("null", "text", "file name", "object", "list", "integer", "path")

    def content(self):
        data, kind = read(self.address, memory.ATTRIBUTE)
        check(0 <= kind < len(self.names), f"no kind {kind}")
        return self.names[kind], struct.unpack("P", data)[0], struct.unpack("i", data[:4])[0]

    def line(self):
        kind, target, integer = self.content()
        if kind == "integer":
            return f"integer {integer}"
        if kind == "text":
            return f'text "{short_text(*memory.shared_text_span(target))}"'
        if kind == "file name":
            return f'file name "{short_text(*memory.file_name_span(target))}"'
        if kind == "list":
            return f"list of {memory.collection_span(target + memory.LIST_OF_ATTRIBUTE)[1]}"
        if kind == "path" and target:
            return f"path {memory.path_names(target)}"
        return kind if kind == "null" else f"{kind} {target:#x}"

    def parts(self):
        kind, target, _ = self.content()
        if kind == "list":
            elements, size = memory.collection_span(target + memory.LIST_OF_ATTRIBUTE)
            for number, (element,) in enumerate(items(elements, size, "P"), 1):
                yield f"[{number}]", pointer(element, "TAPAttr").dereference()


class Object(Parts):
    def line(self):
        contents, path = read(self.address, memory.COUNTED)[2:]
        size = memory.index_size(contents + memory.INDEX_OF_OBJECT) if contents else 0
        return f"TAPObject of {size}" + (f" at {memory.path_names(path)}" if path else "")

    def parts(self):
        contents = read(self.address, memory.COUNTED)[2]
        for key, value in memory.index_entries(contents + memory.INDEX_OF_OBJECT) if contents else ():
            yield short_text(key), pointer(value, "TAPAttr").dereference() if value else pointer(0)


def register(owner):
    """Adds the printers to an object file of gdb, or to gdb itself for None."""
    printers = gdb.printing.RegexpCollectionPrettyPrinter("ZELToolsInfrastructure")
    for name, pattern, printer in (
            ("strings", "ZELString", Text), ("Unicode strings", "ZELUnicodeString", UnicodeText),
            ("file names", "TAFileName", FileName), ("names", "TAPName", Name), ("paths", "TAPPath", Path),
            ("lists", "ZELRawColl(PV|int)|ZELList(Ptr|Val)<.*>|ZELListVal(ZELString|TAFileName|TAPAttr)", Collection),
            ("maps", "ZELHash(SC|RW)Map", Map), ("indexes", "TAIndex", Index),
            ("flat indexes", "TAIndex[BI]", FlatIndex), ("attributes", "TAPAttr", Attribute),
            ("objects", "TAPObject", Object)):
        printers.add_printer(name, f"^({pattern})$", printer)
    gdb.printing.register_pretty_printer(owner, printers, replace=True)
