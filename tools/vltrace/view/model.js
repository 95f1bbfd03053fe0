// The trace, decoded from the columns that vltrace wrote. An event is a call or a mark: calls have the numbers from 0,
// marks those after them. Times are in microseconds from the first event.
const data = JSON.parse(document.getElementById("data").textContent);
const calls = decodeCalls(data.calls);
const marks = decodeMarks(data.marks);
const deepest = 60; // deeper calls have no row: they are walked to, and in the chain
const eventCount = calls.count + marks.count;
const lanes = data.lanes.map(([file, thread]) => ({ file, thread, rows: [], kinds: {}, events: [] }));
const kinds = { E: "error", n: "note", U: "message", D: "debug", x: "damage", ">": "call" };
const end = fillLanes();

function running(deltas) {
  let sum = 0;
  return Float64Array.from(deltas, delta => (sum += delta));
}

function decodeCalls({ lane, from, took, name, parent, finished }) {
  const count = lane.length;
  const begin = running(from);
  const depth = new Uint32Array(count);
  const outer = Int32Array.from(parent, (back, i) => (back ? i - back : -1));
  for (let i = 0; i < count; ++i)
    depth[i] = outer[i] < 0 ? 0 : depth[outer[i]] + 1;
  return { count, lane, from: begin, to: begin.map((time, i) => time + took[i]), name, parent: outer, depth, finished,
    failed: new Uint8Array(count) };
}

function decodeMarks({ lane, at, kind, text, status, call }) {
  return { count: lane.length, lane, at: running(at), kind, text, status, call: Int32Array.from(call, i => i - 1) };
}

function fillLanes() {
  let last = 1;
  for (let i = 0; i < calls.count; ++i) {
    const lane = lanes[calls.lane[i]];
    if (calls.depth[i] <= deepest)
      (lane.rows[calls.depth[i]] ??= []).push(i);
    lane.events.push(i);
    last = Math.max(last, calls.to[i]);
  }
  for (let i = 0; i < marks.count; ++i) {
    const lane = lanes[marks.lane[i]];
    (lane.kinds[marks.kind[i]] ??= []).push(i);
    lane.events.push(calls.count + i);
    last = Math.max(last, marks.at[i]);
    if (marks.kind[i] === "E" && marks.call[i] >= 0)
      calls.failed[marks.call[i]] = 1;
  }
  for (const lane of lanes) {
    for (let row = 0; row < lane.rows.length; ++row)
      lane.rows[row] ??= []; // a row may be empty where the filter left gaps
    lane.events.sort((a, b) => timeOf(a) - timeOf(b));
  }
  return last;
}

function isCall(event) {
  return event < calls.count;
}

function timeOf(event) {
  return isCall(event) ? calls.from[event] : marks.at[event - calls.count];
}

function laneOf(event) {
  return isCall(event) ? calls.lane[event] : marks.lane[event - calls.count];
}

function kindOf(event) {
  return isCall(event) ? ">" : marks.kind[event - calls.count];
}

function textOf(event) {
  return data.strings[isCall(event) ? calls.name[event] : marks.text[event - calls.count]];
}

// status: [hex, name, meaning] of an error, or undefined
function statusOf(event) {
  return isCall(event) ? undefined : data.statuses[marks.status[event - calls.count] - 1];
}

// chainOf gives the open functions, outermost first; that of a call ends with itself.
function chainOf(event) {
  const chain = [];
  for (let i = isCall(event) ? event : marks.call[event - calls.count]; i >= 0; i = calls.parent[i])
    chain.push(i);
  return chain.reverse();
}

function clock(time) {
  const iso = new Date(Math.floor((data.base + time) / 1000)).toISOString();
  return iso.slice(0, 10) + " " + iso.slice(11, 23);
}

function duration(time) {
  return time >= 1e6 ? (time / 1e6).toFixed(3) + " s" : time >= 1000 ? Math.floor(time / 1000) + " ms" : "under 1 ms";
}

// firstAt gives the first place in list at which key is at least value; keys rise.
function firstAt(list, key, value) {
  let low = 0, high = list.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (key(list[middle]) < value) low = middle + 1; else high = middle;
  }
  return low;
}
