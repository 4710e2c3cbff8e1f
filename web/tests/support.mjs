// A browser with the page. The policy of the page is in force in every test.
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

import { chromium } from "playwright-core";

export const root = resolve(dirname(fileURLToPath(import.meta.url)), "../..");
export const pageFile = process.env.SURVEYDATA_PAGE ?? join(root, "build/page/surveydata.html");
export const program = process.env.SURVEYDATA_PROGRAM ?? join(root, "build/dev/tools/surveydata");
export const data = (name) => join(root, "tests/data", name);
export const text = (name) => readFileSync(data(name), "utf8");

if (!existsSync(pageFile)) throw new Error(`${pageFile} is not built`);

export const folder = mkdtempSync(join(tmpdir(), "surveydata-page-"));

/** How long a test waits for the page at most, in milliseconds: far longer than any machine takes. */
const PATIENCE = 300_000;

/**
 * Two ways to find tests that pass only on a fast machine: SURVEYDATA_DELAY delays each request to the worker and
 * each of its replies by up to that many milliseconds, SURVEYDATA_SLOWNESS makes the page that many times slower.
 */
const usualDelay = Number(process.env.SURVEYDATA_DELAY ?? 0);
const slowness = Number(process.env.SURVEYDATA_SLOWNESS ?? 1);

/** Runs in the page. The order of the messages is preserved. */
function delayReplies(most) {
  const later = (before) =>
    before.then(() => new Promise((resolve) => setTimeout(resolve, Math.random() * most)));
  const { Worker } = window;
  window.Worker = class extends Worker {
    sent = Promise.resolve();
    received = Promise.resolve();
    postMessage(message, transferred) {
      // Copies the message now, so that later changes to it are not sent.
      const copy = structuredClone(message, { transfer: transferred ?? [] });
      this.sent = later(this.sent).then(() => super.postMessage(copy));
    }
    set onmessage(listener) {
      super.onmessage = (event) => {
        this.received = later(this.received).then(() => listener.call(this, event));
      };
    }
  };
}

let browser;
export async function startBrowser() {
  browser = await chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--js-flags=--expose-gc"],
  });
}
export async function stopBrowser() {
  await browser.close();
  rmSync(folder, { recursive: true });
}

/**
 * Opens the page, from disk unless there is a `url`. `init` runs in it before its own scripts; `delay` replaces
 * SURVEYDATA_DELAY. `requests` and `complaints` collect what happens in it.
 */
export async function openPage(options = {}) {
  const { file = pageFile, url = pathToFileURL(file).href, init, delay = usualDelay, ...context } = options;
  const opened = await browser.newContext({
    acceptDownloads: true, viewport: { width: 1280, height: 900 }, ...context,
  });
  opened.setDefaultTimeout(PATIENCE);
  const requests = [];
  const complaints = [];
  opened.on("request", (request) => requests.push(request.url()));
  const page = await opened.newPage();
  page.on("console", (message) => {
    if (message.type() === "error" || message.type() === "warning") complaints.push(message.text());
  });
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("dialog", (dialog) => void dialog.accept());
  if (init) await page.addInitScript(init);
  if (delay > 0) await page.addInitScript(delayReplies, delay);
  if (slowness > 1) {
    const session = await opened.newCDPSession(page);
    await session.send("Emulation.setCPUThrottlingRate", { rate: slowness });
  }
  await page.goto(url);
  return { page, requests, complaints, close: () => opened.close() };
}

/** Opens files with the button. */
export async function openFiles(page, ...files) {
  await page.setInputFiles("#files", files);
}

/**
 * Waits until `condition`, evaluated in the page, is true. Playwright's own wait needs `eval`, which the policy
 * forbids.
 */
export async function until(page, condition, argument) {
  for (const start = Date.now(); Date.now() - start < PATIENCE; ) {
    if (await page.evaluate(condition, argument)) return;
    await page.waitForTimeout(50);
  }
  throw new Error(`timed out waiting for ${condition}`);
}

/** The status line of the record file in view, as soon as its rows and plots are shown. */
export async function status(page, name) {
  await until(page, (name) => {
    const view = document.querySelector(".records:not([hidden])");
    return view && view.ariaBusy === null && (!name || view.querySelector("h2").textContent === name);
  }, name);
  return page.locator(".records:not([hidden]) .status").textContent();
}

/** What pressing `locator` saves. */
export async function saved(page, locator) {
  const [download] = await Promise.all([page.waitForEvent("download"), locator.click()]);
  return { name: download.suggestedFilename(), bytes: readFileSync(await download.path()) };
}
