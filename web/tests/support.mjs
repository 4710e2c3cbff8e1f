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
 * Opens the page, from disk unless there is a `url`. `init` runs in it before its own scripts. `requests` and `complaints`
 * collect what happens in it.
 */
export async function openPage(options = {}) {
  const { file = pageFile, url = pathToFileURL(file).href, init, ...context } = options;
  const opened = await browser.newContext({
    acceptDownloads: true, viewport: { width: 1280, height: 900 }, ...context,
  });
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
  await page.goto(url);
  return { page, requests, complaints, close: () => opened.close() };
}

/** Opens files by the button and waits until the last of them is read. */
export async function openFiles(page, ...files) {
  await page.setInputFiles("#files", files);
}

/** What the page says of the record file in view, when it has read it. */
export async function status(page, name) {
  for (let i = 0; i < 1200; ++i) {
    const [title, line] = await page.evaluate(() => {
      const view = document.querySelector(".records:not([hidden])");
      return [view?.querySelector("h2").textContent, view?.querySelector(".status").textContent];
    });
    if (line?.endsWith(".") && (name === undefined || title === name)) return line;
    await page.waitForTimeout(50);
  }
  throw new Error("the file was not read");
}

/** What pressing `locator` saves. */
export async function saved(page, locator) {
  const [download] = await Promise.all([page.waitForEvent("download"), locator.click()]);
  return { name: download.suggestedFilename(), bytes: readFileSync(await download.path()) };
}
