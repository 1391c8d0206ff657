import { Announcements } from './announcements.js';
import { copied } from './clipboard.js';
import { coloursIn, contrastOf, formats, nameOf, paletteOf, rgbOf } from './colours.js';
import { Connection } from './connection.js';
import { History } from './history.js';
import { Swatches, timeText } from './swatches.js';
import { batteryText, explained, isLow, phases } from './words.js';

const $ = id => document.getElementById(id);
const announcements = new Announcements($('said'), $('toast'));
const countText = count => count === 0 ? 'No colours' : count === 1 ? '1 colour' : `${count} colours`;

// Drawn once a frame at the most, however much happens.
let isDrawing = false;
function change() {
    if (isDrawing) return;
    isDrawing = true;
    requestAnimationFrame(() => {
        isDrawing = false;
        draw();
    });
}

const history = new History(() => {
    tellKeeping();
    change();
});
let chosen;  // the id of the colour that is shown large; undefined for the last one
const shown = () => history.swatches.find(({ id }) => id === chosen) ?? history.swatches.at(-1);

const swatches = new Swatches($('swatches'), {
    chosen(id) {
        chosen = id;
        change();
        copy(shown().hex);
    },
    removed: remove,
});
const connection = new Connection({
    changed() {
        tellConnection();
        change();
    },
    captured(hex) {
        if (connection.virtualPen && history.room === 0) return refuseVirtual();
        chosen = undefined;
        history.add({ hex });
        announcements.tellColour(`${hex}, ${nameOf(hex)}`);
    },
});

let mishap = '';  // what a person has asked for in vain

/** Says what was done. */
function succeed(text) {
    announcements.say(text);
    mishap = '';
    change();
}

/** Says why it was not, and shows that until something succeeds. */
function fail(text) {
    announcements.say(text);
    mishap = text;
    change();
}

async function copy(text) {
    if (await copied(text)) succeed(`Copied ${text}`);
    else fail(`This browser does not let the page copy ${text}: select it, and copy it by hand.`);
}

function remove(...ids) {
    const removed = history.remove(...ids);
    if (removed.length > 0) succeed(`Removed ${removed.length === 1 ? removed[0].hex : countText(removed.length)}`);
}

let told = '';
function tellConnection() {
    const { problem, phase, name, battery } = connection;
    const state = isLow(battery) ? `${phases[phase](name)} Its battery is low: charge it soon.` : phases[phase](name);
    const text = problem ? explained(problem) : state;
    if (text !== told && phase !== 'loading') announcements.tell(text);
    told = text;
}

const keptTexts = {
    true: 'The colours stay in this browser; nothing is sent anywhere.',
    false: 'This browser does not keep the colours: they are gone when the page is closed. Save them as a palette.',
};
let wasKept = true;
function tellKeeping() {
    if (history.isKept !== wasKept) announcements.tell(keptTexts[history.isKept]);
    wasKept = history.isKept;
}

function draw() {
    const focused = document.activeElement;
    drawConnection();
    $('mishap').hidden = !mishap;
    $('mishap').firstElementChild.textContent = mishap;
    drawShown(shown());
    const count = history.swatches.length;
    $('count').textContent = countText(count) + (count === History.most ? ', the most that are kept: of more the oldest go' : '');
    $('swatches').hidden = $('how').hidden = count === 0;
    $('clear').disabled = $('write').disabled = count === 0;
    $('undo').hidden = !history.canUndo;
    $('kept').textContent = keptTexts[history.isKept];
    const leftOut = swatches.draw(history.swatches, shown()?.id);
    $('more').hidden = leftOut === 0;
    $('more').textContent = `Show more (${leftOut} are older)`;
    keepPlace(focused);
}

function drawConnection() {
    const { phase, name, battery, problem, virtualPen } = connection;
    $('link').dataset.phase = phase;
    $('state').textContent = phases[phase](name);
    $('battery').textContent = phase === 'connected' && battery !== undefined ? batteryText(battery) : '';
    const isIdle = phase === 'idle' || phase === 'loading';
    $('pair').hidden = $('try').hidden = !isIdle;
    $('pair').disabled = $('try').disabled = phase === 'loading';
    $('stop').hidden = isIdle;
    $('stop').textContent = phase === 'connected' || phase === 'reading' ? 'Disconnect' : 'Stop';
    $('virtual').hidden = !virtualPen || phase !== 'connected';
    $('problem').hidden = !problem;
    if (!problem) return;
    $('problem').firstElementChild.textContent = explained(problem);
    const remedy = remedies[problem.kind];
    $('again').hidden = !remedy;
    $('again').textContent = remedy?.text;
}

const remedies = {
    'not-found': { text: 'Search again', act: () => connection.search() },
    connection: { text: 'Search again', act: () => connection.search() },
    fatal: { text: 'Start anew', act: () => connection.virtualPen ? tryVirtual() : connection.pair() },
};

function drawShown(swatch) {
    $('none').hidden = Boolean(swatch);
    $('large').hidden = $('values').hidden = !swatch;
    $('which').textContent = swatch && swatch !== history.swatches.at(-1) ? 'Chosen colour' : 'Last colour';
    if (!swatch) return;
    const { hex, name = nameOf(hex), time } = swatch;
    $('large').style.background = hex;
    $('name').textContent = $('name').title = name;
    $('hex').textContent = hex;
    $('rgb').textContent = rgbOf(hex);
    const rows = [...contrastOf(hex, '#000000'), ...contrastOf(hex, '#FFFFFF')];
    document.querySelectorAll('#values dd').forEach((dd, i) => { dd.textContent = rows[i]; });
    $('time').dateTime = time;
    $('time').textContent = timeText(time);
}

// Whoever is at what goes away is next where the page goes on, and never where Enter takes more away.
function keepPlace(focused) {
    const isGone = element => !element.isConnected || element.disabled || element.closest('[hidden]');
    if (!isGone(focused) || $('swatches').contains(document.activeElement)) return;
    const next = focused.closest('header, #problem, #virtual') ? ['stop', 'pair'] : ['undo', 'open'];
    next.map($).find(element => !isGone(element))?.focus();
}

async function tryVirtual() {
    await connection.tryVirtual();
    letCapture();
}

// What is made up drives out nothing that was captured.
function refuseVirtual() {
    $('by-itself').checked = false;
    letCapture();
    fail('There is no room for colours of the virtual pen: remove some first.');
}

function letCapture() {
    if ($('by-itself').checked) connection.virtualPen?.startCapturing(2, Date.now() % 1e6);
    else connection.virtualPen?.stopCapturing();
}

const onClick = (id, does) => $(id).addEventListener('click', does);
onClick('pair', () => connection.pair());
onClick('try', tryVirtual);
onClick('stop', () => connection.stop());
onClick('again', () => remedies[connection.problem.kind].act());
onClick('hex', () => copy($('hex').textContent));
onClick('rgb', () => copy($('rgb').textContent));
onClick('remove', () => remove(shown().id));
onClick('clear', () => remove(...history.swatches.map(({ id }) => id)));
onClick('undo', () => {
    succeed(`Brought back ${countText(history.undo())}`);
});
onClick('more', () => {
    swatches.showMore();
    change();
});
onClick('close', () => {
    mishap = '';
    change();
});
onClick('open', () => $('file').click());

$('by-itself').addEventListener('change', letCapture);
$('virtual').addEventListener('submit', event => {
    event.preventDefault();
    const [, ...digits] = /(..)(..)(..)$/.exec($('paint').value);
    connection.virtualPen.capture(...digits.map(text => parseInt(text, 16)));
});

for (const { ending, use } of formats) $('format').add(new Option(use, ending));
$('save').addEventListener('submit', event => {
    event.preventDefault();
    const title = $('title').value.trim() || 'Palette';
    let bytes;
    try {
        bytes = paletteOf(title, history.swatches, $('format').value);
    } catch (error) {
        return fail(`The palette could not be saved: ${reasonOf(error)}.`);
    }
    const link = document.createElement('a');
    link.href = URL.createObjectURL(new Blob([bytes]));
    link.download = title.replace(/[^\p{L}\p{N} ._-]/gu, '-').replace(/^\./, '-') + $('format').value;
    link.click();
    setTimeout(URL.revokeObjectURL, 60000, link.href);
    succeed(`Saved ${countText(history.swatches.length)} as ${link.download}`);
});

const largestFile = 10e6;  // bytes: as many colours as are kept take half of that, as an HTML page
$('file').accept = formats.map(({ ending }) => ending).join();
$('file').addEventListener('change', async () => {
    const [file] = $('file').files;
    try {
        await openPalette(file);
    } catch (error) {
        fail(`The palette could not be opened: ${reasonOf(error)}. Choose one that was saved here, or another program’s GPL, ASE or CSS.`);
    }
    $('file').value = '';
});

async function openPalette(file) {
    if (file.size > largestFile) return fail(`${file.name} is too large for a palette: more than ${largestFile / 1e6} MB.`);
    const colours = coloursIn(file.name, new Uint8Array(await file.arrayBuffer()));
    const fitting = colours.slice(0, history.room);
    history.add(...fitting);
    chosen = undefined;
    if (fitting.length === colours.length) succeed(`Opened ${countText(colours.length)} of ${file.name}`);
    else fail(`Of ${file.name}, only ${fitting.length} of ${countText(colours.length)} were opened: there is no room for more than ${History.most}. Remove some first.`);
}

/** In one line; what WebAssembly throws has no message. */
function reasonOf({ message }) {
    return message?.split('\n')[0].replace(/\.$/, '') ?? 'it is too much for this browser';
}

connection.start();
