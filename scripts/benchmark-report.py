#!/usr/bin/env python3
"""Turns what a benchmark program measured into tables.

  benchmark-report.py AREA RAW.json RESULT.json   the result of an area, printed and kept
  benchmark-report.py --plot AREA RESULT.json OUT.svg   a bar chart of an area
  benchmark-report.py --page [--check] PAGE.md    puts the kept results between the page's markers, or compares them

Absolute times mean nothing: everything runs under Wine, on whatever machine it is. The columns to read are the ratios.
"""
import json
import pathlib
import statistics
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
RESULTS = TOP / "benchmarks" / "results"
GOALS = TOP / "benchmarks" / "goals.json"
PICTURES = TOP / "docs" / "pictures"
OURS = "quon"


def picture_name(area):
    return f"performance-{area}.svg"


def without_clock(name):
    return name.removesuffix("/real_time").removesuffix("/manual_time")


def read_times(raw):
    """{work: {size: {contender: [nanoseconds an item, one for each repeat]}}}, in the order of the program."""
    times = {}
    runs = [run for run in raw["benchmarks"] if run.get("run_type", "iteration") == "iteration"]
    # The contenders took turns; their family numbers tell in which order the program entered them.
    for run in sorted(runs, key=lambda run: run["family_index"]):
        name = without_clock(run["name"]).split("/repeats:")[0]
        work, size, contender = without_clock(name).split("/", 2)
        nanoseconds = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]] * run["real_time"]
        times.setdefault(work, {}).setdefault(int(size), {}).setdefault(contender, []).append(nanoseconds / int(size))
    return times


def summarise(area, raw):
    """The result of an area: for each work the contenders at the largest size, the growth over the sizes, the goals."""
    works = []
    for work, sizes in read_times(raw).items():
        largest = max(sizes)
        ours = min(sizes[largest].get(OURS, [float("nan")]))
        contenders = []
        for contender in sizes[largest]:
            samples = sizes[largest][contender]
            growth = [min(sizes[size][contender]) / min(sizes[min(sizes)][contender])
                      for size in sorted(sizes) if contender in sizes[size] and contender in sizes[min(sizes)]]
            contenders.append({"name": contender, "minimum_ns": min(samples), "median_ns": statistics.median(samples),
                               "of_ours": min(samples) / ours, "growth": growth})
        contenders.sort(key=lambda entry: (entry["name"] != OURS, not entry["name"].startswith("limit"), entry["of_ours"]))
        works.append({"work": work, "size": largest, "contenders": contenders})
    context = raw["context"]
    notes = {key.removeprefix("note: "): float(value) for key, value in context.items() if key.startswith("note: ")}
    goals = [judge(goal, works) for goal in json.loads(GOALS.read_text()).get(area, [])]
    return {"area": area, "date": context["date"][:10], "wine": context["wine"], "processors": context["num_cpus"], "works": works,
            "notes": notes, "goals": goals}


def judge(goal, works):
    """One goal with what was measured: a text and whether it is met."""
    if "any" in goal:
        parts = [judge({"work": goal["work"], **part}, works) for part in goal["any"]]
        return {"text": "; or ".join(part["text"] for part in parts), "met": any(part["met"] for part in parts)}
    work = next((entry for entry in works if entry["work"] == goal["work"]), None)
    found = {contender["name"]: contender for contender in work["contenders"]} if work else {}
    against = next((entry for name, entry in found.items() if name.startswith(goal["against"])), None)
    if against is None or OURS not in found:
        return {"text": f"{goal['work']}: not measured against {goal['against']}", "met": False}
    ours, theirs = found[OURS]["minimum_ns"], against["minimum_ns"]
    label = f"{goal['work']}, beside {against['name']}"
    if "at_most" in goal:
        ratio = ours / theirs
        return {"text": f"{label}: {ratio:.2f} of its time (goal: at most {goal['at_most']:g})",
                "met": ratio <= goal["at_most"]}
    if "times_faster" in goal:
        ratio = theirs / ours
        return {"text": f"{label}: {ratio:.1f} times as fast (goal: {goal['times_faster']:g})",
                "met": ratio >= goal["times_faster"]}
    more, most = ours - theirs, goal["at_most_more_ns"]
    return {"text": f"{label}: {time_text(more)} more (goal: at most {time_text(most)})", "met": more <= most}


def ratio_text(ratio):
    return f"{ratio:.3f}" if ratio < 0.1 else f"{ratio:.2f}" if ratio < 100 else f"{ratio:,.0f}"


def time_text(nanoseconds):
    if nanoseconds < 0:
        return "-" + time_text(-nanoseconds)
    for unit, factor in (("ns", 1), ("us", 1e3), ("ms", 1e6)):
        if nanoseconds < 1000 * factor:
            return f"{nanoseconds / factor:.3g} {unit}"
    return f"{nanoseconds / 1e9:.3g} s"


def table(result):
    """The result as Markdown, with its chart if there is one."""
    lines = [f"Wine {result['wine']}, one of {result['processors']} processors, {result['date']}; time of one item, smallest of the repeats.", ""]
    if (PICTURES / picture_name(result["area"])).exists():
        lines += [f"![{result['area']}](pictures/{picture_name(result['area'])})", ""]
    for work in result["works"]:
        lines += [f"**{work['work']}**, {work['size']:,} items", "",
                  "| Contender | Minimum | Median | Of ours | Growth of an item's cost at 1, 10, 100 times the size |",
                  "|---|---:|---:|---:|---|"]
        for entry in work["contenders"]:
            growth = ", ".join(f"{value:.2f}" for value in entry["growth"])
            name = f"**{entry['name']}**" if entry["name"] == OURS else entry["name"]
            lines.append(f"| {name} | {time_text(entry['minimum_ns'])} | {time_text(entry['median_ns'])} | "
                         f"{ratio_text(entry['of_ours'])} | {growth} |")
        lines.append("")
    for what, value in result["notes"].items():
        lines.append(f"- {what}: {value:g}")
    for goal in result["goals"]:
        lines.append(f"- {'met' if goal['met'] else '**not met**'}: {goal['text']}")
    return "\n".join(lines).rstrip() + "\n"


def plot(result, path):
    """Bars of the ratios to our time, a group for each work; ours is the line at 1."""
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams["svg.hashsalt"] = result["area"]
    import matplotlib.pyplot as pyplot

    works = result["works"]
    rows = [(work["work"], entry) for work in works for entry in work["contenders"]]
    figure, axes = pyplot.subplots(figsize=(9, 0.7 + 0.26 * (len(rows) + len(works))))
    position, ticks, labels = 0.0, [], []
    for work in works:
        axes.text(0.0, position, " " + work["work"], transform=axes.get_yaxis_transform(), weight="bold", va="center",
                  fontsize=9)
        position += 1
        for entry in work["contenders"]:
            ours, limit = entry["name"] == OURS, entry["name"].startswith("limit")
            axes.barh(position, entry["of_ours"], color="#1f6f8b" if ours else "#b8c4c9" if limit else "#e08e45")
            axes.text(entry["of_ours"], position, f" {ratio_text(entry['of_ours'])}", va="center", fontsize=8)
            ticks.append(position)
            labels.append(entry["name"])
            position += 1
    axes.axvline(1, color="#1f6f8b", linewidth=0.8)
    axes.set_xscale("log")
    axes.set_yticks(ticks, labels, fontsize=8)
    axes.invert_yaxis()
    axes.set_xlabel("time of one item, as a multiple of ours (logarithmic; under Wine)", fontsize=8)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)
    figure.tight_layout()
    figure.savefig(path, metadata={"Date": None})


def require_goals(area, goals, result):
    """Ends the program when the kept result is older than a goal or than the work that a goal is about."""
    measured = {entry["work"] for entry in result["works"]}
    missing = [goal["work"] for goal in goals if goal["work"] not in measured]
    if missing or len(goals) != len(result["goals"]):
        sys.exit(f"{area}: not measured since its goals changed: {', '.join(missing) or 'run scripts/bench.sh ' + area}")


def fill_page(page, check):
    """Puts each kept result between its markers, <!-- results: AREA --> and <!-- end -->."""
    text = page.read_text()
    filled = text
    results = {path.stem: path for path in RESULTS.glob("*.json")}
    goals = json.loads(GOALS.read_text())
    for area in sorted(set(results) | set(goals)):
        begin, end = f"<!-- results: {area} -->\n", "<!-- end -->"
        if begin not in filled:
            sys.exit(f"{page}: no place for the results of {area}")
        if area not in results:
            continue
        result = json.loads(results[area].read_text())
        if check:
            require_goals(area, goals.get(area, []), result)
        head, rest = filled.split(begin, 1)
        filled = head + begin + table(result) + rest[rest.index(end):]
    if check and filled != text:
        sys.exit(f"{page} differs from benchmarks/results: run scripts/benchmark-report.py --page {page}")
    if not check:
        page.write_text(filled)


def main(arguments):
    if arguments[:1] == ["--page"]:
        fill_page(pathlib.Path(arguments[-1]), "--check" in arguments)
    elif arguments[:1] == ["--plot"]:
        plot(json.loads(pathlib.Path(arguments[2]).read_text()), arguments[3])
    elif len(arguments) == 3:
        result = summarise(arguments[0], json.loads(pathlib.Path(arguments[1]).read_text()))
        pathlib.Path(arguments[2]).write_text(json.dumps(result, indent=1) + "\n")
        print(table(result))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(sys.argv[1:])
