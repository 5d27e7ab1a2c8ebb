#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Runs the benchmarks and holds each figure to its bar.

Whole processes are compared as ratios of alternating runs, since absolute times drift on shared machines. The drawings
come from tools/make_drawing.py of the shared folder (../shared, or LM_SHARED).
"""
import json
import os
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SHARED = os.environ.get("LM_SHARED", os.path.join(ROOT, "..", "shared"))
BUILD = os.environ.get("LM_BENCH_BUILD", os.path.join(ROOT, "build", "release"))
DATA = os.environ.get("LM_BENCH_DATA", os.path.join(BUILD, "bench", "drawings"))
ROUNDS = int(os.environ.get("LM_BENCH_ROUNDS", "5"))
EZDXF = """
import sys, ezdxf
n = 0
out = open('/dev/null', 'w')
for insert in ezdxf.readfile(sys.argv[1]).modelspace().query('INSERT'):
    print(insert.dxf.handle, insert.dxf.name, insert.dxf.layer, insert.dxf.insert, insert.dxf.rotation, file=out)
    for a in insert.attribs:
        print(a.dxf.tag, a.dxf.text, a.is_invisible, a.dxf.handle, file=out)
        n += 1
print(n)
"""

results = []


def program(name):
    return os.path.join(BUILD, "bin", name)


def drawing(size, binary=False):
    os.makedirs(DATA, exist_ok=True)
    path = os.path.join(DATA, size + ".dxf")
    twin = os.path.join(DATA, size + ".bin.dxf")
    if not (os.path.exists(path) and os.path.exists(twin)):
        print("making the drawing", size, flush=True)
        subprocess.run(["/usr/bin/python3", os.path.join(SHARED, "tools", "make_drawing.py"), "--size", size, "--bin",
                        path], check=True)
    return twin if binary else path


class Run:
    """One process: wall time in seconds, peak memory in bytes, what it printed."""

    def __init__(self, *command, keep=True):
        began = time.perf_counter()
        child = subprocess.Popen(command, stdout=subprocess.PIPE if keep else open(os.path.join(DATA, "out"), "wb"))
        self.output = child.stdout.read() if keep else b""
        _, status, usage = os.wait4(child.pid, 0)
        self.seconds = time.perf_counter() - began
        self.memory = usage.ru_maxrss * 1024
        child.returncode = os.waitstatus_to_exitcode(status)
        if child.returncode != 0:
            sys.exit("%s ended with %d" % (" ".join(command), child.returncode))


def best(runs):
    return min(run.seconds for run in runs)


def alternate(*makers, rounds=ROUNDS):
    """Runs each maker in turn, several times; gives the runs of each."""
    runs = [[] for _ in makers]
    for _ in range(rounds):
        for list_, maker in zip(runs, makers):
            list_.append(maker())
    return runs


def report(what, figure, bar, unit, least=False):
    passed = figure >= bar if least else figure <= bar
    results.append(passed)
    print("%-66s %9.2f %-9s bar %s %g  %s" % (what, figure, unit, ">=" if least else "<=", bar,
                                            "pass" if passed else "MISSED"), flush=True)


def whole_processes():
    text, binary, middle = drawing("L"), drawing("L", True), drawing("M")
    size, middle_size = os.path.getsize(text), os.path.getsize(middle)
    lmhost = program("lmhost")
    scan, opened, touched, opened_binary, listed, prompted, opened_middle = alternate(
        lambda: Run(program("lm_bench_scan"), text),
        lambda: Run(program("lm_bench_open"), text),
        lambda: Run(program("lm_bench_open"), text, "touch"),
        lambda: Run(program("lm_bench_open"), binary),
        lambda: Run(lmhost, "blocks", text, "--no-prompts", keep=False),
        lambda: Run(lmhost, "blocks", text, keep=False),
        lambda: Run(program("lm_bench_open"), middle))
    if int(opened[0].output) != 200000 or int(touched[0].output) != 1000000 or int(opened_binary[0].output) != 200000:
        sys.exit("a drawing wasn't read whole")
    base = best(scan)
    print("scan of %d MB by memchr: %.3f s" % (size >> 20, base))
    report("open L, times the scan", best(opened) / base, 5, "times")
    report("open L and read every object, times the scan", best(touched) / base, 5, "times")
    report("open L as binary, times open as text", best(opened_binary) / best(opened), 1, "times")
    report("seconds a byte at L, times those at M", best(opened) / size / (best(opened_middle) / middle_size), 1.15,
           "times")
    report("peak memory of opening L, times the file", max(r.memory for r in opened) / size, 2.5, "times")
    report("blocks L --no-prompts, times the scan", best(listed) / base, 9, "times")
    print("blocks L with prompts: %.2f times the scan" % (best(prompted) / base))
    small = best([Run(lmhost, "blocks", middle, keep=False) for _ in range(3)])
    report("blocks with prompts, seconds a reference at L, times those at M", best(prompted) / 100000 / (small / 20000),
           1.3, "times")


def against_ezdxf():
    middle = drawing("M")
    peer = Run("/usr/bin/python3", "-c", EZDXF, middle)
    if int(peer.output) != 160000:
        sys.exit("ezdxf found another number of attributes")
    ours = best([Run(program("lmhost"), "blocks", middle, "--no-prompts", keep=False) for _ in range(3)])
    report("ezdxf's listing of M, times ours", peer.seconds / ours, 40, "times", least=True)


def timed(name):
    """Nanoseconds by benchmark of a program with Google Benchmark: the best of several rounds, for each item where
    the benchmark counts items."""
    environment = dict(os.environ, LM_BENCH_DRAWING=drawing("L"))
    answer = subprocess.run([program(name), "--benchmark_format=json", "--benchmark_repetitions=%d" % ROUNDS,
                             "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.2"],
                            env=environment, check=True, stdout=subprocess.PIPE)
    times = {}
    for run in json.loads(answer.stdout)["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        if run.get("error_occurred"):
            sys.exit("%s: %s" % (run["name"], run["error_message"]))
        scale = {"ns": 1, "us": 1e3, "ms": 1e6}[run["time_unit"]]
        value = 1e9 / run["items_per_second"] if "items_per_second" in run else run["cpu_time"] * scale
        key = run["name"].split("/iterations")[0]
        times[key] = min(value, times.get(key, value))
    return times


def operations():
    times = timed("lm_bench_operations")
    report("look-up by handle, hot, in a million objects", times["handleLookUp"], 3, "ns")
    report("open and close an object for reading", times["openAndClose"], 25, "ns")
    report("walk over model space with one attribute by tag, a reference", times["walkByTag"], 70, "ns")
    print("a read of memory that no cache holds: %.0f ns; the walk takes %.2f of them a reference" %
          (times["coldRead"], times["walkByTag"] / times["coldRead"]))
    report("SearchAttribute, 8 attributes", times["searchAttribute"], 400, "ns")
    report("SearchAttributes without prompts, 8 attributes", times["searchAttributes"], 1500, "ns")
    print("BuscarBlocos by prefix: %.0f ns a reference found; %.0f ns without a match" %
          (times["searchBlocksByPrefix"], times["searchBlocksWithoutMatch"]))
    report("BuscarBlocos without a match in 200,000 entities", times["searchBlocksWithoutMatch"] / 1000, 20, "us")
    report("RZString made and copied, times std::u16string", times["makeAndCopy"] / times["makeAndCopyStandard"], 1.2,
           "times")
    report("RZString equality, times that of the traits", times["equality"] / times["equalityByTraits"], 0.5, "times")
    report("five parts by constructor, times chained +", times["joinedByConstructor"] / times["joinedByPlus"], 0.5,
           "times")


def changes():
    times = timed("lm_bench_database")
    report("xData of a chain of five records", times["readExtendedData"], 500, "ns")
    report("setXData of a chain of five records", times["writeExtendedData"], 500, "ns")
    report("append a reference with eight attributes, undo on", times["appendReference"] / 1e3, 3, "us")
    report("edit one attribute of L as a step of undo", times["editAttribute"] / 1e3, 5, "us")
    print("the same and take it back: %.2f us" % (times["editAndUndo"] / 1e3))
    report("deepCloneObjects of 10,000 references", times["cloneReferences"] / 1e6, 100, "ms")
    report("insert of a symbol into L", times["insertSymbol"] / 1e3, 200, "us")
    report("purge, time for a block of 8,000, times that of 1,000", times["purgeBlocks/8000"] / times["purgeBlocks/1000"],
           2, "times")
    report("read a LISP symbol", times["readSymbol"], 1000, "ns")


def links():
    times = timed("lm_bench_links")
    slowest = max(times[name] for name in times if name.startswith("followLink"))
    report("getObjIdEsquema, the slowest kind of link", slowest, 500, "ns")
    report("reassociaBlocos over 10,000 pairs", times["mendCopy"] / 1e6, 100, "ms")


def symbols():
    times = timed("lm_bench_symbols")
    report("InserirBloco of a block that is there, 8 attributes", times["insertKnownBlock"] / 1e3, 15, "us")
    report("RedefinirBloco, 10,000 references, 8 attributes", times["redefineBlock"] / 1e6, 500, "ms")
    report("BuscarBlocos of 10,000 references, 8 attributes", times["listBlocks"] / 1e6, 60, "ms")
    report("BuscarBlocos3, time for an attribute at 10,000 references, times that at 1,000",
           times["searchByValue/10000/8"] / times["searchByValue/1000/8"], 2, "times")
    report("prompts, time for an attribute of 512, times that of 8", times["readPrompts/512"] / times["readPrompts/8"],
           3, "times")


def attributes():
    times = timed("lm_bench_attributes")
    report("AtualizarAtributo, 8 attributes, without a change", times["updateWithoutChange"], 600, "ns")
    report("AtualizarAtributo, 8 attributes, written as a step of undo", times["updateWithUndo"] / 1e3, 2, "us")
    report("AtualizarAtributos of 8 records, all written, undo on", times["updateByList"] / 1e3, 10, "us")
    report("AtualizarAtributos of 8 records without a change", times["updateByListWithoutChange"] / 1e3, 10, "us")


def pages():
    times = timed("lm_bench_pages")
    slowest = max(times[name] for name in times if name.startswith("walkFor"))
    report("a page setting at the end of 100,000 entities", slowest / 1e6, 6, "ms")
    slowest = max(times[name] for name in times if name.startswith("writeOnTheFirstCarrier"))
    report("a page setting written on the first of 100,000 entities", slowest / 1e3, 5, "us")
    report("MostrarPagina among 1,000 pages and 100,000 references", times["showPage"] / 1e6, 3, "ms")
    report("MostrarPaginaPDF, the same project", times["showPageOfSeries"] / 1e3, 50, "us")
    report("SSGetCrossing around a point of that project", times["selectAroundAPoint"] / 1e3, 100, "us")
    report("SSGetCrossing after an edit of one reference", times["selectAfterAnEdit"] / 1e3, 200, "us")
    print("the first SSGetCrossing of that project: %.0f ms" % (times["selectForTheFirstTime"] / 1e6))
    # It looks at the layer of each entity, and at the box where the layer is shown.
    print("ZoomExtends of a page of that project: %.2f ms" % (times["zoomToPage"] / 1e6))


def reactor():
    times = timed("lm_bench_reactor")
    slowest = max(times["eventWithoutMatch"], times["changeWithoutMatch"])
    report("an event to a derived class, of an object without a match", slowest, 300, "ns")
    slowest = max(times["eventOfContact"], times["eventOfOtherBlock"], times["erasedContact"])
    report("an event to a derived class, of a reference with its name read", slowest, 1000, "ns")


def settings():
    times = timed("lm_bench_settings")
    for count in (40, 2000):
        report("a setting read from a file of %d, times bare Qt" % count,
               times["readSetting/%d" % count] / times["bareRead/%d" % count], 1.3, "times")
        report("a setting written to a file of %d, times bare Qt" % count,
               times["writeSetting/%d" % count] / times["bareWrite/%d" % count], 1.3, "times")


def workbooks():
    times = timed("lm_bench_workbooks")
    for sheets in (1, 40):
        report("GetValue over 50,000 x 10 cells, times a bare loop, %d sheet%s" % (sheets, "s"[:sheets > 1]),
               times["getValue/%d" % sheets] / times["bareLoop/%d" % sheets], 1.2, "times")


def converting():
    text, middle = drawing("L"), drawing("M")
    target = os.path.join(DATA, "written.dxf")
    lmhost = program("lmhost")
    scanned, converted = alternate(lambda: Run(program("lm_bench_scan"), text, target),
                                   lambda: Run(lmhost, "convert", text, target, keep=False))
    report("read and write L, times scan and plain write", best(converted) / best(scanned), 6.5, "times")
    script = "import sys, ezdxf; ezdxf.readfile(sys.argv[1]).saveas(sys.argv[2])"
    peer = Run("/usr/bin/python3", "-c", script, middle, target)
    ours = best([Run(lmhost, "convert", middle, target, keep=False) for _ in range(3)])
    report("ezdxf's reading and writing of M, times ours", peer.seconds / ours, 50, "times", least=True)
    os.remove(target)


if __name__ == "__main__":
    if not os.path.exists(os.path.join(SHARED, "tools", "make_drawing.py")):
        sys.exit("shared drawings not found: %s has no tools/make_drawing.py" % SHARED)
    parts = (("processes", whole_processes), ("operations", operations), ("changes", changes),
             ("attributes", attributes), ("links", links), ("pages", pages), ("symbols", symbols),
             ("reactor", reactor), ("settings", settings), ("workbooks", workbooks), ("converting", converting),
             ("ezdxf", against_ezdxf))
    wanted = sys.argv[1:] or [name for name, _ in parts]
    for name, part in parts:
        if name in wanted:
            part()
    print("%d of %d bars passed" % (sum(results), len(results)))
    sys.exit(0 if all(results) else 1)
