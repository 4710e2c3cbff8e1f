// The offsets of the rows of a file and their plotted values, in 4 bytes per row for any content.
import type { Row } from "./module";

export const MEASUREMENT = 1;
export const OTHER = 2;
export const GAP = 4;
export const DAMAGED_HEADER = 8;
export const BAD_FRAME = 16;
export const FINDINGS = GAP | DAMAGED_HEADER | BAD_FRAME;

/** Damaged headers beyond this number are counted, but not listed. */
const MOST_DAMAGED = 100_000;

const CHUNK = 65_536;
const BLOCK = 64;
const LARGE = 0xffff;

/**
 * The code of a measurement is this plus the number of its plotted values. Smaller codes are the
 * numbers of other kinds of rows.
 */
const MEASUREMENTS = 512;
/** The number of values that are plotted of a measurement: a step in time and five others. */
export const PLOTTED = 6;

interface Chunk {
  sizes: Uint16Array;
  codes: Uint16Array;
  /** For each block of rows: the offset of its first row, and the time of its first measurement. */
  offsets: Float64Array;
  times: Float64Array;
}

export class RowIndex {
  count = 0;
  readonly counts = new Map<number, number>();
  gapBytes = 0;
  /** The plotted values, by their number; number 0 is not used. */
  readonly plotted: Float64Array[] = [new Float64Array()];
  private readonly chunks: Chunk[] = [];
  private readonly others: { kind: number; detail: number }[] = [];
  private readonly large = new Map<number, number>();
  private readonly damaged = new Map<number, { offset: number; size: number }>();
  private end = 0;

  add(row: Row): void {
    this.counts.set(row.kind, (this.counts.get(row.kind) ?? 0) + 1);
    if (row.kind === GAP) this.gapBytes += row.size;
    if (row.kind === DAMAGED_HEADER && this.damaged.size === MOST_DAMAGED) return;
    const at = this.count % CHUNK;
    if (at === 0) {
      this.chunks.push({
        sizes: new Uint16Array(CHUNK),
        codes: new Uint16Array(CHUNK),
        offsets: new Float64Array(CHUNK / BLOCK),
        times: new Float64Array(CHUNK / BLOCK).fill(NaN),
      });
    }
    const chunk = this.chunks[this.chunks.length - 1]!;
    const block = Math.floor(at / BLOCK);
    if (at % BLOCK === 0) chunk.offsets[block] = this.end;
    if (row.kind === MEASUREMENT && Number.isNaN(chunk.times[block]!)) {
      chunk.times[block] = row.time;
    }
    chunk.codes[at] = this.codeOf(row);
    if (row.kind === DAMAGED_HEADER) {
      this.damaged.set(this.count, { offset: row.offset, size: row.size });
    } else {
      chunk.sizes[at] = Math.min(row.size, LARGE);
      if (row.size >= LARGE) this.large.set(this.count, row.size);
      this.end = row.offset + row.size;
    }
    this.count += 1;
  }

  kindOf(row: number): number {
    const code = this.chunks[Math.floor(row / CHUNK)]!.codes[row % CHUNK]!;
    return code >= MEASUREMENTS ? MEASUREMENT : this.others[code]!.kind;
  }

  get(row: number): Omit<Row, "time" | "plotted"> {
    const chunk = this.chunks[Math.floor(row / CHUNK)]!;
    const at = row % CHUNK;
    const code = chunk.codes[at]!;
    const { kind, detail } =
      code >= MEASUREMENTS ? { kind: MEASUREMENT, detail: 0 } : this.others[code]!;
    const damaged = this.damaged.get(row);
    if (damaged) return { kind, detail, ...damaged };
    const block = Math.floor(at / BLOCK);
    let offset = chunk.offsets[block]!;
    for (let before = block * BLOCK; before < at; ++before) {
      offset += this.sizeOf(chunk, before, row - at + before);
    }
    return { kind, detail, offset, size: this.sizeOf(chunk, at, row) };
  }

  /**
   * Calls `visit` with the time (ms) and the plotted values of each measurement of the rows. Stops
   * and returns false if the values of one of them are not kept.
   */
  eachPlotted(from: number, to: number, visit: (time: number, plotted: Float64Array) => void): boolean {
    let time = NaN;
    for (let row = Math.floor(from / BLOCK) * BLOCK; row <= to; ++row) {
      const chunk = this.chunks[Math.floor(row / CHUNK)]!;
      const at = row % CHUNK;
      if (at % BLOCK === 0) time = NaN;
      const code = chunk.codes[at]!;
      if (code < MEASUREMENTS) continue;
      const plotted = this.plotted[code - MEASUREMENTS];
      if (plotted?.length !== PLOTTED) return false;
      // Each block has the time of its first measurement.
      time = Number.isNaN(time) ? chunk.times[Math.floor(at / BLOCK)]! : time + plotted[0]!;
      if (row >= from) visit(time, plotted);
    }
    return true;
  }

  /** The first row of the block that begins latest, but not after `time`. */
  blockAt(time: number): number {
    let best = 0;
    let bestTime = -Infinity;
    this.chunks.forEach((chunk, number) => {
      for (let block = 0; block < chunk.times.length; ++block) {
        const each = chunk.times[block]!;
        if (each <= time && each >= bestTime) {
          bestTime = each;
          best = number * CHUNK + block * BLOCK;
        }
      }
    });
    return Math.min(best, Math.max(this.count - 1, 0));
  }

  /** The next row of one of the kinds, starting at `row`, in steps of 1 or -1; -1 if there is none. */
  find(kinds: number, row: number, step: number): number {
    for (let at = row; at >= 0 && at < this.count; at += step) {
      if ((this.kindOf(at) & kinds) !== 0) return at;
    }
    return -1;
  }

  get bytes(): number {
    return this.chunks.length * (CHUNK * 4 + (CHUNK / BLOCK) * 16);
  }

  private codeOf({ kind, detail, plotted }: Row): number {
    if (kind === MEASUREMENT) return MEASUREMENTS + plotted;
    const found = this.others.findIndex((other) => other.kind === kind && other.detail === detail);
    return found >= 0 ? found : this.others.push({ kind, detail }) - 1;
  }

  private sizeOf(chunk: Chunk, at: number, row: number): number {
    const size = chunk.sizes[at]!;
    return size === LARGE ? this.large.get(row)! : size;
  }
}
