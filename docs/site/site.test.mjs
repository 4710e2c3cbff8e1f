// Tests the built site in Chromium, from disk: search, light and dark, narrow screens, doxygen's pages.
import assert from "node:assert/strict";
import { readdirSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, join, relative, resolve } from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";

const root = resolve(dirname(fileURLToPath(import.meta.url)), "../..");
const site = join(root, "build/site/html");
const { chromium } = createRequire(join(root, "web/package.json"))("playwright-core");

let browser;
before(async () => {
  browser = await chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--allow-file-access-from-files"],
  });
});
after(() => browser.close());

/** Runs `work` with a page, which must report no error and load nothing from other sites. */
async function onPage(options, work) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, ...options });
  const complaints = [];
  context.on("request", (request) => {
    if (!/^(file|data|blob):/.test(request.url())) complaints.push(`requests ${request.url()}`);
  });
  const page = await context.newPage();
  page.on("console", (message) => {
    if (message.type() === "error") complaints.push(message.text());
  });
  page.on("pageerror", (error) => complaints.push(String(error)));
  try {
    await work(page);
    assert.deepEqual(complaints, []);
  } finally {
    await context.close();
  }
}
const open = (page, name) => page.goto(pathToFileURL(join(site, name)).href);
const pages = readdirSync(site, { recursive: true })
  .filter((name) => name.endsWith(".html") && !/^(doxygen|_static|_sources)\//.test(name));

/** How light a colour is, from 0 to 1. */
const lightness = (colour) => {
  const [red, green, blue] = colour.match(/\d+(\.\d+)?/g).map(Number);
  return (0.2126 * red + 0.7152 * green + 0.0722 * blue) / 255;
};
const isInverted = (page, selector) =>
  page.$eval(selector, (element) => getComputedStyle(element).filter.includes("invert"));
const background = async (page) =>
  lightness(await page.evaluate(() => getComputedStyle(document.body).backgroundColor));

test("the site has every part", () => {
  assert.ok(pages.length >= 40, `${pages.length} pages`);
  for (const name of ["README", "program", "cpp", "c", "docs/columns", "docs/record_frames", "docs/scale", "CHANGELOG",
    "python_reference/records", "examples/first_program.cpp", "python/examples/drive_quality.py"]) {
    assert.ok(pages.includes(`${name}.html`), name);
  }
});

for (const [words, expected] of [
  ["checksum", "docs/record_frames.html"],
  ["antenna_vertical_height", "docs/columns.html"],
  ["read_records", "python_reference/records.html"],
  ["from-offset", "program.html"],
  ["divisions", "docs/scale.html"],
]) {
  test(`the search for ${words} finds ${expected}`, () => onPage({}, async (page) => {
    await open(page, "index.html");
    await page.fill(".sidebar-search", words);
    await page.press(".sidebar-search", "Enter");
    await page.waitForSelector("#search-results .search li a");
    await page.waitForFunction(() => /Search finished|found/.test(document.querySelector("#search-results").textContent));
    const found = await page.$$eval("#search-results .search li a", (links) => links.map((link) => link.href.split(/[?#]/)[0]));
    assert.ok(found.includes(pathToFileURL(join(site, expected)).href), found.join("\n"));
  }));
}

test("a search for an unknown word finds nothing", () => onPage({}, async (page) => {
  await open(page, "index.html");
  await page.fill(".sidebar-search", "xylophone");
  await page.press(".sidebar-search", "Enter");
  await page.locator("#search-results", { hasText: "did not match any documents" }).waitFor();
  assert.equal(await page.$$eval("#search-results .search li a", (links) => links.length), 0);
}));

for (const colorScheme of ["light", "dark"]) {
  test(`every page is ${colorScheme}, and fits a narrow screen`, () =>
    onPage({ colorScheme, viewport: { width: 360, height: 700 } }, async (page) => {
      for (const name of pages) {
        await open(page, name);
        const light = await background(page);
        assert.ok(colorScheme === "dark" ? light < 0.2 : light > 0.9, `${name}: ${light}`);
        assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${name} is too wide`);
        for (const image of await page.$$eval("article img", (images) =>
          images.map((one) => [one.src, one.naturalWidth, getComputedStyle(one).filter, getComputedStyle(one).backgroundColor]))) {
          const [source, width, filter, behind] = image;
          assert.ok(width > 0, `${name}: ${source} is not shown`);
          assert.equal(filter.includes("invert"), colorScheme === "dark" && source.endsWith(".svg"), `${name}: ${source}`);
          assert.ok(lightness(behind) > 0.99, `${name}: ${source}`);
        }
      }
    }));
}

test("a reader's choice of light or dark applies to doxygen's pages, too", () =>
  onPage({ colorScheme: "light" }, async (page) => {
    await open(page, "index.html");
    assert.equal(await isInverted(page, "article img"), false);
    for (let i = 0; i < 3 && await page.evaluate(() => document.body.dataset.theme) !== "dark"; ++i) {
      await page.locator(".theme-toggle:visible").first().click();
    }
    assert.ok(await background(page) < 0.2);
    assert.equal(await isInverted(page, "article img"), true);
    await open(page, "doxygen/classSDI_1_1GPSRecordReaderC.html");
    assert.equal(await isInverted(page, "html"), true);
  }));

test("doxygen's pages are in the frame of the site, light or dark, and are searched", () =>
  onPage({ colorScheme: "dark" }, async (page) => {
    await open(page, "cpp.html");
    await page.getByRole("link", { name: "SDI::GPSRecordReaderC", exact: true }).click();
    assert.match(page.url(), /doxygen\/classSDI_1_1GPSRecordReaderC\.html$/);
    assert.equal(await isInverted(page, "html"), true);
    await page.locator("#MSearchField:visible").pressSequentially("GPSDOPsC");
    await page.frameLocator("#MSearchResults").getByText("GPSDOPsC", { exact: true }).first().waitFor();
    await page.locator("nav.site").getByRole("link", { name: "Program" }).click();
    assert.equal(relative(site, fileURLToPath(page.url())), "program.html");
  }));

test("names in the guides lead to the references", () => onPage({}, async (page) => {
  for (const [name, text, target] of [
    ["docs/columns.html", "SDI::GetGPSColumns()", /doxygen\/.*#/],
    ["docs/c_interface.html", "surveydata_decode", /doxygen\/c__interface_2surveydata_8h\.html#/],
    ["docs/columns.html", "surveydata record columns", /program\.html#surveydata-record-columns$/],
    ["docs/python.html", "surveydata.read_area(path)", /python_reference\/areas\.html#surveydata\.read_area$/],
  ]) {
    await open(page, name);
    assert.match(await page.locator("article a", { hasText: text }).first().getAttribute("href"), target, text);
  }
}));

test("a picture of the first page", () => onPage({}, async (page) => {
  await open(page, "index.html");
  for (const door of ["C++ and C", "Python", "The program"]) await page.locator(".door", { hasText: door }).waitFor();
  await page.screenshot({ path: join(site, "../first_page.png"), fullPage: true });
}));
