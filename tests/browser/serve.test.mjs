// Headless Chromium through refdoc serve on the sample root: the index, the header's search box
// as you type (hits appear, the arrow keys and Enter open one), the search view that follows the
// box and keeps its text in the address, the page of a result with its breadcrumbs and contents, a see-also link, the problems
// view, a translated page that lacks sections, and the dark colour scheme. Fails on a missing
// element or any script error; saves a screenshot of each step.
//   node serve.test.mjs REFDOC_EXECUTABLE SCREENSHOT_FOLDER
import { spawn } from 'node:child_process';
import { mkdirSync, mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { chromium } from 'playwright-core';

const [refdoc, shots] = process.argv.slice(2);
if (!refdoc || !shots) {
  console.error('usage: node serve.test.mjs REFDOC_EXECUTABLE SCREENSHOT_FOLDER');
  process.exit(2);
}
mkdirSync(shots, { recursive: true });

function startServer() {
  const child = spawn(refdoc, ['serve', '--port', '0'], { stdio: ['ignore', 'pipe', 'inherit'] });
  return new Promise((resolve, reject) => {
    let printed = '';
    const timer = setTimeout(() => reject(new Error('no address from refdoc serve: ' + printed)), 30000);
    child.stdout.on('data', (chunk) => {
      printed += chunk;
      const match = printed.match(/http:\/\/127\.0\.0\.1:\d+\//);
      if (match) {
        clearTimeout(timer);
        resolve({ child, url: match[0] });
      }
    });
    child.on('exit', (code) => reject(new Error('refdoc serve exited with ' + code)));
  });
}

function expect(condition, message) {
  if (!condition) throw new Error('expectation failed: ' + message);
}

const profile = mkdtempSync(join(tmpdir(), 'refdoc-chromium-'));
const { child, url } = await startServer();
const problems = [];
let failed = false;
let browser = null;
try {
  // A fresh profile folder is the browser's --user-data-dir.
  browser = await chromium.launchPersistentContext(profile, {
    executablePath: '/usr/bin/chromium',
    headless: true,
    viewport: { width: 1100, height: 800 },
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
  const page = await browser.newPage();
  page.on('pageerror', (error) => problems.push('script error: ' + error.message));
  page.on('console', (message) => {
    if (message.type() === 'error') problems.push('console error: ' + message.text());
  });
  page.on('requestfailed', (request) => problems.push('request failed: ' + request.url()));
  page.setDefaultTimeout(15000);

  await page.goto(url);
  const keys = await page.locator('table.products tbody td:first-child a').allTextContents();
  expect(['geodesy', 'mapping', 'optics', 'signal', 'usbdaq'].every((k) => keys.includes(k)), 'index keys: ' + keys);
  await page.screenshot({ path: join(shots, '1-index.png'), fullPage: true });

  // The header box: "/" puts the focus in it, hits appear as you type, Enter opens the chosen one.
  await page.keyboard.press('/');
  expect(await page.locator('#q').evaluate((box) => box === document.activeElement), '"/" focuses the box');
  await page.keyboard.type('lpf', { delay: 60 });
  const suggestion = page.locator('#suggestions li', { hasText: 'Low-Pass Filter' }).first();
  await suggestion.waitFor();
  expect((await suggestion.locator('mark').allTextContents()).join('') === 'LPF', 'initials marked');
  await page.screenshot({ path: join(shots, '1-suggestions.png') });
  await page.keyboard.press('ArrowDown');
  expect((await suggestion.getAttribute('aria-selected')) === 'true', 'arrow key chooses the first hit');
  await page.keyboard.press('Enter');
  await page.waitForURL(/\/ref\/signal\/ref\/lowpassfilter-block\.html/);
  expect((await page.locator('h1').first().textContent()).includes('Low-Pass Filter'), 'page opened with Enter');

  // The search view, then typing: the results follow the box without a submit.
  await page.fill('#q', 'filt');
  await page.press('#q', 'Enter');
  await page.waitForURL(/\/search\?/);
  await page.locator('#q').press('End');
  await page.locator('#q').pressSequentially('er', { delay: 50 });
  const hit = page.locator('#results a.hit', { hasText: 'fastfilter' });
  await hit.waitFor();
  // (waitForFunction would need 'unsafe-eval', which the server's policy forbids.)
  await page.locator('#results p.meta', { hasText: 'for filter' }).waitFor();
  await page.screenshot({ path: join(shots, '2-search.png'), fullPage: true });

  expect(page.url().includes('q=filter'), 'the address keeps the text: ' + page.url());
  await page.keyboard.press('Escape');
  await hit.click();
  await page.waitForURL(/\/ref\/signal\/ref\/fastfilter\.html/);
  // Back returns to the search with its text and results.
  await page.goBack();
  await page.locator('#results a.hit', { hasText: 'fastfilter' }).waitFor();
  expect((await page.locator('#q').inputValue()) === 'filter', 'search text after going back');
  await page.goForward();
  await page.waitForURL(/\/ref\/signal\/ref\/fastfilter\.html/);
  for (const section of ['#syntax', '#inputs', '#outputs', '#examples', '#seealso', 'dt#input_b']) {
    await page.locator(section).waitFor();
  }
  // Root → product → page; the argument's name is its anchor link, with no anchor text beside it.
  const crumbs = await page.locator('nav.crumbs li').allTextContents();
  expect(JSON.stringify(crumbs) === JSON.stringify(['Products', 'Signal Toolkit', 'fastfilter']), 'crumbs: ' + crumbs);
  await page.locator('nav.toc a[href="#examples"]').waitFor();
  expect(!(await page.locator('dt#input_b').textContent()).includes('#'), 'anchor text beside an argument');
  await page.locator('dt#input_b a[href="#input_b"]').click();
  expect(page.url().endsWith('#input_b'), 'anchor link: ' + page.url());
  await page.evaluate(() => window.scrollTo(0, 0));
  await page.screenshot({ path: join(shots, '3-page.png'), fullPage: true });
  await page.screenshot({ path: join(shots, '3-page-top.png') });

  await page.locator('nav.crumbs a', { hasText: 'Signal Toolkit' }).click();
  await page.waitForURL(/\/product\/signal\?/);
  await page.goBack();
  await page.waitForURL(/\/ref\/signal\/ref\/fastfilter\.html/);

  await page.locator('#seealso a.page-link', { hasText: 'ratechange' }).click();
  await page.waitForURL(/\/ref\/signal\/ref\/ratechange\.html/);
  expect((await page.locator('h1').first().textContent()).includes('ratechange'), 'see-also target');
  await page.screenshot({ path: join(shots, '4-seealso.png'), fullPage: true });

  await page.locator('#problems-link').click();
  await page.waitForURL(/\/problems/);
  const dropped = page.locator('tr.problem', { hasText: 'instrument.json' });
  await dropped.waitFor();
  expect((await dropped.textContent()).includes('missing required member'), 'drop reason');
  await page.screenshot({ path: join(shots, '5-problems.png'), fullPage: true });

  // The language switch gives the merged Japanese result.
  await page.goto(url + '?lang=ja');
  expect((await page.locator('html').getAttribute('lang')) === 'ja', 'language switch');
  await page.screenshot({ path: join(shots, '6-index-ja.png'), fullPage: true });

  // The Japanese page has no examples and no see-also links: it says so and links to English.
  await page.goto(url + 'ref/signal/ref/fastfilter.html?lang=ja');
  const lacking = page.locator('#lacking');
  expect((await lacking.textContent()).includes('Examples, See also'), 'lacking sections');
  await page.screenshot({ path: join(shots, '7-page-ja.png'), fullPage: true });
  await lacking.locator('a[hreflang="en"]').click();
  await page.waitForURL(/fastfilter\.html\?lang=en$/);

  // Dark mode follows the system's colour scheme.
  const background = () => page.locator('body').evaluate((body) => getComputedStyle(body).backgroundColor);
  await page.emulateMedia({ colorScheme: 'light' });
  expect((await background()) === 'rgb(255, 255, 255)', 'light background: ' + (await background()));
  await page.emulateMedia({ colorScheme: 'dark' });
  expect((await background()) === 'rgb(20, 24, 29)', 'dark background: ' + (await background()));
  await page.screenshot({ path: join(shots, '8-page-dark.png'), fullPage: true });

  expect(problems.length === 0, problems.join('; '));
  console.log('browser test: passed; screenshots in ' + shots);
} catch (error) {
  failed = true;
  console.error('browser test: FAILED: ' + error.message);
  if (problems.length) console.error(problems.join('\n'));
} finally {
  if (browser) await browser.close();
  child.kill('SIGTERM');
  const code = await new Promise((resolve) => child.on('exit', resolve));
  if (code !== 0) {
    failed = true;
    console.error('refdoc serve did not stop cleanly: exit ' + code);
  }
  rmSync(profile, { recursive: true, force: true });
}
process.exit(failed ? 1 : 0);
