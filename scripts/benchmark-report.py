#!/usr/bin/env python3
"""Turns what a benchmark program measured into the kept results, and those into the page and its charts.

  benchmark-report.py AREA RAW.json RESULT.json   the result of an area, printed and kept
  benchmark-report.py --page [--check] PAGE.md    puts the kept results between the page's markers and draws their
                                                  charts, or compares both

Absolute times mean nothing: everything runs under Wine, on whatever machine it is. The columns to read are the ratios.
"""
import json
import pathlib
import statistics
import sys

from benchmark_chart import OURS, chart, ratio_text, time_text

TOP = pathlib.Path(__file__).resolve().parent.parent
RESULTS = TOP / "benchmarks" / "results"
GOALS = TOP / "benchmarks" / "goals.json"
PICTURES = TOP / "docs" / "pictures"


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


def summary(result):
    """The result as Markdown: its chart, its notes and its goals. The kept file has every figure."""
    lines = [f"Wine {result['wine']}, one of {result['processors']} processors, {result['date']}; the smallest of the repeats.", "",
             f"![{result['area']}](pictures/{picture_name(result['area'])})", ""]
    for what, value in result["notes"].items():
        lines.append(f"- {what}: {value:g}")
    for goal in result["goals"]:
        lines.append(f"- {'met' if goal['met'] else '**not met**'}: {goal['text']}")
    return "\n".join(lines).rstrip() + "\n"


def figures(result):
    """Every figure of the result, for the terminal."""
    lines = []
    for work in result["works"]:
        lines += [f"{work['work']}, {work['size']:,} items", f"  {'':45} {'minimum':>10} {'median':>10} {'of ours':>8}  growth"]
        for entry in work["contenders"]:
            growth = ", ".join(f"{value:.2f}" for value in entry["growth"])
            lines.append(f"  {entry['name']:45} {time_text(entry['minimum_ns']):>10} {time_text(entry['median_ns']):>10} "
                         f"{ratio_text(entry['of_ours']):>8}  {growth}")
    for goal in result["goals"]:
        lines.append(f"{'met' if goal['met'] else 'NOT MET'}: {goal['text']}")
    return "\n".join(lines) + "\n"


def keep(path, text, check):
    """Writes what a result gives, or ends the program when it differs from what is there."""
    if not check:
        path.write_text(text)
    elif not path.exists() or path.read_text() != text:
        sys.exit(f"{path} differs from benchmarks/results: run scripts/benchmark-report.py --page docs/performance.md")


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
        filled = head + begin + summary(result) + rest[rest.index(end):]
        keep(PICTURES / picture_name(area), chart(result), check)
    keep(page, filled, check)


def main(arguments):
    if arguments[:1] == ["--page"]:
        fill_page(pathlib.Path(arguments[-1]), "--check" in arguments)
    elif len(arguments) == 3:
        result = summarise(arguments[0], json.loads(pathlib.Path(arguments[1]).read_text()))
        pathlib.Path(arguments[2]).write_text(json.dumps(result, indent=1) + "\n")
        print(figures(result))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(sys.argv[1:])
