/** What the bundler makes of the file: its address, or its bytes. `load({ wasm })` takes both. */
declare const wasm: string | Uint8Array;
export default wasm;
