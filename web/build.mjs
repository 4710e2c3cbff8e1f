// Assembles the page: build.mjs MODULE.mjs MODULE.wasm PAGE.html
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

import zopfli from "@gfx/zopfli";
import { build } from "esbuild";

const MOST_BYTES = 300_000;

const [glue, wasm, page] = process.argv.slice(2).map((path) => resolve(path));
const source = join(dirname(fileURLToPath(import.meta.url)), "source");

/** One script of a source file and what it imports. */
async function script(file, define) {
  const result = await build({
    entryPoints: [join(source, file)],
    bundle: true,
    minify: true,
    write: false,
    format: "iife",
    target: "es2022",
    charset: "utf8",
    legalComments: "none",
    alias: { "surveydata-module": glue },
    // The address of the module, which the page does not use.
    define: { "import.meta.url": "\"file:///\"", ...define },
    logLevel: "warning",
  });
  return result.outputFiles[0].text.trim();
}

const hash = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

/** Characters of seven bits that HTML changes or takes for markup. */
const TAKEN = ["\0", "\r", "&", "<"].map((character) => character.charCodeAt(0));

/**
 * Seven bits for each character of one byte; for each of two bytes, U+0100 or above, a taken
 * character and the seven bits after it: a tenth less than base85.
 */
function encoded(bytes) {
  const sevens = [];
  let bits = 0;
  let count = 0;
  for (const byte of bytes) {
    bits = (bits << 8) | byte;
    for (count += 8; count >= 7; count -= 7) sevens.push((bits >> (count - 7)) & 127);
    bits &= (1 << count) - 1;
  }
  sevens.push((bits << (7 - count)) & 127);
  let text = "";
  for (let i = 0; i < sevens.length; ++i) {
    const taken = TAKEN.indexOf(sevens[i]);
    text += String.fromCharCode(taken < 0 ? sevens[i] : 256 + taken * 128 + (sevens[++i] ?? 0));
  }
  return text;
}

const worker = await script("worker.ts", {});
const main = await script("main.ts", {
  WORKER_SOURCE: JSON.stringify(worker),
  TAKEN: JSON.stringify(TAKEN),
});
const style = (
  await build({ entryPoints: [join(source, "page.css")], minify: true, write: false })
).outputFiles[0].text.trim();

// The worker is loaded from a blob and has the policy of the page. Nothing else is loaded.
const policy = [
  "default-src 'none'",
  `script-src ${hash(main)} 'wasm-unsafe-eval'`,
  "worker-src blob:",
  `style-src ${hash(style)}`,
  "img-src data: blob:",
  "base-uri 'none'",
  "form-action 'none'",
].join("; ");

// A twentieth smaller than zlib's.
const compressed = await zopfli.gzipAsync(readFileSync(wasm), { numiterations: 5 });
const parts = {
  POLICY: policy,
  STYLE: style,
  SIZE: String(compressed.length),
  MODULE: encoded(compressed),
  SCRIPT: main,
};
const html = readFileSync(join(source, "page.html"), "utf8").replace(
  /\b(POLICY|STYLE|SIZE|MODULE|SCRIPT)\b/g,
  (name) => parts[name],
);
if (Buffer.byteLength(html) > MOST_BYTES) {
  throw new Error(`the page has ${Buffer.byteLength(html)} bytes, more than ${MOST_BYTES}`);
}
writeFileSync(page, html);
console.log(
  `${page}: ${Buffer.byteLength(html)} bytes (module ${Buffer.byteLength(parts.MODULE)}, scripts ${main.length})`,
);
