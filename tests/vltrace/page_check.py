#!/usr/bin/env python3
"""page_check.py VLTRACE BROWSER opens a page of vltrace view in a headless browser, and walks, searches, filters, zooms and
clicks by page_check.js in it, which reads it after each. Exit status: 0 only if all is as meant."""
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import tracefile


def sample():
    trace = tracefile.Trace(1, 0)
    for thread, level, text in (
            (0x1A4, ">", "CVLKTPages::SetStorageData"), (0x1A4, "U", "reading"), (0x1A4, ">", "RestoreBackup"),
            (0x2B0, ">", "Poll"), (0x1A4, "E", "-2147024891 Größe </script><b id=markup>\u2028 of 日"),
            (0x1A4, "T", "10:00:00.040"), (0x1A4, "<", ""), (0x2B0, "D", "waiting"), (0x1A4, "E", "0 only a note"),
            (0x2B0, "T", "10:00:00.090"), (0x2B0, "<", ""), (0x1A4, "<", "")):
        trace.bytes += tracefile.record(thread, level, text)
    return trace.bytes


program = shutil.which(sys.argv[2]) or sys.exit(f"{sys.argv[2]} is not there (scripts/packages.txt, group test)")
with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as place:  # the browser's children end later
    folder = Path(place)
    (folder / "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3").write_bytes(sample())
    page = folder / "page.html"
    subprocess.run([sys.argv[1], "view", folder, "-o", page], check=True)
    script = Path(__file__).with_suffix(".js").read_text(encoding="utf-8")
    text = page.read_text(encoding="utf-8").replace("<head>", "<head><script>requestAnimationFrame = setTimeout</script>")
    page.write_text(f"{text}<script>{script}</script>", encoding="utf-8")
    shown = subprocess.run(
        [program, "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-dev-shm-usage",
         "--window-size=900,500", "--virtual-time-budget=60000", f"--user-data-dir={folder}/profile", "--dump-dom", page.as_uri()],
        env={"HOME": place}, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True).stdout.decode()
    assert "faults: []" in shown, shown[-2000:]
