// Opens each report and does what a person does: looks, sorts, looks up, switches, prints. Usage: node
// check.mjs BROWSER REPORTS SCREENSHOTS. Ends with 1 and a line a problem.
import {readFileSync, readdirSync, statSync} from 'node:fs';
import {createRequire} from 'node:module';
import path from 'node:path';
import {pathToFileURL} from 'node:url';
import puppeteer from 'puppeteer-core';

const [executablePath, reports, screenshots] = process.argv.slice(2).map((name) => path.resolve(name));
const axeSource = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const kRules = ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa'];
const kViews = [
  {name: 'wide-light', width: 1280, scheme: 'light', media: 'screen'},
  {name: 'wide-dark', width: 1280, scheme: 'dark', media: 'screen'},
  {name: 'narrow-light', width: 360, scheme: 'light', media: 'screen'},
  {name: 'narrow-dark', width: 360, scheme: 'dark', media: 'screen'},
  {name: 'print', width: 720, scheme: 'dark', media: 'print'},
];

let problems = 0;
let checks = 0;
const expect = (holds, what) => {
  ++checks;
  if (holds) return;
  ++problems;
  console.log(`NOT: ${what}`);
};

// A page that tells of each error, warning, refusal and request.
const open = async (browser, file) => {
  const page = await browser.newPage();
  const heard = [];
  page.on('console', (message) => heard.push(`console: ${message.text()}`));
  page.on('pageerror', (error) => heard.push(`error: ${error.message}`));
  page.on('request', (request) => heard.push(`request: ${request.url().slice(0, 200)}`));
  const address = pathToFileURL(path.join(reports, file)).href;
  await page.setViewport({width: 1280, height: 900});
  await page.goto(address, {waitUntil: 'load', timeout: 300_000});
  return {page, unexpected: () => heard.filter((line) => line !== `request: ${address}`)};
};

const show = async (page, view) => {
  await page.setViewport({width: view.width, height: 900, deviceScaleFactor: view.width < 500 ? 2 : 1});
  // Together: one by one each undoes the other.
  const session = await page.createCDPSession();
  await session.send('Emulation.setEmulatedMedia',
    {media: view.media, features: [{name: 'prefers-color-scheme', value: view.scheme}]});
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
};

// How many pixels of the map have another colour than its corner, and which colours they have.
const mapColours = (page) => page.evaluate(() => {
  const canvas = document.getElementById('map');
  const copy = new OffscreenCanvas(canvas.width, canvas.height).getContext('2d', {willReadFrequently: true});
  copy.drawImage(canvas, 0, 0);
  const {data} = copy.getImageData(0, 0, canvas.width, canvas.height);
  const colours = {};
  for (let i = 0; i < data.length; i += 4) {
    if (data[i + 3] !== 255) continue;
    const colour = `${data[i]},${data[i + 1]},${data[i + 2]}`;
    colours[colour] = (colours[colour] || 0) + 1;
  }
  return colours;
});

const toneColour = (page, tone) => page.evaluate((name) => {
  const probe = document.createElement('canvas').getContext('2d');
  probe.fillStyle = getComputedStyle(document.documentElement).getPropertyValue(`--tone-${name}`);
  probe.fillRect(0, 0, 1, 1);
  return probe.getImageData(0, 0, 1, 1).data.slice(0, 3).join(',');
}, tone);

const accessible = async (page, what) => {
  await page.evaluate(axeSource);
  const result = await page.evaluate((tags) => axe.run(document, {runOnly: {type: 'tag', values: tags}}), kRules);
  for (const violation of result.violations) {
    for (const node of violation.nodes.slice(0, 3)) {
      console.log(`     ${violation.id}: ${node.html.slice(0, 160)} ${node.failureSummary.replace(/\s+/g, ' ')}`);
    }
  }
  expect(result.violations.length === 0, `${what} is accessible: ${result.violations.map((v) => v.id)}`);
  expect(result.passes.length > 15, `${what} was looked at: ${result.passes.length} rules pass`);
};

const firstRows = (page, column) => page.$$eval('#states tbody tr', (rows, at) =>
  rows.slice(0, 3).map((row) => row.cells[at].dataset.value), column);

const checkSorting = async (page, file) => {
  expect((await firstRows(page, 0))[0] === 'Alabama', `${file}: states begin in the order of their names`);
  await page.click('#states thead th:nth-child(2) button');
  const most = (await firstRows(page, 1)).map(Number);
  expect(most[0] === 2661 && most[1] === 2656 && most[2] === 2213, `${file}: sorts by ZIP codes: ${most}`);
  const sorted = await page.$eval('#states thead th:nth-child(2)', (th) => th.getAttribute('aria-sort'));
  expect(sorted === 'descending', `${file}: tells the order: ${sorted}`);
  // By keys, and the other way round.
  await page.focus('#states thead th:nth-child(2) button');
  await page.keyboard.press('Enter');
  expect((await firstRows(page, 1))[0] === '1', `${file}: sorts the other way round by keys`);
  await page.focus('#states thead th:nth-child(1) button');
  await page.keyboard.press('Space');
  expect((await firstRows(page, 0))[0] === 'Alabama', `${file}: sorts by names`);
};

const lookUp = async (page, text) => {
  await page.$eval('#query', (box) => { box.value = ''; });
  await page.type('#query', text);
  await page.keyboard.press('Enter');
  return page.evaluate(() => ({
    told: document.getElementById('found').textContent,
    answers: [...document.querySelectorAll('#answers li')].map((item) => item.textContent),
  }));
};

const checkLookup = async (page, file) => {
  const zip = await lookUp(page, '78701');
  expect(zip.told === '1 ZIP code:' && zip.answers[0].startsWith('78701 AUSTIN, TX'), `${file}: ${JSON.stringify(zip)}`);
  const prefix = await lookUp(page, '786');
  expect(prefix.answers.length === 40 && /^\d+ ZIP codes, the first 40:$/.test(prefix.told), `${file}: ${prefix.told}`);
  const military = await lookUp(page, '09001');
  expect(/not on the map/.test(military.answers[0]), `${file}: ${military.answers[0]}`);
  for (const text of ['austin tx', 'TX Austin', 'Austin, TX']) {
    const city = await lookUp(page, text);
    expect(city.told === '1 city:' && /^AUSTIN, TXZIP codes .*78701/.test(city.answers[0]), `${file}: ${text}: ${JSON.stringify(city).slice(0, 200)}`);
  }
  const many = await lookUp(page, 'springfield');
  expect(many.answers.length > 20, `${file}: cities of one name: ${many.answers.length}`);
  const none = await lookUp(page, 'nowhere at all');
  expect(none.answers.length === 0 && none.told === 'Nothing found for NOWHERE AT ALL.', `${file}: ${none.told}`);
  await lookUp(page, 'houston');
};

const checkMap = async (page, file, modes) => {
  for (const [mode, tones] of Object.entries(modes)) {
    if (Object.keys(modes).length > 1) await page.click(`input[name=mode][value=${mode}]`);
    const colours = await mapColours(page);
    for (const tone of tones) {
      const pixels = colours[await toneColour(page, tone)] || 0;
      expect(pixels > 10, `${file}: the map shows ${tone}: ${pixels} pixels`);
    }
    const shown = await page.$$eval('[data-mode]', (all) => all.filter((one) => !one.hidden).map((one) => one.dataset.mode));
    expect(shown.length === 1 && shown[0] === mode, `${file}: the legend of ${mode}: ${shown}`);
  }
  if (Object.keys(modes).length > 1) await page.click(`input[name=mode][value=${Object.keys(modes)[0]}]`);
  // The pointer at the middle of the map.
  await page.$eval('#map', (map) => map.scrollIntoView());
  const box = await (await page.$('#map')).boundingBox();
  await page.mouse.move(box.x + box.width * 0.55, box.y + box.height * 0.5);
  const here = await page.$eval('#here', (line) => line.textContent);
  expect(/^\d{5} .*, [A-Z]{2}: /.test(here), `${file}: tells what lies under the pointer: ${here}`);
  await page.mouse.move(0, 0);
};

const checkViews = async (page, file) => {
  const name = path.basename(file, '.html');
  for (const view of kViews) {
    await show(page, view);
    await accessible(page, `${file}, ${view.name}`);
    const wide = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
    expect(wide <= 0, `${file}, ${view.name}: fits its width (${wide})`);
    if (view.media === 'print') {
      const ground = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
      expect(ground === 'rgb(252, 251, 248)', `${file}: paper is light: ${ground}`);
    }
    await page.screenshot({path: path.join(screenshots, `${name}-${view.name}.png`), fullPage: true});
  }
  await page.pdf({path: path.join(screenshots, `${name}.pdf`), format: 'A4', margin: {top: '15mm', bottom: '15mm', left: '15mm', right: '15mm'}});
  await show(page, kViews[0]);
  await page.$$eval('details', (all) => all.forEach((one) => { one.open = true; }));
  for (const view of [kViews[0], kViews[3]]) {
    await show(page, view);
    await accessible(page, `${file} with its tables, ${view.name}`);
    await page.screenshot({path: path.join(screenshots, `${name}-tables-${view.name}.png`), fullPage: true});
  }
};

const kModes = {
  'nation.html': {bytes: ['level0', 'level1', 'level2', 'level3', 'level4']},
  'cut.html': {cut: ['left', 'kept'], bytes: ['level0', 'level4']},
  'changes.html': {cut: ['left', 'kept'], changes: ['changed', 'added', 'moved'], bytes: ['level0', 'level4']},
};

const checkPage = async (browser, file) => {
  expect(statSync(path.join(reports, file)).size < 3e6, `${file} has less than 3 MB`);
  const {page, unexpected} = await open(browser, file);
  await checkMap(page, file, kModes[file]);
  await checkSorting(page, file);
  await checkLookup(page, file);
  await checkViews(page, file);
  expect(unexpected().length === 0, `${file} loads without an error or a request: ${unexpected()}`);
  await page.close();
};

// Without JavaScript the numbers are there all the same.
const checkWithoutScript = async (browser, file) => {
  const page = await browser.newPage();
  await page.setJavaScriptEnabled(false);
  await page.setViewport({width: 800, height: 900});
  await page.goto(pathToFileURL(path.join(reports, file)).href);
  await page.screenshot({path: path.join(screenshots, 'without-script.png'), fullPage: true});
  expect(/need JavaScript, which is off/.test(await page.evaluate(() => document.body.innerText)), `${file} tells that scripts are off`);
  await page.close();
};

const checkPicture = async (browser, file) => {
  const {page, unexpected} = await open(browser, file);
  for (const scheme of ['light', 'dark']) {
    await show(page, {width: 1000, scheme, media: 'screen'});
    await page.screenshot({path: path.join(screenshots, `${path.basename(file, '.svg')}-svg-${scheme}.png`), fullPage: true});
  }
  const dots = await page.$$eval('.dots path', (paths) => paths.length);
  expect(dots > 50, `${file}: a path a state: ${dots}`);
  expect(unexpected().length === 0, `${file} loads without an error or a request: ${unexpected()}`);
  await page.close();
};

// That the check would see it: a page that breaks its own policy.
const checkTheCheck = async (browser) => {
  const page = await browser.newPage();
  const heard = [];
  page.on('console', (message) => heard.push(message.text()));
  await page.setContent('<meta http-equiv="Content-Security-Policy" content="default-src \'none\'"><p style="color: red">');
  expect(heard.some((line) => /Content Security Policy/.test(line)), 'a refusal of the policy is heard');
  await page.evaluate(axeSource);
  const {violations} = await page.evaluate(() => axe.run());
  expect(violations.some((one) => one.id === 'document-title'), 'axe finds that a page has no title');
  await page.close();
};

// A busy machine takes minutes for a picture of a long page.
const browser = await puppeteer.launch(
  {executablePath, protocolTimeout: 900_000, args: ['--no-sandbox', '--disable-gpu', '--hide-scrollbars']});
try {
  await checkTheCheck(browser);
  for (const file of readdirSync(reports).sort())
    await (file.endsWith('.svg') ? checkPicture : checkPage)(browser, file);
  await checkWithoutScript(browser, 'cut.html');
} finally {
  await browser.close();
}
console.log(`${checks - problems} of ${checks} checks hold`);
process.exit(problems === 0 ? 0 : 1);
