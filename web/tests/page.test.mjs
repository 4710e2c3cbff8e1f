import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { createRequire } from "node:module";
import { closeSync, ftruncateSync, openSync, readFileSync, rmSync, statSync, writeFileSync, writeSync } from "node:fs";
import { createServer } from "node:http";
import { join } from "node:path";
import { after, before, test } from "node:test";

import { DIRECTIONS } from "./containment.mjs";
import {
  data, folder, openFiles, openPage, pageFile, program, root, saved, startBrowser, status, stopBrowser, text, until,
} from "./support.mjs";

const axeSource = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

before(startBrowser);
after(stopBrowser);

/** Runs `work` in a fresh page, and checks that it loaded no other file and reported no error. */
function onPage(name, work, options = {}) {
  test(name, async () => {
    const { page, requests, complaints, close } = await openPage(options);
    try {
      await work(page);
      const others = requests.filter((url, i) => i > 0 && !url.startsWith("blob:"));
      assert.deepEqual(others, [], "requests other than the page and its worker");
      assert.deepEqual(complaints, []);
    } finally {
      await close();
    }
  });
}

const native = (...args) => execFileSync(program, args, { maxBuffer: 1 << 28 });
const selectAll = async (page) => {
  await page.locator(".list").focus();
  await page.keyboard.press("Control+a");
  await page.getByText(/^Rows 1 to \d+ are selected/).waitFor();
};
const button = (page, name) => page.getByRole("button", { name, exact: true });
const written = (name, content) => {
  const path = join(folder, name);
  writeFileSync(path, content);
  return path;
};

test("the page is one file of at most 300 KB, and its policy allows only its own scripts", () => {
  assert.ok(statSync(pageFile).size <= 300_000);
  const html = readFileSync(pageFile, "utf8");
  const [, policy] = /http-equiv="Content-Security-Policy" content="([^"]+)"/.exec(html);
  assert.match(policy, /^default-src 'none'; script-src 'sha256-[^']+' 'wasm-unsafe-eval'; worker-src blob:; style-src 'sha256-[^']+'; img-src data: blob:; base-uri 'none'; form-action 'none'$/);
});

/** A server of the page for `work`, which gets its address and the list of requests. */
async function withServer(work) {
  const asked = [];
  const server = createServer((request, response) => {
    asked.push(request.url);
    response.setHeader("Content-Type", "text/html");
    response.setHeader("Access-Control-Allow-Origin", "*");
    response.end(readFileSync(pageFile));
  });
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  try {
    await work(`http://127.0.0.1:${server.address().port}/`, asked);
  } finally {
    server.closeAllConnections();
    server.close();
  }
}

test("from a server the page is the only request, and then it works offline", async () => {
  await withServer(async (url, asked) => {
    const { page, complaints, close } = await openPage({ url });
    await page.context().setOffline(true);
    await openFiles(page, data("valley_drive.rec"));
    await status(page);
    await selectAll(page);
    const { bytes } = await saved(page, button(page, "Save selection as JSON Lines"));
    assert.equal(bytes.toString(), text("valley_drive.expected.jsonl"));
    assert.deepEqual(asked, ["/"]);
    assert.deepEqual(complaints, []);
    await close();
  });
});

test("the policy lets neither the page nor its worker send anything", async () => {
  await withServer(async (url, asked) => {
    const { page, close } = await openPage();
    const violations = await page.evaluate(async (url) => {
      const found = new Set();
      addEventListener("securitypolicyviolation", (event) => found.add(event.effectiveDirective));
      await fetch(url).catch(() => undefined);
      navigator.sendBeacon(url, "data");
      new Image().src = `${url}image.png`;
      const script = document.createElement("script");
      script.textContent = "document.title = 'run'";
      document.body.append(script);
      while (found.size < 3) await new Promise((resolve) => setTimeout(resolve, 50));
      return [...found].sort();
    }, url);
    assert.deepEqual(violations, ["connect-src", "img-src", "script-src-elem"]);
    assert.equal(await page.title(), "surveydata");
    const worker = page.workers()[0] ?? await page.waitForEvent("worker");
    const answer = await worker.evaluate((url) => fetch(url).then(() => "sent", () => "refused"), url);
    assert.equal(answer, "refused");
    assert.deepEqual(asked, []);
    await close();
  });
});

for (const name of ["valley_drive", "desert_highway"]) {
  onPage(`${name}: JSON Lines and CSV are the program's bytes`, async (page) => {
    await openFiles(page, data(`${name}.rec`));
    await status(page);
    await selectAll(page);
    const lines = await saved(page, button(page, "Save selection as JSON Lines"));
    assert.equal(lines.name, `${name}.jsonl`);
    assert.equal(lines.bytes.toString(), text(`${name}.expected.jsonl`));
    const table = await saved(page, button(page, "Save selection as CSV"));
    assert.ok(table.bytes.equals(native("record", "export", "--csv", data(`${name}.rec`))));
  });
}

onPage("the list has the rows that the program lists", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  const shown = await status(page);
  const listed = spawnSync(program, ["record", "list", "--json", data("valley_drive.rec")], { encoding: "utf8" })
    .stdout.trimEnd().split("\n").map((line) => JSON.parse(line));
  const count = (kind) => listed.filter((entry) => entry.kind === kind).length;
  assert.match(shown, new RegExp(`^${count("measurement")} measurements, ${count("other")} other records, ${count("gap")} gaps \\([\\d,]+ bytes\\), ${count("badFrame")} bad frames\\.`));
  const rows = page.locator(".rows .row");
  await rows.nth(11).waitFor();
  for (let i = 0; i < 12; ++i) {
    const cells = await rows.nth(i).locator("span").allTextContents();
    assert.equal(cells[0], String(listed[i].offset));
    assert.equal(cells[1], String(listed[i].size));
    if (listed[i].kind === "measurement") {
      assert.equal(cells[3], listed[i].gpsTime);
      assert.equal(cells[8], listed[i].name);
    }
  }
  await page.locator(".list").focus();
  await page.keyboard.press("Home");
  const first = listed.findIndex((entry) => entry.kind === "gap" || entry.kind === "badFrame");
  await button(page, "Next finding").click();
  await page.locator(".row.finding.current").waitFor();
  assert.equal(await page.locator(".row.current .offset").textContent(), String(listed[first].offset));
});

onPage("saving a selection writes only the selected rows", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await page.locator(".list").focus();
  await page.keyboard.press("Home");
  for (let i = 0; i < 5; ++i) await page.keyboard.press("Shift+ArrowDown");
  await page.getByText("Rows 1 to 6 are selected.").waitFor();
  const { bytes } = await saved(page, button(page, "Save selection as JSON Lines"));
  const expected = text("valley_drive.expected.jsonl").split("\n").slice(0, 3);
  assert.equal(bytes.toString(), `${expected.join("\n")}\n`);
});

onPage("a record shows the fields and bytes that the program shows", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await page.locator(".row", { hasText: /^960/ }).click();
  await page.getByRole("heading", { name: "Record at 960" }).waitFor();
  const keys = await page.locator(".fields th").allTextContents();
  const values = await page.locator(".fields td").allTextContents();
  const expected = native("record", "show", "--offset", "960", data("valley_drive.rec")).toString().trimEnd().split("\n");
  assert.equal(keys.length, expected.length);
  expected.forEach((line, i) => assert.equal(`${keys[i]} ${values[i]}`.trim(), line.trim().replace(/  +/, " ")));
  const bytes = await page.locator(".dump .byte").allTextContents();
  const frame = readFileSync(data("valley_drive.rec")).subarray(960, 960 + bytes.length);
  assert.equal(bytes.join(""), frame.toString("hex"));
  assert.equal(bytes.length, 467);
  // The field under the pointer is named; blocks have colours.
  await page.locator(".dump .byte").nth(0).hover();
  await page.getByText(/^Byte 0, /).waitFor();
  const colours = new Set(await page.locator(".dump .byte").evaluateAll((all) => all.map((byte) => getComputedStyle(byte).backgroundColor)));
  assert.ok(colours.size >= 4);
});

onPage("name, number and antenna height are changed in a copy, as the program changes them", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await page.locator(".row", { hasText: /^960/ }).click();
  await page.getByRole("heading", { name: "Record at 960" }).waitFor();
  const form = page.locator("form.change");
  await page.getByLabel("Name").fill("Gate-7");
  await form.getByLabel("Number").fill("41");
  await form.getByLabel("Antenna height [m]").fill("1.825");
  await page.locator(".preview .byte.changed").first().waitFor();
  const copy = written("patched.rec", readFileSync(data("valley_drive.rec")));
  const isSlant = await form.getByLabel("slant height").isChecked();
  native("record", "set", "--offset", "960", "--name", "Gate-7", "--number", "41", "--antenna-height", "1.825", ...(isSlant ? ["--slant"] : []), copy);
  await form.getByRole("button", { name: "Keep the change" }).click();
  await page.getByText("1 record changed").waitFor();
  const { name, bytes } = await saved(page, button(page, "Save changed copy"));
  assert.equal(name, "valley_drive.rec");
  assert.ok(bytes.equals(readFileSync(copy)));
  assert.ok(!bytes.equals(readFileSync(data("valley_drive.rec"))));
});

onPage("plots: selection is linked with the list, zoom draws the records in view", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  const line = page.locator(".plot path.line.series-0");
  await line.waitFor({ state: "attached" });
  const whole = await line.getAttribute("d");
  const box = await page.locator(".stage svg").boundingBox();
  await page.mouse.move(box.x + box.width * 0.4, box.y + 60);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width * 0.5, box.y + 60, { steps: 4 });
  await page.mouse.up();
  await page.getByText(/^Rows \d+ to \d+ are selected/).waitFor();
  const [, from, to] = /Rows (\d+) to (\d+)/.exec(await page.locator(".selected").textContent());
  assert.ok(Number(from) > 150 && Number(to) < 420 && Number(to) - Number(from) > 20, `${from} to ${to}`);
  await button(page, "Zoom to selection").click();
  await until(page, (before) => document.querySelector(".plot path.line.series-0").getAttribute("d") !== before, whole);
  // Conversely, selecting a row moves the band.
  const band = page.locator(".plot .band").first();
  await page.locator(".list").focus();
  await button(page, "All").click();
  await page.locator(".list").focus();
  await page.keyboard.press("End");
  await until(page, () => Number(document.querySelector(".plot .band").getAttribute("x")) > 900);
  assert.ok(Number(await band.getAttribute("width")) <= 3);
});

onPage("the plots have the values of every measurement", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  const series = await page.evaluate(async () => (await window.surveydata.ask("series", 1)).map((pairs) => Array.from(pairs)));
  const records = text("valley_drive.expected.jsonl").trimEnd().split("\n").map((line) => JSON.parse(line));
  const values = [
    ...["hdop", "vdop", "pdop"].map((name) => ({ getters }) => getters.dops?.[name]),
    ...[1, 0].map((place) => ({ getters }) => getters.totalPair?.[place]),
  ];
  values.forEach((valueOf, i) => {
    const expected = records.filter((record) => (valueOf(record) ?? -1) >= 0)
      .flatMap((record) => [record.measurement.timeA[0] * 604800 + record.measurement.timeA[1] / 1000, Math.fround(valueOf(record))]);
    assert.ok(expected.length > 100);
    assert.deepEqual(series[i].filter((number) => !Number.isNaN(number)), expected);
  });
});

onPage("plotted values are kept: zooming does not read the file again", async (page) => {
  const path = written("moved.rec", readFileSync(data("valley_drive.rec")));
  await openFiles(page, path);
  await status(page);
  const whole = await page.locator(".plot path.line.series-3").getAttribute("d");
  rmSync(path);
  const [series, part] = await page.evaluate(async () => {
    const all = (series) => series.map((pairs) => Array.from(pairs).join());
    const { surveydata } = window;
    return [all(await surveydata.ask("series", 1)), all(await surveydata.ask("partOfSeries", 1, 0, 630))];
  });
  assert.equal(series.length, 5);
  assert.ok(series.every((pairs) => pairs.length > 1000));
  assert.deepEqual(part, series);
  await button(page, "Zoom in").click();
  await until(page, (before) => document.querySelector(".plot path.line.series-3").getAttribute("d") !== before, whole);
});

onPage("damaged files, empty files and files of other formats get a clear message", async (page) => {
  await openFiles(page, written("empty.rec", ""));
  await page.getByText("empty.rec is empty.").waitFor();
  await openFiles(page, written("foreign.bin", Buffer.alloc(5000, 0x41)));
  assert.match(await status(page, "foreign.bin"), /This is not a record file/);
  const sample = readFileSync(data("valley_drive.rec"));
  sample[1800] ^= 0xff;
  await openFiles(page, written("damaged.rec", sample));
  assert.match(await status(page, "damaged.rec"), /^413 measurements.* 5 bad frames\./);
  await openFiles(page, written("broken.json", '{"kind": "polygon", "unit": "gon", "hzStep": 1, "vStep": 1, "points": [[1, 2], [3]]}'));
  await page.getByText(/broken\.json: Point 2/).waitFor();
  await openFiles(page, written("cut.json", '{"kind": '));
  await page.getByText(/cut\.json: .*JSON/).waitFor();
  await openFiles(page, written("loose.csv", "hz,v\n1,2\n"));
  await page.getByText("loose.csv: Open an area first").waitFor();
  assert.equal(await page.getByRole("tab", { name: "loose.csv" }).count(), 0);
});

onPage("dropped files are opened", async (page) => {
  const session = await page.context().newCDPSession(page);
  const files = [data("valley_drive.rec"), data("areas/facade.json")];
  const drag = (type) => session.send("Input.dispatchDragEvent", {
    type, x: 300, y: 300, data: { items: [], files, dragOperationsMask: 1 },
  });
  await drag("dragEnter");
  await drag("dragOver");
  await until(page, () => document.body.classList.contains("dropping"));
  await drag("drop");
  await page.getByRole("tab", { name: "facade.json" }).waitFor();
  await until(page, () => !document.body.classList.contains("dropping"));
  await page.getByRole("tab", { name: "valley_drive.rec" }).click();
  assert.match(await status(page, "valley_drive.rec"), /^414 measurements/);
});

test("surveydata view: the file comes with the page, and is decoded in the worker", async () => {
  const file = join(folder, "viewed.html");
  native("view", data("valley_drive.rec"), "--page", pageFile, "-o", file, "--browser", "true");
  const { page, requests, complaints, close } = await openPage({
    file,
    init: () => { window.atob = () => { throw new Error("decoded in the page"); }; },
  });
  await status(page, "valley_drive.rec");
  await selectAll(page);
  const { name, bytes } = await saved(page, button(page, "Save selection as JSON Lines"));
  assert.equal(name, "valley_drive.jsonl");
  assert.equal(bytes.toString(), text("valley_drive.expected.jsonl"));
  assert.deepEqual(requests.filter((url, i) => i > 0 && !url.startsWith("blob:")), []);
  assert.deepEqual(complaints, []);
  await close();
});

test("surveydata view: names and contents of files are never interpreted as markup", async () => {
  const evil = written("a<b>&\"'.json", '{"kind": "</template><script>document.title = 1</script>"}');
  const file = join(folder, "evil.html");
  native("view", evil, "--page", pageFile, "-o", file, "--browser", "true");
  const { page, complaints, close } = await openPage({ file });
  await page.getByText("a<b>&\"'.json: ").waitFor();
  assert.equal(await page.title(), "surveydata");
  assert.deepEqual(complaints, []);
  await close();
});

onPage("several files at once, each in a tab", async (page) => {
  await openFiles(page, data("valley_drive.rec"), data("desert_highway.rec"), data("areas/facade.json"));
  await page.getByRole("tab", { name: "facade.json" }).waitFor();
  assert.equal(await page.getByRole("tab").count(), 3);
  await page.getByRole("tab", { name: "desert_highway.rec" }).click();
  assert.match(await status(page), /^380 measurements/);
  await page.getByRole("tab", { name: "desert_highway.rec" }).press("ArrowLeft");
  assert.match(await status(page), /^414 measurements/);
});

for (const name of ["facade", "bow_tie", "ceiling", "doorway", "dome"]) {
  onPage(`area ${name}: validity, reasons and bounds are those of the program`, async (page) => {
    await openFiles(page, data(`areas/${name}.json`));
    await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
    const info = spawnSync(program, ["area", "info", data(`areas/${name}.json`)], { encoding: "utf8" }).stdout;
    const facts = await page.locator(".facts").textContent();
    assert.equal(facts.includes("Validyes"), /^valid +yes/m.test(info));
    for (const [, reason] of info.matchAll(/^ +because +(.*)$/gm)) assert.ok(facts.includes(reason), reason);
    const bounds = /^bounds +(Hz .*?) \(/m.exec(info);
    if (bounds) assert.ok(facts.includes(bounds[1]), `${bounds[1]} in ${facts}`);
    const faulty = await page.locator(".edge.faulty").first().getAttribute("d");
    assert.equal(faulty !== "", name === "bow_tie");
    if (name !== "bow_tie") assert.notEqual(await page.locator("path.inside").first().getAttribute("d"), "");
    assert.ok((await page.locator("figure:nth-child(2) path.edge").first().getAttribute("d")).length > 0 || name === "dome" || name === "bow_tie");
  });
}

for (const name of ["facade", "ceiling", "doorway", "dome"]) {
  onPage(`area ${name}: the outline is that of the program`, async (page) => {
    await openFiles(page, data(`areas/${name}.json`));
    await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
    const rows = await page.locator(".facts details tbody tr").evaluateAll((all) =>
      all.map((row) => Array.from(row.children, (cell) => cell.textContent)));
    const expected = native("area", "outline", data(`areas/${name}.json`)).toString().trimEnd().split("\n")
      .slice(1).map((line) => line.trim().split(/\s+/).map((cell) => (cell === "-" ? "–" : cell)));
    assert.equal(expected.length > 3, name !== "dome");
    assert.deepEqual(rows, expected);
  });
}

onPage("the pointer shows the direction and the answer; a click explains it", async (page) => {
  await openFiles(page, data("areas/facade.json"));
  await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
  const picture = page.locator("figure svg").first();
  const box = await picture.boundingBox();
  const at = (hz, v) => ({ x: ((14 + (hz / 400) * 720) / 748) * box.width, y: ((14 + (v / 200) * 360) / 388) * box.height });
  await picture.hover({ position: at(57, 92) });
  await page.getByText(/^Hz 5[67]\.\d+ gon, V 9[12]\.\d+ gon: inside$/).waitFor();
  await picture.hover({ position: at(150, 92) });
  await page.getByText(/^Hz 1(49|50)\.\d+ gon, V 9[12]\.\d+ gon: outside$/).waitFor();
  await picture.click({ position: at(57, 92) });
  const answer = page.locator(".answer");
  await answer.getByText("parity of the crossings").waitFor();
  assert.match(await answer.textContent(), /Answerinside/);
  assert.match(await answer.textContent(), /Distance to the boundary[\d.]+ gon, to edge \d+/);
  assert.ok((await answer.locator("tbody tr").count()) >= 2);
  // By keyboard: a direction in the band of the first edge, which is displaced from it (docs/sphere_areas.md).
  await page.getByLabel("Hz", { exact: true }).fill("378.9415");
  await page.getByLabel("V", { exact: true }).fill("95");
  await page.getByLabel("V", { exact: true }).press("Enter");
  await answer.getByText("in the boundary band").waitFor();
  assert.match(await answer.textContent(), /Boundary bandof edge 1/);
});

onPage("corners are drawn, dragged, deleted, undone, and saved as an area file", async (page) => {
  await button(page, "New area").click();
  await page.getByText("a polygon has 3 or more points, not 0").waitFor();
  await button(page, "Draw corners").click();
  const picture = page.locator("figure svg").first();
  const box = await picture.boundingBox();
  const at = (x, y) => ({ x: ((14 + x) / 748) * box.width, y: ((14 + y) / 388) * box.height });
  for (const [i, place] of [[200, 100], [400, 100], [400, 250], [200, 250]].entries()) {
    await picture.click({ position: at(...place) });
    await page.locator("figure:first-child .corner").nth(i).waitFor();
  }
  await button(page, "Draw corners").click();
  const facts = page.locator(".facts");
  await facts.getByText("polygon, 4 points").waitFor();
  assert.match(await facts.textContent(), /Validyes/);
  // The third corner is dragged to the other side of the first edge, which the third then crosses.
  const move = at(300, 20);
  const start = at(400, 250);
  await page.mouse.move(box.x + start.x, box.y + start.y);
  await page.mouse.down();
  await page.mouse.move(box.x + move.x, box.y + move.y, { steps: 5 });
  await page.mouse.up();
  await facts.getByText(/edges 1 .* and 3 .* cross near/).waitFor();
  assert.notEqual(await page.locator("figure:first-child .edge.faulty").getAttribute("d"), "");
  await button(page, "Undo").click();
  await until(page, () => document.querySelector(".facts").textContent.includes("Validyes"));
  await button(page, "Redo").click();
  await until(page, () => document.querySelector(".facts").textContent.includes("Validno"));
  await button(page, "Undo").click();
  await until(page, () => document.querySelector(".facts").textContent.includes("Validyes"));
  await button(page, "Delete point 4").click();
  await facts.getByText("polygon, 3 points").waitFor();
  const { name, bytes } = await saved(page, button(page, "Save area file"));
  assert.equal(name, "area.json");
  const path = written("drawn.json", bytes);
  const info = JSON.parse(native("area", "info", "--json", path));
  assert.equal(info.valid, true);
  assert.equal(info.points, 3);
  assert.equal(info.unit, "gon");
  // Points can also be typed, and moved by keyboard alone.
  await page.getByLabel("Hz of point 1").fill("120.5");
  await page.getByLabel("Hz of point 1").press("Tab");
  const again = JSON.parse((await saved(page, button(page, "Save area file"))).bytes);
  assert.equal(again.points[0][0], 120.5);
});

onPage("rad, deg and gon: converted angles are restored exactly", async (page) => {
  await openFiles(page, data("areas/facade.json"));
  await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
  for (const unit of ["deg", "rad", "gon"]) {
    await page.getByLabel("Unit of angles").selectOption(unit);
    await page.locator(".points").getByText(`Hz [${unit}]`).waitFor();
  }
  const area = JSON.parse((await saved(page, button(page, "Save area file"))).bytes);
  assert.deepEqual(area.points, JSON.parse(text("areas/facade.json")).points);
});

onPage("directions from CSV are points, inside or outside as the program answers", async (page) => {
  await openFiles(page, data("areas/facade.json"));
  await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
  const lines = ["hz,v"];
  for (let i = 0; i < 300; ++i) lines.push(`${(i * 37) % 400},${(i * 13) % 200}`);
  const csv = written("directions.csv", `${lines.join("\n")}\n`);
  const answers = spawnSync(program, ["area", "contains", "--json", "--csv", csv, data("areas/facade.json")], { encoding: "utf8" })
    .stdout.trimEnd().split("\n").map((line) => JSON.parse(line).inside);
  const inside = answers.filter(Boolean).length;
  assert.equal(answers.length, 300);
  assert.ok(inside > 0);
  await page.getByLabel("Directions from CSV").setInputFiles(csv);
  await page.getByText(`300 directions, ${inside} inside, ${300 - inside} outside.`).waitFor();
  assert.equal(await page.locator("figure:first-child .probe.in").count(), inside);
  assert.equal(await page.locator("figure:nth-child(2) .probe.out").count(), 300 - inside);
});

onPage("ten million answers equal those of the native library", async (page) => {
  const area = JSON.parse(text("areas/facade.json"));
  // In radians, so that both sides use the same numbers.
  const points = area.points.map(([hz, v]) => [(hz / 200) * Math.PI, (v / 200) * Math.PI]);
  const expected = execFileSync(join(root, "build/dev/web/page_containment_hash"), { input: points.map((p) => p.join(" ")).join("\n") }).toString();
  const file = written("radians.json", JSON.stringify({ ...area, unit: "rad", points }));
  await openFiles(page, file);
  await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
  // In the page, as in containment.mjs: the policy forbids creating a function from text there.
  const { hash, inside, milliseconds } = await page.evaluate(async ([count, block]) => {
    let state = 20260101;
    const next = () => (state = (state * 48271) % 2147483647) / 2147483647;
    let hash = 2166136261;
    let inside = 0;
    let milliseconds = 0;
    for (let done = 0; done < count; done += block) {
      const hz = new Float64Array(block);
      const v = new Float64Array(block);
      for (let i = 0; i < block; ++i) {
        hz[i] = next() * 6.25;
        v[i] = next() * 3.125;
      }
      const start = performance.now();
      const answers = await window.surveydata.contains(hz, v);
      milliseconds += performance.now() - start;
      for (const answer of answers) {
        hash = Math.imul(hash ^ answer, 16777619) >>> 0;
        inside += answer;
      }
    }
    return { hash, inside, milliseconds };
  }, [DIRECTIONS, 1_000_000]);
  assert.equal(`${hash} ${inside}\n`, expected);
  console.log(`# 10^6 directions: ${(milliseconds / (DIRECTIONS / 1e6)).toFixed(1)} ms from arrays of the page to an array of the page`);
});

onPage("directions in batches of different sizes have the same answers as single directions", async (page) => {
  await openFiles(page, data("areas/facade.json"));
  await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
  const [count, length, different, inputs] = await page.evaluate(async () => {
    const count = 150_001;
    const hz = Float64Array.from({ length: count }, (_, i) => (i * 0.61803398875) % 6.25);
    const v = Float64Array.from({ length: count }, (_, i) => (i * 0.41421356237) % 3.125);
    const inside = await window.surveydata.contains(hz, v);
    let different = 0;
    for (let i = 0; i < count; i += 4999) {
      const [one] = await window.surveydata.contains(hz.slice(i, i + 1), v.slice(i, i + 1));
      if (one !== inside[i]) ++different;
    }
    const none = await window.surveydata.contains(new Float64Array(), new Float64Array());
    return [none.length, inside.length, different, hz.length + v.length];
  });
  // The arrays of the caller stay usable.
  assert.deepEqual([count, length, different, inputs], [0, 150_001, 0, 300_002]);
});

onPage("a change is kept only as it was previewed", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await page.locator(".row", { hasText: /^960/ }).click();
  await page.getByRole("heading", { name: "Record at 960" }).waitFor();
  const keep = page.getByRole("button", { name: "Keep the change" });
  // A value that fits and, before the preview appears, one that does not.
  await page.evaluate(() => {
    const number = document.querySelector("form.change [name=number]");
    for (const value of ["5", "5.5"]) {
      number.value = value;
      number.dispatchEvent(new Event("input"));
    }
  });
  await page.getByText("The number must be a whole number of 32 bits.").waitFor();
  await page.evaluate(() => window.surveydata.ask("timeTicks", 0, 1, 2)); // after both replies
  await page.getByText("The number must be a whole number of 32 bits.").waitFor();
  assert.ok(await keep.isDisabled());
  const height = "Antenna height [m]";
  for (const [field, value, reason] of [
    ["Number", "", /whole number/], ["Number", "2147483648", /whole number/], ["Number", "1.5", /whole number/],
    [height, "", /must be from 0 to 1000 metres/], [height, "1000.5", /must be from 0/], [height, "-0.5", /must be from 0/],
    ["Name", "\u{1f600}", /beyond U\+FFFF/], ["Name", "a\u0007b", /control character/],
  ]) {
    const input = page.getByLabel(field);
    await page.getByLabel("Number").fill("41");
    await page.locator(".preview .byte.changed").first().waitFor();
    const given = await input.inputValue();
    await input.fill(value);
    assert.match(await page.locator(".preview .alert").textContent(), reason, `${field} ${value}`);
    assert.ok(await keep.isDisabled(), `${field} ${value}`);
    await input.fill(given);
  }
});

/** A request that the page never makes: the module reads beyond the end of its memory. */
const abort = () => {
  const numbers = { length: 2 ** 26, buffer: new ArrayBuffer(8), byteOffset: 0, byteLength: 8 };
  return window.surveydata.ask("containsMany", numbers, numbers).catch(() => undefined);
};

onPage("a failure of the module loses no edits", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await page.locator(".row", { hasText: /^960/ }).click();
  await page.getByRole("heading", { name: "Record at 960" }).waitFor();
  await page.locator("form.change").getByLabel("Number").fill("77");
  await page.locator(".preview .byte.changed").first().waitFor();
  await page.getByRole("button", { name: "Keep the change" }).click();
  await page.getByText("1 record changed").waitFor();
  await openFiles(page, data("areas/facade.json"));
  await page.getByRole("button", { name: "Delete point 19" }).click();
  await page.getByText("polygon, 18 points").waitFor();
  await page.evaluate(abort);
  await page.getByText("The module failed and was started again. Your changes are kept.").waitFor();
  await page.getByRole("button", { name: "Delete point 18" }).click();
  await page.getByText("polygon, 17 points").waitFor();
  await page.getByRole("tab", { name: "valley_drive.rec" }).click();
  await status(page);
  // The list shows the same rows as before.
  await page.getByText("Row 6 is selected.").waitFor();
  await page.locator(".row.current", { hasText: /^960/ }).waitFor();
  const { bytes } = await saved(page, button(page, "Save changed copy"));
  const original = readFileSync(data("valley_drive.rec"));
  assert.equal(bytes.length, original.length);
  assert.ok(!bytes.equals(original));
});

onPage("a file that always makes the module fail is not opened again, and the others work", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await openFiles(page, data("areas/ceiling.json"));
  await page.getByRole("tab", { name: "ceiling.json", selected: true }).waitFor();
  await openFiles(page, data("areas/facade.json"));
  await page.getByText("polygon, 19 points").waitFor();
  await button(page, "Delete point 19").click();
  await page.getByText("polygon, 18 points").waitFor();
  // From now on, the module fails whenever the facade is opened in it.
  await page.evaluate(() => {
    const { surveydata } = window;
    const ask = surveydata.ask.bind(surveydata);
    window.opened = 0;
    surveydata.ask = (operation, ...values) => {
      if (operation !== "openArea" || values[2] !== "facade.json") return ask(operation, ...values);
      ++window.opened;
      const numbers = { length: 2 ** 26, buffer: new ArrayBuffer(8), byteOffset: 0, byteLength: 8 };
      return ask("containsMany", numbers, numbers);
    };
  });
  await page.evaluate(abort);
  await page.getByText("The module failed again when a file was opened in it.").waitFor();
  await page.getByRole("tab", { name: "valley_drive.rec" }).click();
  assert.match(await status(page), /^414 measurements/);
  await page.getByRole("tab", { name: "ceiling.json" }).click();
  await page.locator(".area:not([hidden])").getByRole("button", { name: "Explain this direction" }).click();
  await page.locator(".area:not([hidden]) .answer dl").waitFor();
  assert.equal(await page.evaluate(() => window.opened), 1);
  await page.getByRole("tab", { name: "facade.json" }).click();
  const kept = JSON.parse((await saved(page, page.locator(".area:not([hidden])").getByRole("button", { name: "Save area file" }))).bytes);
  assert.equal(kept.points.length, 18);
});

test("a browser that cannot load the module says so, and does not try again", async () => {
  const html = readFileSync(pageFile, "utf8");
  const at = html.indexOf(">", html.indexOf('<template id="module"')) + 1000;
  const broken = written("broken.html", `${html.slice(0, at)}~~~~~~~~${html.slice(at + 8)}`);
  const { page, close } = await openPage({ file: broken });
  await openFiles(page, data("valley_drive.rec"));
  await page.getByText(/This browser cannot run the page: /).first().waitFor();
  assert.equal(page.workers().length, 1);
  await close();
});

onPage("if a file was deleted, a message says so and its list stays", async (page) => {
  const sample = readFileSync(data("valley_drive.rec"));
  const path = written("gone.rec", Buffer.concat(Array(40).fill(sample)));
  await openFiles(page, path);
  await status(page);
  rmSync(path);
  await page.locator(".list").focus();
  // The worker keeps the slice of the file that it read last: its beginning.
  await page.keyboard.press("End");
  await page.locator("#message.alert", { hasText: "gone.rec: " }).waitFor();
  await page.keyboard.press("Home");
  await page.locator(".row.current[data-row='0']").waitFor();
  // Every message about the file names it, whichever request failed last.
  await page.evaluate(() => window.surveydata.ask("timeTicks", 0, 1, 2)); // after the other replies
  assert.match(await page.locator("#message.alert").textContent(), /^gone\.rec: /);
  assert.match(await status(page), /^16,560 measurements/);
});

onPage("names of files, areas and records are shown as text", async (page) => {
  const markup = "<img src=x onerror=document.title=1>";
  const frame = written("named.rec", readFileSync(data("valley_drive.rec")));
  native("record", "set", "--offset", "960", "--name", "<b onclick=x>&'\"", frame);
  const record = written(`${markup}.rec`.replaceAll("/", ""), readFileSync(frame));
  await openFiles(page, record);
  await status(page);
  await page.locator(".row", { hasText: /^960/ }).click();
  await page.getByRole("heading", { name: "Record at 960" }).waitFor();
  assert.equal(await page.locator(".row", { hasText: /^960/ }).locator(".name").textContent(), "<b onclick=x>&'\"");
  const area = JSON.parse(text("areas/facade.json"));
  await openFiles(page, written("\u202Egpj.json", JSON.stringify({ ...area, name: `${markup}\u202E\u0007</script>` })));
  await page.locator(".facts").getByText(markup).waitFor();
  // A character that reverses the text is shown as a replacement character.
  await page.getByRole("tab", { name: "\uFFFDgpj.json" }).waitFor();
  assert.ok(!(await page.locator("main").textContent()).includes("\u202E"));
  assert.equal(await page.locator("main img, main b, main script").count(), 0);
  assert.equal(await page.title(), "surveydata");
});

onPage("invalid areas are shown or refused, and edits that lead to them can be undone", async (page) => {
  const area = (points, more = {}) => JSON.stringify({ kind: "polygon", unit: "rad", hzStep: 0.01, vStep: 0.01, points, ...more });
  const facts = page.locator(".area:not([hidden]) .facts");
  const files = {
    none: area([]), one: area([[1, 1]]), same: area(Array(50).fill([1, 1])),
    far: area([[-1e300, 1], [1e300, 1], [1, 2]]), turns: area([[-99, 1], [99, 1], [1, 2]]),
    rectangle: area([[1, 1], [2, 2], [3, 3]], { kind: "rectangle" }),
    beyond: area([[1e308, 1e308], [-1e308, 1], [1, -1e308]]),
  };
  for (const [name, content] of Object.entries(files)) {
    await openFiles(page, written(`${name}.json`, content));
    await page.getByRole("tab", { name: `${name}.json`, exact: true, selected: true }).waitFor();
    await facts.getByText("Area", { exact: true }).waitFor();
    assert.match(await facts.textContent(), /Validno/, name);
  }
  // In degrees these numbers would exceed the largest double: the area stays in radians.
  const view = page.locator(".area:not([hidden])");
  await view.getByLabel("Unit of angles").selectOption("deg");
  await page.locator("#message.alert").getByText("An angle is too large for this unit").waitFor();
  assert.equal(await view.getByLabel("Unit of angles").inputValue(), "rad");
  assert.ok(await view.getByRole("button", { name: "Undo" }).isDisabled());
  for (const content of ["[".repeat(100_000), `{"points":${"[".repeat(100_000)}`, `{${" ".repeat(5000)}`, '{"kind":"polygon","points":[[1e999,1]]}']) {
    await openFiles(page, written("refused.json", content));
    await page.locator("#message.alert", { hasText: /refused\.json: |not a record file/ }).or(page.getByText("This is not a record file")).first().waitFor();
  }
});

onPage("edits in quick succession are applied in order, each to its area", async (page) => {
  await openFiles(page, data("areas/facade.json"), data("areas/ceiling.json"));
  await page.getByRole("tab", { name: "ceiling.json", selected: true }).waitFor();
  const before = JSON.parse(text("areas/facade.json")).points;
  const corners = JSON.parse(text("areas/ceiling.json")).points;
  await page.locator(".area:not([hidden])").getByText(`polygon, ${corners.length} points`).waitFor();
  // Both areas at once, without waiting for an answer.
  await page.evaluate(() => {
    const [facade, ceiling] = document.querySelectorAll(".area");
    const press = (view, label) => view.querySelector(`[aria-label="${label}"]`).click();
    press(facade, "Delete point 19");
    press(ceiling, "Delete point 2");
    press(facade, "Delete point 1");
    press(facade, "Delete point 2");
  });
  await page.locator(".area").first().getByText("polygon, 16 points").waitFor({ state: "attached" });
  const save = async (name) => {
    await page.getByRole("tab", { name }).click();
    return JSON.parse((await saved(page, page.locator(".area:not([hidden])").getByRole("button", { name: "Save area file" }))).bytes).points;
  };
  assert.deepEqual(await save("ceiling.json"), corners.filter((_, i) => i !== 1));
  assert.deepEqual(await save("facade.json"), before.slice(1, 18).filter((_, i) => i !== 1));
  for (let i = 0; i < 3; ++i) await page.locator(".area:not([hidden])").getByRole("button", { name: "Undo" }).click();
  await page.locator(".area:not([hidden])").getByText("polygon, 19 points").waitFor();
  assert.deepEqual(await save("facade.json"), before);
});

onPage("keystrokes and clicks while the worker is slow are not lost", async (page) => {
  await openFiles(page, data("areas/facade.json"));
  await page.getByText("polygon, 19 points").waitFor();
  const field = (name) => page.getByLabel(`${name} of point 2`);
  // Each Tab selects what is in the next field, and the new text replaces it, whether the area was read again or not.
  await field("Hz").focus();
  await page.keyboard.press("Control+a");
  await page.keyboard.type("58.25");
  await page.keyboard.press("Tab");
  await until(page, () => document.activeElement.ariaLabel === "V of point 2" && document.activeElement.closest("tr").querySelector("input").defaultValue === "58.25");
  await page.keyboard.type("88.7");
  await page.keyboard.press("Shift+Tab");
  await page.keyboard.type("58.");
  // The area is read again in the middle of a word.
  await until(page, () => document.activeElement.closest("tr").querySelectorAll("input")[1].defaultValue === "88.7");
  await page.keyboard.type("5");
  await page.keyboard.press("Tab");
  await page.keyboard.type("88.75");
  await until(page, () => document.activeElement.closest("tr").querySelector("input").defaultValue === "58.5");
  await page.keyboard.press("Enter");
  const points = JSON.parse(text("areas/facade.json")).points;
  points[1].splice(0, 2, 58.5, 88.75);
  const { bytes } = await saved(page, button(page, "Save area file"));
  assert.deepEqual(JSON.parse(bytes).points, points);
  // Corners are added in the order of the clicks.
  await button(page, "New area").click();
  await page.getByText("a polygon has 3 or more points, not 0").waitFor();
  const view = page.locator(".area:not([hidden])");
  await view.getByRole("button", { name: "Draw corners" }).click();
  const box = await view.locator("figure svg").first().boundingBox();
  const places = [[200, 60], [400, 60], [400, 150], [200, 150]];
  for (const [x, y] of places) await page.mouse.click(box.x + x, box.y + y);
  await view.getByText("polygon, 4 points").waitFor();
  assert.match(await view.locator(".facts").textContent(), /Validyes/);
  // Rows that are selected while the file is read stay selected.
  await openFiles(page, data("valley_drive.rec"));
  await page.locator(".records .list").focus();
  await page.locator(".rows .row").first().waitFor();
  for (let i = 0; i < 3; ++i) await page.keyboard.press("ArrowDown");
  await status(page, "valley_drive.rec");
  await page.getByText("Row 4 is selected.").waitFor();
  await page.locator(".row.current[data-row='3']").waitFor();
}, { delay: 200 });

onPage("an area of many corners: every corner can be edited", async (page) => {
  const count = 3001;
  const points = Array.from({ length: count }, (_, i) => {
    const angle = (2 * Math.PI * i) / count;
    return [3 + 0.8 * Math.cos(angle), 1.5 + 0.8 * Math.sin(angle)];
  });
  await openFiles(page, written("ring.json", JSON.stringify({ kind: "polygon", unit: "rad", hzStep: 0.01, vStep: 0.01, points })));
  await page.getByText("polygon, 3,001 points").waitFor();
  assert.equal(await page.getByRole("button", { name: /^Delete point/ }).count(), 200);
  await page.getByLabel("First point shown").fill("2901");
  await page.getByLabel("First point shown").press("Enter");
  await page.getByText("to 3001 of 3001").first().waitFor();
  await page.getByLabel("Hz of point 3000").fill("3.1");
  await page.getByLabel("Hz of point 3000").press("Enter");
  await page.getByRole("button", { name: "Undo", disabled: false }).waitFor();
  assert.equal(await page.getByLabel("Hz of point 3000").inputValue(), "3.1");
  await page.locator(".facts summary").click();
  const [, corners] = /From corner  to 200 of (\d+)/.exec(await page.locator(".facts details p").textContent());
  await page.getByLabel("First corner shown").fill(corners);
  await page.getByLabel("First corner shown").press("Enter");
  await until(page, () => document.querySelectorAll(".facts details tbody tr").length === 1);
  assert.equal(await page.evaluate(() => document.activeElement.ariaLabel), "First corner shown");
});

onPage("a file of 2 GB: in slices, cancellable, in 100 MB", async (page) => {
  // Copies of the sample around a sparse middle, which is quick to write: 2 GiB in total.
  const sample = readFileSync(data("valley_drive.rec"));
  const path = join(folder, "large.rec");
  const file = openSync(path, "w");
  const block = Buffer.concat(Array(40).fill(sample));
  let at = 0;
  while (at < 300e6) at += writeSync(file, block, 0, block.length, at);
  ftruncateSync(file, 2 ** 31 - sample.length);
  writeSync(file, sample, 0, sample.length, 2 ** 31 - sample.length);
  closeSync(file);
  assert.equal(statSync(path).size, 2 ** 31);

  await openFiles(page, path);
  const bar = page.locator(".progress progress");
  await until(page, () => { const value = document.querySelector(".progress progress")?.value ?? 0; return value > 0.01 && value < 1; });
  assert.ok(await bar.isVisible());
  await button(page, "Cancel").click();
  assert.match(await status(page), /Reading was cancelled/);
  await button(page, "Close this file").click();

  const start = performance.now();
  await openFiles(page, path);
  const shown = await status(page);
  const seconds = (performance.now() - start) / 1000;
  const copies = Math.round(at / sample.length) + 1;
  assert.match(shown, new RegExp(`^${(copies * 414).toLocaleString("en")} measurements`));
  const memory = Number(await page.locator(".records").getAttribute("data-memory"));
  assert.ok(memory < 100e6, `${memory} bytes`);
  console.log(`# 2 GiB with ${shown.split(",").slice(0, 2).join("")}… in ${seconds.toFixed(1)} s, ${(memory / 1e6).toFixed(1)} MB`);
  await page.locator(".list").focus();
  await page.keyboard.press("End");
  await until(page, (last) => document.querySelector(".row.current .offset")?.textContent > String(last), 2 ** 31 - 2000);
});

onPage("ten million rows scroll without delay, and every row can be shown", async (page) => {
  // Gaps of 1 byte between the smallest records would give the most rows; 40-byte frames are realistic.
  const sample = readFileSync(data("valley_drive.rec"));
  const frame = sample.subarray(854, 894);
  const block = Buffer.concat(Array(50_000).fill(frame));
  const path = join(folder, "rows.rec");
  const file = openSync(path, "w");
  for (let i = 0; i < 200; ++i) writeSync(file, block);
  closeSync(file);
  await openFiles(page, path);
  assert.match(await status(page), /^10,000,000 measurements/);
  const memory = Number(await page.locator(".records").getAttribute("data-memory"));
  assert.ok(memory < 100e6, `${memory} bytes`);
  await page.locator(".list").focus();
  const current = () => page.locator(".row.current").getAttribute("data-row");
  await page.keyboard.press("End");
  await page.locator(".row[data-row='9999999']").waitFor();
  assert.equal(await current(), "9999999");
  await page.keyboard.press("ArrowUp");
  await page.locator(".row.current[data-row='9999998']").waitFor();
  await page.locator(".list").evaluate((scroller) => { scroller.scrollTop = scroller.scrollHeight / 2; });
  await until(page, () => Math.abs(Number(document.querySelector(".rows .row").dataset.row) - 5e6) < 1e4);
  const first = await page.locator(".rows .row").first().getAttribute("data-row");
  await page.locator(".list").hover();
  await page.mouse.wheel(0, 26);
  await until(page, (row) => document.querySelector(".rows .row").dataset.row === String(Number(row) + 1), first);
  // The plots are enlarged at once, and then drawn from every record in view.
  const line = () => page.locator(".plot path.line.series-3").getAttribute("d");
  const start = performance.now();
  const exact = page.evaluate(async () => {
    const before = performance.now();
    const part = await window.surveydata.ask("partOfSeries", 1, 1_000_000, 8_999_999);
    return [part[3].length, performance.now() - before];
  });
  // Meanwhile, the list responds.
  await page.keyboard.press("Home");
  await page.locator(".row[data-row='0']").waitFor();
  const answered = performance.now() - start;
  const [length, milliseconds] = await exact;
  assert.ok(length > 0);
  assert.notEqual(await line(), "");
  console.log(`# 10^7 rows: ${(memory / 1e6).toFixed(1)} MB; 8 million of them are drawn in ${(milliseconds / 1e3).toFixed(2)} s, the list responds after ${(answered / 1e3).toFixed(2)} s`);
});

for (const colorScheme of ["light", "dark"]) {
  for (const [size, viewport] of Object.entries({ phone: { width: 360, height: 740 }, wide: { width: 1920, height: 1080 } })) {
    onPage(`${colorScheme}, ${size}: axe finds nothing, nothing is wider than the page`, async (page) => {
      const check = async (what) => {
        const found = await page.evaluate(() => window.axe.run(document, { resultTypes: ["violations"] }));
        assert.deepEqual(found.violations.map(({ id, nodes }) => `${what}: ${id} ${nodes[0].html}`), []);
        const width = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(width <= viewport.width, `${what} is ${width} wide`);
      };
      await page.evaluate(axeSource);
      await check("start");
      await openFiles(page, data("valley_drive.rec"));
      await status(page);
      await page.locator(".row", { hasText: /^960/ }).click();
      await page.getByRole("heading", { name: "Record at 960" }).waitFor();
      await page.locator("form.change").getByLabel("Number").fill("3");
      await page.locator(".preview .byte.changed").first().waitFor();
      await check("records");
      await page.locator(".record summary").click();
      await check("every field of a record");
      await selectAll(page);
      await check("a selection");
      const damaged = readFileSync(data("valley_drive.rec"));
      damaged[1800] ^= 0xff;
      await openFiles(page, written("damaged.rec", damaged));
      await status(page, "damaged.rec");
      await page.locator(".records:not([hidden])").getByRole("button", { name: "Next finding" }).click();
      await page.locator(".records:not([hidden]) .row.finding.current").click();
      await check("a finding");
      await openFiles(page, written("empty.rec", ""));
      await page.locator("#message.alert").waitFor();
      await check("a message");
      for (const name of ["bow_tie", "facade", "dome"]) {
        await openFiles(page, data(`areas/${name}.json`));
        const view = page.locator(".area:not([hidden])");
        await page.getByRole("tab", { name: `${name}.json`, exact: true, selected: true }).waitFor();
        await view.getByRole("heading", { name: "Area", exact: true }).waitFor();
        await view.locator("summary").click();
        if (name !== "dome") await view.getByRole("button", { name: "Draw corners" }).click();
        await view.getByLabel("Directions from CSV").setInputFiles(written("few.csv", "hz,v\n57,92\n150,92\n"));
        await page.getByText("few.csv: 2 directions").waitFor();
        await view.getByLabel("Hz", { exact: true }).fill("57");
        await view.getByLabel("V", { exact: true }).fill("92");
        await view.getByRole("button", { name: "Explain this direction" }).click();
        await view.locator(".answer dl").waitFor();
        await check(`area ${name}`);
      }
    }, { colorScheme, viewport });
  }
}

onPage("plots, list and record are in view together", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await page.locator(".row", { hasText: /^960/ }).click();
  await page.getByRole("heading", { name: "Record at 960" }).waitFor();
  await page.evaluate(() => scrollTo(0, 0));
  for (const part of [".stage svg", ".row.current", ".dump .byte"]) {
    const box = await page.locator(part).first().boundingBox();
    assert.ok(box.y > 0 && box.y + box.height < 1000, `${part}: ${box.y} to ${box.y + box.height}`);
  }
  const cut = await page.locator(".list").evaluate((list) => [list, ...list.querySelectorAll(".row span")]
    .filter((each) => each.scrollWidth > each.clientWidth).map((each) => each.textContent));
  assert.deepEqual(cut, [], "the list shows its columns completely");
  // The picture of docs/page.md.
  if (process.env.SURVEYDATA_PICTURE) await page.screenshot({ path: process.env.SURVEYDATA_PICTURE });
}, { viewport: { width: 1280, height: 1000 } });

onPage("every control can be reached by keyboard", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  const reached = new Set();
  await page.locator("#files").focus();
  for (let i = 0; i < 60; ++i) {
    await page.keyboard.press("Tab");
    reached.add(await page.evaluate(() => {
      const { activeElement: at } = document;
      return at.className || at.textContent || at.tagName;
    }));
  }
  for (const wanted of ["stage", "list", "Next finding", "Save selection as CSV", "Zoom in", "valley_drive.rec"]) {
    assert.ok(reached.has(wanted), `${wanted} in ${[...reached].join(", ")}`);
  }
  await page.locator(".stage").focus();
  await page.keyboard.press("ArrowRight");
  await page.keyboard.press("Shift+ArrowRight");
  await page.getByText(/^Rows \d+ to \d+ are selected/).waitFor();
  await page.locator(".list").focus();
  await page.keyboard.press("Home");
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("Enter");
  await page.getByRole("heading", { name: "Record at 854" }).waitFor();
  await page.locator(".dump").focus();
  await page.keyboard.press("ArrowRight");
  await page.getByText(/^Byte 0, /).waitFor();
});

onPage("an area is made and changed by keyboard alone, and the focus stays", async (page) => {
  const focused = () => page.evaluate(() => document.activeElement.ariaLabel ?? document.activeElement.textContent);
  await button(page, "New area").focus();
  await page.keyboard.press("Enter");
  await page.getByRole("heading", { name: "Area", exact: true }).waitFor();
  const type = async (hz, v) => {
    for (const [label, value] of [["Hz", hz], ["V", v]]) {
      await page.getByLabel(label, { exact: true }).focus();
      await page.keyboard.press("Control+a");
      await page.keyboard.type(value);
    }
    await button(page, "Add as last point").focus();
    await page.keyboard.press("Enter");
  };
  for (const [i, [hz, v]] of [["10", "80"], ["60", "80"], ["60", "120"], ["10", "120"]].entries()) {
    await type(hz, v);
    await page.getByText(`polygon, ${i + 1} point`).waitFor();
  }
  // Tab leaves the changed field: the area is read again, and the next field keeps the focus.
  await page.getByLabel("Hz of point 2").focus();
  await page.keyboard.press("Control+a");
  await page.keyboard.type("61.5");
  await page.keyboard.press("Tab");
  await page.locator(".facts").getByText("61.5000").first().waitFor({ state: "attached" });
  assert.equal(await focused(), "V of point 2");
  await page.keyboard.press("Control+a");
  await page.keyboard.type("81.5");
  await page.keyboard.press("Shift+Tab");
  await page.locator(".facts").getByText("81.5000").first().waitFor({ state: "attached" });
  assert.equal(await focused(), "Hz of point 2");
  await button(page, "Delete point 4").focus();
  await page.keyboard.press("Enter");
  await page.getByText("polygon, 3 points").waitFor();
  assert.equal(await focused(), "Insert after point 3"); // the last control of the table
  await page.getByLabel("V step").focus();
  await page.keyboard.press("Control+a");
  await page.keyboard.type("0.25");
  await page.keyboard.press("Shift+Tab");
  await until(page, () => document.querySelector("[aria-label='V step']").defaultValue === "0.25");
  assert.equal(await focused(), "Hz step");
  const { bytes } = await saved(page, button(page, "Save area file"));
  const area = JSON.parse(bytes);
  assert.deepEqual(area.points, [[10, 80], [61.5, 81.5], [60, 120]]);
  assert.equal(area.vStep, 0.25);
  // Closing the file leaves the focus in the page.
  await button(page, "Close this file").focus();
  await page.keyboard.press("Enter");
  await until(page, () => document.activeElement.id === "files");
});

onPage("a record is changed by keyboard alone, and the focus stays", async (page) => {
  await openFiles(page, data("valley_drive.rec"));
  await status(page);
  await page.locator(".list").focus();
  await page.keyboard.press("Home");
  for (let i = 2; (await page.locator(".row.current .offset").textContent()) !== "960"; ++i) {
    await page.keyboard.press("ArrowDown");
    await page.locator(`.row.current[aria-rowindex="${i + 1}"]`).waitFor();
  }
  await page.keyboard.press("Enter");
  await page.getByRole("heading", { name: "Record at 960" }).waitFor();
  await page.locator("form.change").getByLabel("Number").focus();
  await page.keyboard.press("Control+a");
  await page.keyboard.type("77");
  await page.locator(".preview .byte.changed").first().waitFor();
  await button(page, "Keep the change").focus();
  await page.keyboard.press("Enter");
  await page.getByText("1 record changed").waitFor();
  assert.ok(await page.evaluate(() => document.querySelector(".record").contains(document.activeElement)));
});

test("first paint", async () => {
  const { page, close } = await openPage();
  const time = await page.evaluate(() => performance.getEntriesByName("first-contentful-paint")[0]?.startTime ??
    new Promise((resolve) => new PerformanceObserver((list) => resolve(list.getEntries()[0].startTime)).observe({ type: "paint", buffered: true })));
  assert.ok(time > 0);
  console.log(`# first paint: ${time.toFixed(0)} ms`);
  await close();
});
