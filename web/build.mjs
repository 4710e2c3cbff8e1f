// Puts the page together: build.mjs MODULE.mjs MODULE.wasm PAGE.html
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";

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
    // Where the module is asked for by its address, which the page never does.
    define: { "import.meta.url": "\"file:///\"", ...define },
    logLevel: "warning",
  });
  return result.outputFiles[0].text.trim();
}

const hash = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

/** Characters that HTML leaves as they are. */
const ALPHABET = Array.from({ length: 94 }, (_, i) => String.fromCharCode(33 + i))
  .filter((character) => !`"'&<>\\\`$%`.includes(character))
  .slice(0, 85)
  .join("");

/** Five characters for each four bytes: a sixteenth less than base64. */
function encoded(bytes) {
  const padded = Buffer.concat([bytes, Buffer.alloc((4 - (bytes.length % 4)) % 4)]);
  let text = "";
  for (let at = 0; at < padded.length; at += 4) {
    let word = padded.readUInt32BE(at);
    let five = "";
    for (let i = 0; i < 5; ++i) {
      five = ALPHABET[word % 85] + five;
      word = Math.floor(word / 85);
    }
    text += five;
  }
  return text;
}

const worker = await script("worker.ts", {});
const main = await script("main.ts", {
  WORKER_SOURCE: JSON.stringify(worker),
  ALPHABET: JSON.stringify(ALPHABET),
});
const style = (
  await build({ entryPoints: [join(source, "page.css")], minify: true, write: false })
).outputFiles[0].text.trim();

// The worker comes from a blob and has the policy of the page. Nothing else is loaded.
const policy = [
  "default-src 'none'",
  `script-src ${hash(main)} 'wasm-unsafe-eval'`,
  "worker-src blob:",
  `style-src ${hash(style)}`,
  "img-src data: blob:",
  "base-uri 'none'",
  "form-action 'none'",
].join("; ");

const compressed = gzipSync(readFileSync(wasm), { level: 9 });
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
  `${page}: ${Buffer.byteLength(html)} bytes (module ${parts.MODULE.length}, scripts ${main.length})`,
);
