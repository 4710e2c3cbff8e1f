// The worker reads files and calls the module, a slice at a time, so that the page stays responsive and
// work can be cancelled.
import { Module } from "./module";
import type { Changes, ListRow, Progress, RecordDetail, Reply, Request, Summary } from "./protocol";
import { BAD_FRAME, DAMAGED_HEADER, GAP, MEASUREMENT, OTHER, PLOTTED, RowIndex } from "./row_index";

declare class FileReaderSync {
  readAsArrayBuffer(blob: Blob): ArrayBuffer;
}
interface Scope {
  onmessage: ((event: MessageEvent<Request>) => void) | null;
  postMessage(message: Reply, transfer?: Transferable[]): void;
}
const scope = self as unknown as Scope;

const READ_FAILED = -1;
const READ_PAUSED = -2;
const STATUS_OK = 0;
const STATUS_END = 1;
const STATUS_CANCELLED = 6;
const STATUS_READING_FAILED = 12;
const SLICE_BYTES = 32 << 20;
const SLICE_ROWS = 16_384;
const READ_SIZE = 1 << 20;
const SERIES_COUNT = 5;
const PART_ROWS = 65_536;
const BASE64_SLICE = 1 << 20; // a multiple of four characters

/** A record file with the changes that were made in the page. */
class RecordFile {
  readonly index = new RowIndex();
  readonly patches = new Map<number, Uint8Array>();
  series: Float64Array[] = [];
  private cache: { offset: number; bytes: Uint8Array } = { offset: 0, bytes: new Uint8Array() };

  constructor(readonly file: Blob) {}

  read(offset: number, size: number): Uint8Array {
    const end = Math.min(offset + size, this.file.size);
    if (offset < this.cache.offset || end > this.cache.offset + this.cache.bytes.length) {
      const length = Math.max(end - offset, READ_SIZE);
      const bytes = new Uint8Array(
        new FileReaderSync().readAsArrayBuffer(this.file.slice(offset, offset + length)),
      );
      for (const [at, frame] of this.patches) {
        if (at + frame.length <= offset || at >= offset + bytes.length) continue;
        const skipped = Math.max(offset - at, 0);
        bytes.set(
          frame.subarray(skipped, Math.min(frame.length, offset + bytes.length - at)),
          at + skipped - offset,
        );
      }
      this.cache = { offset, bytes };
    }
    return this.cache.bytes.subarray(offset - this.cache.offset, end - this.cache.offset);
  }

  forget(): void {
    this.cache = { offset: 0, bytes: new Uint8Array() };
  }
}

let module: Module;
let walking: RecordFile | undefined;
let bytesLeft = 0;
const files = new Map<number, RecordFile>();
/** The areas of the page. The module holds one of them at a time. */
const areas = new Map<number, { text: string; name: string }>();
let areaInModule = 0;
const cancelled = new Set<number>();

function readWalked(offset: number, to: Uint8Array): number {
  if (!walking) return READ_FAILED;
  if (bytesLeft <= 0) return READ_PAUSED;
  try {
    const bytes = walking.read(offset, to.length);
    to.set(bytes);
    bytesLeft -= bytes.length;
    return bytes.length;
  } catch {
    return READ_FAILED;
  }
}

/** Lets the event loop deliver messages, above all requests to cancel. */
function pause(): Promise<void> {
  return new Promise((resolve) => {
    const channel = new MessageChannel();
    channel.port1.onmessage = () => {
      channel.port1.close();
      resolve();
    };
    channel.port2.postMessage(null);
  });
}

function file(key: number): RecordFile {
  const found = files.get(key);
  if (!found) throw new Error("the file is not open");
  return found;
}

function takeSeries(isPart: boolean): Float64Array[] {
  const series: Float64Array[] = [];
  for (let value = 0; value < SERIES_COUNT; ++value) {
    module.ask("page_series", isPart ? 1 : 0, value);
    series.push(module.doubles());
  }
  return series;
}

function countOf(index: RowIndex, ...kinds: number[]): number {
  return kinds.reduce((sum, kind) => sum + (index.counts.get(kind) ?? 0), 0);
}

/** Calls `visit` with each measurement of the rows and the address of its frame in the module. */
async function eachFrame(
  of: RecordFile,
  from: number,
  to: number,
  isCancelled: () => boolean,
  report: (progress: Progress) => void,
  visit: (address: number, offset: number, size: number) => void,
): Promise<void> {
  const address = module.take(READ_SIZE);
  try {
    let row = from;
    while (row <= to && !isCancelled()) {
      const first = of.index.get(row);
      const frames: { at: number; size: number }[] = [];
      for (; row <= to; ++row) {
        const each = of.index.get(row);
        if (each.kind === DAMAGED_HEADER) continue;
        if (each.offset + each.size - first.offset > READ_SIZE) break;
        if (each.kind === MEASUREMENT) frames.push({ at: each.offset - first.offset, size: each.size });
      }
      const last = frames[frames.length - 1];
      module.call("page_clear_result");
      if (last) {
        module.write(of.read(first.offset, last.at + last.size), address);
        for (const frame of frames) visit(address + frame.at, first.offset + frame.at, frame.size);
      } else if (row <= to && of.index.get(row).offset === first.offset) {
        ++row; // a gap that is longer than a slice
      }
      report({ done: row - from, total: to - from + 1, rows: row - from });
      await pause();
    }
  } finally {
    module.free(address);
  }
}

type Operation = (
  id: number,
  report: (progress: Progress) => void,
  ...values: never[]
) => unknown;

const operations: Record<string, Operation> = {
  async load(_id, _report, compressed: Uint8Array) {
    module = await Module.load(compressed, readWalked);
  },

  async open(id, report, key: number, blob: Blob): Promise<Summary> {
    const opened = new RecordFile(blob);
    files.set(key, opened);
    walking = opened;
    let status = module.call("page_walk_open", blob.size);
    let firstTime = Infinity;
    let lastTime = -Infinity;
    while (status === STATUS_OK || status === STATUS_CANCELLED) {
      bytesLeft = SLICE_BYTES;
      status = module.ask("page_walk", SLICE_ROWS);
      let end = 0;
      for (const row of module.rows()) {
        opened.index.add(row);
        end = row.offset + row.size;
        if (row.kind !== MEASUREMENT) continue;
        firstTime = Math.min(firstTime, row.time);
        lastTime = Math.max(lastTime, row.time);
      }
      module.ask("page_plotted", opened.index.plotted.length);
      const plotted = module.doubles();
      for (let at = 0; at < plotted.length; at += PLOTTED) {
        opened.index.plotted.push(plotted.subarray(at, at + PLOTTED));
      }
      if (end > 0) report({ done: end, total: blob.size, rows: opened.index.count });
      await pause();
      if (cancelled.has(id)) break;
    }
    opened.series = takeSeries(false);
    opened.forget();
    walking = undefined;
    const { index } = opened;
    return {
      rows: index.count,
      measurements: countOf(index, MEASUREMENT),
      others: countOf(index, OTHER),
      gaps: countOf(index, GAP),
      gapBytes: index.gapBytes,
      badFrames: countOf(index, DAMAGED_HEADER, BAD_FRAME),
      fault:
        status === STATUS_READING_FAILED
          ? "Reading the file failed: it may have been changed, moved or removed."
          : status === STATUS_END || cancelled.has(id)
            ? ""
            : "The file could not be read to its end.",
      isCancelled: cancelled.has(id),
      firstTime,
      lastTime,
      memory: module.memory + index.bytes,
    };
  },

  close(_id, _report, key: number) {
    files.delete(key);
  },

  rows(_id, _report, key: number, from: number, count: number): ListRow[] {
    const of = file(key);
    const numbers: number[] = [];
    module.call("page_clear_result");
    for (let row = from; row < Math.min(from + count, of.index.count); ++row) {
      const { kind, detail, offset, size } = of.index.get(row);
      const frame = kind === MEASUREMENT ? of.read(offset, size) : new Uint8Array();
      module.call("page_row", kind, detail, offset, size, frame);
      numbers.push(row);
    }
    const lines = module.text().split("\n");
    return numbers.map((row, i) => ({ ...(JSON.parse(lines[i]!) as ListRow), row }));
  },

  record(_id, _report, key: number, row: number): RecordDetail | null {
    const of = file(key);
    const { kind, offset, size } = of.index.get(row);
    if (kind !== MEASUREMENT && kind !== BAD_FRAME) return null;
    return describe(offset, of.read(offset, size));
  },

  /** Describes a frame that is not yet in the file. */
  describe(_id, _report, offset: number, frame: Uint8Array): RecordDetail {
    return describe(offset, frame);
  },

  patch(_id, _report, frame: Uint8Array, changes: Changes): Uint8Array {
    const { name, number, antenna } = changes;
    const which =
      (name !== undefined ? 1 : 0) | (number !== undefined ? 2 : 0) | (antenna ? 4 : 0);
    module.ask(
      "page_patch", frame, frame.length, which, name ?? "", number ?? 0, antenna?.height ?? 0,
      antenna?.isSlant ? 1 : 0,
    );
    return module.bytes();
  },

  keep(_id, _report, key: number, offset: number, frame: Uint8Array | null) {
    const of = file(key);
    if (frame) of.patches.set(offset, frame);
    else of.patches.delete(offset);
    of.forget();
  },

  find(_id, _report, key: number, kinds: number, row: number, step: number): number {
    return file(key).index.find(kinds, row, step);
  },

  /** The row of the measurement with the time (ms) closest to `time`. */
  rowAt(_id, _report, key: number, time: number): number {
    const of = file(key);
    const first = of.index.blockAt(time);
    let best = first;
    let bestDistance = Infinity;
    for (let row = Math.max(first - 64, 0); row < Math.min(first + 192, of.index.count); ++row) {
      const distance = Math.abs(timeOf(of, row) - time);
      if (distance < bestDistance) {
        bestDistance = distance;
        best = row;
      }
    }
    return best;
  },

  /** The time (ms) of the measurement at or next to a row; NaN if there is none. */
  timeAt(_id, _report, key: number, row: number): number {
    const of = file(key);
    const after = of.index.find(MEASUREMENT, row, 1);
    const found = after >= 0 ? after : of.index.find(MEASUREMENT, row, -1);
    return found >= 0 ? timeOf(of, found) : NaN;
  },

  series(_id, _report, key: number): Float64Array[] {
    return file(key).series;
  },

  async partOfSeries(id, report, key: number, from: number, to: number) {
    const isCancelled = () => cancelled.has(id);
    const { index } = file(key);
    module.call("page_part_begin");
    let isKept = true;
    for (let row = from; row <= to && isKept && !isCancelled(); row += PART_ROWS) {
      isKept = addPlotted(index, row, Math.min(row + PART_ROWS - 1, to));
      await pause();
    }
    if (!isKept) {
      module.call("page_part_begin");
      await eachFrame(file(key), from, to, isCancelled, report, (address, _offset, size) => {
        module.call("page_part_add", address, size);
      });
    }
    return isCancelled() ? null : takeSeries(true);
  },

  timeTicks(_id, _report, first: number, last: number, wanted: number) {
    module.ask("page_time_ticks", first, last, wanted);
    return module.json<{ ticks: unknown[] }>().ticks;
  },
  valueTicks(_id, _report, top: number, wanted: number, isWhole: boolean) {
    module.ask("page_value_ticks", top, wanted, isWhole ? 1 : 0);
    return module.json<{ ticks: unknown[] }>().ticks;
  },

  async export(id, report, key: number, from: number, to: number, isCsv: boolean) {
    const parts: Blob[] = [];
    const take = () => {
      parts.push(new Blob([module.bytes() as BlobPart]));
      module.call("page_clear_result");
    };
    module.call("page_clear_result");
    module.call("page_export_header", isCsv ? 1 : 0);
    take();
    const progress = (of: Progress) => {
      take();
      report(of);
    };
    await eachFrame(file(key), from, to, () => cancelled.has(id), progress, (address, offset, size) => {
      module.call("page_export", isCsv ? 1 : 0, offset, address, size);
    });
    return cancelled.has(id) ? null : new Blob(parts);
  },

  /** Decodes Base64. */
  decode(_id, _report, text: string): Blob {
    const parts: BlobPart[] = [];
    for (let at = 0; at < text.length; at += BASE64_SLICE) {
      const bytes = atob(text.slice(at, at + BASE64_SLICE));
      parts.push(Uint8Array.from(bytes, (character) => character.charCodeAt(0)));
    }
    return new Blob(parts);
  },

  /** Opens an area, or replaces its text. If that fails, the previous text stays in use. */
  openArea(_id, _report, key: number, text: string, name: string) {
    loadArea(key, text, name);
    areas.set(key, { text, name });
    module.ask("page_area_report");
    return module.json();
  },
  closeArea(_id, _report, key: number) {
    areas.delete(key);
  },
  areaPicture(_id, _report, key: number) {
    useArea(key);
    module.ask("page_area_picture");
    return module.json();
  },
  areaAt(_id, _report, key: number, isPlane: boolean, x: number, y: number) {
    useArea(key);
    module.ask("page_area_at", isPlane ? 1 : 0, x, y);
    return module.json();
  },
  explain(_id, _report, key: number, hz: number, v: number) {
    useArea(key);
    module.ask("page_area_explain", hz, v);
    return module.json();
  },
  editArea(_id, _report, key: number, edit: number, index: number, hz: number, v: number) {
    useArea(key);
    module.ask("page_area_edit", edit, index, hz, v);
    return module.text();
  },
  convertArea(_id, _report, key: number, unit: string) {
    useArea(key);
    module.ask("page_area_convert", unit);
    return module.text();
  },
  directions(_id, _report, key: number, text: Uint8Array) {
    useArea(key);
    module.ask("page_area_directions", text, text.length);
    return module.doubles();
  },
  containsMany(_id, _report, hz: Float64Array, v: Float64Array): Uint8Array {
    const address = module.take(hz.length);
    try {
      const status = module.ask("page_area_contains_many", hz, v, hz.length, address);
      if (status !== STATUS_OK) throw new Error("the directions could not be tested");
      return module.copy(address, hz.length);
    } finally {
      module.free(address);
    }
  },
};

function loadArea(key: number, text: string, name: string): void {
  const bytes = new TextEncoder().encode(text);
  module.ask("page_area_open", bytes, bytes.length, name);
  areaInModule = key;
}

function useArea(key: number): void {
  if (areaInModule === key) return;
  const area = areas.get(key);
  if (!area) throw new Error("the area is not open");
  loadArea(key, area.text, area.name);
}

/** Adds the kept values of the rows to the series of a part; false if some are not kept. */
function addPlotted(index: RowIndex, from: number, to: number): boolean {
  const batch = new Float64Array(16_384 * PLOTTED);
  let length = 0;
  const flush = () => {
    module.call("page_part_add_plotted", batch.subarray(0, length), length / PLOTTED);
    length = 0;
  };
  const isKept = index.eachPlotted(from, to, (time, plotted) => {
    batch.set(plotted, length);
    batch[length] = time;
    length += PLOTTED;
    if (length === batch.length) flush();
  });
  flush();
  return isKept;
}

function timeOf(of: RecordFile, row: number): number {
  const { kind, offset, size } = of.index.get(row);
  if (kind !== MEASUREMENT) return NaN;
  return module.call("page_time", of.read(offset, size), size);
}

function describe(offset: number, frame: Uint8Array): RecordDetail {
  module.ask("page_record", offset, frame, frame.length);
  return { ...module.json<Omit<RecordDetail, "offset" | "frame">>(), offset, frame: frame.slice() };
}

async function answer(request: Request): Promise<void> {
  const { id, operation, values } = request;
  if (operation === "cancel") {
    cancelled.add(values[0] as number);
    return;
  }
  const report = (progress: Progress) => scope.postMessage({ id, progress });
  try {
    const run = operations[operation] as (...values: unknown[]) => unknown;
    const result = await run(id, report, ...values);
    // A result with its own buffer is transferred, not copied.
    const isArray = operation === "containsMany" || operation === "directions";
    scope.postMessage({ id, result }, isArray ? [(result as Uint8Array).buffer] : []);
  } catch (error) {
    // A trap, or an uncaught C++ exception.
    const { Exception } = WebAssembly as unknown as { Exception?: new () => unknown };
    const isFatal =
      error instanceof WebAssembly.RuntimeError ||
      (Exception !== undefined && error instanceof Exception);
    scope.postMessage({ id, error: error instanceof Error ? error.message : String(error), isFatal });
  } finally {
    cancelled.delete(id);
  }
}

// Long operations run one after the other, in slices, and all other requests are answered between the
// slices. Both use the result buffer of the module, so a slice must not expect its content to stay.
const LONG = new Set(["open", "export", "partOfSeries"]);
let queue: Promise<void> = Promise.resolve();
scope.onmessage = (event) => {
  if (LONG.has(event.data.operation)) {
    queue = queue.then(() => answer(event.data));
  } else {
    void answer(event.data);
  }
};
