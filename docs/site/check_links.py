#!/usr/bin/env python3
"""Checks that every relative link in a folder of HTML pages, and every result that a search there may
have, leads to a file, and to an anchor of it."""
import json
import pathlib
import sys
from html.parser import HTMLParser
from urllib.parse import unquote, urlsplit


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.anchors = {"", "top"}
        self.links = []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("id", "name") and value:
                self.anchors.add(value)
            elif name in ("href", "src", "action"):
                self.links.append((self.getpos()[0], value or ""))


folder = pathlib.Path(sys.argv[1]).resolve()
pages = {path: Page(path) for path in folder.rglob("*.html")}
links = {path: page.links for path, page in pages.items()}
index = folder / "search-index.js"
entries = index.read_text().splitlines()[1:-1]
links[index] = [(line, json.loads(entry.rstrip(","))[2]) for line, entry in enumerate(entries, 2)]
faults = []
count = 0
for path, links_of_page in links.items():
    for line, link in links_of_page:
        parts = urlsplit(link)
        if parts.scheme or parts.netloc:
            continue
        count += 1
        target = (path.parent / unquote(parts.path)).resolve() if parts.path else path
        if not target.is_file():
            problem = "no such file"
        elif target in pages and unquote(parts.fragment) not in pages[target].anchors:
            problem = "no such anchor"
        else:
            continue
        faults.append(f"{path.relative_to(folder)}:{line}: {link}: {problem}")
print("\n".join(sorted(faults)) or f"{count} links in {len(pages)} pages, none broken")
sys.exit(bool(faults))
