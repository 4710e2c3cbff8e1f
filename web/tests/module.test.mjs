// The module alone, in Node.js, without a page.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

import { directions } from "./containment.mjs";
import { data, root, text } from "./support.mjs";

const folder = process.env.SURVEYDATA_MODULE ?? join(root, "build/wasm/web");
globalThis.self = globalThis; // the module is built for a worker
globalThis.location = { href: pathToFileURL(folder).href };
const { default: instantiate } = await import(pathToFileURL(join(folder, "surveydata.mjs")).href);

/** The module over bytes in memory. */
async function load(bytes) {
  const binary = readFileSync(join(folder, "surveydata.wasm"));
  const module = await instantiate({
    instantiateWasm(imports, done) {
      void WebAssembly.instantiate(binary, imports).then((it) => done(it.instance));
      return {};
    },
    pageRead(offset, to, count) {
      const part = bytes.subarray(offset, offset + count);
      module.HEAPU8.set(part, to);
      return part.length;
    },
  });
  return module;
}
const result = (module) =>
  Buffer.from(module.HEAPU8.slice(module._page_result(), module._page_result() + module._page_result_size()));

/** Milliseconds of processor time that `work` takes, which excludes that of other programs. */
function timeOf(work) {
  const before = process.cpuUsage();
  work();
  const { user, system } = process.cpuUsage(before);
  return (user + system) / 1000;
}

test("every measurement of the walk is written as the program writes it", async () => {
  for (const name of ["valley_drive", "desert_highway"]) {
    const bytes = readFileSync(data(`${name}.rec`));
    const module = await load(bytes);
    assert.equal(module._page_walk_open(bytes.length), 0);
    const rows = [];
    let status = 0;
    while (status === 0) {
      status = module._page_walk(100);
      const part = result(module);
      for (let at = 0; at < part.length; at += 32) {
        if (part[at + 24] === 1) rows.push([part.readDoubleLE(at), part.readDoubleLE(at + 8)]);
      }
    }
    assert.equal(status, 1);
    const frame = module._malloc(512);
    module._page_clear_result();
    for (const [offset, size] of rows) {
      module.HEAPU8.set(bytes.subarray(offset, offset + size), frame);
      module._page_export(0, offset, frame, size);
    }
    assert.equal(result(module).toString(), text(`${name}.expected.jsonl`));
  }
});

test("walking and decoding: the speed is reported", async () => {
  const sample = readFileSync(data("valley_drive.rec"));
  const bytes = Buffer.concat(Array(1000).fill(sample));
  const module = await load(bytes);
  const speeds = [];
  for (let i = 0; i < 4; ++i) {
    module._page_walk_open(bytes.length);
    let rows = 0;
    const time = timeOf(() => {
      for (let status = 0; status === 0; ) {
        status = module._page_walk(16_384);
        rows += module._page_result_size() / 32;
      }
    });
    speeds.push(bytes.length / 1e3 / time);
    assert.equal(rows, 1000 * 631);
  }
  console.log(`# walking and decoding: ${speeds.map((speed) => speed.toFixed(0)).join(", ")} MB/s of processor time`);
});

test("a batch of directions has the same answers as single directions; the speed is reported", async () => {
  const module = await load(Buffer.alloc(0));
  const put = (bytes) => {
    const address = module._malloc(bytes.length);
    module.HEAPU8.set(bytes, address);
    return address;
  };
  const area = readFileSync(data("areas/facade.json"));
  assert.equal(module._page_area_open(put(area), area.length, put(Buffer.from("facade\0"))), 0);
  const [[hz, v]] = directions();
  const count = hz.length;
  const addresses = [hz, v].map((numbers) => put(new Uint8Array(numbers.buffer)));
  const inside = module._malloc(count);
  const times = [];
  for (let i = 0; i < 5; ++i) {
    let status = -1;
    times.push(timeOf(() => { status = module._page_area_contains_many(...addresses, count, inside); }));
    assert.equal(status, 0);
  }
  const answers = module.HEAPU8.slice(inside, inside + count);
  for (let i = 0; i < count; i += 997) {
    module._page_area_contains_many(addresses[0] + 8 * i, addresses[1] + 8 * i, 1, inside);
    assert.equal(module.HEAPU8[inside], answers[i]);
  }
  assert.equal(new Set(answers).size, 2);
  console.log(`# 10^6 directions: ${times.map((time) => time.toFixed(0)).join(", ")} ms of processor time`);
});
