// Keys, mouse and buttons.
const keys = {
  ArrowRight: () => step(1), ArrowLeft: () => step(-1), ArrowDown: () => stepLane(1), ArrowUp: () => stepLane(-1),
  Home: () => stepToEnd(1), End: () => stepToEnd(-1),
  PageDown: () => scroll(view.height / 2), PageUp: () => scroll(-view.height / 2),
  "+": () => zoom(0.5), "=": () => zoom(0.5), "-": () => zoom(2), 0: () => setRange(0, end * 1.02),
  n: () => stepError(1), N: () => stepError(-1), "/": () => byId("search").focus(), Escape: () => select(-1),
  Enter: () => { if (view.selected < 0) step(1); byId("details").focus(); },
};
canvas.addEventListener("keydown", event => {
  if (event.ctrlKey || event.altKey || event.metaKey || !keys[event.key]) return;
  event.preventDefault();
  keys[event.key]();
});
byId("details").addEventListener("keydown", event => {
  if (event.key === "Escape") canvas.focus();
});
byId("search").addEventListener("keydown", event => {
  if (event.key === "Enter") {
    event.preventDefault();
    stepMatch(event.shiftKey ? -1 : 1);
  } else if (event.key === "Escape") {
    canvas.focus();
  }
});
byId("search").addEventListener("input", search);
byId("next").onclick = () => stepMatch(1);
byId("previous").onclick = () => stepMatch(-1);
byId("error").onclick = () => stepError(1);
byId("in").onclick = () => zoom(0.5);
byId("out").onclick = () => zoom(2);
byId("fit").onclick = () => setRange(0, end * 1.02);

canvas.addEventListener("wheel", event => {
  event.preventDefault();
  const span = view.to - view.from;
  if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY))
    setRange(view.from + span * Math.sign(event.deltaX || event.deltaY) / 8, span);
  else
    zoom(event.deltaY > 0 ? 1.25 : 0.8, event.offsetX);
}, { passive: false });

let drag = null;
canvas.addEventListener("pointerdown", event => {
  drag = { x: event.offsetX, y: event.offsetY, from: view.from, top: view.top, moved: false };
  canvas.setPointerCapture(event.pointerId);
});
canvas.addEventListener("pointermove", event => {
  const { offsetX: x, offsetY: y } = event;
  if (!drag) {
    const under = eventAt(x, y);
    canvas.title = under < 0 ? "" : textOf(under).slice(0, 200);
    return;
  }
  drag.moved ||= Math.abs(x - drag.x) + Math.abs(y - drag.y) > 4;
  if (!drag.moved) return;
  const span = view.to - view.from;
  setRange(drag.from - (x - drag.x) / (view.width - gutter) * span, span);
  view.top = drag.top;
  scroll(drag.y - y);
});
canvas.addEventListener("pointerup", event => {
  if (drag && !drag.moved) select(eventAt(event.offsetX, event.offsetY));
  drag = null;
});
canvas.addEventListener("pointercancel", () => { drag = null; });

for (const [kind, name] of Object.entries({ E: "errors", n: "notes", U: "messages", D: "debug", x: "damage", ">": "calls" })) {
  const box = element("input", null);
  box.type = "checkbox";
  box.checked = true;
  box.id = "show-" + kind;
  box.onchange = () => {
    if (box.checked) view.shown.add(kind); else view.shown.delete(kind);
    search();
  };
  const label = element("label", null, box, " " + name);
  label.style.color = `var(--${kinds[kind]})`;
  byId("levels").append(label);
}

readColours();
layOut();
const named = data.files.map(file => file.program + (file.process ? " " + file.process : ""));
document.title = byId("title").textContent =
  "Trace of " + named.slice(0, 6).join(", ") + (named.length > 6 ? ` and ${named.length - 6} more` : "");
matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => { readColours(); draw(); });
new ResizeObserver(draw).observe(canvas);
setRange(0, end * 1.02);
showDetails();
canvas.focus();
