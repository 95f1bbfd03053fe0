// What a person does: select, search, filter, move.
const byId = id => document.getElementById(id);
let matches = [], match = -1;

function visible(event) {
  return view.shown.has(kindOf(event));
}

function element(name, text, ...children) {
  const made = document.createElement(name);
  if (text !== null) made.textContent = text; // never markup
  made.append(...children);
  return made;
}

function facts(event) {
  const lane = lanes[laneOf(event)], file = data.files[lane.file];
  const status = statusOf(event), list = [["Kind", kinds[kindOf(event)]], ["Time", clock(timeOf(event))]];
  if (status)
    list.push(["Status", status.filter(Boolean).join(" - ")]);
  if (isCall(event))
    list.push(["Took", calls.finished[event] ? duration(calls.to[event] - calls.from[event]) : "no exit in the trace"]);
  list.push(["Process", file.program + (file.process ? " " + file.process : "")]);
  if (lane.thread >= 0)
    list.push(["Thread", `${lane.thread} (0x${lane.thread.toString(16).toUpperCase().padStart(4, "0")})`]);
  list.push(["File", file.name]);
  return list;
}

function showDetails() {
  const event = view.selected, panel = byId("details");
  if (event < 0) {
    panel.replaceChildren(element("p", eventCount ? "Select a record to see what it says." : "The trace holds no records."));
    return;
  }
  const heading = element("h2", textOf(event) || "(no text)");
  heading.className = kinds[kindOf(event)];
  const list = element("dl", null);
  for (const [name, value] of facts(event))
    list.append(element("dt", name), element("dd", value));
  panel.replaceChildren(heading, list);
  const chain = chainOf(event);
  if (chain.length === 0) return;
  const functions = element("ol", null);
  const most = 100;
  functions.start = Math.max(1, chain.length - most + 1);
  for (const call of chain.slice(-most)) {
    const button = element("button", data.strings[calls.name[call]]);
    button.type = "button";
    button.onclick = () => { select(call); panel.focus(); };
    functions.append(element("li", null, button, " since " + clock(calls.from[call]).slice(11)));
  }
  panel.append(element("p", "Open functions, the outermost first:"), functions);
}

function reveal(event) {
  const time = timeOf(event), span = view.to - view.from;
  if (time < view.from || time > view.to)
    setRange(time - span / 2, span);
  const top = tops[laneOf(event)], { y } = placeOf(event);
  if (y < axis + row || y > view.height - row)
    view.top = Math.max(0, Math.min(y + view.top - view.height / 2, top - axis));
  if (y > view.height - row && placeOf(event).y > view.height - row)
    view.top += placeOf(event).y - view.height + 2 * row;
}

function select(event) {
  view.selected = event;
  if (event >= 0) reveal(event);
  else delete canvas.dataset.selected;
  showDetails();
  draw();
}

function setRange(from, span) {
  span = Math.min(Math.max(span, 10), end * 1.02);
  view.from = Math.min(Math.max(from, -end * 0.01), end * 1.01 - span);
  view.to = view.from + span;
  draw();
}

function zoom(factor, x) {
  const middle = x === undefined && view.selected >= 0 ? placeOf(view.selected).x : x;
  const fixed = middle === undefined || middle < gutter || middle > view.width ? (gutter + view.width) / 2 : middle;
  const time = timeAt(fixed), span = Math.min(Math.max((view.to - view.from) * factor, 10), end * 1.02);
  setRange(time - (fixed - gutter) / (view.width - gutter) * span, span);
}

function scroll(by) {
  view.top = Math.max(0, Math.min(view.top + by, view.bottom - view.height));
  draw();
}

// eventAt gives the event at a place of the canvas; -1 if there is none.
function eventAt(x, y) {
  const index = tops.findIndex((top, i) => y + view.top >= top && y + view.top < top + lanes[i].height);
  if (index < 0 || y < axis || x < gutter) return -1;
  const lane = lanes[index], inside = y + view.top - tops[index];
  if (inside < strip) {
    for (const kind of ["E", "x", "n", "U", "D"]) {
      const list = view.shown.has(kind) && lane.kinds[kind] || [];
      const reach = kind === "E" || kind === "x" ? 6 : 3;
      const i = list[firstAt(list, j => marks.at[j], timeAt(x - reach))];
      if (i !== undefined && xOf(marks.at[i]) <= x + reach) return calls.count + i;
    }
    return -1;
  }
  const list = view.shown.has(">") && lane.rows[Math.floor((inside - strip) / row)] || [];
  const i = list[firstAt(list, j => calls.to[j], timeAt(x - 1))];
  return i !== undefined && xOf(calls.from[i]) <= x + 1 ? i : -1;
}

// step walks the records of the lane; stepLane goes to the nearest one of another.
function laneEvents() {
  return lanes[view.selected < 0 ? 0 : laneOf(view.selected)]?.events ?? [];
}

function stepToEnd(by) {
  const list = laneEvents().filter(visible);
  if (list.length) select(by > 0 ? list[0] : list[list.length - 1]);
}

function step(by) {
  const list = laneEvents();
  let i = view.selected < 0 ? (by > 0 ? -1 : list.length) : list.indexOf(view.selected);
  do i += by; while (i >= 0 && i < list.length && !visible(list[i]));
  if (list[i] !== undefined) select(list[i]);
}

function stepLane(by) {
  if (view.selected < 0) return step(1);
  const time = timeOf(view.selected);
  for (let i = laneOf(view.selected) + by; lanes[i]; i += by) {
    const list = lanes[i].events.filter(visible);
    if (list.length === 0) continue;
    const at = firstAt(list, timeOf, time), after = list[at], before = list[at - 1];
    const nearer = before === undefined || after !== undefined && timeOf(after) - time < time - timeOf(before);
    return select(nearer ? after : before);
  }
}

function nextOf(list, by) {
  const order = event => timeOf(event) * 2 + (isCall(event) ? 0 : 1);
  const now = view.selected < 0 ? -Infinity : order(view.selected);
  const rest = list.filter(event => by > 0 ? order(event) > now : order(event) < now);
  const event = by > 0 ? rest[0] : rest[rest.length - 1];
  return event ?? (by > 0 ? list[0] : list[list.length - 1]);
}

function allEvents(wanted) {
  const list = [];
  for (let i = 0; i < eventCount; ++i)
    if (wanted(i)) list.push(i);
  return list.sort((a, b) => timeOf(a) - timeOf(b));
}

const errors = allEvents(event => kindOf(event) === "E" || kindOf(event) === "x");
function stepError(by) {
  const event = nextOf(errors.filter(visible), by);
  if (event !== undefined) select(event);
}

function search() {
  const wanted = byId("search").value.toLowerCase();
  const has = text => text.toLowerCase().includes(wanted);
  const strings = data.strings.map(has), statuses = data.statuses.map(status => status.some(has));
  const found = event => isCall(event) ? strings[calls.name[event]]
    : strings[marks.text[event - calls.count]] || statuses[marks.status[event - calls.count] - 1];
  matches = wanted ? allEvents(event => visible(event) && found(event)) : [];
  view.found = new Set(matches);
  match = -1;
  showFound();
  draw();
}

function showFound() {
  const count = matches.length.toLocaleString("en");
  byId("found").textContent = !byId("search").value ? "" : match < 0 ? count + " found" : `${match + 1} of ${count}`;
}

function stepMatch(by) {
  if (matches.length === 0) return;
  match = match < 0 ? (by > 0 ? 0 : matches.length - 1) : (match + by + matches.length) % matches.length;
  select(matches[match]);
  showFound();
}
