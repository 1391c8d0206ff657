#include "palette/Markup.h"
#include "palette/formats/Formats.h"

namespace InkoraTool {
namespace {

constexpr std::string_view htmlStart = R"(<script type="application/json" id="palette">)";
constexpr std::string_view htmlEnd = "</script>";

constexpr std::string_view htmlStyle = R"(<style>
:root { color-scheme: light dark; --ground: #f6f5f2; --card: #fff; --ink: #1f2126; --faint: #5c5f68; --line: #0002; }
@media (prefers-color-scheme: dark) {
    :root { --ground: #17181c; --card: #202228; --ink: #e6e4df; --faint: #a3a5ad; --line: #fff3; }
}
* { box-sizing: border-box; }
body { margin: 0; padding: 1.5rem 1rem 4rem; background: var(--ground); color: var(--ink);
    font: 1rem/1.5 system-ui, sans-serif; overflow-wrap: anywhere; }
header, main { max-width: 75rem; margin: 0 auto; }
h1 { margin: 0; font-size: 1.7rem; line-height: 1.2; }
header p { margin: .3rem 0 1.2rem; color: var(--faint); }
main { display: grid; gap: 1rem; grid-template-columns: repeat(auto-fill, minmax(min(17rem, 100%), 1fr)); }
article { background: var(--card); border-radius: 10px; overflow: hidden; box-shadow: 0 1px 4px #0003; }
button { font: inherit; color: inherit; border: 0; cursor: pointer; }
:focus-visible { outline: 3px solid var(--ink); outline-offset: -3px; }
.swatch { display: flex; justify-content: space-between; align-items: end; width: 100%; height: 11rem;
    padding: .6rem .9rem; font-size: 1.4rem; border-bottom: 1px solid var(--line); print-color-adjust: exact; }
section { padding: .7rem .9rem .9rem; }
h2 { margin: 0; font-size: 1.1rem; }
.values { display: flex; flex-wrap: wrap; gap: .4rem; margin: .4rem 0 .6rem; }
.values button { padding: .15rem .5rem; border-radius: 5px; background: var(--ground);
    font: .88rem/1.6 ui-monospace, Menlo, Consolas, "DejaVu Sans Mono", monospace; }
.values button:hover { outline: 1px solid var(--faint); }
dl { display: grid; grid-template-columns: auto auto 1fr; gap: 0 .7rem; margin: 0; font-size: .92rem; }
dt, time { color: var(--faint); }
dd { margin: 0; font-variant-numeric: tabular-nums; }
dt + dd { text-align: right; }
time { display: block; margin-top: .5rem; font-size: .85rem; }
output { position: fixed; left: 50%; bottom: 1.2rem; translate: -50%; padding: .5rem 1rem; border-radius: 8px;
    background: var(--ink); color: var(--ground); opacity: 0; transition: opacity .2s; pointer-events: none; }
output.shown { opacity: 1; }
</style>
)";

// Where the browser lets no page write to the clipboard, a selection can still be copied.
constexpr std::string_view htmlScript = R"(<script>
const said = document.querySelector("output");
let hiding;
async function copy(text) {
    try {
        await navigator.clipboard.writeText(text);
        return true;
    } catch {
        const field = document.body.appendChild(document.createElement("textarea"));
        field.value = text;
        field.select();
        const isCopied = document.execCommand("copy");
        field.remove();
        return isCopied;
    }
}
document.querySelector("main").addEventListener("click", async event => {
    const button = event.target.closest("button");
    if (!button) return;
    const isCopied = await copy(button.value);
    button.focus({preventScroll: true});
    said.textContent = isCopied ? `Copied ${button.value}` : `This browser does not let the page copy ${button.value}`;
    said.classList.add("shown");
    clearTimeout(hiding);
    hiding = setTimeout(() => said.classList.remove("shown"), 2000);
});
for (const time of document.querySelectorAll("time")) {
    const date = new Date(time.dateTime);
    if (!isNaN(date)) time.textContent = date.toLocaleString([], {dateStyle: "medium", timeStyle: "medium"});
}
</script>
)";

std::string copyButton(const std::string& value) {
    return "<button value=\"" + value + R"(" title="Copy">)" + value + "</button>\n";
}

std::string rgbText(const Colour& colour) {
    std::string text;
    for (const std::uint8_t component : colour)
        text += (text.empty() ? "rgb(" : " ") + std::to_string(component);
    return text + ')';
}

std::string contrastRow(const std::string& what, double ratio) {
    return "<dt>" + what + "</dt><dd>" + contrastText(ratio) + "</dd><dd>" +
           std::string(contrastLevel(ratio)) + "</dd>\n";
}

std::string articleOf(const Swatch& swatch) {
    const std::string hex = hexText(swatch.colour);
    const std::string time = escapedMarkup(swatch.time);
    std::string text = "<article>\n<button class=\"swatch\" value=\"" + hex +
                       "\" aria-label=\"Copy " + hex + "\" style=\"background:" + hex +
                       "\"><span style=\"color:#000\">black</span>"
                       "<span style=\"color:#fff\">white</span></button>\n<section>\n<h2>" +
                       escapedMarkup(swatch.name) + "</h2>\n<div class=\"values\">\n" +
                       copyButton(hex) + copyButton(rgbText(swatch.colour)) + "</div>\n<dl>\n" +
                       contrastRow("black text", contrast(swatch.colour, {0, 0, 0})) +
                       contrastRow("white text", contrast(swatch.colour, {255, 255, 255})) +
                       "</dl>\n";
    if (!time.empty()) text += "<time datetime=\"" + time + "\">" + time + "</time>\n";
    return text + "</section>\n</article>\n";
}

std::string introduction(std::size_t count) {
    if (count == 0) return "There are no colours yet.";
    return std::to_string(count) + (count == 1 ? " colour." : " colours.") +
           " Click a swatch or a value to copy it. Contrast is the ratio of WCAG 2.";
}

}  // namespace

std::string writeHtmlPalette(const Palette& palette) {
    const std::string title = escapedMarkup(palette.title);
    std::string text =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
        title + "</title>\n";
    text += htmlStyle;
    text += htmlStart;
    text += embeddedJson(palette);
    text += htmlEnd;
    text += "\n</head>\n<body>\n<header>\n<h1>" + title + "</h1>\n<p>" +
            introduction(palette.swatches.size()) + "</p>\n</header>\n<main>\n";
    for (const Swatch& swatch : palette.swatches) text += articleOf(swatch);
    text += "</main>\n<output></output>\n";
    text += htmlScript;
    return text + "</body>\n</html>\n";
}

Palette readHtmlPalette(std::string_view text) {
    return paletteWithin(text, htmlStart, htmlEnd);
}

}  // namespace InkoraTool
