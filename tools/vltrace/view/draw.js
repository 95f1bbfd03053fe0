// The canvas: only what is visible is drawn, and of what shares a pixel only the first.
const canvas = document.getElementById("lanes");
const pen = canvas.getContext("2d");
const gutter = 150, axis = 24, strip = 16, row = 18, gap = 8;
const view = { from: 0, to: end, top: 0, width: 0, height: 0, shown: new Set(Object.keys(kinds)), selected: -1,
  found: new Set() };
const tops = [];
let colours = {};

function layOut() {
  let top = axis;
  lanes.forEach((lane, i) => {
    tops[i] = top;
    lane.height = strip + Math.max(1, lane.rows.length) * row + gap;
    top += lane.height;
  });
  view.bottom = top;
}

function readColours() {
  const style = getComputedStyle(document.documentElement);
  for (const name of ["back", "panel", "line", "text", "faint", "error", "note", "message", "debug", "damage", "mark",
    "found", "call", "onCall"])
    colours[name] = style.getPropertyValue("--" + name).trim();
}

function xOf(time) {
  return gutter + (time - view.from) / (view.to - view.from) * (view.width - gutter);
}

function timeAt(x) {
  return view.from + (x - gutter) / (view.width - gutter) * (view.to - view.from);
}

// Where an event is: its middle, for a click.
function placeOf(event) {
  const y = tops[laneOf(event)] - view.top;
  if (!isCall(event))
    return { x: xOf(timeOf(event)), y: y + strip / 2 };
  const left = Math.max(gutter, xOf(calls.from[event])), right = Math.min(view.width, xOf(calls.to[event]));
  return { x: left + Math.max(0.5, (right - left) / 2), y: y + strip + (Math.min(calls.depth[event], deepest) + 0.5) * row };
}

function hueOf(name) {
  return (name * 137.5) % 360;
}

function fitText(text, x, y, width) {
  const most = Math.floor(width / 6.5);
  if (most < 3) return;
  pen.fillText(text.length > most ? text.slice(0, most - 1) + "…" : text, x, y);
}

function drawAxis() {
  pen.fillStyle = colours.panel;
  pen.fillRect(0, 0, view.width, axis);
  const wanted = (view.to - view.from) * 110 / (view.width - gutter);
  let step = 10 ** Math.floor(Math.log10(Math.max(wanted, 1)));
  while (step < wanted) step *= String(step)[0] === "2" ? 2.5 : 2;
  for (let time = Math.ceil((data.base + view.from) / step) * step - data.base; time <= view.to; time += step) {
    const x = xOf(time);
    pen.fillStyle = colours.line;
    pen.fillRect(x, 0, 1, view.height);
    pen.fillStyle = colours.faint;
    const micro = step < 1000 ? "+" + Math.round((data.base + time) % 1000) + " µs" : "";
    pen.fillText(micro || clock(time).slice(11, step < 1e6 ? 23 : 19), x + 4, 16);
  }
}

function drawCall(i, left, right, y) {
  const name = data.strings[calls.name[i]];
  pen.fillStyle = `hsl(${hueOf(calls.name[i])} 45% ${colours.call})`;
  pen.fillRect(left, y, Math.max(1, right - left), row - 2);
  if (calls.failed[i]) {
    pen.fillStyle = colours.error;
    pen.fillRect(left, y + row - 4, Math.max(1, right - left), 2);
  }
  if (view.found.has(i)) {
    pen.fillStyle = colours.found;
    pen.fillRect(left, y, Math.max(2, right - left), 3);
  }
  pen.fillStyle = colours.onCall;
  fitText(name, Math.max(left, gutter) + 4, y + 12, right - Math.max(left, gutter) - 6);
}

function drawRow(list, y) {
  for (let k = firstAt(list, i => calls.to[i], view.from); k < list.length;) {
    const i = list[k];
    if (calls.from[i] > view.to) break;
    const left = Math.max(gutter, xOf(calls.from[i])), right = Math.min(view.width, xOf(calls.to[i]));
    drawCall(i, left, right, y);
    ++k;
    if (right - left < 1) // the others in this pixel are under it
      k = Math.max(k, firstAt(list, j => calls.to[j], timeAt(left + 1)));
  }
}

function drawMarks(list, kind, y) {
  pen.fillStyle = colours[kinds[kind]];
  for (let k = firstAt(list, i => marks.at[i], view.from); k < list.length;) {
    const i = list[k];
    if (marks.at[i] > view.to) break;
    const x = xOf(marks.at[i]), high = kind === "E" || kind === "x";
    pen.beginPath();
    if (high) {
      pen.moveTo(x, y); pen.lineTo(x + 6, y + 7); pen.lineTo(x, y + 14); pen.lineTo(x - 6, y + 7);
    } else {
      pen.rect(x - 1, y + 3, 2, 9);
    }
    pen.fill();
    if (view.found.has(calls.count + i)) {
      pen.fillStyle = colours.found;
      pen.fillRect(x - 3, y - 1, 6, 3);
      pen.fillStyle = colours[kinds[kind]];
    }
    k = Math.max(k + 1, firstAt(list, j => marks.at[j], timeAt(x + 1)));
  }
}

function drawLane(lane, i) {
  const top = tops[i] - view.top;
  if (top > view.height || top + lane.height < axis) return;
  pen.save();
  pen.beginPath();
  pen.rect(gutter, axis, view.width, view.height);
  pen.clip();
  if (view.shown.has(">"))
    lane.rows.forEach((list, depth) => drawRow(list, top + strip + depth * row));
  for (const kind of ["D", "U", "n", "x", "E"]) // errors over all others
    if (view.shown.has(kind) && lane.kinds[kind])
      drawMarks(lane.kinds[kind], kind, top + 1);
  pen.restore();
  pen.fillStyle = colours.line;
  pen.fillRect(0, top + lane.height - gap / 2, view.width, 1);
}

function drawLabels() {
  pen.save();
  pen.beginPath();
  pen.rect(0, axis, gutter, view.height);
  pen.clip();
  pen.fillStyle = colours.panel;
  pen.fillRect(0, axis, gutter, view.height);
  lanes.forEach((lane, i) => {
    const file = data.files[lane.file], top = tops[i] - view.top;
    pen.fillStyle = colours.text;
    fitText(file.program + (file.process ? " " + file.process : ""), 8, top + 14, gutter - 12);
    pen.fillStyle = colours.faint;
    fitText(lane.thread < 0 ? "file" : "thread " + lane.thread, 8, top + 30, gutter - 12);
  });
  pen.restore();
}

function drawSelected() {
  if (view.selected < 0) return;
  const event = view.selected, { x, y } = placeOf(event);
  canvas.dataset.selected = Math.round(x) + "," + Math.round(y);
  if (y < axis || x < gutter) return;
  pen.strokeStyle = colours.mark;
  pen.lineWidth = 2;
  if (isCall(event)) {
    const left = Math.max(gutter, xOf(calls.from[event])), right = Math.min(view.width, xOf(calls.to[event]));
    pen.strokeRect(left - 1, y - row / 2 - 1, Math.max(3, right - left + 2), row);
  } else {
    pen.beginPath();
    pen.arc(x, y, 9, 0, 2 * Math.PI);
    pen.stroke();
  }
}

let waiting = 0;
function draw() {
  waiting ||= requestAnimationFrame(() => {
    waiting = 0;
    const ratio = devicePixelRatio || 1;
    view.width = canvas.clientWidth;
    view.height = canvas.clientHeight;
    canvas.width = Math.round(view.width * ratio);
    canvas.height = Math.round(view.height * ratio);
    pen.setTransform(ratio, 0, 0, ratio, 0, 0);
    pen.font = "12px system-ui, sans-serif";
    pen.fillStyle = colours.back;
    pen.fillRect(0, 0, view.width, view.height);
    drawAxis();
    lanes.forEach(drawLane);
    drawLabels();
    drawSelected();
    canvas.dataset.drawn = Number(canvas.dataset.drawn || 0) + 1;
  });
}
