#!/usr/bin/env python3
"""Counts the instructions that reading, writing and editing take; fails where a limit is exceeded.

  bench/gates.py [BUILD]     BUILD holds the programs in bin/, built as a release (build/release)
  bench/gates.py --programs  prints their names

Instructions, since times are noisy: valgrind's callgrind counts those inside of one function of a
benchmark whose number of runs is fixed. Where the goal is still far, the limit only keeps what was
reached; a gate that nears its limit says so. What the peers take stands below, where installed.
Edits of n and of 2n things have the same limit a thing, so that they stay linear.
"""
import json
import re
import subprocess
import sys
import tempfile
from dataclasses import dataclass, replace
from functools import cache
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
NEAR = 0.9
NONE = float("inf")


@dataclass(frozen=True)
class Gate:
    what: str
    program: str
    benchmark: str  # regular expression of its name
    function: str  # whose instructions count, with what it calls
    limit: float = NONE  # instructions a byte, or a thing
    goal: float = NONE
    bytes: int = 0  # or things, of one run; 0: the benchmark's counter "bytes"
    peer: str = ""  # a benchmark of the same program, of whose count a part is meant


GATES = [
    Gate("text to components, and destroying them, 1 kB", "parse_bench", "^components/1kB",
         "*measuredComponents*", 460, 250),
    Gate("text to components, the gate included, 1 kB", "parse_bench", "^components_and_gate/1kB",
         "*measuredParse*", 900, 900),
    Gate("components to text with ranges, 1 kB", "generate_bench", "^textAndRanges/1kB",
         "*measuredGeneration*", 90, 90),
    *[Gate(f"text to tokens, dialect {dialect}", "lexer_bench",
           f"^tokens<ordinaryText>/1024/{dialect}/", "sqlet::lex(*", 45, 45, bytes=1024)
      for dialect in range(1, 6)],
    *[Gate(f"tick and untick all of {n} fields", "selection_bench", f"^selectAll/{n}$",
           "*changeItemComponentAllSelection*", 3500, bytes=n) for n in (10000, 20000)],
    *[Gate(f"check {n} columns against {10 * n} fields", "validation_bench",
           f"^columnsOfManyTables/{n // 1000}$", "*invalidateRefComponents_selectColumn*",
           13000, bytes=n) for n in (10000, 20000)],
    *[Gate(f"link and unlink across {n} tables", "join_bench", f"^linkAcrossCommas/{n}$",
           "*Necessary*", 2300, bytes=n) for n in (10000, 100000)],
    *[Gate(f"lay out a diagram of {n} boxes", "auto_layout_bench", f"^layOut/schema/{n}/",
           "*layoutInLayers*", 8_000_000, bytes=n) for n in (100, 200)],
    Gate("build an item of 30 rows with its links, of 200", "canvas_bench", "^build/200/",
         "*measuredBuild*", 690_000, bytes=200),
    *[Gate(f"repaint {n} items, an object in view", "canvas_bench", f"^repaintAmong/{n}/",
           "*measuredRepaint*", 240_000) for n in (250, 2000)],
    Gate("a step of a drag of an item among 250, painted", "canvas_bench", "^dragAmong/250/",
         "*measuredDrag*", 2_440_000, bytes=1),
    Gate("the same among 2000, an object painted", "canvas_bench", "^dragAmong/2000/",
         "*measuredDrag*", 269_000),
    Gate("an alias changed among 200 joined tables, until all shows it", "builder_bench",
         "^gatedEdits/1/200/", "*measuredEdit*", 330_000, bytes=200),
    # Widgets for 10,000 rows take ten times those for 1,000, at least.
    *[Gate(f"refresh {n} rows, of a widget for each of 1000", "row_list_bench",
           f"^refreshOnDemand/{n}/", "*measuredRefresh*", 0.05, 0.1, 1, "^refreshWidgets/1000/")
      for n in (1000, 10000)],
    Gate("a page of rows, of rows that a delegate paints", "row_list_bench",
         "^pagesOnDemand/1000/", "*measuredPages*", 1.3, 1.5, 1, "^pagesPainted/1000/"),
]
PEERS = [
    Gate(f"{peer}, 1 kB", "parse_bench", f"^{peer}/1kB", function)
    for peer, function in (("pg_query_parse", "*readByPgQuery*"),
                           ("sqlite3_prepare_v2", "*readBySqlite*"))
]


@cache
def counted(gate, build):
    """Instructions a byte; None if the program has no such benchmark."""
    with tempfile.TemporaryDirectory() as folder:
        result = Path(folder) / "result.json"
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/callgrind.out",
             f"--toggle-collect={gate.function}", str(build / "bin" / gate.program),
             f"--benchmark_filter={gate.benchmark}", f"--benchmark_out={result}",
             "--benchmark_min_time=0"],
            capture_output=True, text=True)
        if "Failed to match any benchmarks" in run.stderr: return None
        collected = re.search(r"Collected : (\d+)", run.stderr)
        if run.returncode != 0 or not collected:
            sys.exit(f"{gate.what}: no count\n{run.stdout}\n{run.stderr}")
        benchmarks = json.loads(result.read_text())["benchmarks"]
    if len(benchmarks) != 1 or "error_message" in benchmarks[0]:
        sys.exit(f"{gate.what}: expected one benchmark, got {benchmarks}")
    run_bytes = gate.bytes or benchmarks[0]["bytes"]
    return int(collected[1]) / (benchmarks[0]["iterations"] * run_bytes)


def measured(gate, build):
    """What is held against the limit; None if the program has no such benchmark."""
    if not gate.peer: return counted(gate, build)
    peer = replace(gate, benchmark=gate.peer, peer="")
    return counted(replace(gate, peer=""), build) / counted(peer, build)


def shown(limit):
    return "-" if limit == NONE else f"{limit:.3g}" if limit < 10 else f"{limit:.0f}"


def main():
    if sys.argv[1:] == ["--programs"]:
        return print(*sorted({gate.program for gate in GATES + PEERS}))
    build = Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "build/release"
    is_clean = True
    print("instructions a byte or thing   limit    goal", flush=True)
    for gate in GATES + PEERS:
        count = measured(gate, build)
        if count is None and gate in PEERS: continue  # not installed
        if count is None: sys.exit(f"{gate.what}: no benchmark {gate.benchmark}")
        verdict = "EXCEEDED" if count > gate.limit else "near" if count > NEAR * gate.limit else ""
        digits = 3 if gate.peer else 1
        print(f"{count:28.{digits}f} {shown(gate.limit):>7} {shown(gate.goal):>7}  {gate.what}  {verdict}"
              .rstrip(), flush=True)
        is_clean = is_clean and count <= gate.limit
    sys.exit(0 if is_clean else 1)


main()
