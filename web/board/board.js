import { Announcements } from './announcements.js';
import { copied } from './clipboard.js';
import { coloursIn, contrastOf, formats, nameOf, paletteOf, rgbOf } from './colours.js';
import { Connection } from './connection.js';
import { History } from './history.js';
import { Swatches, timeText } from './swatches.js';
import { batteryText, explained, phases } from './words.js';

const $ = id => document.getElementById(id);
const announcements = new Announcements($('said'));
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

const history = new History(change);
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
        if (hex === history.swatches.at(-1)?.hex) return;  // a pen that is connected again tells its last one
        chosen = undefined;
        history.add({ hex });
        announcements.tellColour(`${hex}, ${nameOf(hex)}`);
    },
});

async function copy(text) {
    announcements.say(await copied(text) ? `Copied ${text}` : `This browser does not let the page copy ${text}`);
}

function remove(...ids) {
    const single = history.swatches.find(({ id }) => id === ids[0]);
    history.remove(...ids);
    announcements.say(`Removed ${ids.length === 1 ? single.hex : countText(ids.length)}`);
}

let told = phases.idle();
function tellConnection() {
    const { problem, phase, name } = connection;
    const text = problem ? explained(problem) : phases[phase](name);
    if (text !== told) announcements.tell(text);
    told = text;
}

function draw() {
    const focused = document.activeElement;
    drawConnection();
    drawShown(shown());
    const count = history.swatches.length;
    $('count').textContent = countText(count) + (count === History.most ? ', the most that are kept: of more the oldest go' : '');
    $('swatches').hidden = $('how').hidden = count === 0;
    $('clear').disabled = $('write').disabled = count === 0;
    $('undo').hidden = history.removedCount === 0;
    if (!history.isKept) $('kept').textContent = 'This browser does not keep the colours: they are gone when the page is closed. Save them as a palette.';
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
    $('pair').hidden = $('try').hidden = phase !== 'idle';
    $('stop').hidden = phase === 'idle';
    $('stop').textContent = phase === 'connected' ? 'Disconnect' : 'Stop';
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
    $('name').textContent = name;
    $('hex').textContent = hex;
    $('rgb').textContent = rgbOf(hex);
    const rows = [...contrastOf(hex, '#000000'), ...contrastOf(hex, '#FFFFFF')];
    document.querySelectorAll('#values dd').forEach((dd, i) => { dd.textContent = rows[i]; });
    $('time').dateTime = time;
    $('time').textContent = timeText(time);
}

// Whoever is at what goes away is next where the page goes on.
function keepPlace(focused) {
    const isGone = element => !element.isConnected || element.disabled || element.closest('[hidden]');
    if (!isGone(focused)) return;
    const next = focused.closest('header, #problem, #virtual') ? ['stop', 'pair'] : ['undo', 'clear', 'title'];
    next.map($).find(element => !isGone(element))?.focus();
}

async function tryVirtual() {
    await connection.tryVirtual();
    letCapture();
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
    announcements.say(`Brought back ${countText(history.removedCount)}`);
    history.undo();
});
onClick('more', () => {
    swatches.showMore();
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
    const bytes = paletteOf(title, history.swatches, $('format').value);
    const link = document.createElement('a');
    link.href = URL.createObjectURL(new Blob([bytes]));
    link.download = title.replace(/[^\p{L}\p{N} ._-]/gu, '-').replace(/^\./, '-') + $('format').value;
    link.click();
    setTimeout(URL.revokeObjectURL, 60000, link.href);
    announcements.say(`Saved ${countText(history.swatches.length)} as ${link.download}`);
});

$('file').accept = formats.map(({ ending }) => ending).join();
$('file').addEventListener('change', async () => {
    const [file] = $('file').files;
    try {
        const colours = coloursIn(file.name, new Uint8Array(await file.arrayBuffer()));
        for (const colour of colours) history.add(colour);
        chosen = undefined;
        announcements.say(`Opened ${countText(colours.length)} of ${file.name}`);
    } catch (error) {
        announcements.say(error.message);
    }
    $('file').value = '';
});

draw();
await connection.start();
$('pair').disabled = $('try').disabled = false;
