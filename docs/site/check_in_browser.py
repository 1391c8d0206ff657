#!/usr/bin/env python3
"""Opens every page of a folder in a headless Chromium, 360 pixels wide, and checks that none has to be
scrolled sideways, that scripts raise no error, and that the search finds what is there."""
import functools
import http.server
import json
import pathlib
import re
import subprocess
import sys
import threading

WIDTH = 360
SEARCHES = {"startDevicePairing": "InkoraManager::startDevicePairing", "message box": "A loop inside a callback",
            "inkora_failure_not_found": "INKORA_FAILURE_NOT_FOUND"}
CHECK = """<!DOCTYPE html><body><iframe width=%d height=640 style="border:0"></iframe><pre></pre><script>
const [pages, searches] = %s, faults = [];
const frame = document.querySelector("iframe");
const open = address => new Promise(resolve => {
    frame.onload = () => {
        frame.contentWindow.onerror = text => { faults.push(`${address}: ${text}`); };
        resolve(frame.contentDocument);
    };
    frame.src = address;
});
(async () => {
    for (const address of pages) {
        const width = (await open(address)).documentElement.scrollWidth;
        if (width > %d) faults.push(`${address}: ${width} pixels wide`);
    }
    for (const [words, title] of Object.entries(searches)) {
        const found = (await open(`search.html?q=${encodeURIComponent(words)}`)).querySelectorAll("#results a");
        if (![...found].some(link => link.textContent === title)) faults.push(`search: no ${title} for ${words}`);
    }
    document.querySelector("pre").textContent = faults.join("\\n") + "\\nopened " + pages.length;
})();
</script>"""


class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        if self.path != "/check":
            return super().do_GET()
        self.send_response(200)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.end_headers()
        self.wfile.write(check.encode())

    def log_message(self, *_):
        pass


folder = pathlib.Path(sys.argv[1])
pages = sorted(str(path.relative_to(folder)) for path in folder.rglob("*.html"))
check = CHECK % (WIDTH, json.dumps([pages, SEARCHES]), WIDTH)
server = http.server.ThreadingHTTPServer(
    ("127.0.0.1", 0), functools.partial(Handler, directory=str(folder)))
threading.Thread(target=server.serve_forever, daemon=True).start()
dom = subprocess.run(
    ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--virtual-time-budget=300000", "--dump-dom",
     f"http://127.0.0.1:{server.server_port}/check"],
    check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, timeout=300).stdout
result = re.search(r"<pre>(.*?)</pre>", dom, re.DOTALL)[1].strip()
print(result)
sys.exit(result != f"opened {len(pages)}")
