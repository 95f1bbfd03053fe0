#!/usr/bin/env python3
"""page_check.py VLTRACE BROWSER [PICTURE] opens a page of vltrace view in a headless browser, and walks, searches, filters,
zooms and clicks as a person does; the page is read back after each. Exit status: 0 only if all is as meant."""
import base64
import json
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import tracefile

NAME = "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.%d.trc3"


class Browser:
    """Drives a browser through its DevTools protocol: JSON messages that end in a zero, on descriptors 3 and 4."""

    def __init__(self, program, home):
        def connect():
            os.dup2(theirs[0], 10)
            os.dup2(theirs[1], 11)
            os.dup2(10, 3)
            os.dup2(11, 4)
        down, up = os.pipe(), os.pipe()
        theirs = down[0], up[1]
        self.process = subprocess.Popen(
            [program, "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-dev-shm-usage",
             "--remote-debugging-pipe", f"--user-data-dir={home}/profile", "about:blank"],
            preexec_fn=connect, close_fds=False, env=os.environ | {"HOME": str(home)},
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for end in theirs:
            os.close(end)
        self.out, self.into, self.count, self.session, self.events = down[1], os.fdopen(up[0], "rb"), 0, None, []
        target = next(t for t in self.call("Target.getTargets")["targetInfos"] if t["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=target["targetId"], flatten=True)["sessionId"]

    def call(self, method, **arguments):
        self.count += 1
        message = {"id": self.count, "method": method, "params": arguments}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.out, json.dumps(message).encode() + b"\0")
        while True:
            answer = json.loads(self.read())
            if answer.get("id") == self.count:
                assert "error" not in answer, answer
                return answer["result"]
            self.events.append(answer)

    def read(self):
        text = bytearray()
        while byte := self.into.read(1):
            if byte == b"\0":
                return text
            text += byte
        raise EOFError("the browser has ended")

    def value(self, script):
        result = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        assert "exceptionDetails" not in result, result
        return result["result"].get("value")

    def settle(self):
        """Waits until what was asked for is drawn."""
        self.value("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))")

    def key(self, key):
        text = key if len(key) == 1 else "\r" if key == "Enter" else ""
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key, text=text)
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key)

    def click(self, x, y):
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def details(self):
        self.settle()
        return self.value("document.getElementById('details').innerText")

    def picture(self, file, dark):
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.settle()
        Path(file).write_bytes(base64.b64decode(self.call("Page.captureScreenshot")["data"]))


def sample():
    trace = tracefile.Trace(1, 0)
    for thread, level, text in (
            (0x1A4, ">", "CVLKTPages::SetStorageData"), (0x1A4, "U", "reading"), (0x1A4, ">", "RestoreBackup"),
            (0x2B0, ">", "Poll"), (0x1A4, "E", "-2147024891 Größe </script><b id=markup>\u2028 of 日"),
            (0x1A4, "T", "10:00:00.040"), (0x1A4, "<", ""), (0x2B0, "D", "waiting"), (0x1A4, "E", "0 only a note"),
            (0x2B0, "T", "10:00:00.090"), (0x2B0, "<", ""), (0x1A4, "<", "")):
        trace.bytes += tracefile.record(thread, level, text)
    return trace.bytes


def check(browser, page):
    browser.call("Emulation.setDeviceMetricsOverride", width=900, height=500, deviceScaleFactor=1, mobile=False)
    browser.call("Network.enable")
    browser.call("Runtime.enable")
    browser.call("Page.navigate", url=page.as_uri())
    browser.value("new Promise(done => document.readyState === 'complete' ? done() : addEventListener('load', done))")
    browser.settle()
    assert browser.value("document.getElementById('markup')") is None and browser.value("document.scripts.length") == 2
    assert browser.value("document.title") == "Trace of host 4242"

    for key in ("/", *"access is denied", "Enter"):
        browser.key(key)
    text = browser.details()
    for part in ("Größe </script><b id=markup>", "of 日", "0x80070005", "ERROR_ACCESS_DENIED", "host 4242", "420 (0x01A4)",
                 "1. CVLKTPages::SetStorageData", "RestoreBackup since 10:00:00.000", "2017-07-14 10:00:00.000"):
        assert part.replace("1. ", "") in text, (part, text)
    assert browser.value("document.getElementById('found').textContent") == "1 of 1"
    browser.key("Escape")  # back to the time line
    walked = []
    for key in ("ArrowRight", "ArrowRight", "ArrowLeft", "ArrowDown", "Home", "End", "n"):
        browser.key(key)
        walked.append(browser.details().split("\n")[0])
    error = "Größe </script><b id=markup>\u2028 of 日"
    assert walked == ["only a note", "only a note", error, "Poll", "Poll", "waiting", error], walked
    browser.key("Enter")
    assert browser.value("document.activeElement.id") == "details"
    browser.key("Escape")

    x, y = map(float, browser.value("document.getElementById('lanes').dataset.selected").split(","))
    left, top = browser.value("(r => [r.left, r.top])(document.getElementById('lanes').getBoundingClientRect())")
    browser.key("Escape")
    assert "Select a record" in browser.details()
    browser.click(left + x, top + y)
    assert browser.details().startswith("Größe"), browser.details()
    browser.key("+")
    browser.call("Input.dispatchMouseEvent", type="mouseWheel", x=left + 500, y=top + 60, deltaX=0, deltaY=-100)
    browser.settle()
    assert browser.value("document.getElementById('lanes').dataset.selected") != f"{x:.0f},{y:.0f}"
    browser.key("0")
    browser.settle()
    assert browser.value("document.getElementById('lanes').dataset.selected") == f"{x:.0f},{y:.0f}"
    browser.key("Escape")
    browser.value("document.getElementById('show-E').click()")
    browser.click(left + x, top + y)
    assert not browser.details().startswith("Größe"), browser.details()
    requests = [e["params"]["request"]["url"] for e in browser.events if e.get("method") == "Network.requestWillBeSent"]
    assert [url for url in requests if not url.startswith("file:")] == [], requests
    errors = [e for e in browser.events if e.get("method") == "Runtime.exceptionThrown"]
    assert not errors, errors


def main():
    program = shutil.which(sys.argv[2]) or sys.exit(f"{sys.argv[2]} is not there (scripts/packages.txt, group test)")
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as place:  # the browser's children end later
        folder = Path(place)
        (folder / (NAME % 4242)).write_bytes(sample())
        page = folder / "page.html"
        subprocess.run([sys.argv[1], "view", folder, "-o", page], check=True)
        browser = Browser(program, folder)
        try:
            check(browser, page)
        finally:
            browser.process.terminate()
            browser.process.wait()


if __name__ == "__main__":
    main()
