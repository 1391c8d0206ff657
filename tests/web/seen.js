// What the host hears, and what goes wrong in the page.
const seen = [];
var Module = { printErr: line => seen.push(line) };
addEventListener('error', event => seen.push(`error ${event.message}`));
addEventListener('unhandledrejection', event => seen.push(`rejected ${event.reason}`));
addEventListener('securitypolicyviolation', event => seen.push(`forbidden ${event.violatedDirective}`));
addEventListener('click', ({ target: { id } }) => ['choose', 'allow'].includes(id) && _choose(id === 'choose'));

// Where time need not be waited for.
if (location.search === '?hasty') {
    const set = setTimeout;
    setTimeout = (act, time, ...rest) => set(act, time >= 10000 ? time / 100 : time, ...rest);
}
