#!/usr/bin/env python3
"""Runs the benchmarks of a build and reports ratios of medians; see scripts/bench."""

import argparse
import json
import os
import platform
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
STORY = HERE.parent / "examples/stories/harbour_lights.quor"

# Whole programs, then one row per size: name, what over what, target (None: reported only).
LOADS = [
    ("load_vs_pugixml_walk", "Load", "PugixmlWalk", 0.77),
    ("load_vs_libxml2_dom", "Load", "Libxml2DOM", 0.33),
    ("load_vs_bare_reader", "Load", "BareReader", 2.0),
]
SIZES = (1, 10, 100)  # megabytes; a name without a size means the last one

# Scripts of 120 pages: name, what over what, target.
SCRIPTS = [
    ("fountain_vs_story", "ReadFountain", "ReadStoryDocument", 2.0),
    ("fdx_vs_story", "ReadFDX", "ReadStoryDocument", None),
    ("fdx_vs_libxml2_dom", "ReadFDX", "FDXLibxml2DOM", None),
]

# Whether the cost per item stays the same: name, benchmark, what is counted.
GROWTH = [
    ("growth_find_sidecars", "FindSidecars", "clips of a folder, their sidecars found"),
    ("growth_change_clips", "ChangeClips", "clips of a folder, changed but for replacing the files"),
    ("growth_table_rows", "ReadRows", "rows of a table"),
    ("growth_faulty_rows", "ReadFaultyRows", "rows of a table, all with faults, of one sidecar"),
    ("growth_load", "LoadScenes", "scenes of a story, loaded"),
    ("growth_find_scenes", "FindScenes", "scenes, each found by its identifier"),
    ("growth_scenes", "ScenesList", "scenes, listed"),
    ("growth_characters", "CharactersList", "characters, listed"),
    ("growth_report", "ReportPage", "scenes and characters of a report"),
    ("growth_columns", "AlignedList", "rows of an aligned list, one cell as long as all others"),
    ("growth_speeches", "WriteSpeeches", "speeches of a scene, written"),
    ("growth_items_parse", "Parse<ManyItems>", "items of an array, parsed"),
    ("growth_properties_set", "Set<ManyProperties>", "properties of different names, set"),
    ("growth_properties_parse", "Parse<ManyProperties>", "properties of different names, parsed"),
    ("growth_properties_serialise", "Serialise<ManyProperties>", "the same, serialised"),
]
FEW, MANY = 1000, 16000
# Growth is that of our work: glibc is told to keep freed memory, or else it returns the blocks of large rounds
# to the system, which each next round has to fetch again.
KEEP_MEMORY = {"MALLOC_TRIM_THRESHOLD_": "8000000000", "MALLOC_MMAP_THRESHOLD_": "4000000000"}


def run(command, **options):
    return subprocess.run(command, check=True, **options)


class Benchmarks:
    """The medians of a build's benchmark programs, each program's cases interleaved."""

    def __init__(self, build, repetitions):
        self.folder = build / "benchmarks"
        self.repetitions = repetitions
        self.medians = {}

    def measure(self, program, environment=None):
        with tempfile.NamedTemporaryFile(suffix=".json") as out:
            run([self.folder / program, "--benchmark_enable_random_interleaving=true",
                 f"--benchmark_repetitions={self.repetitions}", "--benchmark_min_time=0.2",
                 "--benchmark_report_aggregates_only=true", "--benchmark_out_format=json",
                 f"--benchmark_out={out.name}"],
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                env={**os.environ, **(environment or {})})
            found = json.load(open(out.name, encoding="utf-8"))
        units = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
        for case in found["benchmarks"]:
            if case.get("error_occurred"):
                sys.exit(f"{program}: {case['name']}: {case['error_message']}")
            if case.get("aggregate_name") == "median":
                self.medians[case["run_name"]] = case["real_time"] * units[case["time_unit"]]

    def ratio(self, one, other):
        return self.medians[one] / self.medians[other]


def peak_memory(command):
    """The most resident memory of a process, in kilobytes."""
    process = subprocess.Popen(command)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command}: failed")
    return usage.ru_maxrss


def memory_ratio(folder, work, rounds):
    story = work / "story.xml"
    with open(story, "wb") as out:
        run([folder / "generate_story", "100000000"], stdout=out)
    peaks = {"ours": [], "pugixml": []}
    for _ in range(rounds):
        for way, seen in peaks.items():
            seen.append(peak_memory([folder / "load_story", way, story]))
    story.unlink()
    medians = {way: statistics.median(seen) for way, seen in peaks.items()}
    return medians["ours"] / medians["pugixml"], medians


def seconds(command, **options):
    start = time.perf_counter()
    run(command, stdout=subprocess.DEVNULL, **options)
    return time.perf_counter() - start


def exiftool_ratio(build, work, rounds):
    """zelstory write against ExifTool, which sets the same values in a copy of the same sidecar."""
    if not shutil.which("exiftool"):
        return None, {}
    foreign, target, values = work / "foreign.xmp", work / "clip.xmp", work / "values.json"
    exiftool = ["exiftool", "-config", HERE / "exiftool.config", "-q", "-overwrite_original"]
    zelstory = [build / "bin/zelstory", "write", STORY, "--scene", "1", target]
    run([*exiftool, "-XMP-xmp:Rating=4", "-XMP-dc:Subject=harbour", "-XMP-dc:Creator=Anna", foreign])
    shutil.copy(foreign, target)
    run(zelstory, stdout=subprocess.DEVNULL)
    read = run(["exiftool", "-config", HERE / "exiftool.config", "-j", "-struct", "-G1",
                "-XMP-xmpScript:all", "-XMP-xmpDM:all", target], capture_output=True)
    tags = json.loads(read.stdout)
    tags[0]["SourceFile"] = str(target)
    values.write_text(json.dumps(tags), encoding="utf-8")
    times = {"zelstory": [], "exiftool": []}
    for _ in range(rounds):
        for way, command in (("zelstory", zelstory), ("exiftool", [*exiftool, f"-j={values}", target])):
            shutil.copy(foreign, target)
            times[way].append(seconds(command))
    medians = {way: 1000 * statistics.median(taken) for way, taken in times.items()}
    return medians["zelstory"] / medians["exiftool"], medians


def fountain_js_ratio(build, work, rounds):
    """zelstory check of a script of 120 pages against fountain-js, each as a process of its own."""
    modules = build.parent / "bench/node_modules"
    if not shutil.which("node") or not (modules / "fountain-js").is_dir():
        return None, {}
    story, script, program = work / "story.quor", work / "script.fountain", work / "read.cjs"
    with open(story, "wb") as out:
        run([build / "benchmarks/generate_story", "560000"], stdout=out)
    run([build / "bin/zelstory", "convert", story, script], stderr=subprocess.DEVNULL)
    program.write_text("const { Fountain } = require('fountain-js');\n"
                       "const text = require('fs').readFileSync(process.argv[2], 'utf8');\n"
                       "console.log(new Fountain().parse(text, true).tokens.length);\n")
    commands = {"zelstory": ([build / "bin/zelstory", "check", script], None),
                "fountain_js": (["node", program, script], {**os.environ, "NODE_PATH": str(modules)})}
    times = {way: [] for way in commands}
    for _ in range(rounds):
        for way, (command, environment) in commands.items():
            times[way].append(seconds(command, env=environment))
    medians = {way: 1000 * statistics.median(taken) for way, taken in times.items()}
    return medians["zelstory"] / medians["fountain_js"], medians


def collect(build, repetitions, work):
    benchmarks = Benchmarks(build, repetitions)
    for program in ("story_loading_bench", "packets_bench", "xmp_scaling_bench", "host_scaling_bench",
                    "script_reading_bench"):
        print(f"{program} ...", file=sys.stderr)
        benchmarks.measure(program, KEEP_MEMORY if "scaling" in program or "script" in program else None)
    rows = []

    def row(name, what, value, target=None):
        rows.append({"name": name, "what": what, "value": value, "target": target})

    for name, ours, other, target in LOADS:
        for size in SIZES:
            row(name if size == SIZES[-1] else f"{name}_{size}MB", f"{ours}/{other}, {size} MB",
                benchmarks.ratio(f"{ours}/{size}", f"{other}/{size}"), target)
    # The part that no handler can save: loading takes at least as long as reading.
    row("bare_reader_vs_pugixml_walk", f"BareReader/PugixmlWalk, {SIZES[-1]} MB",
        benchmarks.ratio(f"BareReader/{SIZES[-1]}", f"PugixmlWalk/{SIZES[-1]}"))
    for size in SIZES:
        row("handler_share" if size == SIZES[-1] else f"handler_share_{size}MB",
            f"1 - ReaderAlone/Load, {size} MB",
            1 - benchmarks.ratio(f"ReaderAlone/{size}", f"Load/{size}"))
    print("peak memory ...", file=sys.stderr)
    memory, peaks = memory_ratio(benchmarks.folder, work, 3)
    row("load_memory_vs_pugixml_walk", "peak resident memory, 100 MB from a file", memory, 0.6)
    row("load_scaling", "Load per MB, 100 MB/1 MB", benchmarks.ratio("Load/100", "Load/1") / 100, 1.1)
    row("packet_vs_pugixml", "GetSceneXMP per scene", benchmarks.ratio("OurPacket", "PugixmlPackets"),
        1.0)
    row("packet_texts_vs_pugixml", "a scene's texts alone, over the whole packet with pugixml",
        benchmarks.ratio("PacketTexts", "PugixmlPackets"))
    row("xmp_parse_vs_pugixml", "ParseFromBuffer, 100 kB",
        benchmarks.ratio("ParsePacket", "PugixmlParsePacket"))
    row("patch_vs_rewrite", "PatchPacket, 100 kB, over ReplacePacket and reading again",
        benchmarks.ratio("PatchPacket", "RewritePacket"), 1.0)
    row("write_scaling", "WriteSceneMetadataIntoXMP per pair, 100,000/100",
        benchmarks.ratio("WriteSpeeches/100000", "WriteSpeeches/100") / 1000, 1.2)
    for name, ours, other, target in SCRIPTS:
        row(name, f"{ours}/{other}, 120 pages", benchmarks.ratio(f"{ours}/180", f"{other}/180"), target)
    for name, case in (("fountain_scaling", "ReadFountain"), ("fdx_scaling", "ReadFDX")):
        row(name, f"{case} per MB, 20 MB/1 MB", benchmarks.ratio(f"{case}/20000", f"{case}/1000") / 20, 1.1)
    for name, case, what in GROWTH:
        ratio = benchmarks.ratio(f"{case}/{MANY}", f"{case}/{FEW}") * FEW / MANY
        row(name, f"per item, {MANY} over {FEW} {what}", ratio, 1.2)
    print("processes ...", file=sys.stderr)
    tool, times = exiftool_ratio(build, work, 15)
    if tool is None:
        print("exiftool is not installed: tool_vs_exiftool is left out", file=sys.stderr)
    else:
        row("tool_vs_exiftool", "zelstory write, whole process", tool, 0.05)
    check, check_times = fountain_js_ratio(build, work, 15)
    if check is None:
        print("fountain-js is not installed: check_vs_fountain_js is left out", file=sys.stderr)
    else:
        row("check_vs_fountain_js", "zelstory check, 120 pages, whole process", check, 0.1)
    times |= check_times
    return {"ratios": {entry["name"]: round(entry["value"], 4) for entry in rows}, "rows": rows,
            "machine": machine(), "date": time.strftime("%Y-%m-%d"), "repetitions": repetitions,
            "medians_ms": benchmarks.medians, "peak_kB": peaks, "process_ms": times}


def machine():
    model = platform.processor() or platform.machine()
    try:
        model = re.search(r"model name\s*:\s*(.*)", Path("/proc/cpuinfo").read_text()).group(1)
    except (OSError, AttributeError):
        pass
    return f"{model}, {os.cpu_count()} cores, {platform.system()}"


def print_table(report):
    print(f"{report['machine']}; {report['date']}; medians of {report['repetitions']} interleaved runs\n")
    print(f"{'name':30} {'ratio':>8} {'target':>8}  what")
    for row in report["rows"]:
        target = "" if row["target"] is None else f"<= {row['target']:g}"
        missed = row["target"] is not None and row["value"] > row["target"]
        print(f"{row['name']:30} {row['value']:8.3f} {target:>8}  {row['what']}"
              f"{'  (missed)' if missed else ''}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=Path, help="a build folder with benchmarks")
    parser.add_argument("--json", metavar="FILE", type=Path, help="write the figures as JSON, too")
    parser.add_argument("--repetitions", type=int, default=5)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as work:
        report = collect(arguments.build.resolve(), arguments.repetitions, Path(work))
    print_table(report)
    if arguments.json:
        arguments.json.write_text(json.dumps(report, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
