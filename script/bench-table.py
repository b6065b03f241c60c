"""Prints the medians of a Google Benchmark result as one table per operation: ours, each peer, and peer : ours.

Benchmarks are named operation/contender/size; the contender "ours" is the library's. Counters (memory per entry, for
instance) follow as tables of their own.
"""

import json
import sys


def read(path):
    """{measure: {operation: {size: {contender: value}}}} of the medians."""
    known = {"family_index", "per_family_instance_index", "repetitions", "repetition_index", "threads", "iterations"}
    tables = {}
    with open(path) as file:
        for entry in json.load(file)["benchmarks"]:
            if entry.get("aggregate_name") != "median":
                continue
            operation, contender, size = (entry["run_name"].split("/") + ["-"])[:3]
            clock = "real_time" if entry["run_name"].endswith("/real_time") else "cpu_time"
            measures = {"ns": entry[clock] * {"ns": 1, "us": 1e3, "ms": 1e6}[entry["time_unit"]]}
            if "items_per_second" in entry:
                measures["ns per item"] = 1e9 / entry["items_per_second"]
                del measures["ns"]
            for name, value in entry.items():
                if isinstance(value, float) and name not in known | {"real_time", "cpu_time", "items_per_second"}:
                    measures[name] = value
            for measure, value in measures.items():
                tables.setdefault(measure, {}).setdefault(operation, {}).setdefault(size, {})[contender] = value
    return tables


def main():
    family, path = sys.argv[1:3]
    for measure, operations in read(path).items():
        for operation, sizes in sorted(operations.items()):
            peers = sorted({name for row in sizes.values() for name in row if name != "ours"})
            heads = [f"{operation} ({measure})", "ours"] + [text for peer in peers for text in (peer, "ratio")]
            rows = []
            for size, row in sorted(sizes.items(), key=lambda item: (len(item[0]), item[0])):
                ours = row.get("ours", float("nan"))
                cells = [size, f"{ours:.4g}"]
                for peer in peers:
                    value = row.get(peer, float("nan"))
                    cells += [f"{value:.4g}", f"{value / ours:.2f}"]
                rows.append(cells)
            widths = [max(len(cells[i]) for cells in [heads] + rows) for i in range(len(heads))]
            print()
            for cells in [heads] + rows:
                print("  ".join(cell.ljust(width) if i == 0 else cell.rjust(width)
                                for i, (cell, width) in enumerate(zip(cells, widths))))


main()
