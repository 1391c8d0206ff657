// Colours in words, and as palettes: what the command-line host knows of both, by the same code.
import instantiate from './palettes.js';

const tool = await instantiate();

const uses = {
    '.json': 'programs (JSON)',
    '.gpl': 'GIMP, Krita (GPL)',
    '.ase': 'Adobe’s programs (ASE)',
    '.css': 'style sheets (CSS)',
    '.svg': 'drawings (SVG)',
    '.html': 'people (HTML page)',
};

/** The formats of palettes: each the ending of a file's name, and what it is for. */
export const formats = tool.endings().map(ending => ({ ending, use: uses[ending] ?? ending }));

/** The name of the nearest web colour. */
export const nameOf = hex => tool.nearestName(hex);

export const rgbOf = hex => `rgb(${[1, 3, 5].map(place => parseInt(hex.slice(place, place + 2), 16)).join(' ')})`;

/** The contrast of two colours in words: its ratio, and what WCAG 2 takes it to be enough for. */
export function contrastOf(hex, other) {
    const ratio = tool.contrast(hex, other);
    return [tool.contrastText(ratio), tool.contrastLevel(ratio)];
}

function converted(from, bytes, to) {
    const result = tool.converted(from, bytes, to);
    if (typeof result === 'string') throw new Error(from + result);
    return result;
}

/** The bytes of a palette of the colours, the oldest first. */
export function paletteOf(title, swatches, ending) {
    const colours = swatches.map(({ hex, name, time }) => ({ hex, name, time: time || undefined }));
    return converted('.json', JSON.stringify({ title, colours }), ending);
}

/**
 * The colours in a palette's file, each `{hex, time, name}`, without the name if it is the nearest web colour's.
 * @throws Error that says why there are none, beginning with the file's name
 */
export function coloursIn(name, bytes) {
    return JSON.parse(new TextDecoder().decode(converted(name, bytes, '.json'))).colours
        .map(({ hex, name, time = '' }) => ({ hex, time, name: name === nameOf(hex) ? undefined : name }));
}
