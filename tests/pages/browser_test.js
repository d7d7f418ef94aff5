'use strict';
// Each page in Chromium: every link, filter and theme, the keyboard, paper, and that no text leaves its box.
// node browser_test.js PAGE...
const path = require('path');
const {pathToFileURL} = require('url');
const {chromium} = require('playwright-core');

const failures = [];
let page, file;

function expect(good, what) {
  if (!good) failures.push(path.basename(file) + ': ' + what);
}

// What has more text than room, by the elements that hold text themselves. What scrolls has room for all.
function overflowing() {
  const found = [];
  const clips = element => element.scrollWidth > element.clientWidth + 1 || element.scrollHeight > element.clientHeight + 1;
  for (const control of document.querySelectorAll('.control, .caption, .message'))
    if (control.clientWidth > 0 && !control.matches('.long, .list') && clips(control))
      found.push(control.title + ': ' + control.textContent);
  for (const row of document.querySelectorAll('.row'))
    if (row.clientWidth > 0 && row.scrollWidth > row.clientWidth + 1) found.push('row: ' + row.textContent);
  const scrolls = element => element.closest('.scroller, .window') !== null;
  for (const element of document.querySelectorAll('body *')) {
    const right = element.getBoundingClientRect().right;
    if (element.clientWidth > 0 && !scrolls(element) && right > document.documentElement.clientWidth + 1)
      found.push('beyond the edge: ' + element.tagName + ' ' + element.textContent.slice(0, 60));
  }
  return found;
}

// Texts with less contrast than 4.5 to 1 (WCAG 2.1, 1.4.3), outside of the drawn windows.
function faint() {
  const parse = colour => colour.match(/[\d.]+/g).map(Number);
  const luminance = ([red, green, blue]) => [red, green, blue].map(part => part / 255)
      .map(part => part <= 0.03928 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4)
      .reduce((sum, part, i) => sum + part * [0.2126, 0.7152, 0.0722][i], 0);
  const ground = element => {
    for (; element !== null; element = element.parentElement) {
      const colour = parse(getComputedStyle(element).backgroundColor);
      if (colour.length === 3 || colour[3] > 0) return colour;
    }
    return [255, 255, 255];
  };
  const found = new Set();
  for (const element of document.querySelectorAll('body *')) {
    const own = [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim() !== '');
    if (!own || element.closest('.window, script') !== null || element.clientHeight === 0) continue;
    const [a, b] = [parse(getComputedStyle(element).color), ground(element)].map(luminance);
    const contrast = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
    if (contrast < 4.5) found.add(element.className + ' ' + element.tagName + ' ' + contrast.toFixed(2));
  }
  return [...found];
}

async function tryThemes() {
  const paper = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const papers = {};
  for (const system of ['light', 'dark']) {
    await page.emulateMedia({colorScheme: system});
    for (const theme of ['dark', 'light', 'auto']) {
      await page.click(`[data-theme-choice=${theme}]`);
      papers[system + ' ' + theme] = await paper();
      const pressed = await page.locator('[aria-pressed=true]').allTextContents();
      expect(pressed.join().toLowerCase() === theme, 'pressed is ' + pressed);
    }
    for (const text of await page.evaluate(faint)) expect(false, `faint on a ${system} system: ${text}`);
  }
  const dark = papers['dark dark'], light = papers['light light'];
  expect(dark !== light && papers['light dark'] === dark && papers['dark light'] === light &&
      papers['dark auto'] === dark && papers['light auto'] === light, 'themes: ' + JSON.stringify(papers));
  await page.emulateMedia({colorScheme: 'light'});
}

async function tryLinks() {
  const ids = await page.evaluate(() => [...document.querySelectorAll('[id]')].map(element => element.id));
  expect(new Set(ids).size === ids.length, 'an id stands twice');
  for (const link of await page.locator('a').all()) {
    const href = await link.getAttribute('href');
    const known = /^#[a-z0-9-]+$/.test(href) && ids.includes(href.slice(1));
    expect(known, 'a link to ' + href);
    if (!known) continue;
    await link.focus();
    await page.keyboard.press('Enter');
    const there = await page.evaluate(id => {
      const place = document.getElementById(id).getBoundingClientRect();
      return location.hash === '#' + id && place.top < innerHeight && place.bottom > 0;
    }, href.slice(1));
    expect(there, href + ' isn\'t reached');
  }
}

// Everything that a filter is about, as [kind, shown], and its count.
function partsOf(bar) {
  return bar.evaluate(element => {
    const target = document.getElementById(element.dataset.filters);
    return [...target.querySelectorAll('[data-kind]')].map(part => [part.dataset.kind, !part.hidden]);
  });
}

async function tryFilters() {
  for (const bar of await page.locator('[data-filters]').all()) {
    const output = bar.locator('output');
    for (const box of await bar.locator('input[type=checkbox]').all()) {
      const kind = await box.getAttribute('value'), was = await box.isChecked();
      await box.focus();
      await page.keyboard.press('Space');
      expect((await partsOf(bar)).every(([other, shown]) => other !== kind || shown === !was), 'filter ' + kind);
      if (!was) for (const text of await page.evaluate(overflowing)) expect(false, 'with ' + kind + ' ' + text);
      await page.keyboard.press('Space');
      expect((await partsOf(bar)).every(([other, shown]) => other !== kind || shown === was), 'filter back ' + kind);
    }
    for (const list of await bar.locator('select').all()) {
      const key = await list.getAttribute('data-key');
      for (const value of await list.locator('option').evaluateAll(all => all.map(one => one.value))) {
        await list.selectOption(value);
        const wrong = await page.locator(`[data-entry]:not([hidden])[data-${key}]`).evaluateAll(
            (all, [name, wanted]) => all.filter(one => wanted !== '' && one.dataset[name] !== wanted).length, [key, value]);
        expect(wrong === 0, `list ${key} ${value}`);
      }
      await list.selectOption('');
    }
    const before = await output.textContent();
    await bar.locator('input[type=search]').fill('no such words');
    expect(/^0 of \d+$/.test(await output.textContent()), 'words leave ' + await output.textContent());
    await bar.locator('input[type=search]').fill('');
    expect(await output.textContent() === before, 'words gone');
  }
}

// The Tab key comes by everything that can be used, in its order.
async function tryKeyboard() {
  const wanted = await page.evaluate(() => {
    document.activeElement.blur();
    scrollTo(0, 0);
    const all = 'a[href], button, input, select, summary, [tabindex="0"]';
    return [...document.querySelectorAll(all)].filter(element => element.checkVisibility()).length;
  });
  await page.evaluate(() => {
    window.passed = new Set();
    addEventListener('focusin', event => window.passed.add(event.target));
  });
  await page.focus('.skip');
  for (let i = 1; i < wanted; ++i) await page.keyboard.press('Tab');
  expect(await page.evaluate(() => window.passed.size) === wanted, 'the Tab key misses something');
  for (const summary of (await page.locator('summary').all()).slice(0, 3)) {
    if (!await summary.isVisible()) continue;
    await summary.focus();
    await page.keyboard.press('Enter');
    expect(await summary.evaluate(element => element.parentElement.open), 'a fold stays shut');
    await page.keyboard.press('Enter');
  }
}

async function tryPaper() {
  await page.emulateMedia({media: 'print', colorScheme: 'dark'});
  await page.evaluate(() => dispatchEvent(new Event('beforeprint')));
  expect(await page.locator('details:not([open])').count() === 0, 'folded on paper');
  expect(await page.locator('.filters:visible, .themes:visible').count() === 0, 'switches on paper');
  expect(await page.evaluate(() => getComputedStyle(document.body).backgroundColor) === 'rgb(255, 255, 255)', 'dark paper');
  expect((await page.pdf()).subarray(0, 5).toString() === '%PDF-', 'no PDF');
  await page.evaluate(() => dispatchEvent(new Event('afterprint')));
  await page.emulateMedia({media: 'screen', colorScheme: 'light'});
}

async function tryPage(browser) {
  page = await browser.newPage({viewport: {width: 1280, height: 900}});
  const url = pathToFileURL(file).href;
  page.on('console', message => expect(false, 'console: ' + message.text()));
  page.on('pageerror', error => expect(false, 'error: ' + error.message));
  page.on('request', request => expect(/^data:/.test(request.url()) || request.url() === url, 'asks for ' + request.url()));
  await page.goto(url);
  // In the languages only the texts are different.
  if (!/^(install|address)-(?!german)/.test(path.basename(file)))
    for (const attempt of [tryThemes, tryLinks, tryFilters, tryKeyboard, tryPaper]) await attempt();
  for (const box of await page.locator('input[value=unseen]').all()) await box.check();
  await page.evaluate(() => document.querySelectorAll('details').forEach(details => { details.open = true; }));
  for (const width of [1280, 400]) {
    await page.setViewportSize({width, height: 900});
    for (const text of await page.evaluate(overflowing)) expect(false, `${width} pixels: ${text}`);
  }
  const foreign = await page.locator('script, img:not([src^="data:image/bmp;base64,"]), svg, iframe').count();
  expect(foreign === 1, 'foreign elements');
  expect(await page.evaluate(() => window.pwned) === undefined, 'a script of the data has run');
  expect(!path.basename(file).startsWith('hostile') ||
      (await page.textContent('main')).includes('<script>pwned=1</script>'), 'no hostile text is shown');
  await page.close();
}

async function main(files) {
  const browser = await chromium.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
      '--disable-component-update', '--disable-sync', '--host-resolver-rules=MAP * ~NOTFOUND'],
  });
  for (file of files) await tryPage(browser);
  await browser.close();
  for (const failure of failures) console.error(failure);
  console.log(`${files.length} pages in Chromium, ${failures.length} failures`);
  process.exitCode = failures.length === 0 && files.length !== 0 ? 0 : 1;
}

main(process.argv.slice(2));
