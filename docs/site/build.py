#!/usr/bin/python3
"""Makes build/docs: the guides, the reference of the public headers, sources that guides refer to, and a
search over all of it. To be run in the repository's root; the modules are Debian's."""
import fnmatch
import html
import json
import pathlib
import re
import shutil
import subprocess
import sys
from xml.etree import ElementTree

from markdown_it import MarkdownIt
from pygments import highlight
from pygments.formatters import HtmlFormatter
from pygments.lexers import get_lexer_by_name, get_lexer_for_filename
from pygments.util import ClassNotFound

SITE = pathlib.Path("docs/site")
WORK = pathlib.Path("build/docs.work")
OUTPUT = pathlib.Path("build/docs")
ROOT = pathlib.Path.cwd()
TEMPLATE = (SITE / "page.html").read_text()
REPOSITORY_PAGES = {SITE / "index.md": "index.html", SITE / "search.md": "search.html"}

# The reference by themes: what each is, and its headers; a header belongs to the first that names it.
THEMES = [
    ("c", "C", "The kit for hosts in C, and for languages that call C.", ["c/*"]),
    ("virtual", "Virtual pen", "A radio, pens and a clock in the process: for demos and tests.",
     ["virtual/*"]),
    ("loops", "Run loop and loops", "The loop that the kit runs on, its timers, and adapters to the loops "
     "of other libraries.", ["loops/*", "platform/RunLoop*", "platform/Timer.h", "platform/Clock.h",
                             "platform/Block.h"]),
    ("bluetooth", "Bluetooth platform", "The Bluetooth LE central below the engine: scans, links, services "
     "and values of any device.", ["platform/CB*"]),
    ("json", "JSON", "A value that never fails loudly, and what reads and writes it.",
     ["JSON*", "Index.h", "Type.h", "writtingOptionsKeys.h", "platform/JSONSerialization.h",
      "platform/StringEncoding.h"]),
    ("values", "Values", "Numbers, texts, bytes, errors, colours, and values of any type.", ["platform/*"]),
    ("engine", "Engine", "What a host talks to: the manager, its receiver, and the engine behind them.",
     ["*"]),
]
TYPES = ("class", "struct", "enum", "concept")
THEME_ORDER = ["engine", "bluetooth", "values", "json", "loops", "virtual", "c"]


def up_from(address):
    """The way from the folder of a page to the output's."""
    return "../" * (len(pathlib.PurePath(address).parts) - 1)


def page(title, content, address):
    """Writes a page at the address, which is relative to the output."""
    target = OUTPUT / address
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_text(TEMPLATE.replace("{title}", html.escape(title)).replace("{up}", up_from(address))
                      .replace("{content}", content))


# --- the reference ------------------------------------------------------------------------------------


def run_doxygen():
    """Its pages, in our frame, without what is told elsewhere: members of other classes, lists, icons."""
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    frame = TEMPLATE.replace("{title}", "$title").replace("{up}", "../")
    header, footer = frame.split("{content}")
    (WORK / "header.html").write_text(header + '<div id="top">')
    (WORK / "footer.html").write_text(footer)
    if subprocess.run(["doxygen", str(SITE / "Doxyfile")]).returncode:
        sys.exit("the comments in the public headers have the faults above")
    (OUTPUT / "reference").mkdir(parents=True)
    for path in (WORK / "html").glob("*.html"):
        if not re.match(r"(class|struct|namespace|concept)(InkoraKit|inkora)|.*_8h\.html", path.name):
            continue
        if path.stem.endswith("-members"):
            continue
        text = path.read_text()
        text = re.sub(r'<tr class="[^"]* inherit [^"]*">.*?</tr>\n?', "", text, flags=re.DOTALL)
        text = re.sub(r' onclick="[^"]*"><img src="closed.png"[^>]*/>&#160;', ">", text)
        text = re.sub(r"(&#124;\n)?<a href=\"[^\"]*-members.html\">[^<]*</a>", "", text)
        if 'id="nested-classes"' not in text:  # of private ones alone
            text = re.sub(r'<a href="#nested-classes">[^<]*</a>( &#124;\n)?', "", text)
        text = re.sub(r'<a class="el" href="dir_[^"]*">([^<]*)</a>', r"\1", text)
        text = re.sub(r'<div class="title">(.*?)</div>', r"<h1>\1</h1>", text, count=1)
        text = text.replace("&#9670;&#160;", "# ").replace("&#9670;&nbsp;", "# ")
        (OUTPUT / "reference" / path.name).write_text(text)


def text_of(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


def address_of(identifier):
    """Where Doxygen puts what has the identifier."""
    compound, member = re.match(r"(.*?)(?:_1((?:a[0-9a-f]{32})+))?$", identifier).groups()
    return f"reference/{compound}.html" + (f"#{member}" if member else "")


class Symbol:
    def __init__(self, element, scope="", header=None):
        self.kind = element.get("kind") or element.tag
        own_name = element.findtext("name") or element.findtext("compoundname")
        self.name = f"{scope}{own_name}".removeprefix("InkoraKit::")
        self.brief = text_of(element.find("briefdescription"))
        self.text = f"{self.brief} {text_of(element.find('detaileddescription'))}"
        self.address = address_of(element.get("id"))
        self.header = header or element.find("location").get("file").removeprefix("InkoraKit/")
        self.is_nested = "::" in re.sub("<.*", "", self.name)

    def theme(self):
        return next(key for key, _, _, patterns in THEMES
                    if any(fnmatch.fnmatch(self.header, pattern) for pattern in patterns))


def symbols():
    """All that Doxygen has documented, types and their members."""
    for path in sorted((WORK / "xml").glob("*.xml")):
        for compound in ElementTree.parse(path).getroot().findall("compounddef"):
            kind, name = compound.get("kind"), compound.findtext("compoundname")
            if kind not in ("class", "struct", "concept", "namespace", "file"):
                continue
            if not (OUTPUT / address_of(compound.get("id"))).exists():
                continue
            if kind != "namespace":
                yield Symbol(compound)
            scope = "" if kind in ("namespace", "file") else f"{name}::"
            for member in compound.iter("memberdef"):
                # Of a file: what is of the namespace, and C's second name of a type.
                is_elsewhere = kind == "file" and ("namespace" in member.get("id") or
                                                   member.get("kind") == "typedef")
                if member.get("prot") == "private" or is_elsewhere:
                    continue
                symbol = Symbol(member, scope)
                if symbol.text.strip() and "@" not in symbol.name:  # not private, and with a name
                    yield symbol
                scope_of_values = f"{symbol.name}::" if member.get("strong") == "yes" else scope
                for value in member.findall("enumvalue"):
                    yield Symbol(value, scope_of_values, symbol.header)


def addresses_of_names(all_symbols):
    """Where a name in a guide leads: `Type`, `Type::member`, or a long `member` that one type alone has."""
    addresses = {}
    owners = {}
    for symbol in all_symbols:
        owner, _, member = symbol.name.rpartition("::")
        if owner or symbol.kind in TYPES:
            addresses.setdefault(symbol.name, symbol.address)
        owners.setdefault(member, {}).setdefault(owner, symbol.address)
    for member, by_owner in owners.items():
        if len(by_owner) == 1 and len(member) > 10:
            addresses.setdefault(member, *by_owner.values())
    return addresses


def theme_lists(all_symbols, up, with_briefs):
    """Each theme with what it has: types, constants, and functions outside of them."""
    lists = []
    titles = {key: (title, about) for key, title, about, _ in THEMES}
    for key in THEME_ORDER:
        title, about = titles[key]
        found = {}
        for symbol in all_symbols:
            if not symbol.is_nested and symbol.kind != "enumvalue" and symbol.theme() == key and (
                    "<" not in symbol.name):
                found.setdefault(symbol.name, symbol)
        names = sorted(found, key=lambda name: (found[name].kind not in TYPES, name.lower()))
        link = {name: f'<a href="{up}{found[name].address}"><code>{html.escape(name)}</code></a>'
                for name in names}
        if with_briefs:
            rows = "".join(f"<dt>{link[name]}</dt><dd>{html.escape(found[name].brief)}</dd>"
                           for name in names)
            lists.append(f'<h2 id="{key}">{title}</h2><p>{about}</p><dl>{rows}</dl>')
        else:
            shown = ", ".join(link[name] for name in names if found[name].kind in TYPES)
            lists.append(f'<h3><a href="reference/index.html#{key}">{title}</a></h3>'
                         f"<p>{about} {shown}</p>")
    return "\n".join(lists)


# --- guides and sources -------------------------------------------------------------------------------


def slug(heading, taken):
    """The anchor that GitHub gives a heading."""
    made = re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
    taken[made] = taken.get(made, -1) + 1
    return f"{made}-{taken[made]}" if taken[made] else made


def highlighted(code, language):
    try:
        lexer = get_lexer_by_name(language.replace("c++", "cpp") or "text")
    except ClassNotFound:
        lexer = get_lexer_by_name("text")
    return highlight(code, lexer, HtmlFormatter(nowrap=True))


def page_of(path):
    """The address of the page that shows a file of the repository."""
    if path in REPOSITORY_PAGES:
        return REPOSITORY_PAGES[path]
    if path.suffix == ".md":
        return str(path.with_suffix(".html"))
    return str(path) if path.suffix == ".png" else f"{path}.html"


class Guides:
    """Pages of Markdown and of sources: those that are asked for, and those that these refer to."""

    def __init__(self, addresses_of_names):
        self.names = addresses_of_names
        self.waiting = []
        self.known = set()
        self.sections = []  # for the search: (heading, title of the page, address, text)
        self.replacements = {}
        self.markdown = MarkdownIt("commonmark", {"html": True, "highlight": lambda code, language, _:
                                                  highlighted(code, language)}).enable("table")

    def add(self, path):
        if path not in self.known:
            self.known.add(path)
            self.waiting.append(path)

    def write(self):
        while self.waiting:
            path = self.waiting.pop(0)
            if path.suffix == ".md":
                self.write_guide(path)
            elif path.suffix == ".png":
                target = OUTPUT / path
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(path, target)
            else:
                self.write_source(path)

    def write_source(self, path):
        text = path.read_text()
        try:
            language = get_lexer_for_filename(path.name).aliases[0]
        except ClassNotFound:
            language = ""
        language = "cpp" if path.suffix == ".h" and path.parent.name != "c" else language
        content = f"<h1>{path.name}</h1><p class=place>{path}</p><pre>{highlighted(text, language)}</pre>"
        page(path.name, content, page_of(path))

    def link(self, reference, source):
        """A link of a guide, to the pages of this folder."""
        if re.match(r"\w+:|#", reference):
            return reference
        name, _, anchor = reference.partition("#")
        target = (source.parent / name).resolve().relative_to(ROOT)
        if not target.is_file():
            sys.exit(f"{source}: there is no {target}")
        self.add(target)
        return up_from(page_of(source)) + page_of(target) + (f"#{anchor}" if anchor else "")

    def write_guide(self, path):
        tokens = self.markdown.parse(path.read_text())
        taken = {}
        parts = []  # of a long guide, listed at its top
        title = heading = anchor = ""
        for number, token in enumerate(tokens):
            if token.type == "heading_open":
                heading = "".join(child.content for child in tokens[number + 1].children)
                anchor = slug(heading, taken)
                title = title or heading
                token.attrSet("id", anchor)
                if token.tag == "h2":
                    parts.append(f'<li><a href="#{anchor}">{html.escape(heading)}</a></li>')
                self.sections.append([heading, title, f"{page_of(path)}#{anchor}", ""])
            elif token.type == "inline":
                if tokens[number - 1].type != "heading_open" and self.sections:
                    self.sections[-1][3] += " " + "".join(
                        child.content or " " for child in token.children if child.type != "html_inline")
                for child in token.children:
                    self.redirect(child, path)
            elif token.type in ("fence", "code_block"):
                self.sections[-1][3] += " " + " ".join(token.content.split())
            elif token.type == "html_block":
                self.redirect(token, path)
        content = self.markdown.renderer.render(tokens, self.markdown.options, {})
        content = content.replace("<table>", '<div class="scroll"><table>').replace(
            "</table>", "</table></div>")
        content = re.sub(r"(?<!<pre>)<code>([\w:]+)(\(\))?</code>", lambda match: self.named(match, path),
                         content)
        if len(parts) > 6:
            parts = f"<details><summary>{len(parts)} sections</summary><ul>{''.join(parts)}</ul></details>"
            content = content.replace("</h1>", f"</h1>{parts}", 1)
        for place, text in self.replacements.items():
            content = content.replace(place, text)
        page(title, content, page_of(path))

    def redirect(self, token, source):
        if token.type == "link_open":
            token.attrSet("href", self.link(token.attrGet("href"), source))
        elif token.type in ("html_inline", "html_block"):
            token.content = re.sub(r'<img src="([^"]*)"', lambda match: '<img src="' + self.link(
                match[1], source) + '"', token.content)

    def named(self, match, source):
        """A name in a guide, with its place in the reference."""
        address = self.names.get(match[1])
        if not address or match.string[:match.start()].endswith('">'):  # a link already
            return match[0]
        return f'<a href="{up_from(page_of(source))}{address}">{match[0]}</a>'


# --- all of it ----------------------------------------------------------------------------------------


def main():
    shutil.rmtree(OUTPUT, ignore_errors=True)
    OUTPUT.mkdir(parents=True)
    run_doxygen()
    all_symbols = list(symbols())
    titles = {key: title for key, title, _, _ in THEMES}
    guides = Guides(addresses_of_names(all_symbols))
    guides.replacements["<!-- the themes of the reference -->"] = theme_lists(all_symbols, "", False)
    for path in REPOSITORY_PAGES:
        guides.add(path)
    guides.write()
    jumps = " · ".join(f'<a href="#{key}">{titles[key]}</a>' for key in THEME_ORDER)
    page("Reference", f"<h1>Reference</h1><p>{jumps}</p>{theme_lists(all_symbols, '../', True)}",
         "reference/index.html")

    entries = [section for section in guides.sections if not section[2].startswith("search.html")]
    entries += [[symbol.name, f"{titles[symbol.theme()]}, {symbol.header}", symbol.address, symbol.text]
                for symbol in all_symbols]
    index = ",\n".join(json.dumps(entry, ensure_ascii=False) for entry in entries)
    (OUTPUT / "search-index.js").write_text(f"const entries = [\n{index}\n];\n")
    for name in ("style.css", "search.js"):
        shutil.copy(SITE / name, OUTPUT)
    print(f"{len(guides.known)} guides and sources, {len(all_symbols)} symbols, {len(entries)} for the search")


if __name__ == "__main__":
    main()
