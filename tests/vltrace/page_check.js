// What a person does with a page of vltrace view, and what it must show then. It runs in the page.
const faults = [];
(async () => {
  const find = id => document.getElementById(id), canvas = find("lanes");
  const same = (what, is, wanted) => { if (String(is) !== String(wanted)) faults.push([what, is, wanted]); };
  const settled = () => new Promise(done => setTimeout(done, 50));
  const details = () => find("details").innerText;
  const key = name => { // and what the browser does with one that nobody took
    const target = document.activeElement;
    const event = new KeyboardEvent("keydown", { key: name, bubbles: true, cancelable: true });
    if (target.dispatchEvent(event) && target.id === "search") {
      target.value += name;
      target.dispatchEvent(new Event("input"));
    }
  };
  const { left, top } = canvas.getBoundingClientRect();
  const mouse = (type, x, y, more) => canvas.dispatchEvent(new (type === "wheel" ? WheelEvent : PointerEvent)(
    type, { clientX: left + x, clientY: top + y, cancelable: true, ...more }));
  const click = (x, y) => ["pointerdown", "pointerup"].forEach(type => mouse(type, x, y));
  canvas.setPointerCapture = () => {}; // which takes a real pointer only
  addEventListener("error", event => faults.push(event.message));
  await settled();
  same("markup", find("markup"), null);
  same("title", document.title, "Trace of host 4242");

  ["/", ..."access is denied", "Enter"].forEach(key);
  for (const part of ["Größe <\/script><b id=markup>", "of 日", "0x80070005", "ERROR_ACCESS_DENIED", "host 4242",
                      "420 (0x01A4)", "CVLKTPages::SetStorageData", "RestoreBackup since 10:00:00.000",
                      "2017-07-14 10:00:00.000"])
    if (!details().includes(part)) faults.push(part + " is not in " + details());
  same("found", find("found").textContent, "1 of 1");
  key("Escape"); // back to the time line
  const walked = ["ArrowRight", "ArrowRight", "ArrowLeft", "ArrowDown", "Home", "End", "n"].map(name => {
    key(name);
    return details().split("\n")[0];
  });
  const error = "Größe <\/script><b id=markup>\u2028 of 日";
  same("walked", walked, ["only a note", "only a note", error, "Poll", "Poll", "waiting", error]);
  key("Enter");
  same("focus", document.activeElement.id, "details");
  key("Escape");

  await settled();
  const place = canvas.dataset.selected, [x, y] = place.split(",").map(Number);
  key("Escape");
  same("nothing", details(), "Select a record to see what it says.");
  click(x, y);
  same("clicked", details().split("\n")[0], "Größe <\/script><b id=markup>\u2028 of 日");
  key("+");
  mouse("wheel", 500, 60, { deltaY: -100 });
  await settled();
  same("zoomed", canvas.dataset.selected === place, false);
  key("0");
  await settled();
  same("all", canvas.dataset.selected, place);
  key("Escape");
  find("show-E").click();
  click(x, y);
  same("filtered", details().startsWith("Größe"), false);
  same("loaded", performance.getEntriesByType("resource").length, 0);
})().catch(error => faults.push(error.stack)).then(() => {
  document.body.textContent = "faults: " + JSON.stringify(faults);
});
