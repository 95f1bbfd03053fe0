#!/usr/bin/env python3
"""exports_check.py VLTRACE runs two processes' traces, whole and damaged, through every export and compares what they say
with a model and with each other, read by this language's own readers. Exit status: 0 only if all agree."""
import collections
import gzip
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import tracefile

TOOL, SOURCE = sys.argv[1], Path(__file__).resolve().parents[2]
NAME = "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.%03d~~1.%d.trc3"


def run(*words, status=0, err=False):
    done = subprocess.run([TOOL, *map(str, words)], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    assert done.returncode == status, (words, done.returncode, done.stderr)
    return (done.stderr if err else done.stdout).decode()


def same(what, one, other):
    assert one == other, (what, [pair for pair in zip(one, other) if pair[0] != pair[1]][:1] or (len(one), len(other)))


def split(level, text):
    """The text of a record without its status and colour, and what kind it is."""
    status = 0
    if level == "E":
        number, text = text.split(" ", 1)
        status = int(number)
    text = re.sub("^'`I([0-9A-F]{2})`'", "", text)
    kinds = {">": "call", "<": "call", "N": "stamp", "E": "error" if status else "note"}
    return text, kinds.get(level, "message")


def expected(trace, file, pid):
    for offset, thread, level, text, now, chain, left, took in trace.records:
        plain, kind = split(level, text)
        yield (file, str(pid), offset, *tracefile.date_and_time(now), thread, level, kind, len(chain),
               left or chain[-1] if left or chain else "", took, plain)


FIELDS = ("file", "process", "offset", "date", "time", "thread", "level", "kind", "depth", "function", "milliseconds", "text")


def rows_of(records):
    for o in records:
        o["file"] = Path(o["file"]).name
    return [tuple(o.get(f, None if f == "milliseconds" else "") for f in FIELDS) for o in records]


def lines_agree(folder, traces):
    objects = [json.loads(line) for line in run("export", folder).splitlines()]
    records = [o for o in objects if o["type"] == "record"]
    times = [o["time"] for o in records]
    same("order", times, sorted(times))
    seen = rows_of(records)
    for file, (pid, trace) in traces.items():
        same(file, [row for row in seen if row[0] == file], list(expected(trace, file, pid)))
    same("offsets", [o for o in objects if o["type"] == "header"][0]["lines"][0], "trace3")
    return records


def chrome(folder):
    """The events by file, after a check of what viewers rely on: each thread's time goes forward, each B has its E."""
    files, last, calls = {}, {}, collections.defaultdict(list)
    open_calls = collections.defaultdict(list)
    for event in json.loads(run("export", "--format", "chrome", folder))["traceEvents"]:
        pid, key, phase = event["pid"], (event["pid"], event["tid"]), event["ph"]
        if phase == "M":
            if event["name"] == "process_labels":
                assert pid not in files
                files[pid] = Path(event["args"]["labels"]).name
            elif event["name"] == "process_name":
                same("name", event["args"]["name"], "host")
            continue
        if event["name"] == "damage":
            continue
        assert last.get(key, -1) < event["ts"], event
        last[key] = event["ts"] + event.get("dur", 0)
        if phase == "B":
            open_calls[key].append(event)
        elif phase == "E":
            begin = open_calls[key].pop()
            same("pair", begin["name"], event["name"])
            calls[files[pid]].append((event["tid"], begin["name"], begin["ts"], event["ts"],
                                      "unfinished" in event.get("args", {})))
        else:
            same(event["name"], phase, "X" if event["cat"] == "error" else "i")
            calls[files[pid]].append((event["tid"], event["cat"], event["ts"], event["args"].get("statusName"), event["name"]))
    assert not any(open_calls.values()), open_calls
    return calls


def calls_agree(folder, traces, records):
    """Chrome's calls against the records, OTLP's spans against Chrome's calls, and the sums against both."""
    events = chrome(folder)
    spans, resources = collections.defaultdict(list), {}
    for entry in json.loads(run("export", "--format", "otlp", "--utc-offset", "+02:00", folder))["resourceSpans"]:
        attributes = {a["key"]: next(iter(a["value"].values())) for a in entry["resource"]["attributes"]}
        resources[attributes["process.pid"]] = attributes
        spans[attributes["log.file.name"]] += entry["scopeSpans"][0]["spans"]
    total = 0
    for file, (pid, trace) in traces.items():
        mine = [r for r in records if r["file"] == file]
        marks = [e for e in events[file] if e[1] in ("error", "note", "message")]
        same("marks", [(e[0], e[1], e[3], e[4]) for e in sorted(marks, key=lambda e: e[0])],
             [(r["thread"], r["kind"], r.get("statusName"), r["text"])
              for r in sorted(mine, key=lambda r: r["thread"]) if r["kind"] != "call"])
        calls = [e for e in events[file] if e not in marks]
        whole = [e for e in calls if not e[4]]
        same("durations", sorted((e[1], e[0]) for e in whole), sorted((r["function"], r["thread"]) for r in mine if r["level"] == "<"))
        took = sum(r["milliseconds"] for r in mine if r["level"] == "<")
        assert abs(sum(e[3] - e[2] for e in whole) / 1000 - took) < len(whole), (took, len(whole))
        named = [s for s in spans[file] if s["name"] != "events"]
        same("spans", sorted((int(s["attributes"][0]["value"]["intValue"]), s["name"],
                              int(s["endTimeUnixNano"]) - int(s["startTimeUnixNano"]), len(s["attributes"]) > 1) for s in named),
             sorted((e[0], e[1], 1000 * (e[3] - e[2]), e[4]) for e in calls))
        by_id = {(s["traceId"], s["spanId"]): s for s in spans[file]}
        same("ids", len(by_id), len(spans[file]))
        failed = 0
        for span in spans[file]:
            assert re.fullmatch("[0-9a-f]{32}", span["traceId"]) and re.fullmatch("[0-9a-f]{16}", span["spanId"]), span
            assert set(span) <= {"traceId", "spanId", "parentSpanId", "name", "kind", "startTimeUnixNano",
                                 "endTimeUnixNano", "attributes", "events", "status"}, span
            outer = by_id[span["traceId"], span["parentSpanId"]] if "parentSpanId" in span else span
            if outer is span:
                total += (int(span["endTimeUnixNano"]) - int(span["startTimeUnixNano"])) // 1000
            inside = [span["startTimeUnixNano"], span["endTimeUnixNano"], *(e["timeUnixNano"] for e in span.get("events", ()))]
            assert all(outer["startTimeUnixNano"] <= t <= outer["endTimeUnixNano"] for t in inside), span
            kinds = [e["attributes"][0]["value"]["stringValue"] for e in span.get("events", ())]
            same("status", span["status"].get("code", 0), 2 if "error" in kinds else 0)
            failed += kinds.count("error")
        same("errors", failed, sum(r["kind"] == "error" for r in mine))
        assert min(s["startTimeUnixNano"] for s in named).startswith("15000192"), "two hours before the local time"
        same("resource", [resources[str(pid)][k] for k in ("host.name", "service.version", "process.executable.name")],
             ["PC-7", "1.2.3.4", "host"])
    folded = dict(line.rsplit(" ", 1) for line in run("export", "--format", "folded", folder).splitlines())
    same("folded", sum(map(int, folded.values())), total)
    assert any(line.startswith("host;a:b;") for line in folded), list(folded)[:3]
    for row in json.loads(run("stats", "--json", folder))["functions"]:
        mine = [r for r in records if r.get("function") == row["name"]]
        same(row["name"], [row["calls"], row["errors"], row["notes"], row["messages"], row["timed"], row["calls"] - row["timed"]],
             [sum(r["level"] == ">" for r in mine), *(sum(r["kind"] == k for r in mine) for k in ("error", "note", "message")),
              sum(r["level"] == "<" for r in mine), row["unfinished"]])


def lnav_knows_the_lines(folder, records):
    form = json.loads((SOURCE / "packaging/lnav/vltrace_log.json").read_text())["vltrace_log"]
    pattern = re.compile(form["regex"]["record"]["pattern"].replace("(?<", "(?P<").replace("(?P<=", "(?<=").replace("(?P<!", "(?<!"))
    lines = [line for line in run("cat", folder).splitlines() if line and line[0] != "#"]
    seen = [pattern.match(line) for line in lines]
    same("lnav", [(m["timestamp"][11:], m["process"], int(m["thread"], 16), m["level"][0],
                   [name for name, part in form["level"].items() if re.search(part, m["level"])]) for m in seen],
         [(r["time"], r["process"], r["thread"], r["level"],
           ["trace" if r["kind"] == "call" else "error" if r["kind"] == "error" else "debug" if r["level"] == "D" else "info"])
          for r in records])


def damage_is_stepped_over(file):
    trace = tracefile.Trace(4, 2500, damaged=True)
    file.write_bytes(trace.bytes)
    objects = [json.loads(line) for line in run("export", file).splitlines()]
    same("damages", [(o["offset"], o["bytes"]) for o in objects if o["type"] == "damage"], trace.damages)
    same("records", rows_of([o for o in objects if o["type"] == "record"]), list(expected(trace, file.name, "")))
    same("unfinished", [sum(row["unfinished"] for row in json.loads(run("stats", "--json", file))["functions"])],
         [sum(r[2] == ">" for r in trace.records) - sum(r[6] is not None for r in trace.records)])


def damage_stays_balanced(folder, trace):
    for i in range(len(tracefile.HEADER), len(trace.bytes), 7):
        flipped = bytearray(trace.bytes)
        flipped[i] ^= 1 << i % 8
        (folder / (NAME % (i % 1000, i))).write_bytes(flipped if i % 2 else trace.bytes[:i])
    calls = chrome(folder)
    assert len(calls) > 100, len(calls)
    json.loads(run("export", "--format", "otlp", folder))


def compressed_reads_as_it_was(folder, data):
    plain, packed = folder / "plain.trc3", folder / "packed.trc3.gz"
    plain.write_bytes(data)
    lines = run("cat", plain).splitlines()[1:]
    plain.unlink()
    whole = gzip.compress(data[:5000]) + gzip.compress(data[5000:])
    packed.write_bytes(whole + bytes(99))  # padding is no fault
    same("compressed", run("cat", folder).splitlines()[1:], lines)
    for size in range(999, len(whole), len(whole) // 30):
        packed.write_bytes(whole[:size])
        cut = run("cat", packed).splitlines()[1:-1]  # the last may be a part
        same("cut", cut, lines[:len(cut)])
        assert len(cut) > size // 50 and "is cut or damaged" in run("cat", packed, err=True), size


def main():
    with tempfile.TemporaryDirectory() as place:
        folder = Path(place)
        traces = {}
        for pid, seed in ((4242, 1), (77, 2)):
            traces[NAME % (seed, pid)] = pid, tracefile.Trace(seed, 400, seed * 200)
        for file, (_, trace) in traces.items():
            (folder / file).write_bytes(trace.bytes)
        records = lines_agree(folder, traces)
        calls_agree(folder, traces, records)
        lnav_knows_the_lines(folder, records)
        broken, compressed = folder / "broken", folder / "compressed"
        broken.mkdir()
        damage_is_stepped_over(broken / (NAME % (0, 5)))
        damage_stays_balanced(broken, tracefile.Trace(3, 60))
        compressed.mkdir()
        compressed_reads_as_it_was(compressed, tracefile.Trace(4, 900).bytes * 5)


main()
