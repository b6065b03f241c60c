#!/usr/bin/env python3
"""check_table.py NM TABLE OBJECT...: names the calls of the system that the objects make and that the table of faults
lacks. A call that cannot fail, or whose failure has no effect, stands behind "exempt:" in a comment of the table."""
import re
import subprocess
import sys

nm, table, *files = sys.argv[1:]
objects = [file for file in files if file.endswith((".o", ".obj"))]  # among precompiled headers
text = open(table, encoding="utf-8").read()
known = set(re.findall(r"^[A-Z]+\([^,]*, (\w+)", text, re.MULTILINE))
for line in re.findall(r"^// exempt: (.*)$", text, re.MULTILINE):
    known.update(line.split())
listed = subprocess.run([nm, "--format=posix", *objects], capture_output=True, text=True, check=True).stdout
symbols = [line.split() for line in listed.splitlines() if line and not line.endswith(":")]
defined = {name for name, kind, *_ in symbols if kind not in "Uw"}
called = {name for name, kind, *_ in symbols if kind == "U"} - defined
missing = sorted(name for name in called if not name.startswith(("_Z", "__cxa", "_Unwind", "__gxx"))
                 and not {name, name.removeprefix("__imp_")} & known)
print("not in the table of faults:", *missing) if missing else print("complete")
sys.exit(1 if missing else 0)
