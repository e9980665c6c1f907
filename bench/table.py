"""The figures as tables in Markdown."""

import math

MIB = 1 << 20
HEAD = """| store | program | seconds | processor | to `cp` | to the floor | peak MiB | messages/s | messages |
|---|---|---:|---:|---:|---:|---:|---:|---|
"""
SEEKS_HEAD = """| store | program | reads | MiB read | seeks | over MiB | writes | MiB written | seeks | over MiB |
|---|---|---:|---:|---:|---:|---:|---:|---:|---:|
"""
GROWTH_HEAD = """| stores | program | data | time | time for four times the data |
|---|---|---:|---:|---:|
"""
MARK = "<!-- bench/run {} -->"


def ratio(result, base, results):
    found = [r for r in results if r["store"] == result["store"] and r["program"] == base]
    return f"{result['seconds'] / found[0]['seconds']:.2f}" if found and found[0]["seconds"] else ""


def row(result, results):
    messages = rate = ""
    if result["messages"] is not None:
        messages = f"{result['messages']} of {result['expected']}"
        rate = f"{result['messages'] / max(result['seconds'], 0.001):.0f}"
    if result["code"] != 0:
        messages = f"{messages}, exit code {result['code']}".lstrip(", ")
    return (f"| {result['store']} | {result['program']} | {result['seconds']:.2f} | {result['processor']:.2f} | "
            f"{ratio(result, 'cp', results)} | {ratio(result, 'floor', results)} | {result['peak'] / MIB:.1f} | "
            f"{rate} | {messages} |\n")


def times(results):
    return HEAD + "".join(row(r, results) for r in results)


def series(results):
    """The results of one kind of store by one program, by size; by kind and program."""
    found = {}
    for r in sorted(results, key=lambda r: r["bytes"]):
        found.setdefault((r["kind"], r["program"]), []).append(r)
    return {key: of for key, of in found.items() if len(of) > 1}


def growth(results):
    rows = ""
    for (kind, program), of in series(results).items():
        for small, large in zip(of, of[1:]):
            data, time = large["bytes"] / small["bytes"], large["seconds"] / max(small["seconds"], 0.001)
            if data > 1 and time > 0:
                rows += (f"| {kind}, {small['bytes'] / MIB:.0f} to {large['bytes'] / MIB:.0f} MiB | {program} | "
                         f"{data:.2f} | {time:.2f} | {4 ** (math.log(time) / math.log(data)):.2f} |\n")
    return GROWTH_HEAD + rows if rows else ""


def seeks(counted):
    rows = ""
    for store, program, heads in counted:
        cells = (f"{h.calls} | {h.bytes / MIB:.1f} | {h.seeks} | {h.distance / MIB:.0f}" for h in heads)
        rows += f"| {store} | {program} | {' | '.join(cells)} |\n"
    return SEEKS_HEAD + rows if rows else ""


def put_into(document, text):
    """Replaces what stands between the two marks of the document."""
    page = document.read_text("utf-8")
    begin, end = MARK.format("begins"), MARK.format("ends")
    ahead, _, rest = page.partition(begin)
    _, mark, behind = rest.partition(end)
    if not mark:
        raise ValueError(f"{document} has no place for the table: {begin} and {end}")
    document.write_text(f"{ahead}{begin}\n\n{text.strip()}\n\n{end}{behind}", "utf-8")
