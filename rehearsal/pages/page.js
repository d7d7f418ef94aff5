'use strict';
// Without this script all of a page is there, but for its hidden controls.

const root = document.documentElement;
const choices = [...document.querySelectorAll('[data-theme-choice]')];
for (const choice of choices) {
  choice.addEventListener('click', () => {
    root.dataset.theme = choice.dataset.themeChoice;
    for (const other of choices) other.setAttribute('aria-pressed', String(other === choice));
  });
}

// A bar of filters: boxes tick kinds, lists choose a value of one of an entry's data, and words are looked for.
function connect(bar) {
  const target = document.getElementById(bar.dataset.filters);
  const boxes = [...bar.querySelectorAll('input[type=checkbox]')];
  const lists = [...bar.querySelectorAll('select')];
  const field = bar.querySelector('input[type=search]');
  const output = bar.querySelector('output');
  const parts = [...target.querySelectorAll('[data-kind]')];
  const groups = [...target.querySelectorAll('[data-group]')];
  const texts = new Map();
  const textOf = part => {
    if (!texts.has(part)) texts.set(part, part.textContent.toLowerCase());
    return texts.get(part);
  };
  function apply() {
    const off = new Set(boxes.filter(box => !box.checked).map(box => box.value));
    const wanted = lists.filter(list => list.value !== '').map(list => [list.dataset.key, list.value]);
    const words = field.value.toLowerCase().split(/\s+/).filter(word => word !== '');
    let shown = 0, all = 0;
    for (const part of parts) {
      let hidden = off.has(part.dataset.kind);
      if ('entry' in part.dataset) {
        hidden = hidden || wanted.some(([key, value]) => part.dataset[key] !== value) ||
            words.some(word => !textOf(part).includes(word));
        all += 1;
        shown += hidden ? 0 : 1;
      }
      part.hidden = hidden;
    }
    for (const group of groups) group.hidden = group.querySelector('[data-entry]:not([hidden])') === null;
    output.textContent = shown + ' of ' + all;
  }
  bar.addEventListener('input', apply);
  apply();
}
for (const bar of document.querySelectorAll('[data-filters]')) connect(bar);

// On paper nothing is folded away.
let folded = [];
addEventListener('beforeprint', () => {
  folded = [...document.querySelectorAll('details:not([open])')];
  for (const details of folded) details.open = true;
});
addEventListener('afterprint', () => {
  for (const details of folded) details.open = false;
});
