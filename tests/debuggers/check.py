"""Runs in gdb on the program of objects.cpp: compares how each object looks, then shows printers what never was an object.

The printers come with the library, as for a user: gdb loads them when it opens it.
"""

import itertools
import random
import re

import gdb

ROWS = (
    ("shortText", r'"short \"text\""'),
    ("longText", '"a text that is too long for the inside of its object"'),
    ("noText", '""'),
    ("unicode", 'U"\u00e4rger"'),
    ("longUnicode", 'U"\u20ac and sixteen more characters"'),
    ("null", "<null>"),
    ("texts", 'ZELListValZELString of 3 = {"one", "two", "three"}'),
    ("pointers", "ZELListPtr<int> of 1 = {@}"),
    ("raw", "ZELRawCollPV of 1 = {0x0}"),
    ("numbers", "ZELRawCollint of 3 = {-1, 0, 1}"),
    ("map", "ZELHashSCMap of 2 = {[] = @, [key] = 0x0}"),
    ("often", "ZELHashRWMap of 100 = {[88] = 0x0, [89] = 0x0, [90] = 0x0...}"),
    ("circle", "{<ZELHashSCMap> = ZELHashSCMap of 1 = {[round] = 0x0, [...] = <more than 1 entries>}, <No data fields>}"),
    ("small", "TAIndex of 2 = {[a] = 0x0, [b] = 0x0}"),
    ("large", "TAIndex of 300 = {[1000] = 0x0, [1001] = 0x0, [1002] = 0x0...}"),
    ("integers", "TAIndexI of 1 = {[-5] = 0x0}"),
    ("blocks", "TAIndexB of 1 = {[1 -2] = 0x0}"),
    ("file", r'"a\\b.txt"'),
    ("noFile", "<null>"),
    ("*name", '"run"'),
    ("*path", "TAPPath run"),
    ("*root", "TAPObject of 1 at run = {child = object @}"),
    ("nothing", "null"),
)
CHILD = ('TAPObject of 5 at run/child = {file = file name "a\\b.txt", list = list of 2 = {[1] = text "element", '
         '[2] = integer 4}, path = path run/child, runs = integer 3, title = text "scan"}')
CLASSES = ("ZELString ZELUnicodeString ZELListValZELString ZELRawCollPV ZELRawCollint ZELHashSCMap ZELHashRWMap TAIndex "
           "TAIndexB TAIndexI TAFileName TAPAttr TAPName TAPPath TAPObject").split()
GARBAGE_WORDS = 64


def compare_rows():
    faults = 0
    for expression, expected in ROWS + (("*child", CHILD),):
        elements = 6 if expected.endswith("...}") else 200
        shown = re.sub(r"0x[0-9a-f]{2,}", "@", gdb.parse_and_eval(expression).format_string(max_elements=elements))
        if shown != expected:
            print(f"{expression}: {shown}\n  expected: {expected}")
            faults += 1
    return faults


def staged_entries_are_shown():
    keys = [text for _, text in gdb.default_visualizer(gdb.parse_and_eval("large")).children()][::2]
    return keys == [str(number) for number in range(1000, 1300)]


def show_garbage():
    """Objects made of words that lead somewhere: to themselves, to other objects, to nothing. Every part is asked for."""
    garbage = gdb.parse_and_eval("garbage")
    start = int(garbage.address)
    targets = [start + 8 * number for number in range(0, GARBAGE_WORDS, 8)]
    targets += [int(gdb.parse_and_eval(f"&{name}")) for name in ("longText", "map", "large", "texts", "file", "*child")]
    words = targets + [0, 1, 2, 5, 0x100000001, 0x7FFFFFFF00000003, 0x200000001, 2**64 - 1, 0x1111111111111111]
    chance = random.Random(1)
    inferior = gdb.selected_inferior()
    for _ in range(200):
        for number in range(GARBAGE_WORDS):
            inferior.write_memory(start + 8 * number, chance.choice(words).to_bytes(8, "little"))
        for name in CLASSES:
            printer = gdb.default_visualizer(gdb.parse_and_eval(f"*({name}*)garbage"))
            printer.display_hint()
            shown = printer.to_string()
            assert shown is not None
            if hasattr(printer, "children"):
                for _ in itertools.islice(printer.children(), 500):
                    pass


def main():
    gdb.execute("set host-charset UTF-8")
    gdb.execute("set target-charset UTF-8")
    gdb.execute("set confirm off")
    gdb.execute("break Stop", to_string=True)
    try:
        gdb.execute("run", to_string=True)
    except gdb.error as fault:
        print(f"skipped: gdb may not run programs here: {fault}")
        gdb.execute("quit 0")
    gdb.execute("up", to_string=True)
    faults = compare_rows()
    if not staged_entries_are_shown():
        print("large: keys are missing or out of order")
        faults += 1
    show_garbage()
    print("every object looks as it should" if faults == 0 else f"{faults} objects look otherwise")
    return faults


try:
    result = main()
except Exception as fault:
    print(f"failed: {fault!r}")
    result = 1
gdb.execute("kill")
gdb.execute(f"quit {result}")
