"""Whether the views name classes and members that exist: no debugger that reads them runs here.

usage: natvis.py VIEWS DIRECTORY...   where the headers and sources are
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as xml

code = "".join(path.read_text() for folder in sys.argv[2:] for path in pathlib.Path(folder).rglob("*.h"))
words = set(re.findall(r"\w+", code))
faults = []
for view in xml.parse(sys.argv[1]).getroot():
    name = re.match(r"\w+", view.get("Name"))[0]
    if not re.search(rf"\b(class|struct) (ZEL_API )?{name}\b", code):
        faults.append(f"no class {name}")
    known = words | {variable.get("Name") for variable in view.iter("{*}Variable")}
    expressions = [part.text or "" for part in view.iter()] + [part.get("Condition", "") for part in view.iter()]
    # Members stand behind an arrow, a point or "::", or begin with an underscore.
    for member in re.findall(r"(?:->|\.|::)(\w+)|\b(_\w+)", " ".join(expressions)):
        if "".join(member) not in known:
            faults.append(f"{name}: no member {''.join(member)}")
print("\n".join(faults) or "every class and member exists")
sys.exit(1 if faults else 0)
