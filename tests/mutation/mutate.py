#!/usr/bin/env python3
"""Mutation testing: do the tests detect small mistakes in the library and the program?

Copies the project to build/mutation, applies one small mutation at a time, builds the tests that are
relevant for its file and runs them until one fails. Surviving mutations are reported, unless
tests/mutation/explained.json explains why they change no result.

  tests/mutation/mutate.py                    200 mutations, distributed over the files by size
  tests/mutation/mutate.py --only ^tools/     only files whose name matches, here those of the program
  tests/mutation/mutate.py --list             only list the mutations
  tests/mutation/mutate.py --again            the mutations that survived the last run
  tests/mutation/mutate.py --check            only check the tables below and explained.json

Exits with 1 if a mutation survived that is not explained. Results: build/mutation/results.jsonl.
"""

import argparse
import json
import os
import random
import re
import shutil
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
WORK = PROJECT / "build" / "mutation"
SOURCE = WORK / "source"
BUILD = WORK / "build"
RESULTS = WORK / "results.jsonl"
EXPLAINED = Path(__file__).with_name("explained.json")

# Pattern, replacement, kind of mutation.
SWAPS = [
    (r" < ", " <= ", "relation"),
    (r" <= ", " < ", "relation"),
    (r" > ", " >= ", "relation"),
    (r" >= ", " > ", "relation"),
    (r" == ", " != ", "relation"),
    (r" != ", " == ", "relation"),
    (r" && ", " || ", "logic"),
    (r" \|\| ", " && ", "logic"),
    (r"(?<=[(\s])!(?=[\w(])", "", "negation"),
    (r"\btrue\b", "false", "constant"),
    (r"\bfalse\b", "true", "constant"),
    (r" \+ ", " - ", "arithmetic"),
    (r" - ", " + ", "arithmetic"),
    (r" \* (?=[\w(])", " + ", "arithmetic"),
    (r" / ", " * ", "arithmetic"),
    (r" \+= ", " -= ", "arithmetic"),
    (r" -= ", " += ", "arithmetic"),
    (r" \| ", " & ", "bits"),
    (r" & (?=[\w(])", " | ", "bits"),
    (r" << ", " >> ", "bits"),
    (r" >> ", " << ", "bits"),
    (r"\bstd::min\b", "std::max", "extreme"),
    (r"\bstd::max\b", "std::min", "extreme"),
]
INTEGER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f]+|\d+)(?![\w.'])")
DECIMAL = re.compile(r"(?<![\w.])\d+\.\d+(?:e-?\d+)?(?![\w.])")
STATEMENT = re.compile(r"^\s+(?!return\b|using\b|static_assert\b|break;|continue;|const\b|delete\b)"
                       r"[\w:.\->\[\]*]+(\(.*\)| [-+|&]?= .*)?;$")
PASSED_OVER = re.compile(r"^\s*(#|//|static_assert|using |namespace |template |template<|class |struct |"
                         r"friend |public:|private:|protected:|extern )")
# Declarations with `&` or `*` between words are not operations.
TYPE_AMPERSAND = re.compile(r"(const )?[\w:<>]+ & \w+[,)]")

MOST_OF_A_FILE = 20
LONGEST_RUN = 100  # seconds; a longer run counts as endless, unless the test is slow without a mutation

# Headers of the program whose code is more than accessors.
HEADERS_WITH_CODE = ["output/json_writer.h", "record/describe_record.h", "record/ordered_jobs.h",
                     "record/record_pass.h"]

# The tests that are relevant for a file: the entry with the longest matching prefix. Programs that
# do not use GoogleTest are listed with their arguments.
TESTS = {
    "surveydata/object_model/": ["base_test", "handle_test", "compare_test", "pair_rules_test",
                                 "record_rules_test", "layout_test", "random_program_test",
                                 "memory_faults_test"],
    "surveydata/object_model/compare": ["compare_test"],
    "surveydata/object_model/fixed_string": ["fixed_string_test", "fixed_string_property_test",
                                             "fixed_string_utf8_test"],
    "surveydata/object_model/utf8": ["utf8_test", "fixed_string_test", "record_frame_test",
                                     "fixed_string_utf8_test"],
    "surveydata/object_model/version": ["version_test"],
    "surveydata/geodetic/": ["coordinate_point_test", "coordinate_quality_test",
                             "coordinate_reference_system_test", "display_attributes_test",
                             "instrument_info_data_test",
                             "position_test", "q_matrix_test", "rectangle_test",
                             "undulation_memento_test", "record_rules_test", "pair_rules_test",
                             "layout_test"],
    "surveydata/c_interface/": ["c_interface_area_test", "c_interface_columns_test",
                                "c_interface_measurement_test", "c_interface_reader_test",
                                "c_interface_texts_test", "c_interface_values_test",
                                "c_interface_faults_test"],
    "surveydata/c_interface/arrow_stream": ["arrow_stream_test"],
    "surveydata/gnss/": ["gps_ant_height_test", "gps_dops_test", "gps_meas_data_test",
                         "gps_ref_station_data_test",
                         "gps_record_file_test", "record_samples_test", "gps_record_index_test",
                         "record_faults_test", "pair_rules_test", "record_frame_test"],
    "surveydata/gnss/file_access": ["file_access_test", "posix_files_test", "record_faults_test",
                                    "gps_record_file_test", "gps_record_writer_test"],
    "surveydata/gnss/gps_record_columns": ["gps_record_columns_test"],
    "surveydata/gnss/gps_record_index": ["gps_record_index_test", "record_samples_test",
                                         "record_faults_test"],
    "surveydata/gnss/gps_record_outcome": ["gps_record_reader_test", "gps_record_writer_test"],
    "surveydata/gnss/gps_record_reader": ["gps_record_reader_test", "record_faults_test",
                                          "gps_record_reader_property_test"],
    "surveydata/gnss/gps_record_writer": ["gps_record_writer_test", "record_faults_test",
                                          "posix_files_test"],
    "surveydata/gnss/gps_time": ["gps_time_test"],
    "surveydata/gnss/record_change": ["record_change_test", "c_interface_measurement_test",
                                      "record_set_program_test"],
    "surveydata/gnss/record_damage": ["gps_record_reader_test", "gps_record_reader_property_test"],
    "surveydata/gnss/record_source": ["gps_record_reader_test", "gps_record_index_test",
                                      "record_faults_test"],
    "surveydata/gnss/record_walk": ["gps_record_index_test", "gps_record_reader_test",
                                    "record_walk_test", "gps_record_reader_property_test"],
    "surveydata/gnss/text_column": ["gps_record_columns_test"],
    "surveydata/gnss/frame_": ["frame_explanation_test", "record_samples_test",
                               "gps_record_file_test", "record_frame_test", "record_encode_test",
                               "c_interface_measurement_test", "explain_frame_test"],
    "surveydata/gnss/record_encode": ["record_encode_test"],
    "surveydata/gnss/record_frame": ["record_samples_test", "gps_record_file_test",
                                     "record_frame_test", "record_encode_test"],
    "surveydata/imaging/": ["img_camera_info_test", "img_chip_window_info_test",
                            "img_exterior_orientation_test", "img_interior_orientation_test",
                            "record_rules_test", "pair_rules_test"],
    "surveydata/scanning/": ["scan_def_point_test", "scan_definition_test", "scan_area_test",
                             "scan_dome_area_test", "scan_polygon_area_test",
                             "scan_rectangular_area_test", "scan_test",
                             "prepared_area_test", "pair_rules_test", "layout_test",
                             "memory_faults_test"],
    "surveydata/sphere_geometry/": ["angles_test", "vectors_test", "sphere_point_test",
                                    "area_edges_test", "area_frame_test", "quick_trig_test",
                                    "ring_curves_test",
                                    "area_rules_test", "filter_bounds_test", "cell_grid_test",
                                    "hz_intervals_test", "slab_index_test", "boundary_band_test",
                                    "decided_raster_test", "prepared_sphere_area_test",
                                    "great_circle_arc_test", "sphere_area_test", "scan_area_test",
                                    "geometry_cases_test", "prepared_area_test",
                                    "sphere_area_property_test",
                                    "prepared_area_long_run 1000000 20260101 80"],
    "surveydata/scanning/area_faults": ["area_faults_test"],
    "surveydata/scanning/explain_direction": ["area_explanation_test"],
    "surveydata/sphere_geometry/boundary_distance": ["boundary_distance_test",
                                                     "area_explanation_test"],
    "surveydata/sphere_geometry/close_crossings": ["close_crossings_test", "slab_index_test",
                                                   "prepared_area_long_run 1000000 20260101 80"],
    "surveydata/sphere_geometry/column_order": ["column_order_test", "slab_index_test",
                                                "prepared_area_long_run 1000000 20260101 80"],
    "surveydata/sphere_geometry/edge_sweep": ["edge_sweep_test", "ring_crossings_test"],
    "surveydata/sphere_geometry/ring_crossings": ["ring_crossings_test", "edge_sweep_test",
                                                  "sphere_area_test"],
    "surveydata/sphere_geometry/side_of_line": ["side_of_line_test", "edge_sweep_test"],
    "surveydata/sphere_geometry/decided_raster": ["decided_raster_test",
                                                  "prepared_sphere_area_test",
                                                  "prepared_area_long_run 1000000 20260101 80"],
    "surveydata/total_station/": ["tps_setup_data_test", "tps_meas_data_test",
                                  "tps_correction_data_test", "tps_calibration_data_test",
                                  "record_rules_test", "pair_rules_test"],
    "tools/": ["program_test", "posix_program_test", "descriptions_test"],
    "tools/area/": ["area_parts_test", "area_program_test", "posix_program_test"],
    "tools/area/direction_reader": ["direction_reader_test", "area_program_test"],
    "tools/command_line/": ["descriptions_test", "program_test", "posix_program_test",
                            "record_set_steps_test"],
    "tools/command_line/suggestion": ["suggestion_test", "program_test"],
    "tools/command_line/text": ["text_test", "area_program_test", "record_show_program_test"],
    "tools/output/": ["program_test", "posix_program_test", "record_export_program_test",
                      "area_program_test"],
    "tools/output/chart": ["chart_test", "record_plot_program_test"],
    "tools/output/csv": ["csv_cell_test", "record_export_program_test", "area_program_test"],
    "tools/output/json_writer": ["record_export_program_test", "record_list_program_test",
                                 "record_check_program_test", "area_program_test"],
    "tools/output/output": ["program_test", "posix_program_test", "record_files_program_test",
                            "area_program_test", "view_command_test"],
    "tools/output/gps_time": ["gps_time_text_test", "record_list_program_test"],
    "tools/output/label_placer": ["label_placer_test", "area_program_test"],
    "tools/output/raster": ["raster_test", "area_program_test"],
    "tools/output/replace_file": ["record_set_posix_test", "record_set_steps_test"],
    "tools/output/svg": ["svg_test", "area_program_test", "record_plot_program_test"],
    "tools/platform/": ["program_test", "posix_program_test", "input_file_program_test"],
    "tools/platform/browser": ["view_command_posix_test"],
    "tools/platform/file_": ["record_set_posix_test", "record_set_steps_test"],
    "tools/record/": ["record_filter_test", "record_list_program_test", "record_show_program_test",
                      "record_export_program_test", "record_plot_program_test",
                      "record_set_program_test", "posix_program_test"],
    "tools/record/changed_fields": ["record_diff_program_test"],
    "tools/record/common_records": ["common_records_test", "record_diff_program_test"],
    "tools/record/compare_records": ["record_diff_program_test", "record_diff_posix_test"],
    "tools/record/describe_record": ["record_export_program_test", "record_show_program_test",
                                     "record_set_program_test"],
    "tools/record/difference_writer": ["record_diff_program_test"],
    "tools/record/each_measurement": ["record_export_program_test", "record_files_program_test",
                                      "record_plot_program_test"],
    "tools/record/join_records": ["record_join_program_test", "record_files_program_test"],
    "tools/record/kept_records": ["record_join_program_test", "record_files_program_test"],
    "tools/record/ordered_jobs": ["ordered_jobs_test", "ordered_jobs_program_test",
                                  "record_files_program_test"],
    "tools/record/piece_output": ["record_files_program_test", "record_list_program_test",
                                  "record_export_program_test", "posix_program_test"],
    "tools/record/record_check": ["record_check_program_test", "record_files_program_test"],
    "tools/record/record_columns": ["record_export_program_test", "record_filter_test"],
    "tools/record/record_condition": ["record_filter_test"],
    "tools/record/record_cut": ["record_join_program_test", "record_files_program_test"],
    "tools/record/record_diff": ["record_diff_program_test"],
    "tools/record/record_commands": ["program_test", "record_show_program_test",
                                     "record_set_program_test"],
    "tools/record/record_files": ["record_files_program_test", "record_pass_posix_test",
                                  "record_join_program_test",
                                  "record_check_program_test", "posix_program_test"],
    "tools/record/record_findings": ["record_check_program_test", "record_files_program_test"],
    "tools/record/record_join": ["record_join_program_test"],
    "tools/record/record_list": ["record_list_program_test", "record_files_program_test"],
    "tools/record/record_pass": ["record_files_program_test", "record_pass_posix_test",
                                 "ordered_jobs_program_test", "record_list_program_test",
                                 "posix_program_test"],
    "tools/record/record_walk": ["record_files_program_test", "record_pass_posix_test",
                                 "record_list_program_test", "input_file_program_test"],
    "tools/record/explain_frame": ["explain_frame_test", "record_show_program_test"],
    "tools/record/find_frame": ["record_set_program_test", "record_show_program_test"],
    "tools/record/patch_frame": ["record_set_program_test"],
    "tools/record/record_set": ["record_set_program_test", "record_set_posix_test"],
    "tools/record/satellite_series": ["satellite_series_test", "record_plot_program_test"],
    "tools/view/": ["view_command_test", "view_command_posix_test"],
}


def tests_for(file):
    return TESTS[max((rule for rule in TESTS if file.startswith(rule)), key=len)]


def stale_entries():
    """Entries of the tables and of explained.json whose file, test or mutation does not exist."""
    built = {path.stem for path in PROJECT.glob("tests/**/*") if path.suffix in (".cpp", ".c")}
    for file, tests in TESTS.items():
        if not any(PROJECT.glob(file + "*")):
            yield f"mutate.py: there is no file {file}*"
        yield from (f"mutate.py: there is no test {name}" for name in names_of(tests)
                    if name not in built)
    known = {(found["file"], found["before"], found["after"]) for found in candidates(None)}
    for entry in json.loads(EXPLAINED.read_text()):
        if (entry["file"], entry["before"], entry["after"]) not in known:
            yield f"explained.json: {entry['file']} has no mutation {entry['after']}"


def mutations_of_line(line):
    """Yields (kind, mutated line)."""
    code = line.split("//")[0].rstrip()
    if not code.strip() or PASSED_OVER.match(code) or '"' in code:
        return
    for pattern, replacement, kind in SWAPS:
        if "&" in pattern and TYPE_AMPERSAND.search(code):
            continue
        for match in re.finditer(pattern, code):
            yield kind, code[:match.start()] + replacement + code[match.end():]
    for match in INTEGER.finditer(code):
        number = int(match.group(), 0)
        yield "constant", code[:match.start()] + str(number + 1) + code[match.end():]
    for match in DECIMAL.finditer(code):
        yield "constant", code[:match.start()] + f"({match.group()} + 0.25)" + code[match.end():]
    if STATEMENT.match(code):
        yield "dropped statement", ""


def candidates(only):
    files = sorted(PROJECT.glob("surveydata/**/*.cpp"))
    files += [PROJECT / "surveydata/object_model/handle.h", PROJECT / "surveydata/gnss/record_frame.h"]
    files += sorted(PROJECT.glob("surveydata/gnss/frame_*.h"))
    files += sorted(PROJECT.glob("surveydata/sphere_geometry/*.h"))
    files += [path for path in sorted(PROJECT.glob("tools/**/*.cpp")) + [
                  PROJECT / "tools" / name for name in HEADERS_WITH_CODE]
              if not path.stem.endswith("_windows") and path.stem != "describe_commands"]
    found = []
    for path in files:
        name = str(path.relative_to(PROJECT))
        if only and not re.search(only, name):
            continue
        for number, line in enumerate(path.read_text().splitlines(), 1):
            for kind, mutated in mutations_of_line(line):
                found.append({"file": name, "line": number, "kind": kind,
                              "before": line.strip(), "after": mutated.strip()})
    return found


def choose(found, count, seed):
    """At most one mutation per line; per file in proportion to its size, 1 to MOST_OF_A_FILE."""
    rng = random.Random(seed)
    rng.shuffle(found)
    seen, by_file = set(), {}
    for mutation in found:
        place = (mutation["file"], mutation["line"])
        if place not in seen:
            seen.add(place)
            by_file.setdefault(mutation["file"], []).append(mutation)
    total = sum(len(of_file) for of_file in by_file.values())
    chosen = []
    for name in sorted(by_file):
        share = min(max(1, round(count * len(by_file[name]) / total)), MOST_OF_A_FILE)
        chosen += by_file[name][:share]
    return chosen


def run(command, timeout, **options):
    try:
        return subprocess.run(command, timeout=timeout, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False, **options)
    except subprocess.TimeoutExpired:
        return None


def run_test(program, test, timeout):
    options = test.split()[1:] or ["--gtest_fail_fast"]
    environment = dict(os.environ, RC_PARAMS="seed=20260101 max_success=1000")
    return run([str(program), *options], timeout, cwd=SOURCE / "tests", env=environment)


def prepare(all_tests, jobs):
    """Builds the tests. Returns the program of each, and its time limit."""
    files = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=PROJECT, check=True,
                           capture_output=True, text=True).stdout.split("\n")
    for name in filter(None, files):
        source, target = PROJECT / name, SOURCE / name
        if not source.is_file():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.exists() or target.read_bytes() != source.read_bytes():
            shutil.copy(source, target)
    configure = ["cmake", "-G", "Ninja", "-S", SOURCE, "-B", BUILD, "-D", "CMAKE_BUILD_TYPE=Debug",
                 "-D", "CMAKE_CXX_FLAGS_DEBUG=-O1 -D_GLIBCXX_ASSERTIONS -fstack-protector-strong",
                 "-D", "SURVEYDATA_BUILD_TOOLS=ON", "-D", "SURVEYDATA_BUILD_BENCHMARKS=OFF",
                 "-D", "SURVEYDATA_BUILD_EXAMPLES=OFF"]
    for command in (configure, ["cmake", "--build", BUILD, "-j", str(jobs), "--target",
                                *names_of(all_tests)]):
        done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)
        if done.returncode != 0:
            sys.exit(done.stdout[-4000:])
    programs = {}
    for test in all_tests:
        name = test.split()[0]
        program = next(path for path in BUILD.glob(f"tests/**/{name}") if path.is_file())
        # A test that already fails would seem to detect every mutation.
        begin = time.monotonic()
        done = run_test(program, test, 900)
        if done is None or done.returncode != 0:
            sys.exit(f"{test} fails without a mutation\n{done.stdout[-4000:] if done else ''}")
        programs[test] = program, max(LONGEST_RUN, 5 * (time.monotonic() - begin))
    return programs


def names_of(tests):
    return [test.split()[0] for test in tests]


def try_mutation(mutation, programs, jobs):
    """Applies the mutation, and reverts it. Returns the verdict and the test that detected it."""
    path = SOURCE / mutation["file"]
    lines = path.read_text().split("\n")
    original = "\n".join(lines)
    before = lines[mutation["line"] - 1]
    indent = before[:len(before) - len(before.lstrip())]
    lines[mutation["line"] - 1] = indent + mutation["after"]
    path.write_text("\n".join(lines))
    try:
        tests = tests_for(mutation["file"])
        built = run(["cmake", "--build", str(BUILD), "-j", str(jobs), "--target", *names_of(tests)],
                    900)
        if built is None or built.returncode != 0:
            return "does not compile", None
        for test in tests:
            program, longest_run = programs[test]
            done = run_test(program, test, longest_run)
            if done is None:
                return "killed", f"{program.name} (never ends)"
            if done.returncode != 0:
                return "killed", program.name
        return "survived", None
    finally:
        path.write_text(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", help="a regular expression for the file name")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--again", action="store_true", help="those that survived the last run")
    parser.add_argument("--check", action="store_true", help="only check the tables")
    arguments = parser.parse_args()

    if arguments.check:
        stale = list(stale_entries())
        stale += sorted({f"mutate.py: no tests for {mutation['file']}" for mutation in candidates(None)
                         if not any(map(mutation["file"].startswith, TESTS))})
        print(*stale, sep="\n", end="\n" if stale else "")
        return 1 if stale else 0

    chosen = choose(candidates(arguments.only), arguments.count, arguments.seed)
    if arguments.again:
        with open(RESULTS, encoding="utf-8") as results:
            survived = {json.dumps([mutation["file"], mutation["before"], mutation["after"]])
                        for mutation in map(json.loads, results) if mutation["verdict"] == "survived"}
        chosen = [mutation for mutation in candidates(arguments.only) if json.dumps(
            [mutation["file"], mutation["before"], mutation["after"]]) in survived]
    if arguments.list:
        for mutation in chosen:
            print(f"{mutation['file']}:{mutation['line']}: {mutation['before']}  =>  "
                  f"{mutation['after'] or '(dropped)'}")
        print(f"{len(chosen)} mutations")
        return 0

    explained = {(entry["file"], entry["before"], entry["after"]): entry["why"]
                 for entry in json.loads(EXPLAINED.read_text())}
    programs = prepare(sorted({test for mutation in chosen for test in tests_for(mutation["file"])}),
                       arguments.jobs)
    verdicts = Counter()
    part = RESULTS.with_suffix(".part")  # an interrupted run keeps the previous results
    with open(part, "w", encoding="utf-8") as results:
        for position, mutation in enumerate(chosen, 1):
            begin = time.monotonic()
            verdict, by = try_mutation(mutation, programs, arguments.jobs)
            if verdict == "survived":
                why = explained.get((mutation["file"], mutation["before"], mutation["after"]))
                if why:
                    verdict, by = "explained", why
            verdicts[verdict] += 1
            results.write(json.dumps(dict(mutation, verdict=verdict, by=by)) + "\n")
            results.flush()
            print(f"{position}/{len(chosen)} {verdict:<16} {mutation['file']}:{mutation['line']} "
                  f"{mutation['before']}  =>  {mutation['after'] or '(dropped)'}"
                  f"  [{by or '-'}, {time.monotonic() - begin:.0f} s]", flush=True)
    part.replace(RESULTS)
    print(", ".join(f"{count} {verdict}" for verdict, count in sorted(verdicts.items())))
    return 1 if verdicts["survived"] else 0


if __name__ == "__main__":
    sys.exit(main())
