// The same in node, whose `fetch` reads no files: for pages' own tests with the virtual pen.
import { readFile } from 'node:fs/promises';
import { load as loadFrom } from './inkorakit.js';

export * from './inkorakit.js';

export async function load(options = {}) {
    const wasm = options.wasm ?? await readFile(new URL('inkorakit.wasm', import.meta.url));
    return loadFrom({ ...options, wasm });
}
