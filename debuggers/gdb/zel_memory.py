"""What the library's objects hold, read from the memory of a program that gdb looks at.

Everything is read from the memory of the program by the layouts below, not by names of members: so values show also
where neither the library nor the program has debug information of a class. Each layout lists the members in their
order, private types of the sources included; the tests print a value of each, so a change of a class shows there.

A printer must bear what a debugger meets: objects before their construction, after their end, or overwritten. Counts
are checked before they are believed, chains are followed for as many steps as the object counts entries, and memory
that cannot be read ends what is shown with a word about it.
"""

import struct

import gdb

# Of struct.unpack, with the padding of the C++ compilers on x86-64: P pointer, i and I int, ? bool, f float, x nothing.
STRING = "32xII"  # text inside or pointer at 0; length, room
UNICODE = "64xII"  # the same; length, room in 31 bits and isNull in one
COLLECTION = "PPiiI"  # vtable, elements, size, capacity, size of an element
INDEX_ARRAYS = "PPiii?xxx"  # keys, values, count, allocated, increment, isView
INDEX = "80x80x" + INDEX_ARRAYS + "ixxxxP"  # keys and values inside; the arrays; settled, search
SEARCH = "256xPixxxxQiiPPP"  # ... staged entries, their room, words, slots, records
RECORD = "PPixxxx"  # key, value, place
INDEX_OF_BLOCKS = INDEX_ARRAYS + "i"  # ... numbers in a key
MAP = "PPii"  # vtable, table, count, buckets
NODE = "PPP"  # key, value, next
FILE_NAME = "PP"  # vtable, block
FILE_NAME_BLOCK = "ii?xxx"  # count, length; the text follows
ATTRIBUTE = "8si"  # value, type
LIST_OF_ATTRIBUTE = 16  # where the collection stands in what an attribute of a list points to
SHARED_TEXT = "III"  # owners, length, room; the text follows
COUNTED = "PIxxxxPP"  # vtable, references, the first two members of TAPObject, TAPName and TAPPath
INDEX_OF_OBJECT = 16  # where the index stands in what an object points to
PATH_NODE = "PPii"  # parent, name, length, owners

LONGEST_TEXT = 200  # of keys and parts; texts by themselves are cut by gdb's `print elements`
LONGEST_PATH = 1000


class Broken(Exception):
    """What an object holds cannot be right."""


def bytes_at(address, size):
    try:
        return gdb.selected_inferior().read_memory(address, size).tobytes()
    except (gdb.MemoryError, OverflowError):
        raise Broken(f"no memory at {address:#x}")


def read(address, layout):
    return struct.unpack(layout, bytes_at(address, struct.calcsize(layout)))


def check(holds, what):
    if not holds:
        raise Broken(what)


def short_text(address, length=None):
    """A text for a line: cut, and with escapes for what is not UTF-8. It ends at the NUL when no length is given."""
    if length is None:
        data = b""
        while len(data) < LONGEST_TEXT and b"\0" not in data:
            # Never over the end of a page, behind which there may be nothing.
            data += bytes_at(address + len(data), 64 - (address + len(data)) % 64)
        data = data.split(b"\0")[0]
    else:
        data = bytes_at(address, min(length, LONGEST_TEXT + 1)) if length > 0 else b""
    text = data[:LONGEST_TEXT].decode("utf-8", "backslashreplace")
    return text if len(data) <= LONGEST_TEXT else text + "..."


def items(address, size, layout):
    """The elements of an array, read in runs."""
    width = struct.calcsize(layout)
    run = 512
    for first in range(0, size, run):
        yield from struct.iter_unpack(layout, bytes_at(address + first * width, min(run, size - first) * width))


def string_span(address):
    length, room = read(address, STRING)
    room &= 0x7FFFFFFF  # beside the mark of an incomplete text
    check(length <= (room or 31), f"{length} characters in room for {room or 31}")
    return (read(address, "P")[0] if room else address), length


def unicode_span(address):
    length, room = read(address, UNICODE)
    is_null, room = room >> 30 & 1, room & 0x3FFFFFFF
    check(length <= (room or 16), f"{length} characters in room for {room or 16}")
    return (None if is_null else read(address, "P")[0] if room else address), length


def file_name_span(address):
    block = read(address, FILE_NAME)[1]
    if not block:
        return None, 0
    count, length, _ = read(block, FILE_NAME_BLOCK)
    check(count > 0 and length > 0, f"{count} names share a text of {length} characters")
    return block + struct.calcsize(FILE_NAME_BLOCK), length


def shared_text_span(block):
    if not block:
        return 0, 0
    owners, length, room = read(block, SHARED_TEXT)
    check(owners > 0 and length <= room, f"{length} characters in room for {room}")
    return block + struct.calcsize(SHARED_TEXT), length


def collection_span(address):
    _, elements, size, capacity, width = read(address, COLLECTION)
    check(0 <= size <= capacity and width in (4, 8), f"{size} elements of {width} bytes in room for {capacity}")
    return elements, size


def sizes(count, room):
    check(0 <= count <= room, f"{count} entries in room for {room}")
    return count


def index_size(address):
    _, _, count, allocated, *_ = read(address, INDEX)
    return sizes(count, allocated)


def index_entries(address):
    """Keys in order; those that wait in the staging area stand between the others."""
    keys, values, count, allocated, *_, search = read(address, INDEX)
    staged = []
    if search:
        *_, waiting, room, _, slots, records = read(search, SEARCH)
        check(0 <= waiting <= min(room, count), f"{waiting} entries wait in room for {room}")
        staged = [read(records + slot * struct.calcsize(RECORD), RECORD) for (slot,) in items(slots, waiting, "i")]
    settled = sizes(count, allocated) - len(staged)
    entries = zip(items(keys, settled, "P"), items(values, settled, "P"))
    for place, ((key,), (value,)) in enumerate(entries):
        while staged and staged[0][2] <= place:
            yield staged.pop(0)[:2]
        yield key, value
    for record in staged:
        yield record[:2]


def map_size(address):
    _, table, count, buckets = read(address, MAP)
    check(count >= 0 and buckets >= 0 and (table or not count), f"{count} entries in {buckets} buckets")
    return count


def map_entries(address):
    _, table, count, buckets = read(address, MAP)
    left = map_size(address)
    for (node,) in items(table, buckets if table else 0, "P"):
        while node:
            check(left > 0, f"more than {count} entries")
            left -= 1
            key, value, node = read(node, NODE)
            yield key, value


def path_names(address):
    names = []
    node = read(address, COUNTED)[2]
    while node and len(names) < LONGEST_PATH:
        node, name, _, _ = read(node, PATH_NODE)
        names.append(short_text(*shared_text_span(read(name, COUNTED)[2])) if name else "")
    return ("..." if node else "") + "/".join(reversed(names))
