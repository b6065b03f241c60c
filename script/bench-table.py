"""bench-table.py [--markdown] RESULT: the medians of a Google Benchmark result, one table per operation.

As text: ours, and for each peer its figure and the ratio peer : ours. As Markdown: the ratios, and behind them ours.
Benchmarks are named operation/contender/size; the contender that is compared is "ours", or, where there is none of
that name, the first that begins so. Counters (memory per entry, for instance) follow as tables of their own.
"""

import json
import sys

NOT_MEASURES = {"family_index", "per_family_instance_index", "repetitions", "repetition_index", "threads", "iterations",
                "real_time", "cpu_time", "items_per_second"}
CLOCKS = {"real_time", "process_time"}  # how Google Benchmark ends a name to say what was measured


def read(path):
    """{measure: {operation: {size: {contender: value}}}} of the medians."""
    tables = {}
    with open(path) as file:
        for entry in json.load(file)["benchmarks"]:
            if entry.get("aggregate_name") != "median":
                continue
            parts = entry["run_name"].split("/")
            clock = "real_time" if "real_time" in parts else "cpu_time"
            operation, contender, size = ([part for part in parts if part not in CLOCKS] + [""])[:3]
            measures = {"ns": entry[clock] * {"ns": 1, "us": 1e3, "ms": 1e6}[entry["time_unit"]]}
            if "items_per_second" in entry:
                measures["ns per item"] = 1e9 / entry["items_per_second"]
                del measures["ns"]
            for name, value in entry.items():
                if isinstance(value, float) and name not in NOT_MEASURES:
                    measures[name] = value
            for measure, value in measures.items():
                tables.setdefault(measure, {}).setdefault(operation, {}).setdefault(size, {})[contender] = value
    return tables


def contenders(sizes):
    """Ours, and its peers."""
    names = sorted({name for row in sizes.values() for name in row})
    ours = min((name for name in names if name.startswith("ours")), default="ours", key=lambda name: (name != "ours", name))
    return ours, [name for name in names if name != ours]


def rows(sizes):
    return sorted(sizes.items(), key=lambda item: (len(item[0]), item[0]))


def as_text(title, sizes):
    ours, peers = contenders(sizes)
    table = [[title, ours] + [text for peer in peers for text in (peer, "ratio")]]
    for size, row in rows(sizes):
        own = row.get(ours, float("nan"))
        cells = [size, f"{own:.4g}"]
        for peer in peers:
            value = row.get(peer, float("nan"))
            cells += [f"{value:.4g}", f"{value / own:.2f}"]
        table.append(cells)
    widths = [max(len(cells[i]) for cells in table) for i in range(len(table[0]))]
    print()
    for cells in table:
        print("  ".join(cell.ljust(width) if i == 0 else cell.rjust(width)
                        for i, (cell, width) in enumerate(zip(cells, widths))))


def amount(value, measure):
    if not measure.startswith("ns"):
        return f"{value:.3g}"
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if value >= size:
            return f"{value / size:.3g} {unit}"
    return f"{value:.3g} ns"


def ratio(value):
    return f"{value:.2f}" if value < 9.995 else f"{value:.0f}"


def as_markdown(title, sizes):
    ours, peers = contenders(sizes)
    measure = title[title.rindex("(") + 1:-1]
    print("\n| " + " | ".join([title.replace("_", " ")] + peers + [ours]) + " |")
    print("|---|" + "--:|" * (len(peers) + 1))
    for size, row in rows(sizes):
        if ours in row:
            ratios = [ratio(row[peer] / row[ours]) if peer in row else "" for peer in peers]
            print("| " + " | ".join(["`%s`" % size if size else "", *ratios, amount(row[ours], measure)]) + " |")


def main():
    arguments = sys.argv[1:]
    write = as_markdown if arguments[0] == "--markdown" else as_text
    for measure, operations in read(arguments[-1]).items():
        for operation, sizes in sorted(operations.items()):
            write(f"{operation} ({measure})", sizes)


main()
