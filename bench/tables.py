#!/usr/bin/env python3
"""Prints figures of the benchmarks as Markdown tables.

bench/tables.py peers FILE    what lumor-bench-peers --json wrote, of the GL engine
bench/tables.py engines FILE  the same, of the processor engine
bench/tables.py frames FILE   what lumor-bench-frames --benchmark_out wrote
bench/tables.py passes FILE   what lumor-bench-passes --benchmark_out wrote
"""
import json
import sys


def row(cells):
    print("| " + " | ".join(cells) + " |")


def table(heads):
    row(heads)
    row(["---"] + ["---:"] * (len(heads) - 1))


def peers(cases):
    """Milliseconds a frame; ratios are ours over theirs, GStreamer's our pixels per second over its."""
    for moving in (False, True):
        names = ["v360", "OpenCV"] + ([] if moving else ["GStreamer"])
        print(f"\nThe view {'moves in every frame' if moving else 'stands still'}:\n")
        table(["", "lumor ms"] + [f"{name} ms" for name in names] + ["/ v360", "/ OpenCV"] +
              ([] if moving else ["x GStreamer"]))
        for case in cases:
            if case["group"] != "OpenGL" or case["moving"] != moving:
                continue
            by_name = {one["name"]: one for one in case["contenders"]}
            cells = [case["case"], f"{by_name['lumor']['median_ms']:.1f}"]
            cells += [f"{by_name[name]['median_ms']:.1f}" for name in names]
            cells += [f"{by_name[name]['lumor_ratio']:.2f}" for name in ("v360", "OpenCV")]
            if not moving:
                cells.append(f"{1.0 / by_name['GStreamer']['lumor_ratio']:.1f}")
            row(cells)


def engines(cases):
    """The processor engine: milliseconds a frame beside the others, what a thing costs, many cameras, the first view."""
    print(f"\n{cases[0]['engine']}")
    names = ["OpenGL", "v360", "v360 + swscale", "OpenCV"]
    for moving in (False, True):
        print(f"\nThe view {'moves in every frame' if moving else 'stands still'}:\n")
        table(["", "processor ms"] + [f"{name} ms" for name in names] + [f"/ {name}" for name in names])
        for case in cases:
            if case["group"] != "processor" or case["moving"] != moving:
                continue
            by_name = {one["name"].replace(", four graphs", ""): one for one in case["contenders"]}
            cells = [case["case"].replace("processor: ", ""), f"{by_name['processor']['median_ms']:.2f}"]
            for key, form in (("median_ms", "{:.2f}"), ("lumor_ratio", "{:.3f}")):
                cells += [form.format(by_name[name][key]) if name in by_name else "" for name in names]
            row(cells)
    for case in cases:
        if case["group"] in ("layers", "move", "cameras", "first view"):
            print(f"\n{case['case'].replace('processor: ', '')}:\n")
            table(["", "ms", "first / it"])
            for one in case["contenders"]:
                row([one["name"], f"{one['median_ms']:.2f}", f"{one['lumor_ratio']:.3f}"])
            for name, cost in case.get("cost_ms", {}).items():
                row([name, f"{cost:.3f}", ""])


def frames(benchmarks):
    """A frame beside the bare quad: milliseconds of both, the ratio of wall and of processor time."""
    table(["", "frame ms", "quad ms", "ratio", "ratio of processor time"])
    for one in benchmarks:
        name = one["name"].replace("/manual_time", "")
        row([name, f"{one['frame_ms']:.1f}", f"{one['quad_ms']:.1f}", f"{one['ratio']:.2f}",
             f"{one['cpu_ratio']:.2f}"])


def passes(benchmarks):
    """A frame with something drawn over it beside the bare view."""
    table(["", "frame ms", "bare ms", "ratio"])
    for one in benchmarks:
        name = one["name"].replace("/manual_time", "")
        row([name, f"{one['frame_ms']:.1f}", f"{one['bare_ms']:.1f}", f"{one['ratio']:.2f}"])


def main():
    kinds = {"peers": peers, "engines": engines, "frames": frames, "passes": passes}
    if len(sys.argv) != 3 or sys.argv[1] not in kinds:
        print(__doc__, file=sys.stderr)
        return 2
    with open(sys.argv[2], encoding="utf-8") as file:
        figures = json.load(file)
    kinds[sys.argv[1]](figures if isinstance(figures, list) else figures["benchmarks"])
    return 0


if __name__ == "__main__":
    sys.exit(main())
