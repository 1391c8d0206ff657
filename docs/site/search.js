// Looks up the words of ?q= in `entries` (search-index.js): [title, place, address, text] each.
const asked = new URLSearchParams(location.search).get("q") || "";
const words = asked.toLowerCase().split(/\s+/).filter(Boolean);
const longest = 50;  // results shown

// Higher is better, 0 is no result: every word has to be there; titles count most.
function rank([title, place, , text]) {
    const name = title.toLowerCase();
    const all = `${name} ${place} ${text}`.toLowerCase();
    if (!words.every(word => all.includes(word))) return 0;
    if (name === words.join(" ")) return 4;
    if (name.startsWith(words[0])) return 3;
    return words.some(word => name.includes(word)) ? 2 : 1;
}

// The text around the first word that it has.
function excerpt(text) {
    const found = words.map(word => text.toLowerCase().indexOf(word)).filter(at => at >= 0);
    const from = Math.max(0, Math.min(...found, text.length) - 60);
    const start = found.length && from ? text.indexOf(" ", from) + 1 : 0;
    return (start ? "… " : "") + text.slice(start, start + 200) + (text.length > start + 200 ? " …" : "");
}

function element(name, text, parent) {
    const made = document.createElement(name);
    made.textContent = text;
    parent.append(made);
    return made;
}

const found = words.length ? entries.map(entry => [rank(entry), entry]).filter(([r]) => r) : [];
found.sort(([left], [right]) => right - left);
document.querySelector("input[type=search]").value = asked;
document.querySelector("#count").textContent =
    !words.length ? "Type words into the field above." :
    found.length === 0 ? `Nothing has all of: ${asked}` :
    found.length > longest ? `The first ${longest} of ${found.length} results.` :
    `${found.length} result${found.length === 1 ? "" : "s"}.`;
for (const [, [title, place, address, text]] of found.slice(0, longest)) {
    const result = element("section", "", document.querySelector("#results"));
    element("a", title, result).href = address;
    element("small", place, result);
    element("p", excerpt(text), result);
}
